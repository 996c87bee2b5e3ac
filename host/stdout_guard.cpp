// stdout_guard.cpp: keeps what the module prints apart from a subcommand's results.
#include "host/stdout_guard.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace stopngo {
namespace {

std::mutex& Turns() {
  static std::mutex turns;
  return turns;
}

}  // namespace

StdoutGuard::StdoutGuard(ModuleLines lines) {
  if (lines == ModuleLines::kNone) return;
  turn_ = std::unique_lock(Turns());
  std::fflush(stdout);
  saved_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (saved_ < 0) return;
  if (lines == ModuleLines::kMessages) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
  } else if (const int sink = open("/dev/null", O_WRONLY | O_CLOEXEC); sink >= 0) {
    dup2(sink, STDOUT_FILENO);
    close(sink);
  }
}

StdoutGuard::~StdoutGuard() {
  if (saved_ < 0) return;
  std::fflush(stdout);
  dup2(saved_, STDOUT_FILENO);
  close(saved_);
}

}  // namespace stopngo
