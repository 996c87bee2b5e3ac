// sidecar_test.cpp: what is known of a weights file, beside it: written, read, taken, refused.
#include "host/settings/sidecar.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "host/common/sha256.h"
#include "host/settings/settings.h"
#include "support/damage.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

class SidecarTest : public testing::Test {
 protected:
  // A weights file of the module's default counts, all tiny.
  [[nodiscard]] std::string Weights() const { return folder_.File("w.bin", std::string(10372, '\1')); }

  TemporaryFolder folder_;
};

TEST_F(SidecarTest, ComesBackAsItWasWritten) {
  const std::string path = Weights();
  EXPECT_FALSE(ReadSidecar(path).has_value());
  Settings settings;
  settings.threshold = 0.1 + 0.2;  // needs all its digits
  settings.filter = 1;
  Sidecar sidecar{160, 16, Sha256(ReadFile(path)), SidecarSettings(settings)};
  sidecar.training["manifest"] = "odd\xFFname.tsv";
  (void)folder_.File("w.bin.json", SidecarText(sidecar));
  const auto json = nlohmann::json::parse(ReadFile(path + ".json"));
  EXPECT_EQ(json.at("settings").at("rate"), 6);
  EXPECT_EQ(json.at("settings").at("threshold"), 0.1 + 0.2);
  EXPECT_EQ(json.at("settings").at("filter"), "median");
  const Sidecar read = ReadSidecar(path).value();
  EXPECT_EQ(read.settings, sidecar.settings);
  EXPECT_EQ(read.sha256, sidecar.sha256);
  EXPECT_NO_THROW(CheckSidecar(path, read, 160, 16));
}

TEST_F(SidecarTest, ThoseOfOtherWeightsAreToldApart) {
  const std::string path = Weights();
  const Sidecar sidecar{160, 16, Sha256(ReadFile(path)), {}};
  const auto fault = [&](std::uint64_t inputs, std::uint64_t hiddens) {
    return FailureOf([&] { CheckSidecar(path, sidecar, inputs, hiddens); });
  };
  ExpectWords(fault(160, 12), {"w.bin.json", "16 hidden", "12 hidden"});
  (void)folder_.File("w.bin", std::string(10371, '\1') + '\2');
  ExpectWords(fault(160, 16), {"w.bin.json", "SHA-256", sidecar.sha256});
  (void)folder_.File("w.bin", std::string(10368, '\1'));
  ExpectWords(fault(160, 16), {"w.bin", "10372", "10368"});
}

TEST_F(SidecarTest, BadOnesAreToldByPlaceAndReason) {
  const std::string path = Weights();
  const std::string head =
      R"({"format": 1, "inputs": 160, "hiddens": 16, "sha256": ")" + Sha256(ReadFile(path)) + '"';
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
      {"", {":1: "}},
      {"{\n\"format\": 1,\n\"inputs\" 160}", {":3: ", "expected"}},
      {"[]", {"object"}},
      {R"({"format": 2})", {"format", "newer"}},
      {R"({"format": 1, "inputs": -1})", {"inputs", "whole number"}},
      {R"({"format": 1, "inputs": 160})", {"hiddens", "missing"}},
      {R"({"format": 1, "inputs": 160, "hiddens": 16, "sha256": "AB"})", {"sha256", "64"}},
      {head + R"(, "settings": {"threshold": "high"}})", {"settings: threshold", "high"}},
      {head + R"(, "settings": {"threshold": [1]}})", {"settings: threshold", "single"}},
      {head + R"(, "settings": {"weights": "x"}})", {"settings: weights"}},
      {head + R"(, "training": 3})", {"training", "object"}},
      {head + R"(, "gate": "garden"})", {"gate", "name of a gate"}},
      {head + R"(, "setings": {}})", {"setings", "no such"}},
      {head + R"(, "training": 1e999})", {"number overflow"}},
  };
  for (const auto& [text, words] : cases) {
    (void)folder_.File("w.bin.json", text);
    const std::string fault = FailureOf([&] { ReadSidecar(path); });
    EXPECT_EQ(fault.find(path + ".json:"), 0U) << fault;
    ExpectWords(fault, words);
  }
}

