// frames.h: what one frame costs, by configuration, content, area and number of blocks.
#pragma once

#include <functional>

namespace bench {

/// The cost of one call of its argument, in nanoseconds or in instructions.
using Meter = std::function<double(const std::function<void(int calls)>& run)>;

/// Prints tab-separated lines for the fastest kernels, in groups that gnuplot tells apart. The first group is
/// followed by the worst case in it.
void PrintFrameCosts(const Meter& meter, const char* unit);

}  // namespace bench
