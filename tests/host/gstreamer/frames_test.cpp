// frames_test.cpp: frames of every format, stride and size: what the module gets of them, and that they pass untouched.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "host/detector.h"
#include "host/gstreamer/formats.h"
#include "host/gstreamer/luma_reader.h"
#include "host/module/module.h"
#include "pipe.h"
#include "random.h"
#include "support/squares.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

/// Weights with which every motion counts, each in another way.
const std::string& Weights() {
  static const TemporaryFolder folder;
  static const std::string path = [] {
    ::test::Random random(5);
    std::string bytes;
    for (int i = 0; i < 162 * 16 + 1; ++i) {
      const float weight = random.Signed();
      bytes.append(reinterpret_cast<const char*>(&weight), sizeof weight);
    }
    return folder.File("w.bin", bytes);
  }();
  return path;
}

Properties EveryFrame() { return {{"silent", "false"}, {"weights", Weights()}}; }

/// A texture that stands and then moves faster and faster.
std::string Picture(const PipeFormat& format, int frame) {
  const int moved = frame < 4 ? 0 : (frame - 3) * (frame - 2) / 2;
  return Squares(format.width, format.height, moved % 400, moved / 3 % 400);
}

GstClockTime PtsOf(int frame) { return gst_util_uint64_scale(GST_SECOND, static_cast<guint64>(frame), 6); }

/// What a detector of the host library makes of the same luma.
std::vector<double> ScoresOf(const PipeFormat& format, int frames) {
  const Module module(STOPNGO_MODULE_FILE);
  Settings settings;
  settings.weights = Weights();
  Detector detector(module, settings, {format.width, format.height, 6});
  std::vector<double> scores;
  scores.reserve(static_cast<std::size_t>(frames));
  for (int i = 0; i < frames; ++i) {
    const std::string picture = Picture(format, i);
    LumaFrame frame{format.width, format.height, i, i / 6.0, {picture.begin(), picture.end()}};
    scores.push_back(static_cast<double>(detector.Write(frame).score));
  }
  return scores;
}

std::vector<double> ScoresOf(const std::vector<Told>& told) {
  std::vector<double> scores;
  scores.reserve(told.size());
  for (const Told& frame : told) scores.push_back(frame.score);
  return scores;
}

/// The scores of frames that pass, each of which has to be the buffer that went in.
std::vector<double> ScoresInPipe(const PipeFormat& format, int frames, int padding) {
  Pipe pipe(format, EveryFrame());
  for (int i = 0; i < frames; ++i) {
    BufferPtr buffer = MakeFrame(format, Picture(format, i), PtsOf(i), padding);
    GstBuffer* const pushed = buffer.get();
    const std::string bytes = BytesOf(pushed);
    EXPECT_EQ(pipe.Push(std::move(buffer)), GST_FLOW_OK);
    const BufferPtr pulled = pipe.Pull();
    EXPECT_EQ(pulled.get(), pushed) << "a copy";
    EXPECT_TRUE(BytesOf(pulled.get()) == bytes) << format.Caps() << " frame " << i;
  }
  return ScoresOf(pipe.TakeTold());
}

TEST(ElementFrames, EveryFormatGivesTheSameScores) {
  constexpr int kFrames = 8;
  const std::vector<double> expected = ScoresOf(PipeFormat{}, kFrames);
  EXPECT_GT(std::set(expected.begin(), expected.end()).size(), 4U)
      << "where nothing happens nothing is tested";
  InitGst();
  unsigned count = 0;
  const GstVideoFormat* const formats = gst_video_formats_raw(&count);
  std::string taken;
  for (unsigned i = 0; i < count; ++i) {
    if (!gst::HasLuma(*gst_video_format_get_info(formats[i]))) continue;
    PipeFormat format;
    format.format = formats[i];
    taken.append(gst_video_format_to_string(formats[i])).append(" ");
    for (const int padding : {-1, 0, 37})
      EXPECT_EQ(ScoresInPipe(format, kFrames, padding), expected) << format.Caps();
  }
  for (const char* const wanted :
       {"GRAY8", "NV12", "NV21", "NV16", "I420", "YV12", "Y42B", "Y444", "YUY2", "UYVY"}) {
    EXPECT_NE(taken.find(std::string(wanted) + " "), std::string::npos) << wanted;
  }
  for (const char* const other :
       {"RGB", "GRAY16_LE", "P010_10LE", "NV12_64Z32", "NV12_4L4", "IYU1", "v210"}) {
    EXPECT_EQ(taken.find(std::string(other) + " "), std::string::npos) << other;
  }
}

TEST(ElementFrames, FullResolutionGoesTheModulesOwnWay) {
  for (const auto& [width, height] : {std::pair{1920, 1080}, {1280, 720}}) {
    for (const GstVideoFormat kind : {GST_VIDEO_FORMAT_NV12, GST_VIDEO_FORMAT_YUY2}) {
      const PipeFormat format{kind, width, height};
      const std::vector<double> expected = ScoresOf(format, 7);
      for (const int padding : {-1, 64})
        EXPECT_EQ(ScoresInPipe(format, 7, padding), expected) << format.Caps();
    }
  }
}

