// places.cpp: where module and weights lie that nobody names: folders beside or installed with what holds this code.
#include "host/common/places.h"

#include <dlfcn.h>
#include <link.h>

#include <system_error>

namespace stopngo {
namespace {

namespace fs = std::filesystem;

// A build folder, and no folder of programs, has a cache of CMake's.
constexpr const char* kBuildMark = "CMakeCache.txt";
constexpr const char* kFromBuild = "../../weights";

/// The folder of what holds this code, and the ways from there.
struct Origin {
  fs::path folder;  ///< empty where the system does not tell
  const char* to_build;
  const char* to_libraries;
  const char* to_data;
};

/// The shared object that holds this code; empty: it is the program's.
fs::path OwnObject() {
  Dl_info info;
  void* entry = nullptr;
  if (dladdr1(reinterpret_cast<const void*>(&OwnObject), &info, &entry, RTLD_DL_LINKMAP) == 0) return {};
  return static_cast<const link_map*>(entry)->l_name;
}

Origin FindOrigin() {
  std::error_code error;
  // Links are followed as for a program: module and weights lie where the file itself does.
  if (const fs::path object = OwnObject(); !object.empty()) {
    return {fs::canonical(object, error).parent_path(), "..", "..", STOPNGO_DATA_FROM_PLUGINS};
  }
  return {fs::read_symlink("/proc/self/exe", error).parent_path(), ".", STOPNGO_LIBRARIES_FROM_PROGRAMS,
          STOPNGO_DATA_FROM_PROGRAMS};
}

std::vector<fs::path> Folders(const fs::path& own, const char* from_own, const char* configured) {
  std::vector<fs::path> folders{own, own / from_own, configured};
  std::erase_if(folders, [](const fs::path& folder) { return !folder.is_absolute(); });
  for (fs::path& folder : folders) folder = folder.lexically_normal();
  return folders;
}

}  // namespace

std::vector<fs::path> LibraryFolders() {
  const Origin origin = FindOrigin();
  return Folders(origin.folder, origin.to_libraries, STOPNGO_LIBRARIES);
}

std::vector<fs::path> DataFolders() {
  const Origin origin = FindOrigin();
  const fs::path build = origin.folder / origin.to_build;
  std::error_code error;
  if (build.is_absolute() && fs::exists(build / kBuildMark, error))
    return {(build / kFromBuild).lexically_normal()};
  return Folders(origin.folder, origin.to_data, STOPNGO_DATA);
}

}  // namespace stopngo
