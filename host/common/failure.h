// failure.h: the one exception of the tools: a sentence for the user and an exit code.
#pragma once

#include <stdexcept>
#include <string>

namespace stopngo {

/// Exit codes of every subcommand.
enum class ExitCode { kDone = 0, kFailed = 1, kUsage = 2 };

/// Bad input, told in one sentence that names the thing. main() prints it and exits with the code.
class Failure : public std::runtime_error {
 public:
  explicit Failure(const std::string& sentence, ExitCode code = ExitCode::kFailed)
      : std::runtime_error(sentence), code_(code) {}
  [[nodiscard]] ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

/// An output is a pipe that nobody reads any more (as after "| head"): the end, but no fault to tell.
class NobodyReads : public Failure {
 public:
  explicit NobodyReads(const std::string& output) : Failure(output + ": nobody reads it any more") {}
};

}  // namespace stopngo
