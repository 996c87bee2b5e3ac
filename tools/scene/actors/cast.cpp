// cast.cpp: the table of what can move in a scene.
#include "scene/actors/cast.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/random.h"
#include "base/streams.h"
#include "scene/actors/figure.h"
#include "scene/actors/gleam.h"
#include "scene/actors/traffic.h"
#include "scene/actors/weather.h"

namespace stopngo {
namespace {

struct ActorEntry {
  ActorKindName name;
  Actors (*make)(const Stage&, Random&);
};

constexpr std::array kActors{
    ActorEntry{{ActorKind::kCrossing, "crossing", "vehicles cross beyond the vehicle ahead"}, MakeCrossing},
    ActorEntry{{ActorKind::kCrossingNear, "crossing-near", "a vehicle crosses before the vehicle ahead"},
               MakeCrossingNear},
    ActorEntry{{ActorKind::kCrossingQueue, "crossing-queue", "several vehicles cross in a row"},
               MakeCrossingQueue},
    ActorEntry{{ActorKind::kTurning, "turning", "a vehicle turns into or out of our street"}, MakeTurning},
    ActorEntry{{ActorKind::kPedestrian, "pedestrian", "people cross"}, MakePedestrians},
    ActorEntry{{ActorKind::kCrowd, "crowd", "many people cross"}, MakeCrowd},
    ActorEntry{{ActorKind::kBystanders, "bystanders", "people at the roadside"}, MakeBystanders},
    ActorEntry{{ActorKind::kCyclist, "cyclist", "a bicycle or motorcycle"}, MakeCyclists},
    ActorEntry{{ActorKind::kNeighbour, "neighbour", "vehicles stand beside the vehicle ahead"},
               MakeNeighbours},
    ActorEntry{{ActorKind::kNeighbourStarts, "neighbour-starts", "a vehicle beside drives away"},
               MakeNeighbourStarts},
    ActorEntry{{ActorKind::kNeighbourStops, "neighbour-stops", "a vehicle comes to a halt beside"},
               MakeNeighbourStops},
    ActorEntry{{ActorKind::kOvertaking, "overtaking", "vehicles pass from behind"}, MakeOvertaking},
    ActorEntry{{ActorKind::kOncoming, "oncoming", "vehicles come towards us"}, MakeOncoming},
    ActorEntry{{ActorKind::kHeadlampSweep, "headlamp-sweep", "beams wander over the vehicle ahead"},
               MakeHeadlampSweep},
    ActorEntry{{ActorKind::kReflection, "reflection", "something passing is mirrored in the vehicle ahead"},
               MakeReflection},
    ActorEntry{{ActorKind::kBirds, "birds", "birds, leaves or litter drift by"}, MakeBirds},
};

struct OverlayEntry {
  OverlayKindName name;
  std::unique_ptr<ScreenEffect> (*make)(const Stage&, Random&);
};

constexpr std::array kOverlays{
    OverlayEntry{{OverlayKind::kWipers, "wipers", "wipers sweep drops off the windscreen"}, MakeWipers},
    OverlayEntry{{OverlayKind::kRain, "rain", "rain falls"}, MakeRain},
    OverlayEntry{{OverlayKind::kDrops, "drops", "drops on the windscreen"}, MakeDrops},
    OverlayEntry{{OverlayKind::kSnow, "snow", "snow falls"}, MakeSnow},
    OverlayEntry{{OverlayKind::kShade, "shade", "the shadow of a cloud or of leaves passes"}, MakeShade},
    OverlayEntry{{OverlayKind::kBeacon, "beacon", "a lamp flashes"}, MakeBeacon},
};

/// The names alone.
template <typename Name, std::size_t kCount, typename Entry>
std::array<Name, kCount> NamesOf(const std::array<Entry, kCount>& entries) {
  std::array<Name, kCount> names{};
  std::transform(entries.begin(), entries.end(), names.begin(), [](const Entry& e) { return e.name; });
  return names;
}

template <typename Entries, typename Kind>
const auto& Find(const Entries& entries, Kind kind) {
  return *std::find_if(entries.begin(), entries.end(), [kind](const auto& e) { return e.name.kind == kind; });
}

}  // namespace

std::span<const ActorKindName> ActorKinds() {
  static const auto names = NamesOf<ActorKindName>(kActors);
  return names;
}

std::span<const OverlayKindName> OverlayKinds() {
  static const auto names = NamesOf<OverlayKindName>(kOverlays);
  return names;
}

Actors MakeActors(ActorKind kind, const Stage& stage, std::uint64_t seed) {
  Random random = RandomOf(seed, stream::kActor, static_cast<std::uint64_t>(kind));
  return Find(kActors, kind).make(stage, random);
}

std::unique_ptr<ScreenEffect> MakeOverlay(OverlayKind kind, const Stage& stage, std::uint64_t seed) {
  Random random = RandomOf(seed, stream::kOverlay, static_cast<std::uint64_t>(kind));
  return Find(kOverlays, kind).make(stage, random);
}

}  // namespace stopngo
