// texture.h: a flat painted picture that can be drawn at any scale without aliasing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace stopngo {

/// A box with rounded corners that may narrow upwards. Metres from the middle of the lower edge.
struct Shape {
  double centre;  ///< unless 0, a second one stands mirrored on the other side
  double low, high;
  double half_bottom;  ///< half of the width
  double half_top;
  double radius;
  double tone_bottom, tone_top;  ///< grey levels
  double opacity = 1;
  double lamp = 0;  ///< grey levels that are added while the brakes are on
};

/// A point of an outline: half of the width at a height.
struct OutlinePoint {
  double height;
  double half_width;
};

/// A point of a painting: metres to the right of its middle and above its lower edge.
struct PaintPoint {
  double across;
  double height;
};

/// What a texture holds of each point, or the sum of it over many points.
struct Texel {
  double tone = 0;   ///< grey level times coverage
  double cover = 0;  ///< 0 … 1
  double lamp = 0;
};

inline Texel operator+(const Texel& a, const Texel& b) {
  return {a.tone + b.tone, a.cover + b.cover, a.lamp + b.lamp};
}
inline Texel operator-(const Texel& a, const Texel& b) {
  return {a.tone - b.tone, a.cover - b.cover, a.lamp - b.lamp};
}
inline Texel operator*(double s, const Texel& a) { return {s * a.tone, s * a.cover, s * a.lamp}; }

/// Painted first, then sealed: from then on it keeps sums over all texels below and left of a point,
/// from which the exact mean over any rectangle follows in four look-ups.
class Texture {
 public:
  Texture(double half_width, double height, double texels_per_metre);
  void Fill(std::span<const OutlinePoint> outline, double tone_bottom, double tone_top);
  /// A polygon of any shape that no edge of crosses another.
  void FillPolygon(std::span<const PaintPoint> corners, double tone_bottom, double tone_top);
  void Paint(const Shape& shape);
  /// Paints it once, with its middle at centre.
  void PaintOne(const Shape& shape, double centre);
  /// Dirt and scratches: noise on all that is painted.
  void Roughen(double amplitude, std::uint32_t seed);
  void Seal();

  [[nodiscard]] double TexelsPerMetre() const { return per_metre_; }
  [[nodiscard]] double Centre() const { return 0.5 * static_cast<double>(columns_); }
  [[nodiscard]] double Columns() const { return static_cast<double>(columns_); }
  [[nodiscard]] double Rows() const { return static_cast<double>(rows_); }
  /// For each column the sum over all columns left of it and the rows from low to high (texels from
  /// the lower edge). Only what SumColumns needs between two columns is worked out.
  void SumRows(double low, double high, double left, double right, std::vector<Texel>& sums) const;
  /// The sum over a rectangle (texels from the left and the lower edge), of which any part may lie outside.
  [[nodiscard]] Texel Sum(double left, double right, double low, double high) const {
    const Strip strip(*this, left, right);
    return strip.Below(high) - strip.Below(low);
  }

  /// A place between whole columns or rows, of which there are so many.
  struct Edge {
    Edge(double place, std::size_t count);
    std::size_t whole;
    double share;
  };
  /// The texels between two columns.
  class Strip {
   public:
    Strip(const Texture& texture, double left, double right)
        : texture_(texture), left_(left, texture.columns_), right_(right, texture.columns_) {}
    /// The sum over the rows below one, which may lie outside.
    [[nodiscard]] Texel Below(double row) const;

   private:
    const Texture& texture_;
    Edge left_, right_;
  };
  /// The sum left of a column, of what SumRows gave.
  static Texel SumColumns(const std::vector<Texel>& sums, double column);

 private:
  /// The sums below a row.
  [[nodiscard]] const Texel* Line(const Edge& row) const {
    return texels_.data() + row.whole * (columns_ + 1);
  }
  void Blend(std::size_t row, std::size_t column, double tone, double alpha, double lamp);

  double per_metre_;
  std::size_t columns_, rows_;
  std::vector<Texel> texels_;  ///< lowest row first; sealed: (columns + 1) × (rows + 1) sums
};

}  // namespace stopngo
