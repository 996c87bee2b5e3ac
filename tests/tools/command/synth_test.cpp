// synth_test.cpp: stopngo synth: bytes, labels, faults.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "program.h"

namespace stopngo::test {
namespace {

std::uint64_t Fnv1a(std::string_view bytes) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char byte : bytes) hash = (hash ^ static_cast<std::uint8_t>(byte)) * 0x100000001b3U;
  return hash;
}

// The hash holds other machines, compilers and optimisations to these very bytes. It changes with the
// look of the scene, and then has to be taken anew.
TEST(Synth, SameSeedSameBytesEverywhere) {
  const std::string arguments = "synth - --size 176x100 --length 3 --departure 1 --vibration 1.5 --seed ";
  const CommandResult clip = Stopngo(arguments + "3");
  ASSERT_EQ(clip.exit_code, 0) << clip.err;
  const std::size_t header = clip.out.find('\n') + 1;
  EXPECT_EQ(clip.out.substr(0, header), "YUV4MPEG2 W176 H100 F25:1 Ip A1:1 Cmono\n");
  EXPECT_EQ(clip.out.size(), header + 75 * (6 + 176 * 100));
  EXPECT_EQ(Fnv1a(clip.out), 0x4bb45f5a8347cf8eU) << std::hex << "0x" << Fnv1a(clip.out);
  // All 64 bits of a seed count.
  EXPECT_NE(Stopngo(arguments + "4294967295").out, Stopngo(arguments + "18446744073709551615").out);
}

TEST(Synth, LabelsAgreeWithOptions) {
  struct Case {
    const char* options;
    const char* lines;
  };
  for (const Case& c : {Case{"--length 6 --departure 1.5", "0\t1.5\tstill\n1.5\t4.5\tlead_departs\n"},
                        Case{"--length 2 --departure 1", "0\t1\tstill\n1\t2\tlead_departs\n"},
                        Case{"--length 2 --departure 0", "0\t2\tlead_departs\n"},
                        Case{"--length 2 --departure 2", "0\t2\tstill\n"}}) {
    const TemporaryFolder folder;
    const std::string video = folder / "clip.y4m";
    const CommandResult result = Stopngo("synth " + video + " --json --seed 9 --size 96x64 " + c.options);
    ASSERT_EQ(result.exit_code, 0) << result.err;
    const std::string labels = ReadFile(video + ".labels.tsv");
    const std::size_t end = labels.find('\n');
    EXPECT_EQ(labels.substr(end + 1), std::string("start_s\tend_s\tlabel\n") + c.lines);
    const auto comment = nlohmann::json::parse(labels.substr(2, end - 2));
    const auto line = nlohmann::json::parse(result.out);
    EXPECT_EQ(comment["seed"], 9);
    EXPECT_EQ(comment["roi"], (std::vector<int>{290, 260, 220, 140}));
    EXPECT_EQ(comment["roi"], line["roi"]);
    EXPECT_EQ(line["labels"].size(), std::count(c.lines, c.lines + std::strlen(c.lines), '\n'));
    EXPECT_EQ(folder.Files(), 2U);
  }
}

TEST(Synth, FaultsGiveOneSentenceAndLeaveNothing) {
  struct Case {
    const char* arguments;  ///< @/ stands for the folder
    int exit_code;
    const char* named;
  };
  const TemporaryFolder folder;
  std::filesystem::create_symlink("/dev/full", folder / "full.y4m");
  std::filesystem::create_symlink("/dev/full", folder / "full.tsv");
  std::vector<Case> cases{{"@/clip.y4m --length 0", 2, "--length"},
                          {"@/clip.y4m --rate -3", 2, "--rate"},
                          {"@/clip.y4m --rate nan", 2, "--rate"},
                          {"@/clip.y4m --rate 1e9", 2, "--rate"},
                          {"@/clip.y4m --distance -1", 2, "--distance"},
                          {"@/clip.y4m --size 800", 2, "--size"},
                          {"@/clip.y4m --size 99999x480", 2, "--size"},
                          {"@/clip.y4m --seed -1", 2, "--seed"},
                          {"@/clip.y4m --kind parade", 2, "parade"},
                          {"@/nowhere/clip.y4m", 1, "nowhere/clip.y4m"},
                          {"@/clip.nonsense", 1, "clip.nonsense"},
                          {"@/full.y4m", 1, "full.y4m"},
                          {"@/clip.y4m --labels @/full.tsv", 1, "full.tsv"},
                          {"@/clip.y4m --labels @/nowhere/l", 1, "nowhere/l"}};
#if STOPNGO_WITH_FFMPEG
  cases.insert(cases.end(),
               {{"@/clip.mp4 --size 101x64", 1, "even"}, {"@/nowhere/clip.mp4", 1, "nowhere/clip.mp4"}});
#else
  cases.push_back({"@/clip.mp4", 1, "FFmpeg"});
#endif
  for (const Case& c : cases) {
    std::string arguments = c.arguments;
    if (arguments.find("--size") == std::string::npos) arguments += " --size 64x48";
    for (auto at = arguments.find("@/"); at != std::string::npos; at = arguments.find("@/")) {
      arguments.replace(at, 2, folder / "");
    }
    SCOPED_TRACE(c.arguments);
    ExpectRefusal(Stopngo("synth " + arguments), c.exit_code, {c.named});
    EXPECT_EQ(folder.Files(), 2U) << c.arguments;
  }
}

}  // namespace
}  // namespace stopngo::test
