// chance.h: choices drawn at random.
#pragma once

#include <cstdint>
#include <iterator>

#include "base/random.h"

namespace stopngo {

/// True in a share of the cases.
inline bool Chance(Random& random, double share) { return random.Uniform(0, 1) < share; }

/// -1, the left, or 1, the right, as often.
inline double EitherSide(Random& random) { return random.Below(2) == 0 ? -1 : 1; }

/// Each of a list as often; what is to come more often stands in it more often.
template <typename List>
const auto& OneOf(const List& list, Random& random) {
  return list[random.Below(static_cast<std::uint32_t>(std::size(list)))];
}

inline float UniformFloat(Random& random, double low, double high) {
  return static_cast<float>(random.Uniform(low, high));
}

/// Uniform in its logarithm, which small numbers are not lost in.
double LogUniform(Random& random, double low, double high);

}  // namespace stopngo
