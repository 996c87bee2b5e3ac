// gates.cpp: the gates around a detector, which hold its alarms back through the module's own settings.
#include "host/gates/gates.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <span>

#include "decide.h"
#include "host/common/text.h"
#include "host/gates/history_gate.h"
#include "host/gates/light_gate.h"
#include "host/gates/once_gate.h"
#include "host/gates/picture_gate.h"
#include "host/gates/speed_gate.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

constexpr int kOutOfReach = std::numeric_limits<int>::max();

using Maker = std::unique_ptr<Gate> (*)(const Module& module, const Settings& settings);

template <typename Kind>
std::unique_ptr<Gate> Make(const Module& /*module*/, const Settings& settings) {
  return std::make_unique<Kind>(settings);
}

template <>
std::unique_ptr<Gate> Make<HistoryGate>(const Module& module, const Settings& settings) {
  return std::make_unique<HistoryGate>(module, settings);
}

/// By kind.
constexpr std::array<Maker, kGateCount> kMakers{Make<HistoryGate>, Make<LightGate>, Make<SpeedGate>,
                                                Make<OnceGate>, Make<PictureGate>};

/// The region as the module looks at it, after zoom and filter.
std::span<const std::uint8_t> Region(const VEL_STOPNGO_CTX& context, const data_08* buffer) {
  return {buffer, std::size_t{context.EndX} * context.EndY};
}

double MeanLuma(std::span<const std::uint8_t> region) {
  if (region.empty()) return 0;
  // A sum of 32 bits holds so many pixels, and compilers add them several at a time.
  constexpr std::size_t kPixels = 65536;
  std::uint64_t sum = 0;
  for (auto rest = region; !rest.empty(); rest = rest.subspan(std::min(kPixels, rest.size()))) {
    const auto some = rest.first(std::min(kPixels, rest.size()));
    sum += std::accumulate(some.begin(), some.end(), std::uint32_t{0});
  }
  return static_cast<double>(sum) / static_cast<double>(region.size());
}

/// How far the count of high scores has gone beyond the one that gives an alarm.
int Excess(int alarm_counter, int time_leaving) {
  const std::int64_t alarm = std::max<std::int64_t>(0, std::int64_t{time_leaving} + 1);
  return static_cast<int>(std::max<std::int64_t>(0, alarm_counter - alarm));
}

int SaturatingSum(int a, int b) {
  return static_cast<int>(std::min<std::int64_t>(std::int64_t{a} + b, kOutOfReach));
}

}  // namespace

void PutClosedText(const ClosedGates& closed, std::string& text) {
  text.clear();
  for (std::size_t i = 0; i < kGateCount; ++i) {
    if (closed.at(i) == nullptr) continue;
    Enlist(text, kGateNames.at(i));
    text.append(" (").append(closed.at(i)).append(")");
  }
}

std::string ClosedText(const ClosedGates& closed) {
  std::string text;
  PutClosedText(closed, text);
  return text;
}

PixelFigures ReadPixels(const VEL_STOPNGO_CTX& context) {
  const bool first = context.FrameNew == nullptr;
  const auto region = Region(context, first ? context.FrameOld : context.FrameNew);
  return {MeanLuma(region), !first && std::memcmp(context.FrameOld, context.FrameNew, region.size()) == 0};
}

Gates::Gates(const Module& module, const Settings& settings, double fps)
    : operations_(module.Operations()),
      time_leaving_(settings.time_leaving.Frames(fps)),
      gap_op_(settings.gap_op),
      speed_(settings.speed_file, settings.speed_stale_s),
      looks_((settings.gates & (BitOf(GateKind::kLight) | BitOf(GateKind::kPicture))) != 0) {
  places_.reserve(kGateCount);
  for (std::size_t i = 0; i < kGateCount; ++i) {
    const auto kind = static_cast<GateKind>(i);
    if ((settings.gates & BitOf(kind)) != 0) places_.push_back({kind, kMakers.at(i)(module, settings)});
  }
}

void Gates::Before(double time_s, VEL_STOPNGO_CTX& context) {
  constexpr int kNeedSpeed = BitOf(GateKind::kSpeed) | BitOf(GateKind::kOnce);
  const bool needed =
      std::ranges::any_of(places_, [](const Place& place) { return (BitOf(place.kind) & kNeedSpeed) != 0; });
  const std::optional<double> speed = needed ? speed_.At(time_s) : std::nullopt;
  bool closed = false;
  bool anew = false;
  for (const Place& place : places_) {
    place.gate->Before(time_s, speed);
    const char* const reason = place.gate->Reason();
    closed_.at(static_cast<std::size_t>(place.kind)) = reason;
    closed |= reason != nullptr;
    anew |= reason != nullptr && place.gate->Hold() == GateHold::kStartsNew;
  }
  Hold(context, closed, anew);
}

// A count that went on while the module was held must not give an alarm for the one high score that comes long after
// the others: what is above the alarm's count is taken back by the first low score, with what that takes off anyway.
//
// A frame that is skipped drops the count, and with it decision and last report, without a word. Were one skipped during
// an alarm or its cooling, the host would never be told that the alarm has ended. So frames are skipped only where
// the decision is 0 and no hold runs; until then the alarm runs its course, its end is reported, and the count cannot
// reach another one. A skip that the settings themselves have begun goes on.
void Gates::Hold(VEL_STOPNGO_CTX& context, bool closed, bool anew) const {
  const int gap_op = SaturatingSum(gap_op_, Excess(context.AlarmCounter[0], time_leaving_));
  operations_.control(&context, VEL_CTRL_STOPNGO_SET_TIME_LEAVING, closed ? kOutOfReach : time_leaving_,
                      VEL_CTRL_STOPNGO_SET_GAP_OP, gap_op, VEL_CTRL_STOPNGO_END);
  if (!anew || context.Flag != 0 || InHold(context) || context.FrameSkip > 0) return;
  operations_.control(&context, VEL_CTRL_STOPNGO_SET_FRAME_SKIP, 1, VEL_CTRL_STOPNGO_END);
}

void Gates::After(GateFrame frame, const VEL_STOPNGO_CTX& context) {
  if (looks_) {
    const PixelFigures pixels = ReadPixels(context);
    frame.luma = pixels.luma;
    frame.repeated = pixels.repeated;
  }
  After(frame);
}

void Gates::After(const GateFrame& frame) {
  for (const Place& place : places_) place.gate->After(frame);
}

}  // namespace stopngo
