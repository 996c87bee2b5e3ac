// run_test.cpp: stopngo run, from the command line to the summary and the files it leaves.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "program.h"
#include "support/failure_text.h"
#include "support/squares.h"

namespace stopngo::test {
namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 480;
constexpr int kDefaultWeights = 2593;

// A texture that moves two pixels down and one to the right a frame, so that scores vary.
std::string Plane(int frame) { return Squares(kWidth, kHeight, frame, 2 * frame); }

std::string RawVideo(int frames) {
  std::string video;
  for (int i = 0; i < frames; ++i) video += Plane(i);
  return video;
}

std::string Y4m(int frames, const std::string& layout, std::size_t chroma_bytes) {
  std::string video = "YUV4MPEG2 W800 H480 F25:1 Ip " + layout + "\n";
  for (int i = 0; i < frames; ++i) video += "FRAME\n" + Plane(i) + std::string(chroma_bytes, '\x55');
  return video;
}

// Weights that let the score swing: small integers, all exact.
std::string Weights(int numbers = kDefaultWeights) {
  std::string bytes;
  for (int i = 0; i < numbers; ++i) {
    const float weight = static_cast<float>(i * 7919 % 13 - 6) / 4;
    bytes.append(reinterpret_cast<const char*>(&weight), sizeof weight);
  }
  return bytes;
}

using Row = std::map<std::string, std::string>;

std::vector<Row> ReadTrace(const std::string& path) {
  std::istringstream lines(ReadFile(path));
  std::vector<std::string> names;
  std::vector<Row> rows;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream cells(line);
    Row row;
    std::size_t column = 0;
    for (std::string cell; std::getline(cells, cell, '\t'); ++column) {
      if (rows.empty() && column == names.size()) names.push_back(cell);
      row[names.at(column)] = cell;
    }
    rows.push_back(row);
  }
  rows.erase(rows.begin());
  return rows;
}

std::vector<std::string> Column(const std::vector<Row>& rows, const std::string& name) {
  std::vector<std::string> column;
  column.reserve(rows.size());
  for (const Row& row : rows) column.push_back(row.at(name));
  return column;
}

std::vector<nlohmann::json> JsonLines(const std::string& text) {
  std::vector<nlohmann::json> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(nlohmann::json::parse(line));
  return lines;
}

// Every frame, as most cases count them.
const std::string kRaw = "run - --raw 800x480 --rate 0 ";

TEST(RunTest, EveryFormOfAnInputGivesTheSameTrace) {
  constexpr int kCount = 12;
  constexpr std::size_t kQuarter = std::size_t{400} * 240;
  const TemporaryFolder folder;
  const std::string weights = " --weights " + folder.File("w.bin", Weights());
  const std::string raw = RawVideo(kCount);
  const std::string mono = folder.File("mono.y4m", Y4m(kCount, "Cmono", 0));
  struct Form {
    std::string arguments;
    std::string input;
  };
  std::vector<Form> forms = {
      {kRaw, raw},
      {"run --rate 0 --raw 800x480 " + folder.File("v.raw", raw), ""},
      {"run --rate 0 " + mono, ""},
      {"run --rate 0 -", Y4m(kCount, "", 2 * kQuarter)},
      {"run --rate 0 -", Y4m(kCount, "C420paldv XCOLORRANGE=FULL", 2 * kQuarter)},
      {"run --rate 0 -", Y4m(kCount, "C422", 4 * kQuarter)},
      {"run --rate 0 -", Y4m(kCount, "C444", 8 * kQuarter)},
  };
#if STOPNGO_WITH_FFMPEG
  forms.push_back({"run --rate 0 --format yuv4mpegpipe " + mono, ""});
#endif
  std::vector<std::vector<Row>> traces;
  const std::string path = folder / "t.tsv";
  const std::string options = weights + " --trace " + path;
  for (const Form& form : forms) {
    const CommandResult result = Stopngo(form.arguments + options, form.input);
    ASSERT_EQ(result.exit_code, 0) << form.arguments << ": " << result.err;
    traces.push_back(ReadTrace(path));
    for (Row& row : traces.back()) row.erase("write_ns");
    EXPECT_EQ(traces.back(), traces.front()) << form.arguments;
  }
  ASSERT_EQ(traces.front().size(), std::size_t{kCount});
  const std::vector<std::string> scores = Column(traces.front(), "score_bits");
  EXPECT_NE(scores.at(1), scores.at(2)) << "the scores do not follow the picture";
}

