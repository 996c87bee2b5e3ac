// trace.h: a line a frame, of all that stopngo run knows of it.
#pragma once

#include <string>
#include <utility>

#include "base/followed_file.h"
#include "host/detector.h"

namespace stopngo {

/// Tab-separated values with a header, which can be followed while they are written. When the run was cut short, or
/// the recording was damaged, the last line is a comment that says so. Throws as FailWriting.
class Trace {
 public:
  /// gates: with the columns that tell of gates.
  Trace(std::string path, bool gates) : file_(std::move(path)), gates_(gates) {}
  /// alone: of the module without gates, where there are any.
  void Add(const FrameReport& frame, const FrameReport& alone);
  /// After the input's last frame.
  void End();
  /// Of what the lines alone do not tell, such as that there should have been more.
  void Note(const std::string& note);

 private:
  void Write(const std::string& line);

  FollowedFile file_;
  bool gates_;
  bool begun_ = false;
};

}  // namespace stopngo
