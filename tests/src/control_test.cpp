// control_test.cpp: a context's life, the control protocol, the derived sizes, the weights file.
#include <bit>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include "detector.h"

extern "C" int vel_stopngo_header_in_c(void);
int HeaderInCpp();

namespace {

using test::Detector;
using test::Printed;

/// A file of that many floats, counting up from 1, plus extra bytes.
std::string WeightsFile(int floats, int extra_bytes = 0) {
  std::string path =
      testing::TempDir() + "weights_" + std::to_string(floats) + "_" + std::to_string(extra_bytes);
  std::vector<float> weights(static_cast<std::size_t>(floats));
  std::iota(weights.begin(), weights.end(), 1.0F);
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(weights.data()), floats * 4);
  file << std::string(static_cast<std::size_t>(extra_bytes), 'x');
  return path;
}

TEST(Context, HeaderAndRecordAgreeInBothLanguages) {
  EXPECT_EQ(vel_stopngo_get_ctx_size(), 11920);
  EXPECT_EQ(vel_stopngo.ctxsize, 11920);
  EXPECT_STREQ(vel_stopngo.name, "vel_stopngo");
  EXPECT_EQ(vel_stopngo.maxctrl, 28);
  EXPECT_EQ(vel_stopngo_header_in_c(), 0);
  EXPECT_EQ(HeaderInCpp(), 0);
}

TEST(Context, OpenOverwritesWhateverTheBlockHeld) {
  test::Fenced memory(sizeof(VEL_STOPNGO_CTX));
  std::memset(memory.Data(), 0xA5, sizeof(VEL_STOPNGO_CTX));
  ASSERT_EQ(vel_stopngo.open(memory.Data()), 0);
  const auto& ctx = *reinterpret_cast<VEL_STOPNGO_CTX*>(memory.Data());
  EXPECT_EQ(ctx.NumY, 12U);
  EXPECT_EQ(ctx.NumX, 20U);
  EXPECT_EQ(ctx.SumY, 4U);
  EXPECT_EQ(ctx.SumX, 5U);
  EXPECT_EQ(ctx.Features_2, 160U);
  EXPECT_EQ(ctx.AlarmCounter[0], 0);
  EXPECT_EQ(ctx.AlarmCounter[1], 20);
  EXPECT_EQ(ctx.TimeBeeping, 25);
  EXPECT_EQ(ctx.TimeLeaving, 3);
  EXPECT_EQ(ctx.GapOp, 2);
  EXPECT_EQ(ctx.FeatureNew - ctx.FeatureOld, 80);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(ctx.Classifiy), 0x3ECCCCCDU);
  EXPECT_EQ(ctx.originalSize, 800);
  EXPECT_EQ(ctx.event_callback, nullptr);
  EXPECT_EQ(ctx.Weight[2599], 0);
}

TEST(Context, NullContextsAreRefused) {
  EXPECT_EQ(vel_stopngo.open(nullptr), -1);
  EXPECT_EQ(vel_stopngo.close(nullptr), -1);
  EXPECT_EQ(vel_stopngo.read(nullptr, nullptr, 0), -1);
  EXPECT_EQ(vel_stopngo.write(nullptr, nullptr, 0), -1);
  EXPECT_EQ(vel_stopngo.control(nullptr, VEL_CTRL_STOPNGO_ROI_X, 1, VEL_CTRL_STOPNGO_END), -1);
  EXPECT_EQ(vel_stopngo_update_params(nullptr), -1);
  Detector detector;
  EXPECT_EQ(vel_stopngo.read(detector.Context(), nullptr, 7), 0);
}

