// results.h: a subcommand's results, line by line on standard output.
#pragma once

#include <string_view>

namespace stopngo {

/// Writes a line and its newline at once, so that a reader at the other end of a pipe sees a decision
/// when it falls. Throws Failure when standard output cannot be written.
void WriteResult(std::string_view line);

/// Whether standard output is a pipe that nobody reads any more (as after "| head"): no fault to report.
bool NobodyReadsResults();

}  // namespace stopngo
