// stdout_guard.h: keeps what the module prints apart from a subcommand's results.
#pragma once

#include <mutex>
#include <string>

namespace stopngo {

/// Where the module's lines go instead of standard output, where results, JSON Lines or a picture
/// stream may be on their way.
enum class ModuleLines {
  kNone,      ///< there are none to come: nothing is done
  kMessages,  ///< to standard error
  kDropped,
  kKept,  ///< for Text
};

/// Held while a line is written to standard output: it waits for guards on other threads, and they for it.
[[nodiscard]] std::unique_lock<std::mutex> StdoutTurn();

/// Leads standard output elsewhere while it lives. Standard output is the whole program's: guards on
/// other threads wait for each other.
class StdoutGuard {
 public:
  explicit StdoutGuard(ModuleLines lines);
  ~StdoutGuard();
  StdoutGuard(const StdoutGuard&) = delete;
  StdoutGuard& operator=(const StdoutGuard&) = delete;

  /// What was kept so far; empty where nothing could be.
  [[nodiscard]] std::string Text() const;

 private:
  std::unique_lock<std::mutex> turn_;
  int saved_ = -1;  ///< the real standard output; -1: nothing to put back
  int kept_ = -1;   ///< receives what is kept
};

}  // namespace stopngo
