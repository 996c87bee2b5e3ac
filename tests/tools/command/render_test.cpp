// render_test.cpp: stopngo render, from the command line to the pixels of the pictures that it leaves.
#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "program.h"
#include "support/squares.h"
#include "video/open_source.h"

namespace stopngo::test {
namespace {

// With no weights every score is 0.5, above the threshold: the counter passes 3 on the fifth frame, and
// the rest are a hold.
const std::string kEveryFrame = " --no-weights --rate 0";
constexpr int kAlarmFrame = 4;
constexpr int kFrames = 13;

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  ///< 0xRRGGBB
  [[nodiscard]] std::uint32_t At(int x, int y) const {
    return pixels.at(static_cast<std::size_t>(y) * width + x);
  }
};

Picture ReadPng(const std::string& path) {
  const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
      cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy);
  EXPECT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS) << path;
  Picture picture{
      cairo_image_surface_get_width(surface.get()), cairo_image_surface_get_height(surface.get()), {}};
  const auto* row = cairo_image_surface_get_data(surface.get());
  for (int y = 0; y < picture.height; ++y, row += cairo_image_surface_get_stride(surface.get())) {
    for (int x = 0; x < picture.width; ++x) {
      picture.pixels.push_back(reinterpret_cast<const std::uint32_t*>(row)[x] & 0xFFFFFFU);
    }
  }
  return picture;
}

// A frame of a grey Y4M file, as it looks when nothing is drawn on it.
Picture Undecorated(const std::string& y4m, int width, int height, int frame) {
  const std::size_t size = static_cast<std::size_t>(width) * height;
  const std::size_t start = y4m.find('\n') + 1 + (size + 6) * frame + 6;
  Picture picture{width, height, {}};
  for (std::size_t i = 0; i < size; ++i) {
    picture.pixels.push_back(static_cast<std::uint8_t>(y4m.at(start + i)) * 0x010101U);
  }
  return picture;
}

struct Rectangle {
  int x, y, width, height;
};

int Changed(const Picture& a, const Picture& b, const Rectangle& in) {
  int changed = 0;
  for (int y = in.y; y < in.y + in.height; ++y) {
    for (int x = in.x; x < in.x + in.width; ++x) changed += a.At(x, y) != b.At(x, y) ? 1 : 0;
  }
  return changed;
}

std::string RegionOptions(const Rectangle& region) {
  return " --roi-x " + std::to_string(region.x) + " --roi-y " + std::to_string(region.y) + " --roi-width " +
         std::to_string(region.width) + " --roi-height " + std::to_string(region.height) + " ";
}

class RenderTest : public testing::Test {
 protected:
  // A clip in the folder, of squares that move two pixels down and one to the right a frame.
  [[nodiscard]] std::string Clip(int width, int height) const {
    std::string clip =
        "YUV4MPEG2 W" + std::to_string(width) + " H" + std::to_string(height) + " F25:1 Ip Cmono\n";
    for (int frame = 0; frame < kFrames; ++frame)
      clip += "FRAME\n" + Squares(width, height, frame, 2 * frame);
    return folder_.File("clip.y4m", clip);
  }

  TemporaryFolder folder_;
};

TEST_F(RenderTest, VideoHasEveryFrameAndTheStillIsTheFirstAlarm) {
  const std::string clip = Clip(800, 480);
  const std::string video = folder_ / "seen.y4m";
  const std::string still = folder_ / "still.png";
  const CommandResult result =
      Stopngo("render " + clip + " " + video + " --still " + still + kEveryFrame + " --json");
  ASSERT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  const auto summary = nlohmann::json::parse(result.out);
  EXPECT_EQ(summary.at("frames"), kFrames);
  EXPECT_EQ(summary.at("alarms"), 1);
  EXPECT_DOUBLE_EQ(summary.at("still").at("time_s"), kAlarmFrame / 25.0);
  EXPECT_EQ(folder_.Files(), 3U);

  const std::string pictures = ReadFile(video);
  const std::string header = pictures.substr(0, pictures.find('\n') + 1);
  EXPECT_NE(header.find("W800 H480 F25:1"), std::string::npos) << header;
  EXPECT_EQ(pictures.size(), header.size() + std::size_t{kFrames} * (6 + 3 * 800 * 480));

  const Picture drawn = ReadPng(still);
  ASSERT_EQ(drawn.width, 800);
  ASSERT_EQ(drawn.height, 480);
  const Picture plain = Undecorated(ReadFile(clip), 800, 480, kAlarmFrame);
  const Rectangle region{290, 260, 220, 140};
  EXPECT_GT(Changed(drawn, plain, region), 2000) << "vectors and cells";
  EXPECT_EQ(Changed(drawn, plain, {300, 150, 200, 80}), 0) << "what lies under nothing stays as it was";
  // The region's border tells the decision: it is of the alarm's colour, not grey.
  const std::uint32_t border = drawn.At(400, 258);
  EXPECT_GT((border >> 16) - (border & 255), 80U) << std::hex << border;
}

