// detector.cpp: one detector running in the module, as a device's host would drive it.
#include "detector.h"

#include <chrono>
#include <vector>

#include "failure.h"
#include "setting_table.h"
#include "stdout_guard.h"
#include "weights_file.h"

namespace stopngo {
namespace {

// A framebuffer of more than this many columns or rows is a slip of the keyboard.
constexpr int kFramebufferLimit = 16384;

struct FrameSize {
  std::uint64_t width;
  std::uint64_t height;
};

std::string Text(const FrameSize& size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

// The frames that the module will read, by its settings. It is told no size with a frame: that the
// frames are as large as announced is the host's to see to.
FrameSize ExpectedSize(const VEL_STOPNGO_CTX& context) {
  const auto original = static_cast<DATA_32>(context.originalSize);
  if (original != context.EndXInput && original == 1920) return {1920, 1080};
  if (original != context.EndXInput && original == 1280) return {1280, 720};
  return {context.EndXInput, context.EndYInput};
}

void CheckFrameSize(const VEL_STOPNGO_CTX& context, const SourceInfo& source) {
  const FrameSize expected = ExpectedSize(context);
  const FrameSize given{static_cast<std::uint64_t>(source.width), static_cast<std::uint64_t>(source.height)};
  if (expected.width == given.width && expected.height == given.height) return;
  throw Failure("the settings announce frames of " + Text(expected) + ", but the frames handed over are " +
                    Text(given) + " (see --original, --original-size, --input-width, --input-height)",
                ExitCode::kUsage);
}

void CheckWeights(const std::string& path, const VEL_STOPNGO_CTX& context) {
  if (path.size() >= kPathCapacity) {
    throw Failure(path + ": the module takes paths of at most " + std::to_string(kPathCapacity - 1) +
                  " bytes");
  }
  CheckWeightsSize(path, 2 * std::uint64_t{context.Features}, context.Hiddens, "--features, --hiddens");
}

std::string RegionText(const VEL_STOPNGO_CTX& context) {
  const FrameSize region{context.EndX, context.EndY};
  // A corner may have been given as a negative number.
  const auto x = static_cast<int>(context.ROI_X);
  const auto y = static_cast<int>(context.ROI_Y);
  return "a region of " + Text(region) + " at " + std::to_string(x) + ", " + std::to_string(y) +
         " with scale " + std::to_string(context.Scale) + ", blocks of " + std::to_string(context.BlockSize) +
         ", " + std::to_string(context.Features) + " features and " + std::to_string(context.Hiddens) +
         " hidden nodes does not fit frames of " + Text(ExpectedSize(context));
}

// What the callback said during one write.
struct Report {
  bool came = false;
  int decision = 0;
};

int TakeDecision(void* param, int flag) {
  *static_cast<Report*>(param) = {true, flag};
  return 0;
}

}  // namespace

struct Detector::State {
  State(const Module& module, const SourceInfo& frames)
      : operations(module.Operations()),
        score(module.Routine<decltype(Classify_Feature_)>("Classify_Feature_")),
        context(std::make_unique<VEL_STOPNGO_CTX>()),
        source(frames) {
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
  void SendPath(VEL_CTRL_STOPNGO code, const Settings& settings);
  void MakeFramebuffer(const Settings& settings);

  const VEL_STOPNGO_OPERATION& operations;
  decltype(Classify_Feature_)* score;
  std::unique_ptr<VEL_STOPNGO_CTX> context;
  SourceInfo source;
  std::vector<char> framebuffer;
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
    int result = -1;
    Control(code, &result);
    if (result != 0) throw Failure(settings.weights + ": the module could not read the weights");
  }
}

void Detector::State::SendPath(VEL_CTRL_STOPNGO code, const Settings& settings) {
  if (code == VEL_CTRL_STOPNGO_DEBUG_FB && !settings.debug_fb.empty()) MakeFramebuffer(settings);
  if (code == VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH && !settings.weights.empty()) {
    CheckWeights(settings.weights, *context);
    Control(code, settings.weights.c_str());
  }
}

void Detector::State::MakeFramebuffer(const Settings& settings) {
  const auto usable = [](int length) { return length >= 1 && length <= kFramebufferLimit; };
  if (!usable(settings.lcd_width) || !usable(settings.lcd_height)) {
    throw Failure("--lcd-width and --lcd-height: a framebuffer has 1 to " +
                      std::to_string(kFramebufferLimit) + " columns and rows",
                  ExitCode::kUsage);
  }
  constexpr std::size_t kBytesAPixel = 4;
  framebuffer.assign(kBytesAPixel * settings.lcd_width * settings.lcd_height, 0);
  Control(VEL_CTRL_STOPNGO_DEBUG_FB, framebuffer.data());
}

Detector::Detector(const Module& module, const Settings& settings, const SourceInfo& source)
    : state_(std::make_unique<State>(module, source)) {
  if (settings.weights.empty() && !settings.no_weights) {
    throw Failure(
        "no weights: give a file with --weights, or --no-weights to run with a score of 0.5 on every frame",
        ExitCode::kUsage);
  }
  // Loading prints its line whatever the log level; here it is one of the log's.
  const StdoutGuard guard(settings.log > 0 ? ModuleLines::kMessages : ModuleLines::kDropped);
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
        state.Control(code, (settings.*field).value_or(state.source.width));
      }
      void operator()(double Settings::*field) const { state.Control(code, settings.*field); }
      void operator()(const RateField& number) const { state.Control(code, settings.*number.field); }
      void operator()(FrameCount Settings::*field) const {
        state.Control(code, (settings.*field).Frames(state.source.fps));
      }
      void operator()(std::string Settings::*) const { state.SendPath(code, settings); }
      void operator()(bool Settings::*field) const { state.Control(code, settings.*field ? 1 : 0); }
      void operator()(const Choice& choice) const { state.Control(code, settings.*choice.field); }
    };
    std::visit(Sender{state, settings, setting.code}, setting.field);
  }
  CheckFrameSize(*state.context, source);
}

