// world_paint.cpp: what the surfaces of a street look like.
#include <algorithm>
#include <cmath>

#include "host/common/exact_math.h"
#include "scene/paint/noise.h"
#include "scene/street/world.h"

namespace stopngo {
namespace {

constexpr float kPaintTone = 196;
constexpr float kEdgeLine = 1.65F;

bool Within(float value, float low, float high) { return value >= low && value < high; }

/// 1 at the middle of a band, a half at its width, falling off slowly.
float Band(float distance, float width) {
  const float relative = distance / width;
  return 1 / (1 + relative * relative);
}

/// Noise of a number of lattice points a metre, gone where a pixel's footprint averages it out.
float Grain(float x, float z, float rate, float footprint, std::uint32_t seed) {
  const float averaged = footprint * rate;
  return averaged > 1.5F ? 0.0F : (1 - averaged / 1.5F) * ValueNoise(x * rate, z * rate, seed);
}

}  // namespace

float World::Facade(const House& house, float along, float y, float light, float& glow) const {
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
    const float lattice = LatticeValue(bay, level, house.seed);
    const float glass = 34 + 60 * lattice + 22 * fy;
    if (frame < 0.03F || (level > 0 && fx < 0.012F)) {
      return light * (house.tone + 30);
    }
    // Shops are lit more often, and brighter.
    if (LatticeValue(bay, level, house.seed + 1) < light_.windows * (level == 0 ? 2.0F : 1.0F)) {
      glow = (level == 0 ? 90.0F : 50.0F) + 70 * lattice;
    }
    return light * glass;
  }
  const float ledge = fy > 0.95F ? -18.0F : 0.0F;
  const float stain =
      5 * ValueNoise(along * 0.9F, y * 0.35F, house.seed) + 4 * ValueNoise(along * 7, y * 7, house.seed);
  return light * (house.tone + ledge + stain - (level == 0 ? 14.0F : 0.0F));
}

/// Concrete with joints, ribs and stains: a bridge, a car park, a tunnel's lining, a noise barrier.
World::Hit World::Wall(const Ray& ray, float distance, bool side) const {
  Hit hit = Reached(ray, distance);
  const float y = hit.y;
  const float along = side ? hit.z : hit.x;
  const float height = 2.2F + 6 * LatticeValue(side ? 1 : 0, ray.x < 0 ? 1 : 0, seed_ + 17);
  const bool tunnel = options_.style == WorldOptions::Style::kTunnel;
  if (!tunnel && y > height) {
    return Nothing();
  }
  const float base = 70 + 90 * LatticeValue(side ? 1 : 0, ray.x < 0 ? 3 : 2, seed_ + 18);
  const float joint = Fraction(along / 2.5F) < 0.02F || Fraction(y / 1.2F) < 0.025F ? -28.0F : 0.0F;
  const float stain =
      9 * ValueNoise(along * 0.7F, y * 0.25F, seed_ + 19) + 5 * ValueNoise(along * 6, y * 6, seed_ + 20);
  const bool poster = LatticeValue(FloorToInt(along / 3), 7, seed_ + 21) < 0.15F && Within(y, 0.8F, 2.0F);
  const float print = poster ? 60 * LatticeValue(FloorToInt(along * 5), FloorToInt(y * 6), seed_ + 22) : 0.0F;
  // The portal of a tunnel's end lets daylight in.
  hit.glow = tunnel && !side ? 120.0F : 0.0F;
  hit.tone = base + joint + stain + print;
  return hit;
}

float World::Wear(float x, float z) const {
  // Tyres polish their tracks, and oil drips between them.
  const float lane = x > profile_.centre_line ? x : x + 3.6F;
  float tone = 7 * Band(std::fabs(lane) - 0.78F, 0.22F) - 9 * Band(lane, 0.3F);
  if (LatticeValue(FloorToInt(x / 1.7F), FloorToInt(z / 3.7F), seed_ + 6) < 0.13F) {
    tone -= 13;  // repaired
  }
  // Cracks run along the level lines of a noise, but only in some stretches of the road.
  if (ValueNoise(x * 0.5F, z * 0.4F, seed_ + 13) > 0.15F) {
    const float crack =
        ValueNoise(x * 0.8F, z * 0.3F, seed_ + 7) + 0.3F * ValueNoise(x * 5, z * 5, seed_ + 8);
    tone -= std::fabs(crack) < 0.008F ? 26.0F : 0.0F;
  }
  return tone;
}

