// run.cpp: stopngo run: replays a recording or a camera through the module and tells its decisions.
#include <CLI/CLI.hpp>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "base/file_register.h"
#include "base/interruption.h"
#include "base/output_file.h"
#include "base/progress.h"
#include "base/warning.h"
#include "command/options/settings_options.h"
#include "command/options/setup_check.h"
#include "command/options/source_options.h"
#include "command/report/run_report.h"
#include "command/report/trace.h"
#include "command/subcommand.h"
#include "host/detector.h"
#include "host/settings/settings.h"
#include "overlay/debug_picture.h"
#include "video/damage.h"
#include "video/open_source.h"

namespace stopngo {
namespace {

constexpr const char* kRunFooter =
    R"(A camera runs until it is interrupted (Ctrl-C), which ends with the summary too; the exit code is the signal's,
and a trace says in its last line that it was cut short. It can be followed while it grows (tail -f).
Settings may stand in a TOML file under the names of their options:
  time-cooling = "2s"
  weights = "weights.bin"    # from the file's own folder

Examples:
  stopngo run drive.mp4 --weights weights.bin
  stopngo run drive.mp4 --config car.toml --rate 10 --trace frames.tsv
  stopngo run /dev/video0 --original --weights weights.bin --json
  stopngo run - --raw 800x480 --raw-fps 30 --no-weights < luma.raw)";

/// What the same settings would do without gates.
Settings Ungated(Settings settings) {
  settings.gates = 0;
  settings.log = 0;
  settings.debug_fb.clear();
  return settings;
}

class RunCommand : public Subcommand {
 public:
  explicit RunCommand(CLI::App& app);
  void Complete() override;
  void Run() override;

 private:
  void RunFrames(FrameSource& frames, const Module& module, Detector& detector, RunReport& report,
                 std::optional<Trace>& trace) const;

  Settings settings_;
  SettingsOptions options_;
  SourceOptions source_;
  std::string trace_;
  bool allow_damaged_ = false;
  bool json_ = false;
};

RunCommand::RunCommand(CLI::App& app) : options_(app, settings_) {
  app.footer(kRunFooter);
  AddSourceOptions(app, source_);
  AddAllowDamaged(app, allow_damaged_);
  app.add_option("--trace", trace_, "tab-separated file that receives a line a frame")->type_name("FILE");
  app.add_flag("--json", json_, "JSON Lines: an object a decision, the summary last");
}

void RunCommand::Complete() {
  options_.Complete();
  FileRegister files;
  options_.EnterFiles(files);
  EnterInput(files, source_.input);
  files.Writes(trace_, "--trace");
  files.Writes(settings_.debug_fb, "--debug-fb");
}

void RunCommand::Run() {
  DamageRule damage(DamageRule::Kind::kAtEnd, allow_damaged_);
  const std::unique_ptr<FrameSource> frames = OpenSource(ForSettings(source_, settings_, damage));
  const Module module;
  HeedFindings(module, options_.InForce(frames->Info()));
  Detector detector(module, settings_, frames->Info());
  EndsEarly ends_early;
  // Before the first frame, so that a run of hours does not end at a path that cannot be written.
  std::optional<Trace> trace;
  std::optional<OutputFile> debug;
  if (!trace_.empty()) trace.emplace(trace_, settings_.gates != 0);
  if (!settings_.debug_fb.empty()) debug.emplace(settings_.debug_fb);
  RunReport report(json_, settings_.gates);
  const auto note = [&trace](const std::string& text) {
    if (trace) trace->Note(text);
  };
  try {
    RunFrames(*frames, module, detector, report, trace);
  } catch (const std::bad_alloc&) {
    note("cut short: not enough memory");
    throw;
  } catch (const std::exception& fault) {
    note(std::string("cut short: ") + fault.what());
    throw;
  }
  ends_early.Finishing();
  if (trace) trace->End();
  const char* const signal = InterruptingSignal();
  if (!damage.Kept().empty()) note("damaged: " + damage.Kept());
  if (signal != nullptr) note(std::string("cut short: ") + signal);
  if (debug) {
    WriteDebugPicture(debug->Stream(), detector.Context());
    debug->Commit();
  }
  report.Summarize(signal, damage.Kept());
  damage.RefuseKept();
}

void RunCommand::RunFrames(FrameSource& frames, const Module& module, Detector& detector, RunReport& report,
                           std::optional<Trace>& trace) const {
  std::optional<Detector> alone;
  if (settings_.gates != 0) alone.emplace(module, Ungated(settings_), frames.Info());
  // The module's own lines and a progress bar would write over each other.
  std::optional<Progress> progress;
  if (settings_.log <= 0) progress.emplace("run", frames.Info().frames);
  for (LumaFrame frame; NextFrame(frames, frame);) {
    const FrameReport written = detector.Write(frame);
    const FrameReport ungated = alone ? alone->Write(frame) : written;
    if (const char* const remark = detector.TakeRemark()) Warn(remark);
    if (trace) trace->Add(written, ungated);
    report.Add(written, ungated);
    if (progress) progress->Step();
  }
}

}  // namespace

std::unique_ptr<Subcommand> DeclareRun(CLI::App& app) { return std::make_unique<RunCommand>(app); }

}  // namespace stopngo
