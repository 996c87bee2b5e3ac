// decide_test.cpp: the decision's counters, timers and reports, frame by frame.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "detector.h"

namespace {

using test::Detector;

/// A detector past its first frame, fed with one still frame: its scores are what ForceOutputSum says.
class Decision : public testing::Test {
 protected:
  static constexpr float kHigh = 1.0F;     // score 0.73
  static constexpr float kMiddle = -0.5F;  // score 0.378: below the threshold, gap 1
  static constexpr float kLow = -2.0F;     // score 0.119: gap 3

  Decision() {
    detector_.Write(frame_.data());
    detector_.ForceOutputSum(kHigh);
  }

  /// Writes count frames of that output sum; the decision after each, as digits.
  std::string Frames(int count, float sum) {
    std::string flags;
    detector_.ForceOutputSum(sum);
    for (int i = 0; i < count; ++i) {
      EXPECT_EQ(detector_.Write(frame_.data()), 0);
      flags += static_cast<char>('0' + detector_->Flag);
    }
    return flags;
  }

  std::vector<std::uint8_t> frame_ = std::vector<std::uint8_t>(800 * 480, 50);
  Detector detector_;
};

TEST_F(Decision, AlarmHoldsAndEnds) {
  EXPECT_EQ(Frames(4, kHigh), "0001");
  EXPECT_EQ(detector_->AlarmCounter[0], 0);
  EXPECT_EQ(detector_->AlarmCounter[1], 0);
  // 20 hold frames, then the first frame that detects again.
  EXPECT_EQ(Frames(21, kHigh), std::string(20, '1') + "0");
  EXPECT_EQ(detector_.TakeDecisions(), (std::vector<int>{1, 0}));
}

TEST_F(Decision, CoolingFollowsBeeping) {
  detector_.Control(VEL_CTRL_STOPNGO_SET_TIME_BEEPING, 5);
  EXPECT_EQ(Frames(25, kHigh), "0001" + std::string(5, '1') + std::string(15, '2') + "0");
  EXPECT_EQ(detector_.TakeDecisions(), (std::vector<int>{1, 2, 0}));
}

TEST_F(Decision, OnlyClearlyLowScoresLowerTheCounter) {
  Frames(3, kHigh);
  Frames(2, kMiddle);
  EXPECT_EQ(detector_->AlarmCounter[0], 3);
  Frames(1, kLow);
  EXPECT_EQ(detector_->AlarmCounter[0], 1);
  Frames(1, kLow);
  EXPECT_EQ(detector_->AlarmCounter[0], 0);
  detector_.Control(VEL_CTRL_STOPNGO_SET_GAP_OP, -4);
  Frames(1, kLow);
  EXPECT_EQ(detector_->AlarmCounter[0], 4);
}

TEST_F(Decision, ScoresEqualToTheThresholdAndNoNumbersDoNotCount) {
  detector_->Classifiy = 0.5F;
  EXPECT_EQ(Frames(9, 0.0F), "000000000");
  EXPECT_EQ(detector_->AlarmCounter[0], 0);
  for (const float threshold : {std::nanf(""), 3e30F}) {
    detector_->Classifiy = threshold;
    detector_->AlarmCounter[0] = 5;
    EXPECT_EQ(Frames(1, kHigh), "0");
    // Not a number: the gap is 0 - 7. Huge: it saturates, and the counter falls.
    EXPECT_EQ(detector_->AlarmCounter[0], std::isnan(threshold) ? 5 : 3);
  }
}

TEST_F(Decision, ExtremeSettings) {
  detector_.Control(VEL_CTRL_STOPNGO_SET_TIME_LEAVING, -7, VEL_CTRL_STOPNGO_SET_TIME_COOLING, 0);
  EXPECT_EQ(Frames(3, kHigh), "111");
  EXPECT_EQ(Frames(1, kLow), "0");
  // The counter passes its end only in wrapped arithmetic.
  detector_->AlarmCounter[0] = 2147483647;
  detector_.Control(VEL_CTRL_STOPNGO_SET_TIME_LEAVING, 2147483647);
  EXPECT_EQ(Frames(1, kHigh), "0");
  EXPECT_EQ(detector_->AlarmCounter[0], -2147483647 - 1);
  EXPECT_EQ(Frames(1, kMiddle), "0");
  EXPECT_EQ(detector_->AlarmCounter[0], 0);
  detector_.Control(VEL_CTRL_STOPNGO_SET_GAP_OP, -2147483647 - 1);
  detector_->AlarmCounter[0] = 1;
  EXPECT_EQ(Frames(1, kLow), "0");
  EXPECT_EQ(detector_->AlarmCounter[0], 0);
}

TEST_F(Decision, FrameSkipSilencesAndAHoldReportsAgain) {
  Frames(4, kHigh);
  EXPECT_EQ(detector_.TakeDecisions(), (std::vector<int>{1}));
  detector_.Control(VEL_CTRL_STOPNGO_SET_FRAME_SKIP, 3, VEL_CTRL_STOPNGO_SET_LOG, 1);
  const std::string printed = test::Printed([&] { EXPECT_EQ(Frames(4, kHigh), "0001"); });
  EXPECT_EQ(printed,
            "[Stop&Go] result:0.000000, AlarmCounter0:0, AlarmCounter1:1, flagOld:0, flag:0, gap:0, skip:2, "
            "GapOp:2\n"
            "[Stop&Go] result:0.000000, AlarmCounter0:0, AlarmCounter1:2, flagOld:0, flag:0, gap:0, skip:1, "
            "GapOp:2\n"
            "[Stop&Go] result:0.000000, AlarmCounter0:0, AlarmCounter1:3, flagOld:0, flag:0, gap:0, skip:0, "
            "GapOp:2\n"
            "[Stop&Go] result:0.000000, AlarmCounter0:0, AlarmCounter1:4, flagOld:0, flag:1, gap:0, skip:0, "
            "GapOp:2\n");
  EXPECT_EQ(detector_.TakeDecisions(), (std::vector<int>{1}));
}

TEST_F(Decision, RaisingTheCoolingTimeStartsAHold) {
  detector_.Control(VEL_CTRL_STOPNGO_SET_TIME_COOLING, 22);
  EXPECT_EQ(Frames(3, kLow), "110");
}

/// What a callback may do to its own detector.
enum class Deed { kUpdate, kClose };
struct Doer {
  Detector* detector;
  Deed deed;
  static int Act(void* self, int /*flag*/) {
    auto* doer = static_cast<Doer*>(self);
    if (doer->deed == Deed::kUpdate) return doer->detector->Update();
    return vel_stopngo_close(doer->detector->Context());
  }
};

TEST_F(Decision, CallbackMayUpdateOrCloseItsDetector) {
  for (const Deed deed : {Deed::kUpdate, Deed::kClose}) {
    Doer doer{&detector_, deed};
    detector_.Update();
    detector_->FlagOld = 0;
    detector_.Control(VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, &Doer::Act,
                      VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, &doer);
    EXPECT_EQ(Frames(5, kHigh).back(), '1');
    EXPECT_EQ(detector_->FrameOld, nullptr);
    EXPECT_EQ(detector_->FlagOld, 1);
    // The next write is a first frame.
    EXPECT_EQ(detector_.Write(frame_.data()), 0);
    EXPECT_EQ(detector_->FrameNew, nullptr);
  }
}

TEST_F(Decision, WithoutACallbackFlagOldFollows) {
  detector_->event_callback = nullptr;
  EXPECT_EQ(Frames(4, kHigh), "0001");
  EXPECT_EQ(detector_->FlagOld, 1);
}

}  // namespace
