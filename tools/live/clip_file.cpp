// clip_file.cpp: a clip on its way to the disk: the video, and the JSON beside it.
#include "live/clip_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>

#include "base/results.h"
#include "base/time_of_day.h"
#include "live/packet_writer.h"
#include "video/open_sink.h"

namespace stopngo {
namespace {

#ifdef STOPNGO_WITH_FFMPEG
constexpr const char* kEnding = ".mkv";
#else
constexpr const char* kEnding = ".y4m";
#endif

/// Arrivals are on a clock that is never set, so that a clip holds what it should when the time of day is.
std::string TimeOfArrival(std::chrono::steady_clock::time_point at) {
  const auto ago = std::chrono::steady_clock::now() - at;
  return TimeOfDay(std::chrono::system_clock::now() -
                   std::chrono::duration_cast<std::chrono::system_clock::duration>(ago));
}

nlohmann::ordered_json NameOrNull(const std::string& name) {
  return name.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(name);
}

}  // namespace

std::string VideoOf(const std::string& path) { return path + kEnding; }

ClipFile::ClipFile(const std::string& path, const ClipPiece& first, double fps)
    : path_(path), video_(VideoOf(path)), json_(path + ".json"), first_(first), end_(first.at) {
#ifdef STOPNGO_WITH_FFMPEG
  if (first.packet) {
    packets_ = OpenPacketWriter(VideoOf(path), video_, first);
    return;
  }
#endif
  const LumaFrame& frame = *first.frame;
  frames_ = OpenSink({VideoOf(path), frame.width, frame.height, fps, PixelFormat::kGray}, video_);
}

ClipFile::~ClipFile() = default;

bool ClipFile::Takes(const ClipPiece& piece) const {
  if ((first_.frame == nullptr) != (piece.frame == nullptr)) return false;
#ifdef STOPNGO_WITH_FFMPEG
  if (piece.packet) return IsAlike(*first_.stream, *piece.stream);
#endif
  return first_.frame->width == piece.frame->width && first_.frame->height == piece.frame->height;
}

void ClipFile::Write(const ClipPiece& piece) {
  if (frames_) {
    frames_->Write(piece.frame->pixels);
  } else {
    packets_->Write(piece);
    packet_bytes_ += piece.bytes;
  }
  end_ = piece.at;
  ++count_;
}

std::uint64_t ClipFile::Bytes() const {
  struct stat there {};
  if (fstat(video_.Number(), &there) != 0) FailWriting(VideoOf(path_), errno);
  return std::max(packet_bytes_, static_cast<std::uint64_t>(there.st_size));
}

void ClipFile::Finish() {
  if (frames_) {
    frames_->Finish();
  } else {
    packets_->Finish();
  }
  video_.Flush();
}

void ClipFile::Commit(const ClipStory& story) {
  nlohmann::ordered_json told = nlohmann::ordered_json::array();
  for (const std::string& alarm : story.alarms) told.push_back(nlohmann::ordered_json::parse(alarm));
  json_.Stream() << JsonLine({{"input", story.input},
                              {"alarms", told},
                              {"start", TimeOfArrival(first_.at)},
                              {"end", TimeOfArrival(end_)},
                              {"codec", frames_ ? "luma" : first_.stream->codec},
                              {frames_ ? "frames" : "packets", count_},
                              {"cut_short", story.cut_short},
                              {"previous", NameOrNull(story.links.previous)},
                              {"next", NameOrNull(story.links.next)}})
                 << '\n';
  CommitTogether({&video_, &json_});
}

}  // namespace stopngo
