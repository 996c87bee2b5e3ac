// training_test.cpp: the loss and its gradient, and that training finds what there is to find.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/exact_math.h"
#include "base/random.h"
#include "train/alarm_loss.h"
#include "train/feature_track.h"
#include "train/trainer.h"

namespace stopngo {
namespace {

constexpr std::size_t kFeatures = 8;
constexpr std::size_t kHiddens = 4;
constexpr double kRate = 8;

/// Noise, and from the start of a departure a steady upward sum in its second half of features.
FeatureTrack NoisyTrack(std::uint64_t seed, bool departs) {
  Random random(seed, 1);
  FeatureTrack track;
  track.features = kFeatures;
  std::vector<double> times_s;
  constexpr double kStart_s = 4;
  for (int frame = 1; frame <= 88; frame++) {
    const double time_s = frame / kRate;
    times_s.push_back(time_s);
    for (std::size_t i = 0; i < kFeatures; i++) {
      const bool moves = departs && i >= kFeatures / 2 && time_s > kStart_s;
      track.histograms.push_back(static_cast<std::int8_t>(random.Below(9) + (moves ? 12U : 0U)));
    }
  }
  std::vector<LabelSpan> labels{{0, 11, Activity::kStill}};
  if (departs) {
    labels = {
        {0, kStart_s, Activity::kStill}, {kStart_s, 7, Activity::kLeadDeparts}, {7, 11, Activity::kStill}};
  }
  SetAims(track, times_s, labels);
  return track;
}

std::vector<FeatureTrack> Tracks(std::uint64_t seed, int count) {
  std::vector<FeatureTrack> tracks;
  tracks.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; i++) {
    tracks.push_back(NoisyTrack(seed + static_cast<std::uint64_t>(i), i % 2 == 0));
  }
  return tracks;
}

LossOptions Options() {
  LossOptions options;
  options.hiddens = kHiddens;
  options.decay = 1e-3;
  return options;
}

std::vector<double> SomeParameters(const AlarmLoss& loss) {
  Random random(7, 2);
  std::vector<double> parameters(loss.Parameters());
  for (double& value : parameters) value = random.Uniform(-0.4, 0.4);
  return parameters;
}

TEST(AlarmLoss, GradientIsTheLossesSlope) {
  const auto tracks = Tracks(1, 6);
  const AlarmLoss loss(Options(), tracks, 1);
  std::vector<double> parameters = SomeParameters(loss);
  std::vector<double> gradient(parameters.size());
  loss.Evaluate(parameters, gradient);
  // Single precision inside: a step that is large beside its rounding, small beside the curvature.
  constexpr double kStep = 2e-2;
  for (std::size_t i = 0; i < parameters.size(); i++) {
    const double at = parameters[i];
    parameters[i] = at + kStep;
    const double above = loss.Evaluate(parameters, {});
    parameters[i] = at - kStep;
    const double below = loss.Evaluate(parameters, {});
    parameters[i] = at;
    const double slope = (above - below) / (2 * kStep);
    EXPECT_NEAR(gradient[i], slope, 2e-3 + 0.01 * std::fabs(slope)) << "parameter " << i;
  }
}

TEST(AlarmLoss, ThreadsChangeNoBit) {
  const auto tracks = Tracks(3, 150);
  const AlarmLoss one(Options(), tracks, 1);
  const AlarmLoss four(Options(), tracks, 4);
  const std::vector<double> parameters = SomeParameters(one);
  std::vector<double> gradient_one(parameters.size());
  std::vector<double> gradient_four(parameters.size());
  EXPECT_EQ(one.Evaluate(parameters, gradient_one), four.Evaluate(parameters, gradient_four));
  EXPECT_EQ(gradient_one, gradient_four);
}

TEST(AlarmLoss, FramesAroundADepartureAskForNothing) {
  const FeatureTrack track = NoisyTrack(1, true);
  ASSERT_EQ(track.departures.size(), 1U);
  // The start is at 4 s, frame k is at (k + 1) / 8 s; the label ends at 7 s, the repeats at 10 s.
  EXPECT_EQ(track.departures[0].begin, 32U);
  EXPECT_EQ(track.departures[0].soon, 44U);
  EXPECT_EQ(track.departures[0].end, 56U);
  EXPECT_EQ(track.quiet[31], 1);
  EXPECT_EQ(track.quiet[32], 0);
  EXPECT_EQ(track.quiet[79], 0);
  EXPECT_EQ(track.quiet[80], 1);
}

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

TEST(PortableMath, IsCloseToTheLibrary) {
  for (float x = -79; x < 79; x += 0.01F) {
    EXPECT_NEAR(Exp(x) / std::exp(static_cast<double>(x)), 1, 1e-6) << x;
  }
  for (float x = 1e-30F; x < 1e30F; x *= 1.1F) {
    EXPECT_NEAR(Log(x), std::log(static_cast<double>(x)), 1e-6 + 2e-7 * std::fabs(std::log(x))) << x;
  }
}

}  // namespace
}  // namespace stopngo
