// ffmpeg_sink.cpp: writes video files through FFmpeg's libraries.
extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>

#include "base/output_file.h"
#include "host/common/failure.h"
#include "video/descriptor_io.h"
#include "video/ffmpeg.h"
#include "video/frame_rate.h"
#include "video/writer.h"

namespace stopngo {
namespace {

/// What every player shows and every encoder of the list below takes.
constexpr AVPixelFormat kEncoded = AV_PIX_FMT_YUV420P;

const AVOutputFormat* FormatByEnding(const std::string& path) {
  const AVOutputFormat* format = Ffmpeg().av_guess_format(nullptr, path.c_str(), nullptr);
  // Formats without a file of their own are series of pictures and devices.
  if (format == nullptr || (format->flags & AVFMT_NOFILE) != 0 || format->video_codec == AV_CODEC_ID_NONE) {
    throw Failure(path + ": no video format goes by this ending (.y4m, .mp4, .mkv and .avi do)");
  }
  return format;
}

const AVCodec* FindEncoder(const AVOutputFormat* format) {
  // The last one is for .webm, which holds neither of the others.
  const std::array<const AVCodec*, 3> candidates{Ffmpeg().avcodec_find_encoder_by_name("libx264"),
                                                 Ffmpeg().avcodec_find_encoder_by_name("mpeg4"),
                                                 Ffmpeg().avcodec_find_encoder_by_name("libvpx-vp9")};
  // Of transport streams the library cannot tell what they hold; they hold any of these but the last.
  const bool transport = std::strcmp(format->name, "mpegts") == 0;
  const auto fits = [format, transport](const AVCodec* codec) {
    if (codec == nullptr) return false;
    if (!transport && Ffmpeg().avformat_query_codec(format, codec->id, FF_COMPLIANCE_NORMAL) != 1)
      return false;
    const AVPixelFormat* pixels = codec->pix_fmts;
    while (pixels != nullptr && *pixels != kEncoded && *pixels != AV_PIX_FMT_NONE) pixels++;
    return pixels == nullptr || *pixels == kEncoded;
  };
  const auto* const found = std::find_if(candidates.begin(), candidates.end(), fits);
  return found == candidates.end() ? nullptr : *found;
}

class FfmpegSink : public VideoSink {
 public:
  FfmpegSink(const SinkOptions& options, OutputFile& file)
      : options_(Checked(options)), io_(DescriptorIo::Open(file)) {
    Must(io_ ? 0 : AVERROR(ENOMEM));
    av_log_set_level(AV_LOG_QUIET);  // encoders chatter on standard error; what matters comes back as a code
    const AVOutputFormat* guessed = FormatByEnding(options.path);
    AVFormatContext* format = nullptr;
    Must(Ffmpeg().avformat_alloc_output_context2(&format, guessed, nullptr, options.path.c_str()));
    format_.reset(format);
    format_->pb = io_.get();
    format_->flags |= AVFMT_FLAG_CUSTOM_IO;
    OpenEncoder(guessed);
    OpenFile();
    OpenPicture();
  }

  void Write(std::span<const std::uint8_t> picture) override {
    Must(av_frame_make_writable(frame_.get()));
    if (scaler_) {
      // The scaler reads four entries of each, whatever the format.
      const std::array<const std::uint8_t*, 4> planes{picture.data()};
      const std::array<int, 4> strides{4 * options_.width};
      sws_scale(scaler_.get(), planes.data(), strides.data(), 0, options_.height, frame_->data,
                frame_->linesize);
    } else {
      CopyLuma(picture);
    }
    frame_->pts = frames_++;
    Encode(frame_.get());
  }

  void Comment(const std::string& sentence) override {
    Must(av_dict_set(&format_->metadata, "comment", sentence.c_str(), 0));
  }

  void Finish() override {
    Encode(nullptr);
    Must(Ffmpeg().av_write_trailer(format_.get()));
    Ffmpeg().avio_flush(io_.get());
    Must(io_->error);
  }

 private:
  static const SinkOptions& Checked(const SinkOptions& options) {
    FormatByEnding(options.path);
    if (options.width % 2 != 0 || options.height % 2 != 0) {
      throw Failure(options.path + ": " + std::to_string(options.width) + "x" +
                    std::to_string(options.height) +
                    ": width and height have to be even for every format but .y4m");
    }
    return options;
  }

  void Must(int result) const {
    if (result < 0) Fail(result);
  }

  [[noreturn]] void Fail(int result) const {
    if (result == AVERROR(EPIPE)) FailWriting(options_.path, EPIPE);
    throw Failure(options_.path + ": " + FfmpegError(result));
  }

