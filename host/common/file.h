// file.h: whole files, read at once, as far as their kind goes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace stopngo {

/// What a file is read as.
struct FileKind {
  std::string_view name;    ///< for the user, such as "a sidecar"
  std::uint64_t limit;      ///< bytes; a longer one is none of the kind
  bool stream = false;      ///< may also come from a pipe or a device
  std::string_view hint{};  ///< where the user can look up what is expected
};

/// The bytes of a file. Throws Failure naming the path and the reason: the system's, or what the file is instead.
std::string ReadFile(const std::string& path, const FileKind& kind);

}  // namespace stopngo
