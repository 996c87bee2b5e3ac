// write_test.cpp: one frame's way through the detector: buffers, crops, filters, mirror, log.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <vector>

#include "detector.h"
#include "heap.h"
#include "moving_picture.h"
#include "random.h"
#include "seed.h"

namespace {

using test::Detector;
using test::Noise;
using test::Printed;

std::vector<std::uint8_t> Copy(const std::uint8_t* buffer, std::size_t size) {
  return {buffer, buffer + size};
}

TEST(Write, BuffersComeOneByOneAndThenAlternate) {
  Detector detector;
  detector.Control(VEL_CTRL_STOPNGO_SET_LOG, 1, VEL_CTRL_STOPNGO_ROI_X, 290, VEL_CTRL_STOPNGO_ROI_Y, 200,
                   VEL_CTRL_STOPNGO_SET_FILTER, 3, VEL_CTRL_STOPNGO_SET_FRAME_SKIP, 5);
  const auto first = Noise(800 * 480, 1);
  EXPECT_EQ(
      Printed([&] { EXPECT_EQ(detector.Write(first.data()), 0); }),
      "[Stop&Go] org:800, scale:0, w:0,h:0 roi X:290,Y:200,W:220,H:140 s-roi X:290,Y:200,W:220,H:140\n");
  EXPECT_NE(detector->FrameOld, nullptr);
  EXPECT_EQ(detector->FrameNew, nullptr);
  EXPECT_EQ(detector->FrameSkip, 5);

  const auto second = Noise(800 * 480, 2);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(detector.Write(second.data()), 0); }),
            "[Stop&Go] scale:0, w:0,h:0 roi X:290,Y:200,W:220,H:140 s-roi X:290,Y:200,W:220,H:140, "
            "ctx->Filter : 3\n"
            "[Stop&Go] result:0.500000, AlarmCounter0:0, AlarmCounter1:20, flagOld:0, flag:0, gap:0, skip:4, "
            "GapOp:2\n");
  const std::uint8_t* old_buffer = detector->FrameOld;
  const std::uint8_t* new_buffer = detector->FrameNew;
  EXPECT_EQ(new_buffer[220 + 1], second[201 * 800 + 291]);
  EXPECT_EQ(old_buffer[139 * 220 + 219], first[339 * 800 + 509]);

  detector.Write(first.data());
  EXPECT_EQ(detector->FrameOld, new_buffer);
  EXPECT_EQ(detector->FrameNew, old_buffer);

  // After a derivation both lines come again.
  detector.Update();
  EXPECT_NE(Printed([&] { detector.Write(first.data()); }).find("org:800"), std::string::npos);
  EXPECT_NE(Printed([&] { detector.Write(first.data()); }).find("ctx->Filter"), std::string::npos);
}

struct ZoomCase {
  int scale, original, input_width;
  const char* line;
};

TEST(Write, ZoomGeometry) {
  const ZoomCase cases[] = {
      {5, 800, 800,
       "org:800, scale:5, w:110,h:70 roi X:290,Y:200,W:220,H:140 s-roi X:345,Y:246,W:110,H:70\n"},
      {3, 800, 800, "org:800, scale:3, w:66,h:42 roi X:290,Y:200,W:220,H:140 s-roi X:323,Y:228,W:154,H:98\n"},
      {5, 1920, 800,
       "org:1920, scale:5, w:0,h:0 roi X:290,Y:200,W:220,H:140 s-roi X:290,Y:200,W:220,H:140\n"},
      {5, 1920, 1920,
       "org:1920, scale:5, w:110,h:70 roi X:290,Y:200,W:220,H:140 s-roi X:345,Y:246,W:110,H:70\n"},
      {-4, 800, 800,
       "org:800, scale:-4, w:-88,h:-56 roi X:290,Y:200,W:220,H:140 s-roi X:246,Y:163,W:308,H:196\n"},
      // In single precision, step by step: one less than the exact 116.6 rounded would allow.
      {13, 800, 800,
       "org:800, scale:13, w:286,h:182 roi X:290,Y:200,W:220,H:140 s-roi X:433,Y:321,W:-66,H:-42\n"},
  };
  const std::vector<std::uint8_t> frame(1920 * 1080, 1);
  for (const ZoomCase& c : cases) {
    Detector detector;
    detector.Control(VEL_CTRL_STOPNGO_SET_SCALE, c.scale, VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, c.original,
                     VEL_CTRL_STOPNGO_INPUT_WIDTH, c.input_width, VEL_CTRL_STOPNGO_ROI_X, 290,
                     VEL_CTRL_STOPNGO_ROI_Y, 200, VEL_CTRL_STOPNGO_SET_LOG, 1);
    EXPECT_EQ(Printed([&] { detector.Write(frame.data()); }), std::string("[Stop&Go] ") + c.line);
  }
}

