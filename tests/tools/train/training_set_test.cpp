// training_set_test.cpp: what a network is trained on is what it will be shown.
#include "train/training_set.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "clips/clip.h"
#include "clips/region.h"
#include "host/detector.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "support/squares.h"
#include "support/temporary_folder.h"
#include "train/feature_track.h"
#include "vel_stopngo_ctx.h"
#include "video/frame_source.h"

namespace stopngo::test {
namespace {

// What a network is trained on has to be what it will be shown.
TEST(CollectTracks, FirstLookIsTheModulesOwnFramePath) {
  const TemporaryFolder folder;
  Clip clip;
  clip.name = clip.kind = "recording";
  clip.source = folder.File("clip.y4m", SquaresRecording(12, 96, {1, -2}));
  clip.region = Region{290, 260, 220, 140};
  clip.labels = {{0, 4, Activity::kStill}, {4, 8, Activity::kLeadDeparts}};
  const Module module(STOPNGO_MODULE_FILE);
  Settings settings;
  settings.no_weights = true;
  settings.threshold = 2;  // never reached: an alarm would hold the analysis
  const auto tracks = CollectTracks(module, settings, std::span(&clip, 1), {3, 1}, 1, [] {});
  ASSERT_EQ(tracks.size(), 3U);

  const OpenedClip opened = OpenClip(clip, settings.rate, 0);
  Detector detector(module, settings, opened.frames->Info());
  std::vector<std::int8_t> expected;
  LumaFrame frame;
  while (opened.frames->Next(frame)) {
    if (!detector.Write(frame).analysed) continue;
    const auto* const histogram = detector.Context().MotionChunk;
    expected.insert(expected.end(), histogram, histogram + detector.Context().Features);
  }
  EXPECT_TRUE(tracks[0].histograms == expected);
  EXPECT_FALSE(tracks[1].histograms == expected) << "other looks differ";
  EXPECT_EQ(tracks[1].Frames(), tracks[0].Frames()) << "up to three looks share their frames";
  ASSERT_EQ(tracks[0].departures.size(), 1U);
  EXPECT_EQ(tracks[1].departures[0].begin, tracks[0].departures[0].begin);
}

}  // namespace
}  // namespace stopngo::test
