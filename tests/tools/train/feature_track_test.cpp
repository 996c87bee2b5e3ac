// feature_track_test.cpp: what is wanted at each moment of a clip.
#include "train/feature_track.h"

#include <gtest/gtest.h>

#include "noisy_tracks.h"

namespace stopngo::test {
namespace {

TEST(FeatureTrack, FramesAroundADepartureAskForNothing) {
  const FeatureTrack track = NoisyTrack(1, true);
  ASSERT_EQ(track.departures.size(), 1U);
  // The start is at 4 s, frame k is at (k + 1) / 8 s; the label ends at 7 s, the repeats at 10 s.
  EXPECT_EQ(track.departures[0].begin, 32U);
  EXPECT_EQ(track.departures[0].soon, 44U);
  EXPECT_EQ(track.departures[0].end, 56U);
  EXPECT_EQ(track.quiet[31], 1);
  EXPECT_EQ(track.quiet[32], 0);
  EXPECT_EQ(track.quiet[79], 0);
  EXPECT_EQ(track.quiet[80], 1);
}

}  // namespace
}  // namespace stopngo::test
