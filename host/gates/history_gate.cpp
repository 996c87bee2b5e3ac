// history_gate.cpp: closed while the last three seconds speak against an alarm.
#include "host/gates/history_gate.h"

#include <algorithm>

#include "host/common/failure.h"
#include "host/settings/default_weights.h"
#include "host/settings/sidecar.h"

namespace stopngo {
namespace {

/// Behind a gap that is as long as the history, seconds, nothing of it belongs to the last seconds.
constexpr double kLongestGap_s = 3;

constexpr const char* kTooShort = "history too short";

}  // namespace

std::string HistoryWeightsPath(const Settings& settings) {
  return settings.history_weights.empty() ? FindHistoryWeights().value_or("") : settings.history_weights;
}

Network ReadHistoryWeights(const std::string& path) {
  if (path.empty()) {
    throw Failure(
        "the history gate has no weights: name a file with --history-weights, or leave it out of --gates",
        ExitCode::kUsage);
  }
  Network network = ReadWeights(path, kHistoryInputs, kHistoryHiddens, "--history-weights");
  const std::optional<Sidecar> sidecar = ReadSidecar(path);
  if (!sidecar) return network;
  CheckSidecar(path, *sidecar, network);
  if (sidecar->gate != NameOf(GateKind::kHistory))
    throw Failure(SidecarPath(path) + ": is of no history gate");
  return network;
}

HistoryGate::HistoryGate(const Module& module, const Settings& settings)
    : Gate(GateHold::kCountsOn),
      routine_(module.Routine<decltype(Classify_Feature_)>("Classify_Feature_")),
      network_(ReadHistoryWeights(HistoryWeightsPath(settings))),
      threshold_(settings.history_threshold) {
  Forget();
}

void HistoryGate::Forget() {
  pairs_.fill({});
  known_ = 0;
  score_ = 0;
  reason_ = kTooShort;
}

void HistoryGate::Before(double time_s, std::optional<double> /*speed*/) {
  if (known_ > 0 && time_s - last_s_ > kLongestGap_s) Forget();
}

// What was not analysed is missing: a repeated pair would look like motion that goes on.
void HistoryGate::After(const GateFrame& frame) {
  last_s_ = frame.time_s;
  if (!frame.decided) return;
  std::ranges::move_backward(pairs_.begin(), pairs_.end() - 1, pairs_.end());
  pairs_.front() = MotionOf(frame.histogram, frame.columns);
  known_ = std::min(known_ + 1, kHistoryPairs);
  if (known_ < kHistoryPairs) return;
  HistoryQuantities(pairs_, quantities_);
  score_ = routine_(quantities_.data(), network_.numbers.data(), static_cast<DATA_32>(network_.inputs),
                    static_cast<DATA_32>(network_.hiddens));
  reason_ = score_ < threshold_ ? "history against it" : nullptr;
}

}  // namespace stopngo
