// results.h: a subcommand's results, line by line: on standard output, or on standard error where that is one of the
// command's files.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace stopngo {

/// To be called when the program starts. A standard stream that was closed for it fails when it is used: the first
/// file that is opened would be taken for it otherwise, and get its text.
void OccupyClosedStreams();

/// Standard output is a file of the command's ("-"): results go to standard error from now on.
void GiveUpStandardOutput();

/// Writes a line, escaped, and its newline at once, so that a reader at the other end of a pipe sees a decision
/// when it falls. From any thread. Throws as FailOutput.
void WriteResult(std::string_view line);

/// A JSON object as one line. Names of files and clips may hold bytes that are no UTF-8, which JSON has no
/// place for: they are replaced.
std::string JsonLine(const nlohmann::ordered_json& object);

/// For after standard output could not be written: throws NobodyReads or, with errno's reason, Failure.
[[noreturn]] void FailOutput();

}  // namespace stopngo
