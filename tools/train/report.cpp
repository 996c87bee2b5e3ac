// report.cpp: how a training went, as a picture.
#include "train/report.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "draw/plot.h"
#include "host/draw/style.h"

namespace stopngo {
namespace {

constexpr double kLeastLoss =
    1e-6;  // that is shown: easy clips bring it down to 0, where the axis has no end

PlotSeries Series(const Training& training, double LearningPoint::*loss, const std::string& name,
                  Colour colour) {
  PlotSeries series{name, {}, colour};
  for (const LearningPoint& point : training.curve) {
    series.points.push_back({static_cast<double>(point.iteration), point.*loss});
  }
  return series;
}

}  // namespace

void WriteLearningCurves(std::ostream& out, std::span<const Training> trainings) {
  Plot plot{"Loss over the iterations", {"iteration", 0, 1}, {"loss", 1, 1, true}, {}};
  for (std::size_t i = 0; i < trainings.size(); i++) {
    Colour colour = style::kSeries[i % style::kSeries.size()];
    const std::string name = "start " + std::to_string(i + 1);
    plot.series.push_back(Series(trainings[i], &LearningPoint::validation, name + ", validation", colour));
    colour.alpha = 0.4;
    plot.series.push_back(Series(trainings[i], &LearningPoint::training, name + ", training", colour));
    for (const LearningPoint& point : trainings[i].curve) {
      plot.x.high = std::max(plot.x.high, static_cast<double>(point.iteration));
      plot.y.low = std::min({plot.y.low, point.training, point.validation});
      plot.y.high = std::max({plot.y.high, point.training, point.validation});
    }
  }
  plot.y.low = std::clamp(plot.y.low, kLeastLoss, 0.9 * plot.y.high);
  WritePlot(out, plot);
}

}  // namespace stopngo
