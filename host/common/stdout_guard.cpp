// stdout_guard.cpp: keeps what the module prints apart from a subcommand's results.
#include "host/common/stdout_guard.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace stopngo {
namespace {

std::mutex turns;

}  // namespace

std::unique_lock<std::mutex> StdoutTurn() { return std::unique_lock(turns); }

StdoutGuard::StdoutGuard(ModuleLines lines) {
  if (lines == ModuleLines::kNone) return;
  turn_ = StdoutTurn();
  std::fflush(stdout);
  saved_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (saved_ < 0) return;
  if (lines == ModuleLines::kMessages) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    return;
  }
  if (lines == ModuleLines::kKept) kept_ = memfd_create("lines", MFD_CLOEXEC);
  const int sink = kept_ >= 0 ? kept_ : open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (sink < 0) return;
  dup2(sink, STDOUT_FILENO);
  if (sink != kept_) close(sink);
}

std::string StdoutGuard::Text() const {
  std::fflush(stdout);
  std::string text;
  std::array<char, 4096> piece{};
  for (;;) {
    const ssize_t count =
        kept_ < 0 ? 0 : pread(kept_, piece.data(), piece.size(), static_cast<off_t>(text.size()));
    if (count <= 0) return text;
    text.append(piece.data(), static_cast<std::size_t>(count));
  }
}

StdoutGuard::~StdoutGuard() {
  if (saved_ < 0) return;
  std::fflush(stdout);
  dup2(saved_, STDOUT_FILENO);
  close(saved_);
  if (kept_ >= 0) close(kept_);
}

}  // namespace stopngo
