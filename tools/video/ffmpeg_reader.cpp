// ffmpeg_reader.cpp: reads video files, image sequences and cameras through FFmpeg's libraries.
extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <thread>
#include <utility>

#include "host/common/failure.h"
#include "host/common/text.h"
#include "video/announced_size.h"
#include "video/decoder_faults.h"
#include "video/ffmpeg.h"
#include "video/ffmpeg_input.h"
#include "video/ffmpeg_luma.h"
#include "video/reader.h"
#include "video/remark.h"
#include "video/time_jump.h"

namespace stopngo {
namespace {

std::string Seconds(double time_s) { return Print("%.2f s", time_s); }

// FFmpeg draws text files as a terminal would. Nobody points a camera at them.
bool IsText(AVCodecID codec) {
  constexpr std::array kText = {AV_CODEC_ID_ANSI, AV_CODEC_ID_BINTEXT, AV_CODEC_ID_XBIN, AV_CODEC_ID_IDF};
  return std::find(kText.begin(), kText.end(), codec) != kText.end();
}

template <typename Handle>
Handle* Made(Handle* handle) {
  if (handle == nullptr) throw std::bad_alloc();
  return handle;
}

class FfmpegSource : public FrameSource {
 public:
  explicit FfmpegSource(const SourceOptions& options) : FfmpegSource(options, OpenFfmpegInput(options)) {}

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
    Look();
    TellJump(frame.time_s);
    frame.read = std::chrono::steady_clock::now();
    luma_.Take(*frame_, frame.pixels);
    if (upside_down_) std::reverse(frame.pixels.begin(), frame.pixels.end());
    ++index_;
    return true;
  }

