// program.cpp: runs the stopngo program as a user would and keeps what it said.
#include "program.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

namespace stopngo::test {

CommandResult Shell(const std::string& command, std::string_view input) {
  const TemporaryFolder folder;
  const std::string in = folder.File("in", input);
  // In braces, so that redirections and pipes in the command go before these.
  const std::string line = "{ " + command + " ; } <" + in + " >" + folder / "out" + " 2>" + folder / "err";
  const int status = std::system(line.c_str());  // NOLINT(cert-env33-c): a shell is what a user has
  CommandResult result;
  if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.exit_code = 128 + WTERMSIG(status);
  result.out = ReadFile(folder / "out");
  result.err = ReadFile(folder / "err");
  return result;
}

CommandResult Stopngo(const std::string& arguments, std::string_view input) {
  return Shell(STOPNGO_PROGRAM " " + arguments, input);
}

void ExpectRefusal(const CommandResult& result, int exit_code, const std::vector<std::string>& words) {
  EXPECT_EQ(result.exit_code, exit_code) << result.err;
  EXPECT_EQ(result.err.rfind("stopngo: ", 0), 0U) << result.err;
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  for (const std::string& word : words) EXPECT_NE(result.err.find(word), std::string::npos) << result.err;
  EXPECT_EQ(result.out, "");
}

}  // namespace stopngo::test
