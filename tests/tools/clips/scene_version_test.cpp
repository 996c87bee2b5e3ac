// scene_version_test.cpp: scenes are what their version stands for.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "clips/clip.h"
#include "host/common/sha256.h"
#include "host/common/text.h"
#include "scene/version.h"

namespace stopngo::test {
namespace {

/// Of what a detector is given of a few scenes, and how it is judged.
std::string FingerprintOfScenes() {
  std::string all;
  for (std::uint64_t seed = 1; seed <= 8; ++seed) {
    const Clip clip{.name = "scene", .source = DrawnScene{SceneKind::kMixed, seed}};
    const OpenedClip opened = OpenClip(clip, 0.5, 4);
    all +=
        Print("%d %d %d %d\n", opened.region.x, opened.region.y, opened.region.width, opened.region.height);
    for (const LabelSpan& label : opened.labels) {
      all += Print("%.9g %.9g ", label.start_s, label.end_s).append(NameOf(label.activity)) + '\n';
    }
    for (LumaFrame frame; opened.frames->Next(frame);) all.append(frame.pixels.begin(), frame.pixels.end());
  }
  return Sha256(all);
}

// Who changes scenes raises the version, and puts both here.
TEST(SceneVersion, StandsForTheseScenes) {
  EXPECT_EQ(kSceneVersion, 2U);
  EXPECT_EQ(FingerprintOfScenes(), "686b729fc0cec9108d3fd521d77cd73119945996379bbab7b7a3e715812ba2d5");
}

}  // namespace
}  // namespace stopngo::test
