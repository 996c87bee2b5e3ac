// live_input.cpp: an input that does not wait for us: read on a thread of its own, the newest frame handed over.
#include "live/live_input.h"

#include <pthread.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <utility>

#include "base/interruption.h"
#include "base/warning.h"
#include "host/common/failure.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

using std::chrono::steady_clock;

// Of no meaning to anybody else here; who gets it while waiting in the system comes back with EINTR.
constexpr int kWakes = SIGURG;
// A signal that comes just before the wait it is meant for is lost: it is sent again and again.
constexpr std::chrono::milliseconds kBetweenWakes{50};
// An input that was read for so long is a new one, whose troubles are counted anew.
constexpr double kSound_s = 10;

void CatchWakes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  sigaction(kWakes, &action, nullptr);
}

steady_clock::duration Seconds(double seconds) {
  return std::chrono::duration_cast<steady_clock::duration>(std::chrono::duration<double>(seconds));
}

double SecondsSince(SteadyTime time) {
  return std::chrono::duration<double>(steady_clock::now() - time).count();
}

}  // namespace

LiveInput::LiveInput(std::string name, OpenLive open, LiveLimits limits)
    : name_(std::move(name)), open_(std::move(open)), limits_(limits), last_heard_(steady_clock::now()) {
  CatchWakes();
  thread_ = std::thread([this] { Run(); });
}

LiveInput::~LiveInput() {
  ending_ = true;
  changed_.notify_all();
  while (reading_) {
    WakeReader();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  thread_.join();
}

LiveInput::Taken LiveInput::Take(LiveFrame& frame, std::chrono::milliseconds patience) {
  const SteadyTime until = steady_clock::now() + patience;
  std::unique_lock lock(mutex_);
  while (!fresh_ && !ended_ && steady_clock::now() < until) {
    changed_.wait_until(lock, std::min(until, steady_clock::now() + kBetweenWakes));
    if (GivesUp()) WakeReader();
    TellSilence();
  }
  if (fresh_) {
    std::swap(frame, newest_);
    fresh_ = false;
    return Taken::kFrame;
  }
  if (!ended_) return Taken::kNothing;
  if (fault_) std::rethrow_exception(fault_);
  return Taken::kEnd;
}

LiveFigures LiveInput::Figures() const {
  const std::lock_guard lock(mutex_);
  return figures_;
}

void LiveInput::OpenAnew() {
  opens_anew_ = true;
  changed_.notify_all();
}

// mutex_ is held.
void LiveInput::TellSilence() {
  const bool silent = !limits_.reopens && Silent();
  if (silent && !told_silence_) Report(name_ + Print(": no frame for %.3g s", limits_.silence_s));
  told_silence_ = silent;
}

double LiveInput::Patience_s() const {
  return opening_ ? std::max(limits_.silence_s, limits_.opening_s) : limits_.silence_s;
}

bool LiveInput::Silent() const { return waiting_ && SecondsSince(last_heard_) > Patience_s(); }

// A signal has sources end by themselves, before whoever takes their frames has seen it.
bool LiveInput::IsEnding() const { return ending_ || Interrupted(); }

void LiveInput::WakeReader() { pthread_kill(thread_.native_handle(), kWakes); }

void LiveInput::Run() {
  std::exception_ptr fault;
  try {
    for (;;) {
      std::string trouble;
      try {
        Connect();
        if (opens_anew_.exchange(false) && !IsEnding()) continue;
        if (IsEnding() || (limits_.ends && !Silent())) break;
        trouble = Silent() ? Print("no frame for %.3g s", limits_.silence_s) : "it has ended";
      } catch (const Failure& failure) {
        if (failure.Code() == ExitCode::kUsage) throw;
        if (IsEnding()) break;
        if (opens_anew_.exchange(false)) continue;
        trouble = Silent() ? Print("nothing came for %.3g s", Patience_s()) : failure.what();
      }
      if (!TryAgain(trouble)) break;
    }
  } catch (...) {
    fault = std::current_exception();
  }
  const std::lock_guard lock(mutex_);
  ended_ = true;
  figures_.connected = false;
  fault_ = fault;
  changed_.notify_all();
  reading_ = false;
}

// Says what went wrong and waits; false when the reading ends meanwhile. Throws Failure when it was tried often enough.
bool LiveInput::TryAgain(const std::string& trouble) {
  waiting_ = false;
  const std::string sentence = trouble.starts_with(name_) ? trouble : name_ + ": " + trouble;
  {
    const std::lock_guard lock(mutex_);
    figures_.connected = false;
    ++figures_.troubles;
    figures_.last_trouble = sentence;
  }
  if (limits_.retries >= 0 && tries_ >= limits_.retries) throw Failure(sentence);
  ++tries_;
  wait_s_ = wait_s_ == 0 ? limits_.first_wait_s : std::min(2 * wait_s_, limits_.longest_wait_s);
  Report(sentence + Print("; opened anew in %.3g s", wait_s_));
  WaitFor(steady_clock::now() + Seconds(wait_s_));
  return !IsEnding();
}

void LiveInput::WaitFor(SteadyTime time) {
  std::unique_lock lock(mutex_);
  changed_.wait_until(lock, time, [this] { return ending_ || opens_anew_; });
}

// From the opening to the end, or to trouble.
void LiveInput::Connect() {
  Heard();
  opening_ = true;
  waiting_ = true;
  const bool first = !connected_before_;
  const std::unique_ptr<FrameSource> source =
      open_([this] { return GivesUp(); }, [this, first](const Remark& remark) { Hear(remark, first); });
  if (!first) Report(source->Info().description + ": opened again");
  {
    const std::lock_guard lock(mutex_);
    figures_.connected = true;
    figures_.reconnects += first ? 0 : 1;
  }
  connected_before_ = true;
  Heard();
  opening_ = false;
  Read(*source);
}

void LiveInput::Read(FrameSource& source) {
  const SteadyTime opened = steady_clock::now();
  // The clock goes on over the time without an input.
  const double begin_s = index_ < 0 ? 0 : std::max(time_s_, SecondsSince(start_));
  const std::int64_t begin = index_ + 1;
  bool first = true;
  for (LumaFrame frame; !GivesUp() && source.Next(frame); first = false) {
    Heard();
    if (limits_.paced) {
      waiting_ = false;
      WaitFor(opened + Seconds(frame.time_s));
      frame.read = steady_clock::now();
      Heard();
      waiting_ = true;
    }
    frame.index += begin;
    frame.time_s += begin_s;
    Put(frame, source.Info(), first);
    if (SecondsSince(opened) > kSound_s) {
      wait_s_ = 0;
      tries_ = 0;
    }
  }
}

void LiveInput::Put(LumaFrame& frame, const SourceInfo& info, bool first) {
  index_ = frame.index;
  time_s_ = frame.time_s;
  const std::lock_guard lock(mutex_);
  figures_.frames = frame.index + 1;
  figures_.dropped += fresh_ ? 1 : 0;
  std::swap(newest_.luma, frame);
  // What a dropped first one was, the one in its place is.
  newest_.anew = first || (fresh_ && newest_.anew);
  newest_.format = info;
  fresh_ = true;
  changed_.notify_all();
}

// What is broken off ends early, and that is no damage of the input.
void LiveInput::Hear(const Remark& remark, bool first) {
  if (GivesUp()) return;
  if (first || remark.damage) Report(remark.sentence);
  const std::lock_guard lock(mutex_);
  figures_.damages += remark.damage ? 1 : 0;
}

}  // namespace stopngo
