// panel.cpp: drawing textured parallelograms in perspective, by area.
#include "scene/paint/panel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "scene/space/projection.h"

namespace stopngo {
namespace {

/// A value that changes evenly over the picture.
struct Plane {
  double origin, per_column, per_row;
  [[nodiscard]] double At(double column, double row) const {
    return origin + per_column * column + per_row * row;
  }
};

/// The dot product of a vector with the ray through a place of the picture.
Plane AlongRay(const Camera& camera, Vector3 v) {
  const double scale = 1 / camera.focal;
  return {v.z - (v.x * camera.centre_x - v.height * camera.horizon) * scale, v.x * scale, -v.height * scale};
}

/// A panel's outline in the picture: a rectangle of which the nearest plane may have cut off a corner.
class Outline {
 public:
  Outline(const Camera& camera, const std::array<Vector3, 4>& eyes) {
    for (std::size_t i = 0; i < 4; i++) {
      const Vector3 from = eyes[i];
      const Vector3 to = eyes[(i + 1) % 4];
      if (from.z >= kNearest_m) {
        Add(ToPicture(camera, from));
      }
      if ((from.z >= kNearest_m) != (to.z >= kNearest_m)) {
        const double share = (kNearest_m - from.z) / (to.z - from.z);
        Vector3 cut = from + share * (to - from);
        cut.z = kNearest_m;
        Add(ToPicture(camera, cut));
      }
    }
  }
  [[nodiscard]] double Top() const { return top_; }
  [[nodiscard]] double Bottom() const { return bottom_; }
  /// The columns that it has between two rows.
  [[nodiscard]] std::array<double, 2> Between(double high, double low) const {
    std::array<double, 2> columns{1e9, -1e9};
    for (std::size_t i = 0; i < count_; i++) {
      const Spot& a = spots_[i];
      const Spot& b = spots_[(i + 1) % count_];
      const double rise = b.row - a.row;
      if (std::max(a.row, b.row) < high || std::min(a.row, b.row) > low) {
        continue;
      }
      for (const double row : {high, low}) {
        const double share = rise == 0 ? 0 : std::clamp((row - a.row) / rise, 0.0, 1.0);
        const double column = a.column + share * (b.column - a.column);
        columns = {std::min(columns[0], column), std::max(columns[1], column)};
      }
      if (rise == 0) {
        columns = {std::min(columns[0], b.column), std::max(columns[1], b.column)};
      }
    }
    return columns;
  }

 private:
  void Add(const Spot& spot) {
    spots_[count_++] = spot;
    top_ = std::min(top_, spot.row);
    bottom_ = std::max(bottom_, spot.row);
  }
  std::array<Spot, 6> spots_{};
  std::size_t count_ = 0;
  double top_ = 1e9;
  double bottom_ = -1e9;
};

struct Painter {
  const Texture& texture;
  const Glaze& glaze;
  Sheet& sheet;

