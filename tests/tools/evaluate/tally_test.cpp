// tally_test.cpp: counts of many clips, and the figures that follow from them.
#include "evaluate/tally.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "evaluate/judge.h"

namespace stopngo::test {
namespace {

using enum Activity;

Tally TallyOf(const std::vector<double>& alarms, const std::vector<LabelSpan>& labels) {
  Tally tally;
  tally.Add(Judge(alarms, labels), labels);
  return tally;
}

TEST(Tally, FalseAlarmsCountForTheLabelTheyFallInto) {
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
  EXPECT_FALSE(TallyOf({}, {{0, 5, kStill}, {5, 8, kLeadDeparts}}).Precision().has_value());
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
  tally.delays_s = {2.0, 0.5, 1.0, 1.5};
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
