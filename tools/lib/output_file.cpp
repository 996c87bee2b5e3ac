// output_file.cpp: a text or data output that appears whole or not at all.
#include "output_file.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "failure.h"
#include "system_error.h"

namespace stopngo {
namespace {

// Devices and pipes have no name beside them to write to first. A symbolic link (/dev/stdout is one)
// has to stay a link, which a rename would replace.
bool WrittenInPlace(const std::string& path) {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::symlink_status(path, ignored);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

}  // namespace

OutputFile::OutputFile(std::string path)
    : path_(std::move(path)), working_path_(WrittenInPlace(path_) ? path_ : path_ + ".part") {
  errno = 0;
  stream_.open(working_path_, std::ios::binary | std::ios::trunc);
  if (!stream_) throw Failure(path_ + ": " + LastSystemError());
}

OutputFile::~OutputFile() {
  if (committed_ || working_path_ == path_) return;
  stream_.close();
  std::error_code ignored;
  std::filesystem::remove(working_path_, ignored);
}

void OutputFile::Commit() {
  errno = 0;
  stream_.close();
  if (!stream_) throw Failure(path_ + ": " + LastSystemError());
  if (working_path_ != path_) {
    std::error_code error;
    std::filesystem::rename(working_path_, path_, error);
    if (error) throw Failure(path_ + ": " + error.message());
  }
  committed_ = true;
}

}  // namespace stopngo
