// file_place.h: which file a path leads to, whatever links and names it goes by.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <tuple>

namespace stopngo {

/// One that this process has open already, where the path is a name of such a file: "-", /dev/stdout,
/// /dev/fd/N, /proc/self/fd/N. standard: the one that "-" stands for.
std::optional<int> OpenDescriptor(const std::string& path, int standard);

/// Where a chain of links ends: at a file that they lead to, or at the name that the last one gives.
std::filesystem::path BehindLinks(std::filesystem::path path);

/// The folder that a path's last name is in.
std::filesystem::path FolderOf(const std::filesystem::path& path);

/// The same for all paths of one file, and for no others.
struct FilePlace {
  dev_t device = 0;
  ino_t number = 0;
  std::string name;  ///< of a file that is not there yet, in the folder that the numbers stand for
  bool operator<(const FilePlace& other) const {
    return std::tie(device, number, name) < std::tie(other.device, other.number, other.name);
  }
};

/// None for terminals, other devices of characters, and sockets: they are read and written at once, and nothing
/// can be lost in them.
std::optional<FilePlace> PlaceOf(const std::string& path);
std::optional<FilePlace> PlaceOf(int descriptor);

}  // namespace stopngo
