// trace.h: a line a frame, of all that stopngo run knows of it.
#pragma once

#include <string>
#include <utility>

#include "base/followed_file.h"
#include "host/detector.h"

namespace stopngo {

/// Tab-separated values with a header, which can be followed while they are written. One that is cut short says
/// so in its last line, a comment. Throws as FailWriting.
class Trace {
 public:
  explicit Trace(std::string path) : file_(std::move(path)) {}
  void Add(const FrameReport& frame);
  /// After the input's last frame.
  void End();
  /// When it was not the last one.
  void CutShort(const std::string& reason);

 private:
  void Write(const std::string& line);

  FollowedFile file_;
  bool begun_ = false;
};

}  // namespace stopngo
