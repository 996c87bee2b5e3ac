// left_over.cpp: the names beside outputs, and what a run that was killed left under one.
#include "base/left_over.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <memory>
#include <new>
#include <random>
#include <string_view>
#include <thread>
#include <vector>

#include "base/file_place.h"
#include "base/warning.h"
#include "host/common/descriptor.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kStart = ".stopngo-";
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t kCount = 12;  // behind the start
constexpr std::size_t kMostNamed = 3;

bool IsNameBeside(std::string_view name) {
  return name.size() == kStart.size() + kCount && name.starts_with(kStart) &&
         name.find_first_not_of(kLetters, kStart.size()) == std::string_view::npos;
}

// The kernel gives the lock of a process up when that ends, however it does. What cannot be locked is nothing to
// tell of: another user's, or on a file system without locks.
bool IsLeftOver(const fs::path& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  return fstat(file.Number(), &status) == 0 && S_ISREG(status.st_mode) &&
         flock(file.Number(), LOCK_SH | LOCK_NB) == 0;
}

// The language's own way to read a folder ends the program where memory is short.
std::vector<fs::path> FilesBeside(const fs::path& folder) {
  struct Closing {
    void operator()(DIR* opened) const { closedir(opened); }
  };
  std::vector<fs::path> found;
  const std::unique_ptr<DIR, Closing> opened(opendir(folder.c_str()));
  if (!opened && errno == ENOMEM) throw std::bad_alloc();
  while (const dirent* const entry = opened ? readdir(opened.get()) : nullptr) {
    if (IsNameBeside(entry->d_name)) found.push_back(folder / entry->d_name);
  }
  return found;
}

/// In the order of their names.
std::vector<fs::path> LeftOvers(const fs::path& folder) {
  std::vector<fs::path> found = FilesBeside(folder);
  const auto in_use = [](const fs::path& path) { return !IsLeftOver(path); };
  std::erase_if(found, in_use);
  if (found.empty()) return found;
  // Another run may be between making its file and marking it, or between closing it and giving it its name.
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  std::erase_if(found, in_use);
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

std::string NameBeside(const std::string& target) {
  static std::random_device random;
  std::string name(kStart);
  for (std::size_t i = 0; i < kCount; ++i) name += kLetters[random() % kLetters.size()];
  return (fs::path(target).parent_path() / name).string();
}

void MarkInUse(int file) { flock(file, LOCK_EX); }

void WarnOfLeftOvers(const std::string& target) {
  const std::vector<fs::path> found = LeftOvers(FolderOf(target));
  if (found.empty()) return;
  std::string names;
  for (std::size_t i = 0; i < std::min(found.size(), kMostNamed); ++i) {
    Enlist(names, (FolderOf(target) / found[i].filename()).lexically_normal().string());
  }
  if (found.size() > kMostNamed) Enlist(names, std::to_string(found.size() - kMostNamed) + " more");
  Warn(
      "left by a run that was killed, to be removed when it is of no use (an output that was not finished, "
      "or the "
      "file that was there before): " +
      names);
}

}  // namespace stopngo
