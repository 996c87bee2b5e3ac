// scene_vehicle_paint.cpp: what the rears of vehicles look like.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "scene_random.h"
#include "scene_vehicle.h"

namespace stopngo {
namespace {

constexpr std::uint64_t kStream = 0x7e;  // of random numbers: the vehicle's

/// A shape and what its grey levels are measured from.
struct Part {
  Shape shape;
  bool body = false;  ///< they are added to the colour of the body
};

/// All measures for a vehicle 1.8 m wide.
struct Kind {
  std::vector<ProfilePoint> profile;
  std::vector<OutlinePoint> outline;
  std::vector<Part> parts;  ///< painted in this order
};

// Columns of a part: centre, low, high, half width below and above, radius, tone below and above,
// opacity, added tone of a brake light.

/// What is on the road side of the body and painted before it.
const std::vector<Part> kUnderneath{
    {{0.68, 0.00, 0.38, 0.10, 0.10, 0.03, 22, 34}},  // tyres
    {{0, 0.13, 0.32, 0.62, 0.62, 0.04, 20, 16}},     // axle, exhaust, spare wheel: dark
};

/// Bumper and number plate are at the same height on all of them, by regulation.
const std::vector<Part> kLowerRear{
    {{0, 0.31, 0.585, 0.90, 0.91, 0.07, -8, 10}, true},      {{0, 0.24, 0.36, 0.78, 0.80, 0.04, 34, 46}},
    {{0, 0.583, 0.597, 0.88, 0.88, 0, -45, -45, 0.8}, true},  // gap above the bumper
    {{0, 0.545, 0.57, 0.84, 0.84, 0.01, 34, 34, 0.6}, true},  // light along its edge
    {{0.66, 0.385, 0.43, 0.10, 0.10, 0.01, 74, 84}},          // reflectors
    {{0.46, 0.26, 0.31, 0.05, 0.05, 0.02, 120, 150}},         // exhaust pipes
};

const Kind kHatchback{
    {{0, 0.30},
     {0.24, 0.05},
     {0.31, 0},
     {0.60, 0.01},
     {0.98, 0.12},
     {1.38, 0.50},
     {1.46, 0.72},
     {1.49, 0.95}},
    {{0.24, 0.80},
     {0.32, 0.88},
     {0.62, 0.90},
     {0.95, 0.885},
     {1.02, 0.85},
     {1.36, 0.70},
     {1.44, 0.62},
     {1.49, 0.40}},
    {
        {{0, 0.985, 1.365, 0.735, 0.615, 0.06, 30, 62}},             // rear window
        {{0.36, 0.99, 1.19, 0.14, 0.10, 0.05, 20, 24, 0.8}},         // head rests
        {{0.40, 1.22, 1.34, 0.20, 0.10, 0.04, 92, 110, 0.35}},       // daylight through the windscreen
        {{0, 1.392, 1.412, 0.17, 0.17, 0.005, 70, 70, 1, 110}},      // high brake light
        {{0, 1.42, 1.46, 0.56, 0.50, 0.01, 36, 36, 0.7}, true},      // light on the roof's edge
        {{0.09, 1.00, 1.025, 0.19, 0.17, 0.01, 18, 18}},             // wiper
        {{0, 0.93, 0.965, 0.82, 0.82, 0.015, 42, 30, 0.6}, true},    // light on the shoulder
        {{0.60, 0.60, 0.97, 0.006, 0.006, 0, -50, -50, 0.8}, true},  // gaps of the tailgate
        {{0.77, 0.70, 0.945, 0.105, 0.085, 0.03, 58, 84, 1, 22}},    // lamps
        {{0.775, 0.80, 0.915, 0.07, 0.06, 0.03, 78, 92, 1, 125}},
        {{0.75, 0.71, 0.765, 0.07, 0.07, 0.01, 150, 165}},         // reversing lamps
        {{0, 0.63, 0.83, 0.36, 0.34, 0.03, -32, -18}, true},       // recess of the plate
        {{0, 0.865, 0.935, 0.04, 0.04, 0.035, 205, 215}},          // badge
        {{0.45, 0.875, 0.90, 0.11, 0.11, 0.003, 190, 200, 0.75}},  // lettering
    }};

const Kind kSaloon{
    {{0, 0.35}, {0.24, 0.05}, {0.31, 0}, {0.60, 0.01}, {0.97, 0.07}, {1.03, 0.48}, {1.37, 1.05}, {1.43, 1.4}},
    {{0.24, 0.80},
     {0.32, 0.88},
     {0.62, 0.90},
     {0.92, 0.88},
     {1.02, 0.86},
     {1.08, 0.84},
     {1.36, 0.68},
     {1.43, 0.45}},
    {
        {{0, 1.05, 1.345, 0.735, 0.60, 0.05, 34, 74}},
        {{0.36, 1.05, 1.20, 0.15, 0.11, 0.05, 20, 24, 0.8}},
        {{0, 1.055, 1.075, 0.15, 0.15, 0.005, 70, 70, 1, 110}},
        {{0, 0.975, 1.035, 0.84, 0.84, 0.02, 40, 62, 0.8}, true},    // top of the boot lid
        {{0, 0.945, 0.965, 0.62, 0.62, 0.01, -30, -30, 0.7}, true},  // its edge
        {{0.56, 0.60, 0.95, 0.006, 0.006, 0, -50, -50, 0.8}, true},
        {{0.72, 0.74, 0.92, 0.165, 0.15, 0.03, 56, 84, 1, 22}},
        {{0.77, 0.765, 0.895, 0.085, 0.08, 0.03, 78, 92, 1, 125}},
        {{0.62, 0.755, 0.81, 0.06, 0.06, 0.01, 150, 165}},
        {{0, 0.63, 0.82, 0.34, 0.36, 0.03, -32, -18}, true},
        {{0, 0.80, 0.825, 0.40, 0.40, 0.005, 185, 215}},  // chrome strip
        {{0, 0.86, 0.92, 0.035, 0.035, 0.03, 205, 215}},
        {{0.40, 0.87, 0.895, 0.09, 0.09, 0.003, 190, 200, 0.75}},
    }};

const Kind kVan{
    {{0, 0.30}, {0.24, 0.04}, {0.31, 0}, {0.60, 0.01}, {1.84, 0.06}, {1.92, 0.20}},
    {{0.24, 0.82}, {0.32, 0.89}, {0.60, 0.90}, {1.50, 0.86}, {1.80, 0.82}, {1.88, 0.76}, {1.92, 0.66}},
    {
        {{0.40, 1.12, 1.66, 0.33, 0.31, 0.05, 36, 66}},  // a window in each door
        {{0.40, 1.12, 1.30, 0.18, 0.14, 0.05, 22, 26, 0.7}},
        {{0, 0.62, 1.80, 0.007, 0.007, 0, -60, -60, 0.9}, true},  // gap between the doors
        {{0.775, 0.62, 1.78, 0.006, 0.006, 0, -45, -45, 0.8}, true},
        {{0.74, 0.78, 0.815, 0.06, 0.06, 0.01, -40, -40}, true},  // hinges
        {{0.74, 1.00, 1.035, 0.06, 0.06, 0.01, -40, -40}, true},
        {{0, 1.81, 1.835, 0.18, 0.18, 0.005, 70, 70, 1, 110}},
        {{0.835, 0.72, 1.10, 0.05, 0.048, 0.02, 60, 90, 1, 22}},
        {{0.835, 0.92, 1.08, 0.036, 0.034, 0.02, 78, 92, 1, 125}},
        {{0.835, 0.73, 0.81, 0.04, 0.04, 0.01, 150, 165}},
        {{0.10, 0.93, 0.96, 0.07, 0.07, 0.01, 40, 52}},              // handles
        {{0.42, 0.99, 1.05, 0.20, 0.20, 0.005, 58, 58, 0.6}, true},  // lettering
        {{0, 0.61, 0.80, 0.33, 0.33, 0.02, -26, -14}, true},
        {{0, 1.84, 1.88, 0.72, 0.66, 0.01, 30, 40, 0.6}, true},
    }};

/// Digits of a number plate, 3 × 5 cells, the upper row in the highest bits.
constexpr std::array<std::uint16_t, 10> kDigits{0x7b6f, 0x2c97, 0x73e7, 0x73cf, 0x5bc9,
                                                0x79cf, 0x79ef, 0x7249, 0x7bef, 0x7bcf};

Shape Scaled(Shape shape, double across, double up) {
  shape.centre *= across;
  shape.half_bottom *= across;
  shape.half_top *= across;
  shape.low *= up;
  shape.high *= up;
  return shape;
}

void PaintParts(Texture& texture, const std::vector<Part>& parts, double across, double up, double body) {
  for (const Part& part : parts) {
    Shape shape = Scaled(part.shape, across, up);
    if (part.body) {
      shape.tone_bottom = std::clamp(shape.tone_bottom + body, 18.0, 228.0);
      shape.tone_top = std::clamp(shape.tone_top + body, 18.0, 228.0);
    }
    texture.Paint(shape);
  }
}

/// A plate 52 × 11 cm with seven digits of 7.5 cm.
void PaintPlate(Texture& texture, double low, Random& random) {
  constexpr double kCell = 0.015;
  texture.Paint({0, low, low + 0.11, 0.26, 0.26, 0.008, 196, 206});
  for (int place = 0; place < 7; place++) {
    const std::uint16_t digit = kDigits[random.Below(10)];
    const double left = -0.215 + 0.062 * place;
    for (int bit = 0; bit < 15; bit++) {
      if (((digit >> (14 - bit)) & 1) == 0) {
        continue;
      }
      const int cell_row = bit / 3;
      const double centre = left + kCell * (bit % 3 + 0.5);
      const double top = low + 0.0925 - kCell * cell_row;
      texture.PaintOne({0, top - kCell, top, kCell / 2, kCell / 2, 0, 42, 42}, centre);
    }
  }
}

}  // namespace

Vehicle BuildVehicle(double texels_per_metre, std::uint64_t seed) {
  Random random(seed, kStream);
  const std::array<const Kind*, 3> kinds{&kHatchback, &kSaloon, &kVan};
  const Kind& kind = *kinds[random.Below(kinds.size())];
  const double half_width = random.Uniform(0.885, 0.95);
  const double across = half_width / kind.outline[2].half_width;
  const double up = random.Uniform(0.97, 1.04);
  const double body = random.Uniform(45, 185);

  std::vector<ProfilePoint> profile = kind.profile;
  std::vector<OutlinePoint> outline = kind.outline;
  for (ProfilePoint& point : profile) {
    point.height *= up;
  }
  for (OutlinePoint& point : outline) {
    point = {point.height * up, point.half_width * across};
  }
  Texture rear(half_width + 0.04, outline.back().height + 0.01, texels_per_metre);
  PaintParts(rear, kUnderneath, across, up, body);
  rear.Fill(outline, 0.86 * body, 1.08 * body);
  PaintParts(rear, kind.parts, across, up, body);
  PaintParts(rear, kLowerRear, across, up, body);
  PaintPlate(rear, 0.665 * up, random);
  // Numbers are drawn one a statement: the order of a call's arguments is the compiler's own.
  const double dirt = random.Uniform(3, 6);
  rear.Roughen(dirt, static_cast<std::uint32_t>(random.Next()));
  rear.Seal();
  return {half_width, random.Uniform(-0.05, 0.05), std::move(profile), std::move(rear)};
}

}  // namespace stopngo
