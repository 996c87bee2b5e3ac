// alarm_loss_test.cpp: the loss and its gradient.
#include "train/alarm_loss.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "base/random.h"
#include "noisy_tracks.h"

namespace stopngo::test {
namespace {

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

}  // namespace
}  // namespace stopngo::test