 private:
  FfmpegSource(const SourceOptions& options, FfmpegInput opened)
      : name_(NameOf(options)),
        remarks_(name_, options.hear),
        luma_(name_),
        tap_(options.tap),
        gives_up_(std::move(opened.gives_up)),
        input_(std::move(opened.input)),
        end_(std::move(opened.end)),
        packet_(Made(Ffmpeg().av_packet_alloc())),
        frame_(Made(av_frame_alloc())) {
    const AVCodec* decoder = nullptr;
    const int found = Ffmpeg().av_find_best_stream(input_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (found == AVERROR_DECODER_NOT_FOUND) Fail("no decoder for its video");
    if (found < 0) Fail("no video in it");
    stream_ = input_->streams[found];
    if (IsText(stream_->codecpar->codec_id)) Fail("no video in it, only text");
    OpenDecoder(decoder, options.live);
    Describe();
    TakeOrientation();
    if (tap_ != nullptr) tap_->Stream(*stream_);
  }

  [[noreturn]] void Fail(const std::string& reason) const { throw Failure(name_ + ": " + reason); }

  // Some decoders that have lacked memory end the program when they are closed: this one is left as it is, with its
  // threads, and with whom they tell of faults.
  [[noreturn]] void FailWithoutMemory() {
    (void)codec_.release();
    (void)faults_.release();
    Fail(FfmpegError(AVERROR(ENOMEM)));
  }

  void OpenDecoder(const AVCodec* decoder, bool live) {
    codec_.reset(Made(Ffmpeg().avcodec_alloc_context3(decoder)));
    int error = Ffmpeg().avcodec_parameters_to_context(codec_.get(), stream_->codecpar);
    faults_->ListenTo(*codec_);
    codec_->thread_count = 0;  // as many as there are processors
    // Live, threads share a picture: those that take one each keep as many back.
    if (live) codec_->thread_type = FF_THREAD_SLICE;
    if (error >= 0) error = Ffmpeg().avcodec_open2(codec_.get(), decoder, nullptr);
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
    if (upside_down_) remarks_.Say(Remarks::kTurned, "its pictures are stored upside down, and are turned");
  }

  // Fills frame_ with the next picture; false at the end.
  bool Decode() {
    for (;;) {
      const int received = Ffmpeg().avcodec_receive_frame(codec_.get(), frame_.get());
      if (faults_->Take() && begun_) TellFault();
      if (received >= 0) return true;
      if (received == AVERROR_EOF) return false;
      // A damaged picture costs itself alone; the decoder finds its way back at the next one.
      if (received == AVERROR_INVALIDDATA) {
        TellUndecoded(last_s_, received);
      } else if (received == AVERROR(ENOMEM)) {
        FailWithoutMemory();
      } else if (received != AVERROR(EAGAIN)) {
        Fail(FfmpegError(received));
      }
      SendPacket();
    }
  }

  // Hands the decoder the next packet of the stream, or tells it that there are no more.
  void SendPacket() {
    for (;;) {
      const int read = Ffmpeg().av_read_frame(input_.get(), packet_.get());
      if ((read == AVERROR(EAGAIN) || read == AVERROR(EINTR)) && !(*gives_up_)()) {
        // A camera that has no picture yet.
        if (read == AVERROR(EAGAIN)) std::this_thread::sleep_for(kBetweenLooks);
        continue;
      }
      if (read < 0) {
        EndReading(read);
        Ffmpeg().avcodec_send_packet(codec_.get(), nullptr);
        return;
      }
      end_.Add(*input_, *packet_);
      FollowBytes();
      // An empty packet stands for a picture that a recorder left out, and would end the decoding.
      const bool wanted = packet_->stream_index == stream_->index && packet_->size > 0;
      if (wanted) {
        if (tap_ != nullptr) tap_->Packet(*packet_);
        Send();
      }
      Ffmpeg().av_packet_unref(packet_.get());
      if (wanted) return;
    }
  }

  void Send() {
    const double time_s = PacketTime();
    TellIncomplete(packet_->dts);
    if ((packet_->flags & AV_PKT_FLAG_CORRUPT) != 0 && !incomplete_) incomplete_ = {packet_->dts, time_s};
    // A recording may be cut out of a stream: what its first pictures refer to is not there, and they do not come.
    if (!begun_ && (packet_->flags & AV_PKT_FLAG_KEY) != 0) {
      begun_ = true;
      faults_->Take();
    }
    const int sent = Ffmpeg().avcodec_send_packet(codec_.get(), packet_.get());
    if (sent == AVERROR(ENOMEM)) FailWithoutMemory();
    if (sent < 0) TellUndecoded(time_s, sent);
  }

  void TellUndecoded(double near_s, int error) {
    remarks_.Say(Remarks::kPicture,
                 "a picture near " + Seconds(near_s) + " cannot be decoded: " + FfmpegError(error));
  }

  void TellFault() { remarks_.Say(Remarks::kPicture, "a picture near " + Seconds(last_s_) + " is damaged"); }

  // Where pieces are joined, one of the last packets before the seam seems to lack what the next piece does not go on
  // with: the clock that soon starts anew tells a seam from a loss.
  void TellIncomplete(std::int64_t next_dts) {
    constexpr int kNearSeam = 8;  // packets
    if (!incomplete_) return;
    if (next_dts < incomplete_->last_dts) {
      incomplete_.reset();
      return;
    }
    incomplete_->last_dts = next_dts;
    if (next_dts == kNoMore || ++incomplete_->followers > kNearSeam) {
      remarks_.Say(Remarks::kPicture,
                   "of the picture near " + Seconds(incomplete_->time_s) + " a part is missing");
      incomplete_.reset();
    }
  }

  void EndReading(int reason) {
    TellIncomplete(kNoMore);
    if (reason == AVERROR_EOF && input_->pb != nullptr && input_->pb->error < 0) reason = input_->pb->error;
    if (reason != AVERROR_EOF) {
      remarks_.Say(Remarks::kEnd, "cannot be read on after " + Seconds(last_s_) + ": " + FfmpegError(reason));
    } else if (const auto announced_s = end_.Missed(static_cast<std::size_t>(stream_->index))) {
      remarks_.Say(Remarks::kEnd,
                   "ends near " + Seconds(last_s_) + ", and announces a length of " + Seconds(*announced_s));
    }
  }

  // What the picture says of itself beside its pixels.
  void Look() {
    if ((frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0 || frame_->decode_error_flags != 0) {
      remarks_.Say(Remarks::kPicture, "the picture at " + Seconds(last_s_) + " is damaged");
    }
    const AVRational pixel = Ffmpeg().av_guess_sample_aspect_ratio(input_.get(), stream_, frame_.get());
    if (pixel.num > 0 && pixel.num != pixel.den) {
      remarks_.Say(Remarks::kPixels, PixelRemark(pixel.num, pixel.den));
    }
    if (frame_->interlaced_frame != 0) {
      remarks_.Say(Remarks::kInterlaced, kInterlaced);
    }
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame_->format));
    const bool grey_or_rgb =
        format == nullptr || format->nb_components < 3 || (format->flags & AV_PIX_FMT_FLAG_RGB) != 0;
    if (frame_->color_range == AVCOL_RANGE_JPEG && !grey_or_rgb) remarks_.Say(Remarks::kRange, kFullRange);
  }

