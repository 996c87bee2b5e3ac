// ffmpeg_reader.cpp: reads video files, image sequences and cameras through FFmpeg's libraries.
extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <optional>

#include "host/failure.h"
#include "video/ffmpeg.h"
#include "video/reader.h"

namespace stopngo {
namespace {

// FFmpeg takes the part of a name before a colon for a protocol, and "-" for a file.
std::string UrlOf(const std::string& input) {
  if (input == "-") return "pipe:0";
  std::error_code ignored;
  return std::filesystem::is_regular_file(input, ignored) ? "file:" + input : input;
}

const AVInputFormat* FormatOf(const SourceOptions& options) {
  const bool camera = options.format.empty() && options.input.starts_with("/dev/video");
  const std::string name = camera ? "v4l2" : options.format;
  if (name.empty()) return nullptr;
  RegisterDevices();
  const AVInputFormat* const format = Ffmpeg().av_find_input_format(name.c_str());
  if (format == nullptr)
    throw Failure("--format: FFmpeg knows no input format '" + name + "'", ExitCode::kUsage);
  return format;
}

FfmpegOwned<AVFormatContext> OpenInput(const SourceOptions& options) {
  av_log_set_level(AV_LOG_QUIET);  // The one sentence of a Failure says what a user needs.
  const AVInputFormat* const format = FormatOf(options);
  AVDictionary* settings = nullptr;
  // A camera has a size of its own choice unless it is asked; it answers with the nearest that it has.
  if (options.original && format != nullptr && std::strcmp(format->name, "video4linux2,v4l2") == 0) {
    av_dict_set(&settings, "video_size", "1920x1080", 0);
  }
  AVFormatContext* opened = nullptr;
  const int error = Ffmpeg().avformat_open_input(&opened, UrlOf(options.input).c_str(), format, &settings);
  av_dict_free(&settings);
  FfmpegOwned<AVFormatContext> input(opened);
  if (error < 0) throw Failure(options.input + ": " + FfmpegError(error));
  const int unknown = Ffmpeg().avformat_find_stream_info(input.get(), nullptr);
  if (unknown < 0) throw Failure(options.input + ": " + FfmpegError(unknown));
  return input;
}

// FFmpeg draws text files as a terminal would. Nobody points a camera at them.
bool IsText(AVCodecID codec) {
  constexpr std::array kText = {AV_CODEC_ID_ANSI, AV_CODEC_ID_BINTEXT, AV_CODEC_ID_XBIN, AV_CODEC_ID_IDF};
  return std::find(kText.begin(), kText.end(), codec) != kText.end();
}

// Whether the first component is luma that can be taken as it is: YUV or grey, whole bytes or words.
bool HasLuma(const AVPixFmtDescriptor& format) {
  constexpr std::uint64_t kForeign = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM |
                                     AV_PIX_FMT_FLAG_FLOAT | AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BAYER;
  return (format.flags & kForeign) == 0 && format.comp[0].depth >= 8;
}

class FfmpegSource : public FrameSource {
 public:
  explicit FfmpegSource(const SourceOptions& options)
      : name_(options.input),
        input_(OpenInput(options)),
        packet_(Ffmpeg().av_packet_alloc()),
        frame_(av_frame_alloc()) {
    const AVCodec* decoder = nullptr;
    const int found = Ffmpeg().av_find_best_stream(input_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (found == AVERROR_DECODER_NOT_FOUND) Fail("no decoder for its video");
    if (found < 0) Fail("no video in it");
    stream_ = input_->streams[found];
    if (IsText(stream_->codecpar->codec_id)) Fail("no video in it, only text");
    OpenDecoder(decoder);
    Describe();
    TakeOrientation();
  }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    if (!Decode()) {
      if (index_ == 0) Fail("no frame in it can be decoded");
      return false;
    }
    frame.width = frame_->width;
    frame.height = frame_->height;
    frame.index = index_;
    frame.time_s = Time();
    TakeLuma(frame.pixels);
    if (upside_down_) std::reverse(frame.pixels.begin(), frame.pixels.end());
    ++index_;
    return true;
  }

