// overlay.cpp: puts a frame, the region with its vectors, and the panels together.
#include "host/overlay/overlay.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "host/draw/style.h"
#include "host/overlay/field.h"
#include "host/overlay/panels.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

/// The picture that sizes are given for.
constexpr double kDesignWidth = 800;
constexpr double kDesignHeight = 480;
constexpr double kMargin = 8;

/// Blocks below this size, in pixels of an 800 × 480 picture, leave no room for an arrow: the analysis
/// buffer is then shown apart, enlarged. So it is when no part of the frame can be said to fill it.
constexpr double kSmallestBlock = 7;
constexpr double kLensWidth = 220;
constexpr double kLensTitle = 20;

double Overlap(const Box& a, const Box& b) {
  const double width = std::min(a.Right(), b.Right()) - std::max(a.x, b.x);
  const double height = std::min(a.Bottom(), b.Bottom()) - std::max(a.y, b.y);
  return std::max(width, 0.0) * std::max(height, 0.0);
}

/// Finds places for panels beside each other and beside what has to stay visible.
class PanelLayout {
 public:
  PanelLayout(const Canvas& canvas, double unit, std::vector<Box> taken)
      : picture_{0, 0, static_cast<double>(canvas.Width()), static_cast<double>(canvas.Height())},
        margin_(kMargin * unit),
        taken_(std::move(taken)) {}

  /// The first of the usual places that is free, else the one that hides least. Places go round the
  /// picture from the top left corner; a strip as wide as the picture has but two, the lower one first.
  Box Place(double width, double height) {
    const double left = margin_;
    const double centre = (picture_.width - width) / 2;
    const double right = picture_.width - margin_ - width;
    const double top = margin_;
    const double middle = (picture_.height - height) / 2;
    const double bottom = picture_.height - margin_ - height;
    // Above or below a strip that lies along the edge.
    const double strip = strip_height_ > 0 ? strip_height_ + margin_ : 0;
    std::vector<Point> places;
    for (const double inset : {0.0, strip}) {
      for (const Point& place :
           {Point{left, top + inset}, Point{right, top + inset}, Point{left, bottom - inset},
            Point{right, bottom - inset}, Point{left, middle}, Point{right, middle},
            Point{centre, top + inset}, Point{centre, bottom - inset}}) {
        places.push_back(place);
      }
    }
    return Best(places, width, height);
  }

  Box PlaceStrip(double height) {
    strip_height_ = height;
    return Best({{margin_, picture_.height - margin_ - height}, {margin_, margin_}},
                picture_.width - 2 * margin_, height);
  }

 private:
  Box Best(const std::vector<Point>& places, double width, double height) {
    Box best;
    double least = -1;
    for (const Point& place : places) {
      const Box box{place.x, place.y, width, height};
      double hidden = 0;
      // Half a margin of air keeps neighbours apart.
      for (const Box& other : taken_) hidden += Overlap(box.Grown(margin_ / 2), other);
      if (least >= 0 && hidden >= least) continue;
      best = box;
      least = hidden;
    }
    taken_.push_back(best);
    return best;
  }

  Box picture_;
  double margin_;
  double strip_height_ = 0;
  std::vector<Box> taken_;
};

/// The region in the frame's pixels. Its coordinates are those of the working size; frames of
/// 1920 × 1080 and 1280 × 720 stand for a working size of 800 × 480 whatever the settings say.
Box RegionBox(const VEL_STOPNGO_CTX& ctx, const LumaView& frame) {
  const bool original = OriginalSize(ctx.originalSize, static_cast<int>(ctx.EndXInput)).has_value();
  const double x = original ? frame.width / kDesignWidth : 1;
  const double y = original ? frame.height / kDesignHeight : 1;
  return {ctx.ROI_X * x, ctx.ROI_Y * y, ctx.EndX * x, ctx.EndY * y};
}

void DrawRegion(Canvas& canvas, const Box& region, double unit, const FrameReport& report) {
  const Colour colour =
      report.decision == 0 ? style::kText
                           : style::kDecisions[static_cast<std::size_t>(std::min(report.decision, 2))].colour;
  // Wholly outside the region, the dark rim too, so that no pixel of it is hidden.
  const double line = 2 * unit;
  const double rim = unit;
  const Box middle = region.Grown(line / 2 + rim);
  canvas.Outline(middle, style::kRim, line + 2 * rim);
  canvas.Outline(middle, colour, line);
}

