// playlist.h: lists of recordings, which are read in a list's stead.
#pragma once

#include <string>
#include <vector>

namespace stopngo {

/// The files that a list names (FFmpeg's ffconcat, M3U), and those of the lists in it. None where a file is no list,
/// or no regular file: of a pipe nothing may be taken ahead of its reader.
std::vector<std::string> PlaylistEntries(const std::string& path);

}  // namespace stopngo
