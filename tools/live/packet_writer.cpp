// packet_writer.cpp: writes packets as they are into a Matroska file.
#include "live/packet_writer.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

#include "host/common/failure.h"
#include "video/descriptor_io.h"
#include "video/ffmpeg.h"

namespace stopngo {
namespace {

class MatroskaWriter : public PacketWriter {
 public:
  MatroskaWriter(const std::string& path, OutputFile& file, const ClipPiece& first)
      : path_(path), start_(first.at) {
    io_.reset(DescriptorIo::Open(file));
    MustWrite(io_ ? 0 : AVERROR(ENOMEM));
    AVFormatContext* format = nullptr;
    MustWrite(Ffmpeg().avformat_alloc_output_context2(&format, nullptr, "matroska", nullptr));
    format_.reset(format);
    format_->pb = io_.get();
    format_->flags |= AVFMT_FLAG_CUSTOM_IO;
    stream_ = Ffmpeg().avformat_new_stream(format_.get(), nullptr);
    MustWrite(stream_ == nullptr ? AVERROR(ENOMEM) : 0);
    MustWrite(Ffmpeg().avcodec_parameters_copy(stream_->codecpar, first.stream->parameters.get()));
    stream_->time_base = {first.stream->unit_numerator, first.stream->unit_denominator};
    MustWrite(Ffmpeg().avformat_write_header(format_.get(), nullptr));
  }

  void Write(const ClipPiece& piece) override {
    const FfmpegOwned<AVPacket> packet(Ffmpeg().av_packet_clone(piece.packet.get()));
    MustWrite(packet ? 0 : AVERROR(ENOMEM));
    Stamp(*packet, piece);
    packet->stream_index = stream_->index;
    packet->pos = -1;
    MustWrite(Ffmpeg().av_interleaved_write_frame(format_.get(), packet.get()));
    MustWrite(io_->error);
  }

  void Finish() override {
    MustWrite(Ffmpeg().av_write_trailer(format_.get()));
    Ffmpeg().avio_flush(io_.get());
    MustWrite(io_->error);
  }

 private:
  void MustWrite(int result) const {
    if (result < 0) throw Failure(path_ + ": " + FfmpegError(result));
  }

  [[nodiscard]] std::int64_t Arrival(const ClipPiece& piece) const {
    const auto since = std::chrono::duration_cast<std::chrono::microseconds>(piece.at - start_);
    return av_rescale_q(since.count(), {1, 1000000}, stream_->time_base);
  }

  /// Each connection's times go on from when its first packet came, behind all that was there.
  void Follow(const AVPacket& packet, const ClipPiece& piece) {
    if (connection_ == piece.stream) return;
    connection_ = piece.stream;
    zero_ = packet.dts;
    origin_ = std::max(Arrival(piece), shown_ + 1);
  }

  /// From 0 on and always forward, which the format asks for. Packets that have no times get those of their arrival.
  void Stamp(AVPacket& packet, const ClipPiece& piece) {
    if (packet.dts == AV_NOPTS_VALUE) packet.dts = packet.pts;
    Follow(packet, piece);
    if (packet.dts == AV_NOPTS_VALUE || zero_ == AV_NOPTS_VALUE) {
      packet.dts = packet.pts = Arrival(piece);
      packet.duration = 0;
    } else {
      if (packet.pts == AV_NOPTS_VALUE) packet.pts = packet.dts;
      packet.dts -= zero_;
      packet.pts -= zero_;
      const AVRational unit{piece.stream->unit_numerator, piece.stream->unit_denominator};
      Ffmpeg().av_packet_rescale_ts(&packet, unit, stream_->time_base);
      packet.dts += origin_;
      packet.pts += origin_;
    }
    packet.dts = std::max(packet.dts, last_ + 1);
    packet.pts = std::max(packet.pts, packet.dts);
    last_ = packet.dts;
    shown_ = std::max(shown_, packet.pts);
  }

  std::string path_;
  std::chrono::steady_clock::time_point start_;
  std::unique_ptr<AVIOContext, DescriptorIo> io_;
  FfmpegOwned<AVFormatContext> format_;
  AVStream* stream_ = nullptr;  ///< the format's own
  std::shared_ptr<const ClipStream> connection_;
  std::int64_t zero_ = 0;    ///< its first packet's time, in its own units
  std::int64_t origin_ = 0;  ///< and where that is in the file, in its units as the ones below
  std::int64_t last_ = -1;   ///< of those written
  std::int64_t shown_ = -1;
};

}  // namespace

std::unique_ptr<PacketWriter> OpenPacketWriter(const std::string& path, OutputFile& file,
                                               const ClipPiece& first) {
  return std::make_unique<MatroskaWriter>(path, file, first);
}

}  // namespace stopngo
