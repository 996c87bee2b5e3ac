// program.h: runs the stopngo program as a user would and keeps what it said.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/temporary_folder.h"

namespace stopngo::test {

struct CommandResult {
  int exit_code = -1;  ///< 128 + the signal's number when a signal ended the program
  std::string out;
  std::string err;
};

/// Runs a command line in a shell.
CommandResult Shell(const std::string& command, std::string_view input = {});

/// Runs "stopngo ARGUMENTS" in a shell, so that arguments may redirect and pipe. input: what standard
/// input gives.
CommandResult Stopngo(const std::string& arguments, std::string_view input = {});

/// What every refusal looks like: its exit code, one sentence with the words asked for, no results.
void ExpectRefusal(const CommandResult& result, int exit_code, const std::vector<std::string>& words);

}  // namespace stopngo::test
