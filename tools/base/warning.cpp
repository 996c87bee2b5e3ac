// warning.cpp: what a user should know, though the work goes on.
#include "base/warning.h"

#include <unistd.h>

#include <cstdio>
#include <mutex>
#include <set>

#include "host/common/text.h"

namespace stopngo {

void Warn(const std::string& sentence) {
  static std::mutex turns;
  static std::set<std::string> said;
  const std::lock_guard lock(turns);
  if (!said.insert(sentence).second) return;
  // On a terminal a progress bar may stand where the line is going to be.
  const char* const clear = isatty(STDERR_FILENO) == 1 ? "\r\x1b[K" : "";
  std::fprintf(stderr, "%sstopngo: warning: %s\n", clear, Escaped(sentence).c_str());
}

}  // namespace stopngo
