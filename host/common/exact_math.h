// exact_math.h: exponential, logarithm and sine that give the same bits on every machine.
//
// Trained weights are rebuilt byte for byte, and the C library's functions choose among variants by CPU
// whose last bits differ. These use the IEEE operations alone, and compilers make vectors of them.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace stopngo {

/// e^x within 2e-7 of itself; x is held to ±80, far from overflow.
inline float Exp(float x) {
  constexpr float kLog2e = 1.442695041F;
  constexpr float kLn2High = 0.693359375F;  // few bits: its products with whole numbers are exact
  constexpr float kLn2Low = -2.12194440e-4F;
  x = x < -80.0F ? -80.0F : x;
  x = x > 80.0F ? 80.0F : x;
  // The constant pushes the sum up so that truncation rounds to the nearest whole number.
  const std::int32_t exponent = static_cast<std::int32_t>(x * kLog2e + 128.5F) - 128;
  const auto whole = static_cast<float>(exponent);
  const float r = x - whole * kLn2High - whole * kLn2Low;
  // Taylor: |r| is at most ln(2) / 2, so the term left out is below r^8 / 8! = 5e-9.
  float sum = 1.0F / 5040;
  sum = sum * r + 1.0F / 720;
  sum = sum * r + 1.0F / 120;
  sum = sum * r + 1.0F / 24;
  sum = sum * r + 1.0F / 6;
  sum = sum * r + 0.5F;
  sum = sum * r + 1.0F;
  sum = sum * r + 1.0F;
  return sum * std::bit_cast<float>((exponent + 127) << 23);
}

inline float Logistic(float x) { return 1 / (1 + Exp(-x)); }

/// The natural logarithm of a positive, normal number, within 2e-7 of itself or of 1. The mantissa is taken
/// from 0.75 to 1.5, where s is at most 1/5 and the term left out of the inverse hyperbolic tangent's series
/// is below 2 s^13 / 13 = 2e-10.
inline float Log(float x) {
  const auto bits = std::bit_cast<std::int32_t>(x);
  const std::int32_t exponent = (bits - std::bit_cast<std::int32_t>(0.75F)) >> 23;
  const float mantissa = std::bit_cast<float>(bits - (exponent << 23));
  const float s = (mantissa - 1) / (mantissa + 1);
  const float square = s * s;
  float sum = 1.0F / 11;
  for (int n = 9; n >= 1; n -= 2) sum = sum * square + 1.0F / static_cast<float>(n);
  return static_cast<float>(exponent) * 0.693147181F + 2 * s * sum;
}

/// log(1 + e^x): near 0 for very negative x, near x for large ones.
inline float SoftPlus(float x) { return (x > 0 ? x : 0) + Log(1 + Exp(x > 0 ? -x : x)); }

/// Whole part towards minus infinity. std::floor is a library call below SSE4.1, and this is an inner loop.
inline std::int32_t FloorToInt(float value) {
  const auto whole = static_cast<std::int32_t>(value);
  return whole - (value < static_cast<float>(whole) ? 1 : 0);
}

/// Sine of an angle in turns, within 0.0011: two parabolas and one step of correction.
inline double SineOfTurns(double turns) {
  const double phase = turns - std::floor(turns + 0.5);
  const double parabola = 8 * phase - 16 * phase * std::fabs(phase);
  return parabola + 0.225 * (parabola * std::fabs(parabola) - parabola);
}

}  // namespace stopngo
