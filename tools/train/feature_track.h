// feature_track.h: what the perceptron is shown of a clip, and what is wanted of it at each moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/label.h"

namespace stopngo {

/// Analysed frames in which an alarm is right.
struct DepartureWindow {
  std::size_t begin;  ///< the first frame after the start
  std::size_t soon;   ///< end of those in which an alarm is early
  std::size_t end;    ///< end of those in which it is right at all
};

/// The direction histograms of the analysed frames of a clip, and the aims of each. The first analysed frame
/// is the clip's second.
struct FeatureTrack {
  std::size_t features = 0;             ///< of one frame
  int columns = 0;                      ///< of the histogram's cells
  std::vector<std::int8_t> histograms;  ///< frame by frame
  /// 1 where an alarm would be false; 0 within departures, until a while after them, and where no label
  /// says what happens.
  std::vector<std::uint8_t> quiet;
  std::vector<DepartureWindow> departures;

  [[nodiscard]] std::size_t Frames() const { return quiet.size(); }
};

/// Fills in the aims. times_s: of the analysed frames.
void SetAims(FeatureTrack& track, const std::vector<double>& times_s, const std::vector<LabelSpan>& labels);

}  // namespace stopngo
