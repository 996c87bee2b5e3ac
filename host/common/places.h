// places.h: where module and weights lie that nobody names: folders beside or installed with what holds this code.
#pragma once

#include <filesystem>
#include <vector>

namespace stopngo {

/// In the order in which they are searched: that of the program, or of the plugin, that holds this code; the one that
/// lies to it as installed; the one that the build was configured to install to, for a host that is installed
/// elsewhere. All of them from the root: what is in the current folder is anybody's.
std::vector<std::filesystem::path> LibraryFolders();

/// The same of the shared data. For what was built in build/NAME of a clone, the clone's alone.
std::vector<std::filesystem::path> DataFolders();

}  // namespace stopngo
