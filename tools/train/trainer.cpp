// trainer.cpp: the optimiser over the loss.
#include "train/trainer.h"

#include <lbfgs.h>

#include <exception>
#include <limits>
#include <new>
#include <span>

#include "base/streams.h"
#include "host/common/failure.h"

namespace stopngo {
namespace {

/// Small weights into the hidden nodes leave them in the steep part of the logistic; output weights of
/// both signs give each node a task of its own from the start.
std::vector<double> StartingPoint(const Loss& loss, std::size_t hiddens, std::uint64_t seed) {
  Random random = RandomOf(seed, stream::kStart);
  std::vector<double> parameters(loss.Parameters(), 0.0);
  const std::size_t weights = parameters.size() - 2 * hiddens - 1;
  for (std::size_t i = 0; i < weights; i++) parameters[i] = random.Uniform(-0.15, 0.15);
  for (std::size_t i = 0; i < hiddens; i++) parameters[weights + hiddens + i] = i % 2 == 0 ? 1 : -1;
  return parameters;
}

/// What the library's callbacks share.
struct Descent {
  const Loss& loss;
  const Loss& validation;
  const TrainerOptions& options;
  const std::function<void(const LearningPoint&)>& tell;
  Training result;
  int best_iteration = 0;
  std::exception_ptr failure;  // not to be thrown through the library, which is written in C

  double Evaluate(std::span<const double> parameters, std::span<double> gradient) {
    try {
      return loss.Evaluate(parameters, gradient);
    } catch (...) {
      failure = std::current_exception();
      return std::numeric_limits<double>::quiet_NaN();
    }
  }

  /// True to go on.
  bool Accept(std::span<const double> parameters, double training, int iteration) {
    try {
      const LearningPoint point{iteration, training, validation.Evaluate(parameters, {})};
      result.curve.push_back(point);
      if (result.parameters.empty() || point.validation < result.validation) {
        result.parameters.assign(parameters.begin(), parameters.end());
        result.validation = point.validation;
        best_iteration = iteration;
      }
      tell(point);
    } catch (...) {
      failure = std::current_exception();
    }
    return !failure && iteration - best_iteration < options.patience;
  }
};

lbfgsfloatval_t EvaluateCall(void* instance, const lbfgsfloatval_t* x, lbfgsfloatval_t* g, int n,
                             lbfgsfloatval_t /*step*/) {
  const auto count = static_cast<std::size_t>(n);
  return static_cast<Descent*>(instance)->Evaluate({x, count}, {g, count});
}

int ProgressCall(void* instance, const lbfgsfloatval_t* x, const lbfgsfloatval_t* /*g*/, lbfgsfloatval_t fx,
                 lbfgsfloatval_t /*xnorm*/, lbfgsfloatval_t /*gnorm*/, lbfgsfloatval_t /*step*/, int n, int k,
                 int /*ls*/) {
  return static_cast<Descent*>(instance)->Accept({x, static_cast<std::size_t>(n)}, fx, k) ? 0 : 1;
}

}  // namespace

Training Train(const Loss& loss, const Loss& validation, std::size_t hiddens, const TrainerOptions& options,
               const std::function<void(const LearningPoint&)>& tell) {
  Descent descent{loss, validation, options, tell, {}, 0, {}};
  std::vector<double> parameters = StartingPoint(loss, hiddens, options.seed);
  lbfgs_parameter_t settings;
  lbfgs_parameter_init(&settings);
  settings.m = 20;
  settings.max_iterations = options.iterations;
  settings.epsilon = 1e-7;
  double final_loss = 0;
  const int end = lbfgs(static_cast<int>(parameters.size()), parameters.data(), &final_loss, &EvaluateCall,
                        &ProgressCall, &descent, &settings);
  if (descent.failure) std::rethrow_exception(descent.failure);
  if (end == LBFGSERR_OUTOFMEMORY) throw std::bad_alloc();
  // How it ended is no failure in itself: single precision may leave the line search no better point.
  if (descent.result.parameters.empty()) throw Failure("training: not one step could be made");
  return descent.result;
}

}  // namespace stopngo