// In a hold nothing is drawn inside the region, so that a panel that reaches into it shows.
TEST_F(RenderTest, PanelsKeepClearOfTheRegionWhereverItLies) {
  const std::string clip = Clip(800, 480);
  const Picture plain = Undecorated(ReadFile(clip), 800, 480, 10);
  const std::string still = folder_ / "hold.png";
  const std::string command =
      "render " + clip + " " + still + kEveryFrame + " --still-at 0.4 --block-size 30";
  for (const Rectangle& region :
       {Rectangle{290, 260, 220, 140}, Rectangle{0, 0, 220, 140}, Rectangle{580, 0, 220, 140},
        Rectangle{0, 340, 220, 140}, Rectangle{580, 340, 220, 140}, Rectangle{430, 150, 220, 140},
        Rectangle{290, 20, 220, 140}, Rectangle{100, 150, 600, 180}}) {
    const CommandResult result = Stopngo(command + RegionOptions(region));
    ASSERT_EQ(result.exit_code, 0) << result.err;
    const Picture drawn = ReadPng(still);
    EXPECT_EQ(Changed(drawn, plain, region), 0) << "region at " << region.x << ", " << region.y;
    EXPECT_GT(Changed(drawn, plain, {0, 0, 800, 480}), 50000) << "the panels are there all the same";
  }
}

TEST_F(RenderTest, OriginalFramesAreDrawnOnInTheirOwnSize) {
  const std::string clip = Clip(1280, 720);
  const std::string still = folder_ / "last.png";
  // No score passes this threshold, so that the last frame is shown.
  const CommandResult result =
      Stopngo("render " + clip + " " + still + kEveryFrame + " --original --threshold 0.9 --json");
  ASSERT_EQ(result.exit_code, 0) << result.err;
  EXPECT_DOUBLE_EQ(nlohmann::json::parse(result.out).at("still").at("time_s"), (kFrames - 1) / 25.0);
  const Picture drawn = ReadPng(still);
  ASSERT_EQ(drawn.width, 1280);
  ASSERT_EQ(drawn.height, 720);
  const Picture plain = Undecorated(ReadFile(clip), 1280, 720, kFrames - 1);
  // The region of the working size, 1.6 times as wide and 1.5 times as high.
  EXPECT_GT(Changed(drawn, plain, {464, 390, 352, 210}), 5000);
  EXPECT_GT(drawn.At(640, 387) & 255U, 200U) << "a white border just above the region";
  EXPECT_EQ(Changed(drawn, plain, {500, 250, 300, 100}), 0);
}

TEST_F(RenderTest, VideoOnStandardOutputLeavesTheSummaryToStandardError) {
  const CommandResult result = Stopngo("render " + Clip(800, 480) + " - --no-weights --rate 5");
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const std::size_t header = result.out.find('\n') + 1;
  EXPECT_EQ(result.out.size(), header + std::size_t{3} * (6 + 3 * 800 * 480));
  EXPECT_NE(result.err.find("3 frames, 0 alarms"), std::string::npos) << result.err;
}

