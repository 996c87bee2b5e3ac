// run_report.h: what stopngo run tells: decision changes, the summary, the trace of every frame.
#pragma once

#include <array>
#include <cstdint>
#include <ostream>

#include "command/latency.h"
#include "host/detector.h"

namespace stopngo {

/// Tells decision changes as they come and counts for the summary, both on standard output.
class RunReport {
 public:
  /// json: JSON Lines instead of lines to read.
  explicit RunReport(bool json) : json_(json) {}
  /// Throws Failure when standard output cannot be written.
  void Add(const FrameReport& frame);
  void Summarize() const;

 private:
  struct Kind {
    std::int64_t changes = 0;  ///< how often the callback reported it
    std::int64_t frames = 0;   ///< decided frames that had it
  };

  void TellChange(const FrameReport& frame) const;

  bool json_;
  std::int64_t frames_ = 0;
  std::int64_t decided_ = 0;
  std::int64_t analysed_ = 0;
  std::array<Kind, 3> kinds_{};  ///< by decision
  Latency latency_;
};

/// Tab-separated values, a line a frame.
void WriteTraceHeader(std::ostream& trace);
void WriteTraceLine(std::ostream& trace, const FrameReport& frame);

}  // namespace stopngo
