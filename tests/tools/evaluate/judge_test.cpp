// judge_test.cpp: which alarms are right, and what the counts say.
#include "evaluate/judge.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "evaluate/tally.h"

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

Tally TallyOf(const std::vector<double>& alarms, const std::vector<LabelSpan>& labels) {
  Tally tally;
  tally.Add(Judge(alarms, labels), labels);
  return tally;
}

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

TEST(Judge, FalseAlarmsCountForTheLabelTheyFallInto) {
  const std::vector<LabelSpan> labels{{0, 10, kEgoMoving}, {10, 30, kStill}, {30, 36, kCrossing}};
  const Tally tally = TallyOf({3, 10, 31}, labels);
  EXPECT_EQ(tally.false_driving, 1);
  EXPECT_EQ(tally.false_standing, 2) << "where two labels meet, the later one has begun";
  EXPECT_DOUBLE_EQ(tally.driving_s, 10);
  EXPECT_DOUBLE_EQ(tally.standing_s, 26);
  EXPECT_DOUBLE_EQ(tally.FalseStanding()->value, 2 * 3600.0 / 26);
  EXPECT_DOUBLE_EQ(tally.FalseDriving()->value, 360);
}

TEST(Tally, HasNoFiguresWithoutAnythingToDivideBy) {
  const Tally empty;
  EXPECT_FALSE(empty.Recall().has_value());
  EXPECT_FALSE(empty.Precision().has_value());
  EXPECT_FALSE(empty.FalseStanding().has_value());
  EXPECT_FALSE(empty.FalseDriving().has_value());
  EXPECT_FALSE(empty.Delay_s(0.5).has_value());
  EXPECT_FALSE(TallyOf({}, kDeparture).Precision().has_value());
}

// Against published tables: Wilson's interval of 97 in 100 and of 10 in 10, the exact Poisson limits of
// 0, 3 and 10 events.
TEST(Tally, IntervalsAreThoseOfTheTables) {
  Tally tally;
  tally.departures = 100;
  tally.right = 97;
  EXPECT_NEAR(tally.Recall()->low, 0.9155, 1e-4);
  EXPECT_NEAR(tally.Recall()->high, 0.9897, 1e-4);
  tally.departures = tally.right = 10;
  EXPECT_NEAR(tally.Recall()->low, 0.7225, 1e-4);
  EXPECT_DOUBLE_EQ(tally.Recall()->high, 1);
  tally.standing_s = 3600;
  for (const auto& [count, bound] : {std::pair(0, 2.9957), std::pair(3, 7.7537), std::pair(10, 16.962)}) {
    tally.false_standing = count;
    EXPECT_NEAR(tally.FalseStanding()->bound, bound, 1e-3);
  }
  tally.false_standing = 2000;
  EXPECT_NEAR(tally.FalseStanding()->bound, 2075, 2) << "sums of that many terms may not overflow";
}

TEST(Tally, DelaysAreNearestRanks) {
  Tally tally;
  for (const double delay_s : {2.0, 0.5, 1.0, 1.5}) {
    Tally one;
    one.delays_s = {delay_s};
    tally.Add(one);
  }
  EXPECT_DOUBLE_EQ(*tally.Delay_s(0.5), 1.0);
  EXPECT_DOUBLE_EQ(*tally.Delay_s(0.51), 1.5);
  EXPECT_DOUBLE_EQ(*tally.Delay_s(0.9), 2.0);
}

TEST(Tally, BetterKeepsTheLimitThenCatchesMoreThenIsFaster) {
  const auto make = [](int right, int false_standing, double delay_s) {
    return Tally{.departures = 10,
                 .right = right,
                 .false_standing = false_standing,
                 .standing_s = 3600,
                 .delays_s = {delay_s}};
  };
  constexpr double kLimit = 2;
  const std::vector<Tally> ranked{make(9, 2, 1.0), make(9, 0, 1.5),  make(8, 0, 0.5),
                                  make(0, 0, 9),   make(10, 3, 1.0), make(10, 4, 1.0)};
  for (std::size_t i = 0; i < ranked.size(); ++i) {
    for (std::size_t j = 0; j < ranked.size(); ++j) {
      EXPECT_EQ(Better(ranked[i], ranked[j], kLimit), i < j) << i << ", " << j;
    }
  }
}

}  // namespace
}  // namespace stopngo::test