#if STOPNGO_WITH_FFMPEG
// A video has to show a moment when the recording did.
TEST_F(RenderTest, VideosKeepTheTimesBehindAGap) {
  constexpr std::size_t kPacket = 188;
  ASSERT_EQ(Stopngo("synth " + folder_ / "piece.ts" + " --length 2 --size 320x192 --seed 5").exit_code, 0);
  const std::string piece = ReadFile(folder_ / "piece.ts");
  const std::size_t third = piece.size() / kPacket / 3 * kPacket;
  const std::string gap = folder_.File("gap.ts", piece.substr(0, third) + piece.substr(2 * third));
  SourceOptions options;
  options.input = gap;
  const auto source = OpenSource(options);
  LumaFrame last;
  int frames = 0;
  for (LumaFrame frame; source->Next(frame); ++frames) last = frame;
  ASSERT_LT(frames, 50);
  const std::string video = folder_ / "seen.y4m";
  const CommandResult result =
      Stopngo("render " + gap + " " + video + " --no-weights --rate 0 --allow-damaged");
  ASSERT_EQ(result.exit_code, 0) << result.err;
  constexpr std::size_t kPicture = 6 + 3 * 800 * 480;
  const std::size_t pictures = ReadFile(video).size() / kPicture;
  EXPECT_EQ(pictures, std::llround(last.time_s * 25) + 1);
}
#endif

TEST_F(RenderTest, RefusalsNameTheThingAndLeaveNothing) {
  const std::string clip = Clip(800, 480);
  const std::string out = folder_ / "out.y4m";
  const std::string png = folder_ / "out.png";
  const std::string full = folder_ / "full.png";
  std::filesystem::create_symlink("/dev/full", full);
  const std::size_t files = folder_.Files();
  struct Case {
    std::string arguments;
    int exit_code;
    std::string word;
  };
  const std::vector<Case> cases = {
      {clip + " " + out + " --still " + png + " --weights none.bin", 1, "none.bin"},
      {folder_ / "none.mp4 " + out + " --no-weights", 1, "none.mp4"},
      {clip + " /nowhere/out.y4m --still " + png + " --no-weights", 1, "/nowhere/out.y4m"},
      {clip + " " + out + " --still /nowhere/still.png --no-weights", 1, "/nowhere/still.png"},
      {clip + " " + full + " --no-weights", 1, "full.png"},
      {clip + " " + out + " --still " + full + " --no-weights", 1, "full.png"},
      {clip + " " + out + " --still " + png + " --still-at 5 --no-weights", 1, "--still-at"},
      {clip + " " + out + " --still-at 0.1 --no-weights", 2, "--still-at"},
      {clip + " " + png + " --still " + png + " --no-weights", 2, "--still"},
      {clip + " " + out + " --no-weights --history 0", 2, "--history"},
      {clip + " " + out + " --no-weights --roi-y 450", 2, "outside-frame"},
      {"--no-weights " + clip, 2, "OUT"},
  };
  const std::string before = ReadFile(clip);
  for (const Case& refused : cases) {
    SCOPED_TRACE(refused.arguments);
    ExpectRefusal(Stopngo("render --time-leaving 1 " + refused.arguments), refused.exit_code, {refused.word});
    EXPECT_EQ(folder_.Files(), files) << refused.arguments;
  }
  EXPECT_EQ(ReadFile(clip), before);
}

#if STOPNGO_WITH_FFMPEG
TEST_F(RenderTest, AVideoThatIsCutShortTellsThatItself) {
  const std::string video = folder_ / "seen.mp4";
  const std::string clip = Clip(800, 480);
  // The input never ends, and has been drawn in part when the signal comes.
  const CommandResult result =
      Shell("mkfifo " + folder_ / "pipe; " STOPNGO_PROGRAM " render " + folder_ / "pipe " + video +
            kEveryFrame + " & exec 3> " + folder_ / "pipe; cat " + clip + " >&3; kill -INT $!; wait $!");
  EXPECT_EQ(result.exit_code, 128 + SIGINT) << result.err;
  EXPECT_NE(ReadFile(video).find("cut short by SIGINT at 0."), std::string::npos);
  ASSERT_EQ(Stopngo("render " + clip + " " + video + kEveryFrame).exit_code, 0);
  EXPECT_EQ(ReadFile(video).find("cut short"), std::string::npos);
}
#endif

}  // namespace
}  // namespace stopngo::test
