// manifest_test.cpp: lists of clips: what they name, and what is wrong with a bad one.
#include "clips/manifest.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "host/common/failure.h"
#include "host/settings/settings.h"
#include "support/damage.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

const std::string kHeader = "clip\tregion\trate\tlabels\tkind\n";

TEST(Manifest, NamesRecordingsAndScenesInOrder) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "clips");
  const std::string clip = folder.File("clips/a.y4m", "no failure");
  // Columns in an order of its own, a last semicolon, and the ends of lines of another system.
  const std::string path =
      folder.File("list.tsv",
                  "# recordings\n"
                  "labels\tclip\trate\tkind\tregion\r\n"
                  "0 1.5 still;1.5 3 lead_departs; 4 5 ego_moving;\tclips/a.y4m\t12.5"
                  "\tstreet\t1, 2,3,4\r\n"
                  "\n"
                  "-\tsynth:departure:18446744073709551614-18446744073709551615\t\t-\t-\n"
                  "0 1 crossing\tclips/a.y4m\t-\t-\t0,0,800,480\n");
  const std::vector<Clip> clips = ReadManifest(path);
  ASSERT_EQ(clips.size(), 4U);
  EXPECT_EQ(std::get<std::string>(clips[0].source), clip) << "from the manifest's own folder";
  EXPECT_EQ(clips[0].name, "clips/a.y4m");
  EXPECT_EQ(clips[0].kind, "street");
  EXPECT_EQ(clips[0].rate, 12.5);
  EXPECT_EQ(clips[0].region->y, 2);
  EXPECT_EQ(clips[0].region->height, 4);
  ASSERT_EQ(clips[0].labels.size(), 3U);
  EXPECT_EQ(clips[0].labels[2].activity, Activity::kEgoMoving);
  EXPECT_EQ(clips[0].labels[2].start_s, 4);
  EXPECT_EQ(clips[1].name, "synth:departure:18446744073709551614");
  EXPECT_EQ(std::get<DrawnScene>(clips[2].source).seed, 18446744073709551615U);
  EXPECT_EQ(clips[2].kind, "departure");
  EXPECT_FALSE(clips[2].region || clips[2].rate);
  EXPECT_EQ(clips[3].kind, "recording");
}

TEST(Manifest, FaultsAreToldWithTheirLine) {
  const TemporaryFolder folder;
  static_cast<void>(folder.File("a.y4m", ""));
  struct Case {
    std::string text;
    const char* line;
    const char* reason;
  };
  const auto row = [](const std::string& cells) { return kHeader + "# comment\n\n" + cells + "\n"; };
  const auto labels = [&row](const std::string& spans) { return row("a.y4m\t-\t-\t" + spans + "\t-"); };
  const auto region = [&row](const std::string& cell) { return row("a.y4m\t" + cell + "\t-\t0 1 still\t-"); };
  const std::vector<Case> cases{
      {"clip\tregion\trate\tlabels\tcolour\n", ":1:", "unknown column 'colour'"},
      {std::string("\0\0\0 ftypisom", 12), ":1:", "no text; a manifest is lines of clip"},
      {"clip\trate\tlabels\n", ":1:", "the column 'region' is missing"},
      {"clip\tregion\trate\tlabels\tclip\n", ":1:", "'clip' comes twice"},
      {kHeader + "a.y4m\t-\t-\t0 1 still\n", ":2:", "4 columns, where the header has 5"},
      {row("b.y4m\t-\t-\t0 1 still\t-"), ":4:", "b.y4m does not exist"},
      {row("-\t-\t-\t0 1 still\t-"), ":4:", "a file or a scene is missing"},
      {labels("0 2 still;1 3 crossing"), ":4:", "'1 3 crossing' starts before the one ahead of it ends"},
      {labels("4 5 still;1 3 crossing"), ":4:", "starts before"},
      {labels("-1 3 crossing"), ":4:", "starts before the clip"},
      {labels("3 3 crossing"), ":4:", "ends before it starts"},
      {labels("0 1 still;2 3 flying"),
       ":4:", "'flying' is no label: still, lead_departs, crossing, ego_moving"},
      {labels("0 1s still"), ":4:", "is not START END NAME"},
      {labels("0 nan still"), ":4:", "is not START END NAME"},
      {labels("0 1 still lead"), ":4:", "is not START END NAME"},
      {labels("-"), ":4:", "a recording needs them"},
      {row("synth:standing:1\t-\t-\t0 1 still\t-"), ":4:", "a scene knows its own"},
      {row("synth:flying:1\t-\t-\t-\t-"), ":4:", "'flying' is no kind of scene: departure"},
      {row("synth:standing\t-\t-\t-\t-"), ":4:", "neither synth:KIND:SEED"},
      {row("synth:standing:9-1\t-\t-\t-\t-"), ":4:", "neither a seed nor a range"},
      {row("synth:standing:-1\t-\t-\t-\t-"), ":4:", "neither a seed nor a range"},
      {row("synth:standing:1-2-3\t-\t-\t-\t-"), ":4:", "neither a seed nor a range"},
      {row("synth:standing:0-18446744073709551615\t-\t-\t-\t-"), ":4:", "neither a seed nor a range"},
      {row("synth:standing:1\t-\t0\t-\t-"), ":4:", "rate: '0' is no number"},
      {row("synth:standing:1\t-\tinf\t-\t-"), ":4:", "rate: 'inf' is no number"},
      {row("synth:standing:1\t-\t1e-18\t-\t-"), ":4:", "rate: '1e-18' is no number"},
      {region("1,2,3"), ":4:", "is not X,Y,WIDTH,HEIGHT"},
      {region("+20"), ":4:", "is not a move"},
      {region("+20,20"), ":4:", "is not a move"},
      {region("+20,-481"), ":4:", "is not a move"},
      {region("+99999999999,+1"), ":4:", "is not a move"},
      {region("-1,0,220,140"), ":4:", "lies outside the picture"},
      {region("600,0,220,140"), ":4:", "lies outside the picture"},
      {region("2147483647,0,220,140"), ":4:", "lies outside the picture"},
      {region("0,341,220,140"), ":4:", "lies outside the picture"},
      {region("0,0,0,140"), ":4:", "lies outside the picture"},
      {kHeader, ": ", "names no clips"},
  };
  for (const Case& bad : cases) {
    const std::string path = folder.File("bad.tsv", bad.text);
    try {
      ReadManifest(path);
      ADD_FAILURE() << bad.text;
    } catch (const Failure& failure) {
      const std::string told = failure.what();
      EXPECT_EQ(told.rfind(path + bad.line, 0), 0U) << told;
      EXPECT_NE(told.find(bad.reason), std::string::npos) << told;
    }
  }
  EXPECT_THROW(ReadManifest(folder / "none.tsv"), Failure);
  EXPECT_THROW(ReadManifest(folder / "."), Failure);
}

