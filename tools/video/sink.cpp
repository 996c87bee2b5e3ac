// sink.cpp: chooses a sink by the path's ending, and writes Y4M itself.
#include "video/sink.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/output_file.h"
#include "base/results.h"
#include "host/failure.h"
#include "host/system_error.h"
#include "video/sinks.h"

namespace stopngo {
namespace {

/// Uncompressed pictures, each behind a line "FRAME". Grey ones are one plane; coloured ones are three
/// of full size, so that thin lines of an overlay keep their colour.
class Y4mSink : public VideoSink {
 public:
  explicit Y4mSink(const SinkOptions& options) : options_(options) {
    if (options.path != "-") file_.emplace(options.path);
    const FrameRate rate = RationalRate(options.fps);
    Stream() << "YUV4MPEG2 W" << options.width << " H" << options.height << " F" << rate.numerator << ':'
             << rate.denominator << " Ip A1:1 " << (Gray() ? "Cmono" : "C444") << '\n';
    Check();
  }

  void Write(std::span<const std::uint8_t> picture) override {
    errno = 0;
    Stream() << "FRAME\n";
    if (Gray()) {
      Put(picture);
    } else {
      Convert(picture);
      Put(planes_);
    }
    Check();
  }

  void Finish() override {
    errno = 0;
    Stream().flush();
    Check();
    if (file_) file_->Commit();
  }

 private:
  [[nodiscard]] bool Gray() const { return options_.format == PixelFormat::kGray; }
  std::ostream& Stream() { return file_ ? file_->Stream() : std::cout; }

  void Put(std::span<const std::uint8_t> bytes) {
    Stream().write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }

  void Check() {
    if (Stream()) return;
    if (!file_) FailOutput();
    throw Failure(options_.path + ": " + LastSystemError());
  }

  // BT.601 in studio range, weights in 1/256: what readers of Y4M assume.
  void Convert(std::span<const std::uint8_t> bgrx) {
    const std::size_t count = bgrx.size() / 4;
    planes_.resize(3 * count);
    for (std::size_t i = 0; i < count; i++) {
      const int b = bgrx[4 * i];
      const int g = bgrx[4 * i + 1];
      const int r = bgrx[4 * i + 2];
      planes_[i] = static_cast<std::uint8_t>(16 + ((66 * r + 129 * g + 25 * b + 128) >> 8));
      planes_[count + i] = static_cast<std::uint8_t>(128 + ((-38 * r - 74 * g + 112 * b + 128) >> 8));
      planes_[2 * count + i] = static_cast<std::uint8_t>(128 + ((112 * r - 94 * g - 18 * b + 128) >> 8));
    }
  }

  SinkOptions options_;
  std::optional<OutputFile> file_;  ///< none for standard output
  std::vector<std::uint8_t> planes_;
};

}  // namespace

FrameRate RationalRate(double fps) {
  fps = std::clamp(fps, 1e-3, 1e6);  // what the numbers below can tell
  // The rates of television in the countries of NTSC, which everybody writes with two or three decimals.
  for (const int nominal : {24, 30, 48, 60, 120}) {
    if (std::fabs(fps - nominal * 1000 / 1001.0) < 0.005) return {nominal * 1000, 1001};
  }
  FrameRate best;
  double least = 1;
  for (int denominator = 1; denominator <= 1001; denominator++) {
    const auto numerator = static_cast<int>(std::lround(fps * denominator));
    const double error = std::fabs(static_cast<double>(numerator) / denominator - fps);
    if (numerator > 0 && error < least) {
      best = {numerator, denominator};
      least = error;
    }
    if (least < 1e-9 * fps) break;
  }
  return best;
}

std::unique_ptr<VideoSink> OpenSink(const SinkOptions& options) {
  if (options.path == "-" || std::filesystem::path(options.path).extension() == ".y4m") {
    return std::make_unique<Y4mSink>(options);
  }
#ifdef STOPNGO_WITH_FFMPEG
  return OpenFfmpegSink(options);
#else
  throw Failure(options.path + ": without FFmpeg only .y4m files (or - for standard output) can be written");
#endif
}

}  // namespace stopngo
