// file_place.cpp: which file a path leads to, whatever links and names it goes by.
#include "base/file_place.h"

#include <system_error>

#include "host/common/text.h"

namespace stopngo {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // as many as the kernel follows
constexpr const char* kOpenFiles = "/proc/self/fd";

/// The kernel's links to files that a process has open: their text is no path to go by.
bool LeadsToOpenFile(const fs::path& link) {
  std::error_code ignored;
  return fs::weakly_canonical(link.parent_path(), ignored).string().starts_with("/proc/");
}

std::optional<FilePlace> PlaceOf(const struct stat& status) {
  if (S_ISCHR(status.st_mode) || S_ISSOCK(status.st_mode)) return std::nullopt;
  return FilePlace{status.st_dev, status.st_ino, {}};
}

}  // namespace

std::optional<int> OpenDescriptor(const std::string& path, int standard) {
  if (path == "-") return standard;
  std::error_code error;
  const fs::path name = BehindLinks(path);
  const fs::path open_files = fs::canonical(kOpenFiles, error);
  if (error || fs::weakly_canonical(FolderOf(name), error) != open_files) return std::nullopt;
  return NumberOf<int>(name.filename().string());
}

fs::path BehindLinks(fs::path path) {
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(path, error) && !LeadsToOpenFile(path); ++i) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path;
}

std::filesystem::path FolderOf(const std::filesystem::path& path) {
  return path.has_parent_path() ? path.parent_path() : ".";
}

std::optional<FilePlace> PlaceOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) return PlaceOf(status);
  const fs::path missing = BehindLinks(path);
  if (stat(FolderOf(missing).c_str(), &status) == 0) {
    return FilePlace{status.st_dev, status.st_ino, missing.filename().string()};
  }
  return FilePlace{0, 0, fs::absolute(missing).lexically_normal().string()};
}

std::optional<FilePlace> PlaceOf(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) return std::nullopt;
  return PlaceOf(status);
}

}  // namespace stopngo
