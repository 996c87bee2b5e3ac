// check.h: the questions of the self-test.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "golden_trace.h"
#include "kernels/kernels.h"

namespace selftest {

/// What is not as it should be, a line each.
using Findings = std::vector<std::string>;

/// Random calls of every kernel of every table, against the first table's.
Findings CheckKernels(std::span<const KernelTable> tables, std::uint64_t calls);

/// Every stride-th golden trace against the recorded one.
Findings CheckTraces(const test::Origin& origin, std::string_view recorded, std::size_t stride);

/// Microseconds that a frame takes with the default settings: the middle one of many, or of what half a second
/// allows.
double FrameTime_us(const test::Origin& origin);

/// What the checks are at, for when a signal ends them.
const char* AtWork();

}  // namespace selftest
