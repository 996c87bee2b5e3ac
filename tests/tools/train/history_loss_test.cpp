// history_loss_test.cpp: the history gate's examples, its loss, and what is learnt from them.
#include "train/history_loss.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/random.h"
#include "host/gates/history.h"
#include "host/module/module.h"
#include "host/settings/weights_file.h"
#include "loss_checks.h"
#include "train/history_tally.h"
#include "train/trainer.h"

namespace stopngo::test {
namespace {

constexpr double kPassageRate = 6;
constexpr std::size_t kPassageFeatures = 80;

/// Ten seconds that end in upward motion from 7 s on. What departs was calm before; what passes was not.
FeatureTrack Passage(std::uint64_t seed, bool departs) {
  Random random(seed, 1);
  FeatureTrack track;
  track.features = kPassageFeatures;
  track.columns = 5;
  constexpr double kStart_s = 7;
  std::vector<double> times_s;
  for (int frame = 1; frame <= 60; ++frame) {
    const double time_s = frame / kPassageRate;
    times_s.push_back(time_s);
    const bool moves = time_s > kStart_s || !departs;
    for (std::size_t i = 0; i < kPassageFeatures; ++i) {
      const bool up = i % 4 == 2;
      track.histograms.push_back(static_cast<std::int8_t>(random.Below(3) + (moves && up ? 12U : 0U)));
    }
  }
  std::vector<LabelSpan> labels{{0, 10, Activity::kCrossing}};
  if (departs) labels = {{1, kStart_s, Activity::kStill}, {kStart_s, 8, Activity::kLeadDeparts}};
  SetAims(track, times_s, labels);
  return track;
}

std::vector<FeatureTrack> Passages(std::uint64_t seed, int count) {
  std::vector<FeatureTrack> tracks;
  tracks.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) tracks.push_back(Passage(seed + static_cast<std::uint64_t>(i), i % 2 == 0));
  return tracks;
}

std::vector<double> SomeHistoryNumbers(std::size_t count) {
  Random random(7, 2);
  std::vector<double> numbers(count);
  for (double& number : numbers) number = random.Uniform(-0.4, 0.4);
  return numbers;
}

TEST(HistoryExamples, AreMomentsWithAHistoryThatAreJudged) {
  const std::vector<FeatureTrack> tracks = Passages(1, 1);
  const HistoryExamples examples = ExamplesOf(tracks);
  // The 19th pair ends at 19/6 s, and the departure starts at 42/6 s: 24 moments. Of 18 in time the first six teach nothing.
  EXPECT_EQ(examples.Count(), 24U + 12U);
  EXPECT_EQ(examples.RightCount(), 12U);
  EXPECT_EQ(examples.right[23], 0);
  EXPECT_EQ(examples.right[24], 1);
  // Of the first right moment the present pair moves and the six before it, and none before.
  const auto quantity = [&](std::size_t moment, std::size_t span) {
    return examples.quantities[moment * kHistoryInputs + span * kQuantitiesASpan +
                               static_cast<std::size_t>(HistoryQuantity::kUp)];
  };
  EXPECT_GT(quantity(24, 0), 0.5);
  EXPECT_GT(quantity(24, 4), 0.5);
  EXPECT_LT(std::abs(quantity(24, 6)), 0.2);
}

TEST(HistoryExamples, LeaveOutWhatIsNotJudged) {
  FeatureTrack track = Passage(1, true);
  std::vector<double> times_s;
  for (int frame = 1; frame <= 60; ++frame) times_s.push_back(frame / kPassageRate);
  // Until 3 s after its end a departure is neither right nor wrong once its first 3 s are over; then nobody says.
  SetAims(track, times_s, {{0, 4, Activity::kStill}, {4, 5.5, Activity::kLeadDeparts}});
  const HistoryExamples examples = ExamplesOf({&track, 1});
  EXPECT_EQ(examples.RightCount(), 12U);
  EXPECT_EQ(examples.Count(), 6U + 12U);
}

TEST(HistoryLoss, GradientIsTheLossesSlope) {
  const HistoryExamples examples = ExamplesOf(Passages(1, 4));
  const HistoryLoss loss({3, 1e-3}, examples, 1);
  ExpectGradientIsTheSlope(loss, SomeHistoryNumbers(loss.Parameters()));
}

TEST(HistoryLoss, ThreadsChangeNoBit) {
  const HistoryExamples examples = ExamplesOf(Passages(3, 300));
  ASSERT_GT(examples.Count(), 2 * 4096U) << "three groups";
  const HistoryLoss one({}, examples, 1);
  const HistoryLoss four({}, examples, 4);
  ExpectTheSameBits(one, four, SomeHistoryNumbers(one.Parameters()));
}

// Of one pair motion looks the same in both; the network has to learn what was before.
TEST(HistoryLoss, LearnsCalmBeforeMotion) {
  const HistoryExamples examples = ExamplesOf(Passages(11, 20));
  const HistoryExamples unseen = ExamplesOf(Passages(991, 20));
  const HistoryLoss loss({}, examples, 2);
  const HistoryLoss validation({}, unseen, 2);
  TrainerOptions options;
  options.iterations = 60;
  const Training training = Train(loss, validation, kHistoryHiddens, options, [](const LearningPoint&) {});
  const Network network{
      kHistoryInputs, kHistoryHiddens, {training.parameters.begin(), training.parameters.end()}};
  const HistoryTally tally = TallyHistory(Module(STOPNGO_MODULE_FILE), network, 0.5, unseen);
  EXPECT_EQ(tally.right, 120U);
  EXPECT_EQ(tally.right_open, tally.right);
  EXPECT_EQ(tally.others_open, 0U);
}

}  // namespace
}  // namespace stopngo::test
