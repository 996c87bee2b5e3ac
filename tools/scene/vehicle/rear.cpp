// rear.cpp: painting the rear of a vehicle.
#include "scene/vehicle/rear.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "base/random.h"
#include "base/streams.h"
#include "scene/paint/texture.h"
#include "scene/recipe/chance.h"
#include "scene/vehicle/rear_looks.h"

namespace stopngo {
namespace {

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

void PaintParts(Texture& texture, const std::vector<RearPart>& parts, double across, double up, double body) {
  for (const RearPart& part : parts) {
    Shape shape = Scaled(part.shape, across, up);
    if (part.body) {
      shape.tone_bottom = std::clamp(shape.tone_bottom + body, 18.0, 228.0);
      shape.tone_top = std::clamp(shape.tone_top + body, 18.0, 228.0);
    }
    shape.lamp = 0;
    texture.Paint(shape);
  }
}

/// Painted lamps come in pairs, and the outer quarter of a bright one blinks; one in the middle only brakes.
void AddLamps(std::vector<RearLamp>& lamps, const std::vector<RearPart>& parts, double across, double up) {
  using Role = RearLamp::Role;
  for (const RearPart& part : parts) {
    if (part.shape.lamp <= 0) {
      continue;
    }
    const Shape shape = Scaled(part.shape, across, up);
    const double height = 0.5 * (shape.low + shape.high);
    const double half_height = 0.5 * (shape.high - shape.low);
    const double half_width = 0.5 * (shape.half_bottom + shape.half_top);
    if (shape.centre == 0) {
      lamps.push_back(
          {shape.high < 1.0 ? Role::kTail : Role::kBrake, 0, height, half_width, half_height, shape.lamp});
      continue;
    }
    for (const double side : {-1.0, 1.0}) {
      lamps.push_back({Role::kTail, side * shape.centre, height, half_width, half_height, shape.lamp});
      if (shape.lamp > 100) {
        lamps.push_back({side < 0 ? Role::kLeft : Role::kRight, side * shape.centre,
                         height - 1.1 * half_height, 0.8 * half_width, 0.5 * half_height, 120});
      }
    }
  }
}

/// Of ten vehicles three are dark, and two to three white or silver.
double DrawTone(const VehicleOptions& options, Random& random) {
  const double shade = random.Uniform(0, 1);
  const double any = shade < 0.3 ? random.Uniform(17, 45)
                                 : (shade < 0.75 ? random.Uniform(45, 165) : random.Uniform(165, 228));
  return options.tone.value_or(any);
}

VehicleKind DrawKind(const VehicleOptions& options, Random& random) {
  constexpr std::array<VehicleKind, 3> kCars{VehicleKind::kHatchback, VehicleKind::kSaloon,
                                             VehicleKind::kMinivan};
  const VehicleKind any = OneOf(kCars, random);
  return options.kind.value_or(any);
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

Rear PaintRear(const VehicleOptions& options, double texels_per_metre, double most_texels,
               std::uint64_t seed) {
  Random random = RandomOf(seed, stream::kPaint);
  const VehicleKind kind = DrawKind(options, random);
  const RearVariant& variant = VariantOf(kind);
  const RearLook& look = variant.look;
  const double half_width = random.Uniform(variant.least_half, variant.most_half);
  const double across = half_width / look.outline[2].half_width;
  const double up = random.Uniform(variant.least_up, variant.most_up);
  const double body = DrawTone(options, random);

  std::vector<ProfilePoint> profile = look.profile;
  std::vector<OutlinePoint> outline = look.outline;
  double widest = 0;
  for (ProfilePoint& point : profile) {
    point.height *= up;
  }
  for (OutlinePoint& point : outline) {
    point = {point.height * up, point.half_width * across};
    widest = std::max(widest, point.half_width);
  }
  const double margin = variant.car ? 0.04 : 0.25;
  const double area = 2 * (widest + margin) * outline.back().height;
  Texture texture(widest + margin, outline.back().height + 0.03,
                  std::min(texels_per_metre, std::sqrt(most_texels / area)));
  if (variant.car) PaintParts(texture, PartsUnderCars(), across, up, body);
  texture.Fill(outline, 0.86 * body, std::min(1.08 * body, 232.0));
  PaintParts(texture, look.parts, across, up, body);
  if (variant.car) PaintParts(texture, LowerPartsOfCars(), across, up, body);
  if (variant.plate > 0) PaintPlate(texture, variant.plate * up, random);
  texture.Roughen(options.dirt, static_cast<std::uint32_t>(random.Next()));
  texture.Seal();
  std::vector<RearLamp> lamps;
  AddLamps(lamps, look.parts, across, up);
  return {kind, widest, up, body, std::move(profile), std::move(texture), std::move(lamps)};
}

}  // namespace stopngo
