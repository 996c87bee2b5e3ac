// file.h: whole files, read at once.
#pragma once

#include <string>

namespace stopngo {

/// The bytes of a file. Throws Failure naming the path and the system's reason.
std::string ReadFile(const std::string& path);

}  // namespace stopngo
