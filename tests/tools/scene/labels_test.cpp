// labels_test.cpp: what a scene says that happens is what its pictures show.
#include "scene/labels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "base/label.h"
#include "pictures.h"

namespace stopngo::test {
namespace {

// The lead's place tells when it starts; the picture has to tell it too, and not before.
TEST(SceneLabels, LabelsAgreeWithThePicture) {
  int departures = 0;
  for (std::uint64_t seed = 1; seed <= 6; seed++) {
    SceneOptions options = Drawn(SceneKind::kDeparture, seed);
    options.camera = {};
    options.camera.vibration = 0;
    options.sensor = {};
    options.sensor.noise = 0;
    options.light = {};
    options.actors.clear();
    options.others.clear();
    options.lead.brake_switches_s.clear();
    options.lead.indicator = Indicator::kNone;
    Scene scene(options);
    for (const LabelSpan& label : scene.Labels()) {
      if (label.activity != Activity::kLeadDeparts) continue;
      departures++;
      EXPECT_EQ(DistanceOfLead(options, label.start_s), DistanceOfLead(options, 0));
      EXPECT_GT(DistanceOfLead(options, label.start_s + 2.2), 1.09 * DistanceOfLead(options, 0))
          << "seed " << seed;
      const auto before = static_cast<std::int64_t>(std::floor((label.start_s - 0.15) * options.fps));
      const Luma first = Rendered(scene, options, 0);
      EXPECT_EQ(first, Rendered(scene, options, before)) << "seed " << seed;
      EXPECT_GT(MeanDifference(first, Rendered(scene, options, before + 20)), 0.2) << "seed " << seed;
    }
  }
  EXPECT_EQ(departures, 6);
}

TEST(SceneLabels, LabelsOfEveryKindFollowOneAnother) {
  constexpr int kSeeds = 4;
  for (const SceneKindName& kind : SceneKinds()) {
    int departures = 0;
    bool moving = false;
    for (std::uint64_t seed = 1; seed <= kSeeds; seed++) {
      const SceneOptions options = Drawn(kind.kind, seed);
      Scene scene(options, {0, 0, 8, 8});
      double last = 0;
      for (const LabelSpan& label : scene.Labels()) {
        EXPECT_GE(label.start_s, last) << kind.name << " " << seed;
        EXPECT_GT(label.end_s, label.start_s) << kind.name << " " << seed;
        last = label.end_s;
        moving = moving || label.activity == Activity::kEgoMoving;
        if (label.activity != Activity::kLeadDeparts) continue;
        departures++;
        EXPECT_GE(label.start_s, 3) << kind.name << " " << seed;
      }
      EXPECT_LE(last, options.length_s + 0.2);
    }
    const bool leaves = kind.kind == SceneKind::kDeparture || kind.kind == SceneKind::kCreep ||
                        kind.kind == SceneKind::kMixed;
    if (leaves) {
      EXPECT_EQ(departures, kSeeds) << kind.name;
    } else if (kind.kind != SceneKind::kQueue) {
      EXPECT_EQ(departures, 0) << kind.name;
    }
    if (kind.kind == SceneKind::kDriving) {
      EXPECT_TRUE(moving);
    }
  }
}

}  // namespace
}  // namespace stopngo::test