TEST(Write, CropAndFilterFollowTheSettings) {
  const auto frame = Noise(1920 * 1080, 3);
  const std::uint32_t region[] = {100, 200, 240, 420};
  for (const int original : {800, 1920, 1280, 1024}) {
    for (const int filter : {0, 1, 2, -1}) {
      Detector detector;
      detector.Control(VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, original, VEL_CTRL_STOPNGO_SET_FILTER, filter,
                       VEL_CTRL_STOPNGO_ROI_X, 200, VEL_CTRL_STOPNGO_ROI_Y, 100, VEL_CTRL_STOPNGO_SET_SCALE,
                       6);
      ASSERT_EQ(detector.Write(frame.data()), 0);
      std::vector<std::uint8_t> expected(140 * 220);
      if (original == 1920 || original == 1280) {
        const std::uint32_t height = original == 1920 ? 1080 : 720;
        const auto width = static_cast<std::uint32_t>(original);
        Image_Original_Cropping_(width, height, frame.data(), expected.data(), region, region, 6, 0, height,
                                 width);
      } else {
        // The zoom's rectangle starts at rows 100 + 2 × 84 / 3 and columns 200 + 132 / 2; without it, at the region.
        const std::uint32_t zoomed[] = {156, 266, 0, 0};
        Image_Cropping_(frame.data(), expected.data(), original == 800 ? zoomed : region, region, 6, 0, 480,
                        800);
      }
      if (filter == 1) image_median_filter(expected.data(), 0, 220, 140);
      if (filter == 2) image_gaussian_blur_filter(expected.data(), 0, 220, 140);
      EXPECT_EQ(Copy(detector->FrameOld, expected.size()), expected) << original << " filter " << filter;
    }
  }
}

TEST(Write, FeaturesOfTwoFramesAreScored) {
  Detector detector;
  test::MovingPicture picture(800, 480, test::Seed(11));
  test::Random random(test::Seed(12));
  for (float& weight : detector->Weight) weight = random.Signed();
  detector.Control(VEL_CTRL_STOPNGO_ROI_X, 290, VEL_CTRL_STOPNGO_ROI_Y, 200, VEL_CTRL_STOPNGO_SET_LOG, 1,
                   VEL_CTRL_STOPNGO_SET_TIME_LEAVING, 1000000);
  std::vector<float> previous(80, 0.0F);
  for (int frame = 0; frame < 5; ++frame) {
    const std::string printed = Printed([&] { detector.Write(picture.Next().data()); });
    if (frame == 0) continue;
    std::vector<std::int8_t> motion(480);
    Block_Match_TSS_(detector->FrameOld, detector->FrameNew, motion.data(), 10, 12, 20, 220);
    EXPECT_TRUE(std::ranges::equal(motion, detector->Motion));
    EXPECT_TRUE(std::equal(previous.begin(), previous.end(), detector->Feature));
    previous.assign(detector->Feature + 80, detector->Feature + 160);
    EXPECT_NE(previous, std::vector<float>(80, 0.0F));
    char score[32];
    std::snprintf(score, sizeof score, "result:%f,",
                  double{Classify_Feature_(detector->Feature, detector->Weight, 160, 16)});
    EXPECT_NE(printed.find(score), std::string::npos) << printed;
  }
}

TEST(Write, UnhandledScaleLeavesADefinedPicture) {
  Detector detector;
  detector.Control(VEL_CTRL_STOPNGO_SET_SCALE, 9);
  const auto frame = Noise(800 * 480, 5);
  EXPECT_EQ(detector.Write(frame.data()), 0);
  EXPECT_EQ(Copy(detector->FrameOld, 220 * 140), std::vector<std::uint8_t>(220 * 140, 0));
}

TEST(Write, MirrorIsClippedToTheFramebuffer) {
  for (const auto& [width, height] : {std::pair{800, 480}, {100, 480}, {300, 60}, {220, 0}, {0, 10}}) {
    Detector detector;
    const int rows = height == 0 ? 140 : height;
    test::Fenced framebuffer(static_cast<std::size_t>(width) * rows * 4);
    detector.Control(VEL_CTRL_STOPNGO_DEBUG_FB, framebuffer.Data(), VEL_CTRL_STOPNGO_LCD_WIDTH, width,
                     VEL_CTRL_STOPNGO_LCD_HEIGHT, height);
    const auto frame = Noise(800 * 480, 6);
    detector.Write(frame.data());
    EXPECT_TRUE(std::ranges::all_of(framebuffer.Bytes(), [](int byte) { return byte == 0; }));
    ASSERT_EQ(detector.Write(frame.data()), 0);
    std::vector<std::uint8_t> expected(framebuffer.Bytes().size(), 0);
    for (int y = 0; y < std::min(rows, 140); ++y) {
      for (int x = 0; x < std::min(width, 220); ++x) {
        std::uint8_t* pixel = &expected[(static_cast<std::size_t>(y) * width + x) * 4];
        pixel[0] = pixel[1] = pixel[2] = frame[static_cast<std::size_t>(y) * 800 + x];
        pixel[3] = 255;
      }
    }
    EXPECT_TRUE(std::ranges::equal(framebuffer.Bytes(), expected)) << width << "x" << height;
  }
}

