// curve.cpp: what a threshold does: recall against false alarms, as a table and as a plot.
#include "evaluate/curve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "draw/axes.h"
#include "evaluate/figures.h"
#include "host/common/text.h"
#include "host/draw/style.h"

namespace stopngo {
namespace {

constexpr int kWidth = 900;
constexpr int kHeight = 600;
constexpr Box kPlot{80, 50, 780, 470};
constexpr double kHeadroom = 24;  // above 100 %, for names of what lies there
/// Rates run from none to hundreds: nearly even up to the first, by decades beyond.
constexpr double kEven = 0.1;
constexpr std::array kRates{0.0, 0.1, 0.3, 1.0, 3.0, 10.0, 30.0, 100.0, 300.0, 1000.0};

double Across(double rate) {
  const double share = std::log1p(rate / kEven) / std::log1p(kRates.back() / kEven);
  return kPlot.x + kPlot.width * std::min(1.0, share);
}
double Down(double recall) { return kPlot.Bottom() - (kPlot.height - kHeadroom) * recall; }

std::optional<Point> PlaceOf(const Tally& tally) {
  const auto recall = tally.Recall();
  const auto rate = tally.FalseStanding();
  if (!recall || !rate) return std::nullopt;
  return Point{Across(rate->value), Down(recall->value)};
}

void DrawAxes(Canvas& canvas) {
  canvas.Fill({0, 0, kWidth, kHeight}, style::kPaper);
  const TextStyle name{.size = 15, .colour = style::kCurveInk, .align = Align::kCentre, .bold = true};
  std::vector<AxisMark> rates;
  rates.reserve(kRates.size());
  for (const double rate : kRates) rates.push_back({Across(rate), Print("%g", rate)});
  std::vector<AxisMark> recalls;
  for (int tenth = 0; tenth <= 10; ++tenth)
    recalls.push_back({Down(tenth / 10.0), Print("%d %%", 10 * tenth)});
  DrawGrid(
      canvas, kPlot, rates, recalls,
      {.ink = style::kCurveInk, .grid = style::kCurveGrid, .text = 13, .below = 20, .beside = 8, .drop = 5});
  canvas.Text("false alarms per hour of standing", {kPlot.Centre().x, kPlot.Bottom() + 50}, name);
  canvas.Text("departures caught within 3 s", {kPlot.x, kPlot.y - 18},
              {.size = 15, .colour = style::kCurveInk, .bold = true});
}

}  // namespace

void WriteCurve(std::ostream& out, std::span<const CurvePoint> points) {
  out << "threshold\t" << FigureNames() << '\n';
  for (const CurvePoint& point : points) {
    out << Print("%g", point.threshold) << '\t' << FigureValues(point.tally) << '\n';
  }
}

Canvas DrawCurve(std::span<const CurvePoint> points, std::span<const NamedTally> marks) {
  Canvas canvas(kWidth, kHeight);
  DrawAxes(canvas);
  std::optional<Point> last;
  std::optional<Point> labelled;
  for (const CurvePoint& point : points) {
    const std::optional<Point> place = PlaceOf(point.tally);
    if (!place) continue;
    if (last) canvas.Line(*last, *place, style::kNetwork, 2);
    canvas.Dot(*place, 3.5, style::kNetwork);
    // Thresholds that do much the same would write over each other.
    const double below = place->y + 20 < kPlot.Bottom() ? 15 : -8;
    const bool apart = !labelled || std::hypot(place->x - labelled->x, place->y - labelled->y) > 36;
    if (apart) {
      canvas.Text(Print("%g", point.threshold), {place->x + 6, place->y + below},
                  {.size = 12, .colour = style::kNetwork});
      labelled = place;
    }
    last = place;
  }
  for (std::size_t i = 0; i < marks.size(); ++i) {
    const std::optional<Point> place = PlaceOf(marks[i].tally);
    if (!place) continue;
    const Colour colour = style::kOtherDetectors.at(i % style::kOtherDetectors.size());
    canvas.Dot(*place, 6, colour);
    canvas.Text(marks[i].name, {place->x + 10, place->y - 8}, {.size = 13, .colour = colour, .bold = true});
  }
  return canvas;
}

}  // namespace stopngo
