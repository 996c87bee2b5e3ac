// eval_test.cpp: stopngo eval and stopngo tune, from manifests to figures, curves and settings.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "clips/clip.h"
#include "clips/region.h"
#include "host/common/text.h"
#include "program.h"
#include "scene/scene.h"
#include "support/squares.h"

namespace stopngo::test {
namespace {

const std::string kLabelledClips = "clip\tregion\trate\tlabels\n";

std::vector<nlohmann::json> JsonLines(const std::string& text, const std::string& type) {
  std::vector<nlohmann::json> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    nlohmann::json json = nlohmann::json::parse(line);
    if (json["type"] == type) lines.push_back(std::move(json));
  }
  return lines;
}

std::vector<std::vector<std::string>> TsvRows(const std::string& text) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream cells(line);
    rows.emplace_back();
    for (std::string cell; std::getline(cells, cell, '\t');) rows.back().push_back(cell);
  }
  return rows;
}

/// Network of the example that is made by hand.
std::string ContractionWeights(const TemporaryFolder& folder) {
  std::string path = folder / "weights.bin";
  const std::string command = STOPNGO_CONTRACTION_WEIGHTS " " + path + " >/dev/null";
  EXPECT_EQ(std::system(command.c_str()), 0);  // NOLINT(cert-env33-c): a shell is what a user has
  return path;
}

const std::string kAllFrames = "--no-weights --rate 0 --time-cooling 20 ";

// A score of 0.5 on every frame makes alarms at the frames 4, 28 and 52, whatever the picture shows.
class Steady : public testing::Test {
 protected:
  Steady() {
    static_cast<void>(folder.File("clip.y4m", SquaresRecording(25, 60, {})));
    manifest = folder.File("list.tsv", kLabelledClips + "clip.y4m\t-\t-\t0 0.5 still;1 2.3 lead_departs\n");
  }
  TemporaryFolder folder;
  std::string manifest;
};

TEST_F(Steady, GatesHaveARowBesideTheModuleAlone) {
  const std::string eval = "eval " + manifest + " " + kAllFrames + "--json ";
  const CommandResult without = Stopngo(eval);
  const CommandResult once = Stopngo(eval + "--gates once");
  EXPECT_TRUE(JsonLines(without.out, "alone").empty());
  const auto figures = [](const CommandResult& result, const std::string& type) {
    nlohmann::json line = JsonLines(result.out, type).at(0);
    line.erase("type");
    return line;
  };
  EXPECT_EQ(figures(once, "alone"), figures(without, "summary")) << once.err;
  EXPECT_EQ(figures(once, "summary")["false_standing"], 1);
  EXPECT_EQ(figures(once, "summary")["right"], 0);
  EXPECT_EQ(figures(without, "summary")["right"], 1);
  const std::string text = Stopngo("eval " + manifest + " " + kAllFrames + "--gates once").out;
  EXPECT_NE(text.find("without gates"), std::string::npos) << text;
  // The labels are the speed: the gate is closed until 1 s, and the count then starts from nothing.
  const std::string driving =
      folder.File("drive.tsv", kLabelledClips + "clip.y4m\t-\t-\t0 0.9 ego_moving;0.9 2.3 lead_departs\n");
  const CommandResult speed =
      Stopngo("eval " + driving + " " + kAllFrames + "--json --gates speed --speed-time 0.1s");
  EXPECT_EQ(figures(speed, "alone")["false_driving"], 1) << speed.err;
  EXPECT_EQ(figures(speed, "summary")["false_driving"], 0);
  EXPECT_EQ(figures(speed, "summary")["right"], 1);
}

