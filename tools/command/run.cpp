// run.cpp: stopngo run: replays a recording or a camera through the module and tells its decisions.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/interruption.h"
#include "base/output_file.h"
#include "base/progress.h"
#include "command/run_report.h"
#include "command/settings_options.h"
#include "command/source_options.h"
#include "command/subcommand.h"
#include "host/detector.h"
#include "host/failure.h"
#include "host/settings.h"
#include "overlay/debug_picture.h"
#include "video/damage.h"
#include "video/open_source.h"

namespace stopngo {
namespace {

constexpr const char* kRunFooter =
    R"(A camera runs until it is interrupted (Ctrl-C), which ends with the summary too.
Settings may stand in a TOML file under the names of their options:
  time-cooling = "2s"
  weights = "weights.bin"    # from the file's own folder

Examples:
  stopngo run drive.mp4 --weights weights.bin
  stopngo run drive.mp4 --config car.toml --rate 10 --trace frames.tsv
  stopngo run /dev/video0 --original --weights weights.bin --json
  stopngo run - --raw 800x480 --raw-fps 30 --no-weights < luma.raw)";

class RunCommand : public Subcommand {
 public:
  explicit RunCommand(CLI::App& app);
  void Complete() override;
  void Run() override;

 private:
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
  std::vector<std::string> inputs = options_.Files();
  inputs.push_back(source_.input);
  RefuseOverwriting(std::vector{trace_, settings_.debug_fb}, inputs);
}

// Before the first frame, so that a run of hours does not end at a path that cannot be written.
std::unique_ptr<OutputFile> OpenOutput(const std::string& path) {
  return path.empty() ? nullptr : std::make_unique<OutputFile>(path);
}

void RunCommand::Run() {
  DamageRule damage(DamageRule::Kind::kAtEnd, allow_damaged_);
  const std::unique_ptr<FrameSource> frames = OpenSource(ForSettings(source_, settings_, damage));
  const Module module;
  Detector detector(module, settings_, frames->Info());
  CatchInterruption();
  const auto trace_file = OpenOutput(trace_);
  const auto debug_file = OpenOutput(settings_.debug_fb);
  if (trace_file) WriteTraceHeader(trace_file->Stream());
  RunReport report(json_);
  {
    // The module's own lines and a progress bar would write over each other.
    std::optional<Progress> progress;
    if (settings_.log <= 0) progress.emplace("run", frames->Info().frames);
    LumaFrame frame;
    while (!Interrupted() && frames->Next(frame)) {
      const FrameReport written = detector.Write(frame);
      report.Add(written);
      if (trace_file) WriteTraceLine(trace_file->Stream(), written);
      if (progress) progress->Step();
    }
  }
  if (trace_file) trace_file->Commit();
  if (debug_file) {
    WriteDebugPicture(debug_file->Stream(), detector.Context());
    debug_file->Commit();
  }
  report.Summarize();
  damage.RefuseKept();
}

}  // namespace

std::unique_ptr<Subcommand> DeclareRun(CLI::App& app) { return std::make_unique<RunCommand>(app); }

}  // namespace stopngo
