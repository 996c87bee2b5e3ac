// weights_test.cpp: weights files, their sidecars, where default weights are found, and stopngo weights.
#include <cairo.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "base/output_file.h"
#include "classify.h"
#include "command/settings_options.h"
#include "evaluate/network_figures.h"
#include "host/failure.h"
#include "host/file.h"
#include "host/settings.h"
#include "host/sha256.h"
#include "host/sidecar.h"
#include "host/weights_file.h"
#include "support/command.h"

namespace stopngo::test {
namespace {

// Two cells a frame and three hidden nodes.
constexpr std::size_t kInputs = 16;
constexpr std::size_t kHiddens = 3;

Network SmallNetwork() {
  Network network{kInputs, kHiddens, std::vector<float>(NetworkLength(kInputs, kHiddens))};
  for (std::size_t i = 0; i < network.numbers.size(); ++i) {
    network.numbers[i] = static_cast<float>(static_cast<int>(i * 37 % 19) - 9) / 8;
  }
  return network;
}

class WeightsTest : public testing::Test {
 protected:
  // A weights file of the module's default counts, all zero.
  [[nodiscard]] std::string ZeroWeights(std::string_view name) const {
    return folder_.File(name, std::string(10372, '\0'));
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

template <typename Call>
std::string FailureOf(Call call) {
  try {
    call();
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "no failure";
}

void ExpectWords(const std::string& text, const std::vector<std::string>& words) {
  for (const std::string& word : words) EXPECT_NE(text.find(word), std::string::npos) << text;
}

TEST_F(WeightsTest, FilesHaveTheLayoutThatTheModuleReads) {
  Network network = SmallNetwork();
  network.numbers[0] = 1.5F;
  const std::string path = folder_ / "w.bin";
  WriteFile(path, WeightsBytes(network));
  // 1.5 is 0x3FC00000, its lowest byte first.
  EXPECT_EQ(ReadFile(path).substr(0, 4), std::string("\0\0\xC0\x3F", 4));
  const Network read = ReadWeights(path, kInputs, kHiddens, "here");
  EXPECT_EQ(read.numbers, network.numbers);
  EXPECT_EQ(read.HiddenWeights(2).data(), read.numbers.data() + 32);
  EXPECT_EQ(read.HiddenBiases().data(), read.numbers.data() + 48);
  EXPECT_EQ(read.OutputWeights().data(), read.numbers.data() + 51);
  EXPECT_EQ(read.OutputBias(), read.numbers[54]);
  // Counts whose product passes 64 bits are refused, not wrapped around to few.
  EXPECT_EQ(NetworkLength((std::uint64_t{1} << 33) - 2, std::uint64_t{1} << 31),
            std::numeric_limits<std::uint64_t>::max());
  ExpectWords(
      FailureOf([&] { ReadWeights(path, (std::uint64_t{1} << 33) - 2, std::uint64_t{1} << 31, "x"); }),
      {"2600"});
}

TEST_F(WeightsTest, FingerprintIsThatOfTheStandard) {
  EXPECT_EQ(Sha256(ReadFile(folder_.File("abc", "abc"))),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  // More than a block of reading.
  EXPECT_EQ(Sha256(ReadFile(folder_.File("a", std::string(1000000, 'a')))),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST_F(WeightsTest, SidecarComesBackAsItWasWritten) {
  const std::string path = ZeroWeights("w.bin");
  EXPECT_FALSE(ReadSidecar(path).has_value());
  Settings settings;
  settings.threshold = 0.1 + 0.2;  // needs all its digits
  settings.filter = 1;
  Sidecar sidecar{160, 16, Sha256(ReadFile(path)), SidecarSettings(settings)};
  sidecar.training["manifest"] = "odd\xFFname.tsv";
  WriteFile(SidecarPath(path), SidecarText(sidecar));
  const auto json = nlohmann::json::parse(ReadFile(path + ".json"));
  EXPECT_EQ(json.at("settings").at("rate"), 6);
  EXPECT_EQ(json.at("settings").at("threshold"), 0.1 + 0.2);
  EXPECT_EQ(json.at("settings").at("filter"), "median");
  const Sidecar read = ReadSidecar(path).value();
  EXPECT_EQ(read.settings, sidecar.settings);
  EXPECT_EQ(read.sha256, sidecar.sha256);
  EXPECT_NO_THROW(CheckSidecar(path, read, 160, 16));
}

TEST_F(WeightsTest, SidecarsOfOtherWeightsAreToldApart) {
  const std::string path = ZeroWeights("w.bin");
  const Sidecar sidecar{160, 16, Sha256(ReadFile(path)), {}};
  const auto fault = [&](std::uint64_t inputs, std::uint64_t hiddens) {
    return FailureOf([&] { CheckSidecar(path, sidecar, inputs, hiddens); });
  };
  ExpectWords(fault(160, 12), {"w.bin.json", "16 hidden", "12 hidden"});
  (void)folder_.File("w.bin", std::string(10371, '\0') + '\1');
  ExpectWords(fault(160, 16), {"w.bin.json", "SHA-256", sidecar.sha256});
  (void)folder_.File("w.bin", std::string(10368, '\0'));
  ExpectWords(fault(160, 16), {"w.bin", "10372", "10368"});
}

TEST_F(WeightsTest, BadSidecarsAreToldByPlaceAndReason) {
  const std::string path = ZeroWeights("w.bin");
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
      {head + R"(, "setings": {}})", {"setings", "no such"}},
  };
  for (const auto& [text, words] : cases) {
    (void)folder_.File("w.bin.json", text);
    const std::string fault = FailureOf([&] { ReadSidecar(path); });
    EXPECT_EQ(fault.find(path + ".json:"), 0U) << fault;
    ExpectWords(fault, words);
  }
}

TEST_F(WeightsTest, OptionsWinOverTheFileTheFileOverTheSidecarTheSidecarOverDefaults) {
  const std::string weights = ZeroWeights("w.bin");
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

TEST_F(WeightsTest, CountsPastEveryTypeAreOfTheSidecar) {
  const std::string path = ZeroWeights("w.bin");
  for (const char* const inputs : {"1099511627776", "18446744073709551615"}) {
    (void)folder_.File("w.bin.json", R"({"format": 1, "hiddens": 16, "sha256": ")" + Sha256(ReadFile(path)) +
                                         R"(", "inputs": )" + inputs + "}");
    ExpectWords(FailureOf([&] { (void)Completed({"--weights", path}); }), {"w.bin.json", "features"});
  }
}

TEST_F(WeightsTest, CountsComeFromTheSidecar) {
  const std::string path = folder_ / "small.bin";
  WriteFile(path, WeightsBytes(SmallNetwork()));
  WriteFile(SidecarPath(path), SidecarText({kInputs, kHiddens, Sha256(ReadFile(path)), {}}));
  const Settings settings = Completed({"--weights", path});
  EXPECT_EQ(settings.features, 8);
  EXPECT_EQ(settings.hiddens, 3);
}

// A copy of the program shows what it finds from where it lies.
TEST_F(WeightsTest, DefaultWeightsAreFoundAsInstalledAndInAClone) {
  namespace fs = std::filesystem;
  const fs::path root = folder_ / "root";
  for (const char* const name : {"bin", "share/zetstopngo", "build/any", "weights"}) {
    fs::create_directories(root / name);
  }
  const auto run = [&](const char* folder, const std::string& environment = {}) {
    fs::copy_file(STOPNGO_PROGRAM, root / folder / "stopngo", fs::copy_options::skip_existing);
    return Shell("STOPNGO_MODULE=" STOPNGO_MODULE_FILE " STOPNGO_WEIGHTS=" + environment + " " +
                     (root / folder / "stopngo").string() + " run - --raw 800x480 --raw-fps 10 --rate 0",
                 std::string(384000, '\0'));
  };
  for (const char* const folder : {"bin", "build/any"}) {
    const CommandResult none = run(folder);
    EXPECT_EQ(none.exit_code, 2) << folder;
    ExpectWords(none.err, {"--weights", "--no-weights"});
  }
  const std::string weights = ZeroWeights("w.bin");
  fs::copy_file(weights, root / "share/zetstopngo/default.bin");
  EXPECT_EQ(run("bin").exit_code, 0);
  (void)folder_.File("root/build/any/CMakeCache.txt", "");
  EXPECT_EQ(run("build/any").exit_code, 2) << "a build folder uses what the clone has";
  fs::copy_file(weights, root / "weights/default.bin");
  EXPECT_EQ(run("build/any").exit_code, 0);
  ExpectWords(run("bin", "gone.bin").err, {"gone.bin"});
  // What the sidecar of weights found by default does not match is told, too.
  (void)folder_.File("root/share/zetstopngo/default.bin.json", "{}");
  const CommandResult bad = run("bin");
  EXPECT_EQ(bad.exit_code, 1);
  ExpectWords(bad.err, {"default.bin.json", "format"});
}

TEST(WeightsFigures, SumsStayWithinWhatACellCanShow) {
  Network network{kInputs, 1, std::vector<float>(NetworkLength(kInputs, 1))};
  // Up and down share a cell's vectors: the stronger of the two counts, not both.
  network.numbers[0] = 4;
  network.numbers[2] = 6;
  network.numbers[9] = -2;   // current frame, cell 0, right
  network.numbers[15] = -1;  // current frame, cell 1, left
  network.numbers[16] = 0.5F;
  const NodeFigures node = NodesOf(network).front();
  EXPECT_DOUBLE_EQ(node.greatest_sum, 0.5 + 6 * 84.0 / 128);
  EXPECT_DOUBLE_EQ(node.least_sum, 0.5 - 3 * 84.0 / 128);
  EXPECT_FALSE(node.CanSaturate());
  EXPECT_EQ(node.strongest[0].weight, 6);
  EXPECT_EQ(node.strongest[2].weight, -2);
  EXPECT_TRUE(node.strongest[2].current);
  EXPECT_EQ(node.strongest[2].direction, 1U);
  network.numbers[2] = 12;
  EXPECT_TRUE(NodesOf(network).front().CanSaturate());
}

TEST_F(WeightsTest, CommandShowsAndChecks) {
  const std::string path = folder_ / "small.bin";
  Network network = SmallNetwork();
  WriteFile(path, WeightsBytes(network));
  const std::string counts = " --inputs 16 --hiddens 3 --columns 2 ";
  const CommandResult plain = Stopngo("weights " + path + counts);
  EXPECT_EQ(plain.exit_code, 0) << plain.err;
  ExpectWords(plain.out,
              {"16 inputs, 3 hidden nodes, 55 numbers, 220 bytes", Sha256(ReadFile(path)), ": none"});

  WriteFile(SidecarPath(path), SidecarText({kInputs, kHiddens, Sha256(ReadFile(path)), {}}));
  const CommandResult matching = Stopngo("weights " + path + " --columns 2 --json");
  const auto json = nlohmann::json::parse(matching.out);
  EXPECT_EQ(json.at("sidecar"), "matches");
  ASSERT_EQ(json.at("nodes").size(), kHiddens);
  EXPECT_GE(json.at("nodes")[0].at("output_weight"), json.at("nodes")[1].at("output_weight"));

  network.numbers[50] = std::numeric_limits<float>::quiet_NaN();
  WriteFile(path, WeightsBytes(network));
  const CommandResult broken = Stopngo("weights " + path);
  EXPECT_EQ(broken.exit_code, 1);
  ExpectWords(broken.err, {"not finite: 1 among the hidden biases", "SHA-256"});
  ExpectWords(broken.out, {": differs"});
  EXPECT_EQ(Stopngo("weights " + path + " --hiddens 2").exit_code, 1);
  EXPECT_EQ(Stopngo("weights " + folder_ / "gone.bin").exit_code, 1);
}

// A node that only motion to the right in one cell raises shows in that cell's right-hand triangle alone.
TEST_F(WeightsTest, PictureShowsAWeightWhereItsCellIs) {
  Network network{160, 16, std::vector<float>(NetworkLength(160, 16))};
  network.numbers[160 * 5 + 80 + 4 * 7 + 1] = 3;  // node 5, current frame, cell 7, right
  network.numbers[161 * 16 + 5] = 2;              // its output weight, so that it comes first
  const std::string path = folder_ / "w.bin";
  WriteFile(path, WeightsBytes(network));
  const std::string png = folder_ / "w.png";
  const CommandResult result = Stopngo("weights " + path + " --picture " + png);
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
      cairo_image_surface_create_from_png(png.c_str()), cairo_surface_destroy);
  ASSERT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS);
  const auto* pixels = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  // Where the first panel's cells are; titles and legend have the colour, too.
  int found = 0;
  for (int y = 122; y < 250; ++y) {
    for (int x = 30; x < 362; ++x) {
      const auto* pixel = pixels + static_cast<std::ptrdiff_t>(y) * stride + std::ptrdiff_t{x} * 4;
      if (pixel[2] < 200 || pixel[0] > 120) continue;
      ++found;
      // The right part of the cell in the second row and the third column of the right grid.
      EXPECT_TRUE(x > 282 && x < 298 && y > 154 && y < 186) << x << ' ' << y;
    }
  }
  EXPECT_GT(found, 20);
  EXPECT_EQ(Stopngo("weights " + path + " --columns 3 --picture " + png).exit_code, 2);
}

}  // namespace
}  // namespace stopngo::test
