// alarm_command.h: a command of the user's that is run at every alarm.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "live/alarm.h"

namespace stopngo {

/// Runs without a shell, in a process group of its own, with the alarm in its environment (STOPNGO_INPUT, _FRAME, _TIME,
/// _SCORE, _COUNTER, _WHEN) and as a JSON line on its standard input. What it prints goes to standard error, so that
/// results stay alone on standard output. What goes wrong with it is said and counted, and stops nothing.
class AlarmCommand {
 public:
  struct Counts {
    std::int64_t started = 0;
    std::int64_t failed = 0;    ///< could not be started, took too long, or ended with other than 0
    std::int64_t left_out = 0;  ///< alarms while as many ran as may
  };

  /// argv: the program and its arguments. jobs: how many may run at once. limit_s: seconds that each may take; then its
  /// group gets SIGTERM, and SIGKILL when two seconds later its first process is still there.
  AlarmCommand(std::vector<std::string> argv, int jobs, double limit_s);
  /// As Finish.
  ~AlarmCommand();
  AlarmCommand(const AlarmCommand&) = delete;
  AlarmCommand& operator=(const AlarmCommand&) = delete;

  /// Returns at once; the command is started on a thread of this object.
  void Start(const Alarm& alarm);
  /// Waits for the commands that run: as long as they still may take, at most two seconds, and then ends them. No
  /// alarm is taken from here on.
  void Finish();
  [[nodiscard]] Counts Told() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct Running {
    std::string when;  ///< the alarm's, for what is said of it
    pid_t process = 0;
    Clock::time_point limit;
    int signal = 0;  ///< the last that it was sent for taking too long
  };

  void Watch();
  void StartWaiting(std::unique_lock<std::mutex>& lock);
  bool Ended(Running& running);
  void Hurry(Running& running, Clock::time_point now);
  void Fail(const std::string& when, const std::string& what);

  const std::vector<std::string> argv_;
  const std::size_t jobs_;
  const Clock::duration limit_;
  mutable std::mutex turns_;
  std::condition_variable news_;
  std::vector<Alarm> waiting_;
  std::vector<Running> running_;  ///< changed by the watcher alone
  Counts counts_;
  bool finishing_ = false;
  std::thread watcher_;
};

}  // namespace stopngo
