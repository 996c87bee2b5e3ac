// features_test.cpp: stopngo features --output, and the commands that take clips from what it keeps.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "classify.h"
#include "host/gates/history.h"
#include "host/settings/weights_file.h"
#include "program.h"
#include "support/squares.h"

namespace stopngo::test {
namespace {

class FeaturesTest : public testing::Test {
 protected:
  /// Six seconds each, in whose second half the texture moves, and a scene.
  [[nodiscard]] std::string Manifest(const std::string& name, const std::vector<SquaresMove>& moves,
                                     const std::string& scene) const {
    std::string text = "clip\tregion\trate\tlabels\n" + scene + "\t-\t2\t-\n";
    for (const SquaresMove& move : moves) {
      const std::string clip = name + std::to_string(move.right) + std::to_string(move.down) + ".y4m";
      static_cast<void>(folder_.File(clip, SquaresRecording(5, 30, move)));
      text += clip + "\t200,100,200,140\t5\t0 3 still;3 6 " + (move.down < 0 ? "lead_departs" : "crossing") +
              "\n";
    }
    return folder_.File(name, text);
  }

  /// The files of a folder of features, by name.
  static std::map<std::string, std::string> Kept(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      files[entry.path().filename()] = ReadFile(entry.path());
    }
    return files;
  }

  void Keep(const std::string& arguments) const {
    const CommandResult result = Stopngo("features " + arguments + " -o " + kept_);
    ASSERT_EQ(result.exit_code, 0) << result.err;
  }

  void ExpectTheSame(const std::string& arguments) const {
    const CommandResult pictures = Stopngo(arguments);
    const CommandResult kept = Stopngo(arguments + " --features-from " + kept_);
    EXPECT_EQ(pictures.exit_code, 0) << pictures.err;
    EXPECT_EQ(kept.exit_code, 0) << kept.err;
    EXPECT_EQ(kept.out, pictures.out) << arguments;
  }