TEST(RunTest, DecisionsTraceAndSummaryAgree) {
  const TemporaryFolder folder;
  const std::string path = folder / "t.tsv";
  // At 10 frames a second: 5 frames of beeping within 10 of cooling.
  const CommandResult result = Stopngo(
      kRaw + "--raw-fps 10 --no-weights --json --log 1 --time-beeping 0.5s --time-cooling 1s --trace " + path,
      RawVideo(20));
  ASSERT_EQ(result.exit_code, 0) << result.err;
  EXPECT_NE(result.err.find("[Stop&Go] result:0.5"), std::string::npos) << "the module's lines are messages";

  // Frame 1 is the first that is scored; the fourth score above the threshold passes the count of 3.
  const std::vector<nlohmann::json> lines = JsonLines(result.out);
  ASSERT_EQ(lines.size(), 5U);
  const std::vector<std::pair<int, int>> expected = {{4, 1}, {10, 2}, {15, 0}, {18, 1}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(lines[i].at("type"), "decision");
    EXPECT_EQ(lines[i].at("frame"), expected[i].first);
    EXPECT_EQ(lines[i].at("decision"), expected[i].second);
    EXPECT_DOUBLE_EQ(lines[i].at("time").get<double>(), expected[i].first / 10.0);
  }

  const std::vector<Row> rows = ReadTrace(path);
  ASSERT_EQ(rows.size(), 20U);
  std::map<std::string, int> frames_by_decision;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const bool hold = (i > 4 && i < 15) || i > 18;
    EXPECT_EQ(rows[i].at("analysed"), hold ? "0" : "1") << i;
    EXPECT_EQ(rows[i].at("score"), hold ? "0" : "0.5") << i;
    EXPECT_EQ(rows[i].at("score_bits"), hold ? "00000000" : "3f000000") << i;
    ++frames_by_decision[rows[i].at("decision")];
  }
  EXPECT_EQ(rows[3].at("alarm_counter"), "3");
  EXPECT_EQ(rows[14].at("hold_timer"), "10");

  const nlohmann::json& summary = lines.back();
  EXPECT_EQ(summary.at("type"), "summary");
  EXPECT_EQ(summary.at("frames"), 20);
  EXPECT_EQ(summary.at("decided"), 19);
  EXPECT_EQ(summary.at("analysed"), 8);
  EXPECT_EQ(summary.at("decisions").at("none"), frames_by_decision["0"]);
  EXPECT_EQ(summary.at("decisions").at("alarm"), frames_by_decision["1"]);
  EXPECT_EQ(summary.at("decisions").at("cooling"), frames_by_decision["2"]);
  EXPECT_EQ(summary.at("changes"), nlohmann::json::parse(R"({"none": 1, "alarm": 2, "cooling": 1})"));
  std::vector<double> times;
  for (const std::string& time : Column(rows, "write_ns")) times.push_back(std::stod(time));
  std::sort(times.begin(), times.end());
  EXPECT_NEAR(summary.at("write_ns").at("p50").get<double>(), times.at(9), 1);
  EXPECT_NEAR(summary.at("write_ns").at("p95").get<double>(), times.at(18), 1);
  EXPECT_NEAR(summary.at("write_ns").at("max").get<double>(), times.at(19), 1);
}

