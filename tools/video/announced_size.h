// announced_size.h: how large a file is by what it says itself, against what is there of it.
#pragma once

#include <cstdint>
#include <string>

namespace stopngo {

/// How many bytes a Matroska or WebM file lacks of what its segment announces. 0 for all others, for what is no
/// regular file, and where nothing is announced, as in one that was written to a pipe.
std::uint64_t LackingBytes(const std::string& path);

}  // namespace stopngo