TEST(Write, LinearExtentIsWhatCounts) {
  // The region passes the right edge: its rows go on in the next rows of the same frame.
  test::Fenced frame(800 * 480);
  test::Random random(test::Seed(8));
  random.Fill(frame.Bytes());
  Detector detector;
  detector.Control(VEL_CTRL_STOPNGO_ROI_X, 700, VEL_CTRL_STOPNGO_ROI_Y, 339);
  ASSERT_EQ(detector.Write(frame.Data()), 0);
  EXPECT_EQ(detector->FrameOld[219], frame.Data()[340 * 800 + 119]);
  detector.Control(VEL_CTRL_STOPNGO_ROI_Y, 340);
  EXPECT_EQ(detector.Write(frame.Data()), -1);
  detector.Control(VEL_CTRL_STOPNGO_SET_LOG, 1);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(detector.Write(nullptr), -1); }),
            "[Stop&Go] frame refused: no frame data\n");
}

TEST(Write, HoldFramesAreNotAnalysedNorCheckedForIt) {
  Detector detector;
  const auto frame = Noise(800 * 480, 9);
  detector.Write(frame.data());
  detector->AlarmCounter[1] = 0;
  detector.Control(VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, 1000);
  std::fill_n(detector->Feature, 160, 7.0F);
  EXPECT_EQ(detector.Write(frame.data()), 0);
  EXPECT_EQ(detector->Feature[0], 7.0F);
  EXPECT_EQ(detector->AlarmCounter[1], 1);
  detector->AlarmCounter[1] = 20;
  EXPECT_EQ(detector.Write(frame.data()), -1);
}

TEST(Write, SurvivesEveryAllocationFailure) {
  const auto frame = Noise(800 * 480, 10);
  int needed = 0;
  for (int n = 1; needed == 0; ++n) {
    ASSERT_LT(n, 10) << "a detector's life allocates more than its two buffers";
    const test::HeapRule rule(test::HeapRule::Kind::kFailNth, n);
    Detector detector;
    int refused = 0;
    for (int i = 0; i < 4; ++i) {
      const auto before = detector.Snapshot();
      if (detector.Write(frame.data()) == 0) continue;
      ++refused;
      EXPECT_EQ(detector.Snapshot(), before);
    }
    if (refused == 0) needed = n - 1;
    EXPECT_LE(refused, 1);
    EXPECT_EQ(detector.Write(frame.data()), 0);
    EXPECT_NE(detector->FrameNew, nullptr);
  }
  EXPECT_EQ(needed, 2);
}

int CountDecisions(void* count, int /*flag*/) { return ++*static_cast<int*>(count); }

/// Hours of frames: alarms, holds, and settings that change while it runs.
TEST(Write, TakesNoMemoryBehindItsTwoBuffers) {
  constexpr int kWidth = 64;
  constexpr int kHeight = 56;
  constexpr int kFrames = 100'000;
  const auto pictures = Noise(kWidth * kHeight + 32, 13);
  constexpr int kScales[] = {0, 2, 4, 5, 6, 7, 8};
  Detector detector;
  int decisions = 0;
  detector.Control(VEL_CTRL_STOPNGO_INPUT_WIDTH, kWidth, VEL_CTRL_STOPNGO_INPUT_HEIGHT, kHeight,
                   VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, kWidth, VEL_CTRL_STOPNGO_ROI_WIDTH, 50,
                   VEL_CTRL_STOPNGO_ROI_HEIGHT, 42, VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 8,
                   VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 4, VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK,
                   &CountDecisions, VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, &decisions);
  detector.Update();
  const test::HeapRule rule(test::HeapRule::Kind::kFailNth, 3);
  std::size_t in_use = 0;
  for (int i = 0; i < kFrames; ++i) {
    detector.Control(VEL_CTRL_STOPNGO_SET_SCALE, kScales[i / 64 % std::size(kScales)],
                     VEL_CTRL_STOPNGO_SET_FILTER, i / 16 % 3);
    if (detector.Write(pictures.data() + i % 32) != 0) FAIL() << "frame " << i;
    if (i == 1) in_use = mallinfo2().uordblks;
  }
  EXPECT_EQ(test::HeapRule::Allocations(), 2);
  EXPECT_EQ(mallinfo2().uordblks, in_use) << "memory in use, from whatever routine";
  EXPECT_GT(decisions, 1000) << "the frames have to be ones with alarms";
}

}  // namespace
