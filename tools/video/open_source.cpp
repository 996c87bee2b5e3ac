// open_source.cpp: opens an input and applies the wanted size and rate.
#include "video/open_source.h"

#include <optional>
#include <utility>

#include "base/interruption.h"
#include "host/common/failure.h"
#include "host/common/pace.h"
#include "host/common/text.h"
#include "video/luma_scaler.h"
#include "video/reader.h"
#include "video/remark.h"

namespace stopngo {
namespace {

std::string SizeText(int width, int height) { return std::to_string(width) + " x " + std::to_string(height); }

/// Passes frames on that can be given the wanted size, or with --original have it, and tells of their own. Info has
/// the wanted size already.
class CheckedSource : public FrameSource {
 public:
  CheckedSource(std::unique_ptr<FrameSource> source, const SourceOptions& options)
      : source_(std::move(source)),
        info_(source_->Info()),
        options_(options),
        remarks_(NameOf(options), options.hear),
        size_{info_.width, info_.height} {
    Check(info_.width, info_.height);
    if (!options_.original) {
      TellScaling();
      info_.width = options_.width;
      info_.height = options_.height;
    }
  }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    if (!source_->Next(frame)) return false;
    TellChange(frame);
    if (frame.width == info_.width && frame.height == info_.height) return true;
    // The size of a stream may change on the way.
    Check(frame.width, frame.height);
    if (options_.original) {
      throw Failure(NameOf(options_) + ": the size changes to " + SizeText(frame.width, frame.height) +
                    " at frame " + std::to_string(frame.index));
    }
    return true;
  }

 private:
  void TellScaling() {
    if (size_ == FrameSize{options_.width, options_.height}) return;
    const bool same_shape =
        std::int64_t{size_.width} * options_.height == std::int64_t{size_.height} * options_.width;
    remarks_.Say(Remarks::kScaled, "frames of " + SizeText(size_.width, size_.height) +
                                       (same_shape ? " are scaled to " : " are stretched to ") +
                                       SizeText(options_.width, options_.height));
  }

  void TellChange(const LumaFrame& frame) {
    const FrameSize found{frame.width, frame.height};
    if (found == size_) return;
    remarks_.Say(Remarks::kSizes, "the size changes from " + SizeText(size_.width, size_.height) + " to " +
                                      SizeText(found.width, found.height) +
                                      Print(" at %.2f s", frame.time_s));
    size_ = found;
  }

  void Check(int width, int height) const {
    const std::string found = NameOf(options_) + ": frames of " + SizeText(width, height);
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
  Remarks remarks_;
  FrameSize size_;  ///< of the frames that came last, as the input has them
};

/// Gives the frames that are nearest to a number a second.
class PacedSource : public FrameSource {
 public:
  PacedSource(std::unique_ptr<FrameSource> source, double rate)
      : source_(std::move(source)), info_(source_->Info()), pace_(rate, info_.fps) {
    if (info_.frames.has_value() && *info_.frames > 0) info_.frames = pace_.Count(*info_.frames, info_.fps);
    info_.fps = rate;
    info_.description += ", " + Print("%.6g", rate) + " of them handed over";
    more_ = source_->Next(ahead_);
  }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    while (more_ && !Interrupted()) {
      std::swap(current_, ahead_);
      more_ = source_->Next(ahead_);
      if (!pace_.Takes(current_.time_s, more_ ? std::optional(ahead_.time_s) : std::nullopt)) continue;
      std::swap(frame, current_);
      return true;
    }
    return false;
  }

 private:
  std::unique_ptr<FrameSource> source_;
  SourceInfo info_;
  Pace pace_;
  LumaFrame current_;
  LumaFrame ahead_;
  bool more_ = false;  ///< ahead_ holds a frame
};

#if defined(STOPNGO_WITH_FFMPEG)
/// Gives all frames the size that Info announces.
class ScaledSource : public FrameSource {
 public:
  explicit ScaledSource(std::unique_ptr<FrameSource> source)
      : source_(std::move(source)), scaler_(source_->Info().width, source_->Info().height) {}

  [[nodiscard]] const SourceInfo& Info() const override { return source_->Info(); }

  bool Next(LumaFrame& frame) override {
    if (!source_->Next(frame)) return false;
    if (frame.width != Info().width || frame.height != Info().height) scaler_.Scale(frame);
    return true;
  }

 private:
  std::unique_ptr<FrameSource> source_;
  LumaScaler scaler_;
};
#endif

std::unique_ptr<FrameSource> OpenReader(const SourceOptions& options) {
  const bool raw = options.raw_width != 0;
#if defined(STOPNGO_WITH_FFMPEG)
  const bool plain = options.format.empty() && (options.input == "-" || IsY4m(options.input));
  if (!raw && !plain) return OpenFfmpeg(options);
#else
  if (!raw && !options.format.empty())
    throw Failure("--format: this program was built without FFmpeg", ExitCode::kUsage);
#endif
  if (!options.asked_size.empty()) throw CannotBeAsked("--size", options);
  if (options.asked_fps > 0) throw CannotBeAsked("--fps", options);
  return OpenPlain(options);
}

}  // namespace

std::unique_ptr<FrameSource> OpenSource(const SourceOptions& options) {
  if (!IsUsableSize({options.width, options.height})) {
    throw Failure("frames of " + SizeText(options.width, options.height) +
                      " cannot be handed over (see --input-width, --input-height)",
                  ExitCode::kUsage);
  }
  std::unique_ptr<FrameSource> source = std::make_unique<CheckedSource>(OpenReader(options), options);
  // An input with fewer frames than that is handed over as it is.
  constexpr double kSameRate = 1e-6;  // frames a second
  if (options.rate > 0 && options.rate <= source->Info().fps + kSameRate) {
    source = std::make_unique<PacedSource>(std::move(source), options.rate);
  }
#if defined(STOPNGO_WITH_FFMPEG)
  // Behind the choice of frames: to scale them all would cost a tenth of their decoding.
  source = std::make_unique<ScaledSource>(std::move(source));
#endif
  return source;
}

}  // namespace stopngo
