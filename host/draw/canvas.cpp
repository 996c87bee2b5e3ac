// canvas.cpp: shapes, text and images on a Cairo surface.
#include "host/draw/canvas.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <numbers>

#include "host/common/failure.h"

namespace stopngo {
namespace {

void MustDraw(cairo_status_t status) {
  if (status == CAIRO_STATUS_NO_MEMORY) throw std::bad_alloc();
  if (status != CAIRO_STATUS_SUCCESS)
    throw Failure(std::string("a picture: ").append(cairo_status_to_string(status)));
}

using SurfacePtr = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

/// What keeps thin lines and text apart from a picture of any brightness.
constexpr Colour kRim{0.04, 0.05, 0.07, 0.75};

/// RGB24 rather than ARGB32: the picture is opaque, and PNG files come out without an alpha channel.
SurfacePtr NewSurface(int width, int height) {
  SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height), cairo_surface_destroy);
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
    throw Failure("no picture of " + std::to_string(width) + " x " + std::to_string(height) + " can be made");
  }
  return surface;
}

/// A surface over a copy of a grey image; Cairo has no grey format that it draws as grey.
SurfacePtr GreySurface(const GreyImage& image) {
  SurfacePtr surface = NewSurface(image.width, image.height);
  cairo_surface_flush(surface.get());
  auto* row = cairo_image_surface_get_data(surface.get());
  const auto stride = cairo_image_surface_get_stride(surface.get());
  for (int y = 0; y < image.height; ++y, row += stride) {
    const auto* grey = image.pixels.data() + static_cast<std::size_t>(y) * image.width;
    auto* out = reinterpret_cast<std::uint32_t*>(row);
    for (int x = 0; x < image.width; ++x) out[x] = grey[x] * 0x010101U;
  }
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

}  // namespace