TEST(Control, EveryWordCodeReachesItsField) {
  Detector detector;
  const std::pair<VEL_CTRL_STOPNGO, const void*> codes[] = {
      {VEL_CTRL_STOPNGO_SET_TIME_BEEPING, &detector->TimeBeeping},
      {VEL_CTRL_STOPNGO_SET_TIME_COOLING, &detector->TimeCooling},
      {VEL_CTRL_STOPNGO_SET_TIME_LEAVING, &detector->TimeLeaving},
      {VEL_CTRL_STOPNGO_INPUT_WIDTH, &detector->EndXInput},
      {VEL_CTRL_STOPNGO_INPUT_HEIGHT, &detector->EndYInput},
      {VEL_CTRL_STOPNGO_ROI_X, &detector->ROI_X},
      {VEL_CTRL_STOPNGO_ROI_Y, &detector->ROI_Y},
      {VEL_CTRL_STOPNGO_ROI_WIDTH, &detector->EndX},
      {VEL_CTRL_STOPNGO_ROI_HEIGHT, &detector->EndY},
      {VEL_CTRL_STOPNGO_SET_SCALE, &detector->Scale},
      {VEL_CTRL_STOPNGO_SET_FRAME_SKIP, &detector->FrameSkip},
      {VEL_CTRL_STOPNGO_SET_GAP_OP, &detector->GapOp},
      {VEL_CTRL_STOPNGO_SET_FILTER, &detector->Filter},
      {VEL_CTRL_STOPNGO_SET_LOG, &detector->Log},
      {VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, &detector->BlockSize},
      {VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, &detector->Features},
      {VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, &detector->Hiddens},
      {VEL_CTRL_STOPNGO_LCD_WIDTH, &detector->debug_fb_width},
      {VEL_CTRL_STOPNGO_LCD_HEIGHT, &detector->debug_fb_height},
      {VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, &detector->originalSize},
  };
  for (const auto& [code, field] : codes) {
    std::vector<std::uint8_t> expected = detector.Snapshot();
    const int value = -1000 - static_cast<int>(code);
    const auto offset =
        static_cast<const std::uint8_t*>(field) - reinterpret_cast<std::uint8_t*>(detector.Context());
    std::memcpy(&expected[static_cast<std::size_t>(offset)], &value, sizeof value);
    EXPECT_EQ(detector.Control(code, value), 0);
    EXPECT_EQ(detector.Snapshot(), expected) << "code " << code;
  }
}

TEST(Control, ListsSkipUnknownCodesAndRefuseBadFirstOnes) {
  Detector detector;
  const auto before = detector.Snapshot();
  EXPECT_EQ(vel_stopngo_control(detector.Context(), VEL_CTRL_STOPNGO_END), 0);
  EXPECT_EQ(detector.Control(VEL_CTRL_STOPNGO_MAX, VEL_CTRL_STOPNGO_ROI_X, 5), -1);
  EXPECT_EQ(detector.Control(static_cast<VEL_CTRL_STOPNGO>(40), VEL_CTRL_STOPNGO_ROI_X, 5), -1);
  EXPECT_EQ(detector.Control(static_cast<VEL_CTRL_STOPNGO>(-1), VEL_CTRL_STOPNGO_ROI_X, 5), -1);
  EXPECT_EQ(detector.Snapshot(), before);
  EXPECT_EQ(
      detector.Control(VEL_CTRL_STOPNGO_ROI_X, 10, 40, -3, VEL_CTRL_STOPNGO_MAX, VEL_CTRL_STOPNGO_ROI_Y, 20),
      0);
  EXPECT_EQ(detector->ROI_X, 10U);
  EXPECT_EQ(detector->ROI_Y, 20U);
}

TEST(Control, PathsAreCutAndNullPointersSkipped) {
  Detector detector;
  const std::string path(200, 'p');
  detector.Control(VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH, path.c_str());
  EXPECT_EQ(detector->classify_path, path.substr(0, 127));
  const auto before = detector.Snapshot();
  void* const none = nullptr;
  const std::string printed = Printed([&] {
    EXPECT_EQ(
        detector.Control(VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH, none, VEL_CTRL_STOPNGO_LOAD_CLASSIFY, none,
                         VEL_CTRL_STOPNGO_UPDATE_PARAMS, none, VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, none,
                         VEL_CTRL_STOPNGO_DEBUG_FB, none, VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, none),
        0);
  });
  EXPECT_EQ(printed, "");
  EXPECT_EQ(detector.Snapshot(), before);
  detector.Control(VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD, 0.55);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(detector->Classifiy), std::bit_cast<std::uint32_t>(0.55F));
}