TEST_F(Steady, EveryAlarmIsJudgedAtItsTime) {
  const CommandResult json = Stopngo("eval " + kAllFrames + "--json " + manifest);
  ASSERT_EQ(json.exit_code, 0) << json.err;
  std::string told;
  for (const auto& event : JsonLines(json.out, "event")) {
    told += event["verdict"].get<std::string>() + event["time"].dump() + " ";
  }
  EXPECT_EQ(told, "false0.16 right1.12 repeat2.08 ");
  const nlohmann::json summary = JsonLines(json.out, "summary").at(0);
  EXPECT_EQ(summary["recall"], 1);
  EXPECT_EQ(summary["precision"], 0.5);
  EXPECT_NEAR(summary["delay_median_s"], 0.12, 1e-9);
  EXPECT_NEAR(summary["false_per_hour_standing"], 2000, 1e-6);
  EXPECT_TRUE(summary["false_per_hour_driving"].is_null());

  const CommandResult text = Stopngo("eval " + kAllFrames + manifest);
  EXPECT_NE(text.out.find("false      0.160 s  clip.y4m  (still)\n"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("\nrecording "), std::string::npos) << text.out;
}

TEST_F(Steady, NamesThatAreNoUtf8AreTold) {
  const std::string odd = folder.File("odd.tsv",
                                      "clip\tregion\trate\tlabels\tkind\nclip.y4m\t-\t-\t0 2 still\tstra\xdf"
                                      "e\n");
  const CommandResult json = Stopngo("eval " + kAllFrames + "--json " + odd);
  ASSERT_EQ(json.exit_code, 0) << json.err;
  EXPECT_EQ(JsonLines(json.out, "kind").at(0)["kind"], "stra\uFFFDe");
}

TEST_F(Steady, MissedDeparturesAreListed) {
  const CommandResult text = Stopngo("eval " + kAllFrames + "--threshold 0.5 " + manifest);
  EXPECT_NE(text.out.find("missed     1.000 s  clip.y4m\n"), std::string::npos) << text.out;
}

TEST_F(Steady, CurveIsTheModulesOwn) {
  const CommandResult result = Stopngo("eval " + kAllFrames + manifest + " --curve " + folder / "curve.tsv");
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto rows = TsvRows(ReadFile(folder / "curve.tsv"));
  const auto column = std::find(rows.at(0).begin(), rows.at(0).end(), "recall") - rows.at(0).begin();
  ASSERT_GT(rows.size(), 20U);
  for (std::size_t i = 1; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].at(static_cast<std::size_t>(column)), std::stod(rows[i][0]) < 0.5 ? "1" : "0");
  }
  EXPECT_EQ(ReadFile(folder / "curve.png").substr(0, 4), "\x89PNG");
  EXPECT_EQ(folder.Files(), 4U) << "nothing unfinished is left";
}

TEST_F(Steady, TunedSettingsAreWhatRunTakes) {
  const std::string tune = "tune --no-weights --rate 12.5 --false-alarms-per-hour 0 --try-filter median " +
                           manifest + " --try-threshold 0.3,0.6 --try-gap-op 2 --try-time-leaving ";
  // Half the frames: with 3 the alarm comes at 0.32 s, in the label; with 6 at 0.56 s, in none; with 12
  // at 1.04 s, which is the departure.
  const CommandResult tuned = Stopngo(tune + "3,6,12");
  ASSERT_EQ(tuned.exit_code, 0) << tuned.err;
  const std::string config = folder.File("car.toml", tuned.out);
  const CommandResult run = Stopngo("run --no-weights --json --config " + config + " " + folder / "clip.y4m");
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(JsonLines(run.out, "decision").at(0)["time"], 1.04) << tuned.out;
  EXPECT_NE(tuned.out.find("filter = \"median\"\n"), std::string::npos) << tuned.out;

  const CommandResult none = Stopngo(tune + "3 --json");
  EXPECT_EQ(JsonLines(none.out, "setting").at(0)["threshold"], "0.6") << "no alarm is within the limit";
}

// The alarms in a scene are those of run on a recording of its region. This one has no compression, whose marks
// depend on the frames before.
TEST(Eval, ScenesGiveWhatRunSaysOfAFile) {
  const TemporaryFolder folder;
  const std::string weights = " --rate 8 --weights " + ContractionWeights(folder);
  constexpr std::uint64_t kSeed = 2;
  const Clip clip{.name = "scene", .source = DrawnScene{SceneKind::kDeparture, kSeed}};
  const OpenedClip opened = OpenClip(clip, 8, 0);  // the frames that are handed over
  const Region region = SuggestedRegion(DrawScene(SceneKind::kDeparture, kSeed));
  const std::string width = std::to_string(region.width);
  const std::string height = std::to_string(region.height);
  std::string video = Print("YUV4MPEG2 W%d H%d F8:1 Ip A1:1 Cmono\n", region.width, region.height);
  for (LumaFrame frame; opened.frames->Next(frame);) {
    video.append("FRAME\n").append(frame.pixels.begin(), frame.pixels.end());
  }
  const std::string file = folder.File("scene.y4m", video);
  const CommandResult run =
      Stopngo(std::string("run --json ").append(file).append(weights) +
              " --roi-x 0 --roi-y 0 --input-width " + width + " --input-height " + height);
  ASSERT_EQ(run.exit_code, 0) << run.err;
  std::vector<double> expected;
  for (const auto& line : JsonLines(run.out, "decision")) {
    if (line["decision"] == 1) expected.push_back(line["time"]);
  }
  const std::string manifest =
      folder.File("list.tsv", kLabelledClips + "synth:departure:" + std::to_string(kSeed) + "\t-\t-\t-\n");
  const CommandResult eval = Stopngo(std::string("eval --json ").append(manifest).append(weights));
  ASSERT_EQ(eval.exit_code, 0) << eval.err;
  std::vector<double> judged;
  for (const auto& event : JsonLines(eval.out, "event")) {
    if (event["verdict"] != "missed") judged.push_back(event["time"]);
  }
  EXPECT_FALSE(judged.empty()) << "nothing was compared";
  ASSERT_EQ(judged.size(), expected.size());
  // The scene's times are those of its own 25 frames a second.
  for (std::size_t i = 0; i < judged.size(); ++i) EXPECT_NEAR(judged[i], expected[i], 0.5 / 25 + 1e-6);
}

