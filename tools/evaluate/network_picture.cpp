// network_picture.cpp: a network's first layer as a picture, a panel a hidden node.
#include "evaluate/network_picture.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/draw/style.h"

namespace stopngo {
namespace {

constexpr double kCell = 32;        // a cell's side, pixels
constexpr double kMargin = 18;      // around panels and sheet
constexpr double kPadding = 12;     // inside a panel
constexpr double kTitle = 30;       // a panel's first line
constexpr double kCaption = 18;     // under the cells
constexpr double kHeader = 92;      // the sheet's title and legend
constexpr std::size_t kAcross = 4;  // panels in a row
constexpr std::size_t kArrows = style::kDirections.size();

/// The grid of cells, and the weight that is drawn at full strength.
struct Sheet {
  std::size_t rows = 0;
  std::size_t columns = 0;
  double full = 1;
  [[nodiscard]] double GridWidth() const { return kCell * static_cast<double>(columns); }
  [[nodiscard]] double GridHeight() const { return kCell * static_cast<double>(rows); }
  [[nodiscard]] double PanelWidth() const { return 2 * GridWidth() + 3 * kPadding; }
  [[nodiscard]] double PanelHeight() const { return kTitle + GridHeight() + kCaption + kPadding; }
};

std::string Signed(double value) { return Print("%+.2f", value); }

/// A few large weights would leave all others dark: the largest fiftieth is drawn at full strength.
double FullStrength(const Network& network) {
  std::vector<float> magnitudes;
  for (const float weight : network.HiddenWeights()) {
    if (std::isfinite(weight)) magnitudes.push_back(std::abs(weight));
  }
  if (magnitudes.empty()) return 1;
  const auto place = magnitudes.begin() + static_cast<std::ptrdiff_t>(magnitudes.size() * 49 / 50);
  std::nth_element(magnitudes.begin(), place, magnitudes.end());
  return *place > 0 ? *place : 1;
}

Colour ColourOf(double weight, double full) {
  if (!std::isfinite(weight)) return style::kNotFinite;
  Colour colour = weight > 0 ? style::kRaises : style::kLowers;
  colour.alpha = std::min(1.0, std::abs(weight) / full);
  return colour;
}

/// Points from a cell's middle outwards: the triangle's tip lies at the border of the side that it is of.
void DrawTriangle(Canvas& canvas, Point centre, const style::Direction& direction, const Colour& colour) {
  constexpr double kTip = 0.46 * kCell;
  constexpr double kFoot = 0.12 * kCell;
  constexpr double kHalf = 0.19 * kCell;
  const Point across{-direction.y, direction.x};
  const auto corner = [&](double along, double aside) {
    return Point{centre.x + direction.x * along + across.x * aside,
                 centre.y + direction.y * along + across.y * aside};
  };
  cairo_t* const cairo = canvas.Cairo();
  cairo_new_path(cairo);
  for (const Point& point : {corner(kTip, 0), corner(kFoot, kHalf), corner(kFoot, -kHalf)}) {
    cairo_line_to(cairo, point.x, point.y);
  }
  cairo_close_path(cairo);
  cairo_set_source_rgba(cairo, colour.red, colour.green, colour.blue, colour.alpha);
  cairo_fill(cairo);
}

void DrawFrame(Canvas& canvas, const Sheet& sheet, Point corner, std::span<const float> weights) {
  for (std::size_t i = 0; i < weights.size() / kArrows; ++i) {
    const std::size_t row = i / sheet.columns;
    const Box cell{corner.x + kCell * static_cast<double>(i % sheet.columns),
                   corner.y + kCell * static_cast<double>(row), kCell, kCell};
    canvas.Outline(cell, style::kTrack, 1);
    for (std::size_t d = 0; d < kArrows; ++d) {
      DrawTriangle(canvas, cell.Centre(), style::kDirections[d],
                   ColourOf(weights[i * kArrows + d], sheet.full));
    }
  }
}

void DrawPanel(Canvas& canvas, const Sheet& sheet, Point corner, const Network& network,
               const NodeFigures& node) {
  canvas.Fill({corner.x, corner.y, sheet.PanelWidth(), sheet.PanelHeight()}, style::kCard, 6);
  const TextStyle title{.size = 13, .colour = style::kText, .bold = true};
  const double line = corner.y + 20;
  canvas.Text("node " + std::to_string(node.index), {corner.x + kPadding, line}, title);
  canvas.Text("output " + Signed(node.output_weight), {corner.x + sheet.PanelWidth() / 2, line},
              {.size = 13,
               .colour = node.output_weight < 0 ? style::kLowers : style::kRaises,
               .align = Align::kCentre,
               .bold = true});
  canvas.Text("bias " + Signed(node.bias), {corner.x + sheet.PanelWidth() - kPadding, line},
              {.size = 13, .colour = style::kMuted, .align = Align::kRight});
  const std::span<const float> weights = network.HiddenWeights(node.index);
  const std::size_t half = weights.size() / 2;
  Point frame{corner.x + kPadding, corner.y + kTitle};
  for (const bool current : {false, true}) {
    DrawFrame(canvas, sheet, frame, current ? weights.subspan(half) : weights.first(half));
    canvas.Text(current ? "current frame" : "frame before",
                {frame.x + sheet.GridWidth() / 2, frame.y + sheet.GridHeight() + 15},
                {.size = 11, .colour = style::kMuted, .align = Align::kCentre});
    frame.x += sheet.GridWidth() + kPadding;
  }
}

/// A bar from the weight that lowers most to the one that raises most, and what the shapes mean.
void DrawHeader(Canvas& canvas, const Sheet& sheet, const Network& network) {
  canvas.Text(std::to_string(network.inputs) + " inputs, " + std::to_string(network.hiddens) +
                  " hidden nodes, output bias " + Signed(network.OutputBias()),
              {kMargin, 36}, {.size = 18, .colour = style::kText, .bold = true});
  const TextStyle small{.size = 12, .colour = style::kMuted};
  canvas.Text(
      "Nodes from what raises the score most to what lowers it most. A triangle stands for motion of a "
      "cell's content that way.",
      {kMargin, 58}, small);
  constexpr int kSteps = 40;
  constexpr double kStep = 5;
  const Box bar{kMargin, 68, kSteps * kStep, 10};
  for (int i = 0; i < kSteps; ++i) {
    const double weight = (2 * (i + 0.5) / kSteps - 1) * sheet.full;
    canvas.Fill({bar.x + i * kStep, bar.y, kStep, bar.height}, ColourOf(weight, sheet.full));
  }
  canvas.Text("weight " + Signed(-sheet.full) + " or less to " + Signed(sheet.full) +
                  " or more: motion lowers or raises the node's sum",
              {bar.Right() + kPadding, bar.Bottom()}, small);
}

}  // namespace

Canvas DrawNetwork(const Network& network, std::size_t columns) {
  const std::size_t features = network.inputs / 2;
  const std::size_t cells = features / kArrows;
  if (network.inputs == 0 || columns == 0 || network.inputs != 2 * kArrows * cells || cells % columns != 0) {
    throw Failure(std::to_string(network.inputs) + " inputs are no two grids of cells, " +
                      std::to_string(columns) + " in a row (see --columns)",
                  ExitCode::kUsage);
  }
  const std::vector<NodeFigures> nodes = NodesOf(network);
  const Sheet sheet{cells / columns, columns, FullStrength(network)};
  const std::size_t down = (nodes.size() + kAcross - 1) / kAcross;
  const auto extent = [](double panel, std::size_t count) {
    return kMargin + (panel + kMargin) * static_cast<double>(count);
  };
  Canvas canvas(static_cast<int>(extent(sheet.PanelWidth(), kAcross)),
                static_cast<int>(kHeader - kMargin + extent(sheet.PanelHeight(), down)));
  canvas.Fill({0, 0, static_cast<double>(canvas.Width()), static_cast<double>(canvas.Height())},
              style::kDarkPaper);
  DrawHeader(canvas, sheet, network);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Point corner{extent(sheet.PanelWidth(), i % kAcross),
                       kHeader - kMargin + extent(sheet.PanelHeight(), i / kAcross)};
    DrawPanel(canvas, sheet, corner, network, nodes[i]);
  }
  return canvas;
}

}  // namespace stopngo
