// interruption.cpp: lets Ctrl-C end a long run as if its input had ended.
#include "base/interruption.h"

#include <csignal>

namespace stopngo {
namespace {

volatile std::sig_atomic_t interrupted = 0;

}  // namespace

void CatchInterruption() {
  struct sigaction action {};
  action.sa_handler = [](int) { interrupted = 1; };
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool Interrupted() { return interrupted != 0; }

}  // namespace stopngo
