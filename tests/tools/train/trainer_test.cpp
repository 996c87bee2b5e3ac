// trainer_test.cpp: training finds what there is to find, and ends.
#include "train/trainer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "noisy_tracks.h"
#include "train/alarm_loss.h"

namespace stopngo::test {
namespace {

TEST(Train, FindsAPlainDifferenceAndRepeatsItself) {
  const auto tracks = Tracks(11, 40);
  const auto unseen = Tracks(991, 20);
  const AlarmLoss loss(Options(), tracks, 2);
  const AlarmLoss validation(Options(), unseen, 2);
  TrainerOptions options;
  options.iterations = 60;
  std::vector<LearningPoint> told;
  const auto tell = [&told](const LearningPoint& point) { told.push_back(point); };
  const Training first = Train(loss, validation, kHiddens, options, tell);
  EXPECT_LT(first.validation, 0.25 * told.front().validation);
  const Training second = Train(loss, validation, kHiddens, options, tell);
  EXPECT_EQ(first.parameters, second.parameters);
  options.seed = 2;
  EXPECT_NE(Train(loss, validation, kHiddens, options, tell).parameters, first.parameters);
}

TEST(Train, StopsWhenValidationGetsNoBetter) {
  const auto tracks = Tracks(21, 10);
  // Labels at random: nothing that holds for others can be learnt.
  auto unseen = Tracks(31, 10);
  for (std::size_t i = 0; i + 1 < unseen.size(); i += 2)
    std::swap(unseen[i].histograms, unseen[i + 1].histograms);
  const AlarmLoss loss(Options(), tracks, 1);
  const AlarmLoss validation(Options(), unseen, 1);
  TrainerOptions options;
  options.patience = 5;
  options.iterations = 1000;
  const Training training = Train(loss, validation, kHiddens, options, [](const LearningPoint&) {});
  EXPECT_LT(training.curve.size(), 200U);
  EXPECT_GT(training.curve.back().validation, training.validation);
}

}  // namespace
}  // namespace stopngo::test
