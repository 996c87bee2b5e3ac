// sink_test.cpp: video files that are written: whole or not at all, rates, colours.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/failure_text.h"
#include "support/temporary_folder.h"
#include "video/frame_source.h"
#include "video/open_sink.h"
#include "waves.h"

namespace stopngo::test {
namespace {

std::string WriteY4m(const TemporaryFolder& folder, const SinkOptions& options, const Luma& picture) {
  SinkOptions named = options;
  named.path = folder / "sink.y4m";
  OutputFile output(named.path);
  const auto sink = OpenSink(named, output);
  sink->Write(picture);
  sink->Finish();
  output.Commit();
  return ReadFile(named.path);
}

TEST(VideoSink, UnfinishedLeavesTheOldFile) {
  const TemporaryFolder folder;
  std::vector<std::string> names{"old.y4m"};
#if STOPNGO_WITH_FFMPEG
  names.emplace_back("old.mkv");
#endif
  for (const std::string& name : names) {
    const std::string path = folder.File(name, "old");
    const auto before = folder.Files();
    {
      OutputFile output(path);
      const auto sink = OpenSink({path, 64, 48, 25, PixelFormat::kGray}, output);
      sink->Write(Luma(64 * 48, 90));
    }
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(folder.Files(), before);
  }
}

TEST(VideoSink, RatesAreExactRatios) {
  const TemporaryFolder folder;
  for (const auto& [fps, text] : {std::pair{25.0, " F25:1 "},
                                  {29.97, " F30000:1001 "},
                                  {23.976, " F24000:1001 "},
                                  {59.94, " F60000:1001 "},
                                  {12.5, " F25:2 "},
                                  {7.3, " F73:10 "}}) {
    const std::string file = WriteY4m(folder, {"", 2, 2, fps, PixelFormat::kGray}, Luma(4, 90));
    EXPECT_NE(file.find(text), std::string::npos) << fps << ": " << file;
  }
}

// The corners of the colour cube as ITU-R BT.601 codes them.
TEST(VideoSink, ColoursOfY4m) {
  const TemporaryFolder folder;
  const Luma bgrx{255, 255, 255, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0};
  const std::string file = WriteY4m(folder, {"", 2, 2, 25, PixelFormat::kBgrx}, bgrx);
  EXPECT_NE(file.find(" C444\n"), std::string::npos);
  const std::vector<int> expected{235, 82, 144, 41, 128, 90, 54, 240, 128, 240, 34, 110};
  ASSERT_GT(file.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); i++) {
    EXPECT_NEAR(static_cast<std::uint8_t>(file[file.size() - expected.size() + i]), expected[i], 1) << i;
  }
}

#if STOPNGO_WITH_FFMPEG
TEST(VideoSink, VideoFilesKeepGreyLevelsAndTimes) {
  constexpr int kFrames = 30;
  const TemporaryFolder folder;
  for (const char* name : {"clip.mp4", "clip.mkv", "clip.avi"}) {
    Record(folder / name, 320, 192, 29.97, kFrames);
    SourceOptions input;
    input.input = folder / name;
    input.width = 320;
    input.height = 192;
    const std::vector<LumaFrame> frames = FramesOf(input);
    ASSERT_EQ(frames.size(), kFrames) << name;
    for (int i = 0; i < kFrames; i++) {
      EXPECT_LT(MeanDifference(frames[i].pixels, Waves(320, 192, i)), 2.5) << name << " frame " << i;
      EXPECT_NEAR(frames[i].time_s, static_cast<double>(i) * 1001 / 30000, 0.002) << name;
    }
  }
}

TEST(VideoSink, RefusesWhatItCannotWrite) {
  const TemporaryFolder folder;
  for (const auto& [name, width, word] : {std::tuple("odd.mp4", 101, "even"),
                                          {"clip.nonsense", 64, "clip.nonsense"},
                                          {"nowhere/clip.mp4", 64, "nowhere/clip.mp4"}}) {
    const std::string path = folder / name;
    ExpectWords(FailureOf([&, columns = width] { Record(path, columns, 64, 25, 1); }), {word});
    EXPECT_EQ(folder.Files(), 0U) << name;
  }
}
#endif

}  // namespace
}  // namespace stopngo::test
