// sheets.cpp: what tests of painting draw on, and what they see of it.
#include "sheets.h"

#include <algorithm>
#include <cstddef>

#include "scene/recipe/recipe.h"

namespace stopngo::test {

Camera TestCamera() {
  SceneOptions options;
  options.width = kWidth;
  options.height = kHeight;
  return WaitingCamera(options);
}

std::vector<float> Laid(const Sheet& sheet, float light) {
  std::vector<float> picture;
  std::vector<float> row(static_cast<std::size_t>(sheet.Width()));
  for (int y = 0; y < sheet.Height(); y++) {
    std::fill(row.begin(), row.end(), light);
    sheet.DrawRow(y, row);
    picture.insert(picture.end(), row.begin(), row.end());
  }
  return picture;
}

Cover CoverOf(const Sheet& sheet) {
  const auto dark = Laid(sheet, 0);
  const auto bright = Laid(sheet, 1);
  Cover cover;
  for (std::size_t i = 0; i < dark.size(); i++) {
    const double share = 1 - static_cast<double>(bright[i] - dark[i]);
    cover.pixels += share;
    cover.column += share * (static_cast<double>(i % static_cast<std::size_t>(sheet.Width())) + 0.5);
    const std::size_t row = i / static_cast<std::size_t>(sheet.Width());
    cover.row += share * (static_cast<double>(row) + 0.5);
  }
  cover.column /= cover.pixels;
  cover.row /= cover.pixels;
  return cover;
}

}  // namespace stopngo::test
