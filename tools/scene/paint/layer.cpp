// layer.cpp: painting a layer and shifting it by fractions of a pixel.
#include "scene/paint/layer.h"

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

/// The white that a cutout is painted over to learn how much of it shows through.
constexpr float kBehind = 256;

Layer::Paint Over(float tone, const Layer::Paint& paint) {
  return [tone, &paint](const Camera& camera, int row, std::span<float> light) {
    for (float& value : light) {
      value = tone;
    }
    paint(camera, row, light);
  };
}

}  // namespace

// One pixel more on each side than the displacement needs, for the last tap of the box.
Layer::Layer(const Camera& camera, int width, int height, int margin, const Paint& paint)
    : margin_(margin + 1), stride_(static_cast<std::size_t>(width + 2 * margin_)) {
  Camera twice = camera;
  twice.focal *= 2;
  twice.centre_x = 2 * (camera.centre_x + margin_);
  twice.horizon = 2 * (camera.horizon + margin_);
  const int rows = 2 * (height + 2 * margin_);
  std::vector<float> light(2 * stride_);
  for (auto& plane : planes_) {
    plane.reserve(static_cast<std::size_t>(rows) * stride_);
  }
  for (int row = 0; row < rows; row++) {
    paint(twice, row, light);
    for (std::size_t column = 0; column < light.size(); column++) {
      planes_[column & 1].push_back(light[column]);
    }
  }
}

void Layer::Row(int row, Offset offset, std::span<float> light) const {
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

Cutout::Cutout(const Camera& camera, int width, int height, int margin, const Layer::Paint& paint)
    : over_black_(camera, width, height, margin, Over(0, paint)),
      over_white_(camera, width, height, margin, Over(kBehind, paint)) {}

void Cutout::DrawRow(int row, Offset offset, std::span<float> light) const {
  std::vector<float> black(light.size());
  std::vector<float> white(light.size());
  over_black_.Row(row, offset, black);
  over_white_.Row(row, offset, white);
  for (std::size_t x = 0; x < light.size(); x++) {
    light[x] = black[x] + light[x] * (white[x] - black[x]) * (1 / kBehind);
  }
}

}  // namespace stopngo