TEST(RunTest, TellsWhatGatesDoAndWhatTheModuleWouldHaveDoneAlone) {
  const TemporaryFolder folder;
  const std::string path = folder / "t.tsv";
  const std::string black(std::size_t{kWidth} * kHeight, '\0');
  const std::string video = RawVideo(2) + black + black + RawVideo(12);
  const std::string run = kRaw + "--raw-fps 10 --no-weights --time-cooling 5 --trace " + path;
  const CommandResult result = Stopngo(run + " --json --gates once,picture", video);
  ASSERT_EQ(result.exit_code, 0) << result.err;
  std::string told;
  for (const nlohmann::json& line : JsonLines(result.out)) {
    if (!line.contains("time")) continue;
    told += line["frame"].dump() + ' ' + std::string(line["type"]) + ' ' + line.value("reason", "") +
            line.value("held_back_by", "") + line.value("state", "") + line.value("name", "") + "; ";
  }
  EXPECT_EQ(told,
            "3 health picture blackclosed; 4 alone picture (picture black); 5 health open; 8 decision alarm; "
            "9 gate told alreadyclosed; 13 alone once (told already); 14 decision none; ");
  const nlohmann::json summary = JsonLines(result.out).back();
  EXPECT_EQ(summary["alone"], nlohmann::json::parse(R"({"alarms": 2, "held_back": 2})"));
  EXPECT_EQ(summary["gates"][1],
            nlohmann::json::parse(R"({"gate": "picture", "closed": 1, "frames": 2, "held_back": 1})"));
  EXPECT_EQ(Column(ReadTrace(path), "gates").at(4), "picture");
  const auto alone = Column(ReadTrace(path), "alone_decision");
  const CommandResult text = Stopngo(run, video);
  EXPECT_EQ(Column(ReadTrace(path), "decision"), alone);
  EXPECT_EQ(ReadTrace(path).front().count("gates"), 0U);
  EXPECT_EQ(text.out.find("gate"), std::string::npos) << text.out;
  ExpectWords(
      Stopngo(run + " --gates once,picture", video).out,
      {"picture black", "picture back", "the module alone: alarm, held back by picture (picture black)"});
  ExpectWords(Stopngo(run + " --gates speed", RawVideo(40)).err, {"warning", "speed-stale"});
  ExpectRefusal(Stopngo(run + " --gates lights"), 2, {"--gates", "'lights'", "picture"});
}

TEST(RunTest, FramesAndTimesFollowTheRate) {
  const TemporaryFolder folder;
  const std::string path = folder / "t.tsv";
  const auto frames = [&](const std::string& arguments) {
    const CommandResult result =
        Stopngo("run - --raw 800x480 --no-weights --trace " + path + arguments, RawVideo(9));
    EXPECT_EQ(result.exit_code, 0) << result.err;
    return Column(ReadTrace(path), "frame");
  };
  using Frames = std::vector<std::string>;
  EXPECT_EQ(frames(" --raw-fps 12"), (Frames{"0", "2", "4", "6", "8"})) << "6 a second unless told otherwise";
  // Times in seconds count the frames that are handed over.
  EXPECT_EQ(frames(" --raw-fps 30 --rate 10 --time-cooling 1.2s"), (Frames{"0", "3", "6"}));
  EXPECT_EQ(ReadTrace(path).front().at("hold_timer"), "12");
}

TEST(RunTest, WeightsAreCheckedAgainstTheNetwork) {
  const TemporaryFolder folder;
  const std::string good = folder.File("good.bin", Weights());
  const std::string input = RawVideo(1);
  const auto refused = [&](const std::string& options, int code, const std::vector<std::string>& words) {
    ExpectRefusal(Stopngo(kRaw + options, input), code, words);
  };
  refused("--weights " + good + " --no-weights", 2, {"--no-weights"});
  refused("--weights " + folder.File("long.bin", Weights() + "more"), 1, {"long.bin", "10372", "10376"});
  refused("--weights " + folder.File("short.bin", Weights(2592)), 1, {"short.bin", "10372", "10368"});
  refused("--weights " + good + " --hiddens 17", 2, {"2755", "2600"});
  refused("--weights " + folder.File(std::string(130, 'w'), Weights()), 1, {"127"});
}

