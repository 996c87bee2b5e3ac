// world.cpp: a street laid out from a seed, and what a ray into it meets first.
#include "scene/street/world.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "base/streams.h"
#include "host/common/exact_math.h"
#include "scene/paint/noise.h"
#include "scene/recipe/chance.h"

namespace stopngo {
namespace {

constexpr float kKerbHeight = 0.12F;
constexpr float kHazeTone = 190;
constexpr float kHazeDistance = 450;  // at which half of the light is haze
constexpr float kLampGap = 28;        // between street lamps
constexpr float kCeiling = 5.2F;

}  // namespace

World::Profile World::ProfileOf(WorldOptions::Style style, Random& random) {
  const auto number = [&random](double low, double high) { return UniformFloat(random, low, high); };
  const auto lanes = static_cast<float>(random.Below(3));
  const float left_pavement = number(1.5, 6);
  const float right_pavement = number(1.5, 6);
  const float extra = static_cast<float>(random.Below(3) == 0 ? 3.5 : 0.2);  // a lane to the right
  const float left = -5.4F - 1.75F * lanes;
  const float right = 1.75F + extra;
  switch (style) {
    case WorldOptions::Style::kOpen:
      return {left + 1.2F, 2.6F, -kNowhere, kNowhere, -1.75F, 0, 0, 14, lanes < 2};
    case WorldOptions::Style::kWall:
      return {left, right, left - left_pavement * 0.5F, right + right_pavement * 0.5F, -1.75F, 5, 9,
              22,   true};
    case WorldOptions::Style::kTunnel:
      return {-5.6F, 2.3F, -6.6F, 3.4F, -1.75F, 9, 9, 0, false};
    case WorldOptions::Style::kMotorway:
      return {-9.2F, 4.6F, -kNowhere, kNowhere, -1.75F, 0, 0, 30, false};
    case WorldOptions::Style::kStreet:
      break;
  }
  return {left, right, left - left_pavement, right + right_pavement, -1.75F, 7, 17, 12, true};
}

World::World(const WorldOptions& options, const Light& light, double camera_height, double stop_line_m,
             double travel_m, std::uint64_t seed)
    : options_(options),
      light_(light),
      profile_(),
      camera_height_(static_cast<float>(camera_height)),
      stop_line_(static_cast<float>(stop_line_m)),
      end_(static_cast<float>(options.street_end_m + travel_m)),
      reach_(150) {
  Random random = RandomOf(seed, stream::kWorld);
  seed_ = static_cast<std::uint32_t>(random.Next());
  profile_ = ProfileOf(options.style, random);
  sun_edge_ = UniformFloat(random, -6, 14);
  pool_phase_ = UniformFloat(random, 0, 28);
  sky_bright_ = UniformFloat(random, 170, 232);
  sky_fall_ = UniformFloat(random, 20, 120);
  clouds_ = UniformFloat(random, 2, 16);
  BuildHouses(random);
  BuildUprights(random);
}

void World::BuildHouses(Random& random) {
  if (profile_.most_height <= 0) {
    return;
  }
  const auto row = [&random](float from, float to, double least, double most) {
    std::vector<House> houses;
    for (float at = from; at < to;) {
      const auto length = UniformFloat(random, 7, 22);
      const auto height = UniformFloat(random, least, most);
      const auto tone = UniformFloat(random, 60, 190);
      const auto floor_height = UniformFloat(random, 2.7, 3.6);
      const auto bay_width = UniformFloat(random, 1.6, 3.6);
      houses.push_back({at, at + length, height, tone, floor_height, bay_width,
                        static_cast<std::uint32_t>(random.Next())});
      at += length;
    }
    return houses;
  };
  left_ = row(-20, end_, profile_.least_height, profile_.most_height);
  right_ = row(-20, end_, profile_.least_height, profile_.most_height);
  far_ = row(-60, 60, profile_.least_height + 2, profile_.most_height + 5);
}

void World::BuildUprights(Random& random) {
  const auto number = [&random](double low, double high) { return UniformFloat(random, low, high); };
  const auto add = [&](Upright::Kind kind, float x, float z, float height, float width) {
    uprights_.push_back({kind, x, z, height, width, static_cast<std::uint32_t>(random.Next())});
  };
  const float left = profile_.left_kerb;
  const float right = profile_.right_kerb;
  if (profile_.junction) {
    add(Upright::Kind::kSignal, right + 0.6F, stop_line_ + 0.3F, 3.3F, 0.34F);
    add(Upright::Kind::kSignal, left - 0.6F, stop_line_ + 7, 3.3F, 0.34F);
  }
  // Numbers are drawn one a statement: the order of a call's arguments is the compiler's own.
  for (const float x : {left - 1.1F, right + 1.2F}) {
    float z = number(7, 16);
    while (profile_.upright_gap > 0 && z < end_) {
      const float height = number(4.5, 8.5);
      const float width = number(2.4, 4.6);
      const float back = number(0, 2);
      if (random.Below(3) == 0 || options_.style == WorldOptions::Style::kMotorway) {
        add(Upright::Kind::kMast, x, z, height, 0.9F);
      } else {
        add(Upright::Kind::kTree, x + (x < 0 ? -back : back), z, height, width);
      }
      z += profile_.upright_gap * number(0.6, 1.6);
    }
  }
  for (int i = 0; options_.style == WorldOptions::Style::kOpen && i < 60; i++) {  // a wood along the horizon
    const float x = number(-110, 110);
    const float z = end_ - number(0, 60);
    const float height = number(5, 13);
    const float width = number(5, 12);
    if (std::fabs(x) > 7) add(Upright::Kind::kTree, x, z, height, width);
  }
  std::stable_sort(uprights_.begin(), uprights_.end(),
                   [](const Upright& a, const Upright& b) { return a.z < b.z; });
}

/// What reaches the camera from a surface: its own tone under the light there, and haze before it.
float World::Seen(const Hit& hit, float across) const {
  const float level = hit.tone + static_cast<float>(options_.brightness);
  const float surface = 112 + (level - 112) * static_cast<float>(options_.contrast);
  float factor = light_.At(across, hit.y, hit.distance);
  if (light_.street > 0 && hit.y < 6) {
    const float from = hit.z - pool_phase_ + 1000 * kLampGap;
    const float phase = from / kLampGap;
    const float off = (Fraction(phase) - 0.5F) * kLampGap / 7;
    factor += light_.street / (1 + off * off);
  }
  const float haze = hit.distance / (hit.distance + kHazeDistance);
  const float seen = Light::Lit(std::clamp(surface, kBlack, kWhite), factor) + hit.glow;
  return seen + (Light::Lit(kHazeTone, light_.ambient) - seen) * haze;
}

float World::Shade(const Camera& camera, float across, float up) const {
  const auto cosine = static_cast<float>(camera.cosine);
  const auto sine = static_cast<float>(camera.sine);
  const Ray ray{cosine * across + sine, up, cosine - sine * across, static_cast<float>(camera.x_m),
                static_cast<float>(camera.z_m)};
  // Houses end at the road, so that below them there is nothing but the ground.
  Hit hit = Houses(ray);
  if (hit.distance >= kNowhere) hit = Ground(ray);
  if (options_.style == WorldOptions::Style::kTunnel) {
    const Hit ceiling = Ceiling(ray);
    if (ceiling.distance < hit.distance) hit = ceiling;
  }
  const float limit = std::min(reach_ + 40, hit.distance);
  for (const Upright& upright : uprights_) {
    const float ahead = upright.z - ray.from_z;
    if (ahead >= limit * ray.z) {
      break;
    }
    if (ahead < 0.5F) {
      continue;
    }
    const float distance = ahead / ray.z;
    Hit met{distance, 0, 0, camera_height_ + distance * ray.y, upright.z};
    if (UprightAt(upright, ray.from_x + distance * ray.x - upright.x, met.y, met)) {
      return Seen(met, across * distance);
    }
  }
  return hit.distance < kNowhere ? Seen(hit, across * hit.distance) : Sky(ray);
}

float World::Sky(const Ray& ray) const {
  const float clouds = ValueNoise(ray.x * 3 / ray.z, ray.y * 9, seed_) +
                       0.5F * ValueNoise(ray.x * 9 / ray.z, ray.y * 24, seed_ + 1);
  const float day = sky_bright_ - sky_fall_ * std::clamp(ray.y, 0.0F, 0.5F) + clouds_ * clouds;
  // The night's sky above a town is a little brighter than its streets would be without lamps.
  return Light::Lit(day, light_.ambient * (light_.ambient < 0.5F ? 0.7F : 1.0F));
}

World::Hit World::Houses(const Ray& ray) const {
  const bool left = ray.x < 0;
  const float wall = left ? profile_.left_houses : profile_.right_houses;
  const float away = (wall - ray.from_x) / ray.x;
  if (ray.x != 0 && std::fabs(wall) < kNowhere && away > 0) {
    const Hit hit = Front(ray, away, true);
    if (hit.distance < kNowhere) return hit;
  }
  if (ray.z > 0.01F && !far_.empty()) {
    return Front(ray, (end_ - ray.from_z) / ray.z, false);
  }
  return Nothing();
}

World::Hit World::Reached(const Ray& ray, float distance) const {
  return {distance, 0, ray.from_x + distance * ray.x, camera_height_ + distance * ray.y,
          ray.from_z + distance * ray.z};
}

World::Hit World::Front(const Ray& ray, float distance, bool side) const {
  Hit hit = Reached(ray, distance);
  if (distance < 0 || hit.y < 0 || (side && hit.z > end_)) return Nothing();
  if (options_.style == WorldOptions::Style::kWall || options_.style == WorldOptions::Style::kTunnel) {
    return Wall(ray, distance, side);
  }
  const auto& houses = !side ? far_ : (ray.x < 0 ? left_ : right_);
  const float along = side ? hit.z : hit.x;
  const auto house = std::find_if(houses.begin(), houses.end(),
                                  [along](const House& candidate) { return along < candidate.end; });
  if (house == houses.end() || along < house->begin || hit.y > house->height) return Nothing();
  const float light = !side ? 0.85F : (ray.x < 0 ? 1.05F : 0.72F);
  hit.tone = Facade(*house, along - house->begin, hit.y, light, hit.glow);
  return hit;
}

World::Hit World::Ceiling(const Ray& ray) const {
  if (ray.y <= 0.001F) return Nothing();
  const float distance = (kCeiling - camera_height_) / ray.y;
  const float x = ray.from_x + distance * ray.x;
  const float z = ray.from_z + distance * ray.z;
  const float across = std::fabs(x + 1.7F) - 1.6F;
  const float along = Fraction(z / 6);
  const bool lamp = std::fabs(across) < 0.15F && along < 0.5F;
  return {distance, 70 + 6 * ValueNoise(x, z, seed_ + 14), x, kCeiling, z, lamp ? 150.0F : 0.0F};
}

World::Hit World::Ground(const Ray& ray) const {
  if (ray.y > -camera_height_ / (reach_ + 30)) {
    return Nothing();  // behind the last houses
  }
  const auto off_road = [this](float x) { return x < profile_.left_kerb || x > profile_.right_kerb; };
  const auto at = [&ray](float distance) {
    return Hit{distance, 0, ray.from_x + distance * ray.x, 0, ray.from_z + distance * ray.z};
  };
  const bool kerb = options_.style != WorldOptions::Style::kOpen;
  const Hit raised = at((kKerbHeight * (kerb ? 1.0F : 0.2F) - camera_height_) / ray.y);
  Hit hit = off_road(raised.x) ? raised : at(-camera_height_ / ray.y);
  // Metres along the road that a pixel of 1/700 spans: what is finer averages out.
  const float footprint = hit.distance * hit.distance / (camera_height_ * 700);
  if (off_road(raised.x)) {
    hit.tone = kerb && profile_.junction ? Pavement(hit.x, hit.z, footprint) : Field(hit.x, hit.z, footprint);
  } else if (off_road(hit.x)) {
    hit.tone = 118 + 9 * ValueNoise(hit.z * 3, 0, seed_);  // the kerb's face
  } else {
    hit.tone = Road(hit.x, hit.z, footprint);
  }
  // Houses throw their shadow over a part of the street, with an edge like their roofs.
  const float roofs = 2.5F * ValueNoise(hit.z * 0.11F, 0.5F, seed_ + 16);
  if (light_.ambient > 0.9F && hit.x > sun_edge_ + roofs) hit.tone = 30 + (hit.tone - 30) * 0.6F;
  return hit;
}

void World::Row(const Camera& camera, int row, std::span<float> light) const {
  const auto scale = static_cast<float>(1 / camera.focal);
  const auto left = static_cast<float>(camera.centre_x);
  for (std::size_t x = 0; x < light.size(); x++) {
    // Two rays that lie on a diagonal, which alternates: together with the neighbours' a quincunx.
    const float first = ((x + static_cast<std::size_t>(row)) & 1U) != 0 ? 0.25F : 0.75F;
    const auto horizon = static_cast<float>(camera.horizon - row);
    const auto column = static_cast<float>(x) - left;
    light[x] = Shade(camera, (column + first) * scale, (horizon - 0.5F) * scale);
  }
}

void World::RowPart(const Camera& camera, int row, int phase, std::span<float> light) const {
  const auto scale = static_cast<float>(1 / camera.focal);
  const auto left = static_cast<float>(camera.centre_x);
  const float right = (phase & 1) != 0 ? 0.75F : 0.25F;
  const float down = phase == 1 || phase == 2 ? 0.75F : 0.25F;
  const float up = (static_cast<float>(camera.horizon - row) - down) * scale;
  for (std::size_t x = 0; x < light.size(); x++) {
    light[x] += 0.25F * Shade(camera, (static_cast<float>(x) + right - left) * scale, up);
  }
}

}  // namespace stopngo
