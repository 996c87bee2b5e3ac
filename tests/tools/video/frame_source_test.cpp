// frame_source_test.cpp: the wanted rate and size of frames, whatever the input has.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/common/failure.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"
#include "video/open_source.h"
#include "waves.h"

namespace stopngo::test {
namespace {

/// Raw luma of 4 x 2 pixels.
SourceOptions RawInput(const TemporaryFolder& folder, int frames, double fps, double rate) {
  SourceOptions options;
  options.input = folder.File("v.raw", std::string(std::size_t{8} * frames, '\x40'));
  options.width = options.raw_width = 4;
  options.height = options.raw_height = 2;
  options.raw_fps = fps;
  options.rate = rate;
  return options;
}

TEST(FrameSource, RateTakesTheNearestFrames) {
  const TemporaryFolder folder;
  const auto taken = [&](double fps, double rate) {
    const SourceOptions options = RawInput(folder, 9, fps, rate);
    std::vector<std::int64_t> indices;
    for (const LumaFrame& frame : FramesOf(options)) indices.push_back(frame.index);
    EXPECT_EQ(OpenSource(options)->Info().frames, static_cast<std::int64_t>(indices.size()))
        << fps << ' ' << rate;
    return indices;
  };
  using Frames = std::vector<std::int64_t>;
  EXPECT_EQ(taken(30, 10), (Frames{0, 3, 6}));
  EXPECT_EQ(taken(30, 12), (Frames{0, 2, 5, 7}));
  EXPECT_EQ(taken(25, 10), (Frames{0, 2, 5, 7}));
  EXPECT_EQ(taken(12, 6), (Frames{0, 2, 4, 6, 8}));
  EXPECT_EQ(taken(25, 0.1), (Frames{0}));
  EXPECT_EQ(taken(25, 25).size(), 9U);
  EXPECT_EQ(taken(25, 0).size(), 9U);
  EXPECT_EQ(taken(5, 8).size(), 9U) << "all there are";
  EXPECT_TRUE(FramesOf(RawInput(folder, 0, 25, 5)).empty());
}

TEST(FrameSource, SizesThatCannotBeHandedOverAreRefused) {
  const TemporaryFolder folder;
  SourceOptions options = RawInput(folder, 1, 25, 0);
  options.width = 0;
  ExpectWords(FailureOf([&] { OpenSource(options); }), {"0 x 2", "--input-width"});
  options = RawInput(folder, 1, 25, 0);
  options.height = 16385;
  ExpectWords(FailureOf([&] { OpenSource(options); }), {"4 x 16385", "--input-height"});
  options = RawInput(folder, 1, 25, 0);
  options.original = true;
  ExpectWords(FailureOf([&] { OpenSource(options); }), {"v.raw", "4 x 2", "1920 x 1080", "1280 x 720"});
}

#if STOPNGO_WITH_FFMPEG
TEST(FrameSource, VideosAreScaledWithoutTouchingTheirRange) {
  const TemporaryFolder folder;
  SourceOptions options;
  options.format = "yuv4mpegpipe";
  for (const std::string range : {"LIMITED", "FULL"}) {
    for (const char level : {'\0', '\x10', '\xeb', '\xff'}) {
      const std::string frame =
          "FRAME\n" + std::string(400 * 240, level) + std::string(2 * 200 * 120, '\x80');
      std::string video = "YUV4MPEG2 W400 H240 F25:1 C420jpeg XCOLORRANGE=";
      video.append(range).append("\n").append(frame).append(frame);
      options.input = folder.File("v", video);
      const std::vector<LumaFrame> frames = FramesOf(options);
      ASSERT_EQ(frames.size(), 2U);
      EXPECT_EQ(frames[1].pixels, Luma(800 * 480, static_cast<std::uint8_t>(level))) << range;
    }
  }
}

TEST(FrameSource, OriginalFramesAreHandedOverAsTheyAre) {
  SourceOptions options;
  options.format = "lavfi";
  for (const auto& [width, height] : {std::pair{1920, 1080}, std::pair{1280, 720}, std::pair{640, 480}}) {
    options.input = "testsrc=size=" + std::to_string(width) + "x" + std::to_string(height) + ":duration=0.1";
    options.original = false;
    EXPECT_EQ(FramesOf(options).at(0).pixels.size(), std::size_t{800} * 480);
    options.original = true;
    if (width == 640) {
      ExpectWords(FailureOf([&] { OpenSource(options); }), {"640 x 480", "1280 x 720"});
      continue;
    }
    const std::vector<LumaFrame> frames = FramesOf(options);
    EXPECT_EQ(frames.at(0).width, width);
    EXPECT_EQ(frames.at(0).pixels.size(), static_cast<std::size_t>(width) * height);
  }
}
#endif

}  // namespace
}  // namespace stopngo::test
