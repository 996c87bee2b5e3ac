// clip_file.cpp: a clip on its way to the disk: the video, and the JSON beside it.
#include "live/clip_file.h"

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

}  // namespace

ClipFile::ClipFile(const std::string& path, const ClipPiece& first, double fps)
    : video_path_(path + kEnding),
      video_(video_path_),
      json_(path + ".json"),
      start_(first.at),
      end_(first.at) {
#ifdef STOPNGO_WITH_FFMPEG
  if (first.packet) {
    packets_ = OpenPacketWriter(video_path_, video_, first);
    codec_ = first.stream->codec;
    return;
  }
#endif
  const LumaFrame& frame = *first.frame;
  frames_ = OpenSink({video_path_, frame.width, frame.height, fps, PixelFormat::kGray}, video_);
  codec_ = "luma";
}

ClipFile::~ClipFile() = default;

void ClipFile::Write(const ClipPiece& piece) {
  if (frames_) {
    frames_->Write(piece.frame->pixels);
  } else {
    packets_->Write(piece);
  }
  end_ = piece.at;
  bytes_ += piece.bytes;
  ++count_;
}

void ClipFile::Commit(const std::string& input, const std::vector<std::string>& alarms, bool cut_short) {
  nlohmann::ordered_json told = nlohmann::ordered_json::array();
  for (const std::string& alarm : alarms) told.push_back(nlohmann::ordered_json::parse(alarm));
  json_.Stream() << JsonLine({{"input", input},
                              {"alarms", told},
                              {"start", TimeOfArrival(start_)},
                              {"end", TimeOfArrival(end_)},
                              {"codec", codec_},
                              {frames_ ? "frames" : "packets", count_},
                              {"cut_short", cut_short}})
                 << '\n';
  if (frames_) {
    frames_->Finish();
  } else {
    packets_->Finish();
  }
  CommitTogether({&video_, &json_});
}

}  // namespace stopngo
