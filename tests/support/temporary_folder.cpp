// temporary_folder.cpp: a folder of its own for a test.
#include "support/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace stopngo::test {

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "stopngo-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder can be made");
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::File(std::string_view name, std::string_view content) const {
  std::string path = *this / name;
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) throw std::runtime_error(path + " cannot be written");
  return path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path + " cannot be read");
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t TemporaryFolder::Files() const {
  return static_cast<std::size_t>(
      std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator()));
}

}  // namespace stopngo::test
