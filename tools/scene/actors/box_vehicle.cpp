// box_vehicle.cpp: drawing a vehicle's visible faces, its wheels, its shadow and its lamps.
#include "scene/actors/box_vehicle.h"

#include <algorithm>
#include <cmath>

#include "host/common/exact_math.h"
#include "scene/paint/panel.h"
#include "scene/paint/stroke.h"
#include "scene/space/projection.h"
#include "scene/space/vector.h"

namespace stopngo {
namespace {

constexpr double kPi = 3.14159265358979;
constexpr double kBrakeLevel = 90;  // grey levels that a brake light outshines the day's light by
constexpr double kNightLevel = 190;
constexpr double kBeam_m = 4;  // what is nearer stands beside our headlamps' beam

Vector3 Directed(const Pose& pose, Vector3 local) { return InStreet({0, 0, pose.cosine, pose.sine}, local); }

}  // namespace

struct BoxVehicle::Look {
  const Pose& pose;
  const Camera& camera;
  Glaze glaze;
  Sheet& sheet;
  double night;

  [[nodiscard]] bool Sees(Vector3 place, Vector3 outward) const {
    const Vector3 to = InStreet(pose, place) - LensOf(camera);
    const Vector3 out = Directed(pose, outward);
    return Dot(to, out) < 0;
  }
  void Draw(const Texture& texture, Vector3 origin, Vector3 across, Vector3 up, const Glaze& with) const {
    DrawPanel({texture, InStreet(pose, origin), Directed(pose, across), Directed(pose, up)}, camera, with,
              sheet);
  }
};

BoxVehicle::BoxVehicle(BoxKind kind, double texels_per_metre, Random& random)
    : shape_(ShapeOf(kind)), parts_(PaintBox(kind, texels_per_metre, random)) {}

std::array<double, 2> BoxVehicle::Reach(const Pose& pose) const {
  const double half = 0.5 * shape_.length * std::fabs(pose.cosine) + shape_.half_width * std::fabs(pose.sine);
  return {pose.z - half, pose.z + half};
}

void BoxVehicle::DrawFaces(const std::vector<Face>& faces, const Look& look) const {
  for (const Face& face : faces) {
    if (look.Sees(face.origin, face.outward)) {
      // Brake lights are not in front.
      const double lamp = face.outward.z > 0 ? kNightLevel / 100 * look.night : look.glaze.lamp;
      look.Draw(parts_.textures[face.texture], face.origin, face.across, face.up, {look.glaze.gain, lamp});
    }
  }
}

void BoxVehicle::DrawWheels(const Look& look, double travelled) const {
  const double radius = shape_.wheel_radius;
  const double turns = travelled / (2 * kPi * radius);
  const double sine = SineOfTurns(turns);
  const double cosine = SineOfTurns(turns + 0.25);
  for (const double side : {-1.0, 1.0}) {
    if (!look.Sees({side * shape_.half_width, radius, 0}, {side, 0, 0})) {
      continue;
    }
    for (const double from_rear : shape_.wheels) {
      if (from_rear > 0) {
        const Vector3 up{0, cosine, sine};
        const Vector3 hub{side * shape_.half_width, radius, from_rear - 0.5 * shape_.length};
        look.Draw(parts_.textures[parts_.wheel], hub - radius * up, {0, -sine, cosine}, up,
                  {look.glaze.gain, 0});
      }
    }
  }
}

void BoxVehicle::DrawGlows(const Look& look, double brakes) const {
  for (const double end : {-1.0, 1.0}) {
    const double level = end > 0 ? 160 * look.night : 60 * look.night + 40 * brakes;
    const double radius = end > 0 ? 0.45 : 0.3;
    for (const double side : {-0.75, 0.75}) {
      const Vector3 place{side * shape_.half_width, 0.72, end * 0.5 * shape_.length};
      const auto spot = Project(look.camera, InStreet(look.pose, place));
      if (level > 0 && spot && look.Sees(place, {0, 0, end})) {
        DrawGlow({spot->column, spot->row, radius * spot->scale}, level, look.sheet);
      }
    }
  }
}

void BoxVehicle::Draw(const Pose& pose, double travelled, double brakes, const Camera& camera,
                      const Light& light, Sheet& sheet) const {
  const double night = light.Night();
  const double lit = std::max(kBrakeLevel * brakes, kNightLevel * night);
  const double distance = std::max(Reach(pose)[0], kBeam_m);
  const Look look{pose, camera, {light.Around(distance), lit / 100}, sheet, night};
  const Texture& shadow = parts_.textures[parts_.shadow];
  look.Draw(shadow, {0, 0, -0.5 * shadow.Rows() / shadow.TexelsPerMetre()}, {1, 0, 0}, {0, 0, 1}, {0, 0});
  DrawFaces(parts_.body, look);
  DrawFaces(parts_.cabin, look);
  DrawWheels(look, travelled);
  DrawGlows(look, brakes);
}

}  // namespace stopngo
