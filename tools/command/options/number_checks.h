// number_checks.h: which numbers an option takes. The parser's own checks let pass what is no number, such as nan.
#pragma once

#include <CLI/CLI.hpp>

namespace stopngo {

/// 2^62: seeds are added to.
inline constexpr double kLargestSeed = 4611686018427387904.0;

/// From least to most, both taken.
CLI::Validator Within(double least, double most);
CLI::Validator AboveZero();
CLI::Validator ZeroOrMore();

}  // namespace stopngo
