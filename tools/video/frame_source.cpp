// frame_source.cpp: opens an input and applies the wanted size and rate.
#include "video/frame_source.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/failure.h"
#include "host/text.h"
#include "video/luma_scaler.h"
#include "video/readers.h"

namespace stopngo {
namespace {

std::string SizeText(int width, int height) { return std::to_string(width) + " x " + std::to_string(height); }

/// Gives frames of the wanted size: scaled, or with --original untouched.
class SizedSource : public FrameSource {
 public:
  SizedSource(std::unique_ptr<FrameSource> source, const SourceOptions& options)
      : source_(std::move(source)), info_(source_->Info()), options_(options) {
    Check(info_.width, info_.height);
    if (!options_.original) {
      info_.width = options_.width;
      info_.height = options_.height;
    }
#if defined(STOPNGO_WITH_FFMPEG)
    scaler_ = std::make_unique<LumaScaler>(info_.width, info_.height);
#endif
  }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    if (!source_->Next(frame)) return false;
    if (frame.width == info_.width && frame.height == info_.height) return true;
    // The size of a stream may change on the way.
    Check(frame.width, frame.height);
    if (options_.original) {
      throw Failure(options_.input + ": the size changes to " + SizeText(frame.width, frame.height) +
                    " at frame " + std::to_string(frame.index));
    }
#if defined(STOPNGO_WITH_FFMPEG)
    scaler_->Scale(frame);
#endif
    return true;
  }

 private:
  void Check(int width, int height) const {
    const std::string found = options_.input + ": frames of " + SizeText(width, height);
    if (options_.original) {
      if (IsOriginalSize({width, height})) return;
      throw Failure(found + ", and --original takes 1920 x 1080 and 1280 x 720 only");
    }
#if !defined(STOPNGO_WITH_FFMPEG)
    if (width != options_.width || height != options_.height) {
      throw Failure(found + ", wanted are " + SizeText(options_.width, options_.height) +
                    "; this program was built without FFmpeg and cannot scale");
    }
#endif
  }

  std::unique_ptr<FrameSource> source_;
  SourceInfo info_;
  SourceOptions options_;
#if defined(STOPNGO_WITH_FFMPEG)
  std::unique_ptr<LumaScaler> scaler_;
#endif
};

constexpr double kTolerance = 1e-6;  // seconds, or frames a second

/// Gives the frames nearest to the times 0, 1/rate, 2/rate, … of the input, none twice.
class RateSource : public FrameSource {
 public:
  RateSource(std::unique_ptr<FrameSource> source, const SourceOptions& options)
      : source_(std::move(source)),
        info_(source_->Info()),
        rate_(options.rate),
        half_period_(0.5 / info_.fps + kTolerance) {
    info_.fps = rate_;
    if (info_.frames.has_value() && *info_.frames > 0) {
      const double last = (static_cast<double>(*info_.frames) - 1) / source_->Info().fps;
      info_.frames = static_cast<std::int64_t>(std::floor((last + half_period_) * rate_)) + 1;
    }
    info_.description += ", " + Print("%.6g", rate_) + " of them handed over";
    more_ = source_->Next(ahead_);
    Advance();
  }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    for (;;) {
      const double time = static_cast<double>(slot_) / rate_;
      while (more_ && !(time - current_.time_s < ahead_.time_s - time + kTolerance)) Advance();
      if (empty_ || (!more_ && time > current_.time_s + half_period_)) return false;
      ++slot_;
      if (current_.index != given_) {
        given_ = current_.index;
        frame = current_;
        return true;
      }
      // Nothing new is near before the middle of the way to the next frame: gaps are stepped over.
      if (!more_) return false;
      const double middle = (current_.time_s + ahead_.time_s) / 2;
      slot_ = std::max(slot_, static_cast<std::int64_t>(std::floor(middle * rate_)));
    }
  }

 private:
  // Of two frames that are equally near the earlier is taken, whatever the last bit of their times.

  void Advance() {
    empty_ = empty_ && !more_;
    std::swap(current_, ahead_);
    more_ = more_ && source_->Next(ahead_);
  }

  std::unique_ptr<FrameSource> source_;
  SourceInfo info_;
  double rate_;
  double half_period_;
  LumaFrame current_;
  LumaFrame ahead_;
  bool more_ = false;  ///< ahead_ holds a frame
  bool empty_ = true;  ///< current_ holds none
  std::int64_t slot_ = 0;
  std::int64_t given_ = -1;
};

std::unique_ptr<FrameSource> OpenReader(const SourceOptions& options) {
  const bool raw = options.raw_width != 0;
#if defined(STOPNGO_WITH_FFMPEG)
  const bool plain = options.format.empty() && (options.input == "-" || IsY4m(options.input));
  if (!raw && !plain) return OpenFfmpeg(options);
#else
  if (!raw && !options.format.empty())
    throw Failure("--format: this program was built without FFmpeg", ExitCode::kUsage);
#endif
  return OpenPlain(options);
}

}  // namespace

std::unique_ptr<FrameSource> OpenSource(const SourceOptions& options) {
  const auto usable = [](int side) { return side >= 1 && side <= kMaximumSide; };
  if (!usable(options.width) || !usable(options.height)) {
    throw Failure("frames of " + SizeText(options.width, options.height) +
                      " cannot be handed over (see --input-width, --input-height)",
                  ExitCode::kUsage);
  }
  std::unique_ptr<FrameSource> source = std::make_unique<SizedSource>(OpenReader(options), options);
  // An input with fewer frames than that is handed over as it is.
  if (options.rate > 0 && options.rate <= source->Info().fps + kTolerance) {
    source = std::make_unique<RateSource>(std::move(source), options);
  }
  return source;
}

}  // namespace stopngo
