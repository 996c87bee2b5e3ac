// monitor.cpp: looks after the inputs of a run while they go on.
#include "command/run/monitor.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "base/output_file.h"
#include "base/results.h"
#include "base/time_of_day.h"
#include "base/warning.h"
#include "host/common/failure.h"

namespace stopngo {
namespace {

using Json = nlohmann::ordered_json;
using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenLooks{100};
constexpr std::chrono::seconds kBetweenStatus{1};

}  // namespace

Monitor::Monitor(const InputRuns& runs, const RunPlan& plan, bool reloads) : runs_(runs), plan_(plan) {
  if (reloads) reloads_.emplace();
  WriteStatus();
  thread_ = std::thread([this] { Watch(); });
}

Monitor::~Monitor() {
  ending_ = true;
  thread_.join();
}

void Monitor::Watch() {
  manager_.Tell("READY=1");
  TellManager();
  for (SteadyTime due = steady_clock::now() + kBetweenStatus; !ending_;
       std::this_thread::sleep_for(kBetweenLooks)) {
    if (ReloadsAtHangup::TakeRequest()) Reload();
    const SteadyTime now = steady_clock::now();
    if (now < due) continue;
    due += kBetweenStatus * ((now - due) / kBetweenStatus + 1);
    TellStatus();
    TellManager();
  }
  TellStatus();
  manager_.Tell("STOPPING=1");
}

void Monitor::WriteStatus() const {
  const std::string& path = plan_.live.status;
  if (path.empty()) return;
  Json line{{"type", "status"},
            {"when", TimeOfDay(std::chrono::system_clock::now())},
            {"uptime", std::chrono::duration<double>(steady_clock::now() - start_).count()},
            {"inputs", Json::array()}};
  for (const auto& run : runs_) line["inputs"].push_back(run->Status());
  if (plan_.on_alarm != nullptr) {
    const AlarmCommand::Counts counts = plan_.on_alarm->Told();
    line["on_alarm"] = {
        {"started", counts.started}, {"failed", counts.failed}, {"left_out", counts.left_out}};
  }
  if (path == "-") {
    WriteResult(JsonLine(line));
  } else {
    WriteFile(path, JsonLine(line) + '\n', OutputFile::Lasts::kUntilPowerFails);
  }
}

// Who watches is not who is watched: where the status cannot be written any more, the detector goes on.
void Monitor::TellStatus() {
  try {
    WriteStatus();
    if (std::exchange(failing_, false)) Report(plan_.live.status + ": is written again");
  } catch (const Failure& failure) {
    if (!std::exchange(failing_, true)) Report(failure.what());
  }
}

// A manager that hears nothing more starts the process anew: so is what waits for ever within a library ended.
void Monitor::TellManager() {
  if (!manager_.IsThere()) return;
  const std::optional<double> period_s = manager_.WatchdogPeriod();
  bool awake = true;
  std::string status;
  for (const auto& run : runs_) {
    awake = awake && run->IsAwake(period_s.value_or(1));
    status += (status.empty() ? "STATUS=" : "; ") + run->Glance();
  }
  manager_.Tell(status);
  if (awake && period_s) manager_.Tell("WATCHDOG=1");
}

void Monitor::Reload() {
  try {
    const Setup setup = plan_.options->ReadAnew();
    for (const auto& run : runs_) run->Renew(setup);
  } catch (const Failure& failure) {
    Report(std::string("SIGHUP: the old settings go on: ") + failure.what());
  } catch (const std::exception& fault) {
    Report(std::string("SIGHUP: the old settings go on: ") + fault.what());
  }
}

}  // namespace stopngo
