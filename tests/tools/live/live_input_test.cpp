// live_input_test.cpp: everything that can happen to a camera, played behind the reader's back.
#include "live/live_input.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "host/common/failure.h"
#include "support/failure_text.h"

namespace stopngo::test {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{20};
// Longer than any of this takes on a loaded machine under a sanitizer.
constexpr milliseconds kForGood{20'000};

enum class Then { kEnds, kFails, kHangs, kHangsInTheSystem };

/// What one opening of the input comes to.
struct Opening {
  std::string refusal;  ///< it cannot be opened
  int frames = 0;       ///< 100 ms apart by their stamps, as fast as they are asked for
  Then then = Then::kEnds;
};

/// A read that no callback is asked during.
void WaitInTheSystem() {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), -1);
  EXPECT_EQ(errno, EINTR);
  for (const int end : ends) close(end);
}

class PlayedSource : public FrameSource {
 public:
  PlayedSource(const Opening& opening, std::function<bool()> gives_up, RemarkHearer hear)
      : opening_(opening), gives_up_(std::move(gives_up)), hear_(std::move(hear)) {
    info_.width = 2;
    info_.height = 1;
    info_.fps = 10;
    info_.description = "played";
  }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    if (given_ < opening_.frames) {
      frame.index = given_;
      frame.time_s = 0.1 * given_++;
      frame.pixels.assign(2, static_cast<std::uint8_t>(frame.index));
      return true;
    }
    if (opening_.then == Then::kFails) throw Failure("played: unplugged");
    if (opening_.then == Then::kHangsInTheSystem) WaitInTheSystem();
    while (opening_.then == Then::kHangs && !gives_up_()) std::this_thread::sleep_for(milliseconds(1));
    hear_({"played: ends early", true});
    return false;
  }

 private:
  Opening opening_;
  std::function<bool()> gives_up_;
  RemarkHearer hear_;
  SourceInfo info_;
  int given_ = 0;
};

/// Each opening once, in turn; then it is as good as wrong usage, which ends the test and not the waiting.
OpenLive Play(std::deque<Opening> openings) {
  return [openings = std::move(openings)](std::function<bool()> gives_up, RemarkHearer hear) mutable {
    if (openings.empty()) throw Failure("played to the end", ExitCode::kUsage);
    const Opening opening = openings.front();
    openings.pop_front();
    if (!opening.refusal.empty()) throw Failure(opening.refusal);
    return std::unique_ptr<FrameSource>(
        std::make_unique<PlayedSource>(opening, std::move(gives_up), std::move(hear)));
  };
}

LiveLimits Quick() {
  LiveLimits limits;
  limits.silence_s = 0.2;
  limits.first_wait_s = 0.001;
  limits.longest_wait_s = 0.004;
  return limits;
}

struct Played {
  std::vector<LiveFrame> frames;
  std::string end;  ///< the failure that it ended with
  LiveFigures figures;
};

Played PlayToTheEnd(std::deque<Opening> openings, const LiveLimits& limits) {
  LiveInput input("played", Play(std::move(openings)), limits);
  Played played;
  LiveFrame frame;
  played.end = FailureOf([&] {
    for (;;) {
      const LiveInput::Taken taken = input.Take(frame, kPatience);
      if (taken == LiveInput::Taken::kEnd) return;
      if (taken == LiveInput::Taken::kFrame) played.frames.push_back(frame);
    }
  });
  played.figures = input.Figures();
  return played;
}

TEST(LiveInputTest, TheNewestFrameWinsAndTheOthersAreCounted) {
  LiveInput input("played", Play({{"", 10, Then::kHangs}}), {});
  while (input.Figures().frames < 10) std::this_thread::sleep_for(milliseconds(1));
  LiveFrame frame;
  ASSERT_EQ(input.Take(frame, kForGood), LiveInput::Taken::kFrame);
  EXPECT_EQ(frame.luma.index, 9);
  EXPECT_EQ(frame.luma.pixels, std::vector<std::uint8_t>(2, 9));
  EXPECT_TRUE(frame.anew)
      << "the first frame of the connection was dropped, and with it that nothing came before";
  EXPECT_EQ(frame.format, (FrameFormat{2, 1, 10}));
  EXPECT_EQ(input.Figures().dropped, 9);
  EXPECT_EQ(input.Take(frame, kPatience), LiveInput::Taken::kNothing);
}

