// scene_test.cpp: scenes of every kind: the same bytes everywhere, whole or in part.
#include "scene/scene.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <vector>

#include "pictures.h"

namespace stopngo::test {
namespace {

// What every machine and compiler has to draw alike, from all that a scene can hold: of each kind two scenes, two
// frames of each. A hash changes with the look of its scenes, and then has to be taken anew.
TEST(Scene, ScenesOfAllKindsHaveTheSameBytesEverywhere) {
  struct Pinned {
    SceneKind kind;
    std::uint64_t hashes[2];  ///< of the seeds 1 and 2
  };
  constexpr Pinned kPinned[] = {
      {SceneKind::kDeparture, {0x15e382ecf2ce2f48U, 0xe6bfc573f1362bf5U}},
      {SceneKind::kStanding, {0xc8ee190af07e1c52U, 0xf3a45db7e558c6fdU}},
      {SceneKind::kCrossing, {0xa0f756a6eebb2c72U, 0x19fc0fd22b7b1b32U}},
      {SceneKind::kPedestrians, {0x641445c0d0d0a8a9U, 0xbf2004259f29c0aeU}},
      {SceneKind::kNeighbours, {0x1ace0d21a49bfb9dU, 0xf3ff5220187663b2U}},
      {SceneKind::kWipers, {0x11b66de780e9a9b5U, 0xbea6ecc2f9dc149eU}},
      {SceneKind::kRain, {0x6910317f36a20440U, 0x3e6aa2a9a57d3fc2U}},
      {SceneKind::kBrakeLights, {0x23f645b025351e56U, 0x585519fc7c40cab0U}},
      {SceneKind::kExposure, {0x1b966220ff175104U, 0x4120a19c6e5a05cfU}},
      {SceneKind::kShaking, {0x0d576300897e74d8U, 0x8c856d00f9827e9fU}},
      {SceneKind::kDriving, {0xce25c61a5509eed5U, 0x9878a8d59046b54aU}},
      {SceneKind::kCreep, {0xf6f193781e0c0ccaU, 0x5c6ddf514bbcaa5aU}},
      {SceneKind::kQueue, {0x5a580ef2c257fc0bU, 0x53df90de66631c67U}},
      {SceneKind::kEmpty, {0x664641b2ca1ed1deU, 0xd20b4dadb613aecbU}},
      {SceneKind::kMixed, {0x81f034da10271091U, 0xdc1754e6645ab533U}},
      {SceneKind::kOverhead, {0x149a5b6c4322dab9U, 0x8d12e30b69522b94U}},
      {SceneKind::kJoining, {0x7ade3a29c94af4d2U, 0x6d340b22a507c594U}},
      {SceneKind::kRoadside, {0x8a97c438c37d7df3U, 0x34215bc4c9d1e768U}},
  };
  ASSERT_EQ(std::size(kPinned), SceneKinds().size());
  for (std::size_t i = 0; i < std::size(kPinned); i++) {
    const SceneKindName& kind = SceneKinds()[i];
    EXPECT_EQ(kPinned[i].kind, kind.kind) << kind.name;
    Luma before;
    for (const std::uint64_t seed : {1, 2}) {
      const SceneOptions options = Drawn(kind.kind, seed);
      Scene scene(options);
      const Luma first = Rendered(scene, options, 0);
      const Luma later = Rendered(scene, options, 44);
      const std::uint64_t hash = HashOf(later, HashOf(first));
      EXPECT_EQ(hash, kPinned[i].hashes[seed - 1]) << kind.name << ':' << seed << std::hex << " 0x" << hash;
      if (seed == 2) {
        EXPECT_GT(MeanDifference(first, before), 3) << kind.name << ": seeds must differ";
      }
      before = first;
    }
  }
}

TEST(Scene, WindowIsAPartOfThePicture) {
  for (const SceneKind kind : {SceneKind::kMixed, SceneKind::kDriving, SceneKind::kRain}) {
    for (const std::uint64_t seed : {1, 2}) {
      SceneOptions options = Drawn(kind, seed);
      options.sensor.noise = 0;
      Scene whole(options);
      const SceneWindow window{131, 90, 141, 93};
      Scene part(options, window);
      Luma seen(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height));
      for (std::int64_t frame = 0; frame < 70; frame += 20) {
        const Luma picture = Rendered(whole, options, frame);
        part.Render(frame, seen);
        Luma cut;
        for (int row = 0; row < window.height; row++) {
          const auto begin = picture.begin() + (window.y + row) * options.width + window.x;
          cut.insert(cut.end(), begin, begin + window.width);
        }
        EXPECT_LT(MeanDifference(cut, seen), 1.5) << static_cast<int>(kind) << " " << seed << " " << frame;
      }
    }
  }
}

// Detectors are to learn from such scenes what is no departure: specks at the horizon would teach nothing.
TEST(Scene, TrafficComesNearWhereNobodyIsAhead) {
  constexpr int kSeeds = 5;
  for (const ActorKind kind : {ActorKind::kCrossing, ActorKind::kCrowd, ActorKind::kNeighbourStarts}) {
    double share = 0;  // of the picture that changes
    for (std::uint64_t seed = 1; seed <= kSeeds; seed++) {
      SceneOptions options = Quiet(seed);
      options.lead_present = false;
      options.actors = {{kind, seed, 4}};
      Scene scene(options);
      const Luma before = Rendered(scene, options, 75);
      const Luma after = Rendered(scene, options, 125);
      std::size_t changed = 0;
      for (std::size_t i = 0; i < before.size(); i++) changed += std::abs(before[i] - after[i]) > 4 ? 1 : 0;
      share += static_cast<double>(changed) / static_cast<double>(before.size()) / kSeeds;
    }
    EXPECT_GT(share, 0.02) << static_cast<int>(kind);
  }
}

}  // namespace
}  // namespace stopngo::test
