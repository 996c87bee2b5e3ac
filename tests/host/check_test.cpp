// check_test.cpp: what speaks against a set-up: a row a finding, beside set-ups that nothing speaks against.
#include "host/check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "host/module/module.h"
#include "host/settings/gate_kinds.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

/// Nothing speaks against it: the defaults, in frames that come as announced.
Setup Sound() {
  Setup setup;
  setup.settings.no_weights = true;
  setup.frames = FrameFormat{800, 480, setup.settings.rate};
  setup.length = 600;
  return setup;
}

std::vector<Finding> Findings(const Setup& setup) {
  static const Module module(STOPNGO_MODULE_FILE);
  return CheckSetup(module, setup);
}

std::string Codes(const Setup& setup) {
  std::string codes;
  for (const Finding& finding : Findings(setup)) {
    codes += (finding.severity == Severity::kError ? "!" : "") + finding.code + " ";
    EXPECT_FALSE(finding.sentence.empty() || finding.remedy.empty() || finding.setting.empty())
        << finding.code;
  }
  return codes;
}

using Change = std::function<void(Setup&)>;

struct CheckCase {
  const char* codes;  ///< all that are found, ! before an error
  Change change;
};

std::vector<CheckCase> Cases(const std::string& short_file) {
  return {
      {"", [](Setup&) {}},
      {"", [](Setup& s) { s.frames.reset(); }},
      {"",
       [](Setup& s) {
         s.frames = FrameFormat{1920, 1080, 6};
       }},
      {"!frame-size ", [](Setup& s) { s.frames->width = 20000; }},
      {"!frame-refused ", [](Setup& s) { s.frames->height = 600; }},
      {"!outside-frame ", [](Setup& s) { s.settings.roi_x = 700; }},
      {"!outside-frame !frame-refused ", [](Setup& s) { s.settings.roi_y = 400; }},
      {"!frame-refused part-cells ", [](Setup& s) { s.settings.roi_width = 230; }},
      {"!block-size !frame-refused ", [](Setup& s) { s.settings.block_size = 0; }},
      {"!scale ", [](Setup& s) { s.settings.scale = 3; }},
      {"!filter ", [](Setup& s) { s.settings.filter = 3; }},
      {"!negative-time ", [](Setup& s) { s.settings.time_leaving.value = -1; }},
      {"!gap-op ", [](Setup& s) { s.settings.gap_op = -1; }},
      {"!threshold-always ", [](Setup& s) { s.settings.threshold = -0.1; }},
      {"!threshold-never ", [](Setup& s) { s.settings.threshold = 1; }},
      {"!leaving-unreachable long-leaving ", [](Setup& s) { s.settings.time_leaving.value = 599; }},
      {"!weights ", [](Setup& s) { s.settings.no_weights = false; }},
      {"!weights ", [short_file](Setup& s) { s.settings.weights = short_file; }},
      {"!gate-limit ", [](Setup& s) { s.settings.once_busy = s.settings.once_calm - 1; }},
      {"!gate-limit ", [](Setup& s) { s.settings.light_rate = -1; }},
      {"!gate-limit ", [](Setup& s) { s.settings.picture_black = 256; }},
      {"!gate-limit ", [](Setup& s) { s.settings.history_threshold = 1.5; }},
      {"!history-weights ",
       [](Setup& s) {
         s.settings.gates = BitOf(GateKind::kHistory);
         s.settings.history_weights = "none.bin";
       }},
      {"!history-weights ",
       [short_file](Setup& s) {
         s.settings.gates = BitOf(GateKind::kHistory);
         s.settings.history_weights = short_file;
       }},
      {"!always-lost ",
       [](Setup& s) {
         s.settings.gates = BitOf(GateKind::kPicture);
         s.settings.picture_lost_s = 0.1;
       }},
      {"unlike-weights ",
       [](Setup& s) {
         s.sidecar = Sidecar{160, 16, "", {{"rate", "8"}, {"threshold", "0.1"}}};
       }},
      {"unlike-weights ",
       [](Setup& s) {
         s.sidecar = Sidecar{160, 16, "", {{"roi-width", "230"}}};
       }},
      {"other-features ", [](Setup& s) { s.settings.features = 40; }},
      {"beeping-cooling ", [](Setup& s) { s.settings.time_beeping.value = 5.5; }},
      {"long-cooling ", [](Setup& s) { s.settings.time_cooling.value = 16; }},
      {"long-leaving ",
       [](Setup& s) {
         s.settings.time_leaving = {4, true};
       }},
      {"short-input ", [](Setup& s) { s.length = 4; }},
      {"part-blocks ", [](Setup& s) { s.settings.roi_width = 225; }},
      {"other-features part-cells ", [](Setup& s) { s.settings.roi_width = 210; }},
      {"rate ", [](Setup& s) { s.frames->fps = 5; }},
      {"small-framebuffer ",
       [](Setup& s) {
         s.settings.debug_fb = "fb.ppm";
         s.settings.lcd_height = 100;
       }},
      {"times-in-frames ", [](Setup& s) { s.frame_counts_given = true; }},
  };
}

TEST(Check, EveryRuleFindsItsFaultAndNoOther) {
  const TemporaryFolder folder;
  const std::vector<CheckCase> cases = Cases(folder.File("short.bin", "four"));
  for (const CheckCase& one : cases) {
    auto setup = Sound();
    one.change(setup);
    EXPECT_EQ(Codes(setup), one.codes) << (&one - cases.data());
  }
}

TEST(Check, SentencesNameTheValues) {
  auto setup = Sound();
  setup.settings.roi_y = 400;
  setup.settings.threshold = 1.5;
  const std::vector<Finding> findings = Findings(setup);
  ASSERT_EQ(findings.size(), 3U);
  EXPECT_NE(findings[0].sentence.find("threshold 1.5"), std::string::npos) << findings[0].sentence;
  EXPECT_NE(findings[1].sentence.find("220 x 140 at 290, 400"), std::string::npos) << findings[1].sentence;
  EXPECT_NE(findings[2].sentence.find("region reaches outside the frame"), std::string::npos)
      << findings[2].sentence;
}

}  // namespace
}  // namespace stopngo::test