 private:
  [[noreturn]] void Fail(const std::string& reason) const { throw Failure(name_ + ": " + reason); }

  void OpenDecoder(const AVCodec* decoder) {
    codec_.reset(Ffmpeg().avcodec_alloc_context3(decoder));
    Ffmpeg().avcodec_parameters_to_context(codec_.get(), stream_->codecpar);
    codec_->thread_count = 0;  // as many as there are processors
    const int error = Ffmpeg().avcodec_open2(codec_.get(), decoder, nullptr);
    if (error < 0) Fail("its video cannot be decoded: " + FfmpegError(error));
  }

  void Describe() {
    info_.width = stream_->codecpar->width;
    info_.height = stream_->codecpar->height;
    if (info_.width < 1 || info_.height < 1) Fail("no video of a known size in it");
    const AVRational rate = Ffmpeg().av_guess_frame_rate(input_.get(), stream_, nullptr);
    info_.fps = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : kUnknownRate;
    if (stream_->nb_frames > 0) {
      info_.frames = stream_->nb_frames;
    } else if (input_->duration > 0) {
      info_.frames = std::llround(static_cast<double>(input_->duration) / AV_TIME_BASE * info_.fps);
    }
    info_.description = name_ + ": " + Ffmpeg().avcodec_get_name(stream_->codecpar->codec_id) + ", " +
                        std::to_string(info_.width) + " x " + std::to_string(info_.height);
  }

  // A camera mounted upside down writes its pictures so, and beside them how they are to be turned.
  void TakeOrientation() {
    const std::uint8_t* const data =
        Ffmpeg().av_stream_get_side_data(stream_, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (data == nullptr) return;
    std::array<std::int32_t, 9> matrix{};
    std::memcpy(matrix.data(), data, sizeof matrix);
    const bool straight = matrix[1] == 0 && matrix[3] == 0;
    const bool upright = straight && matrix[0] > 0 && matrix[4] > 0;
    upside_down_ = straight && matrix[0] < 0 && matrix[4] < 0;
    if (!upright && !upside_down_) Fail("its pictures are to be turned or mirrored; have them written anew");
  }

  // Fills frame_ with the next picture; false at the end.
  bool Decode() {
    for (;;) {
      const int received = Ffmpeg().avcodec_receive_frame(codec_.get(), frame_.get());
      if (received >= 0) return true;
      if (received == AVERROR_EOF) return false;
      // A damaged picture costs itself alone; the decoder finds its way back at the next one.
      if (received != AVERROR(EAGAIN) && received != AVERROR_INVALIDDATA) Fail(FfmpegError(received));
      SendPacket();
    }
  }

  // Hands the decoder the next packet of the stream, or tells it that there are no more.
  void SendPacket() {
    for (;;) {
      const int read = Ffmpeg().av_read_frame(input_.get(), packet_.get());
      if (read == AVERROR(EAGAIN) || read == AVERROR(EINTR)) continue;
      if (read < 0 && read != AVERROR_EOF) Fail("frame " + std::to_string(index_) + ": " + FfmpegError(read));
      if (read == AVERROR_EOF) {
        Ffmpeg().avcodec_send_packet(codec_.get(), nullptr);
        return;
      }
      const bool wanted = packet_->stream_index == stream_->index;
      if (wanted) Ffmpeg().avcodec_send_packet(codec_.get(), packet_.get());
      Ffmpeg().av_packet_unref(packet_.get());
      if (wanted) return;
    }
  }

  // Recordings joined from pieces may start their clock anew in the middle: it goes on where it stood.
  double Time() {
    const double unit_s = av_q2d(stream_->time_base);
    const std::int64_t stamp = frame_->best_effort_timestamp;
    const bool stamped = stamp != AV_NOPTS_VALUE;
    double time_s = static_cast<double>(index_) / info_.fps;
    if (stamped && !zero_) zero_ = stamp - std::llround(time_s / unit_s);
    if (stamped) time_s = static_cast<double>(stamp - *zero_) * unit_s;
    if (time_s < last_s_) {
      time_s = last_s_ + 1 / info_.fps;
      if (stamped) zero_ = stamp - std::llround(time_s / unit_s);
    }
    last_s_ = time_s;
    return time_s;
  }

  void TakeLuma(std::vector<std::uint8_t>& pixels) {
    pixels.resize(std::size_t{1} * frame_->width * frame_->height);
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame_->format));
    if (format == nullptr) Fail("frames of an unknown pixel format");
    if (!HasLuma(*format)) {
      ConvertToGrey(pixels);
    } else if (format->comp[0].depth == 8) {
      CopyLuma(format->comp[0], pixels);
    } else {
      ReduceLuma(*format, pixels);
    }
  }

