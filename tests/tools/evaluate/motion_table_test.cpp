// motion_table_test.cpp: which pairs of frames count where, and what is told of them.
#include "evaluate/motion_table.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "evaluate/pair_figures.h"

namespace stopngo::test {
namespace {

TEST(PairFigures, IsOfAllCellsAndNetToTheSides) {
  // Cells of down, right, up, left; the fourth is none of the features.
  const std::vector<std::int8_t> histogram{1, 7, 2, 0, 0, 1, 4, 0, 0, 0, 0, 20, 9, 9, 9, 9};
  const PairFigures motion = ReadPairFigures(1.5, histogram, 12);
  EXPECT_EQ(motion.time_s, 1.5);
  EXPECT_EQ(motion.sum, 35);
  EXPECT_EQ(motion.sideways, 12) << "8 to the right, 20 to the left";
  EXPECT_EQ(motion.up, 6);
  EXPECT_EQ(motion.cells, 2) << "the one between has a sum of 5";
}

/// Ten seconds, four pairs a second, the sum of each its number; a departure from 4 to 8 s.
ClipRun Counting() {
  ClipRun run;
  run.labels = {{0, 4, Activity::kStill}, {4, 8, Activity::kLeadDeparts}};
  for (int i = 0; i < 40; ++i) {
    const double sum = 10.0 * i;
    run.motion.push_back(
        {.time_s = 0.25 * i, .sum = sum, .sideways = sum / 2, .up = sum / 4, .cells = i % 20});
  }
  return run;
}

TEST(MotionTable, PairsCountUnderTheLabelOfTheirTimeAndTheKindOfTheirClip) {
  std::vector<Clip> clips(3);
  clips[0].kind = clips[2].kind = "street";
  clips[1].kind = "scene";
  const std::vector<ClipRun> runs(3, Counting());
  const std::vector<MotionRow> rows = MotionByLabel(clips, runs);
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0].what + rows[0].kind, "stillstreet");
  EXPECT_EQ(rows[1].what + rows[1].kind, "stillscene");
  EXPECT_EQ(rows[0].count, 32);
  EXPECT_EQ(rows[1].count, 16);
  EXPECT_EQ(rows[1].sum, (Spread{20, 40, 80, 110, 140}));
  EXPECT_EQ(rows[1].all_zero, 1 / 16.0);
  EXPECT_EQ(rows[1].sideways, (Spread{0.5, 0.5, 0.5, 0.5, 0.5})) << "none of those whose sum is 50 or less";
  EXPECT_EQ(rows[2].what, "lead_departs");
  EXPECT_EQ(rows[2].sum[0], 170) << "what no label names is in none of them";
}

TEST(MotionTable, DeparturesCountOnceByTheirMedian) {
  std::vector<ClipRun> runs(3, Counting());
  for (PairFigures& pair : runs[1].motion) pair.sum *= 2;
  runs[2].labels.clear();
  const std::vector<MotionRow> rows = MotionOfDepartures(runs);
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[0].what, "-2 ... 0 s");
  EXPECT_EQ(rows[0].count, 2);
  EXPECT_EQ(rows[1].sum[0], 170) << "of 160 and 170 the upper one";
  EXPECT_EQ(rows[1].sum[4], 340);
}

TEST(MotionTable, OfNoClipsIsEmptyAndStillTold) {
  EXPECT_TRUE(MotionByLabel({}, {}).empty());
  EXPECT_EQ(MotionLines(MotionOfDepartures({})).size(), 6U);
}

}  // namespace
}  // namespace stopngo::test
