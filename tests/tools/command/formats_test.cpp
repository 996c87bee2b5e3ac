// formats_test.cpp: what stopngo prints for programs has the keys that docs/formats.md tells, all of them and no others.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include "program.h"

namespace stopngo::test {
namespace {

using Names = std::set<std::string>;

/// What stands in backticks in the first column of the tables below a heading.
Names Documented(const std::string& heading) {
  std::istringstream lines(ReadFile(STOPNGO_FORMATS));
  Names names;
  bool below = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('#')) below = line == heading;
    if (!below || !line.starts_with("| `")) continue;
    std::istringstream parts(line.substr(0, line.find('|', 1)));
    std::string part;
    for (bool name = false; std::getline(parts, part, '`'); name = !name) {
      if (name) names.insert(part);
    }
  }
  return names;
}

/// The paths of all values: parts of objects behind a point, of lists of objects behind [].
void AddKeys(const nlohmann::json& value, const std::string& path, Names& keys) {
  const bool objects = value.is_array() && !value.empty() && value.front().is_object();
  if (objects) {
    for (const auto& item : value) AddKeys(item, path + "[]", keys);
  } else if (value.is_object()) {
    const std::string before = path.empty() ? "" : path + ".";
    for (const auto& [key, part] : value.items()) AddKeys(part, before + key, keys);
  } else {
    keys.insert(path);
  }
}

Names KeysOf(const std::string& lines) {
  Names keys;
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) AddKeys(nlohmann::json::parse(line), "", keys);
  return keys;
}

Names Columns(const std::string& line) {
  Names names;
  std::istringstream parts(line.substr(0, line.find('\n')));
  for (std::string part; std::getline(parts, part, '\t');) names.insert(part);
  return names;
}

Names Both(Names a, const Names& b) {
  a.insert(b.begin(), b.end());
  return a;
}

class Formats : public testing::Test {
 protected:
  const TemporaryFolder folder_;
  const Names figures_ = Documented("### Figures");
};

TEST_F(Formats, OfRecordingsAreDocumented) {
  const std::string clip = folder_ / "clip.y4m";
  const CommandResult synth = Stopngo("synth --rate 10 --length 7 --json " + clip);
  ASSERT_EQ(synth.exit_code, 0) << synth.err;
  EXPECT_EQ(KeysOf(synth.out), Documented("### synth"));

  // Cut within its last picture, which gives "damaged"; a run that a signal ends has one key more.
  const std::string whole = ReadFile(clip);
  const std::string cut = folder_.File("cut.y4m", whole.substr(0, whole.size() - 1));
  const std::string run = " --weights " STOPNGO_DEFAULT_WEIGHTS " --json ";
  const Names broken_off{"cut_short"};
  const std::string trace = folder_ / "trace.tsv";
  EXPECT_EQ(Both(KeysOf(Stopngo("run " + cut + run + "--gates none --trace " + trace).out), broken_off),
            Documented("### run"));
  EXPECT_EQ(Columns(ReadFile(trace)), Documented("## Trace"));
  // All of it black to the gate, which so holds the alarm back.
  const std::string gated = "--gates picture --picture-black 255 --trace " + trace;
  Names more = KeysOf(Stopngo("run " + cut + run + gated).out);
  for (const std::string& key : Documented("### run")) more.erase(key);
  EXPECT_EQ(more, Documented("#### With gates"));
  more = Columns(ReadFile(trace));
  for (const std::string& column : Documented("## Trace")) more.erase(column);
  EXPECT_EQ(more, Documented("### Columns of gates"));
  // The clip twice, live, beside itself; the alarm's command reads what it is told.
  const std::string alarm = folder_ / "alarm";
  const std::string clips = folder_ / "clips";
  std::filesystem::create_directory(clips);
  const std::string live = " --gates none --live --status " + folder_ / "status" + " --on-alarm 'tee " +
                           alarm + "' --clips " + clips + " ";
  const CommandResult twice = Stopngo("run " + clip + " " + clip + live + run);
  ASSERT_EQ(twice.exit_code, 0) << twice.err;
  more = KeysOf(twice.out);
  for (const std::string& key : Documented("### run")) more.erase(key);
  EXPECT_EQ(more, Documented("#### Live, and of several inputs"));
  EXPECT_EQ(KeysOf(ReadFile(alarm)), Documented("#### Alarm"));
  Names status = Documented("#### Status");
  status.erase("inputs[].last_alarm");
  for (const std::string& key : Documented("#### Alarm")) status.insert("inputs[].last_alarm." + key);
  EXPECT_EQ(KeysOf(ReadFile(folder_ / "status")), status);
#if STOPNGO_WITH_FFMPEG
  Names kept;
  for (const auto& entry : std::filesystem::directory_iterator(clips)) {
    if (entry.path().extension() == ".json") kept = Both(kept, KeysOf(ReadFile(entry.path())));
  }
  Names clip_keys = Documented("#### Clip");
  for (const char* const apart : {"alarms", "packets"}) clip_keys.erase(apart);
  for (const std::string& key : Documented("#### Alarm")) clip_keys.insert("alarms[]." + key);
  EXPECT_EQ(kept, clip_keys);
#endif
  const CommandResult render =
      Stopngo("render " + cut + " " + folder_ / "seen.y4m" + run + "--still " + folder_ / "still.png");
  EXPECT_EQ(Both(KeysOf(render.out), broken_off), Documented("### render"));
  const std::string labels = ReadFile(clip + ".labels.tsv");
  EXPECT_EQ(labels.substr(labels.find('\n')).substr(0, 20), "\nstart_s\tend_s\tlabel");
}

