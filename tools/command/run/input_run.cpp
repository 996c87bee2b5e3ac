// input_run.cpp: one input's way through a detector of its own.
#include "command/run/input_run.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/interruption.h"
#include "base/progress.h"
#include "base/warning.h"
#include "command/options/setup_check.h"
#include "command/options/source_options.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "live/live_kind.h"
#include "video/open_source.h"

namespace stopngo {
namespace {

using Json = nlohmann::ordered_json;
using std::chrono::steady_clock;

// Between two frames that are compared: after more than that, what moved is not known.
constexpr double kLongestGap_s = 1;
constexpr std::size_t kAges = 1024;
constexpr double kMillisecond_ns = 1e6;

/// What the same settings would do without gates.
Settings Ungated(Settings settings) {
  settings.gates = 0;
  settings.log = 0;
  settings.debug_fb.clear();
  return settings;
}

SourceOptions SourceOf(const RunPlan& plan, const std::string& input) {
  SourceOptions source = plan.source;
  source.input = input;
  return source;
}

bool TakenLive(const RunPlan& plan, const std::string& input) {
  return plan.live.live || IsLive(SourceOf(plan, input));
}

Telling TellingOf(const RunPlan& plan, const std::string& input) {
  return {plan.json, plan.several ? WithoutPassword(input) : std::string(), TakenLive(plan, input)};
}

}  // namespace

InputRun::Analysis::Analysis(const Module& module, const Settings& settings, const FrameFormat& frames)
    : detector(module, settings, frames) {
  if (settings.gates != 0) alone.emplace(module, Ungated(settings), frames);
}

InputRun::InputRun(const RunPlan& plan, const Module& module, const std::string& input)
    : plan_(plan),
      module_(module),
      name_(WithoutPassword(input)),
      live_(TakenLive(plan, input)),
      settings_(plan.settings),
      damage_(DamageRule::Kind::kAtEnd, plan.allow_damaged),
      report_(TellingOf(plan, input), plan.settings.gates),
      beat_(steady_clock::now()),
      source_(ForSettings(SourceOf(plan, input), plan.settings, damage_)),
      ages_(kAges),
      asked_(steady_clock::now()) {
  if (!plan.live.clips.folder.empty()) {
    if (!live_) throw Failure("--clips: " + name_ + " is not live (see --live)", ExitCode::kUsage);
    clips_ = std::make_unique<ClipKeeper>(plan.live.clips, name_);
    source_.tap = clips_.get();
  }
  if (live_) {
    source_.live = true;
    HeedFindings(module_, plan_.options->InForce());
    return;
  }
  recording_ = OpenSource(source_);
  HeedFindings(module_, plan_.options->InForce(recording_->Info()));
  format_ = recording_->Info();
  analysis_ = std::make_unique<Analysis>(module_, settings_, format_);
}

void InputRun::Run(Trace* trace) {
  trace_ = trace;
  try {
    live_ ? RunLive() : RunRecorded();
  } catch (...) {
    ended_ = true;
    throw;
  }
  ended_ = true;
}

void InputRun::Finish() {
  if (clips_) clips_->Finish();
  report_.Summarize(InterruptingSignal(), damage_.Kept());
  damage_.RefuseKept();
}

void InputRun::RunRecorded() {
  // The module's own lines, other inputs' results and a progress bar would write over each other.
  std::optional<Progress> progress;
  if (settings_.log <= 0 && !plan_.several) progress.emplace("run", recording_->Info().frames);
  for (LumaFrame frame; NextFrame(*recording_, frame);) {
    Handle(frame);
    if (progress) progress->Step();
  }
}

void InputRun::RunLive() {
  LiveInput* input = nullptr;
  {
    const std::lock_guard lock(mutex_);
    input = &input_.emplace(name_, Opener(), LimitsFor(source_, plan_.live.limits));
  }
  for (LiveFrame frame; TakeLive(*input, frame);) {
    if (clips_) clips_->Frame(frame.luma);
    TryHandle(frame.luma);
  }
}

OpenLive InputRun::Opener() {
  return [this](std::function<bool()> gives_up, RemarkHearer hear) {
    std::unique_lock lock(mutex_);
    SourceOptions options = source_;
    lock.unlock();
    options.gives_up = std::move(gives_up);
    options.hear = std::move(hear);
    return OpenSource(options);
  };
}

// Waits for a frame, and has the detector ready for it; false at the end.
bool InputRun::TakeLive(LiveInput& input, LiveFrame& frame) {
  constexpr std::chrono::milliseconds kPatience{200};
  while (!Interrupted()) {
    Beat();
    const LiveInput::Taken taken = input.Take(frame, kPatience);
    if (taken == LiveInput::Taken::kEnd) return false;
    if (taken == LiveInput::Taken::kNothing) continue;
    TakeRenewed();
    Follow(frame);
    return true;
  }
  return false;
}

void InputRun::TakeRenewed() {
  std::unique_lock lock(mutex_);
  if (!next_) return;
  const Setup setup = *std::exchange(next_, std::nullopt);
  lock.unlock();
  try {
    if (analysis_) analysis_ = std::make_unique<Analysis>(module_, setup.settings, format_);
    settings_ = setup.settings;
    report_.Follow(settings_.gates);
    Report(name_ + ": goes on with the settings as they are now");
  } catch (const Failure& failure) {
    Report(name_ + ": goes on with the old settings: " + failure.what());
  }
}

// What follows on a frame is compared with it; not what came after a pause, or from another connection.
void InputRun::Follow(const LiveFrame& frame) {
  if (!analysis_ || frame.format != format_) {
    analysis_.reset();
    analysis_ = std::make_unique<Analysis>(module_, settings_, frame.format);
    const std::lock_guard lock(mutex_);
    format_ = frame.format;
  } else if (frame.anew || frame.luma.time_s - last_time_s_ > kLongestGap_s) {
    if (!frame.anew) {
      Report(name_ + Print(": %.2f s without a frame before %.2f s; begins anew",
                           frame.luma.time_s - last_time_s_, frame.luma.time_s));
    }
    analysis_->detector.Restart();
    if (analysis_->alone) analysis_->alone->Restart();
  }
  last_time_s_ = frame.luma.time_s;
}

// A frame that a live input's detector refuses costs itself.
void InputRun::TryHandle(const LumaFrame& frame) {
  try {
    Handle(frame);
  } catch (const NobodyReads&) {
    throw;
  } catch (const Failure& failure) {
    const std::lock_guard lock(mutex_);
    if (++figures_.refused == 1) Report(name_ + ": " + failure.what());
  }
}

void InputRun::Handle(const LumaFrame& frame) {
  const FrameReport written = analysis_->detector.Write(frame);
  const FrameReport alone = analysis_->alone ? analysis_->alone->Write(frame) : written;
  if (const char* const remark = analysis_->detector.TakeRemark()) Warn(remark);
  if (trace_ != nullptr) trace_->Add(written, alone);
  report_.Add(written, alone);
  Note(frame, written);
  if (written.changed && written.decision == 1) Raise(written);
  Beat();
}

void InputRun::Note(const LumaFrame& frame, const FrameReport& written) {
  const double age_ns = std::chrono::duration<double, std::nano>(steady_clock::now() - frame.read).count();
  const std::lock_guard lock(mutex_);
  ++figures_.handed_over;
  figures_.decision = written.decision;
  PutClosedText(written.closed, figures_.closed);
  ages_.Add(age_ns);
  figures_.oldest_ms = std::max(figures_.oldest_ms, age_ns / kMillisecond_ns);
  figures_.late += age_ns * 1e-9 > 1 / format_.fps ? 1 : 0;
}

void InputRun::Raise(const FrameReport& written) {
  const Alarm alarm{name_,         written.index,         written.time_s,
                    written.score, written.alarm_counter, std::chrono::system_clock::now()};
  if (plan_.on_alarm != nullptr) plan_.on_alarm->Start(alarm);
  if (clips_) clips_->Raise(alarm);
  const std::lock_guard lock(mutex_);
  figures_.last_alarm = alarm;
}

const char* InputRun::State() const {
  if (ended_) return "ended";
  return live_ && !(input_ && input_->Figures().connected) ? "waiting" : "running";
}

std::string InputRun::Glance() {
  const std::lock_guard lock(mutex_);
  return name_ + ": " + State() + ", decision " +
         kDecisionNames.at(static_cast<std::size_t>(figures_.decision));
}

Json InputRun::Status() {
  const std::lock_guard lock(mutex_);
  const LiveFigures live = input_ ? input_->Figures() : LiveFigures{};
  const SteadyTime now = steady_clock::now();
  const double since_s = std::chrono::duration<double>(now - std::exchange(asked_, now)).count();
  const std::int64_t handed = figures_.handed_over - std::exchange(handed_before_, figures_.handed_over);
  Json status{{"input", name_},
              {"state", State()},
              {"frames", live_ ? live.frames : figures_.handed_over},
              {"handed_over", figures_.handed_over},
              {"dropped", live.dropped},
              {"refused", figures_.refused},
              {"rate", since_s > 0 ? static_cast<double>(handed) / since_s : 0},
              {"decision", kDecisionNames.at(static_cast<std::size_t>(figures_.decision))},
              {"closed_gates", figures_.closed},
              {"last_alarm", figures_.last_alarm ? ObjectOf(*figures_.last_alarm) : Json()}};
  if (!live_) return status;
  constexpr double kMedian = 0.5;
  status["age_ms"] = {{"median", ages_.Percentile(kMedian) / kMillisecond_ns},
                      {"largest", figures_.oldest_ms}};
  status["late"] = figures_.late;
  status["damages"] = live.damages;
  status["troubles"] = live.troubles;
  status["reconnects"] = live.reconnects;
  status["last_trouble"] = live.last_trouble;
  if (clips_) {
    const ClipKeeper::Counts counts = clips_->Told();
    status["clips"] = {
        {"written", counts.written}, {"failed", counts.failed}, {"cut_short", counts.cut_short}};
  }
  return status;
}

void InputRun::Renew(const Setup& given) {
  Setup setup = given;
  std::unique_lock lock(mutex_);
  if (format_.fps > 0) setup.frames = format_;
  lock.unlock();
  HeedFindings(module_, setup);
  lock.lock();
  const Settings& settings = next_.emplace(std::move(setup)).settings;
  const auto wanted = std::tie(settings.rate, settings.input_width, settings.input_height);
  auto frames = std::tie(source_.rate, source_.width, source_.height);
  if (frames == wanted) return;
  frames = wanted;
  if (input_) input_->OpenAnew();
}

bool InputRun::IsAwake(double seconds) const {
  return ended_ || std::chrono::duration<double>(steady_clock::now() - beat_.load()).count() < seconds;
}

}  // namespace stopngo