TEST(RunTest, DebugPictureShowsTheRegion) {
  const TemporaryFolder folder;
  const std::string path = folder / "fb.ppm";
  const CommandResult result =
      Stopngo(kRaw + "--no-weights --lcd-width 300 --lcd-height 200 --debug-fb " + path, RawVideo(3));
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const std::string header = "P6\n300 200\n255\n";
  const std::string picture = ReadFile(path);
  ASSERT_EQ(picture.size(), header.size() + 300 * 200 * 3);
  EXPECT_EQ(picture.substr(0, header.size()), header);
  const std::string last = Plane(2);
  const auto pixel = [&](int x, int y) { return picture.substr(header.size() + 3 * (300 * y + x), 3); };
  for (const auto& [x, y] : {std::pair{0, 0}, std::pair{219, 0}, std::pair{100, 71}, std::pair{219, 139}}) {
    EXPECT_EQ(pixel(x, y), std::string(3, last[std::size_t{kWidth} * (260 + y) + 290 + x])) << x << ' ' << y;
  }
  EXPECT_EQ(pixel(220, 0), std::string(3, '\0'));
  EXPECT_EQ(pixel(0, 140), std::string(3, '\0'));
}

TEST(RunTest, WhatWasDecidedBeforeDamageIsKeptAndTheRunFails) {
  const TemporaryFolder folder;
  const std::string arguments =
      "run - --rate 0 --raw 800x480 --raw-fps 10 --no-weights --trace " + folder / "t.tsv";
  const std::string cut = RawVideo(4) + Plane(4).substr(1);
  const CommandResult refused = Stopngo(arguments, cut);
  EXPECT_EQ(refused.exit_code, 1);
  EXPECT_NE(refused.out.find("4 frames"), std::string::npos) << refused.out;
  EXPECT_EQ(refused.err,
            "stopngo: standard input: ends after 0.40 s: frame 4 is cut short (see --allow-damaged)\n");
  EXPECT_EQ(ReadTrace(folder / "t.tsv").size(), 4U);
  const std::string note = "\n# damaged: standard input: ends after 0.40 s: frame 4 is cut short\n";
  EXPECT_TRUE(ReadFile(folder / "t.tsv").ends_with(note));
  EXPECT_EQ(JsonLines(Stopngo(arguments + " --json", cut).out).back()["damaged"],
            "standard input: ends after 0.40 s: frame 4 is cut short");
  const CommandResult allowed = Stopngo(arguments + " --allow-damaged", cut);
  EXPECT_EQ(allowed.exit_code, 0);
  EXPECT_EQ(ReadFile(folder / "t.tsv").find('#'), std::string::npos);
  EXPECT_EQ(allowed.err, "stopngo: warning: standard input: ends after 0.40 s: frame 4 is cut short\n");
}

