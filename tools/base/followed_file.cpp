// followed_file.cpp: lines that can be followed while they are written.
#include "base/followed_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/descriptor_buffer.h"
#include "base/file_place.h"

namespace stopngo {
namespace {

bool IsRegular(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

FollowedFile::FollowedFile(std::string path) : path_(std::move(path)) {
  // Appending, a file that somebody empties meanwhile starts anew.
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CLOEXEC | O_NOCTTY;
  constexpr mode_t kByUmask = 0666;
  const std::optional<int> open_already = OpenDescriptor(path_, STDOUT_FILENO);
  if (open_already) {
    file_.emplace(fcntl(*open_already, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  } else {
    const std::string target = BehindLinks(path_).string();
    file_.emplace(open(target.c_str(), kFlags));
    if (file_->Number() < 0 && errno == ENOENT) {
      made_.emplace(target);
      file_.emplace(open(target.c_str(), kFlags | O_CREAT | O_EXCL | O_NOFOLLOW, kByUmask));
      if (file_->Number() < 0) made_.reset();
    }
  }
  if (file_->Number() < 0) FailWriting(path_, errno);
  replaces_ = !open_already && IsRegular(file_->Number());
}

FollowedFile::~FollowedFile() {
  if (made_) unlink(made_->Path().c_str());
}

void FollowedFile::Write(std::string_view lines) {
  const int file = file_->Number();
  if (replaces_ && ftruncate(file, 0) != 0) FailWriting(path_, errno);
  replaces_ = false;
  struct stat before {};
  fstat(file, &before);
  if (const int error = WriteAll(file, lines)) {
    struct stat after {};
    const bool grown = fstat(file, &after) == 0 && after.st_size > before.st_size;
    if (grown && S_ISREG(after.st_mode) && ftruncate(file, before.st_size) != 0) FailWriting(path_, errno);
    FailWriting(path_, error);
  }
  made_.reset();
}

}  // namespace stopngo
