// trace.cpp: a line a frame, of all that stopngo run knows of it.
#include "command/trace.h"

#include <bit>
#include <cstdint>

#include "host/failure.h"
#include "host/text.h"

namespace stopngo {
namespace {

constexpr const char* kHeader =
    "frame\ttime\tscore\tscore_bits\talarm_counter\thold_timer\tdecision\tanalysed\twrite_ns\n";

}  // namespace

// The header comes with the first line: nothing is in the file before there is something to tell.
void Trace::Write(const std::string& line) {
  file_.Write(begun_ ? line : kHeader + line);
  begun_ = true;
}

void Trace::Add(const FrameReport& frame) {
  // Nine digits give every single-precision score back exactly.
  Write(Print("%lld\t%.6f\t%.9g\t%08x\t%d\t%d\t%d\t%d\t%.0f\n", static_cast<long long>(frame.index),
              frame.time_s, static_cast<double>(frame.score), std::bit_cast<std::uint32_t>(frame.score),
              frame.alarm_counter, frame.hold_timer, frame.decision, frame.analysed ? 1 : 0, frame.write_ns));
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
