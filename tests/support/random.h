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
  /// The script, which a fuzzer writes, gives the upper 16 bits of the first numbers: what draws go by.
  Random(std::uint64_t seed, std::span<const std::uint8_t> script) : state_(seed), script_(script) {}

  std::uint64_t Next() {
    const std::uint64_t drawn = Generated();
    if (script_.size() < 2) return drawn;
    const std::uint64_t told = script_[0] * 256U + script_[1];
    script_ = script_.subspan(2);
    return (drawn & (~std::uint64_t{0} >> 16)) | told << 48;
  }
  /// 0 … count - 1.
  std::uint32_t Below(std::uint32_t count) {
    return static_cast<std::uint32_t>((Next() >> 32) * count >> 32);
  }
  /// A multiple of 2^-23 in -1 … 1.
  float Signed() {
    return static_cast<float>(static_cast<std::int64_t>(Next() >> 40) - (1 << 23)) / (1 << 23);
  }
  /// With noise, whatever the script.
  void Fill(std::span<std::uint8_t> bytes) {
    for (std::size_t i = 0; i < bytes.size(); i += sizeof(std::uint64_t)) {
      const std::uint64_t drawn = Generated();
      std::memcpy(&bytes[i], &drawn, std::min(sizeof drawn, bytes.size() - i));
    }
  }

 private:
  std::uint64_t Generated() {
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31);
  }

  std::uint64_t state_;
  std::span<const std::uint8_t> script_;
};

}  // namespace test
