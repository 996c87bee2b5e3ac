// rear_view.cpp: drawing a vehicle's rear, its shadow and its lamps at any distance.
#include "scene/lane/rear_view.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace stopngo {
namespace {

constexpr double kShadowEdge_m = 0.5;  // over which it fades out
constexpr double kShadowDepth = 0.82;  // share of the light that does not get beneath a car
constexpr double kHalo_m = 0.16;       // at which a lamp's glow in the lens has fallen to a quarter

/// 0 below low, 1 above high, straight in between.
double Ramp(double value, double low, double high) {
  return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

struct Columns {
  std::size_t first, end;
};

/// The columns of a row from one to before another, as far as it has them.
Columns Within(std::span<float> light, double first, double end) {
  const auto whole = [width = static_cast<double>(light.size())](double column) {
    return static_cast<std::size_t>(std::clamp(column, 0.0, width));
  };
  return {whole(first), whole(end)};
}

}  // namespace

RearView::RearView(const Rear& rear, const Camera& camera, const VehicleState& state, const Light& light)
    : rear_(rear), camera_(camera), state_(state), light_(light), across_(0), distance_(0), centre_(0) {
  const Place place = PlaceOf(camera, state.x, state.z);
  across_ = place.across;
  distance_ = std::max(place.ahead, 0.1);
  centre_ = camera_.centre_x + across_ * camera_.focal / distance_;
  for (const ProfilePoint& point : rear.profile) {
    const double away = distance_ + point.depth;
    // The wheels stay on the road while the body rocks.
    const double height = point.height + state.lift * Ramp(point.height, 0.1, 0.3);
    const double row = camera_.horizon + camera_.focal * (camera_.height_m - height) / away;
    knots_.push_back({row, point.height, away});
  }
}

// Between two knots the surface is a straight line from (height, distance) to (height, distance), which
// the ray through the row meets at a share of its length.
RearView::Knot RearView::At(double row) const {
  const auto above =
      std::find_if(knots_.begin() + 1, knots_.end() - 1, [row](const Knot& k) { return k.row <= row; });
  const Knot& high = *above;
  const Knot& low = *(above - 1);
  const double slope = (row - camera_.horizon) / camera_.focal;
  const double fall = slope * (high.distance - low.distance) + (high.height - low.height);
  const double lift = state_.lift * Ramp(0.5 * (low.height + high.height), 0.1, 0.3);
  const double share =
      std::clamp((camera_.height_m - lift - low.height - slope * low.distance) / fall, 0.0, 1.0);
  return {row, low.height + share * (high.height - low.height),
          low.distance + share * (high.distance - low.distance)};
}

void RearView::DrawShadow(int row, std::span<float> light) const {
  const double slope = (row + 0.5 - camera_.horizon) / camera_.focal;
  if (slope <= 0) {
    return;
  }
  const double z = camera_.height_m / slope;
  // Far away a row of pixels spans metres of road, and the edge must not be sharper than that.
  const double edge = std::max(kShadowEdge_m, z * z / (camera_.height_m * camera_.focal));
  const double depth = kShadowDepth * Ramp(z, distance_ - 0.5 * edge, distance_ + 0.5 * edge) *
                       (1 - Ramp(z, distance_ + rear_.length, distance_ + rear_.length + edge));
  if (depth <= 0) {
    return;
  }
  const double scale = camera_.focal / z;
  const double middle = camera_.centre_x + across_ * scale;
  const double half = (rear_.half_width + 0.5 * kShadowEdge_m) * scale;
  const auto [first, end] = Within(light, middle - half, middle + half + 1);
  for (std::size_t x = first; x < end; x++) {
    const double inside = half - std::fabs(static_cast<double>(x) + 0.5 - middle);
    const double dark = depth * Ramp(inside, 0, std::max(1.0, kShadowEdge_m * scale));
    light[x] = static_cast<float>(light[x] - (light[x] - kBlack) * dark);
  }
}

void RearView::DrawRow(int row, std::span<float> light) {
  DrawShadow(row, light);
  const double upper = std::clamp<double>(row, Top(), Bottom());
  const double lower = std::clamp<double>(row + 1.0, Top(), Bottom());
  if (lower <= upper) {
    return;
  }
  const Texture& texture = rear_.texture;
  const Knot middle_knot = At(0.5 * (upper + lower));
  const double scale = camera_.focal / middle_knot.distance;  // pixels a metre
  const double low = At(lower).height * texture.TexelsPerMetre();
  const double high = At(upper).height * texture.TexelsPerMetre();
  if (high <= low) {
    return;
  }
  const double step = texture.TexelsPerMetre() / (scale * state_.cosine);  // texels a pixel
  const double middle = camera_.centre_x + across_ * scale;
  const double half = texture.Centre() / step;
  const auto [first, end] = Within(light, middle - half, std::ceil(middle + half));
  const auto texel = [&](std::size_t x) {
    return (static_cast<double>(x) - middle) * step + texture.Centre();
  };
  texture.SumRows(low, high, texel(first), texel(end), sums_);

  const float factor = light_.At(static_cast<float>(across_), static_cast<float>(middle_knot.height),
                                 static_cast<float>(middle_knot.distance));
  // A row that the vehicle covers only in part counts by that part.
  const double share = (lower - upper) / ((high - low) * step);
  Texel before = Texture::SumColumns(sums_, texel(first));
  for (std::size_t x = first; x < end; x++) {
    const Texel after = Texture::SumColumns(sums_, texel(x + 1));
    const double cover = (after.cover - before.cover) * share;
    const double tone = (after.tone - before.tone) * share;
    const double lit = kBlack * cover + (tone - kBlack * cover) * static_cast<double>(factor);
    light[x] = static_cast<float>(light[x] * (1 - cover) + lit);
    before = after;
  }
  DrawBoot(row, light);
}

/// An open boot is a dark hole that grows upwards, with the lid above the roof at last.
void RearView::DrawBoot(int row, std::span<float> light) const {
  if (state_.boot <= 0) {
    return;
  }
  const double scale = camera_.focal / distance_;
  const double height = camera_.height_m - (row + 0.5 - camera_.horizon) / scale;
  const double roof = knots_.back().height;
  const double opened = 0.62 + (roof - 0.67) * Ramp(state_.boot, 0, 0.7);
  const double lid = roof + 0.45 * Ramp(state_.boot, 0.6, 1);
  const bool hole = height > 0.62 && height < opened;
  const bool above = height >= roof - 0.03 && height < lid;
  if (!hole && !above) {
    return;
  }
  const double factor = static_cast<double>(light_.ambient);
  const double tone = kBlack + ((hole ? 34 : 0.6 * rear_.body) - kBlack) * factor;
  const double half = 0.72 * rear_.half_width * scale;
  const auto [first, end] = Within(light, centre_ - half, centre_ + half);
  for (std::size_t x = first; x < end; x++) {
    light[x] = static_cast<float>(tone);
  }
}

double RearView::Power(const RearLamp& lamp) const {
  switch (lamp.role) {
    case RearLamp::Role::kTail:
      return lamp.power * std::max(0.55 * state_.tail, state_.brake);
    case RearLamp::Role::kBrake:
      return lamp.power * state_.brake;
    case RearLamp::Role::kLeft:
      return lamp.power * state_.left;
    case RearLamp::Role::kRight:
      return lamp.power * state_.right;
  }
  return 0;
}

void RearView::DrawLamps(int row, std::span<float> light) const {
  for (const RearLamp& lamp : rear_.lamps) {
    const double power = Power(lamp);
    if (power <= 0) {
      continue;
    }
    DrawLamp(lamp, power, lamp.height + state_.lift, 1, row, light);
    if (light_.wet > 0) {  // water mirrors it below the road, drawn out by its waves
      DrawLamp(lamp, 0.3 * power * static_cast<double>(light_.wet), -lamp.height, 6, row, light);
    }
  }
}

void RearView::DrawLamp(const RearLamp& lamp, double power, double height, double stretch, int row,
                        std::span<float> light) const {
  const double scale = camera_.focal / distance_;
  const double away = std::fabs(camera_.height_m - height - (row + 0.5 - camera_.horizon) / scale);
  const double dy = std::max(0.0, away - lamp.half_height * stretch);
  // By day a lamp outshines itself only; in the dark it glares.
  const double glare = 0.35 * std::clamp(1.1 - static_cast<double>(light_.ambient), 0.05, 1.0);
  const double reach = kHalo_m * 3;
  if (dy > reach) {
    return;
  }
  const double middle = centre_ + lamp.centre * scale * state_.cosine;
  const double half = (lamp.half_width * state_.cosine + reach) * scale;
  const double core = Ramp(0.5 - dy * scale, 0, 1);
  const auto [first, end] = Within(light, middle - half, middle + half);
  for (std::size_t x = first; x < end; x++) {
    const double dx =
        std::max(0.0, std::fabs(static_cast<double>(x) + 0.5 - middle) / scale - lamp.half_width);
    const double square = (dx * dx + dy * dy) / (kHalo_m * kHalo_m);
    const double fade = std::max(0.0, 1 - square / 9);
    const double glow = glare * fade / ((1 + square) * (1 + square));
    const double body = core * Ramp(0.5 - dx * scale, 0, 1);
    light[x] += static_cast<float>(power * std::max(body, glow));
  }
}

}  // namespace stopngo
