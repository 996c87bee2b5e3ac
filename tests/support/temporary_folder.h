// temporary_folder.h: a folder of its own for a test.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace stopngo::test {

/// Removed with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// The path of a name inside.
  [[nodiscard]] std::string operator/(std::string_view name) const { return (path_ / name).string(); }
  /// Writes a file and gives its path.
  [[nodiscard]] std::string File(std::string_view name, std::string_view content) const;
  /// How many files lie inside.
  [[nodiscard]] std::size_t Files() const;

 private:
  std::filesystem::path path_;
};

/// The bytes of a file of any length.
std::string ReadFile(const std::string& path);

}  // namespace stopngo::test
