// exact_math_test.cpp: functions with the same bits everywhere are close to those of the library.
#include "host/common/exact_math.h"

#include <gtest/gtest.h>

#include <cmath>

namespace stopngo::test {
namespace {

TEST(ExactMath, IsCloseToTheLibrary) {
  for (float x = -79; x < 79; x += 0.01F) {
    EXPECT_NEAR(Exp(x) / std::exp(static_cast<double>(x)), 1, 1e-6) << x;
  }
  for (float x = 1e-30F; x < 1e30F; x *= 1.1F) {
    EXPECT_NEAR(Log(x), std::log(static_cast<double>(x)), 1e-6 + 2e-7 * std::fabs(std::log(x))) << x;
  }
  for (double turns = -3; turns < 3; turns += 0.001) {
    EXPECT_NEAR(SineOfTurns(turns), std::sin(6.283185307179586 * turns), 0.0011) << turns;
  }
  EXPECT_EQ(FloorToInt(-2), -2);
  EXPECT_EQ(FloorToInt(-2.25F), -3);
  EXPECT_EQ(FloorToInt(2.75F), 2);
}

}  // namespace
}  // namespace stopngo::test
