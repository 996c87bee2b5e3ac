// alarm_loss.cpp: the loss over runs of scores, and its gradient.
#include "train/alarm_loss.h"

#include <Eigen/Core>
#include <algorithm>

#include "base/parallel.h"
#include "host/common/exact_math.h"

namespace stopngo {
namespace {

using Matrix = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using Index = Eigen::Index;

// Histogram entries are mostly below 16 where something moves: dividing by 8 brings them to about 1,
// where the optimiser's first steps suit inputs and biases alike.
constexpr float kInputScale = 1.0F / 8;
constexpr float kFileInputScale = 1.0F / 128;

constexpr float kMinimumSharpness = 3;  // of the soft minimum over a run
constexpr float kMaximumSharpness = 3;  // of the soft maximum over a departure

// Tracks are summed in groups of fixed size, so that the number of threads changes no bit.
constexpr std::size_t kGroup = 32;

/// log(mean(exp(sharpness × value))) / sharpness, a soft maximum, or a soft minimum where the sharpness is
/// negative; shares receives its gradient, as many numbers as there are values.
float SoftExtreme(std::span<const float> values, float sharpness, std::span<float> shares) {
  const float extreme = sharpness > 0 ? *std::max_element(values.begin(), values.end())
                                      : *std::min_element(values.begin(), values.end());
  float sum = 0;
  for (std::size_t i = 0; i < values.size(); i++) {
    shares[i] = Exp(sharpness * (values[i] - extreme));
    sum += shares[i];
  }
  for (float& share : shares) share /= sum;
  return extreme + Log(sum / static_cast<float>(values.size())) / sharpness;
}

}  // namespace

/// The parameters in the shape that the products need.
struct AlarmLoss::Network {
  Network(std::span<const double> parameters, Index features, Index hiddens)
      : weights(features, 2 * hiddens), hidden_biases(hiddens), output_weights(hiddens) {
    std::size_t at = 0;
    const auto next = [&] { return static_cast<float>(parameters[at++]); };
    for (Index node = 0; node < hiddens; node++) {
      for (Index half = 0; half < 2; half++) {
        for (Index feature = 0; feature < features; feature++)
          weights(feature, half * hiddens + node) = next();
      }
    }
    for (float& bias : hidden_biases) bias = next();
    for (float& weight : output_weights) weight = next();
    output_bias = next();
  }

  Matrix weights;  ///< features × 2 hiddens: of the frame before, then of the frame itself
  Eigen::RowVectorXf hidden_biases;
  Eigen::VectorXf output_weights;
  float output_bias;
};

/// What the tracks of a group add up to: the loss, and the gradient in the shape of a Network.
struct AlarmLoss::Sums {
  double loss = 0;
  Eigen::MatrixXd weights;
  Eigen::RowVectorXd hidden_biases;
  Eigen::VectorXd output_weights;
  double output_bias = 0;

  Sums(Index features, Index hiddens)
      : weights(Eigen::MatrixXd::Zero(features, 2 * hiddens)),
        hidden_biases(Eigen::RowVectorXd::Zero(hiddens)),
        output_weights(Eigen::VectorXd::Zero(hiddens)) {}

  void Add(const Sums& other) {
    loss += other.loss;
    weights += other.weights;
    hidden_biases += other.hidden_biases;
    output_weights += other.output_weights;
    output_bias += other.output_bias;
  }