/// Names the region, above it or, where there is no room, below; gives the part of the picture that
/// region and name take.
Box DrawTag(Canvas& canvas, const Box& region, bool sampled_apart, double unit) {
  const TextStyle look{.size = 11 * unit, .colour = style::kText, .halo = 1.6 * unit};
  const std::string text = sampled_apart ? "region (dashed: sampled part)" : "region of interest";
  const double height = 16 * unit;
  const bool above = region.y >= height;
  const double x = std::min(region.x, canvas.Width() - canvas.TextWidth(text, look) - 4 * unit);
  canvas.Text(text, {std::max(x, 2 * unit), above ? region.y - 6 * unit : region.Bottom() + 14 * unit}, look);
  const Box taken{region.x, above ? region.y - height : region.y, region.width, region.height + height};
  return taken.Grown(3 * unit);
}

/// The analysis buffer as the module holds it: cropped, enlarged and filtered.
void DrawLens(Canvas& canvas, const Box& box, double unit, const FrameReport& report,
              const VEL_STOPNGO_CTX& ctx) {
  canvas.Fill(box, style::kPanel, 6 * unit);
  canvas.Text("What the module analyses", {box.x + 8 * unit, box.y + 14 * unit},
              {.size = 11 * unit, .colour = style::kText});
  const Box buffer{box.x + 4 * unit, box.y + kLensTitle * unit, box.width - 8 * unit,
                   box.height - (kLensTitle + 4) * unit};
  const data_08* pixels = ctx.FrameNew != nullptr ? ctx.FrameNew : ctx.FrameOld;
  if (pixels != nullptr) {
    canvas.Image({.pixels = {pixels, static_cast<std::size_t>(ctx.EndY) * ctx.EndX},
                  .width = static_cast<int>(ctx.EndX),
                  .height = static_cast<int>(ctx.EndY)},
                 buffer);
  }
  if (!report.analysed || !GridFits(ctx)) return;
  const FieldView view{{buffer.x, buffer.y}, buffer.width / ctx.EndX, buffer.height / ctx.EndY, unit};
  DrawCells(canvas, ctx, view);
  DrawVectors(canvas, ctx, view);
}

}  // namespace

Overlay::Overlay(const FrameFormat& source, const SampledArea& area, double history_s)
    : canvas_(source.width, source.height),
      unit_(std::min(source.width / kDesignWidth, source.height / kDesignHeight)),
      area_(area),
      history_s_(history_s),
      frame_s_(source.fps > 0 ? 1 / source.fps : 0) {}

void Overlay::Record(const FrameReport& report) {
  history_.push_back(report);
  while (history_.front().time_s < report.time_s - history_s_) history_.pop_front();
}

void Overlay::Draw(const LumaView& frame, const FrameReport& report, const VEL_STOPNGO_CTX& ctx) {
  canvas_.Image({.pixels = frame.pixels, .width = frame.width, .height = frame.height},
                {0, 0, static_cast<double>(frame.width), static_cast<double>(frame.height)});
  const Box region = RegionBox(ctx, frame);
  const Box sampled{area_.left, area_.top, area_.step_x * ctx.EndX, area_.step_y * ctx.EndY};
  const bool in_place = ctx.BlockSize * std::min(area_.step_x, area_.step_y) >= kSmallestBlock * unit_;
  // A 1920 wide frame is sampled a little further than the region, which is worth showing.
  const bool differs = area_.Valid() && (std::abs(sampled.width - region.width) > 2 ||
                                         std::abs(sampled.height - region.height) > 2);

  if (report.analysed && in_place && GridFits(ctx)) {
    const FieldView view{{area_.left, area_.top}, area_.step_x, area_.step_y, unit_};
    DrawCells(canvas_, ctx, view);
    DrawVectors(canvas_, ctx, view);
  }
  if (differs) canvas_.Outline(sampled, style::kAbove, 1.5 * unit_, 5 * unit_);
  DrawRegion(canvas_, region, unit_, report);

  PanelLayout layout(canvas_, unit_, {DrawTag(canvas_, region, differs, unit_), sampled});
  const Box strip = layout.PlaceStrip(kStripHeight * unit_);
  const Box status = layout.Place(kStatusWidth * unit_, kPanelHeight * unit_);
  const Box motion = layout.Place(kMotionWidth * unit_, kPanelHeight * unit_);
  DrawStatus(canvas_, status, unit_, report, ctx);
  DrawMotion(canvas_, motion, unit_, report, ctx);
  DrawStrip(canvas_, strip, unit_, {.reports = history_, .seconds = history_s_, .frame_s = frame_s_}, ctx);
  if (!in_place) {
    const double height = kLensWidth * ctx.EndY / ctx.EndX + kLensTitle;
    DrawLens(canvas_, layout.Place((kLensWidth + 8) * unit_, (height + 4) * unit_), unit_, report, ctx);
  }
}

}  // namespace stopngo