TEST(Manifest, MoreThanAnybodyHasIsRefusedBeforeItTakesMemory) {
  const TemporaryFolder folder;
  const auto fault = [](const std::string& path) { return FailureOf([&] { ReadManifest(path); }); };
  std::string many = kHeader;
  for (int i = 0; i < 20; i++) many += "synth:mixed:1-1000000\t-\t-\t-\t-\n";
  ExpectWords(fault(folder.File("many.tsv", many)), {"many.tsv:3: ", "more than 1000000 clips"});
  ExpectWords(fault(folder.File("one.tsv", kHeader + "synth:mixed:1-20000000\t-\t-\t-\t-\n")),
              {"one.tsv:2: ", "1000000 at most"});
  const std::vector<std::string> twice(
      2, folder.File("half.tsv", kHeader + "synth:mixed:1-600000\t-\t-\t-\t-\n"));
  ExpectWords(FailureOf([&] { ReadManifests(twice, Settings(), false); }), {"half.tsv:2: ", "more than"});
  ExpectWords(fault("/dev/zero"), {"/dev/zero", "67108864"});
  ExpectWords(fault(folder.File("line.tsv", kHeader + std::string(2 << 20, '\t'))),
              {"line.tsv:2: ", "2097152"});
}

TEST(Manifest, AClipComesOnce) {
  const TemporaryFolder folder;
  std::filesystem::create_hard_link(folder.File("a.y4m", ""), folder / "b.y4m");
  const auto fault = [&folder](const std::string& first, const std::string& second) {
    const std::vector<std::string> manifests{folder.File("1.tsv", kHeader + first + "\n"),
                                             folder.File("2.tsv", kHeader + second + "\n")};
    return FailureOf([&] { ReadManifests(manifests, Settings(), false); });
  };
  const std::string recording = "a.y4m\t300,250,220,140\t6\t0 1 still\t-";
  ExpectWords(fault(recording, "b.y4m\t300,250,220,140\t6\t1 2 still\t-"), {"b.y4m: comes twice"});
  ExpectWords(fault("synth:mixed:1-9\t-\t-\t-\t-", "synth:mixed:7\t-\t-\t-\tnight"),
              {"synth:mixed:7: comes twice"});
  ExpectWords(fault("synth:mixed:7\t+20,-20\t-\t-\t-", "synth:mixed:7\t+20,-20\t-\t-\t-"),
              {"synth:mixed:7: comes twice"});
  // Another region, rate or seed is another clip.
  EXPECT_EQ(fault("synth:mixed:7\t-\t-\t-\t-", "synth:mixed:7\t+20,-20\t-\t-\t-"), "no failure");
  EXPECT_EQ(fault(recording, "a.y4m\t301,250,220,140\t6\t0 1 still\t-\na.y4m\t-\t5\t0 1 still\t-"),
            "no failure");
  EXPECT_EQ(fault("synth:mixed:1-6\t-\t-\t-\t-", "synth:mixed:7\t-\t-\t-\t-\nsynth:standing:1\t-\t-\t-\t-"),
            "no failure");
}

TEST(Manifest, DamagedOnesAreReadOrRefused) {
  const TemporaryFolder folder;
  static_cast<void>(folder.File("a.y4m", ""));
  const std::string intact =
      "clip\tregion\trate\tlabels\tkind\n# comment\na.y4m\t300,250,220,140\t6.5\t0 12.4 still;12.4 15 "
      "lead_departs\tday\nsynth:mixed:1-20\t-\t7\t-\t-\nsynth:standing:3\t-\t-\t-\tnight\n";
  ReadDamaged(folder, "list.tsv", intact, 4000, [](const std::string& path) { ReadManifest(path); });
}

}  // namespace
}  // namespace stopngo::test
