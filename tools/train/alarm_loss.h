// alarm_loss.h: how far a network is from what the decision needs: the loss that training makes small.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "train/feature_track.h"
#include "train/loss.h"

namespace stopngo {

struct LossOptions {
  std::size_t hiddens = 16;
  /// Scores in a row above the threshold that raise an alarm: TimeLeaving and one more.
  std::size_t run = 4;
  double threshold = 0.4;
  double margin = 1;               ///< by which runs are to clear the threshold, on the output's sum
  double false_alarm_weight = 60;  ///< of all quiet frames together, against all departures together
  double decay = 1e-4;             ///< of the squares of all weights, biases left out
};

/// The decision counts scores: an alarm needs `run` of them above the threshold. The loss therefore judges
/// runs, not frames. The strength of a run is a soft minimum of its outputs; quiet frames push the
/// strength of every run that ends in them down, a departure pulls the strongest run of its first seconds
/// up (a soft maximum), once for any right alarm and once more for an early one.
class AlarmLoss : public Loss {
 public:
  /// The tracks must outlive the loss.
  AlarmLoss(const LossOptions& options, std::span<const FeatureTrack> tracks, int jobs);

  /// The inputs are scaled to about 1, see FileNumbers.
  [[nodiscard]] std::size_t Parameters() const override;
  double Evaluate(std::span<const double> parameters, std::span<double> gradient) const override;

 private:
  struct Network;
  struct Sums;
  void AddTrack(const FeatureTrack& track, const Network& network, bool with_gradient, Sums& sums) const;
  /// The loss of one track's outputs, and its gradient by each of them.
  double AddRuns(const FeatureTrack& track, std::span<const float> outputs, std::span<float> gradient) const;

  LossOptions options_;
  std::span<const FeatureTrack> tracks_;
  int jobs_;
  std::size_t features_;
  double quiet_weight_;      ///< of one quiet run
  double departure_weight_;  ///< of one departure
};

/// Parameters as the weights file has them: for inputs of histogram / 128.
std::vector<float> FileNumbers(std::span<const double> parameters, std::size_t features, std::size_t hiddens);

}  // namespace stopngo
