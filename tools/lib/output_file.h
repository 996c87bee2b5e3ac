// output_file.h: a text or data output that appears whole or not at all.
#pragma once

#include <fstream>
#include <string>

namespace stopngo {

/// Writes to PATH.part and renames it to PATH on Commit; destroyed without Commit, it removes it. A
/// path that is no regular file (a device, a pipe) is written in place.
class OutputFile {
 public:
  /// Throws Failure naming the path when it cannot be written.
  explicit OutputFile(std::string path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& Stream() { return stream_; }
  /// The name that is written to until Commit.
  [[nodiscard]] const std::string& WorkingPath() const { return working_path_; }
  /// Throws Failure when not everything could be written.
  void Commit();

 private:
  std::string path_;
  std::string working_path_;
  std::ofstream stream_;
  bool committed_ = false;
};

}  // namespace stopngo
