// track_test.cpp: how vehicles move over time: speeds, jerk, rest.
#include "scene/motion/track.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace stopngo::test {
namespace {

constexpr double kStep_s = 0.01;
// From rest to 10 m/s, soon after down to 2 m/s, and to a halt.
const MotionOptions kDrive{0, {{2, 10, 2, 0.8}, {4, 2, 3, 0.5}, {15, 0, 4, 0.3}}};

TEST(Track, ReachesItsSpeedsWithinAccelerationAndJerk) {
  const Track track(kDrive);
  double acceleration = 0;
  for (double time_s = 0; time_s < 25; time_s += kStep_s) {
    const double speed = track.Speed(time_s);
    const double next = track.Speed(time_s + kStep_s);
    EXPECT_NEAR(track.Position(time_s + kStep_s) - track.Position(time_s), kStep_s * (speed + next) / 2, 1e-5)
        << time_s;
    const double reached = (next - speed) / kStep_s;
    EXPECT_LE(std::fabs(reached), 4 + 1e-9) << time_s;
    EXPECT_LE(std::fabs(reached - acceleration), kStep_s * 4 / 0.3 + 1e-6) << time_s;
    acceleration = reached;
  }
  // The second change waits until the first has ended: 10 m/s at 2 m/s² take 5 s and the build-up.
  EXPECT_EQ(track.Speed(1.99), 0);
  EXPECT_NEAR(track.Speed(7.8), 10, 1e-9);
  EXPECT_NEAR(track.Speed(12), 2, 1e-9);
  EXPECT_EQ(track.Speed(20), 0);
  EXPECT_EQ(track.Position(20), track.Position(1000)) << "what rests may not creep";
}

TEST(Track, MovingIsWhereThePositionChanges) {
  const Track track(kDrive);
  const std::vector<Span> spans = track.Moving(30);
  ASSERT_EQ(spans.size(), 1U);
  EXPECT_EQ(spans[0].start_s, 2);
  for (double time_s = 0; time_s < 30; time_s += kStep_s) {
    if (std::fabs(time_s - spans[0].end_s) < 2 * kStep_s) continue;  // too slow there for a double's last bit
    const bool within = time_s + kStep_s > spans[0].start_s && time_s < spans[0].end_s;
    EXPECT_EQ(track.Position(time_s) != track.Position(time_s + kStep_s), within) << time_s;
  }
  EXPECT_EQ(track.Moving(6)[0].end_s, 6);
  EXPECT_TRUE(track.Moving(1).empty());
}

// Too weak a change for its build-up: it ends at the speed all the same.
TEST(Track, SmallChangesDoNotOvershoot) {
  const Track track({5, {{1, 5.1, 3, 2}}});
  for (double time_s = 0; time_s < 5; time_s += kStep_s) EXPECT_LE(track.Speed(time_s), 5.1 + 1e-9) << time_s;
  EXPECT_EQ(track.Speed(4), 5.1);
}

TEST(Track, HaltsAndStartsWithoutAJump) {
  Track track(-3, 6);
  track.Stop(2, 3);
  track.Start(7, 2, 5);
  for (double time_s = -1; time_s < 14; time_s += 0.01) {
    EXPECT_NEAR(track.Position(time_s + 0.01), track.Position(time_s), 0.061) << time_s;
  }
}

}  // namespace
}  // namespace stopngo::test
