// drawing_test.cpp: what the module saw, drawn into frames of every format and size.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include "host/detector.h"
#include "host/gstreamer/formats.h"
#include "host/gstreamer/luma_reader.h"
#include "host/module/module.h"
#include "host/overlay/overlay.h"
#include "host/sampled_area.h"
#include "pipe.h"
#include "support/forgotten_fonts.h"
#include "support/squares.h"

namespace stopngo::test {
namespace {

const Properties kDrawn{{"weights", ""}, {"no-weights", "true"}, {"draw", "all"}};
/// Behind it, frames are not analysed: without weights every score is high.
constexpr int kLast = 3;

std::string Moving(const PipeFormat& format, int frame) {
  return Squares(format.width, format.height, 3 * frame, frame);
}

GstClockTime Sixths(int frame) { return gst_util_uint64_scale(GST_SECOND, static_cast<guint64>(frame), 6); }

/// Luma of the picture that an overlay of the command makes of the same frames. full: of 0 to 255, else of 16 to 235.
std::vector<double> LumaOfOverlay(const PipeFormat& format, bool full) {
  const Module module(STOPNGO_MODULE_FILE);
  Settings settings;
  settings.no_weights = true;
  const FrameFormat frames{format.width, format.height, 6};
  Detector detector(module, settings, frames);
  Overlay overlay(frames, ProbeSampledArea(module, settings, frames), 10);
  for (int i = 0; i <= kLast; ++i) {
    const std::string luma = Moving(format, i);
    const LumaFrame frame{format.width, format.height, i, i / 6.0, {luma.begin(), luma.end()}};
    const FrameReport report = detector.Write(frame);
    overlay.Record(report);
    overlay.Draw(ViewOf(frame), report, detector.Context());
  }
  const std::span<const std::uint8_t> pixels = overlay.Picture().Pixels();
  std::vector<double> luma;
  luma.reserve(pixels.size() / 4);
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    // ITU-R BT.601.
    const double grey = 0.114 * pixels[i] + 0.587 * pixels[i + 1] + 0.299 * pixels[i + 2];
    luma.push_back(full ? grey : 16 + grey * 219 / 255);
  }
  return luma;
}

/// The frame that comes out last.
BufferPtr LastDrawn(const PipeFormat& format, int padding) {
  Pipe pipe(format, kDrawn);
  BufferPtr last;
  for (int i = 0; i <= kLast; ++i) {
    EXPECT_EQ(pipe.Push(MakeFrame(format, Moving(format, i), Sixths(i), padding)), GST_FLOW_OK);
    last = pipe.Pull();
  }
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING), "");
  return last;
}

void ExpectLuma(const PipeFormat& format, int padding, const std::vector<double>& expected) {
  const BufferPtr drawn = LastDrawn(format, padding);
  const gst::MappedFrame frame(format.Info(), drawn.get());
  ASSERT_TRUE(frame.Valid());
  double worst = 0;
  for (int y = 0; y < format.height; ++y) {
    for (int x = 0; x < format.width; ++x) {
      const int found = frame.Luma()[std::ptrdiff_t{y} * frame.Stride() + std::ptrdiff_t{x} * frame.Step()];
      const double difference =
          found - expected[static_cast<std::size_t>(y) * static_cast<std::size_t>(format.width) +
                           static_cast<std::size_t>(x)];
      worst = std::max(worst, std::abs(difference));
    }
  }
  EXPECT_LE(worst, 2) << format.Caps() << " " << padding;
}

TEST(ElementDrawing, IsThatOfTheCommandInEveryFormat) {
  const std::vector<double> limited = LumaOfOverlay({}, false);
  EXPECT_GT(*std::ranges::max_element(limited) - *std::ranges::min_element(limited), 100);
  InitGst();
  unsigned count = 0;
  const GstVideoFormat* const formats = gst_video_formats_raw(&count);
  for (unsigned i = 0; i < count; ++i) {
    if (!gst::HasLuma(*gst_video_format_get_info(formats[i]))) continue;
    PipeFormat format;
    format.format = formats[i];
    const bool full = format.Info().colorimetry.range == GST_VIDEO_COLOR_RANGE_0_255;
    for (const int padding : {-1, 36}) ExpectLuma(format, padding, full ? LumaOfOverlay({}, true) : limited);
  }
}

TEST(ElementDrawing, TakesTheFramesSize) {
  const PipeFormat full{GST_VIDEO_FORMAT_NV12, 1280, 720};
  EXPECT_EQ(BytesOf(LastDrawn(full, -1).get()).size(), full.Info().size);
  for (const auto& [width, height] : {std::pair{640, 360}, {401, 241}, {1, 1}}) {
    const PipeFormat scaled{GST_VIDEO_FORMAT_I420, width, height};
    EXPECT_NE(BytesOf(LastDrawn(scaled, 3).get()),
              BytesOf(MakeFrame(scaled, Moving(scaled, kLast), 0, 3).get()))
        << width;
  }
}

// Between frames that are handed over, too; and it may be wanted or not while frames flow.
TEST(ElementDrawing, BeginsAndEndsOnTheWay) {
  const PipeFormat format{GST_VIDEO_FORMAT_I420, 800, 480, 30, 1};
  Pipe pipe(format, {{"weights", ""}, {"no-weights", "true"}});
  for (int i = 0; i < 30; ++i) {
    const bool wanted = i >= 7 && i < 20;
    if (i == 7) pipe.Set("draw", "all");
    if (i == 20) pipe.Set("draw", "none");
    BufferPtr buffer =
        MakeFrame(format, Moving(format, i), gst_util_uint64_scale(GST_SECOND, static_cast<guint64>(i), 30));
    const BufferPtr held(gst_buffer_ref(buffer.get()));
    const std::string bytes = BytesOf(held.get());
    EXPECT_EQ(pipe.Push(std::move(buffer)), GST_FLOW_OK);
    EXPECT_EQ(BytesOf(pipe.Pull().get()) != bytes, wanted) << i;
    EXPECT_TRUE(BytesOf(held.get()) == bytes) << "others see what came";
  }
}

// Colours of which a layout says that they lie beyond the buffer's end.
TEST(ElementDrawing, StaysInsideTheBuffer) {
  const PipeFormat format{GST_VIDEO_FORMAT_I420};
  Pipe pipe(format, kDrawn);
  for (int i = 0; i < 3; ++i) {
    BufferPtr buffer = MakeFrame(format, Moving(format, i), Sixths(i));
    const std::string bytes = BytesOf(buffer.get());
    gsize offsets[] = {0, format.Info().size - 10, 384000};
    int strides[] = {800, 400, 400};
    gst_buffer_add_video_meta_full(buffer.get(), GST_VIDEO_FRAME_FLAG_NONE, format.format, 800, 480, 3,
                                   offsets, strides);
    EXPECT_EQ(pipe.Push(std::move(buffer)), GST_FLOW_OK);
    EXPECT_TRUE(BytesOf(pipe.Pull().get()) == bytes);
  }
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING),
            "frames whose pixels do not all lie in their buffer are not drawn into\n");
}

}  // namespace
}  // namespace stopngo::test