  const TemporaryFolder folder_;
  const std::string kept_ = folder_ / "kept";
};

TEST_F(FeaturesTest, GiveTheSameJudgementsAsPictures) {
  const std::string clips = Manifest("clips.tsv", {{0, -2}, {2, 1}}, "synth:departure:3");
  Keep(clips);
  const std::string weights = " --weights " STOPNGO_DEFAULT_WEIGHTS " --json";
  ExpectTheSame("eval " + clips + weights + " --baseline difference,flow");
  ExpectTheSame("eval " + clips + weights +
                " --filter median --threshold 0.2 --frame-skip 4 --time-cooling 1s");
  // Gates that go by pixels, by motion, and by the labels; so eager that they close.
  ExpectTheSame(
      "eval " + clips + weights +
      " --gates light,once,picture,speed --light-rate 1 --picture-frozen 0.5s --once-busy 20 --once-calm 10");
  Network history{kHistoryInputs, kHistoryHiddens, {}};
  for (std::size_t i = 0; i < NetworkLength(kHistoryInputs, kHistoryHiddens); ++i) {
    history.numbers.push_back(static_cast<float>(i * 7 % 11) / 20 - 0.25F);
  }
  ExpectTheSame("eval " + clips + weights + " --gates history --history-weights " +
                folder_.File("history.bin", WeightsBytes(history)));
  ExpectTheSame("tune " + clips + weights + " --try-threshold 0.3,0.5 --try-time-leaving 1 --try-gap-op 2");
  ExpectTheSame("features " + clips + " --table --json");
}

TEST_F(FeaturesTest, GiveTheSameTrainingsAsPictures) {
  const std::string clips =
      Manifest("clips.tsv", {{0, -2}, {1, -1}, {2, 0}, {0, -1}, {2, -2}}, "synth:departure:3");
  const std::string others = Manifest("others.tsv", {{1, -2}, {1, 0}}, "synth:departure:4");
  // Five looks are at two rates; train needs no more than the first four of them.
  Keep(clips + " --looks 5");
  Keep(others + " --looks 1");
  const std::string weights = folder_ / "w.bin";
  const std::string report = folder_ / "r.png";
  const auto train = [&](const std::string& arguments) {
    const CommandResult result =
        Stopngo("train " + clips + arguments + " --looks 4 --seeds 1 --iterations 3 -o " + weights +
                " --report " + report);
    EXPECT_EQ(result.exit_code, 0) << result.err;
    return result.out + ReadFile(weights) + ReadFile(weights + ".json") + ReadFile(report);
  };
  const std::string apart = " --validation " + others + " --test " + others;
  for (const std::string& sets : {apart, std::string()}) {
    EXPECT_TRUE(train(sets) == train(sets + " --features-from " + kept_)) << sets;
  }
  const std::string from = "train " + clips + " --features-from " + kept_ + " -o " + weights;
  ExpectRefusal(Stopngo(from + " --looks 4 --seed 2"), 2, {"--seed"});
  ExpectRefusal(Stopngo(from + " --looks 6"), 2, {"--looks 5"});

  // What is judged at the end is missed before the training, which here would find nothing to learn.
  const std::string calm = Manifest("calm.tsv", {{1, -1}}, "synth:standing:3");
  const std::string unkept = Manifest("unkept.tsv", {{2, -1}}, "synth:departure:5");
  Keep(calm + " --looks 1");
  const std::string judged = " --validation " + others + " --test " + unkept + " --looks 1 --features-from " +
                             kept_ + " -o " + weights;
  for (const char* const gate : {"", " --gate history"}) {
    ExpectRefusal(Stopngo(std::string("train ").append(calm).append(gate).append(judged)), 1,
                  {"no features of", "departure:5"});
  }
}

TEST_F(FeaturesTest, PartsAndBrokenOffWorkMakeTheSameFolder) {
  std::string clips;
  for (const char* const name : {"1", "2", "3", "4"}) {
    std::string text = "clip\tregion\trate\tlabels\n";
    for (const char* const kind : {"standing", "departure"}) {
      text.append("synth:").append(kind).append(":").append(name).append("\t-\t0.5\t-\n");
    }
    clips.append(folder_.File(std::string(name) + ".tsv", text)).append(" ");
  }
  clips += "--only-looks --looks 2";
  Keep(clips + " --jobs 3");
  const auto whole = Kept(kept_);
  ASSERT_EQ(whole.size(), 4U);
  const std::string parts = folder_ / "parts";
  const std::string make_part = "features " + clips + " --jobs 1 -o " + parts + " --part ";
  for (const char* const part : {"2/3", "1/3", "3/3"}) {
    const CommandResult made = Stopngo(make_part + part);
    ASSERT_EQ(made.exit_code, 0) << made.err;
    EXPECT_EQ(made.out.find(": 0 files"), std::string::npos) << part << " has something to do";
  }
  EXPECT_TRUE(Kept(parts) == whole);

  std::filesystem::remove(std::filesystem::path(kept_) / whole.begin()->first);
  const CommandResult again = Stopngo("features " + clips + " --json -o " + kept_);
  EXPECT_EQ(nlohmann::json::parse(again.out)["files_made"], 1) << again.err;
  EXPECT_TRUE(Kept(kept_) == whole);
}

TEST_F(FeaturesTest, OfOtherClipsOrSettingsAreRefused) {
  const std::string clips = Manifest("clips.tsv", {{0, -2}}, "synth:departure:3");
  const std::string more = Manifest("more.tsv", {{0, -1}}, "synth:departure:3");
  Keep(clips);
  const auto whole = Kept(kept_);
  const std::string from = " --no-weights --features-from " + kept_;
  const std::string to = "features " + clips + " -o " + kept_;
  struct Refused {
    std::string arguments;
    int exit_code;
    std::vector<std::string> words;
  };
  const std::vector<Refused> cases{
      {"eval " + clips + from + " --scale 2", 2, {"--scale 0", "departure:3"}},
      {"eval " + clips + from + " --log 1", 2, {"--log"}},
      {"eval " + more + from, 1, {"no features of more.tsv0-1.y4m"}},
      {"eval " + clips + " --features-from " + folder_ / "nowhere", 1, {"nowhere"}},
      {to + " --looks 1", 2, {"--looks 0"}},
      {to + " --part=3/2", 2, {"'3/2'"}},
      {to + " --features-from " + kept_, 2, {"--features-from"}},
      {"features " + clips, 2, {"--table", "--output"}},
  };
  for (const Refused& refused : cases) {
    ExpectRefusal(Stopngo(refused.arguments), refused.exit_code, refused.words);
  }
  EXPECT_TRUE(Kept(kept_) == whole) << "nothing was made anew";

  // A manifest of the same name with other clips, and another recording under the old name.
  static_cast<void>(Manifest("clips.tsv", {{0, -2}, {0, -1}}, "synth:departure:3"));
  ExpectRefusal(Stopngo(to), 1, {"other clips"});
  const std::string clip = folder_ / "clips.tsv0-2.y4m";
  static_cast<void>(
      folder_.File("clips.tsv0-2.y4m", ReadFile(clip) + "FRAME\n" + std::string(800 * 480, 'x')));
  ExpectRefusal(Stopngo("eval " + clips + from), 1, {"no features of clips.tsv0-2.y4m"});
  const std::string file = kept_ + "/" + whole.begin()->first;
  std::filesystem::resize_file(file, whole.begin()->second.size() - 1);
  ExpectRefusal(Stopngo("eval " + clips + from), 1, {"damaged"});
  ExpectRefusal(Stopngo(to), 1, {"damaged"});
}

}  // namespace
}  // namespace stopngo::test
