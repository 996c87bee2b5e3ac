// golden_trace.h: what whole detectors make of moving pictures, a line each, the same on every machine and kernel.
//
// A trace's line holds digests of the analysis buffers, of the vectors and of the scores' bit patterns, and
// the decisions as they follow one another.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "vel_stopngo.h"

namespace test {

/// A way through the detector: what the host hands over, the zoom, the filter.
struct GoldenCase {
  int original, scale, filter;
  std::uint64_t seed;
  [[nodiscard]] std::string Name() const;
};
std::vector<GoldenCase> GoldenCases();

/// Where a detector comes from: the objects that are linked, or a module that was loaded.
struct Origin {
  const VEL_STOPNGO_OPERATION* operations;
  decltype(&Classify_Feature_) score;
};

struct Traced {
  std::string line;
  int scored = 0;  ///< frames
};
Traced Trace(const Origin& origin, const GoldenCase& golden);

/// Lines of a name, a tab and a trace, by name.
std::map<std::string, std::string> RecordedTraces(std::string_view lines);

}  // namespace test
