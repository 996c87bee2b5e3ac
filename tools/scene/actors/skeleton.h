// skeleton.h: people drawn as limbs, walking, standing or riding.
#pragma once

#include <optional>

#include "base/random.h"
#include "scene/paint/sheet.h"
#include "scene/paint/stroke.h"
#include "scene/recipe/light.h"
#include "scene/space/camera.h"
#include "scene/space/pose.h"
#include "scene/space/projection.h"
#include "scene/space/vector.h"

namespace stopngo {

enum class Prop { kNone, kBag, kUmbrella, kPram, kSuitcase };

/// What somebody looks like.
struct Person {
  double height;  ///< metres
  double coat, trousers, skin, hair, prop_tone;
  double girth;  ///< 1: of average stoutness
  double phase;  ///< of the gait, turns
  Prop prop;
};

Person DrawPerson(Random& random);

/// Limbs in the street: points as in Vector3, from the middle of what a pose places.
class Limner {
 public:
  Limner(const Pose& pose, const Camera& camera, const Light& light, Sheet& sheet)
      : pose_(pose), camera_(camera), gain_(light.Around(pose.z)), sheet_(sheet) {}
  void Limb(Vector3 from, Vector3 to, double radius_m, double tone) const;
  /// upper: only the half above the middle.
  void Ball(Vector3 middle, double half_width_m, double half_height_m, double tone, bool upper = false) const;
  /// A wheel that stands along the way; spokes show that it turns.
  void Wheel(Vector3 hub, double radius_m, double thickness_m, double turns, double tone) const;
  void Shadow(double half_length_m, double half_width_m) const;
  void Lamp(Vector3 place, double radius_m, double tone) const;

 private:
  [[nodiscard]] std::optional<Spot> Find(Vector3 place) const {
    return Project(camera_, InStreet(pose_, place));
  }
  Pose pose_;
  Camera camera_;
  double gain_;
  Sheet& sheet_;
};

/// travelled: metres walked; stride: 0 standing … 1 walking.
void DrawWalker(const Person& person, double travelled, double stride, double time_s, const Limner& limner);
/// A bicycle with its rider, or a motorcycle.
void DrawRider(const Person& person, bool motor, double travelled, double lamps, const Limner& limner);

}  // namespace stopngo
