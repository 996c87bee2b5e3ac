// loss_checks.h: what every loss is held to.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "train/loss.h"

namespace stopngo::test {

inline void ExpectGradientIsTheSlope(const Loss& loss, std::vector<double> parameters) {
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

/// one and other: of the same, with other numbers of threads.
inline void ExpectTheSameBits(const Loss& one, const Loss& other, const std::vector<double>& parameters) {
  std::vector<double> gradient_one(parameters.size());
  std::vector<double> gradient_other(parameters.size());
  EXPECT_EQ(one.Evaluate(parameters, gradient_one), other.Evaluate(parameters, gradient_other));
  EXPECT_EQ(gradient_one, gradient_other);
}

}  // namespace stopngo::test