float World::Road(float x, float z, float footprint) const {
  const float blotches =
      5 * ValueNoise(x * 0.45F, z * 0.3F, seed_ + 2) + 4 * Grain(x, z * 0.6F, 2.2F, footprint, seed_ + 3);
  const float grain = 8 * Grain(x, z, 9, footprint, seed_ + 15) + 7 * Grain(x, z, 28, footprint, seed_ + 4) +
                      11 * Grain(x, z, 85, footprint, seed_ + 5);
  float tone = 96 + blotches + grain + Wear(x, z);
  const float cover_x = x - 0.75F;
  const float cover_z = Fraction(z / 43) * 43 - 20;
  const float cover = cover_x * cover_x + cover_z * cover_z;
  if (cover < 0.12F) {
    tone = cover < 0.085F && Fraction(x * 9) < 0.6F ? 62.0F : 84.0F;  // manhole cover and its ring
  }
  const float marked = Markings(x, z);
  if (marked > 0) {
    const float paint = std::clamp(0.8F + 0.7F * ValueNoise(x * 9, z * 9, seed_ + 9), 0.0F, 0.95F);
    tone += (kPaintTone + 0.5F * grain - tone) * paint * marked;
  }
  return tone;
}

float World::Markings(float x, float z) const {
  const float past = z - stop_line_;
  const bool junction = profile_.junction && Within(past, 0, 6);
  const float lane = std::fabs(Fraction((x - profile_.centre_line) / 3.5F + 0.5F) - 0.5F) * 3.5F;
  const bool dash = lane < 0.06F && Fraction(z / 6) < 0.5F && !junction;
  const bool edge = std::fabs(x - profile_.right_kerb + 0.35F) < 0.06F && !junction;
  const bool stop = junction && past < 0.45F && Within(x, profile_.centre_line, kEdgeLine);
  const bool crossing = junction && Within(past, 1.6F, 4.8F) && Fraction(x + 0.2F) < 0.5F;
  return dash || edge || stop || crossing ? 1.0F : 0.0F;
}

float World::Pavement(float x, float z, float footprint) const {
  const bool right = x > 0;
  const float from_kerb = right ? x - profile_.right_kerb : profile_.left_kerb - x;
  const float grain =
      6 * Grain(x, z, 40, footprint, seed_ + 10) + 5 * ValueNoise(x * 1.1F, z * 0.8F, seed_ + 11);
  if (from_kerb < 0.16F) {
    return (Fraction(z) < 0.02F ? 96.0F : 152.0F) + grain;  // kerbstones, a metre each
  }
  const bool joint = Fraction(x * 2) < 0.04F || Fraction(z * 2) < 0.04F;
  const float slab = 10 * LatticeValue(FloorToInt(x * 2), FloorToInt(z * 2), seed_ + 12);
  return (joint ? 112.0F : 128.0F + slab) + grain;
}

float World::Field(float x, float z, float footprint) const {
  return 92 + 14 * Grain(x, z * 0.3F, 0.4F, footprint, seed_ + 10) +
         12 * Grain(x, z, 3, footprint, seed_ + 11) + 12 * Grain(x, z, 22, footprint, seed_ + 12);
}

bool World::Canopy(const Upright& upright, float x, float y, float& tone) const {
  const float rx = x / (upright.width * 0.5F);
  const float ry = (y - upright.height * 0.66F) / (upright.height * 0.34F);
  const float leaves = 0.5F * ValueNoise(x * 1.7F, y * 1.7F, upright.seed) +
                       0.35F * ValueNoise(x * 7, y * 7, upright.seed + 1) +
                       0.35F * ValueNoise(x * 19, y * 19, upright.seed + 2);
  tone = 62 + 16 * ry - 8 * rx + 30 * leaves;
  return rx * rx + ry * ry + leaves < 0.85F || (std::fabs(x) < 0.13F && ry < 0);
}

bool World::UprightAt(const Upright& upright, float x, float y, Hit& hit) const {
  if (std::fabs(x) > upright.width * 0.6F || y > upright.height || y < 0.1F) {
    return false;
  }
  if (upright.kind == Upright::Kind::kTree) {
    return Canopy(upright, x, y, hit.tone);
  }
  const bool signal = upright.kind == Upright::Kind::kSignal;
  if (signal && y > upright.height - 0.95F && std::fabs(x) < upright.width / 2) {
    const float lens_y = y - (upright.height - 0.75F);
    const bool lit = x * x + lens_y * lens_y < 0.009F;  // green is lit, the two above are dark
    hit.tone = lit ? 168.0F : 30.0F;
    hit.glow = lit && light_.ambient < 0.6F ? 130.0F : 0.0F;
    return true;
  }
  if (!signal && light_.street > 0) {
    const float head_y = y - upright.height + 0.3F;
    const float halo = 0.05F / (0.05F + x * x + head_y * head_y);
    hit.glow = 220 * halo * halo;
  }
  hit.tone = 84 + 150 * x;
  return std::fabs(x) < 0.07F || hit.glow > 100;
}

}  // namespace stopngo
