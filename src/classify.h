// classify.h: the size of a network.
#pragma once

#include <cstdint>

#include "saturate.h"

/// How many numbers the weights of a network are: a row of inputs, a bias and an output weight a hidden
/// node, and the output bias. Does not wrap: more than there are numbers are the largest one.
constexpr std::uint64_t NetworkLength(std::uint64_t Inputs, std::uint64_t Hiddens) {
  return SaturatingAdd(SaturatingMultiply(SaturatingAdd(Inputs, 2), Hiddens), 1);
}