  // Seconds; that of the last picture where a packet has none.
  [[nodiscard]] double PacketTime() const {
    const std::int64_t stamp = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : packet_->dts;
    if (stamp == AV_NOPTS_VALUE || !zero_) return last_s_;
    return std::max(last_s_, static_cast<double>(stamp - *zero_) * av_q2d(stream_->time_base));
  }

  // A jump alone may be how a recording was made. In a file that has lost bytes, or holds some that are none of any
  // packet, it is where they were.
  void TellJump(double time_s) {
    constexpr std::int64_t kBetweenPackets =
        4096;  // bytes: far more than what stands between two that follow
    const double before_s = std::exchange(told_s_, time_s);
    if (index_ == 0 || !jump_.Take(time_s - before_s)) return;
    const std::string jump = "its time jumps from " + Seconds(before_s) + " to " + Seconds(time_s);
    if (const std::uint64_t lacking = LackingBytes(name_); lacking > 0) {
      remarks_.Say(Remarks::kLost, jump + ", and " + std::to_string(lacking) + " of its bytes are missing");
    } else if (passed_over_ > kBetweenPackets) {
      remarks_.Say(Remarks::kLost, jump + ", and " + std::to_string(passed_over_) + " bytes cannot be read");
    } else {
      remarks_.Say(Remarks::kJump, jump + ", and nothing tells whether pictures are missing there");
    }
  }

  // Of all streams. In other formats than Matroska packets lie apart, or in pieces.
  void FollowBytes() {
    if (packet_->pos < 0 || std::strcmp(input_->iformat->name, "matroska,webm") != 0) return;
    if (bytes_read_ > 0) passed_over_ = std::max(passed_over_, packet_->pos - bytes_read_);
    bytes_read_ = std::max(bytes_read_, packet_->pos + packet_->size);
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

  /// A packet that seems to lack a part.
  struct Incomplete {
    std::int64_t last_dts;  ///< its own, and then those of its followers
    double time_s;
    int followers = 0;
  };
  static constexpr std::chrono::milliseconds kBetweenLooks{2};
  static constexpr std::int64_t kNoMore = std::numeric_limits<std::int64_t>::max();

  std::string name_;
  Remarks remarks_;
  LumaTaker luma_;
  PacketTap* tap_;
  std::unique_ptr<std::function<bool()>> gives_up_;  ///< asked by input_, too
  FfmpegOwned<AVFormatContext> input_;
  AnnouncedEnd end_;
  std::unique_ptr<DecoderFaults> faults_ = std::make_unique<DecoderFaults>();
  bool begun_ = false;  ///< with a packet that can be decoded by itself
  FfmpegOwned<AVCodecContext> codec_;
  FfmpegOwned<AVPacket> packet_;
  FfmpegOwned<AVFrame> frame_;
  AVStream* stream_ = nullptr;  ///< belongs to input_
  SourceInfo info_;
  std::int64_t index_ = 0;
  std::optional<Incomplete> incomplete_;
  std::optional<std::int64_t> zero_;  ///< the stamp of time 0, in the stream's units
  double last_s_ = 0;
  TimeJump jump_;
  std::int64_t bytes_read_ = 0;   ///< the end of the packets so far
  std::int64_t passed_over_ = 0;  ///< the most bytes between two of them
  double told_s_ = 0;             ///< the time of the picture before
  bool upside_down_ = false;      ///< as the pictures are stored
};

}  // namespace

std::unique_ptr<FrameSource> OpenFfmpeg(const SourceOptions& options) {
  return std::make_unique<FfmpegSource>(options);
}

}  // namespace stopngo
