// scene_backdrop.cpp: painting the backdrop and shifting it by fractions of a pixel.
#include "scene_backdrop.h"

#include <cmath>
#include <cstddef>

namespace stopngo {
namespace {

/// A box one pixel wide, laid over samples half a pixel wide at any offset, touches three of them.
struct BoxTaps {
  std::ptrdiff_t first;
  float before, after;  ///< share of the first and the last sample; the middle one counts whole

  explicit BoxTaps(double position) {
    const double whole = std::floor(position);
    first = static_cast<std::ptrdiff_t>(whole);
    after = static_cast<float>(position - whole);
    before = 1 - after;
  }
};

/// Mean over a sample's area from 2 × 2 rays; with 2 × 2 samples a pixel that makes 16.
float Sample(const World& world, const Camera& camera, double left, double top) {
  const auto scale = static_cast<float>(1 / camera.focal);
  float sum = 0;
  for (int i = 0; i < 4; i++) {
    const double column = left + 0.125 + 0.25 * (i & 1);
    const double row = top + 0.125 + 0.25 * (i >> 1);
    sum += world.Shade({static_cast<float>(column - camera.centre_x) * scale,
                        static_cast<float>(camera.horizon - row) * scale});
  }
  return sum / 4;
}

}  // namespace

// One pixel more on each side than the displacement needs, for the last tap of the box.
Backdrop::Backdrop(const World& world, const Camera& camera, int width, int height, int margin)
    : margin_(margin + 1), stride_(static_cast<std::size_t>(width + 2 * margin_)) {
  const std::size_t rows = 2 * static_cast<std::size_t>(height + 2 * margin_);
  for (auto& plane : planes_) {
    plane.reserve(rows * stride_);
  }
  for (std::size_t row = 0; row < rows; row++) {
    for (std::size_t column = 0; column < 2 * stride_; column++) {
      planes_[column & 1].push_back(Sample(world, camera, 0.5 * static_cast<double>(column) - margin_,
                                           0.5 * static_cast<double>(row) - margin_));
    }
  }
}

void Backdrop::Row(int row, Shake::Offset offset, std::span<float> light) const {
  const BoxTaps down(2 * (row - offset.y + margin_));
  const BoxTaps across(2 * (margin_ - offset.x));
  for (float& value : light) {
    value = 0;
  }
  const std::array<float, 3> shares{across.before, 1, across.after};
  for (std::ptrdiff_t tap = 0; tap < 3; tap++) {
    const std::ptrdiff_t column = across.first + tap;
    const float* above =
        planes_[column & 1].data() + down.first * static_cast<std::ptrdiff_t>(stride_) + column / 2;
    const float* middle = above + stride_;
    const float* below = middle + stride_;
    const float share = 0.25F * shares[static_cast<std::size_t>(tap)];
    for (std::size_t x = 0; x < light.size(); x++) {
      light[x] += share * (down.before * above[x] + middle[x] + down.after * below[x]);
    }
  }
}

}  // namespace stopngo