Canvas::Canvas(int width, int height)
    : width_(width),
      height_(height),
      surface_(NewSurface(width, height)),
      cairo_(cairo_create(surface_.get()), cairo_destroy) {
  cairo_set_line_cap(Cairo(), CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(Cairo(), CAIRO_LINE_JOIN_ROUND);
}

void Canvas::Image(const GreyImage& image, const Box& box) {
  const SurfacePtr grey = GreySurface(image);
  cairo_save(Cairo());
  cairo_rectangle(Cairo(), box.x, box.y, box.width, box.height);
  cairo_clip(Cairo());
  cairo_translate(Cairo(), box.x, box.y);
  cairo_scale(Cairo(), box.width / image.width, box.height / image.height);
  cairo_set_source_surface(Cairo(), grey.get(), 0, 0);
  // Nearest pixels: enlarged, the picture shows the very pixels that the module works on.
  cairo_pattern_set_filter(cairo_get_source(Cairo()), CAIRO_FILTER_NEAREST);
  cairo_paint(Cairo());
  cairo_restore(Cairo());
}

void Canvas::Path(const Box& box, double radius) {
  cairo_new_path(Cairo());
  if (radius <= 0) {
    cairo_rectangle(Cairo(), box.x, box.y, box.width, box.height);
    return;
  }
  constexpr double kQuarter = std::numbers::pi / 2;
  const Point corners[] = {{box.Right() - radius, box.y + radius},
                           {box.Right() - radius, box.Bottom() - radius},
                           {box.x + radius, box.Bottom() - radius},
                           {box.x + radius, box.y + radius}};
  double angle = -kQuarter;
  for (const Point& corner : corners) {
    cairo_arc(Cairo(), corner.x, corner.y, radius, angle, angle + kQuarter);
    angle += kQuarter;
  }
  cairo_close_path(Cairo());
}

void Canvas::Use(const Colour& colour) {
  cairo_set_source_rgba(Cairo(), colour.red, colour.green, colour.blue, colour.alpha);
}

void Canvas::Stroke(const Colour& colour, double line, double dash) {
  Use(colour);
  cairo_set_line_width(Cairo(), line);
  cairo_set_dash(Cairo(), &dash, dash > 0 ? 1 : 0, 0);
  cairo_stroke(Cairo());
}

void Canvas::Fill(const Box& box, const Colour& colour, double radius) {
  Path(box, std::min({radius, box.width / 2, box.height / 2}));
  Use(colour);
  cairo_fill(Cairo());
}

void Canvas::Outline(const Box& box, const Colour& colour, double line, double dash) {
  Path(box, 0);
  Stroke(colour, line, dash);
}

void Canvas::Line(Point from, Point to, const Colour& colour, double line, double dash) {
  cairo_new_path(Cairo());
  cairo_move_to(Cairo(), from.x, from.y);
  cairo_line_to(Cairo(), to.x, to.y);
  Stroke(colour, line, dash);
}

void Canvas::Dot(Point centre, double radius, const Colour& colour) {
  cairo_new_path(Cairo());
  cairo_arc(Cairo(), centre.x, centre.y, radius, 0, 2 * std::numbers::pi);
  Use(colour);
  cairo_fill(Cairo());
}

void Canvas::Arrow(Point tail, Point head, const Colour& colour, double line) {
  const double length = std::hypot(head.x - tail.x, head.y - tail.y);
  if (length <= 0) return;
  const Point along{(head.x - tail.x) / length, (head.y - tail.y) / length};
  // A head as long as two and a half lines is wide reads as an arrow down to five pixels.
  const double barb = std::min(2.5 * line, 0.6 * length);
  const Point neck{head.x - along.x * barb, head.y - along.y * barb};
  const double half = 0.62 * barb;
  for (const bool rim : {true, false}) {
    const Colour ink = rim ? Colour{kRim.red, kRim.green, kRim.blue, kRim.alpha * colour.alpha} : colour;
    const double rim_width = rim ? 1.3 * line : 0;
    Line(tail, neck, ink, line + rim_width);
    cairo_move_to(Cairo(), head.x, head.y);
    cairo_line_to(Cairo(), neck.x - along.y * half, neck.y + along.x * half);
    cairo_line_to(Cairo(), neck.x + along.y * half, neck.y - along.x * half);
    cairo_close_path(Cairo());
    Use(ink);
    cairo_fill_preserve(Cairo());
    Stroke(ink, 0.4 * line + rim_width, 0);
  }
}

void Canvas::Font(const TextStyle& style) {
  cairo_select_font_face(Cairo(), "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                         style.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(Cairo(), style.size);
}

double Canvas::TextWidth(const std::string& text, const TextStyle& style) {
  Font(style);
  cairo_text_extents_t extents;
  cairo_text_extents(Cairo(), text.c_str(), &extents);
  return extents.x_advance;
}

void Canvas::Text(const std::string& text, Point anchor, const TextStyle& style) {
  const double width = TextWidth(text, style);
  const double shift = style.align == Align::kLeft ? 0 : style.align == Align::kCentre ? width / 2 : width;
  cairo_new_path(Cairo());
  cairo_move_to(Cairo(), anchor.x - shift, anchor.y);
  if (style.halo > 0) {
    cairo_text_path(Cairo(), text.c_str());
    Stroke(kRim, 2 * style.halo, 0);
    cairo_move_to(Cairo(), anchor.x - shift, anchor.y);
  }
  Use(style.colour);
  cairo_show_text(Cairo(), text.c_str());
  cairo_new_path(Cairo());
}

// What could not be drawn for want of memory is missing from the picture, and Cairo goes on without a word.
void Canvas::RefuseIncomplete() const { MustDraw(cairo_status(Cairo())); }

std::span<const std::uint8_t> Canvas::Pixels() const {
  RefuseIncomplete();
  // A row of four-byte pixels needs no padding, so Cairo's stride is the width.
  cairo_surface_flush(surface_.get());
  return {cairo_image_surface_get_data(surface_.get()),
          static_cast<std::size_t>(cairo_image_surface_get_stride(surface_.get())) * height_};
}

void Canvas::WritePng(std::ostream& out) const {
  RefuseIncomplete();
  const auto write = [](void* stream, const unsigned char* data, unsigned int length) {
    auto& sink = *static_cast<std::ostream*>(stream);
    sink.write(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
  };
  MustDraw(cairo_surface_write_to_png_stream(surface_.get(), write, &out));
}

}  // namespace stopngo
