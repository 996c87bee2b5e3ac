// history_loss.cpp: cross entropy over the moments of clips, and its gradient.
#include "train/history_loss.h"

#include <Eigen/Core>
#include <algorithm>
#include <vector>

#include "base/parallel.h"
#include "host/common/exact_math.h"
#include "host/gates/history.h"

namespace stopngo {
namespace {

using Rows = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

constexpr std::size_t kWeights = kHistoryInputs * kHistoryHiddens;
constexpr std::size_t kOutput = kWeights + kHistoryHiddens;  ///< place of the output's first weight
constexpr std::size_t kParameters = kOutput + kHistoryHiddens + 1;

// Rows are summed in groups of fixed size, so that the number of threads changes no bit.
constexpr std::size_t kMomentGroup = 4096;

float WeightOfOne(double whole, std::size_t count) {
  return static_cast<float>(whole / static_cast<double>(std::max<std::size_t>(1, count)));
}

bool Decays(std::size_t place) { return place < kWeights || (place >= kOutput && place + 1 < kParameters); }

}  // namespace

/// The parameters in the shape that the products need.
struct HistoryLoss::Network {
  explicit Network(std::span<const double> parameters) {
    std::size_t at = 0;
    const auto next = [&] { return static_cast<float>(parameters[at++]); };
    for (float& weight : weights.reshaped<Eigen::RowMajor>()) weight = next();
    for (float& bias : biases) bias = next();
    for (float& weight : output_weights) weight = next();
    output_bias = next();
  }

  Rows weights{kHistoryHiddens, kHistoryInputs};
  Eigen::RowVectorXf biases{kHistoryHiddens};
  Eigen::VectorXf output_weights{kHistoryHiddens};
  float output_bias = 0;
};

/// What moments add up to: the loss, and the gradient in the order of the parameters.
struct HistoryLoss::Sums {
  double loss = 0;
  std::vector<double> gradient = std::vector<double>(kParameters);
};

HistoryLoss::HistoryLoss(const HistoryLossOptions& options, const HistoryExamples& examples, int jobs)
    : options_(options),
      examples_(examples),
      jobs_(jobs),
      right_weight_(WeightOfOne(1, examples.RightCount())),
      wrong_weight_(WeightOfOne(options.false_alarm_weight, examples.Count() - examples.RightCount())) {}

std::size_t HistoryLoss::Parameters() const { return kParameters; }

void HistoryLoss::AddGroup(std::size_t first, const Network& network, bool with_gradient, Sums& sums) const {
  const std::size_t count = std::min(kMomentGroup, examples_.Count() - first);
  const auto rows = static_cast<Eigen::Index>(count);
  const Eigen::Map<const Rows> moments(examples_.quantities.data() + first * kHistoryInputs, rows,
                                       Eigen::Index{kHistoryInputs});
  Rows hidden = (moments * network.weights.transpose()).rowwise() + network.biases;
  for (float& value : hidden.reshaped<Eigen::RowMajor>()) value = Logistic(value);
  const Eigen::VectorXf outputs = (hidden * network.output_weights).array() + network.output_bias;

  Eigen::VectorXf slopes(rows);
  for (std::size_t i = 0; i < count; ++i) {
    const auto row = static_cast<Eigen::Index>(i);
    const bool right = examples_.right[first + i] != 0;
    // The output's sum as log odds, turned so that more of it is worse.
    const float worse = right ? -outputs[row] : outputs[row];
    const float weight = right ? right_weight_ : wrong_weight_;
    sums.loss += static_cast<double>(weight * SoftPlus(worse));
    slopes[row] = (right ? -weight : weight) * Logistic(worse);
  }
  if (!with_gradient) return;

  Rows by_hidden = slopes * network.output_weights.transpose();
  by_hidden.array() *= hidden.array() * (1 - hidden.array());
  const Rows by_weights = by_hidden.transpose() * moments;
  const Eigen::RowVectorXf by_biases = by_hidden.colwise().sum();
  const Eigen::VectorXf by_output = hidden.transpose() * slopes;
  auto next = sums.gradient.begin();
  for (const float sum : by_weights.reshaped<Eigen::RowMajor>()) *next++ = sum;
  for (const float sum : by_biases) *next++ = sum;
  for (const float sum : by_output) *next++ = sum;
  *next = slopes.sum();
}

double HistoryLoss::Evaluate(std::span<const double> parameters, std::span<double> gradient) const {
  const Network network(parameters);
  const std::size_t groups = (examples_.Count() + kMomentGroup - 1) / kMomentGroup;
  std::vector<Sums> sums(groups);
  InParallel(groups, jobs_, [&](std::size_t group) {
    AddGroup(group * kMomentGroup, network, !gradient.empty(), sums[group]);
  });
  double loss = 0;
  std::ranges::fill(gradient, 0);
  for (const Sums& part : sums) {
    loss += part.loss;
    for (std::size_t i = 0; i < gradient.size(); ++i) gradient[i] += part.gradient[i];
  }
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (!Decays(i)) continue;
    loss += 0.5 * options_.decay * parameters[i] * parameters[i];
    if (!gradient.empty()) gradient[i] += options_.decay * parameters[i];
  }
  return loss;
}

}  // namespace stopngo
