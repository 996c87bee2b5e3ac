// announced_end.cpp: when a recording ends by what its file says, against what came of it.
#include "video/announced_end.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace stopngo {
namespace {

// Lengths are rounded, and a last picture may stand for longer than its packet tells.
constexpr double kRounding_s = 0.3;

bool FallsShort(double came_s, double announced_s, double step_s) {
  return came_s + std::max(kRounding_s, 2 * step_s) < announced_s;
}

/// In the stream's units; 0: none is announced.
std::int64_t AnnouncedLength(const AVFormatContext& input, const AVStream& stream) {
  // Of an AVI file that was cut the library shortens the length to the part that is there, but not the number of
  // pictures, of which each is a unit.
  const bool counted = std::strcmp(input.iformat->name, "avi") == 0;
  return counted ? std::max(stream.duration, stream.nb_frames) : stream.duration;
}

}  // namespace

AnnouncedEnd::AnnouncedEnd(const AVFormatContext& input) : streams_(input.nb_streams) {
  for (std::size_t i = 0; i < streams_.size(); ++i) {
    const AVStream& stream = *input.streams[i];
    const std::int64_t length = AnnouncedLength(input, stream);
    if (length > 0) streams_[i].announced = static_cast<double>(length) * av_q2d(stream.time_base);
  }
}

void AnnouncedEnd::TakeWhole(const AVFormatContext& input) {
  const bool told = input.duration_estimation_method == AVFMT_DURATION_FROM_STREAM;
  if (told && input.duration > 0) announced_ = static_cast<double>(input.duration) / AV_TIME_BASE;
}

void AnnouncedEnd::Add(const AVFormatContext& input, const AVPacket& packet) {
  const auto index = static_cast<std::size_t>(packet.stream_index);
  const std::int64_t stamp = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
  if (stamp == AV_NOPTS_VALUE) return;
  if (index >= streams_.size()) streams_.resize(index + 1);
  Stream& stream = streams_[index];
  const double unit_s = av_q2d(input.streams[index]->time_base);
  const double start = static_cast<double>(stamp) * unit_s;
  const double lasts = static_cast<double>(std::max<std::int64_t>(packet.duration, 0)) * unit_s;
  stream.first = stream.came ? std::min(stream.first, start) : start;
  stream.last = stream.came ? std::max(stream.last, start + lasts) : start + lasts;
  stream.step = std::max(stream.step, lasts);
  stream.came = true;
}

std::optional<double> AnnouncedEnd::Missed(std::size_t stream) const {
  // Some files count from the start of their clock, others from their first picture: the later of the two counts,
  // so that none is held to more than it announces.
  const auto length = [](const Stream& part) { return std::max(part.last, part.last - part.first); };
  double longest = 0;
  double step = 0;
  for (const Stream& part : streams_) {
    if (!part.came) continue;
    longest = std::max(longest, length(part));
    step = std::max(step, part.step);
  }
  // Nothing can be said of packets without stamps.
  if (stream >= streams_.size() || !streams_[stream].came) return std::nullopt;
  const Stream& own = streams_[stream];
  if (own.announced && FallsShort(length(own), *own.announced, own.step)) return own.announced;
  if (announced_ && FallsShort(longest, *announced_, step)) return announced_;
  return std::nullopt;
}

}  // namespace stopngo
