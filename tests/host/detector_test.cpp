// detector_test.cpp: settings on their way into the module, and what is told where they do not fit.
#include "host/detector.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/common/failure.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "host/settings/settings_file.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"
#include "vel_stopngo_ctx.h"

namespace stopngo::test {
namespace {

constexpr double kRate = 20;

/// The record of a detector that was opened with the settings.
VEL_STOPNGO_CTX ContextFor(const Settings& settings) {
  const Module module(STOPNGO_MODULE_FILE);
  return Detector(module, settings, {settings.input_width, settings.input_height, kRate}).Context();
}

/// Numbers that are not the same, so that a shift of one shows.
std::string Weights(int numbers) {
  std::string bytes;
  for (int i = 0; i < numbers; ++i) {
    const float weight = static_cast<float>(i * 7919 % 13 - 6) / 4;
    bytes.append(reinterpret_cast<const char*>(&weight), sizeof weight);
  }
  return bytes;
}

TEST(Detector, EverySettingReachesTheModule) {
  const TemporaryFolder folder;
  const std::string config = folder.File("all.toml", R"(
no-weights = true
input-width = 640
input-height = 360
original-size = 641
roi-x = 4294967295
roi-y = -2147483648
roi-width = 200
roi-height = 130
scale = 4
block-size = 9
features = 40
hiddens = 7
time-beeping = "1.5s"
time-cooling = 33
time-leaving = "0.26s"
frame-skip = 9
threshold = 0.55
gap-op = -3
filter = "gaussian"
log = -1
lcd-width = 1024
lcd-height = 600
)");
  Settings settings;
  (void)ReadSettingsFile(config, settings, [](const std::string&) { return false; });
  const VEL_STOPNGO_CTX context = ContextFor(settings);
  EXPECT_EQ(context.EndXInput, 640U);
  EXPECT_EQ(context.EndYInput, 360U);
  EXPECT_EQ(context.originalSize, 641);
  EXPECT_EQ(context.ROI_X, 4294967295U);
  EXPECT_EQ(context.ROI_Y, 2147483648U);
  EXPECT_EQ(context.EndX, 200U);
  EXPECT_EQ(context.EndY, 130U);
  EXPECT_EQ(context.Scale, 4);
  EXPECT_EQ(context.BlockSize, 9U);
  EXPECT_EQ(context.Features, 40U);
  EXPECT_EQ(context.Hiddens, 7U);
  EXPECT_EQ(context.TimeBeeping, 30);
  EXPECT_EQ(context.TimeCooling, 33);
  EXPECT_EQ(context.TimeLeaving, 5);
  EXPECT_EQ(context.FrameSkip, 9);
  EXPECT_EQ(context.Classifiy, 0.55F);
  EXPECT_EQ(context.GapOp, -3);
  EXPECT_EQ(context.Filter, 2);
  EXPECT_EQ(context.Log, -1);
  EXPECT_EQ(context.debug_fb_width, 1024U);
  EXPECT_EQ(context.debug_fb_height, 600U);
  // Derived from the sizes above, and the hold expired at the new cooling time.
  EXPECT_EQ(context.NumX, 20U);
  EXPECT_EQ(context.NumY, 12U);
  EXPECT_EQ(context.Features_2, 80U);
  EXPECT_EQ(context.AlarmCounter[1], 33);
}

TEST(Detector, WeightsAreThoseOfTheNetworkInForce) {
  const TemporaryFolder folder;
  const std::string bytes = Weights(2593);
  Settings settings;
  settings.weights = folder.File("good.bin", bytes);
  const VEL_STOPNGO_CTX context = ContextFor(settings);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(context.Weight), bytes.size()), bytes);
  EXPECT_EQ(context.classify_path, settings.weights);
  // The counts in force decide, not the defaults: (2 x 8 + 2) x 4 + 1 numbers.
  settings.weights = folder.File("small.bin", Weights(73));
  settings.features = 8;
  settings.hiddens = 4;
  EXPECT_EQ(ContextFor(settings).Features_2, 16U);
}

