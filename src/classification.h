// classification.h: the size of a network.
#pragma once

#include <cstdint>

#include "bitclip.h"
#include "saturate.h"

/// How many numbers the weights of a network are: a row of inputs, a bias and an output weight a hidden
/// node, and the output bias. Does not wrap.
constexpr std::uint64_t NetworkLength(DATA_32 Inputs, DATA_32 Hiddens) {
  return SaturatingAdd(SaturatingMultiply(std::uint64_t{Inputs} + 2, Hiddens), 1);
}
