// history_test.cpp: the quantities of the last three seconds, and the gate that goes by them.
#include "host/gates/history.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/common/sha256.h"
#include "host/gates/gates.h"
#include "host/gates/history_gate.h"
#include "host/settings/sidecar.h"
#include "host/settings/weights_file.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

constexpr int kColumns = 5;
constexpr double kFrame_s = 1.0 / 6;
using Histogram = std::array<std::int8_t, 80>;
using Quantities = std::array<float, kHistoryInputs>;

enum Direction { kDown, kRight, kUp, kLeft };

void Put(Histogram& histogram, std::size_t row, std::size_t column, Direction direction, int pixels) {
  histogram.at((row * kColumns + column) * 4 + direction) = static_cast<std::int8_t>(pixels);
}

float At(const Quantities& quantities, std::size_t span, HistoryQuantity quantity) {
  return quantities.at(span * kQuantitiesASpan + static_cast<std::size_t>(quantity));
}

TEST(History, WaysAreToldApart) {
  struct Case {
    std::size_t row, column;
    Direction direction;
    int up, right;
    float towards_column, towards_row;
  };
  // At the edges and corners motion towards the middle counts in full, in the middle not at all.
  for (const Case& one :
       {Case{0, 0, kDown, -10, 0, 0, 10}, Case{3, 4, kUp, 10, 0, 0, 10}, Case{3, 4, kLeft, 0, -10, 10, 0},
        Case{0, 0, kRight, 0, 10, 10, 0}, Case{1, 2, kLeft, 0, -10, 0, 0}, Case{3, 1, kLeft, 0, -10, -5, 0},
        Case{3, 2, kDown, -10, 0, 0, -10}}) {
    Histogram histogram{};
    Put(histogram, one.row, one.column, one.direction, 10);
    const PairMotion motion = MotionOf(histogram, kColumns);
    EXPECT_TRUE(motion.analysed);
    EXPECT_EQ(motion.sum, 10);
    EXPECT_EQ(motion.up, one.up);
    EXPECT_EQ(motion.right, one.right);
    EXPECT_EQ(motion.towards_column, one.towards_column);
    EXPECT_EQ(motion.towards_row, one.towards_row);
  }
  EXPECT_FALSE(MotionOf({}, kColumns).analysed);
}

TEST(History, ZonesOfMirroredRegionsAreMirrored) {
  for (std::size_t columns = 1; columns <= 7; ++columns) {
    for (std::size_t cell = 0; cell < 2 * columns; ++cell) {
      const std::size_t column = cell % columns;
      const std::size_t opposite_cell = cell - column + columns - 1 - column;
      std::vector<std::int8_t> histogram(8 * columns), mirrored(8 * columns);
      histogram[4 * cell + kRight] = mirrored[4 * opposite_cell + kLeft] = 10;
      histogram[4 * cell + kUp] = mirrored[4 * opposite_cell + kUp] = 3;
      const PairMotion motion = MotionOf(histogram, static_cast<int>(columns));
      const PairMotion other = MotionOf(mirrored, static_cast<int>(columns));
      for (std::size_t zone = 0; zone < kZones; ++zone) {
        const std::size_t across = zone % kZonesAcross;
        const ZoneMotion& opposite = other.zones.at(zone - across + kZonesAcross - 1 - across);
        EXPECT_EQ(motion.zones.at(zone).right, -opposite.right) << columns << " columns, cell " << cell;
        EXPECT_EQ(motion.zones.at(zone).up, opposite.up) << columns << " columns, cell " << cell;
      }
    }
  }
}

TEST(History, SpansAverageWhatTheyHaveAndSayWhatTheyLack) {
  std::array<PairMotion, kHistoryPairs> pairs{};
  Histogram histogram{};
  Put(histogram, 0, 0, kLeft, 40);
  Put(histogram, 3, 2, kUp, 60);
  pairs[0] = pairs[6] = pairs[7] = MotionOf(histogram, kColumns);
  pairs[7].sum = 300;
  Quantities quantities{};
  HistoryQuantities(pairs, quantities);
  EXPECT_NEAR(At(quantities, 0, HistoryQuantity::kMeanSum), std::log(101.0) / 8, 1e-6);
  EXPECT_EQ(At(quantities, 0, HistoryQuantity::kLeastSum), At(quantities, 0, HistoryQuantity::kMeanSum));
  EXPECT_FLOAT_EQ(At(quantities, 0, HistoryQuantity::kUp), 60.0F / 150);
  EXPECT_FLOAT_EQ(At(quantities, 0, HistoryQuantity::kSideways), 40.0F / 150);
  EXPECT_FLOAT_EQ(At(quantities, 0, HistoryQuantity::kTowardsColumn), -40.0F / 150);
  EXPECT_FLOAT_EQ(At(quantities, 0, HistoryQuantity::kTowardsRow), 60.0F / 150);
  // Upwards in the middle of the lower half, to the left in the upper left.
  const auto zones = static_cast<std::size_t>(HistoryQuantity::kCount);
  for (std::size_t i = 0; i < 2 * kZones; ++i) {
    EXPECT_FLOAT_EQ(quantities.at(zones + i), i == 8 ? 60.0F / 150 : i == 1 ? -40.0F / 150 : 0.0F) << i;
  }
  // Of pairs 6 to 8 the last is missing.
  EXPECT_NEAR(At(quantities, 5, HistoryQuantity::kMeanSum), std::log(201.0) / 8, 1e-6);
  EXPECT_NEAR(At(quantities, 5, HistoryQuantity::kLeastSum), std::log(101.0) / 8, 1e-6);
  EXPECT_FLOAT_EQ(At(quantities, 5, HistoryQuantity::kUp), 60.0F / 250);
  for (std::size_t span = 0; span < kHistorySpans.size(); ++span) {
    const bool there = span == 0 || span == 5;
    EXPECT_EQ(At(quantities, span, HistoryQuantity::kThere), there ? 1 : 0);
    EXPECT_EQ(At(quantities, span, HistoryQuantity::kMeanSum) != 0, there);
  }
}

