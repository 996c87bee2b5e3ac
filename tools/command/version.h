// version.h: which build of the command this is.
#pragma once

#include <string>

namespace stopngo {

/// Of the sources. Alone in a file that the build writes (version.cpp.in), so that a commit compiles nothing else anew.
extern const char* const kVersion;
extern const char* const kCommit;  ///< "unknown" where the build was not told

/// Program, module and FFmpeg, a line each; a module that cannot be loaded is said, with what was tried.
std::string VersionText();

}  // namespace stopngo
