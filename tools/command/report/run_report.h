// run_report.h: what stopngo run tells: decision changes and the summary.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "command/report/gate_report.h"
#include "command/report/latency.h"
#include "command/report/telling.h"
#include "host/detector.h"

namespace stopngo {

/// Tells decision changes as they come and counts for the summary, both on standard output.
class RunReport {
 public:
  /// gates: as GateReport has them; 0: nothing is told of any.
  RunReport(const Telling& telling, int gates) : telling_(telling) {
    if (gates != 0) gates_.emplace(telling, gates);
  }
  /// Other gates are there from now on.
  void Follow(int gates);
  /// Throws Failure when standard output cannot be written.
  /// alone: of the module without gates, where there are any.
  void Add(const FrameReport& frame, const FrameReport& alone);
  /// cut_short: the signal that ended the run before its input did, if one has. damage: of the input, if any.
  void Summarize(const char* cut_short, const std::string& damage) const;

 private:
  struct Kind {
    std::int64_t changes = 0;  ///< how often the callback reported it
    std::int64_t frames = 0;   ///< decided frames that had it
  };

  void TellChange(const FrameReport& frame) const;

  Telling telling_;
  std::int64_t frames_ = 0;
  std::int64_t decided_ = 0;
  std::int64_t analysed_ = 0;
  std::array<Kind, 3> kinds_{};  ///< by decision
  Latency latency_;
  std::optional<GateReport> gates_;
};

}  // namespace stopngo
