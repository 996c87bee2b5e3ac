// body.cpp: what vehicles look like from the side and from ahead.
#include "scene/vehicle/body.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "base/random.h"
#include "host/common/exact_math.h"
#include "scene/paint/noise.h"
#include "scene/paint/texture.h"

namespace stopngo {
namespace {

// In the order of VehicleKind. Columns: length, half width, lower edge, belt, roof, cabin from rear, from front,
// runs of rear window and windscreen, wheel radius, wheels, window heights. A motorcycle has no flat sides.
constexpr std::array<BodyShape, 9> kShapes{{
    {4.10, 0.89, 0.24, 0.94, 1.46, 0.12, 1.05, 0.45, 0.75, 0.31, {0.75, 3.25, 0, 0}, 0, 0},
    {4.60, 0.91, 0.24, 0.95, 1.44, 0.75, 1.20, 0.65, 0.80, 0.32, {0.95, 3.70, 0, 0}, 0, 0},
    {4.50, 0.92, 0.25, 0.97, 1.55, 0.10, 1.15, 0.30, 0.75, 0.33, {0.95, 3.55, 0, 0}, 0, 0},
    {4.60, 0.95, 0.28, 0.98, 1.50, 0.10, 1.15, 0.30, 0.70, 0.36, {0.95, 3.65, 0, 0}, 0, 0},
    {5.20, 0.97, 0.28, 2.05, 2.05, 0, 0, 0, 0, 0.34, {1.00, 4.20, 0, 0}, 1.15, 1.85},
    {9.50, 1.25, 0.55, 3.50, 3.50, 0, 0, 0, 0, 0.50, {1.60, 2.80, 8.10, 0}, 1.75, 2.55},
    {12.0, 1.27, 0.32, 3.05, 3.05, 0, 0, 0, 0, 0.48, {3.20, 9.30, 0, 0}, 1.15, 2.35},
    {20.0, 1.20, 0.28, 3.30, 3.30, 0, 0, 0, 0, 0.30, {2.5, 4.3, 15.5, 17.3}, 1.30, 2.45},
    {2.10, 0.22, 0.30, 0.60, 0.60, 0, 0, 0, 0, 0.30, {0, 0, 0, 0}, 0, 0},
}};

constexpr double kTexels = 60000;    // of a face at most: 1.4 MB
constexpr double kBonnetFall = 0.2;  // metres
constexpr double kShadowTexels = 8;
constexpr double kShadowFade_m = 0.4;

struct Coat {
  double body;
  double glass;
  double trim;  ///< bumpers, strips
  double dirt;
  std::uint32_t seed;
};

Shape Block(double low, double high, double half, double radius, double tone, double lamp = 0,
            double opacity = 1) {
  return {0, low, high, half, half, radius, tone, tone, opacity, lamp};
}

double Density(double wanted, double width, double height) {
  return std::min(wanted, std::sqrt(kTexels / (width * height)));
}

void Finish(Texture& texture, const Coat& coat, std::uint32_t number) {
  texture.Roughen(coat.dirt, coat.seed + number * 16);
  texture.Seal();
}

/// Glass with what is behind it and what is mirrored in it.
void PaintWindow(Texture& texture, double from, double to, double low, double high, const Coat& coat,
                 std::uint32_t number) {
  const double half = 0.5 * (to - from);
  const double middle = 0.5 * (from + to);
  const double rise = high - low;
  Shape glass = Block(low, high, half, std::min(0.06, 0.4 * half), coat.glass);
  glass.tone_top = coat.glass + 34;
  texture.PaintOne(glass, middle);
  const double head = 0.1 * rise + 0.05;
  if (LatticeValue(static_cast<std::int32_t>(number), 0, coat.seed) < 0.6F) {
    const double at =
        middle + half * (0.6 * LatticeValue(static_cast<std::int32_t>(number), 1, coat.seed) - 0.3);
    const double tone = 20 + 70 * LatticeValue(static_cast<std::int32_t>(number), 2, coat.seed);
    texture.PaintOne(Block(low, low + 0.5 * rise, std::min(0.2, 0.6 * half), 0.05, tone, 0, 0.7), at);
    texture.PaintOne(Block(low + 0.4 * rise, low + 0.4 * rise + 2 * head, head, head, tone + 25, 0, 0.8), at);
  }
}

void PaintArches(Texture& texture, const BodyShape& shape) {
  const double arch = shape.wheel_radius + 0.05;
  for (const double from_rear : shape.wheels) {
    if (from_rear > 0) {
      texture.PaintOne(Block(shape.wheel_radius - arch, shape.wheel_radius + arch, arch, arch, 20),
                       from_rear - 0.5 * shape.length);
    }
  }
}

void PaintEndLamps(Texture& texture, const BodyShape& shape, double height) {
  const double end = 0.5 * shape.length;
  texture.PaintOne(Block(height - 0.07, height + 0.07, 0.13, 0.03, 70, 100), -end + 0.12);
  texture.PaintOne(Block(height - 0.08, height + 0.06, 0.17, 0.04, 190), end - 0.17);
}

/// A car's lower part: doors, sill, trim, lamps.
Texture CarFlank(const BodyShape& shape, double density, const Coat& coat, Random& random) {
  const double end = 0.5 * shape.length;
  Texture texture(end + 0.02, shape.belt + 0.04, Density(density, shape.length, shape.belt));
  const std::array<PaintPoint, 10> outline{{{-end + 0.06, shape.low + 0.04},
                                            {-end, 0.42},
                                            {-end + 0.03, 0.80},
                                            {-end + 0.12, shape.belt},
                                            {end - shape.cabin_front, shape.belt + 0.03},
                                            {end - 0.5, shape.belt - 0.08},
                                            {end - 0.08, shape.belt - 0.24},
                                            {end, 0.50},
                                            {end - 0.08, shape.low},
                                            {0, shape.low - 0.04}}};
  texture.FillPolygon(outline, 0.72 * coat.body, 1.08 * coat.body);
  texture.PaintOne(Block(shape.low - 0.05, shape.low + 0.1, end - 0.6, 0.02, 0.45 * coat.body), 0);
  texture.PaintOne(Block(0.52, 0.56, end - 0.5, 0.01, coat.trim, 0, 0.8), 0);
  texture.PaintOne(Block(shape.belt - 0.13, shape.belt - 0.07, end - 0.4, 0.02, coat.body + 38, 0, 0.5),
                   -0.2);
  const double doors = random.Uniform(0.95, 1.1);
  for (const double gap : {end - shape.cabin_front - 0.35, end - shape.cabin_front - 0.35 - doors,
                           end - shape.cabin_front - 0.35 - 1.9 * doors}) {
    texture.PaintOne(Block(shape.low + 0.1, shape.belt, 0.009, 0, 0.4 * coat.body), gap);
    texture.PaintOne(Block(shape.belt - 0.19, shape.belt - 0.16, 0.09, 0.015, coat.body - 30),
                     gap - 0.85 * doors);
  }
  PaintEndLamps(texture, shape, 0.72);
  PaintArches(texture, shape);
  Finish(texture, coat, 1);
  return texture;
}

/// Door windows between pillars.
Texture CabinFlank(const BodyShape& shape, double density, const Coat& coat) {
  const double half = 0.5 * (shape.length - shape.cabin_rear - shape.cabin_front);
  const double rise = shape.roof - shape.belt;
  Texture texture(half + 0.02, rise + 0.01, Density(density, 2 * half, rise));
  const std::array<PaintPoint, 6> outline{{{-half, 0},
                                           {-half + 0.8 * shape.rear_run, 0.85 * rise},
                                           {-half + shape.rear_run + 0.2, rise},
                                           {half - shape.front_run - 0.25, rise},
                                           {half - 0.85 * shape.front_run, 0.88 * rise},
                                           {half, 0}}};
  texture.FillPolygon(outline, coat.body, 1.15 * coat.body);
  const std::array<PaintPoint, 4> glass{{{-half + 0.25, 0.05},
                                         {-half + 0.9 * shape.rear_run + 0.12, 0.86 * rise},
                                         {half - shape.front_run - 0.08, 0.88 * rise},
                                         {half - 0.22, 0.05}}};
  texture.FillPolygon(glass, coat.glass, coat.glass + 38);
  for (const double at : {-0.22 * half, 0.3 * half}) {  // people or head rests
    texture.PaintOne(Block(0.05, 0.5 * rise, 0.13, 0.05, 26, 0, 0.7), at);
    texture.PaintOne(Block(0.35 * rise, 0.75 * rise, 0.1, 0.1, 58, 0, 0.6), at);
  }
  texture.PaintOne(Block(0.02, 0.92 * rise, 0.045, 0, 24), 0.02 * half);
  texture.PaintOne(Block(0.02, 0.9 * rise, 0.035, 0, 0.8 * coat.body), -0.52 * half);
  Finish(texture, coat, 2);
  return texture;
}

/// Side of a van, bus, tram or lorry.
Texture TallFlank(VehicleKind kind, const BodyShape& shape, double density, const Coat& coat,
                  Random& random) {
  const double end = 0.5 * shape.length;
  Texture texture(end + 0.02, shape.roof + 0.02, Density(density, shape.length, shape.roof));
  const bool lorry = kind == VehicleKind::kLorry;
  const bool van = kind == VehicleKind::kTransporter;
  const double cab = lorry ? 2.1 : (van ? 1.7 : 0.0);  // length in which only the driver's window is
  const double lean = van ? 0.75 : 0.1;
  const double cab_roof = lorry ? 2.85 : shape.roof - 0.03;
  const std::array<PaintPoint, 5> front{{{-end + 0.03, shape.low},
                                         {-end + 0.03, lorry ? 1.0 : shape.roof - 0.06},
                                         {end - lean, cab_roof},
                                         {end, van ? 1.0 : 1.5},
                                         {end - 0.02, shape.low}}};
  texture.FillPolygon(front, 0.75 * coat.body, 1.05 * coat.body);
  if (lorry) {
    const double half = end - 0.5 * (cab + 0.3);
    texture.PaintOne(Block(1.0, shape.roof, half, 0.03, coat.trim + 90), -end + half);
    texture.PaintOne(Block(shape.low, 1.0, half - 0.2, 0, 34), -end + half);
    for (double at = -end + 0.6; at < end - cab - 0.6; at += 1.2) {
      texture.PaintOne(Block(1.05, shape.roof - 0.05, 0.02, 0, coat.trim + 55), at);
    }
    texture.PaintOne(Block(1.7, 2.7, random.Uniform(1, 2.5), 0.1, coat.body - 10), -end + half);
    texture.PaintOne(Block(2.0, 2.4, random.Uniform(0.4, 1), 0.02, 225, 0, 0.9), -end + half);
    texture.PaintOne(Block(0.55, 2.85, 0.12, 0, 24), end - cab - 0.18);
  }
  const double bay = van ? 1.2 : random.Uniform(1.3, 1.8);
  std::uint32_t number = 0;
  const bool glazed = !lorry && (!van || random.Below(2) == 0);
  for (double at = -end + 0.3; glazed && at + bay < end - cab; at += bay) {
    PaintWindow(texture, at, at + bay - 0.08, shape.dark_from, shape.dark_to, coat, number++);
  }
  if (cab > 0) {
    PaintWindow(texture, end - cab + 0.25, end - lean - 0.1, shape.dark_from, shape.dark_to, coat, number);
  } else {
    texture.PaintOne(Block(shape.low + 0.3, shape.dark_from - 0.2, end - 0.2, 0.02, coat.trim, 0, 0.8), 0);
    for (const double door : {0.55 * end, -0.25 * end, end - 0.8}) {
      texture.PaintOne(Block(shape.low + 0.05, shape.dark_to, 0.6, 0.03, coat.glass - 4), door);
      texture.PaintOne(Block(shape.low + 0.05, shape.dark_to, 0.03, 0, coat.body), door);
    }
  }
  texture.PaintOne(Block(shape.low, shape.low + 0.12, end - 0.1, 0, 0.4 * coat.body), 0);
  PaintEndLamps(texture, shape, 0.85);
  PaintArches(texture, shape);
  Finish(texture, coat, 3);
  return texture;
}

/// A car's bonnet falls off towards its front.
double FrontTop(const BodyShape& shape) {
  return shape.roof > shape.belt ? shape.belt - kBonnetFall : shape.belt;
}

/// The front below the windscreen. Windows only where the body reaches up to the roof.
Texture Front(const BodyShape& shape, double density, const Coat& coat) {
  const double half = shape.half_width;
  const double top = FrontTop(shape);
  Texture texture(half + 0.02, top + 0.02, Density(density, 2 * half, top));
  texture.Paint({half - 0.14, 0, 0.4, 0.1, 0.1, 0.03, 22, 34});  // tyres
  texture.Paint(Block(0.14, shape.low + 0.1, half - 0.25, 0.03, 18));
  const double edge = top - 0.04;
  const std::array<OutlinePoint, 5> outline{{{shape.low, half - 0.08},
                                             {shape.low + 0.1, half},
                                             {0.6, half},
                                             {edge, half - 0.02},
                                             {top, half - 0.1}}};
  texture.Fill(outline, 0.8 * coat.body, 1.08 * coat.body);
  texture.Paint(Block(shape.low + 0.02, shape.low + 0.32, half - 0.01, 0.05, coat.trim));
  texture.Paint(Block(0.42, 0.53, 0.26, 0.01, 205));
  texture.Paint(Block(0.445, 0.505, 0.2, 0, 110, 0, 0.7));
  texture.Paint(Block(0.56, 0.70, 0.42, 0.03, 30));  // grille
  texture.Paint({half - 0.2, 0.62, 0.78, 0.16, 0.18, 0.05, 185, 215, 1, 110});
  if (shape.dark_to > 0) {
    texture.Paint(
        {0, shape.dark_from, shape.dark_to, half - 0.14, half - 0.18, 0.08, coat.glass, coat.glass + 36});
    texture.Paint(Block(shape.low + 0.4, shape.dark_to, 0.008, 0, 0.4 * coat.body));
  }
  Finish(texture, coat, 4);
  return texture;
}

/// Along its slope.
Texture Windscreen(const BodyShape& shape, double density, double slope, const Coat& coat) {
  Texture texture(shape.half_width, slope + 0.01, Density(density, 2 * shape.half_width, slope));
  const double bottom = shape.half_width - 0.06;
  const double top = shape.half_width - 0.28;
  const std::array<OutlinePoint, 3> outline{{{0, bottom}, {0.9 * slope, top}, {slope, top - 0.12}}};
  texture.Fill(outline, 0.95 * coat.body, 1.12 * coat.body);
  texture.Paint({0, 0.06 * slope, 0.86 * slope, bottom - 0.1, top - 0.05, 0.06, coat.glass, coat.glass + 40});
  texture.Paint({0.38, 0.08 * slope, 0.5 * slope, 0.15, 0.11, 0.06, 24, 30, 0.7});
  texture.Paint({0.36, 0.45 * slope, 0.78 * slope, 0.12, 0.08, 0.06, 70, 90, 0.5});
  Finish(texture, coat, 6);
  return texture;
}

Texture Plain(double half_width, double length, const Coat& coat) {
  Texture texture(half_width, length, 20);
  texture.Paint(Block(0, length, half_width, 0.15, 1.12 * coat.body));
  Finish(texture, coat, 8);
  return texture;
}

/// Tyre, rim and the openings between its spokes.
Texture Wheel(double radius, double density, Random& random) {
  Texture texture(radius, 2 * radius, std::min(density, 220.0));
  const double rim = (radius > 0.4 ? 0.55 : 0.68) * radius;
  const double tone = random.Uniform(95, 180);
  texture.PaintOne(Block(0, 2 * radius, radius, radius, 28), 0);
  texture.PaintOne(Block(radius - rim, radius + rim, rim, rim, tone), 0);
  const std::uint32_t holes = 4 + random.Below(3);
  const double size = random.Uniform(0.16, 0.24) * rim;
  for (std::uint32_t i = 0; i < holes; i++) {
    const double turns = static_cast<double>(i) / holes;
    const double x = 0.62 * rim * SineOfTurns(turns);
    const double y = radius + 0.62 * rim * SineOfTurns(turns + 0.25);
    texture.PaintOne(Block(y - size, y + size, size, size, 40), x);
  }
  texture.Seal();
  return texture;
}

/// Dark beneath, fading out around.
Texture ShadowBeneath(const BodyShape& shape) {
  const double half = shape.half_width + 0.5 * kShadowFade_m;
  const double length = shape.length + kShadowFade_m;
  Texture texture(half, length, kShadowTexels);
  constexpr int kSteps = 6;
  for (int i = 0; i < kSteps; i++) {
    const double inset = kShadowFade_m * i / kSteps;
    texture.Paint(Block(inset, length - inset, half - inset, 0.1, 0, 0, 0.24));
  }
  texture.Seal();
  return texture;
}

void AddFlanks(std::vector<Face>& faces, std::size_t texture, double half_width, double height, double middle,
               double lean) {
  for (const double side : {-1.0, 1.0}) {
    faces.push_back(
        {texture, {side * half_width, height, middle}, {0, 0, 1}, {-side * lean, 1, 0}, {side, lean, 0}});
  }
}

std::size_t Add(BodyParts& parts, Texture texture) {
  parts.textures.push_back(std::move(texture));
  return parts.textures.size() - 1;
}

/// Deck and bonnet, windows along the sides, windscreen. What is behind belongs to the rear.
void AddCabin(BodyParts& parts, const BodyShape& shape, double density, const Coat& coat) {
  const double end = 0.5 * shape.length;
  const double rise = shape.roof - shape.belt;
  const double deck = shape.length - shape.cabin_front - 0.08;
  parts.cabin.push_back({Add(parts, Plain(shape.half_width - 0.05, deck, coat)),
                         {0, shape.belt, -end + 0.08},
                         {1, 0, 0},
                         {0, 0, 1},
                         {0, 1, 0}});
  const double bonnet = std::sqrt(shape.cabin_front * shape.cabin_front + kBonnetFall * kBonnetFall);
  parts.cabin.push_back({Add(parts, Plain(shape.half_width - 0.05, bonnet, coat)),
                         {0, FrontTop(shape), end},
                         {1, 0, 0},
                         {0, kBonnetFall / bonnet, -shape.cabin_front / bonnet},
                         {0, shape.cabin_front, kBonnetFall}});
  AddFlanks(parts.cabin, Add(parts, CabinFlank(shape, density, coat)), shape.half_width - 0.05, shape.belt,
            0.5 * (shape.cabin_rear - shape.cabin_front), 0.22 / rise);
  const double slope = std::sqrt(rise * rise + shape.front_run * shape.front_run);
  parts.cabin.push_back({Add(parts, Windscreen(shape, density, slope, coat)),
                         {0, shape.belt, end - shape.cabin_front},
                         {1, 0, 0},
                         {0, rise / slope, -shape.front_run / slope},
                         {0, shape.front_run, rise}});
}

}  // namespace

BodyShape ShapeOf(const Rear& rear) {
  BodyShape shape = kShapes[static_cast<std::size_t>(rear.kind)];
  shape.half_width = rear.half_width;
  for (double* height : {&shape.belt, &shape.roof, &shape.dark_from, &shape.dark_to}) *height *= rear.up;
  return shape;
}

BodyParts PaintBody(const Rear& rear, double texels_per_metre, Random& random) {
  const BodyShape shape = ShapeOf(rear);
  Coat coat{};
  coat.body = rear.body;
  coat.glass = random.Uniform(22, 50);
  coat.trim = random.Below(2) == 0 ? 40 : 0.9 * coat.body;
  coat.dirt = random.Uniform(3, 8);
  coat.seed = static_cast<std::uint32_t>(random.Next());
  BodyParts parts;
  parts.shadow = Add(parts, ShadowBeneath(shape));
  if (rear.kind == VehicleKind::kMotorcycle) return parts;
  const bool car = shape.roof > shape.belt;
  const double end = 0.5 * shape.length;
  AddFlanks(parts.body,
            Add(parts, car ? CarFlank(shape, texels_per_metre, coat, random)
                           : TallFlank(rear.kind, shape, texels_per_metre, coat, random)),
            shape.half_width, 0, 0, 0);
  parts.body.push_back(
      {Add(parts, Front(shape, texels_per_metre, coat)), {0, 0, end}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  if (car) AddCabin(parts, shape, texels_per_metre, coat);
  parts.wheel = Add(parts, Wheel(shape.wheel_radius, texels_per_metre, random));
  return parts;
}

}  // namespace stopngo
