// plot.cpp: curves over two axes.
#include "draw/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace stopngo {
namespace {

constexpr int kWidth = 860;
constexpr int kHeight = 480;
constexpr Colour kPaper = Colour::Hex(0xffffff);
constexpr Colour kInk = Colour::Hex(0x222222);
constexpr Colour kGrid = Colour::Hex(0xdddddd);
constexpr double kText = 13;  // pixels

// The colours of Okabe and Ito (2008), "Color Universal Design", without yellow, which is lost on white.
constexpr std::array kColours{0x0072b2U, 0xd55e00U, 0x009e73U, 0xcc79a7U, 0x56b4e9U, 0xe69f00U};

std::string Number(double value) {
  std::ostringstream text;
  text.precision(4);
  text << (std::fabs(value) < 1e-12 ? 0.0 : value);
  return text.str();
}

/// Where an axis has its marks: at 1, 2 or 5 times a power of ten, or at each power.
std::vector<double> Marks(const PlotAxis& axis) {
  std::vector<double> marks;
  if (axis.logarithmic) {
    for (double mark = std::pow(10, std::ceil(std::log10(axis.low))); mark <= axis.high * 1.0001; mark *= 10)
      marks.push_back(mark);
    return marks;
  }
  const double span = axis.high - axis.low;
  const double power = std::pow(10, std::floor(std::log10(span / 5)));
  const double ratio = span / 5 / power;
  const double step = power * (ratio < 1.5 ? 1 : ratio < 3.5 ? 2 : ratio < 7.5 ? 5 : 10);
  for (double mark = std::ceil(axis.low / step) * step; mark <= axis.high + 0.001 * step; mark += step)
    marks.push_back(mark);
  return marks;
}

double Share(const PlotAxis& axis, double value) {
  if (!axis.logarithmic) return (value - axis.low) / (axis.high - axis.low);
  return std::log(std::max(value, axis.low) / axis.low) / std::log(axis.high / axis.low);
}

Point Place(const Plot& plot, const Box& area, Point value) {
  return {area.x + area.width * std::clamp(Share(plot.x, value.x), 0.0, 1.0),
          area.Bottom() - area.height * std::clamp(Share(plot.y, value.y), 0.0, 1.0)};
}

void DrawAxes(Canvas& canvas, const Box& area, const Plot& plot) {
  for (const double mark : Marks(plot.x)) {
    const double x = area.x + area.width * Share(plot.x, mark);
    canvas.Line({x, area.y}, {x, area.Bottom()}, kGrid, 1);
    canvas.Text(Number(mark), {x, area.Bottom() + 18}, {kText, kInk, Align::kCentre});
  }
  for (const double mark : Marks(plot.y)) {
    const double y = area.Bottom() - area.height * Share(plot.y, mark);
    canvas.Line({area.x, y}, {area.Right(), y}, kGrid, 1);
    canvas.Text(Number(mark), {area.x - 6, y + 4}, {kText, kInk, Align::kRight});
  }
  canvas.Outline(area, kInk, 1);
  canvas.Text(plot.title, {area.x, area.y - 26}, {kText + 3, kInk, Align::kLeft, true});
  canvas.Text(plot.x.title, {area.Right(), area.Bottom() + 38}, {kText, kInk, Align::kRight});
  canvas.Text(plot.y.title, {area.x, area.y - 8}, {kText, kInk});
}

void DrawSeries(Canvas& canvas, const Box& area, const Plot& plot, const PlotSeries& series) {
  for (std::size_t i = 0; i < series.points.size(); i++) {
    const Point at = Place(plot, area, series.points[i]);
    if (series.line && i > 0) canvas.Line(Place(plot, area, series.points[i - 1]), at, series.colour, 2);
    if (series.dots) canvas.Dot(at, 3.5, series.colour);
  }
}

}  // namespace

Colour PlotColour(std::size_t index) { return Colour::Hex(kColours[index % kColours.size()]); }

void DrawPlot(Canvas& canvas, const Box& box, const Plot& plot) {
  canvas.Fill(box, kPaper);
  const Box area{box.x + 64, box.y + 56, box.width - 250, box.height - 106};
  DrawAxes(canvas, area, plot);
  double y = area.y + 12;
  for (const PlotSeries& series : plot.series) {
    DrawSeries(canvas, area, plot, series);
    if (series.name.empty()) continue;
    canvas.Line({area.Right() + 14, y - 4}, {area.Right() + 34, y - 4}, series.colour, 3);
    canvas.Text(series.name, {area.Right() + 40, y}, {kText, kInk});
    y += 20;
  }
}

bool WritePlot(std::ostream& out, const Plot& plot) {
  Canvas canvas(kWidth, kHeight);
  DrawPlot(canvas, {0, 0, kWidth, kHeight}, plot);
  return canvas.WritePng(out);
}

}  // namespace stopngo
