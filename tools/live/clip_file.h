// clip_file.h: a clip on its way to the disk: the video, and the JSON beside it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/output_file.h"
#include "live/clip_piece.h"
#include "video/sink.h"

namespace stopngo {

class PacketWriter;

/// The videos of the same clip on either side, as names of files; empty: there is none.
struct ClipLinks {
  std::string previous;
  std::string next;
};

struct ClipStory {
  std::string input;
  std::vector<std::string> alarms;  ///< as JsonOf gives them
  ClipLinks links;
  bool cut_short = false;
};

/// path: without an ending.
std::string VideoOf(const std::string& path);

class ClipFile {
 public:
  /// path: without an ending. first: what it begins with, which is not written yet. fps: that of frames. Throws Failure.
  ClipFile(const std::string& path, const ClipPiece& first, double fps);
  ~ClipFile();
  ClipFile(const ClipFile&) = delete;
  ClipFile& operator=(const ClipFile&) = delete;

  /// Whether the piece can follow on what is there.
  [[nodiscard]] bool Takes(const ClipPiece& piece) const;
  void Write(const ClipPiece& piece);
  /// The video is whole then, under a name that is not its own yet.
  void Finish();
  /// Both files are there then.
  void Commit(const ClipStory& story);
  /// What the video takes: of packets those that were written, of frames what has come to the disk; all in the end.
  [[nodiscard]] std::uint64_t Bytes() const;
  [[nodiscard]] const std::string& Path() const { return path_; }
  /// When the last piece came.
  [[nodiscard]] std::chrono::steady_clock::time_point End() const { return end_; }

 private:
  std::string path_;
  OutputFile video_;
  OutputFile json_;
  ClipPiece first_;
  std::unique_ptr<PacketWriter> packets_;  ///< either
  std::unique_ptr<VideoSink> frames_;      ///< or
  std::chrono::steady_clock::time_point end_;
  std::uint64_t packet_bytes_ = 0;
  std::int64_t count_ = 0;
};

}  // namespace stopngo
