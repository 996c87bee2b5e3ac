// ego_path_test.cpp: where our own vehicle is and where it looks.
#include "scene/motion/ego_path.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "scene/space/camera.h"

namespace stopngo::test {
namespace {

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

}  // namespace
}  // namespace stopngo::test
