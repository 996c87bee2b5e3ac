// run.cpp: stopngo run: replays recordings or watches cameras through the module and tells its decisions.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#include "base/file_register.h"
#include "base/interruption.h"
#include "base/output_file.h"
#include "base/output_folder.h"
#include "base/parallel.h"
#include "base/warning.h"
#include "command/options/number_checks.h"
#include "command/options/settings_options.h"
#include "command/options/source_options.h"
#include "command/report/trace.h"
#include "command/run/input_run.h"
#include "command/run/monitor.h"
#include "command/subcommand.h"
#include "host/common/failure.h"
#include "host/overlay/debug_picture.h"
#include "host/settings/settings.h"
#include "live/command_line.h"

namespace stopngo {
namespace {

constexpr const char* kRunFooter =
    R"(Cameras and streams are live: of their frames the newest is handed over, and when one goes away it is opened anew.
They run until they are interrupted (Ctrl-C), which ends with the summary too; the exit code is the signal's, and a
trace says in its last line that it was cut short. It can be followed while it grows (tail -f). SIGHUP has settings
and weights read anew. Of several inputs each has a detector of its own; one that fails ends alone.
Settings may stand in a TOML file under the names of their options:
  time-cooling = "2s"
  weights = "weights.bin"    # from the file's own folder

Examples:
  stopngo run drive.mp4 --weights weights.bin
  stopngo run drive.mp4 --config car.toml --rate 10 --trace frames.tsv
  stopngo run /dev/video0 --size 1280x720 --fps 30 --status /run/stopngo.json --json
  stopngo run rtsp://front/street rtsp://rear/street --silence 3
  stopngo run - --raw 800x480 --raw-fps 30 --no-weights < luma.raw)";

class RunCommand : public Subcommand {
 public:
  explicit RunCommand(CLI::App& app);
  void Complete() override;
  void Run() override;

 private:
  [[nodiscard]] std::unique_ptr<Monitor> Watch(const InputRuns& runs) const;
  void RunOne(const Module& module);
  void RunSeveral(const Module& module);
  static void RunAmongOthers(InputRun& run, std::counting_semaphore<>& turns, EndsEarly& ends_early);
  void Separately(const std::function<void()>& step);

