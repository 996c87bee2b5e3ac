// allocation_test.cpp: what reads files and opens detectors, without one of the allocations that it asks for: it does
// its work all the same, or the lack of memory is told as such, and nothing else happens.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "host/check.h"
#include "host/common/text.h"
#include "host/detector.h"
#include "host/gates/history.h"
#include "host/module/module.h"
#include "host/settings/gate_kinds.h"
#include "host/settings/settings.h"
#include "host/settings/settings_file.h"
#include "host/settings/weights_file.h"
#include "support/operator_new.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

/// Does work, which gives what it came to as text, without each of its allocations in turn.
void Sweep(const std::function<std::string()>& work) {
  const std::string expected = work();
  int told = 0;
  for (long n = 0;; ++n) {
    ASSERT_LT(n, 20000) << "the work asks for ever more";
    std::optional<std::string> result;
    bool failed = false;
    {
      const FailingAllocation failing(n);
      try {
        result = work();
      } catch (const std::bad_alloc&) {
      }
      failed = FailingAllocation::Failed();
    }
    if (result) {
      EXPECT_EQ(*result, expected) << "without allocation " << n;
    } else {
      ++told;
    }
    if (!failed) break;
  }
  EXPECT_GT(told, 5);
}

constexpr int kAllGates = (1 << kGateCount) - 1;

bool NothingIsSettled(const std::string& /*name*/) { return false; }

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  return text;
}

/// Weights, and settings that name them. Not sidecars: the JSON library allocates where it gives memory back, and there
/// a lack of it ends a program whatever we do.
class Allocation : public testing::Test {
 protected:
  Allocation() {
    const std::string weights(4 * (162 * 16 + 1), '\1');
    path_ = folder_.File("w.bin", weights);
    history_ = folder_.File("h.bin", weights.substr(0, 4 * ((kHistoryInputs + 2) * kHistoryHiddens + 1)));
    config_ = folder_.File("car.toml",
                           "rate = 6\nweights = \"w.bin\"\ntime-cooling = \"5s\"\nfilter = \"median\"\n");
  }

  [[nodiscard]] Settings WithAllGates() const {
    Settings settings;
    settings.weights = path_;
    settings.gates = kAllGates;
    settings.speed_file = config_;
    settings.history_weights = history_;
    return settings;
  }

  TemporaryFolder folder_;
  std::string path_;
  std::string history_;
  std::string config_;
};

TEST_F(Allocation, SettingsFile) {
  Sweep([this] {
    Settings settings;
    (void)ReadSettingsFile(config_, settings, NothingIsSettled);
    return Joined(SettingsLines(settings));
  });
}

TEST_F(Allocation, Weights) {
  Sweep([this] { return WeightsBytes(ReadWeights(path_, 160, 16, "--features")); });
}

TEST_F(Allocation, Check) {
  const Module module(STOPNGO_MODULE_FILE);
  Sweep([&] {
    stopngo::Setup setup;
    setup.settings.weights = path_;
    setup.settings.roi_width = 230;
    setup.settings.scale = 3;
    setup.settings.time_leaving = {-1, false};
    std::string text;
    for (const Finding& finding : CheckSetup(module, setup)) text.append(SentenceOf(finding)).append("\n");
    return text;
  });
}

TEST_F(Allocation, Detector) {
  Sweep([this] {
    const Module module(STOPNGO_MODULE_FILE);
    stopngo::Detector detector(module, WithAllGates(), {800, 480, 6});
    LumaFrame frame{800, 480, 0, 0, std::vector<std::uint8_t>(std::size_t{800} * 480, 7)};
    std::string text;
    for (; frame.index < 4; ++frame.index) {
      const FrameReport report = detector.Write(frame);
      text += Print("%d %d %d %.9g\n", report.decided, report.analysed, report.decision, report.score);
    }
    return text;
  });
}

TEST_F(Allocation, GatesTakeNoneOnceTheyAreMade) {
  const Module module(STOPNGO_MODULE_FILE);
  stopngo::Detector detector(module, WithAllGates(), {800, 480, 6});
  LumaFrame frame{800, 480, 0, 0, std::vector<std::uint8_t>(std::size_t{800} * 480, 7)};
  const FailingAllocation failing(0);
  for (; frame.index < 100; ++frame.index, frame.time_s += 1.0 / 6) {
    frame.pixels.assign(frame.pixels.size(), frame.index % 20 < 10 ? 40 : 80);
    detector.Write(frame);
    EXPECT_FALSE(FailingAllocation::Failed()) << frame.index;
  }
}

}  // namespace
}  // namespace stopngo::test
