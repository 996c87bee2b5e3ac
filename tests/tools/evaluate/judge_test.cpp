// judge_test.cpp: which alarms are right.
#include "evaluate/judge.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace stopngo::test {
namespace {

using enum Activity;

/// Verdicts in order of time, as "right@5.2 missed@9".
std::string Verdicts(const std::vector<double>& alarms, const std::vector<LabelSpan>& labels) {
  std::string text;
  for (const Event& event : Judge(alarms, labels)) {
    std::string time = std::to_string(event.time_s);
    time.erase(time.find_last_not_of('0') + 1);
    if (time.back() == '.') time.pop_back();
    text += (text.empty() ? "" : " ");
    text += NameOf(event.verdict);
    text += '@' + time;
  }
  return text;
}

const std::vector<LabelSpan> kDeparture{{0, 5, kStill}, {5, 8, kLeadDeparts}};

TEST(Judge, AlarmIsRightAfterTheStartAndWithinThreeSeconds) {
  EXPECT_EQ(Verdicts({5.04}, kDeparture), "right@5.04");
  EXPECT_EQ(Verdicts({8}, kDeparture), "right@8");
  EXPECT_EQ(Verdicts({}, kDeparture), "missed@5");
  // Before the start and on it nothing can have been seen.
  EXPECT_EQ(Verdicts({4.96}, kDeparture), "false@4.96 missed@5");
  EXPECT_EQ(Verdicts({5}, kDeparture), "false@5 missed@5");
}

// 0.1 × 81 is more than 8.1, and 8.1 less 5.1 is less than 3: the limits must not hang on such bits.
TEST(Judge, RoundingOfTimesDecidesNothing) {
  const std::vector<LabelSpan> labels{{0, 5.1, kStill}, {5.1, 9, kLeadDeparts}};
  EXPECT_EQ(Verdicts({0.1 * 81}, labels), "right@8.1");
  EXPECT_EQ(Verdicts({0.1 * 51}, labels), "missed@5.1 false@5.1");
}

TEST(Judge, LateAlarmIsFalseAndTheDepartureMissed) {
  const std::vector<LabelSpan> labels{{0, 5, kStill}, {5, 10, kLeadDeparts}};
  EXPECT_EQ(Verdicts({8.5}, labels), "missed@5 false@8.5");
  EXPECT_EQ(Verdicts({8.5, 9.5}, labels), "missed@5 false@8.5 false@9.5");
}

TEST(Judge, RepeatsEndThreeSecondsAfterTheSpan) {
  std::vector<LabelSpan> labels = kDeparture;
  labels.push_back({8, 20, kStill});
  EXPECT_EQ(Verdicts({5.5, 7, 10.9, 11.1}, labels), "right@5.5 repeat@7 repeat@10.9 false@11.1");
  // A long span counts as one departure to its end.
  EXPECT_EQ(Verdicts({1.5, 9, 12.9, 13.1}, {{1, 10, kLeadDeparts}, {10, 20, kCrossing}}),
            "right@1.5 repeat@9 repeat@12.9 false@13.1");
}

TEST(Judge, CreepThatEndsSoonCountsLikeAnyDeparture) {
  const std::vector<LabelSpan> labels{{0, 5, kStill}, {5, 5.8, kLeadDeparts}, {5.8, 20, kStill}};
  EXPECT_EQ(Verdicts({7.9}, labels), "right@7.9") << "within 3 s, though the lead stands again";
  EXPECT_EQ(Verdicts({8.1}, labels), "missed@5 false@8.1");
}

TEST(Judge, AlarmBelongsToTheDepartureThatStartedLast) {
  const std::vector<LabelSpan> labels{{0, 1, kLeadDeparts}, {1, 2, kStill}, {2, 5, kLeadDeparts}};
  EXPECT_EQ(Verdicts({2.5}, labels), "missed@0 right@2.5");
  EXPECT_EQ(Verdicts({1.9, 2.5}, labels), "right@1.9 right@2.5");
  // The first one's repeats end where the second begins.
  EXPECT_EQ(Verdicts({0.5, 2.0, 2.5, 3}, labels), "right@0.5 repeat@2 right@2.5 repeat@3");
}

TEST(Judge, AlarmWithoutALabelIsNotJudged) {
  const std::vector<LabelSpan> labels{{1, 2, kStill}, {3, 4, kCrossing}};
  EXPECT_EQ(Verdicts({0.5, 1.5, 2.5, 3.5, 4.5}, labels),
            "unjudged@0.5 false@1.5 unjudged@2.5 false@3.5 unjudged@4.5");
  EXPECT_EQ(Verdicts({1}, {}), "unjudged@1");
  // A departure's own three seconds reach into the unlabelled.
  EXPECT_EQ(Verdicts({2.5, 4.5, 5.5}, {{1, 2, kLeadDeparts}}), "right@2.5 repeat@4.5 unjudged@5.5");
}

}  // namespace
}  // namespace stopngo::test
