// file.cpp: whole files, read at once, as far as their kind goes.
#include "host/common/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "host/common/descriptor.h"
#include "host/common/failure.h"
#include "host/common/system_error.h"

namespace stopngo {
namespace {

/// What a file is that cannot be read as its kind; null where it can.
const char* Instead(const struct stat& status, bool stream) {
  if (S_ISREG(status.st_mode)) return nullptr;
  if (S_ISDIR(status.st_mode)) return "a folder";
  if (S_ISBLK(status.st_mode)) return "a disk";
  if (stream) return nullptr;
  return S_ISFIFO(status.st_mode) ? "a pipe" : "a device";
}

}  // namespace

std::string ReadFile(const std::string& path, const FileKind& kind) {
  const auto fail = [&](const std::string& reason) { throw Failure((path + ": ").append(reason)); };
  errno = 0;
  // A pipe that may not be one is opened without waiting for a writer. A terminal must not become ours.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | (kind.stream ? 0 : O_NONBLOCK)));
  struct stat status {};
  if (file.Number() < 0 || fstat(file.Number(), &status) != 0) fail(LastSystemError());
  const auto refuse_size = [&](const std::string& size) {
    fail("has " + size + " bytes, and " + std::string(kind.name) + " at most " + std::to_string(kind.limit) +
         std::string(kind.hint));
  };
  if (const char* const instead = Instead(status, kind.stream))
    fail(std::string(instead) + ", not " + std::string(kind.name));
  const bool sized = S_ISREG(status.st_mode);
  if (sized && static_cast<std::uint64_t>(status.st_size) > kind.limit)
    refuse_size(std::to_string(status.st_size));

  // A file of a few bytes takes few; some that say that they have none have some all the same.
  constexpr std::uint64_t kLeast = std::uint64_t{1} << 12;
  constexpr std::uint64_t kMost = std::uint64_t{1} << 16;
  const std::uint64_t piece =
      sized ? std::clamp(static_cast<std::uint64_t>(status.st_size) + 1, kLeast, kMost) : kMost;
  std::string bytes;
  for (;;) {
    const std::size_t had = bytes.size();
    // One byte more than the limit tells a file that goes on behind it.
    bytes.resize(had + std::min(piece, kind.limit + 1 - had));
    errno = 0;
    const ssize_t count = read(file.Number(), bytes.data() + had, bytes.size() - had);
    if (count < 0 && errno != EINTR) fail(LastSystemError());
    bytes.resize(had + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (bytes.size() > kind.limit) refuse_size("more than " + std::to_string(kind.limit));
    if (count == 0) return bytes;
  }
}

}  // namespace stopngo