TEST(Detector, RefusalsSayWhatDoesNotFit) {
  const TemporaryFolder folder;
  struct Case {
    void (*change)(Settings& settings);
    ExitCode code;
    std::vector<std::string> words;
  };
  for (const Case& refused : {
           Case{[](Settings& s) { s.no_weights = false; }, ExitCode::kUsage, {"--weights", "--no-weights"}},
           Case{[](Settings& s) { s.original_size = 1280; },
                ExitCode::kUsage,
                {"1280 x 720", "800 x 480", "--original-size"}},
           Case{[](Settings& s) { s.debug_fb = "fb.ppm", s.lcd_width = 0; },
                ExitCode::kUsage,
                {"--lcd-width"}},
           Case{[](Settings& s) { s.debug_fb = "fb.ppm", s.lcd_height = 16385; },
                ExitCode::kUsage,
                {"--lcd-height", "16384"}},
           Case{[](Settings& s) { s.weights = std::string(200, 'w'); }, ExitCode::kFailed, {"127"}},
           Case{[](Settings& s) { s.weights = "gone.bin"; }, ExitCode::kFailed, {"gone.bin"}},
           Case{[](Settings& s) {
                  s.time_cooling = {1e9, true};
                },
                ExitCode::kUsage,
                {"too many frames"}},
       }) {
    Settings settings;
    settings.no_weights = true;
    refused.change(settings);
    try {
      const Module module(STOPNGO_MODULE_FILE);
      const Detector detector(module, settings, {800, 480, kRate});
      ADD_FAILURE() << refused.words.front();
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Code(), refused.code) << failure.what();
      ExpectWords(failure.what(), refused.words);
    }
  }
}

TEST(Detector, FramesThatItCannotTakeAreRefusedByNumber) {
  Settings settings;
  settings.no_weights = true;
  settings.roi_y = 400;
  const Module module(STOPNGO_MODULE_FILE);
  Detector detector(module, settings, {800, 480, kRate});
  LumaFrame frame{800, 480, 7, 0, std::vector<std::uint8_t>(std::size_t{800} * 480)};
  ExpectWords(FailureOf([&] { detector.Write(frame); }), {"frame 7", "220 x 140", "800 x 480", "--roi-y"});
  LumaFrame small{400, 240, 8, 0, std::vector<std::uint8_t>(std::size_t{400} * 240)};
  ExpectWords(FailureOf([&] { detector.Write(small); }), {"frame 8", "size"});
  const LumaView cut{800, 480, 9, 0, std::span(frame.pixels).first(frame.pixels.size() - 1)};
  ExpectWords(FailureOf([&] { detector.Write(cut); }), {"frame 9", "size"});
}

// Every score is 0.5, above the threshold: four of them are an alarm.
TEST(Detector, StartsAnewAfterAPause) {
  Settings settings;
  settings.no_weights = true;
  const Module module(STOPNGO_MODULE_FILE);
  Detector detector(module, settings, {800, 480, kRate});
  const std::vector<std::uint8_t> pixels(std::size_t{800} * 480);
  LumaView frame{800, 480, 0, 0, pixels};
  std::vector<int> decisions;
  for (; frame.index < 12; ++frame.index) {
    if (frame.index == 3 || frame.index == 9) detector.Restart();
    const FrameReport report = detector.Write(frame);
    EXPECT_EQ(report.decided, frame.index != 0 && frame.index != 3 && frame.index != 9) << frame.index;
    if (report.changed) decisions.push_back(static_cast<int>(frame.index) * 10 + report.decision);
  }
  // The third high score before the pause counts no more; the end of the alarm that a pause breaks off is told.
  EXPECT_EQ(decisions, (std::vector{71, 100}));
}

TEST(Module, SaysWhatItCannotLoad) {
  ExpectWords(FailureOf([] { const Module module("/nowhere/libzetstopngo.so"); }),
              {"/nowhere/libzetstopngo.so"});
  ExpectWords(FailureOf([] { const Module module("nowhere.so"); }), {"./nowhere.so"});
  // A shared object, but another one.
  ExpectWords(FailureOf([] { const Module module("/proc/self/exe"); }), {"cannot be loaded"});
  const Module module(STOPNGO_MODULE_FILE);
  ExpectWords(FailureOf([&] { (void)module.Routine<void()>("Nothing_"); }), {"Nothing_"});
}

}  // namespace
}  // namespace stopngo::test
