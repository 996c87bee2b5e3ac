// activation.h: the logistic function as the perceptron knows it: a table and a look-up.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "bitclip.h"
#include "saturate.h"

inline constexpr DATA_32 kActivationEntries = 1024;
/// Table steps for each unit of a node's sum.
inline constexpr int kActivationSteps = 128;

namespace activation_detail {

/// exp(x) for 0 ≤ x < 8 by its series, whose terms are all positive, so that nothing cancels: 64 of them
/// reach far below the last bit of a double.
consteval double Exponential(double x) {
  double Term = 1;
  double Sum = 1;
  for (int n = 1; n < 64; ++n) {
    Term *= x / n;
    Sum += Term;
  }
  return Sum;
}

/// Entry i is the logistic function at i / 128 less one half, rounded to single precision at each step.
consteval std::array<DATA_32, kActivationEntries> Tabulate() {
  std::array<DATA_32, kActivationEntries> Table{};
  for (DATA_32 i = 0; i < kActivationEntries; ++i) {
    const auto e = static_cast<real_32>(1 / Exponential(static_cast<double>(i) / kActivationSteps));
    const real_32 d = 1.0F + e;
    const real_32 s = 1.0F / d;
    Table[i] = std::bit_cast<DATA_32>(s - 0.5F);
  }
  return Table;
}

}  // namespace activation_detail

/// Bit patterns of single-precision numbers.
inline constexpr std::array<DATA_32, kActivationEntries> Activation = activation_detail::Tabulate();

/// The logistic function of a node's sum, whatever it is: the magnitude rounded down to a table step and
/// held at the last entry, the sign put back. A sum that is not a number gives 0.5.
inline real_32 Activate(real_32 Node) {
  constexpr DATA_32 kSignBit = 0x80000000U;
  constexpr auto kLast = static_cast<inte_32>(kActivationEntries - 1);
  const auto Look = std::bit_cast<DATA_32>(Node);
  const DATA_32 Sign = Look & kSignBit;
  const inte_32 Librarian = SaturatingInt(std::bit_cast<real_32>(Look ^ Sign) * kActivationSteps);
  const DATA_32 Entry = Activation[static_cast<DATA_32>(Librarian < kLast ? Librarian : kLast)];
  return std::bit_cast<real_32>(Entry | Sign) + 0.5F;
}
