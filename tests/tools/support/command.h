// command.h: runs the stopngo program as a user would and keeps what it said.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

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

/// A folder of its own for a test, removed with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// The path of a name inside.
  [[nodiscard]] std::string operator/(std::string_view name) const { return (path_ / name).string(); }
  /// Writes a file and gives its path.
  [[nodiscard]] std::string File(std::string_view name, std::string_view content) const;
  /// How many files lie inside.
  [[nodiscard]] std::size_t Files() const;

 private:
  std::filesystem::path path_;
};

}  // namespace stopngo::test
