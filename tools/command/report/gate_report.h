// gate_report.h: what stopngo run tells of the gates: when each closed and opened, and which alarms were held back.
#pragma once

#include <array>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>

#include "command/report/telling.h"
#include "host/detector.h"

namespace stopngo {

/// Tells as RunReport does. What was held back is known from the module alone: a second detector on the same frames,
/// without gates.
class GateReport {
 public:
  /// gates: those that there are, a bit each (host/gates/gate.h).
  GateReport(const Telling& telling, int gates) : telling_(telling), gates_(gates) {}
  /// Other gates are there from now on; of those that were the summary tells, too.
  void Follow(int gates) { gates_ |= gates; }
  /// Throws Failure when standard output cannot be written.
  void Add(const FrameReport& frame, const FrameReport& alone);
  /// What comes behind a run's summary as lines to read, and into it as JSON.
  void Summarize() const;
  void AddTo(nlohmann::ordered_json& summary) const;

 private:
  struct Counts {
    std::int64_t closed = 0;  ///< how often it closed
    std::int64_t frames = 0;  ///< that it was closed for
    std::int64_t held_back = 0;
  };

  void TellGate(const FrameReport& frame, std::size_t gate) const;
  void TellAlone(const FrameReport& frame, bool held_back) const;

  Telling telling_;
  int gates_;
  ClosedGates closed_{};
  std::array<Counts, kGateCount> counts_{};
  std::int64_t alarms_alone_ = 0;
  std::int64_t held_back_ = 0;
};

}  // namespace stopngo
