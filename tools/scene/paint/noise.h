// noise.h: value noise that gives the same bits on every machine.
#pragma once

#include <cstdint>

#include "base/random.h"
#include "host/common/exact_math.h"

namespace stopngo {

/// 0 … 1 for a point of the integer lattice.
inline float LatticeValue(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  const auto ux = static_cast<std::uint32_t>(x);
  const auto uy = static_cast<std::uint32_t>(y);
  return static_cast<float>(Mix32(ux * 0x8da6b343U ^ uy * 0xd8163841U ^ seed) >> 8) * 0x1p-24F;
}

/// How far a value lies beyond the lattice point below it.
inline float Fraction(float value) { return value - static_cast<float>(FloorToInt(value)); }

/// 0 … 1 with a share, without corners at its ends.
template <typename Number>
Number Eased(Number share) {
  return share * share * (3 - 2 * share);
}

/// Smooth noise with one lattice point a unit, -1 … 1.
inline float ValueNoise(float x, float y, std::uint32_t seed) {
  const std::int32_t ix = FloorToInt(x);
  const std::int32_t iy = FloorToInt(y);
  const float sx = Eased(x - static_cast<float>(ix));
  const float sy = Eased(y - static_cast<float>(iy));
  const float v00 = LatticeValue(ix, iy, seed);
  const float v10 = LatticeValue(ix + 1, iy, seed);
  const float v01 = LatticeValue(ix, iy + 1, seed);
  const float v11 = LatticeValue(ix + 1, iy + 1, seed);
  const float top = v00 + (v10 - v00) * sx;
  const float bottom = v01 + (v11 - v01) * sx;
  return 2 * (top + (bottom - top) * sy) - 1;
}

}  // namespace stopngo
