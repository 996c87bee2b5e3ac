// progress.cpp: a progress bar on standard error, drawn only when that is a terminal.
#include "base/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace stopngo {
namespace {

using std::chrono::duration;
using std::chrono::steady_clock;

// Ten pictures a second look alive; more would slow a terminal down, and with it the run.
constexpr std::chrono::milliseconds kInterval{100};
constexpr int kBarWidth = 30;

}  // namespace

Progress::Progress(std::string title, std::optional<std::int64_t> total)
    : title_(std::move(title)),
      total_(total),
      terminal_(isatty(STDERR_FILENO) == 1),
      start_(steady_clock::now()),
      drawn_(start_) {}

Progress::~Progress() {
  if (terminal_) std::fputs("\r\x1b[K", stderr);
}

void Progress::Step() {
  ++done_;
  if (!terminal_ || steady_clock::now() - drawn_ < kInterval) return;
  drawn_ = steady_clock::now();
  Draw();
}

void Progress::Draw() {
  const double per_second = static_cast<double>(done_) / duration<double>(drawn_ - start_).count();
  if (total_.has_value() && *total_ > 0) {
    // An input may hold more frames than it announced.
    const double share = std::min(1.0, static_cast<double>(done_) / static_cast<double>(*total_));
    const int filled = static_cast<int>(share * kBarWidth);
    const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
    std::fprintf(stderr, "\r%s [%s] %3.0f %%  %.0f/s\x1b[K", title_.c_str(), bar.c_str(), 100 * share,
                 per_second);
  } else {
    std::fprintf(stderr, "\r%s %lld  %.0f/s\x1b[K", title_.c_str(), static_cast<long long>(done_),
                 per_second);
  }
}

}  // namespace stopngo
