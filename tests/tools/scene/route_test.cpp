// route_test.cpp: the ways of actors, and how fast they go along them.
#include "scene/motion/route.h"

#include <gtest/gtest.h>

#include <cmath>

#include "scene/space/pose.h"

namespace stopngo::test {
namespace {

TEST(Route, BendsToTheSideItIsToldTo) {
  const Route right{0, 10, 0, 5, 4, 0.25};
  const Pose end = right.At(5 + 2 * 3.14159265 + 3);
  EXPECT_NEAR(end.x, 4 + 3, 0.02);
  EXPECT_NEAR(end.z, 10 + 5 + 4, 0.02);
  EXPECT_NEAR(end.sine, 1, 0.01);
  const Route left{0, 10, 0, 5, 4, -0.25};
  EXPECT_NEAR(left.At(5 + 2 * 3.14159265 + 3).x, -7, 0.02);
  for (double at = 0; at < 20; at += 0.01) {
    const Pose a = right.At(at);
    const Pose b = right.At(at + 0.01);
    EXPECT_NEAR(std::sqrt((b.x - a.x) * (b.x - a.x) + (b.z - a.z) * (b.z - a.z)), 0.01, 0.0005) << at;
  }
}

}  // namespace
}  // namespace stopngo::test
