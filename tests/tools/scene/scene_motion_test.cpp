// scene_motion_test.cpp: how vehicles and the camera move over time, without any picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "scene/lens/shake.h"
#include "scene/motion/ego_path.h"
#include "scene/motion/track.h"
#include "scene/space/offset.h"

namespace stopngo {
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

TEST(EgoPath, TurnsToTheRightWhileItDrives) {
  // 3 m/s, and from second 1 a tenth of a turn a second for about two seconds.
  const EgoPath path({3, {}}, {0, {{1, 0.1, 1, 0.1}, {3, 0, 1, 0.1}}}, 10);
  Camera before;
  path.Place(before, 0.5);
  EXPECT_NEAR(before.x_m, 0, 1e-9);
  EXPECT_NEAR(before.z_m, 1.5, 0.01);
  Camera after;
  path.Place(after, 6);
  EXPECT_GT(after.x_m, 3);
  EXPECT_NEAR(after.sine, std::sin(6.28318530717959 * 0.2), 0.02);
  EXPECT_NEAR(after.sine * after.sine + after.cosine * after.cosine, 1, 1e-9);
  for (double time_s = 0; time_s < 9; time_s += 0.1) {
    Camera from;
    Camera to;
    path.Place(from, time_s);
    path.Place(to, time_s + 0.1);
    EXPECT_NEAR(std::hypot(to.x_m - from.x_m, to.z_m - from.z_m), 0.3, 0.005) << time_s;
  }
}

TEST(EgoPath, RestingMeansThatTheCameraStays) {
  const EgoPath path({0, {{4, 5, 2, 0.5}, {8, 0, 3, 0.5}}}, {0, {{1, 0.05, 1, 0.1}, {2, 0, 1, 0.1}}}, 20);
  int resting = 0;
  for (double time_s = 0; time_s < 19; time_s += 0.05) {
    if (!path.Rests(time_s)) continue;
    resting++;
    Camera at;
    Camera soon;
    path.Place(at, time_s);
    path.Place(soon, time_s + 0.02);
    EXPECT_EQ(at.horizon, soon.horizon) << time_s;
    EXPECT_EQ(at.x_m, soon.x_m) << time_s;
    EXPECT_EQ(at.z_m, soon.z_m) << time_s;
    EXPECT_EQ(at.sine, soon.sine) << time_s;
  }
  EXPECT_GT(resting, 100);
  const std::vector<Span> moving = path.Moving(20);
  ASSERT_EQ(moving.size(), 2U) << "the turn, then the drive";
  EXPECT_LT(moving[0].end_s, moving[1].start_s);
}

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
}  // namespace stopngo
