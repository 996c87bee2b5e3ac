// trace.cpp: a line a frame, of all that stopngo run knows of it.
#include "command/report/trace.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#include "host/common/failure.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

constexpr const char* kHeader =
    "frame\ttime\tscore\tscore_bits\talarm_counter\thold_timer\tdecision\tanalysed\twrite_ns";
constexpr const char* kGateHeader = "\tgates\talone_decision";

/// Names alone: a reason would be a column that only people can read.
std::string GateNames(const ClosedGates& closed) {
  std::string names;
  for (std::size_t gate = 0; gate < kGateCount; ++gate) {
    if (closed.at(gate) != nullptr) names.append(names.empty() ? "" : ",").append(kGateNames.at(gate));
  }
  return names.empty() ? "-" : names;
}

}  // namespace

// The header comes with the first line: nothing is in the file before there is something to tell.
void Trace::Write(const std::string& line) {
  const std::string header = std::string(kHeader) + (gates_ ? kGateHeader : "") + '\n';
  file_.Write(begun_ ? line : header + line);
  begun_ = true;
}

void Trace::Add(const FrameReport& frame, const FrameReport& alone) {
  const std::string of_gates =
      gates_ ? Print("\t%s\t%d", GateNames(frame.closed).c_str(), alone.decision) : std::string();
  // Nine digits give every single-precision score back exactly.
  Write(Print("%lld\t%.6f\t%.9g\t%08x\t%d\t%d\t%d\t%d\t%.0f", static_cast<long long>(frame.index),
              frame.time_s, static_cast<double>(frame.score), std::bit_cast<std::uint32_t>(frame.score),
              frame.alarm_counter, frame.hold_timer, frame.decision, frame.analysed ? 1 : 0, frame.write_ns) +
        of_gates + '\n');
}

void Trace::End() {
  if (!begun_) Write("");
}

void Trace::Note(const std::string& note) {
  if (!begun_) return;
  try {
    Write("# " + note + '\n');
  } catch (const Failure&) {  // what ended the trace is on its way to be told
  }
}

}  // namespace stopngo
