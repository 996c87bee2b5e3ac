// train_test.cpp: stopngo train, from manifests to weights, sidecar and report.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "program.h"
#include "support/squares.h"

namespace stopngo::test {
namespace {

const std::string kSmall = " --looks 2 --seeds 2 --iterations 4 --rate 5 ";

class TrainTest : public testing::Test {
 protected:
  [[nodiscard]] std::string Manifest(const std::string& name, const std::vector<std::string>& clips) const {
    std::string text = "clip\tregion\trate\tlabels\n";
    for (const std::string& clip : clips) text += clip + "\t-\t-\t-\n";
    return folder_.File(name, text);
  }
  /// Six seconds each, in whose second half the texture moves: upwards as a vehicle that departs does, or across.
  [[nodiscard]] std::string Recordings(const std::string& name, const std::vector<SquaresMove>& moves) const {
    std::string text = "clip\tregion\trate\tlabels\n";
    for (const SquaresMove& move : moves) {
      const std::string clip = std::to_string(move.right) + std::to_string(move.down) + ".y4m";
      static_cast<void>(folder_.File(clip, SquaresRecording(5, 30, move)));
      text += clip + "\t-\t-\t0 3 still;3 6 " + (move.down < 0 ? "lead_departs" : "crossing") + "\n";
    }
    return folder_.File(name, text);
  }
  TemporaryFolder folder_;
};

TEST_F(TrainTest, WritesTheSameBytesWithAnyNumberOfThreads) {
  const std::string clips = Recordings("clips.tsv", {{0, -2}, {1, -1}, {2, 0}});
  const std::string others = Recordings("others.tsv", {{0, -1}, {1, 0}});
  const std::string weights = folder_ / "w.bin";
  const std::string report = folder_ / "curves.png";
  const std::string arguments = "train " + clips + " --validation " + others + " --test " + others + kSmall +
                                "-o " + weights + " --report " + report;
  const CommandResult one = Stopngo(arguments + " --jobs 1");
  ASSERT_EQ(one.exit_code, 0) << one.err;
  const std::string bytes = ReadFile(weights);
  const std::string sidecar = ReadFile(weights + ".json");
  EXPECT_EQ(bytes.size(), 10372U);
  EXPECT_EQ(ReadFile(report).substr(1, 3), "PNG");
  EXPECT_EQ(folder_.Files(), 10U) << "nothing else is left behind";

  // The weights that a configuration names are about to be replaced, not read.
  const std::string config = " --config " + folder_.File("car.toml", "weights = \"w.bin\"\n");
  const CommandResult three = Stopngo(arguments + config + " --jobs 3");
  EXPECT_EQ(three.out, one.out);
  EXPECT_TRUE(ReadFile(weights) == bytes);
  EXPECT_EQ(ReadFile(weights + ".json"), sidecar);
  EXPECT_EQ(Stopngo("weights " + weights).exit_code, 0);

  const auto json = nlohmann::json::parse(sidecar);
  EXPECT_EQ(json["training"]["clips"], 3);
  EXPECT_EQ(json["training"]["seeds"].size(), 2U);
  EXPECT_EQ(json["settings"]["rate"], 5);
  EXPECT_EQ(json["figures"]["test"]["all"], json["figures"]["validation"]) << "the same clips and weights";
}

TEST_F(TrainTest, MakesWeightsOfTheHistoryGate) {
  const std::string clips = Recordings("clips.tsv", {{0, -2}, {1, -1}, {2, 0}});
  const std::string others = Recordings("others.tsv", {{0, -1}, {1, 0}});
  const std::string weights = folder_ / "h.bin";
  const std::string train = "train " + clips + " --validation " + others + " --gate history" + kSmall;
  const std::string arguments = train + "--test " + others + " -o " + weights;
  const CommandResult one = Stopngo(arguments + " --jobs 1");
  ASSERT_EQ(one.exit_code, 0) << one.err;
  const std::string bytes = ReadFile(weights);
  const std::string sidecar = ReadFile(weights + ".json");
  EXPECT_EQ(bytes.size(), 9860U);
  EXPECT_EQ(Stopngo(arguments + " --jobs 3").out, one.out);
  EXPECT_TRUE(ReadFile(weights) == bytes);
  EXPECT_EQ(ReadFile(weights + ".json"), sidecar);
  const auto json = nlohmann::json::parse(sidecar);
  EXPECT_EQ(json["gate"], "history");
  EXPECT_FALSE(json["training"].contains("margin"));
  EXPECT_GT(json["figures"]["validation"]["right"], 0);
  EXPECT_EQ(json["figures"]["test"]["all"], json["figures"]["validation"]);

  // A gate's weights are no detector's, nor the other way round.
  const std::string eval = "eval " + others + " --rate 5 ";
  const CommandResult used = Stopngo(eval + "--no-weights --gates history --history-weights " + weights);
  EXPECT_EQ(used.exit_code, 0) << used.err;
  ExpectRefusal(Stopngo(eval + "--weights " + weights), 1, {"h.bin", "history gate", "--history-weights"});
  const std::string again = train + "-o " + weights;
  for (const char* const option : {" --margin 1", " --false-alarms-per-hour 1", " --gate light"}) {
    EXPECT_EQ(Stopngo(again + option).exit_code, 2) << option;
  }
}

TEST_F(TrainTest, EveryFifthClipIsKeptApart) {
  const std::string clips = Recordings("clips.tsv", {{2, 0}, {0, -1}, {0, -2}, {1, -1}, {1, -2}});
  const std::string weights = folder_ / "w.bin";
  const CommandResult result =
      Stopngo("train " + clips + " --rate 5 --looks 1 --seeds 1 --iterations 2 -o " + weights);
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto json = nlohmann::json::parse(ReadFile(weights + ".json"));
  EXPECT_EQ(json["training"]["clips"], 4);
  EXPECT_EQ(json["training"]["validation_clips"], 1);
  EXPECT_EQ(json["figures"]["validation"]["departures"], 1);
}

TEST_F(TrainTest, RefusesBeforeItBegins) {
  const std::string clips = Manifest("clips.tsv", {"synth:departure:1-2000"});
  const std::string few = Manifest("few.tsv", {"synth:departure:2001-2004"});
  const std::string still = Manifest("still.tsv", {"synth:standing:1"});
  const std::string pipe = folder_ / "pipe";
  ASSERT_EQ(Shell("mkfifo " + pipe).exit_code, 0);
  const std::string occupied = folder_ / "occupied";
  std::filesystem::create_directory(occupied + ".json");
  const std::string nowhere = folder_ / "no/w.bin";
  const std::string weights = " -o " + (folder_ / "w.bin");
  struct Case {
    std::string arguments;
    std::string word;
  };
  // So many clips take minutes: what is not refused at once runs into the test's time limit.
  const std::vector<Case> cases{
      {clips + " -o " + nowhere, nowhere},
      {clips + weights + " --report " + nowhere, nowhere},
      {few + weights, "five"},
      {folder_ / "none.tsv" + weights, "none.tsv"},
      {pipe + weights, "not a pipe"},
      {clips + weights + " --looks 0", "--looks"},
      {clips + weights + " --decay -1", "--decay"},
      {clips + weights + " --threshold 1", "--threshold"},
      {clips + weights + " --threshold -1", "--threshold"},
      {clips + weights + " --hiddens 0", "--hiddens"},
      {clips + weights + " --features 4000000000", "--features"},
      {clips + weights + " --features 81 --hiddens 1", "--features"},
      {clips + weights + " --rate 0 --time-leaving 0.5s", "--time-leaving"},
      {clips + weights + " --original-size 1280", "--original-size"},
      {clips + weights + " --weights none.bin", "--weights"},
      {clips + weights + " --validation " + still, "no departure"},
      {clips + weights + " --validation " + few + " --time-leaving 1000", "run of 1001"},
      {clips + weights + " --validation " + clips, "synth:departure:1: is trained on"},
      {clips + weights + " --validation " + still + " --test " + clips, "in --test as well"},
      {clips + " " + few + " " + clips + weights, "comes twice"},
      {clips + " -o " + occupied, occupied + ".json"},
      {clips, "--output"},
      {clips + " -o -", "--output"},
  };
  const std::size_t files = folder_.Files();
  for (const Case& refused : cases) {
    const CommandResult result = Stopngo("train " + refused.arguments);
    EXPECT_NE(result.exit_code, 0) << refused.arguments;
    const bool warned = result.err.starts_with("stopngo: warning: ");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), warned ? 2 : 1) << result.err;
    EXPECT_NE(result.err.find(refused.word), std::string::npos) << result.err;
    EXPECT_EQ(folder_.Files(), files) << refused.arguments;
  }
}

