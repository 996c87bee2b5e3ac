// axes.cpp: the grid, the frame and the numbers of a plot's axes.
#include "draw/axes.h"

namespace stopngo {

void DrawGrid(Canvas& canvas, const Box& area, std::span<const AxisMark> across, std::span<const AxisMark> up,
              const AxesStyle& style) {
  for (const AxisMark& mark : across) {
    canvas.Line({mark.at, area.y}, {mark.at, area.Bottom()}, style.grid, 1);
    canvas.Text(mark.text, {mark.at, area.Bottom() + style.below}, {style.text, style.ink, Align::kCentre});
  }
  for (const AxisMark& mark : up) {
    canvas.Line({area.x, mark.at}, {area.Right(), mark.at}, style.grid, 1);
    canvas.Text(mark.text, {area.x - style.beside, mark.at + style.drop},
                {style.text, style.ink, Align::kRight});
  }
  canvas.Outline(area, style.ink, 1);
}

}  // namespace stopngo
