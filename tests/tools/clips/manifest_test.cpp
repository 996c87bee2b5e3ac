// manifest_test.cpp: lists of clips: what they name, and what is wrong with a bad one.
#include "clips/manifest.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "clips/region.h"
#include "host/failure.h"
#include "support/command.h"

namespace stopngo::test {
namespace {

const std::string kHeader = "clip\tregion\trate\tlabels\tkind\n";

TEST(Manifest, NamesRecordingsAndScenesInOrder) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "clips");
  const std::string clip = folder.File("clips/a.y4m", "");
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
      {"clip\trate\tlabels\n", ":1:", "the column 'region' is missing"},
      {"clip\tregion\trate\tlabels\tclip\n", ":1:", "'clip' comes twice"},
      {kHeader + "a.y4m\t-\t-\t0 1 still\n", ":2:", "4 columns, where the header has 5"},
      {row("b.y4m\t-\t-\t0 1 still\t-"), ":4:", "b.y4m does not exist"},
      {row("-\t-\t-\t0 1 still\t-"), ":4:", "a file or a scene is missing"},
      {labels("0 2 still;1 3 crossing"), ":4:", "'1 3 crossing' starts before the one ahead of it ends"},
      {labels("4 5 still;1 3 crossing"), ":4:", "starts before"},
      {labels("-1 3 crossing"), ":4:", "starts before the clip"},
      {labels("3 3 crossing"), ":4:", "ends before it starts"},
      {labels("0 1 still;2 3 flying"), ":4:", "'flying' is no label"},
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

std::vector<LumaFrame> FramesOf(const Clip& clip, double rate, int margin) {
  const OpenedClip opened = OpenClip(clip, rate, margin);
  std::vector<LumaFrame> frames;
  for (LumaFrame frame; opened.frames->Next(frame);) frames.push_back(frame);
  EXPECT_EQ(opened.frames->Info().frames, static_cast<std::int64_t>(frames.size()));
  return frames;
}

TEST(Clip, SceneGivesTheFramesNearestToTheRate) {
  // Without compression, whose marks depend on the frames before.
  const Clip clip{.name = "scene", .source = DrawnScene{SceneKind::kStanding, 4}};
  const std::vector<LumaFrame> all = FramesOf(clip, 0, 0);
  ASSERT_FALSE(all.empty());
  for (const double rate : {8.0, 10.0, 25.0}) {
    const std::vector<LumaFrame> some = FramesOf(clip, rate, 0);
    EXPECT_NEAR(static_cast<double>(some.size()), static_cast<double>(all.size()) * rate / 25, 1);
    for (std::size_t i = 0; i < some.size(); ++i) {
      EXPECT_NEAR(some[i].time_s, static_cast<double>(i) / rate, 0.5 / 25 + 1e-9);
      EXPECT_TRUE(some[i].pixels == all.at(static_cast<std::size_t>(some[i].index)).pixels);
    }
  }
  EXPECT_EQ(FramesOf(clip, 26, 0).size(), all.size());
  // What the manifest says wins over the settings.
  Clip slow = clip;
  slow.rate = 2;
  EXPECT_NEAR(static_cast<double>(FramesOf(slow, 8, 0).size()), static_cast<double>(all.size()) * 2 / 25, 1);
}

TEST(Clip, WindowIsCutAtThePicturesEdges) {
  Clip clip{.name = "scene", .source = DrawnScene{SceneKind::kStanding, 3}};
  clip.region = Region{5, 330, 220, 140};
  const OpenedClip opened = OpenClip(clip, 8, 20);
  EXPECT_EQ(opened.region.x, 5);
  EXPECT_EQ(opened.region.y, 20);
  EXPECT_EQ(opened.frames->Info().width, 245);
  EXPECT_EQ(opened.frames->Info().height, 170);
  EXPECT_FALSE(opened.labels.empty());
}

TEST(Clip, ThreadsDoNotDisturbEachOther) {
  const Clip clip{.name = "scene", .source = DrawnScene{SceneKind::kDeparture, 5}};
  const std::vector<LumaFrame> alone = FramesOf(clip, 2, 0);
  std::atomic<int> equal = 0;
  {
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        const std::vector<LumaFrame> frames = FramesOf(clip, 2, 0);
        const bool same = std::equal(frames.begin(), frames.end(), alone.begin(), alone.end(),
                                     [](const auto& a, const auto& b) { return a.pixels == b.pixels; });
        equal += same ? 1 : 0;
      });
    }
  }
  EXPECT_EQ(equal, 4);
}

}  // namespace
}  // namespace stopngo::test
