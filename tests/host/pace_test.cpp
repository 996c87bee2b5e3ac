// pace_test.cpp: which frames are handed over.
#include "host/common/pace.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace stopngo::test {
namespace {

/// The numbers of the frames that are taken.
std::vector<int> Taken(double rate, double fps, const std::vector<double>& times_s) {
  Pace pace(rate, fps);
  std::vector<int> taken;
  for (std::size_t i = 0; i < times_s.size(); ++i) {
    const auto next_s = i + 1 < times_s.size() ? std::optional(times_s[i + 1]) : std::nullopt;
    if (pace.Takes(times_s[i], next_s)) taken.push_back(static_cast<int>(i));
  }
  return taken;
}

std::vector<double> Even(int frames, double fps) {
  std::vector<double> times_s(static_cast<std::size_t>(frames));
  for (int i = 0; i < frames; ++i) times_s[static_cast<std::size_t>(i)] = i / fps;
  return times_s;
}

TEST(Pace, TakesTheNearestFrames) {
  EXPECT_EQ(Taken(6, 30, Even(12, 30)), (std::vector{0, 5, 10}));
  // 1/6 s lies between the frames 4 and 5 of 25 a second, and 3/6 s halfway between 12 and 13: the earlier.
  EXPECT_EQ(Taken(6, 25, Even(15, 25)), (std::vector{0, 4, 8, 12}));
  EXPECT_EQ(Taken(29.97, 29.97, Even(5, 29.97)), (std::vector{0, 1, 2, 3, 4})) << "as many as there are";
}

TEST(Pace, TakesNoFrameTwiceAndStepsOverGaps) {
  EXPECT_EQ(Taken(10, 4, Even(4, 4)), (std::vector{0, 1, 2, 3}));
  // Half a second without a frame, and a year without one: neither is made up for.
  EXPECT_EQ(Taken(10, 10, {0, 0.1, 0.6, 0.7, 3e7, 3e7 + 0.1}), (std::vector{0, 1, 2, 3, 4, 5}));
}

TEST(Pace, LastFrameStandsForHalfAPeriod) {
  EXPECT_EQ(Taken(6, 30, Even(5, 30)), (std::vector{0})) << "the second one is wanted at 1/6 s, past its end";
  EXPECT_EQ(Taken(6, 30, Even(6, 30)), (std::vector{0, 5}));
  EXPECT_EQ(Taken(6, 30, {0}), (std::vector{0}));
}

TEST(Pace, CountsWhatItTakes) {
  for (const double fps : {6.0, 12.5, 25.0, 29.97, 30.0}) {
    for (int frames = 1; frames < 100; ++frames) {
      const std::vector<int> taken = Taken(6, fps, Even(frames, fps));
      EXPECT_EQ(Pace(6, fps).Count(frames, fps), static_cast<std::int64_t>(taken.size()))
          << fps << " " << frames;
    }
  }
}

}  // namespace
}  // namespace stopngo::test
