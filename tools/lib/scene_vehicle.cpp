// scene_vehicle.cpp: drawing the vehicle ahead and its shadow at any distance.
#include "scene_vehicle.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace stopngo {
namespace {

constexpr double kLength_m = 4.3;      // of the shadow beneath
constexpr double kShadowEdge_m = 0.5;  // over which it fades out
constexpr double kShadowDepth = 0.82;  // share of the light that does not get beneath a car

/// 0 below low, 1 above high, straight in between.
double Ramp(double value, double low, double high) {
  return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

}  // namespace

VehicleView::VehicleView(const Vehicle& vehicle, const Camera& camera, double distance, Shake::Offset shake,
                         double brakes)
    : vehicle_(vehicle), camera_(camera), distance_(distance), brakes_(brakes) {
  camera_.centre_x += shake.x;
  camera_.horizon += shake.y;
  centre_ = camera_.centre_x + vehicle.offset * camera_.focal / distance;
  for (const ProfilePoint& point : vehicle.profile) {
    const double away = distance + point.depth;
    const double row = camera_.horizon + camera_.focal * (camera_.height_m - point.height) / away;
    knots_.push_back({row, point.height, away});
  }
}

// Between two knots the surface is a straight line from (height, distance) to (height, distance), which
// the ray through the row meets at a share of its length.
VehicleView::Knot VehicleView::At(double row) const {
  const auto above =
      std::find_if(knots_.begin() + 1, knots_.end() - 1, [row](const Knot& k) { return k.row <= row; });
  const Knot& high = *above;
  const Knot& low = *(above - 1);
  const double slope = (row - camera_.horizon) / camera_.focal;
  const double fall = slope * (high.distance - low.distance) + (high.height - low.height);
  const double share = std::clamp((camera_.height_m - low.height - slope * low.distance) / fall, 0.0, 1.0);
  return {row, low.height + share * (high.height - low.height),
          low.distance + share * (high.distance - low.distance)};
}

void VehicleView::DrawShadow(int row, std::span<float> light) const {
  const double slope = (row + 0.5 - camera_.horizon) / camera_.focal;
  if (slope <= 0) {
    return;
  }
  const double z = camera_.height_m / slope;
  // Far away a row of pixels spans metres of road, and the edge must not be sharper than that.
  const double edge = std::max(kShadowEdge_m, z * z / (camera_.height_m * camera_.focal));
  const double depth = kShadowDepth * Ramp(z, distance_ - 0.5 * edge, distance_ + 0.5 * edge) *
                       (1 - Ramp(z, distance_ + kLength_m, distance_ + kLength_m + edge));
  if (depth <= 0) {
    return;
  }
  const double scale = camera_.focal / z;
  const double middle = camera_.centre_x + vehicle_.offset * scale;
  const double half = (vehicle_.half_width + 0.5 * kShadowEdge_m) * scale;
  const auto width = static_cast<double>(light.size());
  const auto end = static_cast<std::size_t>(std::clamp(middle + half + 1, 0.0, width));
  for (auto x = static_cast<std::size_t>(std::clamp(middle - half, 0.0, width)); x < end; x++) {
    const double inside = half - std::fabs(static_cast<double>(x) + 0.5 - middle);
    light[x] *= static_cast<float>(1 - depth * Ramp(inside, 0, std::max(1.0, kShadowEdge_m * scale)));
  }
}

void VehicleView::DrawRow(int row, std::span<float> light) {
  DrawShadow(row, light);
  const double upper = std::clamp<double>(row, Top(), Bottom());
  const double lower = std::clamp<double>(row + 1.0, Top(), Bottom());
  if (lower <= upper) {
    return;
  }
  const Texture& rear = vehicle_.rear;
  const double scale = camera_.focal / At(0.5 * (upper + lower)).distance;  // pixels a metre
  const double low = At(lower).height * rear.TexelsPerMetre();
  const double high = At(upper).height * rear.TexelsPerMetre();
  if (high <= low) {
    return;
  }
  rear.SumRows(low, high, sums_);

  const double step = rear.TexelsPerMetre() / scale;  // texels a pixel
  const double middle = camera_.centre_x + vehicle_.offset * scale;
  const double half = rear.Centre() / step;
  const auto width = static_cast<double>(light.size());
  const auto first = static_cast<std::size_t>(std::clamp(std::floor(middle - half), 0.0, width));
  const auto end = static_cast<std::size_t>(std::clamp(std::ceil(middle + half), 0.0, width));
  // A row that the vehicle covers only in part counts by that part.
  const double share = (lower - upper) / ((high - low) * step);
  Texel before = Texture::SumColumns(sums_, (static_cast<double>(first) - middle) * step + rear.Centre());
  for (std::size_t x = first; x < end; x++) {
    const Texel after =
        Texture::SumColumns(sums_, (static_cast<double>(x + 1) - middle) * step + rear.Centre());
    const double tone = after.tone - before.tone + brakes_ * (after.lamp - before.lamp);
    const double cover = (after.cover - before.cover) * share;
    light[x] = static_cast<float>(light[x] * (1 - cover) + tone * share);
    before = after;
  }
}

}  // namespace stopngo
