// monitor.h: looks after the inputs of a run while they go on: status, signs of life, settings that are read anew.
#pragma once

#include <atomic>
#include <optional>
#include <thread>

#include "base/interruption.h"
#include "command/run/input_run.h"
#include "command/run/service_manager.h"

namespace stopngo {

/// On a thread of its own, from its making to its end.
class Monitor {
 public:
  /// All of it outlives the monitor. reloads: SIGHUP has the settings read anew. Tells the status for the first time:
  /// throws Failure where it cannot be written.
  Monitor(const InputRuns& runs, const RunPlan& plan, bool reloads);
  /// Tells the status once more.
  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

 private:
  void Watch();
  void WriteStatus() const;
  void TellStatus();
  void TellManager();
  void Reload();

  const InputRuns& runs_;
  const RunPlan& plan_;
  std::optional<ReloadsAtHangup> reloads_;
  ServiceManager manager_;
  SteadyTime start_ = std::chrono::steady_clock::now();
  bool failing_ = false;  ///< the status could not be written
  std::atomic<bool> ending_{false};
  std::thread thread_;
};

}  // namespace stopngo
