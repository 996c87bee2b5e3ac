// output_file.h: a text or data output that appears whole or not at all.
#pragma once

#include <fstream>
#include <span>
#include <string>
#include <string_view>

namespace stopngo {

/// Writes to PATH.part and renames it to PATH on Commit; destroyed without Commit, it removes it. Where the
/// path is a link, that is done with the file it leads to. What is no regular file (a device, a pipe), or is
/// open already (/dev/stdout), is written in place.
class OutputFile {
 public:
  /// Throws Failure naming the path when it cannot be written, or when it leads to the same file as another
  /// output that is not finished.
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
  std::string target_;  ///< the path, behind its links
  std::string working_path_;
  std::ofstream stream_;
  bool committed_ = false;
};

/// Writes a file, whole or not at all. Throws as OutputFile.
void WriteFile(const std::string& path, std::string_view bytes);

/// Throws Failure naming the output when it is one of the inputs, under whatever name; empty paths, and "-" for
/// a standard stream, are left out.
void RefuseOverwriting(std::span<const std::string> outputs, std::span<const std::string> inputs);

}  // namespace stopngo