  [[nodiscard]] const std::uint8_t* Row(const AVComponentDescriptor& luma, int y) const {
    return frame_->data[luma.plane] + std::ptrdiff_t{y} * frame_->linesize[luma.plane] + luma.offset;
  }

  // The bytes as they are, full or limited range. A step above 1: packed formats such as YUYV.
  void CopyLuma(const AVComponentDescriptor& luma, std::vector<std::uint8_t>& pixels) const {
    std::uint8_t* out = pixels.data();
    for (int y = 0; y < frame_->height; ++y, out += frame_->width) {
      const std::uint8_t* const row = Row(luma, y);
      if (luma.step == 1) {
        std::memcpy(out, row, static_cast<std::size_t>(frame_->width));
        continue;
      }
      for (int x = 0; x < frame_->width; ++x) out[x] = row[std::ptrdiff_t{x} * luma.step];
    }
  }

  // More than 8 bits: the upper 8, rounded, which keeps either range.
  void ReduceLuma(const AVPixFmtDescriptor& format, std::vector<std::uint8_t>& pixels) {
    const int surplus = format.comp[0].depth - 8;
    words_.resize(static_cast<std::size_t>(frame_->width));
    const std::uint8_t* planes[4];
    std::copy_n(frame_->data, 4, planes);
    std::uint8_t* out = pixels.data();
    for (int y = 0; y < frame_->height; ++y, out += frame_->width) {
      av_read_image_line(words_.data(), planes, frame_->linesize, &format, 0, y, 0, frame_->width, 0);
      std::transform(words_.begin(), words_.end(), out, [surplus](std::uint16_t word) {
        return static_cast<std::uint8_t>(std::min(255, (word + (1 << surplus >> 1)) >> surplus));
      });
    }
  }

  // RGB, palettes, single bits: full-range grey, so that a grey picture gives its own values. Without the
  // name of a method the library would set up the conversion anew for every frame.
  void ConvertToGrey(std::vector<std::uint8_t>& pixels) {
    const auto format = static_cast<AVPixelFormat>(frame_->format);
    converter_.reset(sws_getCachedContext(converter_.release(), frame_->width, frame_->height, format,
                                          frame_->width, frame_->height, AV_PIX_FMT_GRAY8, kExactScaling,
                                          nullptr, nullptr, nullptr));
    if (!converter_) Fail(std::string("frames of the pixel format ") + av_get_pix_fmt_name(format));
    pixels.reserve(pixels.size() + kScalerPadding);
    std::uint8_t* const target[4] = {pixels.data()};
    const int stride[4] = {frame_->width};
    sws_scale(converter_.get(), frame_->data, frame_->linesize, 0, frame_->height, target, stride);
  }

  std::string name_;
  FfmpegOwned<AVFormatContext> input_;
  FfmpegOwned<AVCodecContext> codec_;
  FfmpegOwned<AVPacket> packet_;
  FfmpegOwned<AVFrame> frame_;
  FfmpegOwned<SwsContext> converter_;
  AVStream* stream_ = nullptr;  ///< belongs to input_
  SourceInfo info_;
  std::int64_t index_ = 0;
  std::optional<std::int64_t> zero_;  ///< the stamp of time 0, in the stream's units
  double last_s_ = 0;
  bool upside_down_ = false;  ///< as the pictures are stored
  std::vector<std::uint16_t> words_;
};

}  // namespace

std::unique_ptr<FrameSource> OpenFfmpeg(const SourceOptions& options) {
  return std::make_unique<FfmpegSource>(options);
}

}  // namespace stopngo