  void AddTo(std::span<double> gradient) const {
    const Index features = weights.rows();
    const Index hiddens = hidden_biases.size();
    std::size_t at = 0;
    for (Index node = 0; node < hiddens; node++) {
      for (Index half = 0; half < 2; half++) {
        for (Index feature = 0; feature < features; feature++)
          gradient[at++] += weights(feature, half * hiddens + node);
      }
    }
    for (const double sum : hidden_biases) gradient[at++] += sum;
    for (const double sum : output_weights) gradient[at++] += sum;
    gradient[at] += output_bias;
  }
};

AlarmLoss::AlarmLoss(const LossOptions& options, std::span<const FeatureTrack> tracks, int jobs)
    : options_(options), tracks_(tracks), jobs_(jobs), features_(tracks.empty() ? 0 : tracks[0].features) {
  std::size_t quiet = 0;
  std::size_t departures = 0;
  for (const FeatureTrack& track : tracks) {
    quiet += static_cast<std::size_t>(std::count(track.quiet.begin(), track.quiet.end(), 1));
    departures += track.departures.size();
  }
  quiet_weight_ = options.false_alarm_weight / static_cast<double>(std::max<std::size_t>(1, quiet));
  departure_weight_ = 1.0 / static_cast<double>(std::max<std::size_t>(1, departures));
}

std::size_t AlarmLoss::Parameters() const { return (2 * features_ + 2) * options_.hiddens + 1; }

double AlarmLoss::AddRuns(const FeatureTrack& track, std::span<const float> outputs,
                          std::span<float> gradient) const {
  const std::size_t run = options_.run;
  if (outputs.size() < run) return 0;
  const auto margin = static_cast<float>(options_.margin);
  const std::size_t runs = outputs.size() - run + 1;
  std::vector<float> strengths(runs);  // of the run that ends in frame index + run - 1
  std::vector<float> shares(runs * run);
  const auto shares_of = [&](std::size_t first) { return std::span(shares).subspan(first * run, run); };
  for (std::size_t first = 0; first < runs; first++) {
    strengths[first] = SoftExtreme(outputs.subspan(first, run), -kMinimumSharpness, shares_of(first));
  }
  double loss = 0;
  std::vector<float> by_strength(strengths.size());
  for (std::size_t i = 0; i < strengths.size(); i++) {
    if (track.quiet[i + run - 1] == 0) continue;
    loss += quiet_weight_ * SoftPlus(strengths[i] + margin);
    by_strength[i] += static_cast<float>(quiet_weight_) * Logistic(strengths[i] + margin);
  }
  const auto pull_up = [&](std::size_t begin, std::size_t end) {
    // Runs that end in the frames from begin to end.
    const std::size_t first = std::max(begin, run - 1) - (run - 1);
    const std::size_t last = std::min(end, outputs.size()) - std::min(end, run - 1);
    if (first >= last) return;
    std::vector<float> parts(last - first);
    const float best =
        SoftExtreme(std::span(strengths).subspan(first, last - first), kMaximumSharpness, parts);
    const double weight = departure_weight_ / 2;
    loss += weight * SoftPlus(margin - best);
    const float slope = -static_cast<float>(weight) * Logistic(margin - best);
    for (std::size_t i = first; i < last; i++) by_strength[i] += slope * parts[i - first];
  };
  for (const DepartureWindow& departure : track.departures) {
    pull_up(departure.begin, departure.soon);
    pull_up(departure.begin, departure.end);
  }
  for (std::size_t i = 0; i < strengths.size(); i++) {
    for (std::size_t k = 0; k < run; k++) gradient[i + k] += by_strength[i] * shares_of(i)[k];
  }
  return loss;
}

void AlarmLoss::AddTrack(const FeatureTrack& track, const Network& network, bool with_gradient,
                         Sums& sums) const {
  const auto frames = static_cast<Index>(track.Frames());
  const auto hiddens = static_cast<Index>(options_.hiddens);
  if (frames == 0) return;
  using Bytes = Eigen::Matrix<std::int8_t, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  const Matrix inputs =
      Eigen::Map<const Bytes>(track.histograms.data(), frames, static_cast<Index>(features_)).cast<float>() *
      kInputScale;
  const Matrix products = inputs * network.weights;
  Matrix hidden = products.rightCols(hiddens).rowwise() + network.hidden_biases;
  // The first frame's predecessor counts as still.
  hidden.bottomRows(frames - 1) += products.leftCols(hiddens).topRows(frames - 1);
  for (float& value : hidden.reshaped<Eigen::RowMajor>()) value = Logistic(value);

  // A score exceeds the threshold where the output's sum exceeds log(T / (1 - T)).
  const auto odds = static_cast<float>(options_.threshold / (1 - options_.threshold));
  const Eigen::VectorXf outputs =
      (hidden * network.output_weights).array() + (network.output_bias - Log(odds));
  Eigen::VectorXf slopes = Eigen::VectorXf::Zero(frames);
  sums.loss += AddRuns(track, {outputs.data(), track.Frames()}, {slopes.data(), track.Frames()});
  if (!with_gradient) return;

  Matrix by_hidden = slopes * network.output_weights.transpose();
  by_hidden.array() *= hidden.array() * (1 - hidden.array());
  Matrix both = Matrix::Zero(frames, 2 * hiddens);
  both.rightCols(hiddens) = by_hidden;
  both.leftCols(hiddens).topRows(frames - 1) = by_hidden.bottomRows(frames - 1);
  const Matrix by_weights = inputs.transpose() * both;
  sums.weights += by_weights.cast<double>();
  sums.hidden_biases += by_hidden.colwise().sum().cast<double>();
  sums.output_weights += (hidden.transpose() * slopes).cast<double>();
  sums.output_bias += slopes.sum();
}

double AlarmLoss::Evaluate(std::span<const double> parameters, std::span<double> gradient) const {
  const auto features = static_cast<Index>(features_);
  const auto hiddens = static_cast<Index>(options_.hiddens);
  const Network network(parameters, features, hiddens);
  const std::size_t groups = (tracks_.size() + kGroup - 1) / kGroup;
  std::vector<Sums> sums(groups, Sums(features, hiddens));
  InParallel(groups, jobs_, [&](std::size_t group) {
    for (const FeatureTrack& track :
         tracks_.subspan(group * kGroup, std::min(kGroup, tracks_.size() - group * kGroup))) {
      AddTrack(track, network, !gradient.empty(), sums[group]);
    }
  });
  Sums total(features, hiddens);
  for (const Sums& part : sums) total.Add(part);

  const std::size_t weights = 2 * features_ * options_.hiddens;
  const std::size_t output = weights + options_.hiddens;
  const auto decays = [&](std::size_t i) {
    return i < weights || (i >= output && i < output + options_.hiddens);
  };
  double loss = total.loss;
  for (std::size_t i = 0; i < parameters.size(); i++) {
    if (decays(i)) loss += 0.5 * options_.decay * parameters[i] * parameters[i];
  }
  if (gradient.empty()) return loss;
  for (std::size_t i = 0; i < parameters.size(); i++) {
    gradient[i] = decays(i) ? options_.decay * parameters[i] : 0;
  }
  total.AddTo(gradient);
  return loss;
}

std::vector<float> FileNumbers(std::span<const double> parameters, std::size_t features,
                               std::size_t hiddens) {
  std::vector<float> numbers;
  for (std::size_t i = 0; i < parameters.size(); i++) {
    constexpr double kScale = kInputScale / kFileInputScale;
    numbers.push_back(static_cast<float>(parameters[i] * (i < 2 * features * hiddens ? kScale : 1)));
  }
  return numbers;
}

}  // namespace stopngo