  /// area: texels that the pixel spans.
  void Blend(int row, int column, const Texel& sum, double area) const {
    if (sum.cover > 0) {
      const double share = 1 / area;
      sheet.Blend(row, column, std::min(sum.cover * share, 1.0),
                  (sum.tone * glaze.gain + sum.lamp * glaze.lamp) * share);
    }
  }
};

/// Where the rays through the picture meet a panel's plane, in metres along it and up it: the quotients of
/// two planes each, by Cramer's rule for ray d = origin + u across + v up.
struct Meeting {
  Meeting(const Camera& camera, Vector3 origin, Vector3 across, Vector3 up)
      : depth(AlongRay(camera, Cross(across, up))),
        along(AlongRay(camera, Cross(up, origin))),
        above(AlongRay(camera, Cross(origin, across))),
        facing(Dot(origin, Cross(across, up))) {}
  /// depth has to have the sign of facing, or the ray meets the plane behind the lens or never.
  Plane depth, along, above;
  double facing;
};

/// An upright panel: on a column of the picture lies a column of the texture, all at one distance.
void DrawUpright(const Painter& painter, const Outline& outline, const Meeting& meeting) {
  const double texels = painter.texture.TexelsPerMetre();
  const auto [left, right] = outline.Between(outline.Top(), outline.Bottom());
  const Stretch columns = painter.sheet.Columns(left, right);
  const Stretch all = painter.sheet.Rows(outline.Top(), outline.Bottom());
  for (int row = all.first; row < all.end; row++) {
    painter.sheet.Touch(row, columns);
  }
  const auto texture_column = [&](double column) {
    return meeting.along.At(column, 0) / meeting.depth.At(column, 0) * texels + painter.texture.Centre();
  };
  for (int column = columns.first; column < columns.end; column++) {
    const double q = meeting.depth.At(column + 0.5, 0);
    if (meeting.depth.At(column, 0) * meeting.facing <= 0 ||
        meeting.depth.At(column + 1, 0) * meeting.facing <= 0) {
      continue;
    }
    const double begin = texture_column(column);
    const double end = texture_column(column + 1);
    const Texture::Strip strip(painter.texture, std::min(begin, end), std::max(begin, end));
    const double step = meeting.above.per_row / q * texels;  // texels up a row of the picture
    const double origin = meeting.above.At(column + 0.5, 0) / q * texels;
    const double top = (painter.texture.Rows() - origin) / step;
    const double bottom = -origin / step;
    const Stretch rows = painter.sheet.Rows(std::min(top, bottom), std::max(top, bottom));
    const double area = std::fabs(step * (end - begin));
    Texel before = strip.Below(origin + step * rows.first);
    for (int row = rows.first; row < rows.end; row++) {
      const Texel after = strip.Below(origin + step * (row + 1));
      painter.Blend(row, column, step < 0 ? before - after : after - before, area);
      before = after;
    }
  }
}

/// Any other. The pixel's outline on the texture is taken for a rectangle along its axes.
void DrawSlanted(const Painter& painter, const Outline& outline, const Meeting& meeting) {
  const auto& [depth, along, above, facing] = meeting;
  const double texels = painter.texture.TexelsPerMetre();
  const double centre = painter.texture.Centre();
  const Stretch rows = painter.sheet.Rows(outline.Top() - 0.5, outline.Bottom() + 0.5);
  for (int row = rows.first; row < rows.end; row++) {
    const auto [left, right] = outline.Between(row - 0.5, row + 1.5);
    const Stretch columns = painter.sheet.Columns(left - 0.5, right + 0.5);
    painter.sheet.Touch(row, columns);
    for (int column = columns.first; column < columns.end; column++) {
      const double q = depth.At(column + 0.5, row + 0.5);
      if (q * facing <= 0) {
        continue;  // beyond the panel's horizon
      }
      const double scale = texels / q;
      const double u = along.At(column + 0.5, row + 0.5) / q;
      const double v = above.At(column + 0.5, row + 0.5) / q;
      const auto slope = [scale](double du, double dv) { return scale * std::sqrt(du * du + dv * dv); };
      const double wide = slope(along.per_column - u * depth.per_column, along.per_row - u * depth.per_row);
      const double high = slope(above.per_column - v * depth.per_column, above.per_row - v * depth.per_row);
      const double x = u * texels + centre;
      const double y = v * texels;
      painter.Blend(row, column,
                    painter.texture.Sum(x - 0.5 * std::fabs(wide), x + 0.5 * std::fabs(wide),
                                        y - 0.5 * std::fabs(high), y + 0.5 * std::fabs(high)),
                    std::fabs(wide * high));
    }
  }
}

}  // namespace

void DrawPanel(const Panel& panel, const Camera& camera, const Glaze& glaze, Sheet& sheet) {
  const Vector3 origin = ToEye(camera, panel.origin);
  const Vector3 across = Turned(camera, panel.across);
  const Vector3 up = Turned(camera, panel.up);
  const double half = 0.5 * panel.texture.Columns() / panel.texture.TexelsPerMetre();
  const double height = panel.texture.Rows() / panel.texture.TexelsPerMetre();
  const Vector3 left = origin - half * across;
  const Vector3 right = origin + half * across;
  const Outline outline(camera, {left, right, right + height * up, left + height * up});
  const Painter painter{panel.texture, glaze, sheet};
  const Meeting meeting(camera, origin, across, up);
  if (across.height == 0 && up.x == 0 && up.z == 0) {
    DrawUpright(painter, outline, meeting);
  } else {
    DrawSlanted(painter, outline, meeting);
  }
}

}  // namespace stopngo
