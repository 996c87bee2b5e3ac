// baseline.cpp: detectors without a network, which the network has to beat.
#include "evaluate/baseline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "base/parallel.h"

namespace stopngo {
namespace {

constexpr std::array<double, 1> kAsItIs{1};
constexpr std::array<double, 2> kEitherWay{1, -1};
constexpr std::array<Baseline, 2> kBaselines{{
    {"difference", "mean absolute difference between frames", &FrameSignals::difference, kAsItIs},
    {"flow", "mean vertical motion, either way", &FrameSignals::flow, kEitherWay},
}};

/// Counts to be exceeded that are tried: above a second of high frames nothing is caught in time.
constexpr int kMostTimeLeaving = 8;

std::vector<double> AlarmTimes(const SignalClip& clip, double FrameSignals::*signal,
                               const BaselineSetting& setting) {
  std::vector<double> alarms;
  int counter = 0;
  int hold = 0;
  for (const FrameSignals& frame : clip.frames) {
    if (hold > 0) {
      --hold;
      continue;
    }
    const bool high = setting.sign * (frame.*signal) > setting.threshold;
    counter = high ? counter + 1 : std::max(0, counter - setting.gap_op);
    if (counter <= setting.time_leaving) continue;
    alarms.push_back(frame.time_s);
    counter = 0;
    hold = clip.cooling;
  }
  return alarms;
}

/// Values of the signal that ever smaller shares of all frames exceed, down to none of them.
std::vector<double> Thresholds(std::span<const SignalClip> clips, double FrameSignals::*signal, double sign) {
  std::vector<double> values;
  for (const SignalClip& clip : clips) {
    for (const FrameSignals& frame : clip.frames) values.push_back(sign * (frame.*signal));
  }
  std::sort(values.begin(), values.end());
  std::vector<double> thresholds;
  for (double above = 0.8 * static_cast<double>(values.size()); above >= 1; above *= 0.95) {
    thresholds.push_back(values[values.size() - 1 - static_cast<std::size_t>(above)]);
  }
  if (!values.empty()) thresholds.push_back(values.back());
  thresholds.erase(std::unique(thresholds.begin(), thresholds.end()), thresholds.end());
  return thresholds;
}

std::vector<BaselineSetting> Candidates(const Baseline& baseline, std::span<const SignalClip> clips,
                                        int gap_op) {
  std::vector<BaselineSetting> candidates;
  for (const double sign : baseline.signs) {
    for (const double threshold : Thresholds(clips, baseline.signal, sign)) {
      for (int count = 0; count <= kMostTimeLeaving; ++count) {
        candidates.push_back({sign, threshold, count, gap_op});
      }
    }
  }
  return candidates;
}

}  // namespace

FrameSignals ReadSignals(double time_s, const VEL_STOPNGO_CTX& ctx) {
  const auto pixels = std::size_t{ctx.EndY} * ctx.EndX;
  std::int64_t difference = 0;
  for (std::size_t i = 0; i < pixels; ++i) difference += std::abs(ctx.FrameNew[i] - ctx.FrameOld[i]);
  const auto blocks = std::size_t{ctx.NumY} * ctx.NumX;
  std::int64_t down = 0;
  for (std::size_t i = 0; i < blocks; ++i) down += ctx.Motion[2 * i];
  return {time_s, static_cast<double>(difference) / static_cast<double>(pixels),
          static_cast<double>(down) / static_cast<double>(blocks)};
}

std::span<const Baseline> Baselines() { return kBaselines; }

BaselineResult BestBaseline(const Baseline& baseline, std::span<const SignalClip> clips, int gap_op,
                            double false_per_hour, int jobs) {
  const std::vector<BaselineSetting> candidates = Candidates(baseline, clips, gap_op);
  std::vector<Tally> tallies(candidates.size());
  InParallel(candidates.size(), jobs, [&](std::size_t i) {
    for (const SignalClip& clip : clips) {
      const std::vector<double> alarms = AlarmTimes(clip, baseline.signal, candidates[i]);
      tallies[i].Add(Judge(alarms, clip.labels), clip.labels);
    }
  });
  BaselineResult best;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    if (i == 0 || Better(tallies[i], best.tally, false_per_hour)) best = {candidates[i], tallies[i]};
  }
  return best;
}

}  // namespace stopngo
