// vehicle.cpp: drawing a vehicle's visible faces, its wheels, its shadow and its lamps.
#include "scene/vehicle/vehicle.h"

#include <algorithm>
#include <cmath>

#include "base/random.h"
#include "base/streams.h"
#include "host/common/exact_math.h"
#include "scene/paint/panel.h"
#include "scene/paint/stroke.h"
#include "scene/space/projection.h"
#include "scene/space/vector.h"
#include "scene/vehicle/rear_view.h"

namespace stopngo {
namespace {

constexpr double kPi = 3.14159265358979;
constexpr double kNightLevel = 190;  // grey levels that lamps outshine the night by
constexpr double kBeam_m = 4;        // what is nearer stands beside our headlamps' beam

Vector3 Directed(const Pose& pose, Vector3 local) { return InStreet({0, 0, pose.cosine, pose.sine}, local); }

}  // namespace

struct Vehicle::Look {
  const Pose& pose;
  const Camera& camera;
  Glaze glaze;
  Sheet& sheet;
  double lift;

  [[nodiscard]] bool Sees(Vector3 place, Vector3 outward) const {
    const Vector3 to = InStreet(pose, place) - LensOf(camera);
    return Dot(to, Directed(pose, outward)) < 0;
  }
  void Draw(const Texture& texture, Vector3 origin, Vector3 across, Vector3 up, const Glaze& with) const {
    DrawPanel({texture, InStreet(pose, origin), Directed(pose, across), Directed(pose, up)}, camera, with,
              sheet);
  }
};

Vehicle::Vehicle(const VehicleOptions& options, const Texels& texels, std::uint64_t seed)
    : rear_(PaintRear(options, texels.per_metre, texels.most, seed)), shape_(ShapeOf(rear_)) {
  Random random = RandomOf(seed, stream::kBody);
  parts_ = PaintBody(rear_, texels.per_metre, random);
}

std::array<double, 2> Vehicle::Reach(const Pose& pose, const Camera& camera) const {
  const double ahead = PlaceOf(camera, pose.x, pose.z).ahead;
  const double cosine = pose.cosine * camera.cosine + pose.sine * camera.sine;
  const double sine = pose.sine * camera.cosine - pose.cosine * camera.sine;
  const double half = 0.5 * shape_.length * std::fabs(cosine) + shape_.half_width * std::fabs(sine);
  return {ahead - half, ahead + half};
}

VehicleState Vehicle::AtRear(VehicleState state) const {
  state.pose.x -= 0.5 * shape_.length * state.pose.sine;
  state.pose.z -= 0.5 * shape_.length * state.pose.cosine;
  return state;
}

void Vehicle::DrawFaces(const std::vector<Face>& faces, const Look& look) const {
  for (const Face& face : faces) {
    if (look.Sees(face.origin, face.outward)) {
      const Vector3 lifted{face.origin.x, face.origin.height + look.lift, face.origin.z};
      look.Draw(parts_.textures[face.texture], lifted, face.across, face.up, look.glaze);
    }
  }
}

void Vehicle::DrawWheels(const Look& look, double travelled) const {
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

void Vehicle::DrawBody(const VehicleState& state, const Camera& camera, const Light& light,
                       Sheet& sheet) const {
  const double distance = std::max(Reach(state.pose, camera)[0], kBeam_m);
  const double night = light.Night();
  // Flanks and front have lamps of their own: in the dark they are lit.
  const Look look{state.pose, camera, {light.Around(distance), kNightLevel / 100 * night}, sheet, state.lift};
  const Texture& shadow = parts_.textures[parts_.shadow];
  look.Draw(shadow, {0, 0, -0.5 * shadow.Rows() / shadow.TexelsPerMetre()}, {1, 0, 0}, {0, 0, 1}, {0, 0});
  DrawFaces(parts_.body, look);
  DrawFaces(parts_.cabin, look);
  DrawWheels(look, state.travelled);
  RearView view(rear_, camera, AtRear(state), light);
  if (view.Visible()) view.DrawBody(sheet);
}

void Vehicle::DrawLamps(const VehicleState& state, const Camera& camera, const Light& light,
                        Sheet& sheet) const {
  const RearView view(rear_, camera, AtRear(state), light);
  if (view.Visible()) {
    view.DrawLamps(sheet);
    return;
  }
  const double level = 160 * light.Night();
  const Look look{state.pose, camera, {}, sheet, 0};
  for (const double side : {-0.75, 0.75}) {
    const Vector3 place{side * shape_.half_width, 0.72, 0.5 * shape_.length};
    const auto spot = Project(camera, InStreet(state.pose, place));
    if (level > 0 && spot && look.Sees(place, {0, 0, 1})) {
      DrawGlow({spot->column, spot->row, 0.45 * spot->scale}, level, sheet);
    }
  }
}

}  // namespace stopngo
