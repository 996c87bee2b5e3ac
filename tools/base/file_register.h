// file_register.h: every file that a command reads or writes, entered before it writes the first byte.
#pragma once

#include <map>
#include <string>

#include "base/file_place.h"

namespace stopngo {

/// Refuses a file that would be written while it is read, or written twice, under whatever names: an entry
/// that does not go with an earlier one throws Failure with both. Empty paths are left out, and "-" is a
/// standard stream. what: how the user is to be told of it, such as "--trace" or "the recording".
class FileRegister {
 public:
  /// Enters the files that standard output and standard error are led to.
  FileRegister();
  void Reads(const std::string& path, const std::string& what);
  /// Results make way for a file on standard output: base/results.h.
  void Writes(const std::string& path, const std::string& what);

 private:
  enum class Use { kRead, kWritten, kStream };
  struct Entry {
    std::string name;
    std::string what;
    Use use;
  };

  /// standard: what "-" stands for.
  void Enter(const Entry& entry, const std::string& path, int standard);

  std::map<FilePlace, Entry> entries_;
};

}  // namespace stopngo
