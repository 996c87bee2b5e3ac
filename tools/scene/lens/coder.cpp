// coder.cpp: conditional replenishment and transform coding, block by block.
#include "scene/lens/coder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace stopngo {
namespace {

// Halves of the cosines of 1/16 … 7/16 of a half turn, by which an orthonormal transform of 8 values weighs.
constexpr std::array<float, 8> kCosine{0.35355339F, 0.49039264F, 0.46193977F, 0.41573481F,
                                       0.35355339F, 0.27778512F, 0.19134172F, 0.09754516F};

/// The weight of sample x in coefficient u.
constexpr float Weight(int u, int x) {
  if (u == 0) {
    return kCosine[0];
  }
  const int angle = (2 * x + 1) * u % 32;  // in sixteenths of a half turn
  const int folded = angle > 16 ? 32 - angle : angle;
  if (folded == 8) {
    return 0;
  }
  return folded < 8 ? kCosine[static_cast<std::size_t>(folded)]
                    : -kCosine[static_cast<std::size_t>(16 - folded)];
}

/// Weights of each number that goes in, for each that comes out.
using Basis = std::array<std::array<float, 8>, 8>;

constexpr Basis MakeBasis(bool inverse) {
  Basis basis{};
  for (int to = 0; to < 8; to++) {
    for (int from = 0; from < 8; from++) {
      basis[static_cast<std::size_t>(to)][static_cast<std::size_t>(from)] =
          inverse ? Weight(from, to) : Weight(to, from);
    }
  }
  return basis;
}

constexpr Basis kForward = MakeBasis(false);
constexpr Basis kInverse = MakeBasis(true);

/// Transforms the rows and turns rows into columns; twice is the transform of a block.
void Transform(const Basis& basis, const std::array<float, 64>& in, std::array<float, 64>& out) {
  for (std::size_t row = 0; row < 8; row++) {
    for (std::size_t to = 0; to < 8; to++) {
      float sum = 0;
      for (std::size_t from = 0; from < 8; from++) sum += basis[to][from] * in[8 * row + from];
      out[8 * to + row] = sum;
    }
  }
}

}  // namespace

Coder::Coder(const SensorOptions& options, const PicturePart& frame)
    : frame_(frame),
      strength_(static_cast<float>(options.compression)),
      step_(4 + 24 * static_cast<float>(options.compression)),
      refresh_s_(options.refresh_s) {}

bool Coder::Quantise(Block& block, float step) const {
  Block rows{};
  Block coefficients{};
  Transform(kForward, block, rows);
  Transform(kForward, rows, coefficients);
  bool any = false;
  for (std::size_t i = 0; i < coefficients.size(); i++) {
    // Fine detail is quantised twice as coarsely as the block's mean; less than two thirds of a step is
    // dropped, as encoders do.
    const std::size_t detail = i / kSide + i % kSide;
    const float own = step * (1 + static_cast<float>(detail) * (1.0F / 14));
    const float steps = std::fabs(coefficients[i]) / own;
    const auto level = static_cast<float>(static_cast<std::int32_t>(steps + 0.34F));
    coefficients[i] = coefficients[i] < 0 ? -level * own : level * own;
    any = any || level > 0;
  }
  if (any) {
    Transform(kInverse, coefficients, rows);
    Transform(kInverse, rows, block);
  }
  return any;
}

void Coder::CodeBlock(int left, int top, bool refresh, std::span<std::uint8_t> picture) {
  const auto at = [this, left, top](int x, int y) {
    const int column = std::clamp(left + x, 0, frame_.width - 1);
    const int row = std::clamp(top + y, 0, frame_.height - 1);
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(frame_.width) +
           static_cast<std::size_t>(column);
  };
  Block block{};
  int change = 0;
  for (int i = 0; i < kSide * kSide; i++) {
    const std::size_t pixel = at(i % kSide, i / kSide);
    const int difference = picture[pixel] - (refresh ? 128 : decoded_[pixel]);
    block[static_cast<std::size_t>(i)] = static_cast<float>(difference);
    change += std::abs(difference);
  }
  // Encoders try first whether a block can be kept.
  const float kept = (0.4F + 1.6F * strength_) * (kSide * kSide);
  if (!refresh && (static_cast<float>(change) < kept || !Quantise(block, step_))) {
    return;
  }
  if (refresh && !Quantise(block, 0.7F * step_)) {
    block.fill(0);
  }
  for (int i = 0; i < kSide * kSide; i++) {
    const int x = left + i % kSide;
    const int y = top + i / kSide;
    if (x < 0 || y < 0 || x >= frame_.width || y >= frame_.height) {
      continue;
    }
    const std::size_t pixel = at(i % kSide, i / kSide);
    const float before = refresh ? 128.0F : static_cast<float>(decoded_[pixel]);
    const float level = std::clamp(before + block[static_cast<std::size_t>(i)] + 0.5F, 0.0F, 255.0F);
    decoded_[pixel] = static_cast<std::uint8_t>(static_cast<std::int32_t>(level));
  }
}

void Coder::Code(double time_s, std::span<std::uint8_t> picture) {
  if (strength_ <= 0) {
    return;
  }
  const auto group = static_cast<std::int64_t>(time_s / refresh_s_);
  const bool refresh = group != group_ || decoded_.size() != picture.size();
  group_ = group;
  decoded_.resize(picture.size());
  // Blocks lie where they would in the whole picture.
  for (int top = -(frame_.y % kSide); top < frame_.height; top += kSide) {
    for (int left = -(frame_.x % kSide); left < frame_.width; left += kSide) {
      CodeBlock(left, top, refresh, picture);
    }
  }
  std::copy(decoded_.begin(), decoded_.end(), picture.begin());
}

}  // namespace stopngo
