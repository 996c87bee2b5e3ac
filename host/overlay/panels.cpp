// panels.cpp: draws the panels beside the region.
#include "host/overlay/panels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "host/common/text.h"
#include "host/draw/style.h"
#include "host/gates/gates.h"
#include "host/overlay/field.h"
#include "host/settings/gate_kinds.h"

namespace stopngo {
namespace {

/// All lengths inside a panel are for an 800 × 480 picture and multiplied by unit.
constexpr double kPad = 10;
constexpr double kLabel = 11;
constexpr double kSmall = 9.5;

/// A cell's sum that fills its bar: 12 blocks that all move by 3 pixels. Sums reach 84, but those of a
/// vehicle that moves off stay far below, and its bars have to show.
constexpr double kFullSum = 36;

const style::Decision& DecisionStyle(int decision) {
  return style::kDecisions[static_cast<std::size_t>(std::clamp(decision, 0, 2))];
}

TextStyle Label(double unit, double size, const Colour& colour, Align align = Align::kLeft) {
  return {.size = size * unit, .colour = colour, .align = align};
}

void DrawPanel(Canvas& canvas, const Box& box, double unit) { canvas.Fill(box, style::kPanel, 6 * unit); }

void DrawBanner(Canvas& canvas, const Box& box, double unit, const FrameReport& report) {
  const auto& decision = DecisionStyle(report.decision);
  canvas.Fill(box, decision.colour, 4 * unit);
  const double baseline = box.y + 0.5 * box.height + 5 * unit;
  TextStyle text = Label(unit, 14, style::kText);
  text.bold = true;
  canvas.Text(report.decided ? decision.name : "first frame", {box.x + 8 * unit, baseline}, text);
  const std::string when =
      Print("%.2f s", report.time_s) + "   frame " + std::to_string(static_cast<long long>(report.index));
  canvas.Text(when, {box.Right() - 8 * unit, baseline}, Label(unit, kLabel, style::kText, Align::kRight));
}

/// One row of the status panel: name, remark, value and a bar.
struct Gauge {
  const char* name;
  std::string remark;
  std::string value;
  double filled = 0;  ///< 0 to 1
  double mark = -1;   ///< a line across the bar at this part of it; negative: none
  int segments = 0;   ///< the bar is divided; 0: it is not
  Colour colour;
};

void DrawGauge(Canvas& canvas, const Box& box, double unit, const Gauge& gauge) {
  const double baseline = box.y + 12 * unit;
  const TextStyle name = Label(unit, kLabel, style::kText);
  canvas.Text(gauge.name, {box.x, baseline}, name);
  const double remark_x = box.x + canvas.TextWidth(gauge.name, name) + 7 * unit;
  canvas.Text(gauge.remark, {remark_x, baseline}, Label(unit, kSmall, style::kMuted));
  TextStyle value = Label(unit, kLabel, style::kText, Align::kRight);
  value.bold = true;
  canvas.Text(gauge.value, {box.Right(), baseline}, value);

  const Box bar{box.x, box.y + 18 * unit, box.width, 6 * unit};
  canvas.Fill(bar, style::kTrack, 2 * unit);
  const double filled = std::clamp(gauge.filled, 0.0, 1.0);
  if (filled > 0) canvas.Fill({bar.x, bar.y, bar.width * filled, bar.height}, gauge.colour, 2 * unit);
  for (int i = 1; i < gauge.segments; ++i) {
    const double x = bar.x + bar.width * i / gauge.segments;
    canvas.Fill({x - unit, bar.y, 2 * unit, bar.height}, style::kThreshold);
  }
  if (gauge.mark >= 0 && gauge.mark <= 1) {
    const double x = bar.x + bar.width * gauge.mark;
    canvas.Fill({x - unit, bar.y - 3 * unit, 2 * unit, bar.height + 6 * unit}, style::kText);
  }
}

Gauge ScoreGauge(const FrameReport& report, const VEL_STOPNGO_CTX& ctx) {
  const double threshold = ctx.Classifiy;
  return {.name = "Score",
          .remark = Print("threshold %.2f", threshold),
          .value = report.analysed ? Print("%.2f", double{report.score}) : "not analysed",
          .filled = report.analysed ? report.score : 0,
          .mark = threshold,
          .colour = report.score > threshold ? style::kAbove : style::kBelow};
}

/// Which gate holds the alarm back, or how many do: the row is short. Empty: none.
std::string HeldBy(const ClosedGates& closed) {
  const auto held = closed.size() - static_cast<std::size_t>(std::ranges::count(closed, nullptr));
  if (held == 0) return {};
  if (held > 1) return "held by " + std::to_string(held) + " gates";
  const auto only = std::ranges::find_if(closed, [](const char* reason) { return reason != nullptr; });
  return std::string("held by ") + kGateNames.at(static_cast<std::size_t>(only - closed.begin()));
}

/// The counter has to pass TimeLeaving, so the bar is full one above it: at the alarm. A closed gate puts that out of
/// reach.
Gauge CounterGauge(const FrameReport& report, const VEL_STOPNGO_CTX& ctx) {
  const double full = ctx.TimeLeaving + 1.0;
  const std::string held = HeldBy(report.closed);
  // More divisions than this would leave nothing of the bar between them.
  constexpr int kMostSegments = 30;
  return {.name = "Alarm counter",
          .remark = held.empty() ? "alarm above " + std::to_string(ctx.TimeLeaving) : held,
          .value = std::to_string(report.alarm_counter),
          .filled = full > 0 ? report.alarm_counter / full : 0,
          .segments = full <= kMostSegments ? static_cast<int>(full) : 0,
          .colour = style::kAbove};
}

Gauge HoldGauge(const FrameReport& report, const VEL_STOPNGO_CTX& ctx) {
  const bool holding = report.decided && report.hold_timer < ctx.TimeCooling;
  const double cooling = ctx.TimeCooling;
  // A beeping time that is not shorter than the hold leaves no cooling.
  const bool cools = ctx.TimeBeeping < ctx.TimeCooling && ctx.TimeBeeping > 0;
  const std::string end = std::to_string(ctx.TimeCooling);
  return {.name = "Hold timer",
          .remark = cools ? "beeps to " + std::to_string(ctx.TimeBeeping) + ", cools to " + end
                    : ctx.TimeBeeping > 0 ? "beeps to " + end
                                          : "cools to " + end,
          .value = holding ? std::to_string(report.hold_timer) : "off",
          .filled = holding ? report.hold_timer / cooling : 0,
          .mark = cools ? ctx.TimeBeeping / cooling : -1,
          .colour = DecisionStyle(report.decision == 2 ? 2 : 1).colour};
}

/// Eight arrows in the colours of their directions, the four named ones with their names.
void DrawRosette(Canvas& canvas, Point centre, double unit) {
  for (int i = 0; i < 8; ++i) {
    const double angle = i * std::numbers::pi / 4;
    const Point way{std::cos(angle), std::sin(angle)};
    canvas.Arrow({centre.x + 6 * unit * way.x, centre.y + 6 * unit * way.y},
                 {centre.x + 19 * unit * way.x, centre.y + 19 * unit * way.y}, MotionColour(way.x, way.y),
                 2 * unit);
  }
  for (const auto& direction : style::kDirections) {
    const Align align = direction.x == 0 ? Align::kCentre : direction.x > 0 ? Align::kLeft : Align::kRight;
    const double down = direction.y == 0 ? 3 : direction.y > 0 ? 33 : -25;
    canvas.Text(direction.name, {centre.x + 24 * unit * direction.x, centre.y + down * unit},
                Label(unit, kSmall, direction.colour, align));
  }
}

/// A cross of four bars, as long as the cell's sums.
void DrawCell(Canvas& canvas, const Box& box, double unit, const inte_08* sums) {
  canvas.Fill(box, style::kCell, 2 * unit);
  const Point centre = box.Centre();
  // The bars leave a square free in the middle, so that none hides another's start.
  const double gap = 0.95 * unit;
  const double reach = std::min(box.width, box.height) / 2 - gap;
  canvas.Fill({centre.x - gap / 2, centre.y - gap / 2, gap, gap}, style::kTrack);
  for (const auto& direction : style::kDirections) {
    // By the square root, so that one block on its own already shows.
    const double length = reach * std::sqrt(std::clamp(*sums++ / kFullSum, 0.0, 1.0));
    if (length <= 0) continue;
    // Never wider than long: which way a bar points has to show.
    const double half = std::min(0.95 * unit, 0.3 * length);
    const Point middle{centre.x + direction.x * (gap + length / 2),
                       centre.y + direction.y * (gap + length / 2)};
    const double half_x = direction.x == 0 ? half : length / 2;
    const double half_y = direction.y == 0 ? half : length / 2;
    canvas.Fill({middle.x - half_x, middle.y - half_y, 2 * half_x, 2 * half_y}, direction.colour);
  }
}

void DrawSums(Canvas& canvas, const Box& box, double unit, const FrameReport& report,
              const VEL_STOPNGO_CTX& ctx) {
  if (!report.analysed || !GridFits(ctx) || ctx.SumX * ctx.SumY == 0) {
    canvas.Text("not analysed", {box.Centre().x, box.Centre().y + 4 * unit},
                Label(unit, kLabel, style::kMuted, Align::kCentre));
    return;
  }
  const double width = box.width / ctx.SumX;
  const double height = box.height / ctx.SumY;
  const inte_08* sums = ctx.MotionChunk;
  for (DATA_32 row = 0; row < ctx.SumY; ++row) {
    for (DATA_32 column = 0; column < ctx.SumX; ++column, sums += 4) {
      const Box cell{box.x + column * width, box.y + row * height, width, height};
      DrawCell(canvas, cell.Grown(-unit), unit, sums);
    }
  }
}

/// Places of the strip: when a report is, how high a score is.
struct StripScale {
  Box plot;
  double now;
  double seconds;
  double frame_s;

