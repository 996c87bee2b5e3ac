// clip_piece.cpp: packets of an encoded input, kept for clips.
#include "live/clip_piece.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>

#include "video/ffmpeg.h"

namespace stopngo {

std::shared_ptr<const ClipStream> StreamOf(const AVStream& stream) {
  const AVCodecID codec = stream.codecpar->codec_id;
  if (codec == AV_CODEC_ID_RAWVIDEO || codec == AV_CODEC_ID_WRAPPED_AVFRAME) return nullptr;
  auto copy = std::make_shared<ClipStream>();
  copy->parameters = {Ffmpeg().avcodec_parameters_alloc(),
                      [](AVCodecParameters* held) { Ffmpeg().avcodec_parameters_free(&held); }};
  if (!copy->parameters || Ffmpeg().avcodec_parameters_copy(copy->parameters.get(), stream.codecpar) < 0) {
    throw std::bad_alloc();
  }
  copy->parameters->codec_tag = 0;  // the input's format gave it
  copy->unit_numerator = stream.time_base.num;
  copy->unit_denominator = stream.time_base.den;
  copy->codec = Ffmpeg().avcodec_get_name(codec);
  return copy;
}

bool IsAlike(const ClipStream& a, const ClipStream& b) {
  const AVCodecParameters& one = *a.parameters;
  const AVCodecParameters& other = *b.parameters;
  const auto extra = [](const AVCodecParameters& of) {
    return std::span(of.extradata, static_cast<std::size_t>(of.extradata_size));
  };
  return one.codec_id == other.codec_id && one.width == other.width && one.height == other.height &&
         one.format == other.format && std::ranges::equal(extra(one), extra(other));
}

ClipPiece PieceOf(const AVPacket& packet, const std::shared_ptr<const ClipStream>& stream) {
  const std::shared_ptr<AVPacket> copy(Ffmpeg().av_packet_clone(&packet),
                                       [](AVPacket* held) { Ffmpeg().av_packet_free(&held); });
  if (!copy || Ffmpeg().av_packet_make_writable(copy.get()) < 0) throw std::bad_alloc();
  ClipPiece piece;
  piece.at = std::chrono::steady_clock::now();
  piece.key = (packet.flags & AV_PKT_FLAG_KEY) != 0;
  piece.bytes = static_cast<std::size_t>(packet.size);
  piece.stream = stream;
  piece.packet = copy;
  return piece;
}

}  // namespace stopngo
