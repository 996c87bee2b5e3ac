// memory_file.h: a file without a place on a disk, for what the module takes from files alone.
#pragma once

#include <string>

namespace stopngo {

/// Empty at first; gone with the object, or with the process, however that ends.
class MemoryFile {
 public:
  /// Throws Failure when the system has none to give.
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Opens it, for reading and for writing, in this process.
  [[nodiscard]] std::string Path() const;

 private:
  int descriptor_;
};

}  // namespace stopngo
