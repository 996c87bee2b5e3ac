// history_gate.h: closed while the last three seconds speak against an alarm.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "classify.h"
#include "host/gates/gate.h"
#include "host/gates/history.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "host/settings/weights_file.h"

namespace stopngo {

/// The weights that the history gate is to go by: those that the settings name, or the default ones. Empty: there are
/// none.
std::string HistoryWeightsPath(const Settings& settings);

/// The weights of the history gate. Throws Failure as ReadWeights does, and when a sidecar beside them is not theirs.
Network ReadHistoryWeights(const std::string& path);

/// A vehicle that stood and leaves comes after calm; one that drives in and goes on, a crowd or a wiper does not. Two
/// frames cannot tell them apart, a second perceptron over the seconds before can. It is scored by the module's own
/// routine, so that its bits are the same on every machine.
class HistoryGate : public Gate {
 public:
  HistoryGate(const Module& module, const Settings& settings);
  void Before(double time_s, std::optional<double> speed) override;
  void After(const GateFrame& frame) override;

  /// Of the last frame, 0 to 1; 0 while there are too few.
  [[nodiscard]] float Score() const { return score_; }

 private:
  void Forget();

  decltype(Classify_Feature_)* routine_;
  Network network_;
  double threshold_;
  std::array<PairMotion, kHistoryPairs> pairs_{};  ///< the present one first
  std::array<float, kHistoryInputs> quantities_{};
  std::size_t known_ = 0;  ///< pairs since the beginning, as far as they are looked back at
  double last_s_ = 0;
  float score_ = 0;
};

}  // namespace stopngo
