// clip_test.cpp: the frames of clips as a detector is given them.
#include "clips/clip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "clips/region.h"
#include "scene/script/script.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

std::vector<LumaFrame> FramesOf(const Clip& clip, double rate, int margin) {
  const OpenedClip opened = OpenClip(clip, rate, margin);
  std::vector<LumaFrame> frames;
  for (LumaFrame frame; opened.frames->Next(frame);) frames.push_back(frame);
  EXPECT_EQ(opened.frames->Info().frames, static_cast<std::int64_t>(frames.size()));
  return frames;
}

TEST(Clip, SceneGivesTheFramesNearestToTheRate) {
  // Without compression, whose marks depend on the frames before.
  std::uint64_t seed = 1;
  while (DrawScene(SceneKind::kStanding, seed).sensor.compression > 0) ++seed;
  const Clip clip{.name = "scene", .source = DrawnScene{SceneKind::kStanding, seed}};
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
  clip.moved = {-20, 3};  // as far as the picture goes
  const OpenedClip moved = OpenClip(clip, 8, 20);
  EXPECT_EQ(moved.region.x, 0);
  EXPECT_EQ(moved.region.y, 20);
  EXPECT_EQ(moved.frames->Info().width, 240);
  EXPECT_EQ(moved.frames->Info().height, 167);
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

TEST(Clip, ADamagedRecordingIsRefusedUnlessItIsAllowed) {
  const TemporaryFolder folder;
  const std::string frame = "FRAME\n" + std::string(800 * 480, '\x40');
  const std::string path =
      folder.File("v.y4m", "YUV4MPEG2 W800 H480 F5:1 Cmono\n" + frame + frame + frame + "FRA");
  Clip clip{.name = "v.y4m", .kind = "recording", .source = path};
  ExpectWords(FailureOf([&] { FramesOf(clip, 0, 0); }), {path, "0.60 s", "--allow-damaged"});
  clip.allow_damaged = true;
  EXPECT_EQ(FramesOf(clip, 0, 0).size(), 3U);
}

}  // namespace
}  // namespace stopngo::test
