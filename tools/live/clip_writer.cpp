// clip_writer.cpp: writes what an alarm's clip is made of, into one file, or into several where the input has changed.
#include "live/clip_writer.h"

#include <cstdint>
#include <filesystem>
#include <utility>

#include "host/common/failure.h"

namespace stopngo {
namespace {

/// What frames take is known when they have been encoded.
std::uint64_t CostOf(const ClipPiece& piece) { return piece.packet ? piece.bytes : 0; }

}  // namespace

ClipWriter::ClipWriter(ClipPlace place, Alarm first, double fps)
    : place_(std::move(place)), first_(std::move(first)), fps_(fps) {}

bool ClipWriter::Write(const std::deque<ClipPiece>& pieces, const std::vector<std::string>& alarms) {
  if (pieces.empty()) return true;
  std::uint64_t coming = file_ ? file_->Bytes() : 0;
  for (const ClipPiece& piece : pieces) coming += CostOf(piece);
  MakeRoom(place_.folder, place_.bounds, coming);
  const std::uint64_t most = place_.bounds.max_bytes;
  for (const ClipPiece& piece : pieces) {
    if (!file_ || !file_->Takes(piece)) Begin(piece, alarms);
    if (most > 0 && file_->Bytes() + CostOf(piece) > most) return false;
    file_->Write(piece);
  }
  return true;
}

void ClipWriter::Finish(const std::vector<std::string>& alarms, bool cut_short) {
  if (!file_) throw Failure(place_.folder + ": nothing had come that a clip could begin with");
  FinishFile(alarms, cut_short);
}

std::optional<std::chrono::steady_clock::time_point> ClipWriter::End() const {
  return file_ ? std::optional(file_->End()) : std::nullopt;
}

void ClipWriter::FinishFile(const std::vector<std::string>& alarms, bool cut_short) {
  file_->Finish();
  MakeRoom(place_.folder, place_.bounds, file_->Bytes());
  file_->Commit({place_.input, alarms, links_, cut_short});
  ++files_;
}

void ClipWriter::Begin(const ClipPiece& first, const std::vector<std::string>& alarms) {
  const std::string path = FreeClipPath(place_.folder, first_, file_ ? file_->Path() : std::string());
  const auto name = [](const std::string& file) { return std::filesystem::path(file).filename().string(); };
  if (file_) {
    links_.next = name(VideoOf(path));
    FinishFile(alarms, false);
    links_ = {name(VideoOf(file_->Path())), {}};
  }
  file_.emplace(path, first, fps_);
}

}  // namespace stopngo
