// history_loss.h: how far a network is from telling moments in which an alarm would be right from others.
#pragma once

#include <cstddef>
#include <span>

#include "train/history_examples.h"
#include "train/loss.h"

namespace stopngo {

struct HistoryLossOptions {
  double false_alarm_weight = 9;  ///< of all moments that are not right together, against all others together
  double decay = 1e-4;            ///< of the squares of all weights, biases left out
};

/// Cross entropy. Right moments are rare: each of the two kinds counts as a whole, so that clips with more or fewer
/// departures leave the scores where they are.
class HistoryLoss : public Loss {
 public:
  /// The examples must outlive the loss.
  HistoryLoss(const HistoryLossOptions& options, const HistoryExamples& examples, int jobs);

  [[nodiscard]] std::size_t Parameters() const override;
  double Evaluate(std::span<const double> parameters, std::span<double> gradient) const override;

 private:
  struct Network;
  struct Sums;
  /// The moments from first on, as many as a group has.
  void AddGroup(std::size_t first, const Network& network, bool with_gradient, Sums& sums) const;

  HistoryLossOptions options_;
  const HistoryExamples& examples_;
  int jobs_;
  float right_weight_;  ///< of one moment
  float wrong_weight_;
};

}  // namespace stopngo