  RunPlan plan_;
  SettingsOptions options_;
  std::vector<std::string> inputs_;
  std::string trace_;
  std::vector<std::string> on_alarm_;  ///< the command's words
  int jobs_ = HardwareJobs();
  std::atomic<std::size_t> failed_{0};  ///< inputs, of several
};

RunCommand::RunCommand(CLI::App& app) : options_(app, plan_.settings) {
  app.footer(kRunFooter);
  AddInput(app, inputs_);
  AddSourceOptions(app, plan_.source);
  AddAllowDamaged(app, plan_.allow_damaged);
  app.add_option("--trace", trace_, "tab-separated file that receives a line a frame")->type_name("FILE");
  app.add_flag("--json", plan_.json, "JSON Lines: an object a decision, the summary last");
  app.add_option("--jobs", jobs_, "how many of several recordings run at once; live inputs all do")
      ->type_name("N")
      ->check(AboveZero())
      ->capture_default_str();
  AddLiveOptions(app, plan_.live, plan_.source);
}

void RunCommand::Complete() {
  options_.Complete();
  plan_.options = &options_;
  plan_.several = inputs_.size() > 1;
  if (plan_.several && !(trace_.empty() && plan_.settings.debug_fb.empty())) {
    throw Failure((trace_.empty() ? "--debug-fb" : "--trace") +
                      std::string(": is of one input, and there are ") + std::to_string(inputs_.size()),
                  ExitCode::kUsage);
  }
  if (!plan_.live.on_alarm.empty()) {
    on_alarm_ = CommandWords("--on-alarm", plan_.live.on_alarm);
    RequireProgram("--on-alarm", on_alarm_.front());
  }
  FileRegister files;
  options_.EnterFiles(files);
  for (const std::string& input : inputs_) EnterInput(files, input);
  files.Writes(trace_, "--trace");
  files.Writes(plan_.settings.debug_fb, "--debug-fb");
  files.Writes(plan_.live.status == "-" ? std::string() : plan_.live.status, "--status");
}

void RunCommand::Run() {
  const Module module;
  if (!plan_.live.clips.folder.empty()) MakeOutputFolder(plan_.live.clips.folder);
  std::optional<AlarmCommand> on_alarm;
  if (!on_alarm_.empty()) {
    on_alarm.emplace(on_alarm_, plan_.live.on_alarm_jobs, plan_.live.on_alarm_limit_s);
    plan_.on_alarm = &*on_alarm;
  }
  plan_.several ? RunSeveral(module) : RunOne(module);
}

std::unique_ptr<Monitor> RunCommand::Watch(const InputRuns& runs) const {
  const bool live = std::ranges::any_of(runs, [](const auto& run) { return run->IsLive(); });
  if (!live && plan_.live.status.empty()) return nullptr;
  return std::make_unique<Monitor>(runs, plan_, live);
}

void RunCommand::RunOne(const Module& module) {
  InputRuns runs;
  InputRun& run = *runs.emplace_back(std::make_unique<InputRun>(plan_, module, inputs_.front()));
  EndsEarly ends_early;
  // Before the first frame, so that a run of hours does not end at a path that cannot be written.
  std::optional<Trace> trace;
  std::optional<OutputFile> debug;
  if (!trace_.empty()) trace.emplace(trace_, plan_.settings.gates != 0);
  if (!plan_.settings.debug_fb.empty()) debug.emplace(plan_.settings.debug_fb);
  const auto note = [&trace](const std::string& text) {
    if (trace) trace->Note(text);
  };
  try {
    const std::unique_ptr<Monitor> monitor = Watch(runs);
    run.Run(trace ? &*trace : nullptr);
    ends_early.Finishing();
  } catch (const std::bad_alloc&) {
    note("cut short: not enough memory");
    throw;
  } catch (const std::exception& fault) {
    note(std::string("cut short: ") + fault.what());
    throw;
  }
  if (trace) trace->End();
  const char* const signal = InterruptingSignal();
  if (!run.Damage().empty()) note("damaged: " + run.Damage());
  if (signal != nullptr) note(std::string("cut short: ") + signal);
  if (debug && run.LastDetector() != nullptr) {
    WriteDebugPicture(debug->Stream(), run.LastDetector()->Context());
    debug->Commit();
  }
  run.Finish();
}

void RunCommand::RunSeveral(const Module& module) {
  EndsEarly ends_early;
  InputRuns runs;
  for (const std::string& input : inputs_) {
    Separately([&] { runs.push_back(std::make_unique<InputRun>(plan_, module, input)); });
  }
  {
    const std::unique_ptr<Monitor> monitor = Watch(runs);
    std::counting_semaphore<> turns(jobs_);
    std::vector<std::thread> threads;
    threads.reserve(runs.size());
    for (const auto& run : runs) {
      threads.emplace_back([this, &run, &turns, &ends_early] {
        Separately([&] { RunAmongOthers(*run, turns, ends_early); });
      });
    }
    for (std::thread& thread : threads) thread.join();
    ends_early.Finishing();
  }
  if (failed_ > 0) {
    throw Failure(std::to_string(failed_) + " of " + std::to_string(inputs_.size()) + " inputs failed");
  }
}

void RunCommand::RunAmongOthers(InputRun& run, std::counting_semaphore<>& turns, EndsEarly& ends_early) {
  const auto give_back = [](std::counting_semaphore<>* taken) { taken->release(); };
  std::unique_ptr<std::counting_semaphore<>, decltype(give_back)> turn(nullptr, give_back);
  if (!run.IsLive()) {
    turns.acquire();
    turn.reset(&turns);
  }
  run.Run(nullptr);
  if (Interrupted()) ends_early.Finishing();
  run.Finish();
}

// A step of one of several inputs: what ends it is said, and the others go on.
void RunCommand::Separately(const std::function<void()>& step) {
  std::string sentence;
  try {
    step();
    return;
  } catch (const NobodyReads&) {
    EndBySignal(SIGPIPE);
  } catch (const std::bad_alloc&) {
    sentence = "not enough memory";
  } catch (const std::exception& fault) {
    sentence = fault.what();
  }
  ++failed_;
  Report(sentence);
}

}  // namespace

std::unique_ptr<Subcommand> DeclareRun(CLI::App& app) { return std::make_unique<RunCommand>(app); }

}  // namespace stopngo