  void OpenEncoder(const AVOutputFormat* format) {
    const AVCodec* encoder = FindEncoder(format);
    if (encoder == nullptr)
      throw Failure(options_.path +
                    ": there is no encoder for this kind of file (for .mp4, .mkv and .avi there is)");
    const FrameRate rate = RationalRate(options_.fps);
    codec_.reset(Ffmpeg().avcodec_alloc_context3(encoder));
    codec_->width = options_.width;
    codec_->height = options_.height;
    codec_->pix_fmt = kEncoded;
    codec_->framerate = {rate.numerator, rate.denominator};
    codec_->time_base = {rate.denominator, rate.numerator};
    codec_->color_range = AVCOL_RANGE_MPEG;
    codec_->colorspace = AVCOL_SPC_SMPTE170M;
    // Near to what was drawn rather than small: detectors will be trained and judged on it.
    codec_->flags |= AV_CODEC_FLAG_QSCALE;
    codec_->global_quality = 2 * FF_QP2LAMBDA;
    codec_->bit_rate = 0;                           // else VP9 would keep to it
    av_opt_set(codec_->priv_data, "crf", "16", 0);  // encoders without it go by the quality above
    av_opt_set(codec_->priv_data, "preset", "veryfast", 0);
    if ((format->flags & AVFMT_GLOBALHEADER) != 0) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    Must(Ffmpeg().avcodec_open2(codec_.get(), encoder, nullptr));
  }

  void OpenFile() {
    stream_ = Ffmpeg().avformat_new_stream(format_.get(), nullptr);
    Must(stream_ == nullptr ? AVERROR(ENOMEM) : 0);
    stream_->time_base = codec_->time_base;
    stream_->avg_frame_rate = codec_->framerate;
    Must(Ffmpeg().avcodec_parameters_from_context(stream_->codecpar, codec_.get()));
    Must(Ffmpeg().avformat_write_header(format_.get(), nullptr));
    packet_.reset(Ffmpeg().av_packet_alloc());
    Must(packet_ ? 0 : AVERROR(ENOMEM));
  }

  void OpenPicture() {
    frame_.reset(av_frame_alloc());
    Must(frame_ ? 0 : AVERROR(ENOMEM));
    frame_->format = kEncoded;
    frame_->width = options_.width;
    frame_->height = options_.height;
    Must(av_frame_get_buffer(frame_.get(), 0));
    if (options_.format == PixelFormat::kBgrx) {
      scaler_.reset(sws_getContext(options_.width, options_.height, AV_PIX_FMT_BGR0, options_.width,
                                   options_.height, kEncoded, SWS_BILINEAR, nullptr, nullptr, nullptr));
      Must(scaler_ ? 0 : AVERROR(EINVAL));
    }
  }

  // Luma is the detector's own currency and passes as it is; swscale would take grey for full range
  // and squeeze it.
  void CopyLuma(std::span<const std::uint8_t> luma) {
    const auto width = static_cast<std::size_t>(options_.width);
    for (int row = 0; row < options_.height; row++) {
      std::copy_n(luma.data() + static_cast<std::size_t>(row) * width, width,
                  frame_->data[0] + static_cast<std::ptrdiff_t>(row) * frame_->linesize[0]);
    }
    for (const int plane : {1, 2}) {
      std::fill_n(frame_->data[plane],
                  static_cast<std::ptrdiff_t>(frame_->linesize[plane]) * (options_.height / 2),
                  std::uint8_t{128});
    }
  }

  /// frame: null drains the encoder.
  void Encode(const AVFrame* frame) {
    Must(Ffmpeg().avcodec_send_frame(codec_.get(), frame));
    for (;;) {
      const int result = Ffmpeg().avcodec_receive_packet(codec_.get(), packet_.get());
      if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
      Must(result);
      packet_->duration = 1;
      packet_->stream_index = stream_->index;
      Ffmpeg().av_packet_rescale_ts(packet_.get(), codec_->time_base, stream_->time_base);
      Must(Ffmpeg().av_interleaved_write_frame(format_.get(), packet_.get()));
      Must(io_->error);
    }
  }

  SinkOptions options_;
  std::unique_ptr<AVIOContext, DescriptorIo> io_;
  FfmpegOwned<AVFormatContext> format_;
  FfmpegOwned<AVCodecContext> codec_;
  FfmpegOwned<AVFrame> frame_;
  FfmpegOwned<AVPacket> packet_;
  FfmpegOwned<SwsContext> scaler_;
  AVStream* stream_ = nullptr;  ///< the format's own
  std::int64_t frames_ = 0;
};

}  // namespace

std::unique_ptr<VideoSink> OpenFfmpegSink(const SinkOptions& options, OutputFile& file) {
  return std::make_unique<FfmpegSink>(options, file);
}

}  // namespace stopngo
