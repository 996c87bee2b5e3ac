// sheet.h: a sheet of glass that what moves in a scene is painted onto, laid over each row of a frame.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace stopngo {

/// Columns or rows from first to before end.
struct Stretch {
  int first;
  int end;
};

/// For each pixel what it lets through of the light behind it, and what it adds. Later paint lies over
/// earlier paint. Painting outside is ignored.
class Sheet {
 public:
  Sheet(int width, int height);
  /// Clears what was painted.
  void Clear();
  [[nodiscard]] int Width() const { return width_; }
  [[nodiscard]] int Height() const { return height_; }
  /// The part of an interval of pixels that lies inside.
  [[nodiscard]] Stretch Columns(double low, double high) const;
  [[nodiscard]] Stretch Rows(double low, double high) const;
  /// To be called before Blend or Glow for what of a row is going to be painted.
  void Touch(int row, Stretch columns);
  /// tone: grey level times cover.
  void Blend(int row, int column, double cover, double tone) {
    Pane& pane = At(row, column);
    const auto through = static_cast<float>(1 - cover);
    pane.through *= through;
    pane.tone = pane.tone * through + static_cast<float>(tone);
  }
  void Glow(int row, int column, double tone) { At(row, column).tone += static_cast<float>(tone); }
  void DrawRow(int row, std::span<float> light) const;

 private:
  struct Pane {
    float through = 1;
    float tone = 0;
  };
  Pane& At(int row, int column) {
    return panes_[static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                  static_cast<std::size_t>(column)];
  }

  int width_, height_;
  std::vector<Pane> panes_;
  std::vector<Stretch> touched_;  ///< of each row
};

}  // namespace stopngo
