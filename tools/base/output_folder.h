// output_folder.h: folders that a command writes files to.
#pragma once

#include <string>

namespace stopngo {

/// Makes the folder, with those above it, where it is not there. Throws Failure when that cannot be, or no file can be
/// made in it.
void MakeOutputFolder(const std::string& path);

}  // namespace stopngo
