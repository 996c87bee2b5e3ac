// random.h: random numbers that are the same on every machine.
//
// The standard library's distributions differ from one implementation to the next; integers do not.
#pragma once

#include <cstdint>

namespace stopngo {

/// Spreads every bit of a value over all others (finaliser of SplitMix64, Steele et al. 2014).
inline std::uint64_t Mix64(std::uint64_t value) {
  value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9U;
  value = (value ^ (value >> 27)) * 0x94d049bb133111ebU;
  return value ^ (value >> 31);
}

/// The 32-bit counterpart: the "lowbias32" finaliser of Wellons' hash prospector.
inline std::uint32_t Mix32(std::uint32_t value) {
  value = (value ^ (value >> 16)) * 0x7feb352dU;
  value = (value ^ (value >> 15)) * 0x846ca68bU;
  return value ^ (value >> 16);
}

/// A stream of random numbers (SplitMix64). The numbers of streams stand in streams.h.
class Random {
 public:
  Random(std::uint64_t seed, std::uint64_t stream) : state_(Mix64(seed) ^ Mix64(~stream)) {}
  std::uint64_t Next() { return Mix64(state_ += 0x9e3779b97f4a7c15U); }
  /// At least low, below high; 53 random bits, as many as a double holds.
  double Uniform(double low, double high) {
    return low + (high - low) * (static_cast<double>(Next() >> 11) * 0x1p-53);
  }
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(Next() % limit); }

 private:
  std::uint64_t state_;
};

}  // namespace stopngo
