// replay.cpp: gives a fuzz target every file of a folder, where no fuzzer is linked: a test of what was found once.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  std::error_code error;
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1], error)) paths.push_back(entry.path());
  std::ranges::sort(paths);
  for (const std::filesystem::path& path : paths) {
    std::fprintf(stderr, "%s\n", path.filename().c_str());  // the last one told is the one that failed
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
      std::fprintf(stderr, "cannot be read\n");
      return 1;
    }
    // A copy of its own length, at whose end a sanitizer looks.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  std::fprintf(stderr, "%zu inputs of %s\n", paths.size(), argv[1]);
  return paths.empty() ? 1 : 0;
}
