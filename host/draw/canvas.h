// canvas.h: a picture to draw on with Cairo: a grey frame underneath, shapes and text above it.
#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <string>

namespace stopngo {

struct Colour {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  /// From 0xRRGGBB.
  static constexpr Colour Hex(std::uint32_t rgb, double alpha = 1) {
    return {((rgb >> 16) & 255) / 255.0, ((rgb >> 8) & 255) / 255.0, (rgb & 255) / 255.0, alpha};
  }
};

struct Point {
  double x = 0;
  double y = 0;
};

struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  [[nodiscard]] double Right() const { return x + width; }
  [[nodiscard]] double Bottom() const { return y + height; }
  [[nodiscard]] Point Centre() const { return {x + width / 2, y + height / 2}; }
  [[nodiscard]] Box Grown(double margin) const {
    return {x - margin, y - margin, width + 2 * margin, height + 2 * margin};
  }
};

/// A packed grey image, one byte a pixel, that is drawn and not kept.
struct GreyImage {
  std::span<const std::uint8_t> pixels;
  int width = 0;
  int height = 0;
};

enum class Align { kLeft, kCentre, kRight };

struct TextStyle {
  double size = 12;  ///< pixels
  Colour colour;
  Align align = Align::kLeft;
  bool bold = false;
  double halo = 0;  ///< width of a dark rim for text that stands on the picture itself, pixels
};

class Canvas {
 public:
  Canvas(int width, int height);

  [[nodiscard]] int Width() const { return width_; }
  [[nodiscard]] int Height() const { return height_; }

  /// Fills box with an image.
  void Image(const GreyImage& image, const Box& box);
  void Fill(const Box& box, const Colour& colour, double radius = 0);
  void Outline(const Box& box, const Colour& colour, double line, double dash = 0);
  void Line(Point from, Point to, const Colour& colour, double line, double dash = 0);
  void Dot(Point centre, double radius, const Colour& colour);
  /// An arrow from tail to head, with a dark rim that keeps it apart from any background.
  void Arrow(Point tail, Point head, const Colour& colour, double line);
  /// anchor: on the baseline, at the left end, the middle or the right end.
  void Text(const std::string& text, Point anchor, const TextStyle& style);
  [[nodiscard]] double TextWidth(const std::string& text, const TextStyle& style);
  /// The drawing context, for paths that the shapes above do not cover.
  [[nodiscard]] cairo_t* Cairo() const { return cairo_.get(); }

  /// Blue, green, red and an unused byte a pixel, rows without padding. Throws when something could not be drawn.
  [[nodiscard]] std::span<const std::uint8_t> Pixels() const;
  /// Throws when something could not be drawn. What out could not take its owner knows.
  void WritePng(std::ostream& out) const;

 private:
  void RefuseIncomplete() const;
  void Path(const Box& box, double radius);
  void Use(const Colour& colour);
  void Stroke(const Colour& colour, double line, double dash);
  void Font(const TextStyle& style);

  int width_;
  int height_;
  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_;
  std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cairo_;
};

}  // namespace stopngo
