// random.h: random numbers that are the same on every machine.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

namespace test {

/// SplitMix64 (Steele, Lea and Flood, 2014).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31);
  }
  /// 0 … count - 1.
  std::uint32_t Below(std::uint32_t count) {
    return static_cast<std::uint32_t>((Next() >> 32) * count >> 32);
  }
  /// A multiple of 2^-23 in -1 … 1.
  float Signed() {
    return static_cast<float>(static_cast<std::int64_t>(Next() >> 40) - (1 << 23)) / (1 << 23);
  }
  void Fill(std::span<std::uint8_t> bytes) {
    for (std::size_t i = 0; i < bytes.size(); i += sizeof(std::uint64_t)) {
      const std::uint64_t drawn = Next();
      std::memcpy(&bytes[i], &drawn, std::min(sizeof drawn, bytes.size() - i));
    }
  }

 private:
  std::uint64_t state_;
};

}  // namespace test
