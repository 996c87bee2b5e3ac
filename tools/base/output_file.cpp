// output_file.cpp: a text or data output that appears whole or not at all.
#include "base/output_file.h"

#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>
#include <utility>

#include "host/failure.h"
#include "host/system_error.h"

namespace stopngo {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // as many as the kernel follows

/// The kernel's links to files that a process has open: a rename would leave their holder the old file.
bool LeadsToOpenFile(const fs::path& link) {
  std::error_code ignored;
  return fs::weakly_canonical(link.parent_path(), ignored).string().starts_with("/proc/");
}

/// Where a chain of links ends.
fs::path BehindLinks(fs::path path) {
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(path, error) && !LeadsToOpenFile(path); ++i) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path;
}

/// Names that outputs are being written to, and that no other one may take meanwhile.
class WorkingPaths {
 public:
  bool Take(const std::string& path) {
    const std::lock_guard lock(changing_);
    return taken_.insert(OneName(path)).second;
  }
  void Release(const std::string& path) {
    const std::lock_guard lock(changing_);
    taken_.erase(OneName(path));
  }

 private:
  static fs::path OneName(const std::string& path) {
    std::error_code error;
    const fs::path name = fs::weakly_canonical(path, error);
    return error ? fs::path(path) : name;
  }

  std::mutex changing_;
  std::set<fs::path> taken_;
};

WorkingPaths& Working() {
  static WorkingPaths paths;
  return paths;
}

// Devices and pipes have no name beside them to write to first.
bool WrittenInPlace(const fs::path& target) {
  std::error_code ignored;
  const fs::file_status status = fs::symlink_status(target, ignored);
  return fs::exists(status) && !fs::is_regular_file(status);
}

}  // namespace

OutputFile::OutputFile(std::string path)
    : path_(std::move(path)),
      target_(BehindLinks(path_).string()),
      working_path_(WrittenInPlace(target_) ? target_ : target_ + ".part") {
  const bool in_place = working_path_ == target_;
  if (!in_place && !Working().Take(working_path_)) {
    throw Failure(path_ + ": is an output already", ExitCode::kUsage);
  }
  errno = 0;
  stream_.open(working_path_, std::ios::binary | std::ios::trunc);
  if (stream_) return;
  const std::string reason = LastSystemError();
  if (!in_place) Working().Release(working_path_);
  throw Failure(path_ + ": " + reason);
}

OutputFile::~OutputFile() {
  if (working_path_ == target_) return;
  if (!committed_) {
    stream_.close();
    std::error_code ignored;
    fs::remove(working_path_, ignored);
  }
  Working().Release(working_path_);
}

void OutputFile::Commit() {
  errno = 0;
  stream_.close();
  if (!stream_) throw Failure(path_ + ": " + LastSystemError());
  if (working_path_ != target_) {
    std::error_code error;
    fs::rename(working_path_, target_, error);
    if (error) throw Failure(path_ + ": " + error.message());
  }
  committed_ = true;
}

void WriteFile(const std::string& path, std::string_view bytes) {
  OutputFile file(path);
  file.Stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.Commit();
}

void RefuseOverwriting(std::span<const std::string> outputs, std::span<const std::string> inputs) {
  const auto is_file = [](const std::string& path) { return !path.empty() && path != "-"; };
  for (const std::string& output : outputs) {
    for (const std::string& input : inputs) {
      std::error_code neither_exists;
      if (!is_file(output) || !is_file(input) || !fs::equivalent(output, input, neither_exists)) continue;
      throw Failure(output + ": is an input, and would be lost", ExitCode::kUsage);
    }
  }
}

}  // namespace stopngo