// A trainer and a device have to see the same: any change here makes weights worthless.
TEST(History, QuantitiesHaveTheSameBitsEverywhere) {
  std::array<PairMotion, kHistoryPairs> pairs{};
  std::uint32_t state = 1;
  for (PairMotion& pair : pairs) {
    Histogram histogram{};
    for (std::int8_t& entry : histogram) {
      state = state * 1664525 + 1013904223;
      entry = static_cast<std::int8_t>((state >> 24) % 85);
    }
    if (state >> 30 != 0) pair = MotionOf(histogram, kColumns);
  }
  Quantities quantities{};
  HistoryQuantities(pairs, quantities);
  std::uint32_t mixed = 2166136261;
  for (const float quantity : quantities) mixed = (mixed ^ std::bit_cast<std::uint32_t>(quantity)) * 16777619;
  EXPECT_EQ(mixed, 3492145355U);
}

TEST(History, EveryPairBelongsToOneSpan) {
  std::size_t next = 0;
  for (const HistorySpan& span : kHistorySpans) {
    EXPECT_EQ(span.first, next);
    EXPECT_GE(span.last, span.first);
    next = span.last + 1;
  }
  EXPECT_EQ(next, kHistoryPairs);
}

/// A network whose score is above 0.5 where the present sum is above 100, and the farthest span had motion.
std::string CalmBefore() {
  Network network{kHistoryInputs, kHistoryHiddens,
                  std::vector<float>((kHistoryInputs + 2) * kHistoryHiddens + 1)};
  const auto sum = static_cast<float>(std::log(101.0) / 8);
  network.numbers[0] = 1000;                                        // node 0: the present pair's mean sum
  network.numbers[kHistoryInputs * kHistoryHiddens] = -1000 * sum;  // its bias
  const std::size_t farthest = 7 * kQuantitiesASpan;
  network.numbers[kHistoryInputs + farthest + 6] = 20;  // node 1: is the farthest span there
  network.numbers[kHistoryInputs * kHistoryHiddens + 1] = -10;
  network.numbers[(kHistoryInputs + 1) * kHistoryHiddens] = 10;
  network.numbers[(kHistoryInputs + 1) * kHistoryHiddens + 1] = 10;
  network.numbers.back() = -15;
  return WeightsBytes(network);
}

TEST(HistoryGate, IsClosedWithoutThreeSecondsAndByItsScore) {
  const TemporaryFolder folder;
  const Module module(STOPNGO_MODULE_FILE);
  Settings settings;
  settings.history_weights = folder.File("h.bin", CalmBefore());
  HistoryGate gate(module, settings);
  Histogram histogram{};
  std::string states;
  // Calm, from 25 on motion, from 30 to 34 a hold; a gap before 36. Letters: too short, against, open.
  for (int i = 0; i < 40; ++i) {
    histogram.fill(static_cast<std::int8_t>(i >= 25 ? 2 : 1));
    GateFrame frame;
    frame.time_s = (i < 36 ? i : i + 30) * kFrame_s;
    frame.decided = i > 0;
    if (i > 0 && (i < 30 || i > 34)) frame.histogram = histogram;
    frame.columns = kColumns;
    gate.Before(frame.time_s, std::nullopt);
    states += gate.Reason() == nullptr ? '.' : std::string(gate.Reason()) == "history too short" ? 's' : 'a';
    gate.After(frame);
  }
  EXPECT_EQ(states, std::string(20, 's') + "aaaaaa....." + "aaaaa" + "ssss");
}

TEST(HistoryGate, WeightsThatAreNotItsOwnAreRefused) {
  const TemporaryFolder folder;
  const std::string bytes = CalmBefore();
  ExpectWords(FailureOf([] { (void)ReadHistoryWeights(""); }), {"--history-weights"});
  const std::string shorter = folder.File("short.bin", bytes.substr(4));
  ExpectWords(FailureOf([&] { (void)ReadHistoryWeights(shorter); }), {"short.bin", "9860", "152 inputs"});
  std::string infinite = bytes;
  infinite.replace(0, 4, std::string("\x00\x00\x80\x7f", 4));
  const std::string bad = folder.File("bad.bin", infinite);
  ExpectWords(FailureOf([&] { (void)ReadHistoryWeights(bad); }), {"bad.bin", "finite"});
  const std::string good = folder.File("good.bin", bytes);
  EXPECT_EQ(WeightsBytes(ReadHistoryWeights(good)), bytes);
  Sidecar sidecar{kHistoryInputs, kHistoryHiddens, std::string(64, '0'), {}};
  (void)folder.File("good.bin.json", SidecarText(sidecar));
  ExpectWords(FailureOf([&] { (void)ReadHistoryWeights(good); }), {"good.bin.json", "SHA-256"});
  sidecar.sha256 = Sha256(bytes);
  (void)folder.File("good.bin.json", SidecarText(sidecar));
  ExpectWords(FailureOf([&] { (void)ReadHistoryWeights(good); }), {"good.bin.json", "no history gate"});
  sidecar.gate = "history";
  (void)folder.File("good.bin.json", SidecarText(sidecar));
  EXPECT_EQ(WeightsBytes(ReadHistoryWeights(good)), bytes);
}

}  // namespace
}  // namespace stopngo::test
