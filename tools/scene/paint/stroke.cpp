// stroke.cpp: the share of each pixel that a shape covers, from the distance to its edge.
#include "scene/paint/stroke.h"

#include <algorithm>
#include <cmath>

namespace stopngo {
namespace {

/// Of a band from -half to half, at a distance from its middle.
double CoverOfBand(double distance, double half, double blur) {
  const auto reached = [blur](double inside) { return std::clamp(inside / blur + 0.5, 0.0, 1.0); };
  return reached(half - distance) - reached(-half - distance);
}

/// How many half heights and half widths away from the middle, and how quickly that grows a pixel.
struct Around {
  double distance;
  double slope;
};

Around At(const Oval& oval, double dx, double dy) {
  const double x = dx / oval.half_width;
  const double y = dy / oval.half_height;
  const double distance = std::sqrt(x * x + y * y);
  if (distance < 1e-6) {
    return {0, 1 / std::min(oval.half_width, oval.half_height)};
  }
  const double gx = x / oval.half_width;
  const double gy = y / oval.half_height;
  return {distance, std::sqrt(gx * gx + gy * gy) / distance};
}

/// The part of a row between two limits.
double RowShare(const Oval& oval, int row) {
  return std::max(0.0,
                  std::min(oval.end_row, row + 1.0) - std::max(oval.first_row, static_cast<double>(row)));
}

/// paint: cover of the pixel at a place around the oval's middle.
template <typename Cover>
void Draw(const Oval& oval, double reach, const Ink& ink, Sheet& sheet, Cover cover) {
  const Stretch rows = sheet.Rows(std::max(oval.row - oval.half_height - reach, oval.first_row),
                                  std::min(oval.row + oval.half_height + reach, oval.end_row));
  const Stretch columns =
      sheet.Columns(oval.column - oval.half_width - reach, oval.column + oval.half_width + reach);
  for (int row = rows.first; row < rows.end; row++) {
    sheet.Touch(row, columns);
    const double opacity = ink.opacity * std::min(1.0, RowShare(oval, row));
    for (int column = columns.first; column < columns.end; column++) {
      const double share = opacity * cover(At(oval, column + 0.5 - oval.column, row + 0.5 - oval.row));
      if (share > 0) {
        sheet.Blend(row, column, share, share * ink.tone);
      }
    }
  }
}

}  // namespace

void DrawLimb(const Dab& from, const Dab& to, const Ink& ink, Sheet& sheet) {
  const double dx = to.column - from.column;
  const double dy = to.row - from.row;
  const double length2 = std::max(dx * dx + dy * dy, 1e-9);
  const double reach = std::max(from.radius, to.radius) + 0.5 * ink.blur + 0.5;
  const Stretch rows = sheet.Rows(std::min(from.row, to.row) - reach, std::max(from.row, to.row) + reach);
  for (int row = rows.first; row < rows.end; row++) {
    // The part of the middle line that can reach this row.
    const auto share_at = [&](double y) {
      return std::fabs(dy) < 1e-9 ? 0.5 : std::clamp((y - from.row) / dy, 0.0, 1.0);
    };
    const double one = std::fabs(dy) < 1e-9 ? 0 : share_at(row + 0.5 - reach);
    const double two = std::fabs(dy) < 1e-9 ? 1 : share_at(row + 0.5 + reach);
    const double x1 = from.column + one * dx;
    const double x2 = from.column + two * dx;
    const Stretch columns = sheet.Columns(std::min(x1, x2) - reach, std::max(x1, x2) + reach);
    sheet.Touch(row, columns);
    for (int column = columns.first; column < columns.end; column++) {
      const double px = column + 0.5 - from.column;
      const double py = row + 0.5 - from.row;
      const double along = std::clamp((px * dx + py * dy) / length2, 0.0, 1.0);
      const double ox = px - along * dx;
      const double oy = py - along * dy;
      const double half = from.radius + along * (to.radius - from.radius);
      const double cover = ink.opacity * CoverOfBand(std::sqrt(ox * ox + oy * oy), half, ink.blur);
      if (cover > 0) {
        sheet.Blend(row, column, cover, cover * ink.tone);
      }
    }
  }
}

void DrawOval(const Oval& oval, const Ink& ink, Sheet& sheet) {
  Oval drawn = oval;
  Ink thinned = ink;
  // What is thinner than a pixel is drawn a pixel wide and that much fainter.
  const auto widen = [&thinned](double& half) {
    if (half < 0.5) {
      thinned.opacity *= half / 0.5;
      half = 0.5;
    }
  };
  widen(drawn.half_width);
  widen(drawn.half_height);
  Draw(drawn, 0.5 * ink.blur + 0.5, thinned, sheet, [blur = ink.blur](Around around) {
    return std::clamp((1 - around.distance) / (around.slope * blur) + 0.5, 0.0, 1.0);
  });
}

void DrawRing(const Oval& oval, double thickness, const Ink& ink, Sheet& sheet) {
  Oval drawn = oval;
  drawn.half_width = std::max(drawn.half_width, 0.5);
  drawn.half_height = std::max(drawn.half_height, 0.5);
  Draw(drawn, 0.5 * (thickness + ink.blur) + 0.5, ink, sheet,
       [half = 0.5 * thickness, blur = ink.blur](Around around) {
         return CoverOfBand(std::fabs(1 - around.distance) / around.slope, half, blur);
       });
}

void DrawGlow(const Dab& middle, double tone, Sheet& sheet) {
  const double radius = std::max(middle.radius, 1.5);
  const double level = tone * (middle.radius / radius) * (middle.radius / radius);
  const Stretch rows = sheet.Rows(middle.row - radius, middle.row + radius);
  const Stretch columns = sheet.Columns(middle.column - radius, middle.column + radius);
  for (int row = rows.first; row < rows.end; row++) {
    sheet.Touch(row, columns);
    for (int column = columns.first; column < columns.end; column++) {
      const double x = (column + 0.5 - middle.column) / radius;
      const double y = (row + 0.5 - middle.row) / radius;
      const double inside = 1 - x * x - y * y;
      if (inside > 0) {
        sheet.Glow(row, column, level * inside * inside * inside);
      }
    }
  }
}

}  // namespace stopngo
