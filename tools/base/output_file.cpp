// output_file.cpp: outputs that appear whole or not at all, alone or together.
#include "base/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>
#include <vector>

#include "base/file_place.h"
#include "base/left_over.h"
#include "host/common/failure.h"

namespace stopngo {
namespace {

constexpr unsigned kModeBits = 07777;
constexpr unsigned kRightsAlone = 0777;  // without those that lend the owner's

/// An owner is given only where it is another one: a service's sandbox may end who asks (packaging/stopngo@.service).
bool TakeOwner(int file, const struct stat& old) {
  struct stat own {};
  if (fstat(file, &own) == 0 && own.st_uid == old.st_uid && own.st_gid == old.st_gid) return true;
  return fchown(file, old.st_uid, old.st_gid) == 0 || fchown(file, -1, old.st_gid) == 0;
}

/// Before there is anything in it to read.
void TakeModeAndOwner(int file, const struct stat& old) {
  const bool owned = TakeOwner(file, old);
  fchmod(file, old.st_mode & (owned ? kModeBits : kRightsAlone));
}

}  // namespace

void FailWriting(const std::string& path, int error) {
  const std::string name = path == "-" ? "standard output" : path;
  if (error == EPIPE) throw NobodyReads(name);
  throw Failure(name + ": " + std::generic_category().message(error));
}

OutputFile::OutputFile(std::string path, Lasts lasts)
    : path_(std::move(path)), lasts_(lasts), target_(BehindLinks(path_).string()) {
  Open();
  if (file_->Number() < 0) FailWriting(path_, errno);
  buffer_.emplace(file_->Number());
  stream_.rdbuf(&*buffer_);
}

OutputFile::~OutputFile() {
  if (beside_) unlink(beside_->Path().c_str());
}

void OutputFile::Open() {
  struct stat old {};
  if (const std::optional<int> open_already = OpenDescriptor(path_, STDOUT_FILENO)) {
    file_.emplace(fcntl(*open_already, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  } else if (stat(target_.c_str(), &old) != 0) {
    if (errno != ENOENT) FailWriting(path_, errno);
    OpenBeside(nullptr);
  } else if (!S_ISREG(old.st_mode)) {
    file_.emplace(open(target_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  } else {
    // A folder would let a file be replaced that may not be written.
    if (faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) FailWriting(path_, errno);
    OpenBeside(&old);
  }
}

/// old: the file to be replaced, if there is one.
void OutputFile::OpenBeside(const struct stat* old) {
  constexpr mode_t kByUmask = 0666;
  constexpr mode_t kForNow = 0600;
  WarnOfLeftOvers(target_);
  do {
    beside_.emplace(NameBeside(target_));
    file_.emplace(open(beside_->Path().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                       old == nullptr ? kByUmask : kForNow));
  } while (file_->Number() < 0 && errno == EEXIST);
  if (file_->Number() < 0) {
    const int error = errno;
    beside_.reset();
    FailWriting(path_, error);
  }
  MarkInUse(file_->Number());
  if (old != nullptr) TakeModeAndOwner(file_->Number(), *old);
}

void OutputFile::Flush() {
  stream_.flush();
  if (buffer_->Error() != 0) FailWriting(path_, buffer_->Error());
}

/// Everything is on the disk, under the name beside.
void OutputFile::Complete() {
  Flush();
  if (beside_ && lasts_ == Lasts::kForGood && fsync(file_->Number()) != 0) FailWriting(path_, errno);
}

void OutputFile::Close() {
  if (const int error = file_->Close()) FailWriting(path_, error);
}

/// revocable: what was there before is kept under the name beside.
void OutputFile::TakePlace(bool revocable) {
  if (!beside_) return;
  const char* const beside = beside_->Path().c_str();
  struct stat old {};
  const bool replaces = lstat(target_.c_str(), &old) == 0;
  if (replaces && revocable && S_ISREG(old.st_mode) &&
      renameat2(AT_FDCWD, beside, AT_FDCWD, target_.c_str(), RENAME_EXCHANGE) == 0) {
    place_ = Place::kExchanged;
    return;
  }
  // Some file systems cannot exchange names.
  if (rename(beside, target_.c_str()) != 0) FailWriting(path_, errno);
  place_ = replaces ? Place::kReplaced : Place::kNew;
}

/// False when the old file is lost.
bool OutputFile::GiveBack() const {
  if (!beside_) return true;
  const char* const beside = beside_->Path().c_str();
  if (place_ == Place::kExchanged) {
    return renameat2(AT_FDCWD, beside, AT_FDCWD, target_.c_str(), RENAME_EXCHANGE) == 0;
  }
  return place_ == Place::kNew && rename(target_.c_str(), beside) == 0;
}

/// What was there before is gone.
void OutputFile::Settle() {
  if (!beside_) return;
  unlink(beside_->Path().c_str());
  beside_.reset();
}

/// The place is taken for good, also when the power fails next.
void OutputFile::SyncFolder() const {
  if (place_ == Place::kBeside || lasts_ == Lasts::kUntilPowerFails) return;
  const Descriptor folder(open(FolderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A folder may be one to write to and not to read.
  if (folder.Number() >= 0 && fsync(folder.Number()) != 0 && errno != EINVAL) FailWriting(path_, errno);
}

void CommitTogether(std::initializer_list<OutputFile*> files) {
  std::vector<OutputFile*> present;
  for (OutputFile* const file : files) {
    if (file != nullptr) present.push_back(file);
  }
  for (OutputFile* const file : present) file->Complete();
  // From here on none is marked as in use: nothing is to be waited for.
  const SignalsWait wait;
  for (OutputFile* const file : present) file->Close();
  std::size_t placed = 0;
  try {
    for (; placed < present.size(); ++placed) present[placed]->TakePlace(present.size() > 1);
  } catch (const Failure& failure) {
    std::string sentence = failure.what();
    while (placed > 0) {
      const OutputFile& earlier = *present[--placed];
      if (!earlier.GiveBack()) sentence.append("; ").append(earlier.path_).append(" is the new one already");
    }
    throw Failure(sentence);
  }
  for (OutputFile* const file : present) file->Settle();
  for (const OutputFile* const file : present) file->SyncFolder();
}

void WriteFile(const std::string& path, std::string_view bytes, OutputFile::Lasts lasts) {
  OutputFile file(path, lasts);
  file.Stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.Commit();
}

}  // namespace stopngo
