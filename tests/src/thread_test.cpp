// thread_test.cpp: detectors on threads of their own do not see one another.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "detector.h"
#include "moving_picture.h"
#include "random.h"
#include "seed.h"

namespace {

/// The vectors and scores of a detector fed with a picture of its own.
std::vector<std::int8_t> Life(std::uint64_t seed, int filter) {
  test::Detector detector;
  test::MovingPicture picture(800, 480, seed);
  test::Random random(seed);
  for (float& weight : detector->Weight) weight = random.Signed();
  detector.Control(VEL_CTRL_STOPNGO_SET_FILTER, filter, VEL_CTRL_STOPNGO_ROI_X, 290, VEL_CTRL_STOPNGO_ROI_Y,
                   200);
  std::vector<std::int8_t> seen;
  for (int i = 0; i < 12; ++i) {
    EXPECT_EQ(detector.Write(picture.Next().data()), 0);
    seen.insert(seen.end(), detector->Motion, detector->Motion + 480);
    seen.push_back(static_cast<std::int8_t>(detector->Flag));
  }
  return seen;
}

TEST(Threads, ContextsRunSideBySide) {
  constexpr int kThreads = 4;
  std::vector<std::vector<std::int8_t>> alone(kThreads);
  for (int i = 0; i < kThreads; ++i) alone[i] = Life(test::Seed(100 + i), i % 3);
  std::vector<std::vector<std::int8_t>> together(kThreads);
  {
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
      threads.emplace_back([&together, i] { together[i] = Life(test::Seed(100 + i), i % 3); });
  }
  EXPECT_EQ(together, alone);
  EXPECT_NE(alone[0], alone[3]);
}

}  // namespace
