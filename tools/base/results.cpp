// results.cpp: a subcommand's results, line by line.
#include "base/results.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "host/common/failure.h"
#include "host/common/stdout_guard.h"
#include "host/common/system_error.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

std::FILE* destination = stdout;

}  // namespace

void GiveUpStandardOutput() { destination = stderr; }

void OccupyClosedStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);  // the lowest number that is free
  }
}

void WriteResult(std::string_view line) {
  const auto turn = StdoutTurn();
  // On one terminal a progress bar may stand where the line is going to be.
  if (isatty(fileno(destination)) == 1 && isatty(STDERR_FILENO) == 1) std::fputs("\r\x1b[K", stderr);
  const std::string text = Escaped(line);
  errno = 0;
  const bool written = std::fwrite(text.data(), 1, text.size(), destination) == text.size();
  const bool failed = !written || std::fputc('\n', destination) == EOF || std::fflush(destination) != 0;
  // Beside a file that is whole, what cannot be said on standard error is left out.
  if (failed && destination == stdout) FailOutput();
}

std::string JsonLine(const nlohmann::ordered_json& object) {
  return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

void FailOutput() {
  const std::string reason = LastSystemError();
  pollfd output{STDOUT_FILENO, POLLOUT, 0};
  if (poll(&output, 1, 0) > 0 && (output.revents & (POLLERR | POLLHUP)) != 0)
    throw NobodyReads("standard output");
  throw Failure("standard output: " + reason);
}

}  // namespace stopngo
