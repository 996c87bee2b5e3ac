// saturate.h: conversions and sums whose result is defined for every input.
#pragma once

#include <cstdint>
#include <limits>

#include "bitclip.h"

/// Rounds toward zero; magnitudes beyond the range give its ends, not-a-number gives 0. This is what
/// the target's conversion instruction does; the language leaves such conversions undefined.
constexpr inte_32 SaturatingInt(real_32 Value) {
  constexpr real_32 kLimit = 2147483648.0F;  // 2^31, the first value out of range
  if (Value >= kLimit) return std::numeric_limits<inte_32>::max();
  if (Value < -kLimit) return std::numeric_limits<inte_32>::min();
  return Value == Value ? static_cast<inte_32>(Value) : 0;
}

/// Sums and differences of counters wrap at 32 bits.
constexpr inte_32 WrappingAdd(inte_32 A, inte_32 B) {
  return static_cast<inte_32>(static_cast<data_32>(A) + static_cast<data_32>(B));
}
constexpr inte_32 WrappingSubtract(inte_32 A, inte_32 B) {
  return static_cast<inte_32>(static_cast<data_32>(A) - static_cast<data_32>(B));
}

/// Byte counts and offsets stay at the largest value instead of wrapping, so that a comparison with the
/// size of a buffer is always right.
constexpr std::uint64_t SaturatingAdd(std::uint64_t A, std::uint64_t B) {
  std::uint64_t Sum = 0;
  return __builtin_add_overflow(A, B, &Sum) ? std::numeric_limits<std::uint64_t>::max() : Sum;
}
constexpr std::uint64_t SaturatingMultiply(std::uint64_t A, std::uint64_t B) {
  std::uint64_t Product = 0;
  return __builtin_mul_overflow(A, B, &Product) ? std::numeric_limits<std::uint64_t>::max() : Product;
}
