// followed_file.h: lines that can be followed while they are written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/interruption.h"
#include "base/output_file.h"

namespace stopngo {

/// A file under its own name from the start, a whole line at a time. What was in it before is there until the
/// first line comes; one that was made for lines which never came is removed.
class FollowedFile {
 public:
  /// Throws as FailWriting when it cannot be written.
  explicit FollowedFile(std::string path);
  ~FollowedFile();
  FollowedFile(const FollowedFile&) = delete;
  FollowedFile& operator=(const FollowedFile&) = delete;

  /// lines: with their newlines. Throws as FailWriting; nothing is left of them then in a regular file.
  void Write(std::string_view lines);

 private:
  std::string path_;
  std::optional<UnfinishedFile> made_;  ///< while it is new and empty
  std::optional<Descriptor> file_;
  bool replaces_ = false;  ///< what was in the file goes with the first line
};

}  // namespace stopngo
