// hostile_input_test.cpp: files that were damaged or made up: read or refused, nothing else.
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/output_file.h"
#include "base/random.h"
#include "clips/manifest.h"
#include "command/settings_options.h"
#include "host/failure.h"
#include "host/file.h"
#include "host/settings.h"
#include "host/sidecar.h"
#include "host/weights_file.h"
#include "support/command.h"
#include "video/open_source.h"

namespace stopngo::test {
namespace {

/// What tends to hurt: signs, ends, numbers past every type, bytes that are no text.
constexpr std::string_view kTokens[] = {"",  "-", "0",  "-1",   "4294967296", "18446744073709551616",
                                        ",", ":", "\t", "\n",   "1e999",      "nan",
                                        "{", "]", "\"", "\xff", "W99999999",  "H99999999"};

/// A few damages: bytes changed, stretches removed, doubled or replaced.
std::string Damaged(std::string text, Random& random) {
  for (std::uint32_t times = 1 + random.Below(3); times > 0 && !text.empty(); times--) {
    const std::size_t at = random.Below(static_cast<std::uint32_t>(text.size()));
    const std::size_t length = random.Below(12);
    switch (random.Below(5)) {
      case 0:
        text[at] = static_cast<char>(random.Below(256));
        break;
      case 1:
        text.erase(at, length);
        break;
      case 2:
        text.insert(at, text.substr(at, length));
        break;
      case 3:
        text.resize(at);
        break;
      default:
        text.replace(at, length, kTokens[random.Below(std::size(kTokens))]);
    }
  }
  return text;
}

/// Reads damaged files; some have to be refused, and refusals have to name the file.
void ReadDamaged(const std::string& intact, int rounds,
                 const std::function<std::string(const std::string&)>& write,
                 const std::function<void()>& read) {
  Random random(17, 3);
  int refused = 0;
  for (int i = 0; i < rounds; i++) {
    const std::string text = Damaged(intact, random);
    const std::string path = write(text);
    try {
      read();
    } catch (const Failure& failure) {
      refused++;
      EXPECT_NE(std::string(failure.what()).find(path), std::string::npos) << failure.what();
    } catch (const std::exception& other) {
      ADD_FAILURE() << other.what() << " of " << testing::PrintToString(text);
    }
  }
  EXPECT_GT(refused, rounds / 10);
}

TEST(HostileInput, Manifests) {
  const TemporaryFolder folder;
  static_cast<void>(folder.File("a.y4m", ""));
  const std::string intact =
      "clip\tregion\trate\tlabels\tkind\n# comment\na.y4m\t300,250,220,140\t6.5\t0 12.4 still;12.4 15 "
      "lead_departs\tday\nsynth:mixed:1-20\t-\t7\t-\t-\nsynth:standing:3\t-\t-\t-\tnight\n";
  ReadDamaged(
      intact, 4000, [&](const std::string& text) { return folder.File("list.tsv", text); },
      [&] { ReadManifest(folder / "list.tsv"); });
}

TEST(HostileInput, Sidecars) {
  const TemporaryFolder folder;
  const std::string weights = folder.File("w.bin", std::string(10372, '\0'));
  Sidecar sidecar{160, 16, std::string(64, 'a'), {{"rate", "6"}, {"time-cooling", "5s"}}};
  sidecar.training = {{"clips", 3}, {"seeds", {1, 2, 3}}};
  WriteFile(SidecarPath(weights), SidecarText(sidecar));
  ReadDamaged(
      ReadFile(SidecarPath(weights)), 4000,
      [&](const std::string& text) { return folder.File("w.bin.json", text); },
      [&] {
        const auto read = ReadSidecar(weights);
        ASSERT_TRUE(read);
        CheckSidecar(weights, *read, 160, 16);
      });
}

TEST(HostileInput, SettingsFiles) {
  const TemporaryFolder folder;
  const std::string intact =
      "# a car's\nrate = 6.5\nroi-x = 300\ntime-cooling = \"5s\"\nthreshold = 0.4\nfilter = "
      "\"median\"\nweights = \"w.bin\"\n";
  ReadDamaged(
      intact, 3000, [&](const std::string& text) { return folder.File("car.toml", text); },
      [&] {
        CLI::App app;
        Settings settings;
        SettingsOptions options(app, settings);
        app.parse("--config " + folder / "car.toml");
        options.CompleteWithoutWeights();
        EXPECT_GE(settings.roi_x, 0);
        EXPECT_GE(settings.rate, 0);
      });
}

TEST(HostileInput, Y4mHeadersAndFrames) {
  const TemporaryFolder folder;
  const std::string intact = "YUV4MPEG2 W16 H12 F25:1 Ip A1:1 C420jpeg XCOMMENT\nFRAME\n" +
                             std::string(std::size_t{16} * 12 * 3 / 2, '\x50') + "FRAME Ip\n" +
                             std::string(std::size_t{16} * 12 * 3 / 2, '\x60');
  // Damages to planes alone show nothing: the planes are short, so that most damages hit the lines of text.
  ReadDamaged(
      intact, 3000, [&](const std::string& text) { return folder.File("v.y4m", text); },
      [&] {
        SourceOptions options;
        options.input = folder / "v.y4m";
        options.width = 16;
        options.height = 12;
        const auto source = OpenSource(options);
        for (LumaFrame frame; source->Next(frame);) ASSERT_EQ(frame.pixels.size(), 16U * 12U);
      });
}

TEST(HostileInput, WeightsOfEverySize) {
  const TemporaryFolder folder;
  const std::uint64_t counts[] = {0, 1, 16, 160, 161, 65536, 1ULL << 32, ~0ULL};
  const std::string path = folder.File("w.bin", std::string(10372, '\x01'));
  int taken = 0;
  for (const std::uint64_t inputs : counts) {
    for (const std::uint64_t hiddens : counts) {
      try {
        CheckWeightsSize(path, inputs, hiddens, "--features");
        taken++;
      } catch (const Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("--features"), std::string::npos) << failure.what();
      }
    }
  }
  EXPECT_EQ(taken, 1) << "160 inputs and 16 hidden nodes fit, nothing else";
}

}  // namespace
}  // namespace stopngo::test
