// script.cpp: kinds of scenes, and how a scene of a kind is drawn from a seed.
#include "scene/script/script.h"

#include <array>
#include <cstddef>

#include "base/random.h"
#include "base/streams.h"
#include "scene/recipe/chance.h"
#include "scene/script/driving.h"
#include "scene/script/events.h"
#include "scene/script/setting.h"

namespace stopngo {
namespace {

constexpr double kBefore_s = 3.5;  // the lead stands at least so long before it leaves
constexpr double kAfter_s = 4.5;   // and this long is shown of it leaving

/// A moment at which something happens.
double SomeTime(const SceneOptions& scene, Random& random) { return random.Uniform(1, scene.length_s - 1.5); }

double StartTime(const SceneOptions& scene, Random& random) {
  return random.Uniform(kBefore_s, scene.length_s - kAfter_s);
}

void Depart(SceneOptions& scene, Random& random) { AddDeparture(scene, StartTime(scene, random), random); }

void Nothing(SceneOptions& scene, Random& random) {
  // Whether it brakes does not matter; it is one draw that keeps neighbouring seeds apart.
  scene.lead.braking = Chance(random, 0.75);
}

template <Distractor kDistractor>
void Distract(SceneOptions& scene, Random& random) {
  // Where nobody waits traffic is denser.
  const std::uint32_t times = (scene.lead_present ? 1 : 2) + random.Below(3);
  for (std::uint32_t i = 0; i < times; i++) {
    kDistractor(scene, SomeTime(scene, random), random);
  }
}

void DistractOften(SceneOptions& scene, std::span<const Distractor> by, std::uint32_t times, Random& random) {
  for (std::uint32_t i = 0; i < times; i++) {
    OneOf(by, random)(scene, SomeTime(scene, random), random);
  }
}

/// What crosses also does so with nobody ahead of us, and the exposure may follow what comes near.
template <Distractor kDistractor>
void Cross(SceneOptions& scene, Random& random) {
  if (Chance(random, 0.35)) LeaveNobodyAhead(scene, random);
  Distract<kDistractor>(scene, random);
  if (Chance(random, 0.2)) AddExposure(scene, SomeTime(scene, random), random);
}

void Creep(SceneOptions& scene, Random& random) { AddCreep(scene, StartTime(scene, random), random); }

/// The one before the lead leaves; in half of the scenes the lead does so some seconds later.
void Queue(SceneOptions& scene, Random& random) {
  AddQueue(scene, random);
  VehicleOptions ahead = scene.others.front();
  const double start_s = random.Uniform(2.5, scene.length_s - 6);
  const double acceleration = LogUniform(random, 0.4, 2.5);
  LeaveAt(ahead, start_s, acceleration, LogUniform(random, 0.3, 1.5));
  const double later_s = start_s + random.Uniform(2, 6);
  if (Chance(random, 0.5) && later_s < scene.length_s - kAfter_s) {
    AddDeparture(scene, later_s, random);
  }
  scene.others.front() = ahead;
}

void Drive(SceneOptions& scene, Random& random) { AddDriving(scene, random); }

void Empty(SceneOptions& scene, Random& random) {
  LeaveNobodyAhead(scene, random);
  DistractOften(scene, Distractors(), 1 + random.Below(4), random);
}

/// A departure, with one to three things before it and none to two during it. Nothing passes close before
/// us while the lead leaves: nobody could see it leave then.
void Mix(SceneOptions& scene, Random& random) {
  const double start_s = StartTime(scene, random);
  AddDeparture(scene, start_s, random);
  const auto distractors = Distractors();
  const auto harmless = distractors.subspan(kHidingDistractors);
  const std::uint32_t before = 1 + random.Below(3);
  const std::uint32_t during = random.Below(3);
  for (std::uint32_t i = 0; i < before; i++) {
    const Distractor distract = OneOf(distractors, random);
    distract(scene, random.Uniform(0.3, start_s - 2), random);
  }
  for (std::uint32_t i = 0; i < during; i++) {
    const Distractor distract = OneOf(harmless, random);
    distract(scene, start_s + random.Uniform(-0.5, 2.5), random);
  }
}

/// From a mast or a bridge: pictures that are full of motion in directions which a driver never sees. The
/// horizon lies above the picture as it does for a lens that is shifted downwards.
void LookFromAbove(SceneOptions& scene, Random& random) {
  scene.lead_present = Chance(random, 0.3);
  scene.others.clear();
  scene.windscreen = {};
  scene.camera.height_m = random.Uniform(4, 10);
  scene.camera.horizon = random.Uniform(-0.9, 0.15);
  scene.camera.focal = LogUniform(random, 0.8, 2.2);
  scene.region = {};
  scene.region.shift_x = static_cast<int>(random.Below(401)) - 200;
  scene.region.shift_y = static_cast<int>(random.Below(281)) - 200;
  constexpr std::array<Distractor, 5> kSeen{AddCrossing, AddPedestrians, AddNeighbours, AddStream,
                                            AddExposure};
  DistractOften(scene, kSeen, 2 + random.Below(4), random);
}

/// What is ahead of us recedes without having stood, or comes to rest there.
void Join(SceneOptions& scene, Random& random) {
  if (Chance(random, 0.85)) LeaveNobodyAhead(scene, random);
  const std::uint32_t times = 1 + random.Below(3);
  for (std::uint32_t i = 0; i < times; i++) AddDrivingIn(scene, SomeTime(scene, random), random);
  if (Chance(random, 0.4)) OneOf(Distractors(), random)(scene, SomeTime(scene, random), random);
}

/// A camera that stands beside the road, or on a post there: something moves close by all the time.
void StandByTheRoad(SceneOptions& scene, Random& random) {
  LeaveNobodyAhead(scene, random);
  scene.windscreen = {};
  scene.camera.height_m = LogUniform(random, 1.2, 5);
  scene.camera.horizon = random.Uniform(0.1, 0.55);
  scene.camera.yaw = random.Uniform(-0.07, 0.07);
  constexpr std::array<Distractor, 6> kSeen{AddStream,   AddStream,    AddPedestrians,
                                            AddCrossing, AddDrivingIn, AddExposure};
  AddStream(scene, SomeTime(scene, random), random);
  DistractOften(scene, kSeen, 1 + random.Below(4), random);
}

struct Script {
  SceneKindName name;
  void (*draw)(SceneOptions& scene, Random& random);
};

constexpr std::array<Script, 18> kScripts{{
    {{SceneKind::kDeparture, "departure", "the vehicle ahead drives away"}, Depart},
    {{SceneKind::kStanding, "standing", "nothing happens"}, Nothing},
    {{SceneKind::kCrossing, "crossing", "vehicles cross before or behind the one ahead"}, Cross<AddCrossing>},
    {{SceneKind::kPedestrians, "pedestrians", "people cross"}, Cross<AddPedestrians>},
    {{SceneKind::kNeighbours, "neighbours", "vehicles beside start, stop or pass"}, Distract<AddNeighbours>},
    {{SceneKind::kWipers, "wipers", "wipers sweep"}, Distract<AddWipers>},
    {{SceneKind::kRain, "rain", "rain, drops on the glass, snow"}, Distract<AddRain>},
    {{SceneKind::kBrakeLights, "brake_lights", "lamps of the one ahead change, it rocks, its boot opens"},
     Distract<AddLamps>},
    {{SceneKind::kExposure, "exposure", "the light or the exposure changes"}, Distract<AddExposure>},
    {{SceneKind::kShaking, "shaking", "jolts and gusts shake the camera"}, Distract<AddShaking>},
    {{SceneKind::kDriving, "driving", "our own vehicle moves"}, Drive},
    {{SceneKind::kCreep, "creep", "the vehicle ahead rolls a little and stops"}, Creep},
    {{SceneKind::kQueue, "queue", "the vehicle before the one ahead leaves first"}, Queue},
    {{SceneKind::kEmpty, "empty", "nobody is ahead, things happen"}, Empty},
    {{SceneKind::kMixed, "mixed", "a departure, with other things before and during it"}, Mix},
    {{SceneKind::kOverhead, "overhead", "vehicles and people pass, seen from above"}, LookFromAbove},
    {{SceneKind::kJoining, "joining", "vehicles drive in ahead of us, and off again or stop"}, Join},
    {{SceneKind::kRoadside, "roadside", "a camera beside the road, close to what passes"}, StandByTheRoad},
}};

}  // namespace

std::span<const SceneKindName> SceneKinds() {
  static const auto names = [] {
    std::array<SceneKindName, kScripts.size()> list{};
    for (std::size_t i = 0; i < list.size(); i++) list[i] = kScripts[i].name;
    return list;
  }();
  return names;
}

SceneOptions DrawScene(SceneKind kind, std::uint64_t seed) {
  const auto index = static_cast<std::uint64_t>(kind);
  Random random = RandomOf(seed, stream::kScript, index);
  SceneOptions scene;
  // Scenes of two kinds with the same seed have nothing else in common.
  scene.seed = seed ^ (index << 56);
  DrawSetting(scene, random);
  kScripts[static_cast<std::size_t>(kind)].draw(scene, random);
  return scene;
}

}  // namespace stopngo
