// moving_picture.h: frames with motion in them, the same on every machine.
#pragma once

#include <cstdint>
#include <vector>

#include "random.h"

namespace test {

/// A textured background that drifts, and before it a textured rectangle that moves on its own, with a few
/// pixels of noise. Integer arithmetic only.
class MovingPicture {
 public:
  MovingPicture(int width, int height, std::uint64_t seed);

  /// The next frame, width × height; valid until the next call.
  const std::vector<std::uint8_t>& Next();

 private:
  void Copy(int left, int top, int right, int bottom, int shift_x, int shift_y);

  int width_, height_;
  int canvas_width_, canvas_height_;
  Random random_;
  std::vector<std::uint8_t> canvas_;
  std::vector<std::uint8_t> frame_;
  int background_x_ = 0, background_y_ = 0, object_x_ = 0, object_y_ = 0;
};

}  // namespace test
