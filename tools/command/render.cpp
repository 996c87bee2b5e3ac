// render.cpp: stopngo render: writes a recording with what the module saw drawn on it.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/file_register.h"
#include "base/interruption.h"
#include "base/output_file.h"
#include "base/progress.h"
#include "base/results.h"
#include "base/warning.h"
#include "command/options/number_checks.h"
#include "command/options/settings_options.h"
#include "command/options/setup_check.h"
#include "command/options/source_options.h"
#include "command/subcommand.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/detector.h"
#include "host/overlay/debug_picture.h"
#include "host/overlay/overlay.h"
#include "host/sampled_area.h"
#include "host/settings/settings.h"
#include "vel_stopngo_ctx.h"
#include "video/damage.h"
#include "video/open_sink.h"
#include "video/open_source.h"

namespace stopngo {
namespace {

constexpr const char* kRenderFooter =
    R"(Drawn are the region of interest with a motion vector a block and the borders of the cells, the sums of
every cell, score, alarm counter, hold timer and decision, and the scores of the last seconds. During a
hold the module analyses nothing, and no vectors are drawn. A signal (Ctrl-C) ends the video with the last
frame that was drawn; the summary says so, the comment of an .mp4 or .mov as well, and the exit code is the
signal's.

Examples:
  stopngo render drive.mp4 seen.mp4 --weights weights.bin
  stopngo render drive.mp4 alarm.png --config car.toml
  stopngo render drive.mp4 seen.mp4 --still moment.png --still-at 14.5 --weights weights.bin
  stopngo render full.mp4 seen.mkv --original --rate 10 --no-weights)";

struct RenderArguments {
  explicit RenderArguments(CLI::App& app) : options(app, settings) {}

  Settings settings;
  SettingsOptions options;
  SourceOptions source;
  std::string output;
  std::string still;
  std::optional<double> still_at;  ///< seconds; unset: at the first alarm
  double history_s = kUsualHistory_s;
  bool allow_damaged = false;
  bool json = false;
};

bool IsPng(const std::string& path) { return std::filesystem::path(path).extension() == ".png"; }

/// The paths that are written; at least one of them is set.
struct Outputs {
  std::string video;
  std::string still;
};

Outputs OutputsOf(const RenderArguments& arguments) {
  const auto refuse = [](const std::string& sentence) { throw Failure(sentence, ExitCode::kUsage); };
  const bool picture_only = IsPng(arguments.output);
  if (picture_only && !arguments.still.empty()) {
    refuse("--still: " + arguments.output + " is the still picture already");
  }
  if (arguments.still_at && !picture_only && arguments.still.empty()) {
    refuse("--still-at: needs --still FILE, or an output that ends in .png");
  }
  Outputs outputs{arguments.output, arguments.still};
  if (picture_only) std::swap(outputs.video, outputs.still);
  FileRegister files;
  arguments.options.EnterFiles(files);
  EnterInput(files, arguments.source.input);
  files.Writes(outputs.video, "the video");
  files.Writes(outputs.still, "the still picture");
  files.Writes(arguments.settings.debug_fb, "--debug-fb");
  return outputs;
}

/// The still picture, from the moment that it is for.
class Still {
 public:
  /// at_s: its time; unset: the first alarm. half_frame_s: how far from it the nearest frame may lie.
  Still(const std::string& path, std::optional<double> at_s, double half_frame_s)
      : at_s_(at_s), half_frame_s_(half_frame_s) {
    // Opened before the work, so that a path that cannot be written is told at once.
    if (!path.empty()) file_.emplace(path);
  }

  [[nodiscard]] bool Wants(const FrameReport& report) const {
    if (!Missing()) return false;
    return at_s_ ? report.time_s > *at_s_ - half_frame_s_ : report.decision == 1;
  }
  /// Whether the last frame has to do, for want of an alarm.
  [[nodiscard]] bool WantsLast() const { return Missing() && !at_s_; }
  [[nodiscard]] std::optional<double> TakenAt() const { return taken_s_; }

  void Take(const Canvas& picture, double time_s) {
    picture.WritePng(file_->Stream());
    file_->Flush();
    taken_s_ = time_s;
  }

  [[nodiscard]] bool Missing() const { return file_ && !taken_s_; }
  /// Null when nothing was taken.
  [[nodiscard]] OutputFile* File() { return taken_s_ ? &*file_ : nullptr; }

