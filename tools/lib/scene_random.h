// scene_random.h: random numbers, value noise and a sine that give the same bits on every machine.
//
// The standard library's distributions and the C library's sine differ from one implementation to the
// next; integers and the IEEE operations + - * / and sqrt do not. Scenes are built from those alone.
#pragma once

#include <cmath>
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

/// A stream of random numbers (SplitMix64). Each subject of a scene draws from a stream of its own, so
/// that a number more in one leaves the others as they were.
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

/// The streams of a scene's seed. Scripts of brake lights, 0x77 + 7, have the numbers of the first vehicle's
/// paint; other streams would draw those scenes anew, and with them the figures of the default weights.
inline constexpr std::uint64_t kWorldStream = 0x30;
inline constexpr std::uint64_t kShakeStream = 0x5a;
inline constexpr std::uint64_t kBlinkStream = 0x62;
inline constexpr std::uint64_t kScriptStream = 0x77;  ///< and the number of its kind
inline constexpr std::uint64_t kPaintStream = 0x7e;
inline constexpr std::uint64_t kWindscreenStream = 0x91;
inline constexpr std::uint64_t kActorStream = 0xac00;    ///< and the number of its kind
inline constexpr std::uint64_t kOverlayStream = 0xad00;  ///< and the number of its kind

/// Whole part towards minus infinity. std::floor is a library call below SSE4.1, and this is an inner loop.
inline std::int32_t FloorToInt(float value) {
  const auto whole = static_cast<std::int32_t>(value);
  return whole - (value < static_cast<float>(whole) ? 1 : 0);
}

/// 0 … 1 for a point of the integer lattice.
inline float LatticeValue(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  const auto ux = static_cast<std::uint32_t>(x);
  const auto uy = static_cast<std::uint32_t>(y);
  return static_cast<float>(Mix32(ux * 0x8da6b343U ^ uy * 0xd8163841U ^ seed) >> 8) * 0x1p-24F;
}

/// Smooth noise with one lattice point a unit, -1 … 1.
inline float ValueNoise(float x, float y, std::uint32_t seed) {
  const std::int32_t ix = FloorToInt(x);
  const std::int32_t iy = FloorToInt(y);
  const float fx = x - static_cast<float>(ix);
  const float fy = y - static_cast<float>(iy);
  const float sx = fx * fx * (3 - 2 * fx);
  const float sy = fy * fy * (3 - 2 * fy);
  const float v00 = LatticeValue(ix, iy, seed);
  const float v10 = LatticeValue(ix + 1, iy, seed);
  const float v01 = LatticeValue(ix, iy + 1, seed);
  const float v11 = LatticeValue(ix + 1, iy + 1, seed);
  const float top = v00 + (v10 - v00) * sx;
  const float bottom = v01 + (v11 - v01) * sx;
  return 2 * (top + (bottom - top) * sy) - 1;
}

/// Sine of an angle in turns, within 0.0011: two parabolas and one step of correction.
inline double SineOfTurns(double turns) {
  const double phase = turns - std::floor(turns + 0.5);
  const double parabola = 8 * phase - 16 * phase * std::fabs(phase);
  return parabola + 0.225 * (parabola * std::fabs(parabola) - parabola);
}

}  // namespace stopngo
