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

class ClipFile {
 public:
  /// path: without an ending. first: what it begins with, which is not written yet. fps: that of frames. Throws Failure.
  ClipFile(const std::string& path, const ClipPiece& first, double fps);
  ~ClipFile();
  ClipFile(const ClipFile&) = delete;
  ClipFile& operator=(const ClipFile&) = delete;

  void Write(const ClipPiece& piece);
  /// alarms: as JsonOf gives them. Both files are there then.
  void Commit(const std::string& input, const std::vector<std::string>& alarms, bool cut_short);
  /// So far, of the packets or frames that were written.
  [[nodiscard]] std::uint64_t Bytes() const { return bytes_; }
  [[nodiscard]] const std::string& Path() const { return video_path_; }

 private:
  std::string video_path_;
  OutputFile video_;
  OutputFile json_;
  std::string codec_;
  std::unique_ptr<PacketWriter> packets_;  ///< either
  std::unique_ptr<VideoSink> frames_;      ///< or
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point end_;
  std::uint64_t bytes_ = 0;
  std::int64_t count_ = 0;
};

}  // namespace stopngo
