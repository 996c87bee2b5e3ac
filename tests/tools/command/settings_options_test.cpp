// settings_options_test.cpp: which of options, file, sidecar and defaults a setting comes from.
#include "command/options/settings_options.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/common/sha256.h"
#include "host/settings/settings.h"
#include "host/settings/sidecar.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

class SettingsOptionsTest : public testing::Test {
 protected:
  // A weights file of the module's default counts, all tiny.
  [[nodiscard]] std::string Weights(std::string_view name) const {
    return folder_.File(name, std::string(10372, '\1'));
  }

  // A sidecar that matches; settings: JSON.
  void WriteSidecarOf(const std::string& weights, const std::string& settings) const {
    const std::string text = R"({"format": 1, "inputs": 160, "hiddens": 16, "sha256": ")" +
                             Sha256(ReadFile(weights)) + R"(", "settings": )" + settings + "}\n";
    (void)folder_.File(std::filesystem::path(SidecarPath(weights)).filename().string(), text);
  }

  [[nodiscard]] Settings Completed(const std::vector<std::string>& arguments) const {
    CLI::App app;
    Settings settings;
    SettingsOptions options(app, settings);
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    app.parse(reversed);
    options.Complete();
    return settings;
  }

  TemporaryFolder folder_;
};

TEST_F(SettingsOptionsTest, OptionsWinOverTheFileTheFileOverTheSidecarTheSidecarOverDefaults) {
  const std::string weights = Weights("w.bin");
  WriteSidecarOf(weights, R"({"rate": 7, "threshold": 0.7, "time-leaving": 5, "time-cooling": "4s"})");
  const std::string config =
      folder_.File("car.toml", "weights = \"w.bin\"\nthreshold = 0.6\ntime-leaving = 4\n");
  const Settings settings = Completed({"--config", config, "--time-leaving", "2"});
  EXPECT_EQ(settings.weights, weights);
  EXPECT_EQ(settings.time_leaving.value, 2);
  EXPECT_EQ(settings.threshold, 0.6);
  EXPECT_EQ(settings.rate, 7);
  EXPECT_EQ(settings.time_cooling.Frames(7), 28);
  EXPECT_EQ(settings.gap_op, Settings().gap_op);
  // An option that says what the default says is given all the same.
  EXPECT_EQ(Completed({"--weights", weights, "--rate", "6"}).rate, 6);
  EXPECT_EQ(Completed({"--config", config, "--no-weights"}).rate, Settings().rate);
  ExpectWords(FailureOf([&] {
                (void)Completed({"--weights", weights, "--hiddens", "12"});
              }),
              {"w.bin.json", "16 hidden", "12 hidden"});
  const std::string both = folder_.File("both.toml", "weights = \"w.bin\"\nno-weights = true\n");
  ExpectWords(FailureOf([&] { (void)Completed({"--config", both}); }), {"both.toml", "exclude"});
}

}  // namespace
}  // namespace stopngo::test
