// y4m_sink.cpp: writes Y4M, without any library.
#include <cstddef>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/output_file.h"
#include "base/results.h"
#include "host/failure.h"
#include "host/system_error.h"
#include "video/frame_rate.h"
#include "video/writer.h"

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

std::unique_ptr<VideoSink> OpenY4mSink(const SinkOptions& options) {
  return std::make_unique<Y4mSink>(options);
}

}  // namespace stopngo
