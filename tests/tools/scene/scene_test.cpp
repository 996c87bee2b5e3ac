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
      {SceneKind::kDeparture, {0x818f73cb9e1e29e3U, 0x3ff2a331fa9b11c7U}},
      {SceneKind::kStanding, {0x88646a500807dca4U, 0xfaa060bef15cdddbU}},
      {SceneKind::kCrossing, {0x89ec9bcc7a657ca3U, 0x70332d26e7e8f395U}},
      {SceneKind::kPedestrians, {0x04b6b8f98126ed5eU, 0xbd21f1d933695de3U}},
      {SceneKind::kNeighbours, {0xd67dfd7e6d16591bU, 0xee7ddbc21294061cU}},
      {SceneKind::kWipers, {0x49cfc2fc13c97380U, 0x2e47b8188ce1d8baU}},
      {SceneKind::kRain, {0x8a3adb48712a654bU, 0xe6546bd28c534bafU}},
      {SceneKind::kBrakeLights, {0x622afbcb506e2c60U, 0x3865a41b998b4709U}},
      {SceneKind::kExposure, {0x36751b37517ed7ebU, 0x0b1a4026d3d0a438U}},
      {SceneKind::kShaking, {0x523fbe55e3fe68dfU, 0x5cf989860f7a063fU}},
      {SceneKind::kDriving, {0xddc4fd336fda1fd3U, 0xe21ec2e4957657deU}},
      {SceneKind::kCreep, {0xd73213b222780117U, 0xc660f9c79f681cbbU}},
      {SceneKind::kQueue, {0xdbede56aab67df16U, 0x405d01b50ae10aedU}},
      {SceneKind::kEmpty, {0xb1418ff850f3eb2bU, 0x024c0d1e68751b7bU}},
      {SceneKind::kMixed, {0x4d7a0b0e16b9b856U, 0x20a4ba371c3b5ba2U}},
      {SceneKind::kOverhead, {0x5d17d1734923fa4dU, 0xce9888cabc0d28d5U}},
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
