// video.cpp: fuzz target: any bytes as Y4M or raw luma, read without FFmpeg. Every frame has its size, and raw
// luma as many frames as were announced unless the reader tells of a damage.
//
// Input: three bytes, raw or not and the size of raw planes, then the file.
#include <memory>
#include <string>

#include "host/common/luma.h"
#include "reading.h"
#include "video/frame_source.h"
#include "video/reader.h"

namespace {

/// Larger pictures take time and memory for an input that holds none of them.
constexpr std::int64_t kMostPixels = 1 << 14;

/// damaged: whether that was told.
void ReadAll(const stopngo::SourceOptions& options, const bool& damaged) {
  const std::unique_ptr<stopngo::FrameSource> source = stopngo::OpenPlain(options);
  const stopngo::SourceInfo& info = source->Info();
  fuzz::Expect(stopngo::IsUsableSize({info.width, info.height}), "a size that cannot be used");
  fuzz::Expect(info.fps > 0 && info.fps < 1e12, "a rate that cannot be used");
  const std::int64_t pixels = std::int64_t{info.width} * info.height;
  if (pixels > kMostPixels) return;
  std::int64_t read = 0;
  for (stopngo::LumaFrame frame; source->Next(frame); ++read) {
    fuzz::Expect(static_cast<std::int64_t>(frame.pixels.size()) == pixels && frame.index == read,
                 "a frame of another size or number");
  }
  fuzz::Expect(damaged || options.raw_width == 0 || info.frames == read,
               "frames are missing, and nothing is said");
  stopngo::LumaFrame none;
  fuzz::Expect(!source->Next(none), "a frame behind the last one");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  stopngo::SourceOptions options;
  const bool raw = input.Below(4) == 0;
  const auto width = static_cast<int>(input.Below(40));
  const auto height = static_cast<int>(input.Below(40));
  if (raw) {
    options.raw_width = width + 1;
    options.raw_height = height + 1;
  }
  bool damaged = false;
  options.hear = [&damaged](const stopngo::Remark& remark) { damaged = damaged || remark.damage; };
  options.input = fuzz::Folder().File("v.y4m", input.Rest());
  (void)stopngo::IsY4m(options.input);
  (void)fuzz::ReadOrRefuse(options.input, [&] { ReadAll(options, damaged); });
  return 0;
}
