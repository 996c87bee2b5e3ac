// gate_report.cpp: what stopngo run tells of the gates.
#include "command/report/gate_report.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "host/common/text.h"

namespace stopngo {
namespace {

using Json = nlohmann::ordered_json;

constexpr auto kPictureGate = static_cast<std::size_t>(GateKind::kPicture);

bool Alarms(const FrameReport& frame) { return frame.changed && frame.decision == 1; }

std::string Place(const FrameReport& frame) {
  return Print("%10.3f s  frame %6lld  ", frame.time_s, static_cast<long long>(frame.index));
}

}  // namespace

// A reason that gives way to another one is told, too: a black picture that is lost is another fault.
void GateReport::Add(const FrameReport& frame, const FrameReport& alone) {
  const bool held_back = Alarms(alone) && !Alarms(frame) && frame.closed != ClosedGates{};
  for (std::size_t gate = 0; gate < kGateCount; ++gate) {
    const char* const reason = frame.closed.at(gate);
    Counts& counts = counts_.at(gate);
    counts.frames += reason != nullptr ? 1 : 0;
    counts.closed += reason != nullptr && closed_.at(gate) == nullptr ? 1 : 0;
    counts.held_back += held_back && reason != nullptr ? 1 : 0;
    if (reason != closed_.at(gate)) TellGate(frame, gate);
  }
  closed_ = frame.closed;
  if (!Alarms(alone)) return;
  ++alarms_alone_;
  held_back_ += held_back ? 1 : 0;
  if (!Alarms(frame)) TellAlone(alone, held_back);
}

void GateReport::TellGate(const FrameReport& frame, std::size_t gate) const {
  const char* const reason = frame.closed.at(gate);
  const char* const name = kGateNames.at(gate);
  if (telling_.json) {
    // The picture's state matters to more than alarms.
    Json line{{"type", gate == kPictureGate ? "health" : "gate"},
              {"frame", frame.index},
              {"time", frame.time_s},
              {"gate", name},
              {"state", reason != nullptr ? "closed" : "open"}};
    if (reason != nullptr) line["reason"] = reason;
    telling_.Object(line);
  } else if (gate == kPictureGate) {
    telling_.Line(Place(frame) + (reason != nullptr ? reason : "picture back"));
  } else {
    telling_.Line(Place(frame) + "gate " + name +
                  (reason != nullptr ? std::string(" closed: ") + reason : " open"));
  }
}

void GateReport::TellAlone(const FrameReport& frame, bool held_back) const {
  const std::string by = held_back ? ClosedText(closed_) : std::string();
  if (!telling_.json) {
    telling_.Line(Place(frame) + "the module alone: alarm" + (held_back ? ", held back by " + by : ""));
    return;
  }
  Json line{{"type", "alone"}, {"frame", frame.index}, {"time", frame.time_s}};
  if (held_back) line["held_back_by"] = by;
  telling_.Object(line);
}

void GateReport::Summarize() const {
  for (std::size_t gate = 0; gate < kGateCount; ++gate) {
    if ((gates_ >> gate & 1) == 0) continue;
    const Counts& counts = counts_.at(gate);
    telling_.Line(Print("gate %s: closed %lld times, %lld frames, in the way of %lld alarms",
                        kGateNames.at(gate), static_cast<long long>(counts.closed),
                        static_cast<long long>(counts.frames), static_cast<long long>(counts.held_back)));
  }
  telling_.Line(Print("the module alone: %lld alarms, %lld of them held back",
                      static_cast<long long>(alarms_alone_), static_cast<long long>(held_back_)));
}

void GateReport::AddTo(Json& summary) const {
  Json gates = Json::array();
  for (std::size_t gate = 0; gate < kGateCount; ++gate) {
    if ((gates_ >> gate & 1) == 0) continue;
    const Counts& counts = counts_.at(gate);
    gates.push_back({{"gate", kGateNames.at(gate)},
                     {"closed", counts.closed},
                     {"frames", counts.frames},
                     {"held_back", counts.held_back}});
  }
  summary["gates"] = std::move(gates);
  summary["alone"] = {{"alarms", alarms_alone_}, {"held_back", held_back_}};
}

}  // namespace stopngo