 private:
  std::optional<double> at_s_;
  double half_frame_s_;
  std::optional<OutputFile> file_;
  std::optional<double> taken_s_;
};

struct Counts {
  long long frames = 0;
  long long alarms = 0;
  std::optional<double> first_alarm_s;
  double last_s = 0;

  void Add(const FrameReport& report) {
    ++frames;
    last_s = report.time_s;
    if (!report.changed || report.decision != 1) return;
    ++alarms;
    if (!first_alarm_s) first_alarm_s = report.time_s;
  }
};

std::string Seconds(double time_s) {
  const double hundredths = std::round(time_s * 100);
  std::string text = std::to_string(static_cast<long long>(hundredths));
  // At least one digit before the point and two behind it.
  if (text.size() < 3) text.insert(0, 3 - text.size(), '0');
  return text.insert(text.size() - 2, ".") + " s";
}

/// signal: that cut it short; null: none did.
std::string Summary(const RenderArguments& arguments, const Outputs& outputs, const Counts& counts,
                    std::optional<double> still_s, const char* signal, const std::string& damage) {
  if (arguments.json) {
    nlohmann::ordered_json line{{"input", WithoutPassword(arguments.source.input)}};
    if (!outputs.video.empty()) line["output"] = outputs.video;
    line["frames"] = counts.frames;
    line["alarms"] = counts.alarms;
    if (counts.first_alarm_s) line["first_alarm_s"] = *counts.first_alarm_s;
    if (still_s) line["still"] = {{"file", outputs.still}, {"time_s", *still_s}};
    if (signal != nullptr) line["cut_short"] = signal;
    if (!damage.empty()) line["damaged"] = damage;
    return JsonLine(line);
  }
  std::string text = outputs.video.empty() ? WithoutPassword(arguments.source.input) : outputs.video;
  text += ": " + std::to_string(counts.frames) + " frames, " + std::to_string(counts.alarms) +
          (counts.alarms == 1 ? " alarm" : " alarms");
  if (counts.first_alarm_s) text += ", the first at " + Seconds(*counts.first_alarm_s);
  if (still_s) text += "; " + outputs.still + " shows " + Seconds(*still_s);
  if (signal != nullptr) text += std::string("; cut short by ") + signal;
  return text;
}

/// One recording on its way through the module onto pictures.
class Rendering {
 public:
  Rendering(const RenderArguments& arguments, Outputs outputs, std::unique_ptr<FrameSource> frames)
      : arguments_(arguments),
        outputs_(std::move(outputs)),
        frames_(std::move(frames)),
        detector_(module_, arguments.settings, frames_->Info()),
        overlay_(Info(), ProbeSampledArea(module_, arguments.settings, Info()), arguments.history_s),
        still_(outputs_.still, arguments.still_at, Info().fps > 0 ? 0.5 / Info().fps : 0) {
    if (!arguments.settings.debug_fb.empty()) debug_.emplace(arguments.settings.debug_fb);
    if (outputs_.video.empty()) return;
    video_.emplace(outputs_.video);
    sink_ = OpenSink({outputs_.video, Info().width, Info().height, Info().fps, PixelFormat::kBgrx}, *video_);
  }

  void Run() {
    RenderFrames();
    cut_short_ = InterruptingSignal();
    ends_early_.Finishing();
    if (still_.Missing() && cut_short_ == nullptr) {
      throw Failure(WithoutPassword(arguments_.source.input) +
                    ": ends before the time that --still-at asks for");
    }
    if (debug_) WriteDebugPicture(debug_->Stream(), detector_.Context());
    if (sink_ && cut_short_ != nullptr) {
      sink_->Comment(std::string("cut short by ") + cut_short_ + " at " + Seconds(counts_.last_s));
    }
    if (sink_) sink_->Finish();
    CommitTogether({video_ ? &*video_ : nullptr, still_.File(), debug_ ? &*debug_ : nullptr});
  }

  [[nodiscard]] std::string Tell(const std::string& damage) const {
    return Summary(arguments_, outputs_, counts_, still_.TakenAt(), cut_short_, damage);
  }

 private:
  [[nodiscard]] const SourceInfo& Info() const { return frames_->Info(); }

