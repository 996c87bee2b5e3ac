// results.cpp: a subcommand's results, line by line on standard output.
#include "results.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>

#include "failure.h"
#include "system_error.h"

namespace stopngo {

void WriteResult(std::string_view line) {
  // On one terminal a progress bar may stand where the line is going to be.
  if (isatty(STDOUT_FILENO) == 1 && isatty(STDERR_FILENO) == 1) std::fputs("\r\x1b[K", stderr);
  errno = 0;
  const bool written = std::fwrite(line.data(), 1, line.size(), stdout) == line.size();
  if (!written || std::fputc('\n', stdout) == EOF || std::fflush(stdout) != 0) {
    throw Failure("standard output: " + LastSystemError());
  }
}

bool NobodyReadsResults() {
  pollfd output{STDOUT_FILENO, POLLOUT, 0};
  return poll(&output, 1, 0) > 0 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

}  // namespace stopngo