#if defined(STOPNGO_KILL_AT_RENAME)
// Weights, sidecar and report take their places one by one: what a kill in between leaves is refused by
// whoever uses it, until only the report is missing. The next run names what else was left.
TEST_F(TrainTest, AKillBetweenNamesLeavesNoSetThatPassesForAnother) {
  const std::string clips = Recordings("clips.tsv", {{0, -2}});
  const std::string others = Recordings("others.tsv", {{0, -1}});
  const std::string weights = folder_ / "w.bin";
  const std::string train = "train " + clips + " --validation " + others +
                            " --rate 5 --looks 1 --iterations 2 " + "-o " + weights + " --report " +
                            folder_ / "curves.png";
  const auto killed = [&](int name, int seed) {
    const std::string at =
        "STOPNGO_KILL_AT=" + std::to_string(name) + " LD_PRELOAD=" STOPNGO_KILL_AT_RENAME " ";
    EXPECT_EQ(Shell(at + STOPNGO_PROGRAM " " + train + " --seeds 1 --seed " + std::to_string(seed)).exit_code,
              128 + SIGKILL);
    return Stopngo("eval " + others + " --rate 5 --weights " + weights);
  };
  ExpectRefusal(killed(2, 1), 1, {weights, "No such file"});
  const CommandResult whole = Stopngo(train + " --seeds 1");
  EXPECT_EQ(whole.exit_code, 0) << whole.err;
  EXPECT_NE(whole.err.find("killed"), std::string::npos) << whole.err;
  const std::string bytes = ReadFile(weights);
  ExpectRefusal(killed(2, 2), 1, {weights, "of other weights"});
  EXPECT_EQ(killed(3, 2).exit_code, 0) << "the new set";
  EXPECT_NE(ReadFile(weights), bytes);
}
#endif

}  // namespace
}  // namespace stopngo::test
