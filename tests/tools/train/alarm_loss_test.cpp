// alarm_loss_test.cpp: the loss and its gradient.
#include "train/alarm_loss.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "base/random.h"
#include "loss_checks.h"
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
  ExpectGradientIsTheSlope(loss, SomeParameters(loss));
}

TEST(AlarmLoss, ThreadsChangeNoBit) {
  const auto tracks = Tracks(3, 150);
  const AlarmLoss one(Options(), tracks, 1);
  const AlarmLoss four(Options(), tracks, 4);
  ExpectTheSameBits(one, four, SomeParameters(one));
}

}  // namespace
}  // namespace stopngo::test
