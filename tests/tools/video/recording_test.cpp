// recording_test.cpp: recordings as cameras leave them: joined from pieces, upside down.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/common/failure.h"
#include "support/temporary_folder.h"
#include "video/frame_source.h"
#include "waves.h"

#if STOPNGO_WITH_FFMPEG
namespace stopngo::test {
namespace {

class RecordingTest : public testing::Test {
 protected:
  /// Two seconds, 50 frames.
  [[nodiscard]] std::string Recording(const std::string& name) const {
    Record(folder_ / name, 320, 192, 25, 50);
    return folder_ / name;
  }
  static SourceOptions Input(const std::string& path, double rate) {
    SourceOptions options;
    options.input = path;
    options.width = 320;
    options.height = 192;
    options.rate = rate;
    return options;
  }
  static std::vector<LumaFrame> Frames(const std::string& path, double rate) {
    return FramesOf(Input(path, rate));
  }
  TemporaryFolder folder_;
};

// As a dashboard camera's files are joined: the clock of each piece starts anew.
TEST_F(RecordingTest, ClockGoesOnWhereAPieceEnds) {
  const std::string piece = ReadFile(Recording("piece.ts"));
  const std::string joined = folder_.File("joined.ts", piece + piece + piece);
  const std::vector<LumaFrame> all = Frames(joined, 0);
  ASSERT_EQ(all.size(), 150U);
  for (std::size_t i = 0; i < all.size(); ++i) {
    EXPECT_NEAR(all[i].time_s, static_cast<double>(i) / 25, 1e-3) << i;
  }
  EXPECT_EQ(Frames(joined, 5).size(), 30U);
}

/// An MP4 file with the numbers (16.16 fixed) that its track's header has for the axes of the picture.
std::string Turned(std::string mp4, std::string_view xx, std::string_view xy, std::string_view yx,
                   std::string_view yy) {
  constexpr std::size_t kMatrix = 4 + 40;  // behind the box's name
  const std::size_t matrix = mp4.find("tkhd") + kMatrix;
  mp4.replace(matrix, 4, xx).replace(matrix + 4, 4, xy);
  return mp4.replace(matrix + 12, 4, yx).replace(matrix + 16, 4, yy);
}

TEST_F(RecordingTest, PicturesAreTurnedAsTheRecordingSays) {
  using namespace std::string_view_literals;
  constexpr auto kOne = "\x00\x01\x00\x00"sv;
  constexpr auto kMinusOne = "\xff\xff\x00\x00"sv;
  constexpr auto kZero = "\x00\x00\x00\x00"sv;
  const std::string upright = Recording("upright.mp4");
  const std::string mp4 = ReadFile(upright);
  const std::string turned = folder_.File("turned.mp4", Turned(mp4, kMinusOne, kZero, kZero, kMinusOne));
  std::vector<LumaFrame> frames = Frames(upright, 5);
  SourceOptions options = Input(turned, 5);
  std::vector<std::string> heard;
  options.hear = [&heard](const Remark& remark) { heard.push_back(remark.sentence); };
  const std::vector<LumaFrame> upside_down = FramesOf(options);
  ASSERT_EQ(heard.size(), 1U);
  EXPECT_NE(heard[0].find("upside down"), std::string::npos) << heard[0];
  ASSERT_EQ(upside_down.size(), frames.size());
  for (std::size_t i = 0; i < frames.size(); ++i) {
    std::reverse(frames[i].pixels.begin(), frames[i].pixels.end());
    EXPECT_TRUE(upside_down[i].pixels == frames[i].pixels) << i;
  }
  for (const std::string& other :
       {Turned(mp4, kZero, kOne, kMinusOne, kZero), Turned(mp4, kMinusOne, kZero, kZero, kOne)}) {
    EXPECT_THROW(Frames(folder_.File("other.mp4", other), 5), Failure);
  }
}

}  // namespace
}  // namespace stopngo::test
#endif