TEST(RunTest, BadInputIsToldInOneSentenceAndLeavesNothing) {
  const TemporaryFolder folder;
  const std::string video = RawVideo(3);
  const std::string outputs =
      " --no-weights --trace " + folder / "t.tsv" + " --debug-fb " + folder / "fb.ppm ";
  struct Case {
    std::string arguments;
    int exit_code;
    std::vector<std::string> words;
  };
  const std::vector<Case> cases = {
      {"", 2, {"command"}},
      {"rum x.mp4", 2, {"'rum'", "is run meant"}},
      {"run", 2, {"INPUT"}},
      {kRaw + "--bogus", 2, {"--bogus"}},
      {kRaw + "--thresold 0.5", 2, {"--thresold", "is --threshold meant"}},
      {"check a.mp4 b.mp4", 2, {"'b.mp4'", "too many"}},
      {"run a.mp4 b.mp4 --trace t.tsv", 2, {"--trace", "one input", "2"}},
      {"run a.mp4 --size 12", 2, {"--size", "'12'", "1280x720"}},
      {"run a.mp4 --retries -1", 2, {"--retries", "'-1' is no number of 0 or more"}},
      {"run a.mp4 --fps nan", 2, {"--fps", "'nan' is no number from 0.1 to 1000"}},
      {kRaw + "--fps 25", 2, {"--fps", "standard input cannot be asked for it"}},
      {"train a.tsv -o w.bin --decay nan", 2, {"--decay", "'nan' is no number from 0 to 1"}},
      {kRaw + "--jobs 0", 2, {"--jobs", "'0' is no number above 0"}},
      {"run --no-weights -- --json", 1, {"--json", "No such file"}},
      {"--json run a.mp4", 2, {"--json", "stopngo has no such option"}},
      {kRaw + "--roi-x 1.5", 2, {"--roi-x", "1.5"}},
      {kRaw + "--gap-op 4294967296", 2, {"--gap-op", "4294967296"}},
      {kRaw + "--time-cooling 2m" + outputs, 2, {"--time-cooling", "2m"}},
      {kRaw + "--filter blur" + outputs, 2, {"--filter", "gaussian"}},
      {"run - --raw 800" + outputs, 2, {"--raw", "800"}},
      {kRaw + "--raw-fps 0" + outputs, 2, {"--raw-fps"}},
      {"run - --raw 800x480 --rate -1" + outputs, 2, {"--rate"}},
      {"run - --raw 800x480 --rate 1e-300" + outputs, 2, {"--rate"}},
      {kRaw + "--input-width 0" + outputs, 2, {"--input-width"}},
      {kRaw + "--original-size 1280" + outputs, 2, {"1280 x 720", "800 x 480", "--original-size"}},
      {kRaw + "--lcd-width 0" + outputs, 2, {"--lcd-width"}},
      {"run " + folder / "gone.mp4" + outputs, 1, {"gone.mp4", "No such file"}},
      {"run " + folder.File("text.mp4", "no video") + outputs, 1, {"text.mp4"}},
      {"run - " + outputs, 1, {"standard input", "not Y4M"}},
      {kRaw + "--original" + outputs, 1, {"800 x 480", "1920 x 1080"}},
      {kRaw + "--roi-y 400" + outputs, 2, {"outside-frame", "220 x 140", "800 x 480", "--roi-x"}},
      {kRaw + "--no-weights --trace " + folder / "none/t.tsv", 1, {"none/t.tsv"}},
      {kRaw + "--no-weights --trace /dev/full", 1, {"/dev/full"}},
      {kRaw + "--no-weights --status " + folder / "none/s.json", 1, {"none/s.json"}},
      {kRaw + "--no-weights --live --clips " + folder / "text.mp4", 1, {"text.mp4", "Not a directory"}},
      {kRaw + "--config " + folder / "gone.toml", 1, {"gone.toml"}},
      {kRaw + "--config " + folder.File("car.toml", "rate = 5\n\nratte = 1\n"),
       1,
       {"car.toml:3", "is rate meant"}},
      {kRaw + "--config " + folder.File("twice.toml", "rate = 5\nrate = 6\n"),
       1,
       {"twice.toml:2: 'rate' is given twice"}},
  };
  const std::size_t files = folder.Files();
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.arguments);
    ExpectRefusal(Stopngo(bad.arguments, video), bad.exit_code, bad.words);
    EXPECT_EQ(folder.Files(), files);
  }
}

