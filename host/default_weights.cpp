// default_weights.cpp: finds the weights that are used when none are named.
#include "host/default_weights.h"

#include <cstdlib>
#include <filesystem>

namespace stopngo {
namespace {

// A build folder, and no folder of programs, has a cache of CMake's beside the program.
constexpr const char* kBuildMark = "CMakeCache.txt";
constexpr const char* kFromBuild = "../../weights";
// From the folder of programs to the shared data, as installed.
constexpr const char* kFromPrograms = STOPNGO_DATA_FROM_PROGRAMS;
constexpr const char* kFileName = "default.bin";

}  // namespace

std::optional<std::string> FindDefaultWeights() {
  if (const char* const named = std::getenv("STOPNGO_WEIGHTS"); named != nullptr && *named != '\0') {
    return named;
  }
  std::error_code error;
  const std::filesystem::path programs = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  const bool built = std::filesystem::exists(programs / kBuildMark, error);
  const std::filesystem::path file =
      (programs / (built ? kFromBuild : kFromPrograms) / kFileName).lexically_normal();
  if (!std::filesystem::exists(file, error)) return std::nullopt;
  return file.string();
}

}  // namespace stopngo
