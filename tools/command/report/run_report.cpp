// run_report.cpp: what stopngo run tells: decision changes and the summary.
#include "command/report/run_report.h"

#include <nlohmann/json.hpp>
#include <string>

#include "host/common/text.h"

namespace stopngo {
namespace {

// Keys keep the order in which they are given: a line is read by people, too.
using Json = nlohmann::ordered_json;

struct Quantile {
  const char* name;
  double share;
};
constexpr std::array kQuantiles = {Quantile{"p50", 0.50}, Quantile{"p95", 0.95}, Quantile{"p99", 0.99},
                                   Quantile{"max", 1.0}};

long long Printable(std::int64_t number) { return number; }

}  // namespace

void RunReport::Follow(int gates) {
  if (gates_) gates_->Follow(gates);
  if (!gates_ && gates != 0) gates_.emplace(telling_, gates);
}

void RunReport::Add(const FrameReport& frame, const FrameReport& alone) {
  ++frames_;
  decided_ += frame.decided ? 1 : 0;
  analysed_ += frame.analysed ? 1 : 0;
  latency_.Add(frame.write_ns);
  Kind& kind = kinds_.at(static_cast<std::size_t>(frame.decision));
  kind.frames += frame.decided ? 1 : 0;
  if (gates_) gates_->Add(frame, alone);
  if (!frame.changed) return;
  ++kind.changes;
  TellChange(frame);
}

void RunReport::TellChange(const FrameReport& frame) const {
  const char* const name = kDecisionNames.at(static_cast<std::size_t>(frame.decision));
  if (telling_.json) {
    const Json line = {{"type", "decision"},
                       {"frame", frame.index},
                       {"time", frame.time_s},
                       {"decision", frame.decision},
                       {"name", name}};
    telling_.Object(line);
  } else {
    telling_.Line(Print("%10.3f s  frame %6lld  decision %d (%s)", frame.time_s, Printable(frame.index),
                        frame.decision, name));
  }
}

void RunReport::Summarize(const char* cut_short, const std::string& damage) const {
  if (telling_.json) {
    Json line = {{"type", "summary"}, {"frames", frames_}, {"decided", decided_}, {"analysed", analysed_}};
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
      line["changes"][kDecisionNames.at(i)] = kinds_.at(i).changes;
      line["decisions"][kDecisionNames.at(i)] = kinds_.at(i).frames;
    }
    for (const Quantile& quantile : kQuantiles) {
      line["write_ns"][quantile.name] = latency_.Percentile(quantile.share);
    }
    if (gates_) gates_->AddTo(line);
    if (cut_short != nullptr) line["cut_short"] = cut_short;
    if (!damage.empty()) line["damaged"] = damage;
    telling_.Object(line);
    return;
  }
  if (cut_short != nullptr) telling_.Line(Print("cut short by %s", cut_short));
  telling_.Line(Print("%lld frames, %lld decided, %lld analysed", Printable(frames_), Printable(decided_),
                      Printable(analysed_)));
  for (std::size_t i = 0; i < kinds_.size(); ++i) {
    telling_.Line(Print("decision %d (%s): reported %lld times, %lld frames", static_cast<int>(i),
                        kDecisionNames.at(i), Printable(kinds_.at(i).changes),
                        Printable(kinds_.at(i).frames)));
  }
  if (gates_) gates_->Summarize();
  std::string times = "time of a write:";
  for (const Quantile& quantile : kQuantiles) {
    times += Print(" %s %.1f us", quantile.name, latency_.Percentile(quantile.share) / 1000);
  }
  telling_.Line(times);
}

}  // namespace stopngo