  [[nodiscard]] double X(double time_s) const {
    const double x = plot.Right() - (now + frame_s - time_s) / seconds * plot.width;
    return std::clamp(x, plot.x, plot.Right());
  }
  [[nodiscard]] double Y(double score) const {
    return plot.Bottom() - std::clamp(score, 0.0, 1.0) * plot.height;
  }
  [[nodiscard]] Box Column(double from_s, double to_s, double top) const {
    return {X(from_s), top, X(to_s) - X(from_s), plot.Bottom() - top};
  }
};

void DrawSeconds(Canvas& canvas, const StripScale& scale, double unit) {
  // Whole seconds, thinned out so that the numbers do not touch.
  const double step = std::max(1.0, std::ceil(scale.seconds / 12));
  const double oldest = std::max(0.0, scale.now + scale.frame_s - scale.seconds);
  const auto last = static_cast<std::int64_t>(scale.now / step);
  for (auto i = static_cast<std::int64_t>(std::ceil(oldest / step)); i <= last; ++i) {
    const double t = static_cast<double>(i) * step;
    const double x = scale.X(t);
    canvas.Line({x, scale.plot.y}, {x, scale.plot.Bottom()}, style::kTrack, 0.8 * unit);
    // A number at the very edge would stick out of the panel.
    if (x < scale.plot.x + 8 * unit || x > scale.plot.Right() - 8 * unit) continue;
    canvas.Text(Print("%.0f s", t), {x, scale.plot.Bottom() + 11 * unit},
                Label(unit, kSmall, style::kMuted, Align::kCentre));
  }
}

/// The scores as columns that touch, so that a strip of many frames reads as an area.
void DrawScores(Canvas& canvas, const StripScale& scale, const std::deque<FrameReport>& reports,
                double threshold, double unit) {
  // Columns share their edges: without this, every edge would show as a faint line.
  cairo_set_antialias(canvas.Cairo(), CAIRO_ANTIALIAS_NONE);
  for (auto report = reports.begin(); report != reports.end(); ++report) {
    // To the next frame, which is not always the same time away: a rate picks the nearest frames.
    const auto next = report + 1;
    const double end = next != reports.end() ? next->time_s : report->time_s + scale.frame_s;
    if (report->decision != 0) {
      Colour shade = DecisionStyle(report->decision).colour;
      shade.alpha = 0.45;
      canvas.Fill(scale.Column(report->time_s, end, scale.plot.y), shade);
    }
    if (!report->analysed) continue;
    // The lowest scores keep a base line: a gap means that nothing was analysed.
    const double top = std::min(scale.Y(report->score), scale.plot.Bottom() - unit);
    canvas.Fill(scale.Column(report->time_s, end, top),
                report->score > threshold ? style::kAbove : style::kBelow);
  }
  cairo_set_antialias(canvas.Cairo(), CAIRO_ANTIALIAS_DEFAULT);
}

}  // namespace

void DrawStatus(Canvas& canvas, const Box& box, double unit, const FrameReport& report,
                const VEL_STOPNGO_CTX& ctx) {
  DrawPanel(canvas, box, unit);
  DrawBanner(canvas, {box.x + 5 * unit, box.y + 5 * unit, box.width - 10 * unit, 24 * unit}, unit, report);
  Box row{box.x + kPad * unit, box.y + 31 * unit, box.width - 2 * kPad * unit, 28 * unit};
  for (const Gauge& gauge : {ScoreGauge(report, ctx), CounterGauge(report, ctx), HoldGauge(report, ctx)}) {
    DrawGauge(canvas, row, unit, gauge);
    row.y += row.height;
  }
}

void DrawMotion(Canvas& canvas, const Box& box, double unit, const FrameReport& report,
                const VEL_STOPNGO_CTX& ctx) {
  DrawPanel(canvas, box, unit);
  const double sums_x = box.x + 112 * unit;
  const double title = box.y + 18 * unit;
  canvas.Text("Motion by block", {box.x + kPad * unit, title}, Label(unit, kLabel, style::kText));
  canvas.Text("Sums by cell", {sums_x, title}, Label(unit, kLabel, style::kText));
  DrawRosette(canvas, {box.x + 54 * unit, box.y + 69 * unit}, unit);
  const double top = box.y + 25 * unit;
  DrawSums(canvas, {sums_x, top, box.Right() - kPad * unit - sums_x, box.Bottom() - kPad * unit - top}, unit,
           report, ctx);
}

void DrawStrip(Canvas& canvas, const Box& box, double unit, const Strip& strip, const VEL_STOPNGO_CTX& ctx) {
  DrawPanel(canvas, box, unit);
  const StripScale scale{.plot = {box.x + 46 * unit, box.y + 8 * unit, box.width - (46 + 36) * unit,
                                  box.height - (8 + 17) * unit},
                         .now = strip.reports.empty() ? 0 : strip.reports.back().time_s,
                         .seconds = strip.seconds,
                         .frame_s = strip.frame_s};
  const double threshold = ctx.Classifiy;
  canvas.Fill(scale.plot, style::kStrip);
  DrawSeconds(canvas, scale, unit);
  DrawScores(canvas, scale, strip.reports, threshold, unit);
  canvas.Line({scale.plot.x, scale.Y(threshold)}, {scale.plot.Right(), scale.Y(threshold)}, style::kText,
              unit, 4 * unit);
  canvas.Text(Print("%.2f", threshold), {scale.plot.Right() + 5 * unit, scale.Y(threshold) + 3.5 * unit},
              Label(unit, kSmall, style::kText));
  canvas.Text("Score", {box.x + kPad * unit, scale.plot.Centre().y + 4 * unit},
              Label(unit, kLabel, style::kText));
}

}  // namespace stopngo