TEST_F(Formats, OfJudgementsAreDocumented) {
  const std::string clips = "clip\tregion\trate\tlabels\tkind\n";
  EXPECT_EQ(Columns(clips), Documented("## Manifest"));
  ASSERT_EQ(Stopngo("synth --rate 10 --length 4 " + folder_ / "clip.y4m").exit_code, 0);
  std::string labels;
  int time_s = 0;
  for (const std::string& name : Documented("### Labels")) {
    labels.append(std::to_string(time_s) + " " + std::to_string(time_s + 1) + " " + name + ";");
    ++time_s;
  }
  const std::string manifest =
      folder_.File("clips.tsv", clips + "synth:departure:1\t-\t-\t-\t-\nclip.y4m\t-\t-\t" + labels + "\t-\n");
  const std::string curve = folder_ / "curve.tsv";
  const std::string weights = " --weights " STOPNGO_DEFAULT_WEIGHTS " --json ";
  const CommandResult eval = Stopngo("eval " + manifest + weights + "--baseline difference --curve " + curve);
  EXPECT_EQ(KeysOf(eval.out), Both(figures_, Documented("### eval"))) << eval.err;
  Names columns = Columns(ReadFile(curve));
  columns.insert({"repeats", "unjudged"});
  columns.erase("threshold");
  EXPECT_EQ(columns, figures_);
  const CommandResult tune = Stopngo("tune " + manifest + weights +
                                     "--gates none --try-filter none --try-threshold 0.4 --try-gap-op 2");
  EXPECT_EQ(KeysOf(tune.out), Both(figures_, Documented("### tune"))) << tune.err;
  EXPECT_EQ(KeysOf(Stopngo("features --table --json " + manifest).out), Documented("### features"));
  const std::string few = folder_.File("few.tsv", clips + "synth:standing:1\t-\t0.5\t-\t-\n");
  EXPECT_EQ(KeysOf(Stopngo("features --json " + few + " -o " + folder_ / "kept").out),
            Documented("#### With --output"));
}

TEST_F(Formats, OfSettingsAndWeightsAreDocumented) {
  const CommandResult check = Stopngo("check --no-weights --roi-width 225 --print --json");
  EXPECT_EQ(KeysOf(check.out), Documented("### check")) << check.err;
  const CommandResult weights = Stopngo("weights --json " STOPNGO_DEFAULT_WEIGHTS);
  EXPECT_EQ(KeysOf(weights.out), Documented("### weights")) << weights.err;

  const auto sidecar = nlohmann::json::parse(ReadFile(STOPNGO_DEFAULT_WEIGHTS ".json"));
  const auto of_gate = nlohmann::json::parse(
      ReadFile((std::filesystem::path(STOPNGO_DEFAULT_WEIGHTS).parent_path() / "history.bin.json").string()));
  Names keys;
  for (const auto* const one : {&sidecar, &of_gate}) {
    for (const auto& [key, value] : one->items()) keys.insert(key);
    for (const auto& [key, value] : (*one)["settings"].items()) keys.insert(key);
    for (const auto& [key, value] : (*one)["training"].items()) keys.insert(key);
    AddKeys((*one)["training"], "", keys);
  }
  AddKeys(of_gate["figures"]["validation"], "", keys);
  keys.erase("seeds");
  keys.insert({"test[].file", "test[].sha256"});  // they were trained without
  EXPECT_EQ(keys, Documented("## Sidecar"));
  Names counted;
  AddKeys(sidecar["figures"]["validation"], "", counted);
  EXPECT_EQ(counted, figures_);
}

}  // namespace
}  // namespace stopngo::test
