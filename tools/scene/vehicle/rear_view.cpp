// rear_view.cpp: drawing a vehicle's rear and its lamps at any distance.
#include "scene/vehicle/rear_view.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace stopngo {
namespace {

constexpr double kHalo_m = 0.16;  // at which a lamp's glow in the lens has fallen to a quarter

/// 0 below low, 1 above high, straight in between.
double Ramp(double value, double low, double high) {
  return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

/// Of the angle between the way that a rear looks back and the line to the lens.
double Facing(const Camera& camera, const Pose& rear) {
  const double x = rear.x - camera.x_m;
  const double z = rear.z - camera.z_m;
  const double distance = std::sqrt(x * x + z * z);
  return distance > 0 ? (rear.sine * x + rear.cosine * z) / distance : 1;
}

}  // namespace

RearView::RearView(const Rear& rear, const Camera& camera, const VehicleState& state, const Light& light)
    : rear_(rear),
      camera_(camera),
      state_(state),
      light_(light),
      across_(0),
      distance_(0),
      cosine_(0),
      centre_(0) {
  const Place place = PlaceOf(camera, state.pose.x, state.pose.z);
  across_ = place.across;
  distance_ = std::max(place.ahead, 0.1);
  // What is seen of its width is as wide as the camera's axis, not the line to it, tells: a rear straight
  // across the street has all of it, wherever it stands.
  cosine_ = Facing(camera, state.pose) > 0
                ? std::max(0.0, state.pose.cosine * camera.cosine + state.pose.sine * camera.sine)
                : 0.0;
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

void RearView::DrawBody(Sheet& sheet) {
  const Stretch rows = sheet.Rows(Top(), Bottom());
  for (int row = rows.first; row < rows.end; row++) DrawRow(row, sheet);
  if (state_.boot <= 0) return;
  const Stretch open = sheet.Rows(Top() - 0.5 * camera_.focal / distance_, Bottom());
  for (int row = open.first; row < open.end; row++) DrawBoot(row, sheet);
}

void RearView::DrawRow(int row, Sheet& sheet) {
  const double upper = std::clamp<double>(row, Top(), Bottom());
  const double lower = std::clamp<double>(row + 1.0, Top(), Bottom());
  if (lower <= upper) return;
  const Texture& texture = rear_.texture;
  const Knot middle_knot = At(0.5 * (upper + lower));
  const double scale = camera_.focal / middle_knot.distance;  // pixels a metre
  const double low = At(lower).height * texture.TexelsPerMetre();
  const double high = At(upper).height * texture.TexelsPerMetre();
  if (high <= low) return;
  const double step = texture.TexelsPerMetre() / (scale * cosine_);  // texels a pixel
  const double middle = camera_.centre_x + across_ * scale;
  const double half = texture.Centre() / step;
  const Stretch columns = sheet.Columns(middle - half, middle + half);
  if (columns.first >= columns.end) return;
  const auto texel = [&](int x) { return (x - middle) * step + texture.Centre(); };
  texture.SumRows(low, high, texel(columns.first), texel(columns.end), sums_);

  const auto factor =
      static_cast<double>(light_.At(static_cast<float>(across_), static_cast<float>(middle_knot.height),
                                    static_cast<float>(middle_knot.distance)));
  // A row that the vehicle covers only in part counts by that part.
  const double share = (lower - upper) / ((high - low) * step);
  sheet.Touch(row, columns);
  Texel before = Texture::SumColumns(sums_, texel(columns.first));
  for (int x = columns.first; x < columns.end; x++) {
    const Texel after = Texture::SumColumns(sums_, texel(x + 1));
    const double cover = (after.cover - before.cover) * share;
    const double tone = (after.tone - before.tone) * share;
    sheet.Blend(row, x, cover, kBlack * cover + (tone - kBlack * cover) * factor);
    before = after;
  }
}

/// An open boot is a dark hole that grows upwards, with the lid above the roof at last.
void RearView::DrawBoot(int row, Sheet& sheet) const {
  const double scale = camera_.focal / distance_;
  const double height = camera_.height_m - (row + 0.5 - camera_.horizon) / scale;
  const double roof = knots_.back().height;
  const double opened = 0.62 + (roof - 0.67) * Ramp(state_.boot, 0, 0.7);
  const double lid = roof + 0.45 * Ramp(state_.boot, 0.6, 1);
  const bool hole = height > 0.62 && height < opened;
  const bool above = height >= roof - 0.03 && height < lid;
  if (!hole && !above) return;
  const double tone =
      kBlack + ((hole ? 34 : 0.6 * rear_.body) - kBlack) * static_cast<double>(light_.ambient);
  const double half = 0.72 * rear_.half_width * cosine_ * scale;
  const Stretch columns = sheet.Columns(centre_ - half, centre_ + half);
  sheet.Touch(row, columns);
  for (int x = columns.first; x < columns.end; x++) sheet.Blend(row, x, 1, tone);
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

void RearView::DrawLamps(Sheet& sheet) const {
  for (const RearLamp& lamp : rear_.lamps) {
    const double power = Power(lamp);
    if (power <= 0) continue;
    DrawLamp(lamp, power, lamp.height + state_.lift, 1, sheet);
    if (light_.wet > 0) {  // water mirrors it below the road, drawn out by its waves
      DrawLamp(lamp, 0.3 * power * static_cast<double>(light_.wet), -lamp.height, 6, sheet);
    }
  }
}

void RearView::DrawLamp(const RearLamp& lamp, double power, double height, double stretch,
                        Sheet& sheet) const {
  const double scale = camera_.focal / distance_;
  // By day a lamp outshines itself only; in the dark it glares.
  const double glare = 0.35 * std::clamp(1.1 - static_cast<double>(light_.ambient), 0.05, 1.0);
  // As far as its glow is worth a quarter of a grey level.
  const double bright = std::sqrt(power * glare / 0.25) - 1;
  const double reach = kHalo_m * std::sqrt(std::clamp(bright, 0.0, 9.0));
  const double middle = centre_ + lamp.centre * scale * cosine_;
  const double half = (lamp.half_width * cosine_ + reach) * scale;
  const double level = camera_.horizon + (camera_.height_m - height) * scale;
  const double tall = (lamp.half_height * stretch + reach) * scale;
  const Stretch rows = sheet.Rows(level - tall, level + tall);
  const Stretch columns = sheet.Columns(middle - half, middle + half);
  for (int row = rows.first; row < rows.end; row++) {
    const double dy = std::max(0.0, std::fabs(row + 0.5 - level) / scale - lamp.half_height * stretch);
    const double core = Ramp(0.5 - dy * scale, 0, 1);
    sheet.Touch(row, columns);
    for (int x = columns.first; x < columns.end; x++) {
      const double dx = std::max(0.0, std::fabs(x + 0.5 - middle) / scale - lamp.half_width * cosine_);
      const double square = (dx * dx + dy * dy) / (kHalo_m * kHalo_m);
      const double fade = std::max(0.0, 1 - square / 9);
      const double glow = glare * fade / ((1 + square) * (1 + square));
      const double body = core * Ramp(0.5 - dx * scale, 0, 1);
      sheet.Glow(row, x, power * std::max(body, glow));
    }
  }
}

}  // namespace stopngo
