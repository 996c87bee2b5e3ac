// y4m_sink.cpp: writes Y4M, without any library.
#include <cstddef>
#include <memory>
#include <vector>

#include "video/frame_rate.h"
#include "video/writer.h"

namespace stopngo {
namespace {

/// Uncompressed pictures, each behind a line "FRAME". Grey ones are one plane; coloured ones are three
/// of full size, so that thin lines of an overlay keep their colour.
class Y4mSink : public VideoSink {
 public:
  Y4mSink(const SinkOptions& options, OutputFile& file) : options_(options), file_(file) {
    const FrameRate rate = RationalRate(options.fps);
    file_.Stream() << "YUV4MPEG2 W" << options.width << " H" << options.height << " F" << rate.numerator
                   << ':' << rate.denominator << " Ip A1:1 " << (Gray() ? "Cmono" : "C444") << '\n';
    file_.Flush();
  }

  void Write(std::span<const std::uint8_t> picture) override {
    file_.Stream() << "FRAME\n";
    if (Gray()) {
      Put(picture);
    } else {
      Convert(picture);
      Put(planes_);
    }
    file_.Flush();  // who reads at the other end of a pipe gets whole pictures
  }

  void Comment(const std::string& /*sentence*/) override {}
  void Finish() override {}

 private:
  [[nodiscard]] bool Gray() const { return options_.format == PixelFormat::kGray; }
  void Put(std::span<const std::uint8_t> bytes) {
    file_.Stream().write(reinterpret_cast<const char*>(bytes.data()),
                         static_cast<std::streamsize>(bytes.size()));
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
  OutputFile& file_;
  std::vector<std::uint8_t> planes_;
};

}  // namespace

std::unique_ptr<VideoSink> OpenY4mSink(const SinkOptions& options, OutputFile& file) {
  return std::make_unique<Y4mSink>(options, file);
}

}  // namespace stopngo
