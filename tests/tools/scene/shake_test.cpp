// shake_test.cpp: how far the camera shakes.
#include "scene/lens/shake.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "scene/space/offset.h"

namespace stopngo::test {
namespace {

// Windows of a picture are rendered with as much margin as the shake may need.
TEST(Shake, StaysWithinItsReachAndMovesAsFarAsAsked) {
  CameraOptions options;
  options.vibration = 0.7;
  options.gusts = 2;
  options.drift = 1;
  options.jolts = {{1, 3}, {1.3, -4}};
  double farthest = 0;
  for (std::uint64_t seed = 1; seed <= 50; seed++) {
    const Shake shake(options, seed);
    EXPECT_DOUBLE_EQ(shake.Reach(), 10.7);
    for (double time_s = 0; time_s < 15; time_s += 0.013) {
      const Offset offset = shake.At(time_s, 0);
      farthest = std::max({farthest, std::fabs(offset.x), std::fabs(offset.y)});
    }
  }
  EXPECT_LE(farthest, 10.7);
  EXPECT_GT(farthest, 3);
  CameraOptions calm;
  calm.vibration = 0;
  const Shake still(calm, 3);
  EXPECT_EQ(still.At(5, 0).y, 0);
  EXPECT_NE(still.At(5, 10).y, 0) << "the road shakes what drives";
}

}  // namespace
}  // namespace stopngo::test
