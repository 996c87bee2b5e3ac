// alarm_command.cpp: a command of the user's that is run at every alarm.
#include "live/alarm_command.h"

#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <exception>
#include <system_error>
#include <utility>

#include "base/time_of_day.h"
#include "base/warning.h"
#include "host/common/text.h"
#include "live/spawn.h"

namespace stopngo {
namespace {

constexpr std::chrono::seconds kGrace{2};  // after SIGTERM, and at the end of a run
// A program's end is looked for so often, while one runs: a handler of SIGCHLD would be the whole process's.
constexpr std::chrono::milliseconds kLook{20};

std::vector<std::string> EnvironmentOf(const Alarm& alarm) {
  return {"STOPNGO_INPUT=" + alarm.input,
          "STOPNGO_FRAME=" + std::to_string(alarm.frame),
          "STOPNGO_TIME=" + NumberText(alarm.time_s),
          "STOPNGO_SCORE=" + NumberText(static_cast<double>(alarm.score)),
          "STOPNGO_COUNTER=" + std::to_string(alarm.counter),
          "STOPNGO_WHEN=" + TimeOfDay(alarm.when)};
}

}  // namespace

AlarmCommand::AlarmCommand(std::vector<std::string> argv, int jobs, double limit_s)
    : argv_(std::move(argv)),
      jobs_(static_cast<std::size_t>(jobs)),
      limit_(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(limit_s))),
      watcher_([this] { Watch(); }) {}

AlarmCommand::~AlarmCommand() { Finish(); }

void AlarmCommand::Start(const Alarm& alarm) {
  {
    const std::lock_guard lock(turns_);
    if (finishing_) return;
    if (waiting_.size() + running_.size() < jobs_) {
      waiting_.push_back(alarm);
      news_.notify_one();
      return;
    }
    ++counts_.left_out;
  }
  Report(argv_.front() + ": not started for the alarm of " + TimeOfDay(alarm.when) + ", since " +
         std::to_string(jobs_) + " of it still " + (jobs_ == 1 ? "runs" : "run"));
}

void AlarmCommand::Finish() {
  {
    const std::lock_guard lock(turns_);
    finishing_ = true;
    news_.notify_one();
  }
  if (watcher_.joinable()) watcher_.join();
}

AlarmCommand::Counts AlarmCommand::Told() const {
  const std::lock_guard lock(turns_);
  return counts_;
}

void AlarmCommand::Watch() {
  std::unique_lock lock(turns_);
  bool hurried = false;
  for (;;) {
    StartWaiting(lock);
    const auto now = Clock::now();
    if (finishing_ && !hurried) {
      hurried = true;
      for (Running& running : running_) running.limit = std::min(running.limit, now + kGrace);
    }
    std::erase_if(running_, [this](Running& running) { return Ended(running); });
    for (Running& running : running_) Hurry(running, now);
    if (finishing_ && running_.empty()) return;
    if (!waiting_.empty()) continue;
    if (running_.empty()) {
      news_.wait(lock, [this] { return finishing_ || !waiting_.empty(); });
    } else {
      news_.wait_for(lock, kLook);
    }
  }
}

/// Without the lock while a program is loaded, which may be from a slow disk.
void AlarmCommand::StartWaiting(std::unique_lock<std::mutex>& lock) {
  while (!waiting_.empty()) {
    const Alarm alarm = waiting_.front();
    const std::string when = TimeOfDay(alarm.when);
    lock.unlock();
    pid_t process = 0;
    std::string reason;
    try {
      process = Spawn(argv_, EnvironmentOf(alarm), JsonOf(alarm) + '\n');
    } catch (const std::system_error& error) {
      reason = error.code().message();
    } catch (const std::exception& error) {
      reason = error.what();
    }
    lock.lock();
    waiting_.erase(waiting_.begin());
    if (process > 0) {
      ++counts_.started;
      running_.push_back({when, process, Clock::now() + limit_});
    } else {
      Fail(when, "cannot be started: " + reason);
    }
  }
}

bool AlarmCommand::Ended(Running& running) {
  siginfo_t end{};
  const auto process = static_cast<id_t>(running.process);
  const int looked = waitid(P_PID, process, &end, WEXITED | WNOHANG | WNOWAIT);
  if (looked == 0 && end.si_pid == 0) return false;
  if (looked != 0 && errno == EINTR) return false;
  // Until it is waited for, nothing else can have its number, nor its group's.
  if (running.signal != 0) kill(-running.process, SIGKILL);
  if (looked == 0) waitid(P_PID, process, &end, WEXITED);
  if (running.signal != 0) return true;  // said when it was sent
  if (looked != 0) {
    Fail(running.when, "its end cannot be learnt");
  } else if (end.si_code != CLD_EXITED) {
    Fail(running.when, "ended by signal " + std::to_string(end.si_status));
  } else if (end.si_status != 0) {
    Fail(running.when, "ended with exit code " + std::to_string(end.si_status));
  }
  return true;
}

void AlarmCommand::Hurry(Running& running, Clock::time_point now) {
  if (now < running.limit || running.signal == SIGKILL) return;
  if (running.signal == 0) {
    Fail(running.when, finishing_ ? "still runs at the end, and is ended" : "takes too long, and is ended");
  }
  running.signal = running.signal == 0 ? SIGTERM : SIGKILL;
  kill(-running.process, running.signal);
  running.limit = now + kGrace;
}

void AlarmCommand::Fail(const std::string& when, const std::string& what) {
  ++counts_.failed;
  Report(argv_.front() + ", for the alarm of " + when + ": " + what);
}

}  // namespace stopngo