TEST(UpdateParams, DerivesSizesAndStartsAnew) {
  Detector detector;
  const std::vector<std::uint8_t> frame(800 * 480, 90);
  detector.Write(frame.data());
  detector.Write(frame.data());
  detector->AlarmCounter[0] = 2;
  int untouched = 77;
  detector.Control(VEL_CTRL_STOPNGO_ROI_HEIGHT, 95, VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 40,
                   VEL_CTRL_STOPNGO_SET_TIME_COOLING, 7, VEL_CTRL_STOPNGO_UPDATE_PARAMS, &untouched);
  EXPECT_EQ(untouched, 77);
  EXPECT_EQ(detector->NumY, 7U);
  EXPECT_EQ(detector->SumY, 2U);
  EXPECT_EQ(detector->Features_2, 80U);
  EXPECT_EQ(detector->FeatureNew - detector->FeatureOld, 40);
  EXPECT_EQ(detector->AlarmCounter[0], 0);
  EXPECT_EQ(detector->AlarmCounter[1], 7);
  EXPECT_EQ(detector->FrameOld, nullptr);
  EXPECT_EQ(detector->FrameNew, nullptr);

  detector.Control(VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 0);
  detector.Update();
  EXPECT_EQ(detector->NumY, 0xFFFFFFFEU);
  EXPECT_EQ(detector->SumX, 0xFFFFFFFEU / 4);
}

TEST(Load, TakesWholeFilesAndReportsTheRest) {
  struct Case {
    int floats, extra_bytes, expected, loaded;
  };
  // One number short leaves the last weight as it was.
  for (const Case& c : {Case{2593, 0, 0, 2593}, Case{2593, 9, 0, 2593}, Case{2592, 0, -1, 2592}}) {
    Detector detector;
    detector->Weight[2592] = -5;
    detector->Weight[2593] = -6;
    const std::string path = WeightsFile(c.floats, c.extra_bytes);
    int result = 99;
    const std::string printed = Printed([&] {
      detector.Control(VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH, path.c_str(), VEL_CTRL_STOPNGO_LOAD_CLASSIFY,
                       &result);
    });
    EXPECT_EQ(result, c.expected);
    EXPECT_EQ(printed, "load classify. path:" + path +
                           ", feature:160, hidden:16, result:" + std::to_string(result) + "\n");
    EXPECT_EQ(detector->Weight[0], 1);
    EXPECT_EQ(detector->Weight[2591], 2592);
    EXPECT_EQ(detector->Weight[2592], c.loaded == 2593 ? 2593 : -5);
    EXPECT_EQ(detector->Weight[2593], -6);
    std::remove(path.c_str());
  }
}

TEST(Load, RefusesWhatCannotBeRead) {
  std::vector<float> weights(2600, -5);
  EXPECT_EQ(Classify_Load_("/nonexistent/weights", weights.data(), 160, 16), -1);
  EXPECT_EQ(Classify_Load_("/", weights.data(), 160, 16), -1);
  const std::string path = WeightsFile(4000);
  EXPECT_EQ(Classify_Load_(path.c_str(), weights.data(), 160, 17), -1);
  // These counts wrap to small networks in 32 bits.
  EXPECT_EQ(Classify_Load_(path.c_str(), weights.data(), 0xFFFFFFFEU, 16), -1);
  EXPECT_EQ(Classify_Load_(path.c_str(), weights.data(), 0x10000 - 2, 0x10000), -1);
  // And these in 64 bits, to one without a number.
  EXPECT_EQ(Classify_Load_(path.c_str(), weights.data(), 0xFFFFFFFFU, 0xFFFFFFFFU), -1);
  EXPECT_EQ(Classify_Load_(path.c_str(), nullptr, 160, 16), -1);
  EXPECT_EQ(Classify_Load_(path.c_str(), nullptr, 160, 0), -1) << "a single number, which is copied";
  EXPECT_EQ(Classify_Load_(nullptr, weights.data(), 160, 16), -1);
  EXPECT_EQ(weights, std::vector<float>(2600, -5));
  EXPECT_EQ(Classify_Load_(path.c_str(), weights.data(), 160, 0), 0);
  EXPECT_EQ(weights[0], 1);
  EXPECT_EQ(weights[1], -5);
  EXPECT_EQ(Classify_Load_(path.c_str(), weights.data(), 2597, 1), 0);
  EXPECT_EQ(weights[2599], 2600);
  std::remove(path.c_str());
}

}  // namespace