Detector::~Detector() = default;

FrameReport Detector::Write(LumaFrame& frame) {
  State& state = *state_;
  VEL_STOPNGO_CTX& context = *state.context;
  if (frame.width != state.source.width || frame.height != state.source.height) {
    throw Failure("frame " + std::to_string(frame.index) +
                  ": not of the size that the detector was opened for");
  }
  FrameReport report;
  report.index = frame.index;
  report.time_s = frame.time_s;
  // The write itself may end a hold or start one, so what it is going to do is read off before.
  report.decided = context.FrameOld != nullptr;
  report.analysed = report.decided && context.AlarmCounter[1] >= context.TimeCooling;
  state.report = {};
  off_t result = 0;
  {
    const StdoutGuard guard(context.Log > 0 ? ModuleLines::kMessages : ModuleLines::kNone);
    const auto start = std::chrono::steady_clock::now();
    result = state.operations.write(&context, frame.pixels.data(), static_cast<off_t>(frame.pixels.size()));
    report.write_ns =
        std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
  }
  if (result != 0) {
    throw Failure(
        "frame " + std::to_string(frame.index) + ": the module refused it: " + RegionText(context) +
        " (see --roi-x, --roi-y, --roi-width, --roi-height, --scale, --block-size, --features, --hiddens)");
  }
  if (report.analysed) {
    report.score = state.score(context.Feature, context.Weight, context.Features_2, context.Hiddens);
  }
  report.alarm_counter = context.AlarmCounter[0];
  report.hold_timer = context.AlarmCounter[1];
  report.changed = state.report.came;
  report.decision = report.changed ? state.report.decision : context.Flag;
  return report;
}

const VEL_STOPNGO_CTX& Detector::Context() const { return *state_->context; }

}  // namespace stopngo
