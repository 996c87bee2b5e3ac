// warning.cpp: what a user should know, though the work goes on.
#include "base/warning.h"

#include <unistd.h>

#include <cstdio>
#include <mutex>
#include <set>

#include "host/common/text.h"

namespace stopngo {
namespace {

std::mutex turns;

void PrintLine(const char* kind, const std::string& sentence) {
  // On a terminal a progress bar may stand where the line is going to be.
  const char* const clear = isatty(STDERR_FILENO) == 1 ? "\r\x1b[K" : "";
  std::fprintf(stderr, "%sstopngo: %s%s\n", clear, kind, Escaped(sentence).c_str());
}

}  // namespace

void Warn(const std::string& sentence) {
  static std::set<std::string> said;
  const std::lock_guard lock(turns);
  if (said.insert(sentence).second) PrintLine("warning: ", sentence);
}

void Report(const std::string& sentence) {
  const std::lock_guard lock(turns);
  PrintLine("", sentence);
}

}  // namespace stopngo