TEST(LiveInputTest, TroublesAreTriedAgainAndTheClockGoesOn) {
  const Played played = PlayToTheEnd({{"played: no such device"},
                                      {"played: busy"},
                                      {"", 1, Then::kFails},
                                      {"", 1, Then::kEnds},
                                      {"", 1, Then::kHangs},
                                      {"", 1, Then::kHangsInTheSystem}},
                                     Quick());
  EXPECT_EQ(played.end, "played to the end");
  ASSERT_EQ(played.frames.size(), 4U);
  for (std::size_t i = 0; i < played.frames.size(); ++i) {
    EXPECT_EQ(played.frames[i].luma.index, static_cast<std::int64_t>(i));
    EXPECT_TRUE(played.frames[i].anew);
    if (i == 0) continue;
    EXPECT_GT(played.frames[i].luma.time_s, played.frames[i - 1].luma.time_s);
  }
  EXPECT_GT(played.frames[3].luma.time_s - played.frames[2].luma.time_s, Quick().silence_s);
  EXPECT_EQ(played.figures.troubles, 6);
  EXPECT_EQ(played.figures.reconnects, 3);
  EXPECT_EQ(played.figures.damages, 1) << "what was broken off is no damage";
  EXPECT_EQ(played.figures.last_trouble, "played: no frame for 0.2 s");
  EXPECT_FALSE(played.figures.connected);
}

// A network camera takes its time before the first frame, which is no silence.
TEST(LiveInputTest, OpeningMayTakeLongerThanAFrame) {
  const OpenLive slow = [](const std::function<bool()>& gives_up, RemarkHearer hear) {
    const SteadyTime opened = std::chrono::steady_clock::now() + milliseconds(400);
    while (std::chrono::steady_clock::now() < opened) {
      if (gives_up()) throw Failure("played: given up");
      std::this_thread::sleep_for(milliseconds(1));
    }
    return std::make_unique<PlayedSource>(Opening{"", 1}, gives_up, std::move(hear));
  };
  LiveLimits limits = Quick();
  limits.retries = 0;
  const auto end = [&] {
    LiveInput input("played", slow, limits);
    LiveFrame frame;
    return FailureOf([&] {
      while (input.Take(frame, kPatience) != LiveInput::Taken::kEnd) continue;
    });
  };
  limits.opening_s = 20;
  EXPECT_EQ(end(), "played: it has ended");
  limits.opening_s = 0.3;
  EXPECT_EQ(end(), "played: nothing came for 0.3 s");
}

TEST(LiveInputTest, RetriesComeToAnEnd) {
  LiveLimits limits = Quick();
  limits.retries = 2;
  const Played refused = PlayToTheEnd({{"played: 1"}, {"played: 2"}, {"played: 3"}, {"played: 4"}}, limits);
  EXPECT_EQ(refused.end, "played: 3");
  limits.retries = 0;
  EXPECT_EQ(PlayToTheEnd({{"", 1, Then::kFails}, {"", 1}}, limits).end, "played: unplugged");
}

TEST(LiveInputTest, WhatHasAnEndIsNotOpenedAnew) {
  LiveLimits limits = Quick();
  limits.ends = true;
  const Played played = PlayToTheEnd({{"", 3}, {"", 1}}, limits);
  EXPECT_EQ(played.end, "no failure");
  ASSERT_FALSE(played.frames.empty());
  EXPECT_EQ(played.frames.back().luma.index, 2);
  EXPECT_EQ(played.figures.troubles, 0);
  // A recording that is played at its own pace, frames 100 ms apart.
  limits.paced = true;
  const SteadyTime start = std::chrono::steady_clock::now();
  PlayToTheEnd({{"", 4}}, limits);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(300));
}

TEST(LiveInputTest, WhatCannotBeOpenedTwiceIsWaitedFor) {
  LiveLimits limits = Quick();
  limits.reopens = false;
  limits.silence_s = 0.001;
  LiveInput input("played", Play({{"", 1, Then::kHangs}}), limits);
  LiveFrame frame;
  ASSERT_EQ(input.Take(frame, kForGood), LiveInput::Taken::kFrame);
  EXPECT_EQ(input.Take(frame, kPatience), LiveInput::Taken::kNothing);
  EXPECT_EQ(input.Figures().troubles, 0);
}

TEST(LiveInputTest, IsOpenedAnewWhenAskedAndThatIsNoTrouble) {
  LiveInput input("played", Play({{"", 1, Then::kHangsInTheSystem}, {"", 1, Then::kHangs}}), {});
  LiveFrame frame;
  ASSERT_EQ(input.Take(frame, kForGood), LiveInput::Taken::kFrame);
  input.OpenAnew();
  ASSERT_EQ(input.Take(frame, kForGood), LiveInput::Taken::kFrame);
  EXPECT_EQ(frame.luma.index, 1);
  EXPECT_TRUE(frame.anew);
  EXPECT_EQ(input.Figures().troubles, 0);
}

// Whoever ends the program does not wait for a camera that is silent.
TEST(LiveInputTest, EndsWhateverIsWaitedFor) {
  LiveLimits patient;
  patient.silence_s = 1e6;
  patient.first_wait_s = 1e6;
  for (const Opening& opening : std::vector<Opening>{
           {"", 0, Then::kHangs}, {"", 1, Then::kHangsInTheSystem}, {"played: no such device"}}) {
    LiveInput input("played", Play({opening}), patient);
    LiveFrame frame;
    input.Take(frame, kPatience);
  }
}

}  // namespace
}  // namespace stopngo::test
