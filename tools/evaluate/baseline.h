// baseline.h: detectors without a network, which the network has to beat: one figure a frame, a threshold
// and the module's counter.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "base/label.h"
#include "evaluate/tally.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {

/// What a baseline knows of a frame, from the module's own analysis buffers and motion vectors.
struct FrameSignals {
  double time_s;
  double difference;  ///< mean absolute difference from the frame before, grey levels
  double flow;        ///< mean motion downwards, pixels
};

/// ctx: of a detector that has just analysed a frame.
FrameSignals ReadSignals(double time_s, const VEL_STOPNGO_CTX& ctx);

/// Every analysed frame of a clip, and what happened in it.
struct SignalClip {
  std::vector<FrameSignals> frames;
  std::span<const LabelSpan> labels;
  int cooling;  ///< frames without analysis after an alarm
};

struct Baseline {
  const char* name;
  const char* help;
  double FrameSignals::*signal;
  std::span<const double> signs;  ///< by which the signal may be multiplied
};
std::span<const Baseline> Baselines();

/// Where a baseline alarms.
struct BaselineSetting {
  double sign = 1;
  double threshold = 0;  ///< of sign × signal, to be exceeded
  int time_leaving = 0;  ///< of the counter, to be exceeded
  int gap_op = 0;        ///< taken off the counter by any other frame
};

struct BaselineResult {
  BaselineSetting setting;
  Tally tally;
};

/// Tries thresholds and counters and gives the best of them: see Better.
BaselineResult BestBaseline(const Baseline& baseline, std::span<const SignalClip> clips, int gap_op,
                            double false_per_hour, int jobs);

}  // namespace stopngo
