// plot.h: curves over two axes, drawn with Cairo and written as PNG.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/draw/canvas.h"

namespace stopngo {

struct PlotSeries {
  std::string name;  ///< in the legend; empty: not there
  std::vector<Point> points;
  Colour colour;
  bool line = true;   ///< join the points
  bool dots = false;  ///< mark them
};

struct PlotAxis {
  std::string title;  ///< with its unit
  double low = 0;
  double high = 1;
  bool logarithmic = false;  ///< low and high are then above 0
};

struct Plot {
  std::string title;
  PlotAxis x, y;
  std::vector<PlotSeries> series;
};

void DrawPlot(Canvas& canvas, const Box& box, const Plot& plot);
/// As Canvas::WritePng.
void WritePlot(std::ostream& out, const Plot& plot);

}  // namespace stopngo