TEST(ElementFrames, RowsThatRunUpwardsAreFollowed) {
  const PipeFormat format;
  const GstVideoInfo info = format.Info();
  Pipe pipe(format, EveryFrame());
  for (int i = 0; i < 7; ++i) {
    std::string picture = Picture(format, i);
    for (int y = 0; y < format.height / 2; ++y) {
      std::swap_ranges(picture.begin() + y * format.width, picture.begin() + (y + 1) * format.width,
                       picture.begin() + (format.height - 1 - y) * format.width);
    }
    BufferPtr buffer = MakeFrame(format, picture, PtsOf(i));
    gsize offset = info.size - static_cast<gsize>(format.width);
    int stride = -format.width;
    gst_buffer_add_video_meta_full(buffer.get(), GST_VIDEO_FRAME_FLAG_NONE, format.format, 800, 480, 1,
                                   &offset, &stride);
    EXPECT_EQ(pipe.Push(std::move(buffer)), GST_FLOW_OK);
  }
  EXPECT_EQ(ScoresOf(pipe.TakeTold()), ScoresOf(format, 7));
}

// A layout that would lead out of the buffer, and a buffer that is too small, pass and are said.
TEST(ElementFrames, LumaThatIsNotThereIsNotRead) {
  const PipeFormat format;
  for (const bool small : {false, true}) {
    Pipe pipe(format, EveryFrame());
    for (int i = 0; i < 3; ++i) {
      BufferPtr buffer = MakeFrame(format, Picture(format, i), PtsOf(i));
      gsize offset = 0;
      int stride = 801;
      if (small) {
        gst_buffer_resize(buffer.get(), 0, 1000);
      } else {
        gst_buffer_add_video_meta_full(buffer.get(), GST_VIDEO_FRAME_FLAG_NONE, format.format, 800, 480, 1,
                                       &offset, &stride);
      }
      EXPECT_EQ(pipe.Push(std::move(buffer)), GST_FLOW_OK);
      EXPECT_TRUE(pipe.Pull());
    }
    EXPECT_TRUE(pipe.TakeTold().empty());
    EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING),
              "frame 0: the luma cannot be read; such frames pass without being looked at\n");
  }
}

/// Where a slope from 0 at the left to 255 at the right has come to.
int Slope(int x, int width) { return 255 * x / (width - 1); }

TEST(ElementFrames, OtherSizesAreScaledForTheModuleAlone) {
  for (const auto& [width, height] : {std::pair{640, 480}, {1600, 900}, {2560, 1440}, {401, 241}, {1, 1}}) {
    for (const GstVideoFormat kind : {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_UYVY}) {
      const PipeFormat format{kind, width, height};
      std::string picture;
      for (int i = 0; i < width * height; ++i)
        picture += static_cast<char>(width == 1 ? 77 : Slope(i % width, width));
      gst::LumaReader reader({width, height}, {800, 480}, {290, 260, 510, 400});
      const BufferPtr buffer = MakeFrame(format, picture, 0, 5);
      const gst::MappedFrame frame(format.Info(), buffer.get());
      ASSERT_TRUE(frame.Valid());
      const auto scaled = reader.Read(frame);
      ASSERT_EQ(scaled.size(), std::size_t{800} * 480);
      for (int x = 0; x < 800; ++x)
        EXPECT_NEAR(scaled[800 * 240 + x], width == 1 ? 77 : Slope(x, 800), 2) << width << " " << x;
    }
  }
  const PipeFormat format{GST_VIDEO_FORMAT_I420, 640, 360};
  Pipe pipe(format, EveryFrame());
  for (int i = 0; i < 7; ++i) {
    BufferPtr buffer = MakeFrame(format, Picture(format, i), PtsOf(i));
    const std::string bytes = BytesOf(buffer.get());
    EXPECT_EQ(pipe.Push(std::move(buffer)), GST_FLOW_OK);
    EXPECT_TRUE(BytesOf(pipe.Pull().get()) == bytes);
  }
  EXPECT_EQ(pipe.TakeTold().size(), 7U);
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_INFO),
            "frames of 640 x 360 are stretched to 800 x 480 for the module alone\n");
}

TEST(ElementFrames, CapsMayChangeOnTheWay) {
  PipeFormat format;
  const std::vector<double> expected = ScoresOf(format, 8);
  Pipe pipe(format, EveryFrame());
  const auto push = [&](int frame) {
    EXPECT_EQ(pipe.Push(MakeFrame(format, Picture(format, frame), PtsOf(frame))), GST_FLOW_OK);
  };
  for (int i = 0; i < 4; ++i) push(i);
  format.format = GST_VIDEO_FORMAT_NV12;  // the same to the module
  pipe.SetFormat(format);
  for (int i = 4; i < 8; ++i) push(i);
  EXPECT_EQ(ScoresOf(pipe.TakeTold()), expected);
  // Frames of another size are another detector's.
  format.width = 1920;
  format.height = 1080;
  pipe.SetFormat(format);
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(pipe.Push(MakeFrame(format, Picture(format, i), PtsOf(8 + i))), GST_FLOW_OK);
  }
  EXPECT_EQ(ScoresOf(pipe.TakeTold()), ScoresOf(format, 7));
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING), "");
}

}  // namespace
}  // namespace stopngo::test
