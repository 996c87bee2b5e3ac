// input_run.h: one input's way through a detector of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "command/options/settings_options.h"
#include "command/report/latency.h"
#include "command/report/run_report.h"
#include "command/report/trace.h"
#include "command/run/live_options.h"
#include "host/check.h"
#include "host/detector.h"
#include "live/alarm.h"
#include "live/alarm_command.h"
#include "live/clip_keeper.h"
#include "live/live_input.h"
#include "video/damage.h"

namespace stopngo {

/// What a run's inputs have in common.
struct RunPlan {
  const SettingsOptions* options = nullptr;
  Settings settings;
  SourceOptions source;  ///< without an input
  LiveOptions live;
  AlarmCommand* on_alarm = nullptr;  ///< null: none
  bool allow_damaged = false;
  bool json = false;
  bool several = false;  ///< results tell whose they are
};

class InputRun {
 public:
  /// plan and module outlive it. Opens a recording and heeds the findings of the set-up with its frames; a live input
  /// is opened when it runs. Throws Failure.
  InputRun(const RunPlan& plan, const Module& module, const std::string& input);

  /// Until the input ends, or a signal comes. trace: null for none. Throws Failure; what ends a live input, or makes
  /// it wait, is said as it comes.
  void Run(Trace* trace);
  /// The damage that was kept, for the last line of a trace.
  [[nodiscard]] const std::string& Damage() const { return damage_.Kept(); }
  /// Tells the summary, and throws Failure for damage that was kept.
  void Finish();

  // From any thread:
  [[nodiscard]] bool IsLive() const { return live_; }
  /// How it does, as docs/formats.md has it.
  nlohmann::ordered_json Status();
  /// The least of it, in a few words.
  std::string Glance();
  /// Takes other settings between two frames; throws Failure when they are refused, and the old ones go on.
  void Renew(const Setup& setup);
  /// Whether it has been at work within so many seconds, or has ended.
  [[nodiscard]] bool IsAwake(double seconds) const;

  /// The detector of the last frames; null before the first one of a live input.
  [[nodiscard]] const Detector* LastDetector() const { return analysis_ ? &analysis_->detector : nullptr; }

 private:
  /// A detector, and what the same settings would do without gates.
  struct Analysis {
    Analysis(const Module& module, const Settings& settings, const FrameFormat& frames);
    Detector detector;
    std::optional<Detector> alone;
  };
  struct Figures {
    std::int64_t handed_over = 0;
    std::int64_t refused = 0;
    std::int64_t late = 0;  ///< decided later than the next frame was due
    int decision = 0;
    std::string closed;  ///< the gates that are
    std::optional<Alarm> last_alarm;
    double oldest_ms = 0;
  };

  /// mutex_ is held.
  [[nodiscard]] const char* State() const;
  void RunRecorded();
  void RunLive();
  bool TakeLive(LiveInput& input, LiveFrame& frame);
  OpenLive Opener();
  void TakeRenewed();
  void Follow(const LiveFrame& frame);
  void TryHandle(const LumaFrame& frame);
  void Handle(const LumaFrame& frame);
  void Note(const LumaFrame& frame, const FrameReport& written);
  void Raise(const FrameReport& written);
  void Beat() { beat_ = std::chrono::steady_clock::now(); }

  const RunPlan& plan_;
  const Module& module_;
  std::string name_;
  bool live_;
  Settings settings_;
  DamageRule damage_;
  std::unique_ptr<FrameSource> recording_;  ///< null: live
  std::unique_ptr<Analysis> analysis_;
  double last_time_s_ = 0;  ///< of the last frame
  RunReport report_;
  Trace* trace_ = nullptr;

  std::atomic<SteadyTime> beat_;
  std::atomic<bool> ended_{false};
  std::mutex mutex_;
  FrameFormat format_;  // that analysis_ is for; written under mutex_, which guards all below
  SourceOptions source_;
  std::optional<Setup> next_;  ///< to be taken before the next frame
  std::unique_ptr<ClipKeeper>
      clips_;  ///< null: none; made with it, it outlives input_, which hands it packets
  std::optional<LiveInput> input_;
  Figures figures_;
  Latency ages_;                    ///< nanoseconds
  std::int64_t handed_before_ = 0;  ///< when the status was asked for last
  SteadyTime asked_;
};

using InputRuns = std::vector<std::unique_ptr<InputRun>>;

}  // namespace stopngo
