// timeline_test.cpp: which frames of a stream are handed over.
#include "host/gstreamer/timeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "host/common/luma.h"
#include "random.h"
#include "seed.h"

namespace stopngo::test {
namespace {

using gst::Moment;
using gst::Timeline;

constexpr double kRate = 6;

GstClockTime Stamp(double time_s) { return static_cast<GstClockTime>(std::floor(time_s * 1e9)); }

/// What the command takes, which reads one frame ahead.
std::vector<std::size_t> TakenAhead(const std::vector<double>& times_s, double fps) {
  Pace pace(kRate, fps);
  std::vector<std::size_t> taken;
  for (std::size_t i = 0; i < times_s.size(); ++i) {
    const auto next_s = i + 1 < times_s.size() ? std::optional(times_s[i + 1]) : std::nullopt;
    if (pace.Takes(times_s[i], next_s)) taken.push_back(i);
  }
  return taken;
}

/// start_s: what the first frame's time stamp is; durations: whether frames tell how long they last.
std::vector<std::size_t> Taken(const std::vector<double>& times_s, double fps, double start_s,
                               bool durations) {
  Timeline timeline(kRate, fps);
  std::vector<std::size_t> taken;
  for (std::size_t i = 0; i < times_s.size(); ++i) {
    const GstClockTime pts = Stamp(start_s + times_s[i]);
    const double next_s =
        i + 1 < times_s.size() ? times_s[i + 1] : times_s[i] + 1 / (fps > 0 ? fps : kUnknownRate);
    const GstClockTime duration = durations ? Stamp(start_s + next_s) - pts : GST_CLOCK_TIME_NONE;
    if (timeline.At(pts, duration).taken) taken.push_back(i);
  }
  return taken;
}

TEST(Timeline, TakesTheFramesThatTheCommandTakes) {
  for (const double fps : {30.0, 25.0, 30000 / 1001.0, 24000 / 1001.0, 15.0, 12.0, 60.0, 6.0, 7.0}) {
    std::vector<double> times_s(600);
    for (std::size_t i = 0; i < times_s.size(); ++i) times_s[i] = static_cast<double>(i) / fps;
    const std::vector<std::size_t> expected = TakenAhead(times_s, fps);
    for (const double start_s : {0.0, 3600.04}) {
      EXPECT_EQ(Taken(times_s, fps, start_s, true), expected) << fps;
      EXPECT_EQ(Taken(times_s, fps, start_s, false), expected) << fps << " by the rate of the stream";
    }
  }
}

/// Times of frames, each of which comes after a step that is drawn.
template <typename Step>
std::vector<double> Uneven(Step step) {
  std::vector<double> times_s(400);
  double time_s = 0;
  for (double& time : times_s) {
    time = time_s;
    time_s += step();
  }
  return times_s;
}

TEST(Timeline, TakesTheNearestOfFramesAsTheyCome) {
  ::test::Random random(::test::Seed(1));
  for (int round = 0; round < 20; ++round) {
    const auto times_s = Uneven([&] { return 0.135 + 0.125 * random.Signed(); });
    EXPECT_EQ(Taken(times_s, 0, 5, true), TakenAhead(times_s, kUnknownRate));
  }
}

// A camera that leaves frames out. The step before says how long a frame lasts, and is wrong now and then.
TEST(Timeline, WhereNothingTellsHowLongFramesLastTheOneBesideMayBeTaken) {
  ::test::Random random(::test::Seed(2));
  for (int round = 0; round < 20; ++round) {
    const auto times_s =
        Uneven([&] { return (random.Signed() > 0.7 ? 2 : 1) * (1 + 0.1 * random.Signed()) / 30; });
    const std::vector<std::size_t> nearest = TakenAhead(times_s, kUnknownRate);
    const std::vector<std::size_t> guessed = Taken(times_s, 0, 5, false);
    ASSERT_NEAR(static_cast<double>(guessed.size()), static_cast<double>(nearest.size()), 1) << "at the end";
    for (std::size_t i = 0; i < std::min(guessed.size(), nearest.size()); ++i)
      EXPECT_LE(guessed[i] - nearest[i] + 1, 2U) << i;
  }
}

TEST(Timeline, JumpsStartAnew) {
  Timeline timeline(kRate, 30);
  const auto at = [&](double time_s) { return timeline.At(Stamp(time_s), GST_SECOND / 30); };
  EXPECT_EQ(at(10).before, Moment::Break::kStart);
  EXPECT_EQ(at(10.9).before, Moment::Break::kNone) << "less than a second";
  const Moment gap = at(12.0);
  EXPECT_EQ(gap.before, Moment::Break::kGap);
  EXPECT_TRUE(gap.taken) << "the first one of what comes";
  EXPECT_NEAR(gap.time_s, 2.0, 1e-6) << "time goes on";
  EXPECT_NEAR(gap.step_s, 1.1, 1e-6);
  EXPECT_FALSE(at(12 + 1 / 30.0).taken);
  EXPECT_TRUE(at(12.0).falls);
  EXPECT_TRUE(at(11.5).falls);
  const Moment back = at(3);
  EXPECT_EQ(back.before, Moment::Break::kReturn);
  EXPECT_TRUE(back.taken);
  EXPECT_EQ(back.time_s, 0);
  timeline.Forget();
  EXPECT_EQ(at(3.01).before, Moment::Break::kStart);
}

TEST(Timeline, FramesWithoutATimeStampAreEven) {
  Timeline timeline(kRate, 30);
  std::vector<int> taken;
  for (int i = 0; i < 12; ++i) {
    if (timeline.At(GST_CLOCK_TIME_NONE, GST_CLOCK_TIME_NONE).taken) taken.push_back(i);
  }
  EXPECT_EQ(taken, (std::vector{0, 5, 10}));
}

TEST(Timeline, FewFramesAreAllTaken) {
  Timeline slow(kRate, 0.5);
  for (int i = 0; i < 5; ++i) {
    const Moment moment = slow.At(Stamp(2.0 * i), GST_CLOCK_TIME_NONE);
    EXPECT_TRUE(moment.taken);
    EXPECT_EQ(moment.before, i == 0 ? Moment::Break::kStart : Moment::Break::kNone);
  }
  Timeline all(0, 30);
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(all.At(Stamp(i / 30.0), GST_CLOCK_TIME_NONE).taken);
}

}  // namespace
}  // namespace stopngo::test
