// trainer.h: the optimiser over the loss: L-BFGS with early stopping, from one starting point.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "train/loss.h"

namespace stopngo {

struct TrainerOptions {
  int iterations = 300;
  int patience = 30;       ///< iterations without a better validation loss, after which it ends
  std::uint64_t seed = 1;  ///< of the starting point
};

struct LearningPoint {
  int iteration;
  double training;
  double validation;
};

struct Training {
  std::vector<double> parameters;  ///< those with the least validation loss
  double validation = 0;           ///< that loss
  std::vector<LearningPoint> curve;
};

/// L-BFGS, because the loss is smooth and taken over all clips at once: no learning rate to tune, no order
/// of batches to get right, and the same bits at each run. Both losses must be of one shape. tell: called
/// after each iteration.
Training Train(const Loss& loss, const Loss& validation, std::size_t hiddens, const TrainerOptions& options,
               const std::function<void(const LearningPoint&)>& tell);

}  // namespace stopngo
