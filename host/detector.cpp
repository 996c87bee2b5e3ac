// detector.cpp: one detector running in the module, as a device's host would drive it.
#include "host/detector.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "decide.h"
#include "host/common/failure.h"
#include "host/common/stdout_guard.h"
#include "host/common/text.h"
#include "host/misfit.h"
#include "host/settings/setting_table.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

// What the callback said during one write.
struct Report {
  bool came = false;
  int decision = 0;
};

int TakeDecision(void* param, int flag) {
  *static_cast<Report*>(param) = {true, flag};
  return 0;
}

GateFrame GateFrameOf(const FrameReport& report, const VEL_STOPNGO_CTX& context) {
  GateFrame frame;
  frame.time_s = report.time_s;
  frame.decided = report.decided;
  frame.decision = report.decision;
  frame.score = report.score;
  if (!report.analysed) return frame;
  constexpr std::uint64_t kDirections = 4;
  const std::uint64_t entries = kDirections * context.SumX * context.SumY;
  frame.histogram = std::span(context.MotionChunk).first(std::min<std::uint64_t>(entries, kChunkCapacity));
  frame.columns = static_cast<int>(context.SumX);
  return frame;
}

}  // namespace

struct Detector::State {
  State(const Module& module, const FrameFormat& given)
      : operations(module.Operations()),
        score(module.Routine<decltype(Classify_Feature_)>("Classify_Feature_")),
        context(std::make_unique<VEL_STOPNGO_CTX>()),
        frames(given) {
    operations.open(context.get());
  }
  ~State() { operations.close(context.get()); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  template <typename Value>
  void Control(VEL_CTRL_STOPNGO code, Value value) {
    operations.control(context.get(), code, value, VEL_CTRL_STOPNGO_END);
  }
  void SendInternal(VEL_CTRL_STOPNGO code, const Settings& settings);
  void LoadWeights(const Settings& settings);
  void SendPath(VEL_CTRL_STOPNGO code, const Settings& settings);
  void MakeFramebuffer(const Settings& settings);
  off_t WriteLuma(const LumaView& frame);
  std::string RefusalOf(const LumaView& frame);

  const VEL_STOPNGO_OPERATION& operations;
  decltype(Classify_Feature_)* score;
  std::unique_ptr<VEL_STOPNGO_CTX> context;
  FrameFormat frames;
  std::vector<char> framebuffer;
  std::optional<Gates> gates;
  Report report;
};

void Detector::State::SendInternal(VEL_CTRL_STOPNGO code, const Settings& settings) {
  if (code == VEL_CTRL_STOPNGO_UPDATE_PARAMS) {
    int unused = 0;
    Control(code, &unused);
  } else if (code == VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK) {
    Control(code, &TakeDecision);
  } else if (code == VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS) {
    Control(code, static_cast<void*>(&report));
  } else if (code == VEL_CTRL_STOPNGO_LOAD_CLASSIFY && !settings.weights.empty()) {
    LoadWeights(settings);
  }
}

// Loading prints a line whatever the log level, with the file's name as it is; here it is one of the log's, and
// escaped as all that tells a name.
void Detector::State::LoadWeights(const Settings& settings) {
  int result = -1;
  std::string line;
  {
    const StdoutGuard guard(settings.log > 0 ? ModuleLines::kKept : ModuleLines::kDropped);
    Control(VEL_CTRL_STOPNGO_LOAD_CLASSIFY, &result);
    line = guard.Text();
  }
  if (line.ends_with('\n')) line.pop_back();
  if (!line.empty()) std::fprintf(stderr, "%s\n", Escaped(line).c_str());
  if (result != 0) throw Failure(settings.weights + ": the module could not read the weights");
}

void Detector::State::SendPath(VEL_CTRL_STOPNGO code, const Settings& settings) {
  if (code == VEL_CTRL_STOPNGO_DEBUG_FB && !settings.debug_fb.empty()) MakeFramebuffer(settings);
  if (code == VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH && !settings.weights.empty()) {
    CheckWeights(settings.weights, *context);
    Control(code, settings.weights.c_str());
  }
}

void Detector::State::MakeFramebuffer(const Settings& settings) {
  if (!IsUsableSize({settings.lcd_width, settings.lcd_height})) {
    throw Failure("--lcd-width and --lcd-height: a framebuffer has 1 to " + std::to_string(kLongestSide) +
                      " columns and rows",
                  ExitCode::kUsage);
  }
  constexpr std::size_t kBytesAPixel = 4;
  framebuffer.assign(kBytesAPixel * settings.lcd_width * settings.lcd_height, 0);
  Control(VEL_CTRL_STOPNGO_DEBUG_FB, framebuffer.data());
}

// The module takes a pointer to what it could write, and only reads.
off_t Detector::State::WriteLuma(const LumaView& frame) {
  return operations.write(context.get(), const_cast<std::uint8_t*>(frame.pixels.data()),
                          static_cast<off_t>(frame.pixels.size()));
}

// A refused frame changes nothing: handed over once more it is refused again, and the log says why. One that is taken
// then lacked memory.
std::string Detector::State::RefusalOf(const LumaView& frame) {
  constexpr std::string_view kBefore = "frame refused: ";
  const int log = context->Log;
  const StdoutGuard guard(ModuleLines::kKept);
  Control(VEL_CTRL_STOPNGO_SET_LOG, 1);
  const off_t again = WriteLuma(frame);
  Control(VEL_CTRL_STOPNGO_SET_LOG, log);
  const std::string text = guard.Text();
  const std::size_t start = text.find(kBefore);
  const std::size_t reason = start == std::string::npos ? text.size() : start + kBefore.size();
  const std::string said = text.substr(reason, text.find('\n', reason) - reason);
  if (again == 0 || said.starts_with("no memory")) throw std::bad_alloc();
  return said + ": " + MisfitOf(*context);
}

Detector::Detector(const Module& module, const Settings& settings, const FrameFormat& frames)
    : state_(std::make_unique<State>(module, frames)) {
  if (settings.weights.empty() && !settings.no_weights) {
    throw Failure(
        "no weights: give a file with --weights, or --no-weights to run with a score of 0.5 on every frame",
        ExitCode::kUsage);
  }
  State& state = *state_;
  for (const Setting& setting : SettingTable()) {
    if (setting.code == VEL_CTRL_STOPNGO_END) continue;
    struct Sender {
      State& state;
      const Settings& settings;
      VEL_CTRL_STOPNGO code;

      void operator()(Internal) const { state.SendInternal(code, settings); }
      void operator()(int Settings::*field) const { state.Control(code, settings.*field); }
      void operator()(std::optional<int> Settings::*field) const {
        state.Control(code, (settings.*field).value_or(state.frames.width));
      }
      void operator()(double Settings::*field) const { state.Control(code, settings.*field); }
      void operator()(const RateField& number) const { state.Control(code, settings.*number.field); }
      void operator()(FrameCount Settings::*field) const {
        state.Control(code, (settings.*field).Frames(state.frames.fps));
      }
      void operator()(std::string Settings::*) const { state.SendPath(code, settings); }
      void operator()(bool Settings::*field) const { state.Control(code, settings.*field ? 1 : 0); }
      void operator()(const Choice& choice) const { state.Control(code, settings.*choice.field); }
      void operator()(const SecondsField&) const {}  // of no code: the module counts frames
      void operator()(const NameSet&) const {}
    };
    std::visit(Sender{state, settings, setting.code}, setting.field);
  }
  CheckFrameSize(*state.context, frames);
  if (settings.gates != 0) state.gates.emplace(module, settings, frames.fps);
}

Detector::~Detector() = default;

void Detector::SetSpeed(double speed, double time_s) {
  if (state_->gates) state_->gates->SetSpeed(speed, time_s);
}

const char* Detector::TakeRemark() { return state_->gates ? state_->gates->TakeRemark() : nullptr; }

void Detector::Restart() {
  int unused = 0;
  state_->Control(VEL_CTRL_STOPNGO_UPDATE_PARAMS, &unused);
}

FrameReport Detector::Write(const LumaView& frame) {
  State& state = *state_;
  VEL_STOPNGO_CTX& context = *state.context;
  const bool sized = frame.width == state.frames.width && frame.height == state.frames.height;
  if (!sized || frame.pixels.size() < std::size_t{1} * frame.width * frame.height) {
    throw Failure("frame " + std::to_string(frame.index) +
                  ": not of the size that the detector was opened for");
  }
  FrameReport report;
  report.index = frame.index;
  report.time_s = frame.time_s;
  if (state.gates) {
    state.gates->Before(frame.time_s, context);
    report.closed = state.gates->Closed();
  }
  // The write itself may end a hold or start one, so what it is going to do is read off before.
  report.decided = context.FrameOld != nullptr;
  report.analysed = report.decided && !InHold(context);
  state.report = {};
  off_t result = 0;
  {
    const StdoutGuard guard(context.Log > 0 ? ModuleLines::kMessages : ModuleLines::kNone);
    const auto start = std::chrono::steady_clock::now();
    result = state.WriteLuma(frame);
    report.write_ns =
        std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
  }
  if (result != 0) {
    throw Failure("frame " + std::to_string(frame.index) +
                  ": the module refused it: " + state.RefusalOf(frame));
  }
  if (report.analysed) {
    report.score = state.score(context.Feature, context.Weight, context.Features_2, context.Hiddens);
  }
  report.alarm_counter = context.AlarmCounter[0];
  report.hold_timer = context.AlarmCounter[1];
  report.changed = state.report.came;
  report.decision = report.changed ? state.report.decision : context.Flag;
  if (state.gates) {
    state.gates->After(GateFrameOf(report, context), context);
  }
  return report;
}

const VEL_STOPNGO_CTX& Detector::Context() const { return *state_->context; }

VEL_STOPNGO_CTX& Detector::Context() { return *state_->context; }

}  // namespace stopngo