// The first clip's picture moves up, as a departing vehicle's does; the second's moves to the right, which
// a difference of frames cannot tell from it.
TEST(Eval, BaselinesAreAsGoodAsTheyCanBe) {
  const TemporaryFolder folder;
  static_cast<void>(folder.File("up.y4m", SquaresRecording(10, 60, {0, -2})));
  static_cast<void>(folder.File("right.y4m", SquaresRecording(10, 60, {2, 0})));
  const std::string up = "up.y4m\t-\t-\t0 2.9 still;2.9 6 lead_departs\n";
  const std::string both =
      folder.File("both.tsv", kLabelledClips + up + "right.y4m\t-\t-\t0 3 still;3 6 crossing\n");
  const std::string options = "eval --json --no-weights --threshold 0.5 --baseline difference,flow ";
  const CommandResult alone = Stopngo(options + folder.File("up.tsv", kLabelledClips + up));
  ASSERT_EQ(alone.exit_code, 0) << alone.err;
  for (const auto& baseline : JsonLines(alone.out, "baseline")) {
    EXPECT_EQ(baseline["recall"], 1) << baseline;
    EXPECT_EQ(baseline["false_standing"], 0) << baseline;
    // The first frame that differs is at 3 s: no counter is needed where nothing disturbs.
    EXPECT_NEAR(baseline["delay_median_s"], 0.1, 1e-6) << baseline;
  }
  const CommandResult disturbed = Stopngo(options + both);
  const auto baselines = JsonLines(disturbed.out, "baseline");
  ASSERT_EQ(baselines.size(), 2U);
  EXPECT_EQ(baselines[0]["baseline"], "difference");
  EXPECT_EQ(baselines[0]["false_standing"], 0);
  EXPECT_EQ(baselines[1]["recall"], 1);
  EXPECT_EQ(baselines[1]["false_standing"], 0);
  EXPECT_EQ(baselines[1]["sign"], -1);
}

TEST(Eval, ResultsDoNotDependOnTheJobs) {
  const TemporaryFolder folder;
  const std::string manifest = folder.File(
      "list.tsv", kLabelledClips + "synth:departure:1\t-\t-\t-\nup.y4m\t-\t6\t0 3 still;3 6 lead_departs\n");
  static_cast<void>(folder.File("up.y4m", SquaresRecording(10, 60, {0, -2})));
  const std::string eval = "eval --json --rate 8 --baseline flow " + manifest + " --weights " +
                           ContractionWeights(folder) + " --curve " + folder / "curve.tsv --jobs ";
  const CommandResult one = Stopngo(eval + "1");
  ASSERT_EQ(one.exit_code, 0) << one.err;
  const std::string curve = ReadFile(folder / "curve.tsv");
  EXPECT_EQ(Stopngo(eval + "3").out, one.out);
  EXPECT_EQ(ReadFile(folder / "curve.tsv"), curve);
  EXPECT_EQ(JsonLines(one.out, "kind").size(), 2U);
}

TEST(Eval, RefusesWhatItCannotJudge) {
  const TemporaryFolder folder;
  const std::string good = folder.File("good.tsv", kLabelledClips + "synth:standing:1\t-\t-\t-\n");
  const std::string bad = folder.File("bad.tsv", kLabelledClips + "synth:standing:2-1\t-\t-\t-\n");
  const std::string text = folder.File("text.tsv", kLabelledClips + "good.tsv\t-\t-\t0 1 still\n");
  static_cast<void>(folder.File("grey.y4m", SquaresRecording(1, 1, {})));
  const std::string longer = folder.File("longer.tsv", kLabelledClips + "grey.y4m\t-\t-\t0 2.1 still\n");
  struct Case {
    std::string arguments;
    int exit_code;
    std::string reason;
  };
  const std::vector<Case> cases{
      {"eval --no-weights " + good + " " + bad, 1, bad + ":2: clip: '2-1'"},
      {"eval --no-weights " + text, 1, "good.tsv: "},
      {"eval --no-weights " + longer, 1, "grey.y4m: the last label ends at 2.1 s, the clip at 1 s"},
      {"eval --no-weights --roi-width 0", 2, "MANIFEST"},
      {"eval --no-weights --input-width 640 " + good, 2, "--input-width"},
      {"eval --no-weights --baseline guess " + good, 2, "guess"},
      {"eval --no-weights --curve curve.png " + good, 2, "curve.png"},
      {"eval --no-weights --curve " + folder / "none/curve.tsv " + good, 1, "No such file"},
      {"tune --no-weights --try-threshold high " + good, 2, "'high' is no number"},
      {"tune --no-weights " + good, 1, "no departure"},
      {"tune --no-weights --try-filter blur " + good, 2, "none, median, gaussian"},
  };
  for (const Case& refused : cases) {
    SCOPED_TRACE(refused.arguments);
    ExpectRefusal(Stopngo(refused.arguments), refused.exit_code, {refused.reason});
  }
}

}  // namespace
}  // namespace stopngo::test
