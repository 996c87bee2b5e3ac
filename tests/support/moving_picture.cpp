// moving_picture.cpp: frames with motion in them, the same on every machine.
#include "moving_picture.h"

#include <algorithm>

namespace test {
namespace {

/// The canvas is larger than the frame by this much on every side, the furthest that anything moves.
constexpr int kMargin = 48;
/// The texture's grain: random values on a grid this wide, interpolated between.
constexpr int kGrain = 6;

}  // namespace

MovingPicture::MovingPicture(int width, int height, std::uint64_t seed)
    : width_(width),
      height_(height),
      canvas_width_(width + 2 * kMargin),
      canvas_height_(height + 2 * kMargin),
      random_(seed),
      canvas_(static_cast<std::size_t>(canvas_width_) * canvas_height_),
      frame_(static_cast<std::size_t>(width) * height) {
  const int grid_width = canvas_width_ / kGrain + 2;
  const int grid_height = canvas_height_ / kGrain + 2;
  std::vector<std::uint8_t> grid(static_cast<std::size_t>(grid_width) * grid_height);
  random_.Fill(grid);
  for (int y = 0; y < canvas_height_; ++y) {
    for (int x = 0; x < canvas_width_; ++x) {
      const std::uint8_t* corner = &grid[static_cast<std::size_t>(y / kGrain) * grid_width + x / kGrain];
      const int fx = x % kGrain;
      const int fy = y % kGrain;
      const int upper = corner[0] * (kGrain - fx) + corner[1] * fx;
      const int lower = corner[grid_width] * (kGrain - fx) + corner[grid_width + 1] * fx;
      canvas_[static_cast<std::size_t>(y) * canvas_width_ + x] =
          static_cast<std::uint8_t>((upper * (kGrain - fy) + lower * fy) / (kGrain * kGrain));
    }
  }
}

void MovingPicture::Copy(int left, int top, int right, int bottom, int shift_x, int shift_y) {
  for (int y = top; y < bottom; ++y) {
    const auto* source =
        &canvas_[static_cast<std::size_t>(y + kMargin + shift_y) * canvas_width_ + kMargin + shift_x];
    std::copy(source + left, source + right, &frame_[static_cast<std::size_t>(y) * width_ + left]);
  }
}

const std::vector<std::uint8_t>& MovingPicture::Next() {
  const auto wander = [this](int& position, std::uint32_t reach) {
    position += static_cast<int>(random_.Below(2 * reach + 1)) - static_cast<int>(reach);
    position = std::clamp(position, -kMargin, kMargin);
  };
  wander(background_x_, 1);
  wander(background_y_, 1);
  wander(object_x_, 5);
  wander(object_y_, 5);
  Copy(0, 0, width_, height_, background_x_, background_y_);
  Copy(width_ / 4, height_ / 4, width_ * 3 / 4, height_ * 3 / 4, object_x_, object_y_);
  for (std::size_t i = 0; i < frame_.size() / 64; ++i) {
    frame_[random_.Below(static_cast<std::uint32_t>(frame_.size()))] ^= 8;
  }
  return frame_;
}

}  // namespace test
