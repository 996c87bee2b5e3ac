// sheet.cpp: laying a sheet over a frame, and wiping it where it was painted.
#include "scene/paint/sheet.h"

#include <algorithm>
#include <cmath>

namespace stopngo {
namespace {

Stretch Clip(double low, double high, int limit) {
  const auto end = static_cast<double>(limit);
  // Written so that an interval that is not a number is empty.
  if (!(low < high)) {
    return {0, 0};
  }
  const auto first = static_cast<int>(std::floor(std::clamp(low, 0.0, end)));
  return {first, std::max(first, static_cast<int>(std::ceil(std::clamp(high, 0.0, end))))};
}

}  // namespace

Sheet::Sheet(int width, int height)
    : width_(width),
      height_(height),
      panes_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      touched_(static_cast<std::size_t>(height), {width, 0}) {}

void Sheet::Clear() {
  for (int row = 0; row < height_; row++) {
    Stretch& touched = touched_[static_cast<std::size_t>(row)];
    if (touched.first < touched.end) {
      Pane* panes = &At(row, 0);
      std::fill(panes + touched.first, panes + touched.end, Pane{});
    }
    touched = {width_, 0};
  }
}

Stretch Sheet::Columns(double low, double high) const { return Clip(low, high, width_); }

Stretch Sheet::Rows(double low, double high) const { return Clip(low, high, height_); }

void Sheet::Touch(int row, Stretch columns) {
  if (columns.first >= columns.end) {
    return;
  }
  Stretch& touched = touched_[static_cast<std::size_t>(row)];
  touched = {std::min(touched.first, columns.first), std::max(touched.end, columns.end)};
}

void Sheet::DrawRow(int row, std::span<float> light) const {
  const Stretch touched = touched_[static_cast<std::size_t>(row)];
  const Pane* panes = panes_.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(width_);
  for (int x = touched.first; x < touched.end; x++) {
    float& value = light[static_cast<std::size_t>(x)];
    value = value * panes[x].through + panes[x].tone;
  }
}

}  // namespace stopngo
