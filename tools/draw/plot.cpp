// plot.cpp: curves over two axes.
#include "draw/plot.h"

#include <algorithm>
#include <cmath>

#include "draw/axes.h"
#include "host/common/text.h"
#include "host/draw/style.h"

namespace stopngo {
namespace {

constexpr int kWidth = 860;
constexpr int kHeight = 480;
constexpr double kText = 13;  // pixels

std::string Number(double value) { return Print("%.4g", std::fabs(value) < 1e-12 ? 0.0 : value); }

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

std::vector<AxisMark> Placed(const PlotAxis& axis, double from, double length) {
  std::vector<AxisMark> marks;
  for (const double mark : Marks(axis)) marks.push_back({from + length * Share(axis, mark), Number(mark)});
  return marks;
}

void DrawAxes(Canvas& canvas, const Box& area, const Plot& plot) {
  DrawGrid(
      canvas, area, Placed(plot.x, area.x, area.width), Placed(plot.y, area.Bottom(), -area.height),
      {.ink = style::kPlotInk, .grid = style::kPlotGrid, .text = kText, .below = 18, .beside = 6, .drop = 4});
  canvas.Text(plot.title, {area.x, area.y - 26}, {kText + 3, style::kPlotInk, Align::kLeft, true});
  canvas.Text(plot.x.title, {area.Right(), area.Bottom() + 38}, {kText, style::kPlotInk, Align::kRight});
  canvas.Text(plot.y.title, {area.x, area.y - 8}, {kText, style::kPlotInk});
}

void DrawSeries(Canvas& canvas, const Box& area, const Plot& plot, const PlotSeries& series) {
  for (std::size_t i = 0; i < series.points.size(); i++) {
    const Point at = Place(plot, area, series.points[i]);
    if (series.line && i > 0) canvas.Line(Place(plot, area, series.points[i - 1]), at, series.colour, 2);
    if (series.dots) canvas.Dot(at, 3.5, series.colour);
  }
}

}  // namespace

void DrawPlot(Canvas& canvas, const Box& box, const Plot& plot) {
  canvas.Fill(box, style::kPaper);
  const Box area{box.x + 64, box.y + 56, box.width - 250, box.height - 106};
  DrawAxes(canvas, area, plot);
  double y = area.y + 12;
  for (const PlotSeries& series : plot.series) {
    DrawSeries(canvas, area, plot, series);
    if (series.name.empty()) continue;
    canvas.Line({area.Right() + 14, y - 4}, {area.Right() + 34, y - 4}, series.colour, 3);
    canvas.Text(series.name, {area.Right() + 40, y}, {kText, style::kPlotInk});
    y += 20;
  }
}

void WritePlot(std::ostream& out, const Plot& plot) {
  Canvas canvas(kWidth, kHeight);
  DrawPlot(canvas, {0, 0, kWidth, kHeight}, plot);
  canvas.WritePng(out);
}

}  // namespace stopngo