TEST_F(SidecarTest, NothingLongerOrDeeperThanASidecarIsRead) {
  const std::string path = Weights();
  const auto fault = [&] { return FailureOf([&] { (void)ReadSidecar(path); }); };
  for (const char* const level : {"[", R"({"a":)"}) {
    std::string deep = R"({"training": )";
    for (int i = 0; i < 80000; i++) deep += level;
    (void)folder_.File("w.bin.json", deep);
    ExpectWords(fault(), {"w.bin.json", "nested"});
  }
  (void)folder_.File("w.bin.json", std::string((1 << 20) + 1, ' '));
  ExpectWords(fault(), {"w.bin.json", "1048577 bytes"});
  std::filesystem::remove(folder_ / "w.bin.json");
  std::filesystem::create_symlink("/dev/zero", folder_ / "w.bin.json");
  ExpectWords(fault(), {"w.bin.json", "a device, not a sidecar"});
}

TEST_F(SidecarTest, DamagedOnesAreReadOrRefused) {
  const std::string weights = Weights();
  Sidecar sidecar{160, 16, std::string(64, 'a'), {{"rate", "6"}, {"time-cooling", "5s"}}};
  sidecar.training = {{"clips", 3}, {"seeds", {1, 2, 3}}};
  ReadDamaged(folder_, "w.bin.json", SidecarText(sidecar), 4000, [&](const std::string&) {
    const auto read = ReadSidecar(weights);
    ASSERT_TRUE(read);
    CheckSidecar(weights, *read, 160, 16);
  });
}

TEST_F(SidecarTest, GivesSettingsWhatIsNotSettledOtherwise) {
  Settings settings;
  settings.weights = Weights();
  TakeSidecar(settings, [](const std::string&) { return false; });
  EXPECT_EQ(settings.rate, Settings().rate) << "there is no sidecar yet";
  const std::string sha256 = Sha256(ReadFile(settings.weights));
  (void)folder_.File("w.bin.json",
                     SidecarText({160, 16, sha256, {{"rate", "7"}, {"threshold", "0.7"}, {"gap-op", "1"}}}));
  TakeSidecar(settings, [](const std::string& name) { return name == "threshold"; });
  EXPECT_EQ(settings.rate, 7);
  EXPECT_EQ(settings.threshold, Settings().threshold);
  EXPECT_EQ(settings.gap_op, 1);
  // Counts, too: those of a file that does not match them are told as its own.
  (void)folder_.File("w.bin.json", SidecarText({16, 3, sha256, {}}));
  ExpectWords(FailureOf([&] { TakeSidecar(settings, [](const std::string&) { return false; }); }),
              {"w.bin", "220", "10372"});
  EXPECT_EQ(settings.features, 8);
  EXPECT_EQ(settings.hiddens, 3);
  settings.hiddens = 16;
  ExpectWords(
      FailureOf([&] { TakeSidecar(settings, [](const std::string& name) { return name == "hiddens"; }); }),
      {"w.bin.json", "3 hidden", "16 hidden"});
}

TEST_F(SidecarTest, CountsPastEveryTypeAreItsOwnFault) {
  Settings settings;
  settings.weights = Weights();
  for (const std::uint64_t inputs : {std::uint64_t{1} << 40, ~std::uint64_t{0}}) {
    (void)folder_.File("w.bin.json", SidecarText({inputs, 16, std::string(64, 'a'), {}}));
    ExpectWords(FailureOf([&] { TakeSidecar(settings, [](const std::string&) { return false; }); }),
                {"w.bin.json", "features"});
  }
}

}  // namespace
}  // namespace stopngo::test