// A pipe holds less than a frame: when three have gone through, the run has long begun.
TEST(RunTest, InterruptionEndsTheRunAsTheEndOfTheInputDoes) {
  const TemporaryFolder folder;
  const std::string three = folder.File("three.raw", RawVideo(3));
  const std::string pipe = folder / "pipe";
  const std::string trace = folder / "t.tsv";
  const std::string run = STOPNGO_PROGRAM " run - --rate 0 --raw 800x480 --no-weights --trace " + trace;
  const CommandResult result = Shell("mkfifo " + pipe + "; " + run + " <" + pipe + " & exec 3>" + pipe +
                                     "; cat " + three + " >&3; kill -INT $!; for i in $(seq 40); do cat " +
                                     three + " >&3 2>/dev/null; done; exec 3>&-; wait $!; " + "echo code $?");
  EXPECT_NE(result.out.find("code 130"), std::string::npos) << result.out << result.err;
  EXPECT_NE(result.out.find("cut short by SIGINT"), std::string::npos) << result.out;
  const std::string lines = ReadFile(trace);
  EXPECT_TRUE(lines.ends_with("\n# cut short: SIGINT\n")) << lines;
  const auto frames = std::count(lines.begin(), lines.end(), '\n') - 2;
  EXPECT_GE(frames, 3);
  EXPECT_LT(frames, 100) << "all were read";
  EXPECT_NE(result.out.find(std::to_string(frames) + " frames"), std::string::npos) << result.out;
}

TEST(RunTest, StandardOutputThatFailsEndsTheRun) {
  const TemporaryFolder folder;
  const std::string video = folder.File("v.raw", RawVideo(12));
  const std::string trace = folder / "t.tsv";
  const std::string run = "run --rate 0 --raw 800x480 --no-weights " + video + " --trace " + trace;
  ExpectRefusal(Stopngo(run + " >/dev/full"), 1, {"standard output"});
  ExpectRefusal(Stopngo("--help >/dev/full"), 1, {"standard output"});
  // A reader that leaves, as head does, is no fault to talk about.
  const std::string pipe = folder / "pipe";
  const auto unread = [&pipe](const std::string& arguments) {
    return Shell("exec 3<>" + pipe + " 4>" + pipe + " 3<&-; " STOPNGO_PROGRAM " " + arguments + " >&4");
  };
  ASSERT_EQ(Shell("mkfifo " + pipe).exit_code, 0);
  const CommandResult left = unread(run);
  EXPECT_EQ(left.exit_code, 128 + SIGPIPE);
  EXPECT_EQ(left.err, "");
  EXPECT_TRUE(ReadFile(trace).ends_with("\n# cut short: standard output: nobody reads it any more\n"));
  EXPECT_EQ(folder.Files(), 3U);
  ExpectRefusal(unread("run --no-weights gone.y4m"), 1, {"gone.y4m"});
}

TEST(RunTest, TheLogCannotSteerATerminalByAFilesName) {
  const TemporaryFolder folder;
  const std::string weights = folder.File("w\x1b[2J\n.bin", std::string(10372, '\1'));
  const std::string run = "run - --rate 0 --raw 800x480 --log 1 --weights '" + weights + "'";
  const CommandResult result = Stopngo(run, RawVideo(2));
  EXPECT_EQ(result.exit_code, 0) << result.err;
  ExpectWords(result.err,
              {"load classify. path:", "/w\\u001b[2J\\u000a.bin, feature:160, hidden:16, result:0\n"});
  EXPECT_EQ(result.err.find('\x1b'), std::string::npos);
}

#if STOPNGO_WITH_FFMPEG
TEST(RunTest, OriginalFramesAreHandedOverAsTheyAre) {
  const TemporaryFolder folder;
  const auto source = [](const std::string& size) {
    return "run --rate 0 --format lavfi testsrc=size=" + size + ":rate=30:duration=0.5 --no-weights --log 1 ";
  };
  for (const char* const size : {"1920x1080", "1280x720"}) {
    const CommandResult result = Stopngo(source(size) + "--original --trace " + folder / "t.tsv");
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(result.err.rfind("[Stop&Go] org:" + std::string(size).substr(0, 4), 0), 0U) << result.err;
    EXPECT_EQ(ReadTrace(folder / "t.tsv").size(), 15U);
  }
  const CommandResult scaled = Stopngo(source("1920x1080"));
  ExpectWords(scaled.err, {"warning: ", "1920 x 1080 are stretched to 800 x 480\n[Stop&Go] org:800"});
  ExpectRefusal(Stopngo(source("640x480") + "--original"), 1, {"640 x 480", "1280 x 720"});
}
#endif

}  // namespace
}  // namespace stopngo::test
