// places.cpp: where module and weights lie that nobody names: folders beside or installed with the program.
#include "host/common/places.h"

#include <system_error>

namespace stopngo {
namespace {

namespace fs = std::filesystem;

// A build folder, and no folder of programs, has a cache of CMake's beside the program.
constexpr const char* kBuildMark = "CMakeCache.txt";
constexpr const char* kFromBuild = "../../weights";

/// Empty where the system does not tell.
fs::path ProgramFolder() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::vector<fs::path> Folders(const fs::path& programs, const char* from_programs, const char* configured) {
  std::vector<fs::path> folders{programs, programs / from_programs, configured};
  std::erase_if(folders, [](const fs::path& folder) { return !folder.is_absolute(); });
  for (fs::path& folder : folders) folder = folder.lexically_normal();
  return folders;
}

}  // namespace

std::vector<fs::path> LibraryFolders() {
  return Folders(ProgramFolder(), STOPNGO_LIBRARIES_FROM_PROGRAMS, STOPNGO_LIBRARIES);
}

std::vector<fs::path> DataFolders() {
  const fs::path programs = ProgramFolder();
  std::error_code error;
  if (programs.is_absolute() && fs::exists(programs / kBuildMark, error)) {
    return {(programs / kFromBuild).lexically_normal()};
  }
  return Folders(programs, STOPNGO_DATA_FROM_PROGRAMS, STOPNGO_DATA);
}

}  // namespace stopngo
