// file_register.cpp: every file that a command reads or writes, entered before it writes the first byte.
#include "base/file_register.h"

#include <unistd.h>

#include "base/results.h"
#include "host/common/failure.h"

namespace stopngo {
namespace {

std::string NameAndUse(const std::string& name, const std::string& what) {
  return what.empty() ? name : name + " (" + what + ")";
}

}  // namespace

// Both may be led to one file, and lines through either come one after the other.
FileRegister::FileRegister() {
  const auto enter = [this](int descriptor, const char* name) {
    const std::optional<FilePlace> place = PlaceOf(descriptor);
    if (place) entries_.insert({*place, {name, "", Use::kStream}});
  };
  enter(STDOUT_FILENO, "standard output");
  enter(STDERR_FILENO, "standard error");
}

void FileRegister::Reads(const std::string& path, const std::string& what) {
  Enter({path == "-" ? "standard input" : path, what, Use::kRead}, path, STDIN_FILENO);
}

void FileRegister::Writes(const std::string& path, const std::string& what) {
  Enter({path == "-" ? "standard output" : path, what, Use::kWritten}, path, STDOUT_FILENO);
  if (OpenDescriptor(path, STDOUT_FILENO) == STDOUT_FILENO) GiveUpStandardOutput();
}

void FileRegister::Enter(const Entry& entry, const std::string& path, int standard) {
  if (path.empty()) return;
  const std::optional<int> descriptor = OpenDescriptor(path, standard);
  const std::optional<FilePlace> place = descriptor ? PlaceOf(*descriptor) : PlaceOf(path);
  if (!place) return;
  const auto [earlier, added] = entries_.insert({*place, entry});
  if (added) return;
  const Entry& known = earlier->second;
  // A stream that is named as such goes on behind what is there; one that a name leads to is overwritten.
  if (known.use == Use::kStream && entry.use == Use::kWritten && descriptor) {
    earlier->second = entry;
    return;
  }
  if (known.use == Use::kRead && entry.use == Use::kRead) return;
  throw Failure(NameAndUse(known.name, known.what) + " and " + NameAndUse(entry.name, entry.what) +
                    " are the same file",
                ExitCode::kUsage);
}

}  // namespace stopngo
