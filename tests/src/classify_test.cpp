// classify_test.cpp: the activation table, the fused step, conversion and scores.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "activation.h"
#include "fused.h"
#include "random.h"
#include "saturate.h"
#include "seed.h"
#include "vel_stopngo.h"

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(Activation, TableIsTheMathsLibrarysLogisticFunction) {
  for (DATA_32 i = 0; i < kActivationEntries; ++i) {
    const auto e = static_cast<float>(std::exp(-static_cast<double>(i) / 128));
    const float d = 1.0F + e;
    const float s = 1.0F / d;
    ASSERT_EQ(Activation[i], std::bit_cast<DATA_32>(s - 0.5F)) << i;
  }
  EXPECT_EQ(Activation[1], 0x3AFFFE00U);
  EXPECT_EQ(Activation[128], 0x3E6C9AA0U);
  EXPECT_EQ(Activation[1023], 0x3EFFD3B4U);
}

TEST(Activation, EveryOutputSumHasItsEntry) {
  const std::pair<float, float> cases[] = {
      {0.0F, 0.5F},
      {1.0F, 0.731058598F},
      {-1.0F, 0.268941402F},
      {0.00390625F, 0.5F},
      {0.01171875F, 0.501953065F},
      {-0.001F, 0.5F},
      {2.0F, 0.880797029F},
      {7.9921875F, 0.999662042F},
      {100.0F, 0.999662042F},
      {1e30F, 0.999662042F},
      {kInfinity, 0.999662042F},
      {-kInfinity, 0.000337958336F},
      {-8.0F, 0.000337958336F},
      {kNan, 0.5F},
  };
  for (const auto& [sum, score] : cases) {
    EXPECT_EQ(Classify_Feature_(&sum, &sum, 0, 0), score) << sum;
  }
}

/// Random bit patterns, with exponents near enough to one another that sums round in every way.
float RandomFloat(test::Random& random, int spread) {
  const auto bits = static_cast<std::uint32_t>(random.Next() >> 32);
  const std::uint32_t exponent =
      127 - static_cast<std::uint32_t>(spread) + random.Below(2 * static_cast<std::uint32_t>(spread) + 1);
  return std::bit_cast<float>((bits & 0x807FFFFFU) | exponent << 23);
}

TEST(Fused, RoundsOnceLikeTheMathsLibrary) {
  test::Random random(test::Seed(1));
  const float special[] = {0.0F,
                           -0.0F,
                           1.0F,
                           -1.0F,
                           std::numeric_limits<float>::denorm_min(),
                           kInfinity,
                           -kInfinity,
                           kNan,
                           std::numeric_limits<float>::max(),
                           std::numeric_limits<float>::min()};
  const auto check = [](float a, float b, float c) {
    const float expected = std::fma(a, b, c);
    const float actual = FusedMultiplyAdd(a, b, c);
    if (std::isnan(expected)) {
      EXPECT_TRUE(std::isnan(actual)) << a << " " << b << " " << c;
    } else {
      ASSERT_EQ(std::bit_cast<DATA_32>(actual), std::bit_cast<DATA_32>(expected))
          << a << " " << b << " " << c;
    }
  };
  for (const float a : special) {
    for (const float b : special) {
      for (const float c : special) check(a, b, c);
    }
  }
  for (int i = 0; i < 300000; ++i) {
    const int spread = i % 2 == 0 ? 3 : 40;
    check(RandomFloat(random, spread), RandomFloat(random, spread), RandomFloat(random, spread));
  }
  // Halfway cases: the product's last bit decides, far below the addend's.
  for (int i = 1; i < 2000; ++i) {
    const float half = 1.0F + static_cast<float>(i) * 0x1p-12F;
    check(half, half, 0x1p24F);
    check(half, -half, 0x1p24F + 2.0F * static_cast<float>(i));
    check(0x1p-75F * half, 0x1p-75F, half * 0x1p-126F);
  }
}

TEST(Saturate, ConversionsNeverLeaveTheRange) {
  EXPECT_EQ(SaturatingInt(2147483520.0F), 2147483520);
  EXPECT_EQ(SaturatingInt(2147483648.0F), 2147483647);
  EXPECT_EQ(SaturatingInt(-2147483648.0F), std::numeric_limits<int>::min());
  EXPECT_EQ(SaturatingInt(-kInfinity), std::numeric_limits<int>::min());
  EXPECT_EQ(SaturatingInt(kNan), 0);
  EXPECT_EQ(SaturatingInt(-1.9F), -1);
}

TEST(Conversion, DividesBy128AndStopsAtLength) {
  const std::int8_t input[] = {-128, -1, 0, 84, 127};
  float output[] = {9, 9, 9, 9, 9};
  Classify_Conversion_(input, output, 4);
  const float expected[] = {-1.0F, -0.0078125F, 0.0F, 0.65625F, 9.0F};
  EXPECT_TRUE(std::equal(output, output + 5, expected));
  Classify_Conversion_(nullptr, output, 4);
  Classify_Conversion_(input, nullptr, 4);
  EXPECT_TRUE(std::equal(output, output + 5, expected));
}

TEST(Score, SumsInInputOrderAndRoundsEveryProduct) {
  // In this order the bias and the 1 vanish beside 2^24 and the sum is 0 at last; in any other order they
  // stay. The last product, rounded, cancels the one before; fused, it would leave 2^-4 of itself.
  const float near_one = 1 + 0x1p-12F;
  const float feature[] = {1, 1, 1, 1, near_one};
  const float weight[] = {0x1p24F,         1, -0x1p24F, -(1 + 0x1p-11F) * 0x1p20F, near_one * 0x1p20F,
                          /* bias */ 1,
                          /* output */ 1,
                          /* its bias */ 0};
  EXPECT_EQ(Classify_Feature_(feature, weight, 5, 1), Activate(0.5F));
}

TEST(Score, OddCountsFollowTheFilesLayout) {
  // 3 inputs, 2 nodes: rows of exactly 3 weights.
  const float feature[] = {1, 2, 4};
  const float weight[] = {0.5F,           0.25F, 0.125F,      -1, 0.5F,           0.25F,
                          /* biases */ 0, 1,     /* out */ 2, -3, /* bias */ 0.5F};
  const float first = Activate(1.5F);
  const float second = Activate(2.0F);
  const float sum = std::fma(-3.0F, second, std::fma(2.0F, first, 0.5F));
  EXPECT_EQ(Classify_Feature_(feature, weight, 3, 2), Activate(sum));
  EXPECT_EQ(Classify_Feature_(nullptr, weight, 3, 2), 0.0F);
  EXPECT_EQ(Classify_Feature_(feature, nullptr, 3, 2), 0.0F);
}

}  // namespace