  void RenderFrames() {
    std::optional<Progress> progress;
    // The module's own lines and a progress bar would write over each other.
    if (arguments_.settings.log <= 0) progress.emplace("render", Info().frames);
    LumaFrame frame;
    LumaFrame next;
    FrameReport report;
    while (NextFrame(*frames_, next)) {
      // The last frame has to outlast the attempt to read another one.
      std::swap(frame, next);
      report = detector_.Write(frame);
      if (const char* const remark = detector_.TakeRemark()) Warn(remark);
      counts_.Add(report);
      overlay_.Record(report);
      const bool still_wanted = still_.Wants(report);
      if (sink_) FillGap(report.time_s);
      if (sink_ || still_wanted) overlay_.Draw(ViewOf(frame), report, detector_.Context());
      if (still_wanted) still_.Take(overlay_.Picture(), report.time_s);
      if (sink_) WritePicture();
      if (progress) progress->Step();
    }
    if (counts_.frames == 0 && !Interrupted())
      throw Failure(WithoutPassword(arguments_.source.input) + ": holds no frames");
    if (!still_.WantsLast() || counts_.frames == 0) return;
    overlay_.Draw(ViewOf(frame), report, detector_.Context());
    still_.Take(overlay_.Picture(), report.time_s);
  }

  void WritePicture() {
    sink_->Write(overlay_.Picture().Pixels());
    ++pictures_;
  }

  /// The last picture again for as long as the recording has none, so that the video keeps its times.
  void FillGap(double time_s) {
    constexpr double kLongest_s = 600;  // beyond it a clock was set, and nothing is missing
    const double fps = Info().fps;
    const double missing = std::round((time_s - left_out_s_) * fps) - static_cast<double>(pictures_);
    if (missing > kLongest_s * fps) left_out_s_ += missing / fps;
    if (pictures_ == 0 || missing > kLongest_s * fps) return;
    for (double filled = 0; filled < missing && !Interrupted(); ++filled) WritePicture();
  }

  const RenderArguments& arguments_;
  Outputs outputs_;
  std::unique_ptr<FrameSource> frames_;
  EndsEarly ends_early_;  // ahead of all that is written
  Module module_;
  Detector detector_;
  Overlay overlay_;
  Still still_;
  std::optional<OutputFile> debug_;  ///< receives the debug framebuffer, where --debug-fb asks for it
  std::optional<OutputFile> video_;
  std::unique_ptr<VideoSink> sink_;  ///< none when only a still picture is wanted
  Counts counts_;
  const char* cut_short_ = nullptr;  ///< the signal that did
  std::int64_t pictures_ = 0;        ///< written to the sink
  double left_out_s_ = 0;            ///< of the recording's time
};

class RenderCommand : public Subcommand {
 public:
  explicit RenderCommand(CLI::App& app);

  void Complete() override {
    arguments_.options.Complete();
    outputs_ = OutputsOf(arguments_);
  }

  void Run() override {
    DamageRule damage(DamageRule::Kind::kAtEnd, arguments_.allow_damaged);
    auto frames = OpenSource(ForSettings(arguments_.source, arguments_.settings, damage));
    HeedFindings(Module(), arguments_.options.InForce(frames->Info()));
    Rendering rendering(arguments_, outputs_, std::move(frames));
    rendering.Run();
    WriteResult(rendering.Tell(damage.Kept()));
    damage.RefuseKept();
  }

 private:
  RenderArguments arguments_;
  Outputs outputs_;
};

RenderCommand::RenderCommand(CLI::App& app) : arguments_(app) {
  app.footer(kRenderFooter);
  AddInput(app, arguments_.source.input);
  AddSourceOptions(app, arguments_.source);
  app.add_option("OUT", arguments_.output,
                 "video file (.mp4, .mkv, .y4m), - for Y4M on standard output, or a .png for a still picture "
                 "alone")
      ->required()
      ->type_name("FILE");
  app.add_option("--still", arguments_.still,
                 "also write a still picture: the first alarm, else the last frame")
      ->type_name("FILE.png");
  app.add_option("--still-at", arguments_.still_at, "the still picture is of this time instead")
      ->type_name("SECONDS")
      ->check(ZeroOrMore());
  app.add_option("--history", arguments_.history_s, "seconds that the strip of scores covers")
      ->type_name("SECONDS")
      ->check(Within(1, 3600))
      ->capture_default_str();
  AddAllowDamaged(app, arguments_.allow_damaged);
  app.add_flag("--json", arguments_.json, "the summary as one line of JSON");
}

}  // namespace

std::unique_ptr<Subcommand> DeclareRender(CLI::App& app) { return std::make_unique<RenderCommand>(app); }

}  // namespace stopngo
