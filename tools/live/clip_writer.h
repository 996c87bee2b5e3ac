// clip_writer.h: writes what an alarm's clip is made of, into one file, or into several where the input has changed.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "live/alarm.h"
#include "live/clip_file.h"
#include "live/clip_folder.h"
#include "live/clip_piece.h"

namespace stopngo {

struct ClipPlace {
  std::string folder;
  ClipBounds bounds;
  std::string input;
};

/// A file ends where what follows cannot be in it, and the next one begins: an input that was opened anew may have another
/// codec or size. Throws Failure; what was finished before stays.
class ClipWriter {
 public:
  /// fps: that of frames.
  ClipWriter(ClipPlace place, Alarm first, double fps);

  /// alarms: up to now, as JsonOf gives them. False when no more may be written.
  bool Write(const std::deque<ClipPiece>& pieces, const std::vector<std::string>& alarms);
  /// Everything is there then.
  void Finish(const std::vector<std::string>& alarms, bool cut_short);
  /// That are finished.
  [[nodiscard]] int Files() const { return files_; }
  /// When the last piece came; nothing: there was none.
  [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> End() const;

 private:
  void FinishFile(const std::vector<std::string>& alarms, bool cut_short);
  void Begin(const ClipPiece& first, const std::vector<std::string>& alarms);

  ClipPlace place_;
  Alarm first_;
  double fps_;
  std::optional<ClipFile> file_;
  ClipLinks links_;
  int files_ = 0;
};

}  // namespace stopngo
