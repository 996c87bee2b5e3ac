// fused.h: the multiply-add with one rounding, the same on every machine, without a maths library.
#pragma once

#include <bit>
#include <cstdint>

#include "bitclip.h"

/// A × B + C, rounded once to single precision.
///
/// On aarch64 that is one instruction. Elsewhere it is worked out in double precision, where the product
/// of two single-precision numbers is exact: the sum is rounded to odd (when it is not exact, its last bit
/// is set by moving toward the exact value), and rounding such a sum to single precision cannot round
/// twice, as 53 bits are more than 24 + 2 (Boldo and Melquiond, "Emulation of FMA and correctly rounded
/// sums: proved algorithms using rounding to odd", 2008).
inline real_32 FusedMultiplyAdd(REAL_32 A, REAL_32 B, REAL_32 C) {
#if defined(__aarch64__)
  return __builtin_fmaf(A, B, C);
#else
  const double Product = static_cast<double>(A) * static_cast<double>(B);
  const double Addend = C;
  const double Sum = Product + Addend;
  // What the rounded sum lacks, exactly (Knuth's two-sum). Not a number when the sum is infinite or none;
  // the comparisons below are then false.
  const double Part = Sum - Product;
  const double Lack = (Product - (Sum - Part)) + (Addend - Part);
  auto Bits = std::bit_cast<std::uint64_t>(Sum);
  const bool Inexact = Lack > 0 || Lack < 0;
  if (Inexact && (Bits & 1) == 0) Bits = (Lack > 0) == (Sum > 0) ? Bits + 1 : Bits - 1;
  return static_cast<real_32>(std::bit_cast<double>(Bits));
#endif
}
