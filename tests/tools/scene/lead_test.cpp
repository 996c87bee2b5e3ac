// lead_test.cpp: the vehicle ahead: it stands, leaves, and shrinks as perspective tells.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "pictures.h"

namespace stopngo::test {
namespace {

TEST(Lead, VehicleStandsThenLeaves) {
  for (const std::uint64_t seed : {1, 2, 3}) {
    const SceneOptions options = Quiet(seed);
    Scene scene(options);
    const Luma first = Rendered(scene, options, 0);
    EXPECT_EQ(first, Rendered(scene, options, 38)) << "nothing may move before the brakes come off";
    const Luma before = Rendered(scene, options, 49);  // brakes off, not yet moving
    const double early = MeanDifference(before, Rendered(scene, options, 70));
    const double late = MeanDifference(before, Rendered(scene, options, 120));
    EXPECT_GT(early, 0.3) << "seed " << seed;
    EXPECT_GT(late, 2 * early) << "seed " << seed;
    EXPECT_EQ(first, Rendered(scene, options, 0)) << "frames do not depend on what was rendered before";
  }
}

// The bumper is found in the picture as what differs from the empty street in its row: its edges have to
// lie where a lens 1.3 m above the road with 0.9 widths of focal length sees them at that distance.
TEST(Lead, RearShrinksAsPerspectiveTells) {
  for (const std::uint64_t seed : {1, 2, 3, 4}) {
    const SceneOptions options = Quiet(seed);
    Scene scene(options);
    const Luma gone = Rendered(scene, options, 999);
    const auto width_at = [&](std::int64_t frame) {
      const Luma picture = Rendered(scene, options, frame);
      const double distance = DistanceOfLead(options, static_cast<double>(frame) / options.fps);
      const auto row = static_cast<std::size_t>(0.52 * 120 + 180 * (1.3 - 0.5) / distance) * 200;
      int left = 200;
      int right = 0;
      for (int x = 0; x < 200; x++) {
        if (std::abs(picture[row + x] - gone[row + x]) <= 6) continue;
        left = std::min(left, x);
        right = std::max(right, x + 1);
      }
      EXPECT_NEAR(0.5 * (left + right), 100, 4) << "straight ahead, seed " << seed << " frame " << frame;
      return (right - left) * distance / 180;
    };
    for (const std::int64_t frame : {0, 80, 110, 140}) {
      EXPECT_NEAR(width_at(frame), 1.84, 0.2) << "metres, seed " << seed << " frame " << frame;
    }
  }
}

TEST(Lead, DepartureIsSmoothAndAsStrongAsAsked) {
  SceneOptions options = Quiet(1);
  options.length_s = 60;
  options.lead.distance_m = 7;
  LeaveAt(options.lead, 3, 2);
  Scene scene(options);
  const double step = 0.01;
  double last = 0;
  for (int i = 1; i < 3000; i++) {
    const double time = i * step;
    const double acceleration = (DistanceOfLead(options, time + step) - 2 * DistanceOfLead(options, time) +
                                 DistanceOfLead(options, time - step)) /
                                (step * step);
    ASSERT_GE(acceleration, -1e-6) << time;
    ASSERT_LE(acceleration, 2 + 1e-6) << time;
    ASSERT_NEAR(acceleration, last, 2.6 * step) << "jerk at " << time;
    last = acceleration;
    if (time > 4 && time < 8) {
      ASSERT_NEAR(acceleration, 2, 1e-6) << time;
    }
  }
  EXPECT_DOUBLE_EQ(DistanceOfLead(options, 3), 7);
  EXPECT_NEAR(DistanceOfLead(options, 30) - DistanceOfLead(options, 29), 50 / 3.6, 0.1)
      << "the speed limit of a town";
}

}  // namespace
}  // namespace stopngo::test
