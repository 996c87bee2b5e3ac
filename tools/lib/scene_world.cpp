// scene_world.cpp: a street between houses, seen from a lane that leads straight ahead.
#include "scene_world.h"

#include <algorithm>
#include <cmath>

namespace stopngo {
namespace {

// Across the street, metres from the middle of the own lane, which is 3.5 m wide; one more lane comes
// towards the camera on the left.
constexpr float kLeftKerb = -5.4F;
constexpr float kRightKerb = 1.95F;
constexpr float kLeftHouses = -9.5F;
constexpr float kRightHouses = 6.2F;
constexpr float kCentreLine = -1.75F;
constexpr float kEdgeLine = 1.65F;
constexpr float kKerbHeight = 0.12F;
constexpr float kStreetEnd = 140;  // where houses close the view

constexpr float kHazeTone = 190;
constexpr float kHazeDistance = 450;  // at which half of the light is haze
constexpr float kPaintTone = 196;
constexpr float kNowhere = 1e9F;

constexpr std::uint64_t kStream = 0x30;  // of random numbers: the world's

float Haze(float tone, float z) { return tone + (kHazeTone - tone) * z / (z + kHazeDistance); }

bool Within(float value, float low, float high) { return value >= low && value < high; }

float Fraction(float value) { return value - static_cast<float>(FloorToInt(value)); }

/// 1 at the middle of a band, a half at its width, falling off slowly.
float Band(float distance, float width) {
  const float relative = distance / width;
  return 1 / (1 + relative * relative);
}

}  // namespace

World::World(double camera_height, double stop_line_m, std::uint64_t seed)
    : camera_height_(static_cast<float>(camera_height)),
      stop_line_(static_cast<float>(stop_line_m)),
      seed_(0) {
  Random random(seed, kStream);
  seed_ = static_cast<std::uint32_t>(random.Next());
  BuildHouses(random);
  BuildUprights(random);
}

void World::BuildHouses(Random& random) {
  const auto row = [&random](float from, float to, double least, double most) {
    std::vector<House> houses;
    for (float at = from; at < to;) {
      const auto length = static_cast<float>(random.Uniform(9, 22));
      houses.push_back(
          {at, at + length, static_cast<float>(random.Uniform(least, most)),
           static_cast<float>(random.Uniform(85, 175)), static_cast<float>(random.Uniform(2.9, 3.6)),
           static_cast<float>(random.Uniform(2.1, 3.6)), static_cast<std::uint32_t>(random.Next())});
      at += length;
    }
    return houses;
  };
  left_ = row(-2, kStreetEnd, 8, 17);
  right_ = row(-2, kStreetEnd, 7, 15);
  far_ = row(-60, 60, 9, 22);
}

void World::BuildUprights(Random& random) {
  const auto number = [&random](double low, double high) {
    return static_cast<float>(random.Uniform(low, high));
  };
  const auto seed = [&random] { return static_cast<std::uint32_t>(random.Next()); };
  uprights_.push_back({Upright::Kind::kSignal, kRightKerb + 0.6F, stop_line_ + 0.3F, 3.3F, 0.34F, seed()});
  uprights_.push_back({Upright::Kind::kSignal, kLeftKerb - 0.6F, stop_line_ + 7, 3.3F, 0.34F, seed()});
  for (const float x : {kLeftKerb - 1.1F, kRightKerb + 1.2F}) {
    float z = number(9, 16);
    while (z < kStreetEnd) {
      if (random.Below(3) == 0) {
        uprights_.push_back({Upright::Kind::kMast, x, z, number(6.5, 8), 0.15F, seed()});
      } else {
        uprights_.push_back({Upright::Kind::kTree, x, z, number(5, 8.5), number(2.4, 4.4), seed()});
      }
      z += number(8, 17);
    }
  }
  std::stable_sort(uprights_.begin(), uprights_.end(),
                   [](const Upright& a, const Upright& b) { return a.z < b.z; });
}

float World::Shade(Ray ray) const {
  const Hit house = Houses(ray);
  Hit hit = Ground(ray);
  if (house.z < hit.z) {
    hit = house;
  }
  for (const Upright& upright : uprights_) {
    if (upright.z >= hit.z) {
      break;
    }
    float tone = 0;
    if (UprightAt(upright, upright.z * ray.x - upright.x, camera_height_ + upright.z * ray.y, tone)) {
      return Haze(tone, upright.z);
    }
  }
  return hit.z < kNowhere ? Haze(hit.tone, hit.z) : Sky(ray);
}

float World::Sky(Ray ray) const {
  const float clouds =
      ValueNoise(ray.x * 3, ray.y * 9, seed_) + 0.5F * ValueNoise(ray.x * 9, ray.y * 24, seed_ + 1);
  return 214 - 45 * std::clamp(ray.y, 0.0F, 0.5F) + 6 * clouds;
}

World::Hit World::Houses(Ray ray) const {
  const auto find = [](const std::vector<House>& houses, float along) {
    return std::find_if(houses.begin(), houses.end(),
                        [along](const House& house) { return along < house.end; });
  };
  const bool left = ray.x < 0;
  const float side_z = ray.x == 0 ? kNowhere : (left ? kLeftHouses : kRightHouses) / ray.x;
  if (side_z < kStreetEnd) {
    const float y = camera_height_ + side_z * ray.y;
    const auto& houses = left ? left_ : right_;
    const auto house = find(houses, side_z);
    if (house != houses.end() && y < house->height) {
      return {side_z, Facade(*house, side_z - house->begin, y, left ? 1.05F : 0.72F)};
    }
  }
  const float across = ray.x * kStreetEnd;
  const float y = camera_height_ + kStreetEnd * ray.y;
  const auto house = find(far_, across);
  if (house != far_.end() && across >= far_.front().begin && y < house->height) {
    return {kStreetEnd, Facade(*house, across - house->begin, y, 0.85F)};
  }
  return {kNowhere, 0};
}

float World::Facade(const House& house, float along, float y, float light) {
  if (y > house.height - 0.45F) {
    return light * (house.tone + 22);  // cornice
  }
  const float across = along / house.bay_width;
  const float up = y / house.floor_height;
  const std::int32_t bay = FloorToInt(across);
  const std::int32_t level = FloorToInt(up);
  const float fx = std::fabs(across - static_cast<float>(bay) - 0.5F);
  const float fy = up - static_cast<float>(level);
  // Shop windows on the ground floor are wide, those above upright.
  const float half_width = level == 0 ? 0.42F : 0.24F;
  const float sill = level == 0 ? 0.14F : 0.26F;
  if (fx < half_width && Within(fy, sill, 0.82F)) {
    const float frame = std::min({half_width - fx, (fy - sill) * 1.2F, (0.82F - fy) * 1.2F});
    const float glass = 34 + 60 * LatticeValue(bay, level, house.seed) + 22 * fy;
    return light * (frame < 0.03F || (level > 0 && fx < 0.012F) ? house.tone + 30 : glass);
  }
  const float ledge = fy > 0.95F ? -18.0F : 0.0F;
  const float stain =
      5 * ValueNoise(along * 0.9F, y * 0.35F, house.seed) + 4 * ValueNoise(along * 7, y * 7, house.seed);
  return light * (house.tone + ledge + stain - (level == 0 ? 14.0F : 0.0F));
}

World::Hit World::Ground(Ray ray) const {
  if (ray.y > -camera_height_ / kStreetEnd) {
    return {kNowhere, 0};  // behind the last houses
  }
  const auto off_road = [](float x) { return x < kLeftKerb || x > kRightKerb; };
  const float raised_z = (kKerbHeight - camera_height_) / ray.y;
  if (off_road(raised_z * ray.x)) {
    return {raised_z, Pavement(raised_z * ray.x, raised_z)};
  }
  const float z = -camera_height_ / ray.y;
  if (off_road(z * ray.x)) {
    return {z, 118 + 9 * ValueNoise(z * 3, 0, seed_)};  // the kerb's face
  }
  return {z, Road(z * ray.x, z)};
}

float World::Road(float x, float z) const {
  const float blotches =
      5 * ValueNoise(x * 0.45F, z * 0.3F, seed_ + 2) + 4 * ValueNoise(x * 2.2F, z * 1.3F, seed_ + 3);
  const float grain = 7 * ValueNoise(x * 28, z * 28, seed_ + 4) + 11 * ValueNoise(x * 85, z * 85, seed_ + 5);
  float tone = 96 + blotches + grain;
  // Tyres polish their tracks, and oil drips between them.
  const float lane = x > kCentreLine ? x : x + 3.6F;
  tone += 7 * Band(std::fabs(lane) - 0.78F, 0.22F) - 9 * Band(lane, 0.3F);
  const std::int32_t cell_x = FloorToInt(x / 1.7F);
  const std::int32_t cell_z = FloorToInt(z / 3.7F);
  if (LatticeValue(cell_x, cell_z, seed_ + 6) < 0.13F) {
    tone -= 13;  // repaired
  }
  // Cracks run along the level lines of a noise, but only in some stretches of the road.
  const float crack = ValueNoise(x * 0.8F, z * 0.3F, seed_ + 7) + 0.3F * ValueNoise(x * 5, z * 5, seed_ + 8);
  if (std::fabs(crack) < 0.008F && ValueNoise(x * 0.5F, z * 0.4F, seed_ + 13) > 0.15F) {
    tone -= 26;
  }
  const float cover_x = x - 0.75F;
  const float cover_z = z - stop_line_ - 7.5F;
  const float cover = cover_x * cover_x + cover_z * cover_z;
  if (cover < 0.12F) {
    tone = cover < 0.085F && Fraction(x * 9) < 0.6F ? 62.0F : 84.0F;  // manhole cover and its ring
  }
  const float paint =
      Markings(x, z) * std::clamp(0.8F + 0.7F * ValueNoise(x * 9, z * 9, seed_ + 9), 0.0F, 0.95F);
  return tone + (kPaintTone + 0.5F * grain - tone) * paint;
}

float World::Markings(float x, float z) const {
  const float past = z - stop_line_;
  const bool junction = Within(past, 0, 6);
  const bool dash = std::fabs(x - kCentreLine) < 0.06F && (Fraction(z / 6) < 0.5F) && !junction;
  const bool edge = std::fabs(x - kEdgeLine) < 0.06F && !junction;
  const bool stop = Within(past, 0, 0.45F) && Within(x, kCentreLine, kEdgeLine);
  const bool crossing = Within(past, 1.6F, 4.8F) && Fraction(x + 0.2F) < 0.5F;
  return dash || edge || stop || crossing ? 1.0F : 0.0F;
}

float World::Pavement(float x, float z) const {
  const bool right = x > 0;
  const float from_kerb = right ? x - kRightKerb : kLeftKerb - x;
  const float grain =
      6 * ValueNoise(x * 40, z * 40, seed_ + 10) + 5 * ValueNoise(x * 1.1F, z * 0.8F, seed_ + 11);
  if (from_kerb < 0.16F) {
    return (Fraction(z) < 0.02F ? 96.0F : 152.0F) + grain;  // kerbstones, a metre each
  }
  const bool joint = Fraction(x * 2) < 0.04F || Fraction(z * 2) < 0.04F;
  const float slab = 10 * LatticeValue(FloorToInt(x * 2), FloorToInt(z * 2), seed_ + 12);
  // The right pavement lies in the shadow of its houses.
  return ((joint ? 112.0F : 128.0F + slab) + grain) * (right ? 0.74F : 1.0F);
}

bool World::UprightAt(const Upright& upright, float x, float y, float& tone) const {
  if (std::fabs(x) > upright.width * 0.6F || y > upright.height || y < kKerbHeight) {
    return false;
  }
  if (upright.kind == Upright::Kind::kTree) {
    const float rx = x / (upright.width * 0.5F);
    const float ry = (y - upright.height * 0.66F) / (upright.height * 0.34F);
    const float leaves = 0.5F * ValueNoise(x * 1.7F, y * 1.7F, upright.seed) +
                         0.35F * ValueNoise(x * 7, y * 7, upright.seed + 1) +
                         0.35F * ValueNoise(x * 19, y * 19, upright.seed + 2);
    tone = 62 + 16 * ry - 8 * rx + 30 * leaves;
    return rx * rx + ry * ry + leaves < 0.85F || (std::fabs(x) < 0.13F && ry < 0);
  }
  const bool signal = upright.kind == Upright::Kind::kSignal;
  if (signal && y > upright.height - 0.95F && std::fabs(x) < upright.width / 2) {
    const float lens_y = y - (upright.height - 0.75F);
    tone = x * x + lens_y * lens_y < 0.009F ? 168.0F : 30.0F;  // green is lit, the two above are dark
    return true;
  }
  tone = 84 + 150 * x;
  return std::fabs(x) < 0.07F;
}

}  // namespace stopngo
