// interruption.cpp: signals end a command, and nothing unfinished stays behind.
#include "base/interruption.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

namespace stopngo {
namespace {

constexpr unsigned kPatience_s = 2;

struct CaughtSignal {
  int number;
  const char* name;
};
constexpr std::array kCaught{CaughtSignal{SIGINT, "SIGINT"}, CaughtSignal{SIGTERM, "SIGTERM"},
                             CaughtSignal{SIGHUP, "SIGHUP"}};

// All of it is read by the handler, on whatever thread the signal finds.
std::atomic<int> first_signal{0};  // 0: none came
std::atomic<bool> ends_early{false};
std::atomic<bool> finishing{false};
std::atomic<int> waits{0};
std::atomic<bool> reloads{false};
std::atomic<bool> reload_asked{false};
std::array<std::atomic<const char*>, 12> unfinished{};  // null: free

// Only what may be called while anything else is going on.
void HandleSignal(int signal) {
  if (signal == SIGHUP && reloads) {
    reload_asked = true;
    return;
  }
  const int error = errno;
  int none = 0;
  const bool alarm_rang = signal == SIGALRM;
  const bool first = !alarm_rang && first_signal.compare_exchange_strong(none, signal);
  if (waits == 0 && !(alarm_rang && finishing)) {
    if (!ends_early || !first) EndBySignal(first_signal != 0 ? first_signal.load() : signal);
    if (!finishing) alarm(kPatience_s);
  }
  errno = error;
}

// Calls that wait are interrupted: the flag would not be seen while they go on.
void Handle(int signal) {
  struct sigaction action {};
  action.sa_handler = HandleSignal;
  sigaction(signal, &action, nullptr);
}

}  // namespace

void CatchSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  for (const CaughtSignal& caught : kCaught) {
    struct sigaction before {};
    sigaction(caught.number, nullptr, &before);
    // That is what nohup is for. A shell has its background jobs ignore SIGINT, and kill is still to end them.
    if (caught.number == SIGHUP && before.sa_handler == SIG_IGN) continue;
    Handle(caught.number);
  }
  Handle(SIGALRM);
}

void RemoveUnfinished() {
  for (const std::atomic<const char*>& path : unfinished) {
    if (const char* const name = path) unlink(name);
  }
}

void EndBySignal(int signal) {
  RemoveUnfinished();
  std::signal(signal, SIG_DFL);
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, signal);
  pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
  raise(signal);
  constexpr int kShellsSignalCode = 128;
  _exit(kShellsSignalCode + signal);
}

EndsEarly::EndsEarly() { ends_early = true; }

// A signal from here on takes effect by itself.
EndsEarly::~EndsEarly() {
  ends_early = false;
  if (Interrupted()) EndBySignal(first_signal);
  finishing = false;
}

void EndsEarly::Finishing() {
  finishing = true;
  alarm(0);
}

// Under nohup as well, since it no longer ends anything.
ReloadsAtHangup::ReloadsAtHangup() {
  reloads = true;
  Handle(SIGHUP);
}

ReloadsAtHangup::~ReloadsAtHangup() { reloads = false; }

bool ReloadsAtHangup::TakeRequest() { return reload_asked.exchange(false); }

SignalsWait::SignalsWait() { ++waits; }

SignalsWait::~SignalsWait() {
  --waits;
  if (Interrupted() && !ends_early) EndBySignal(first_signal);
}

bool Interrupted() { return first_signal != 0; }

const char* InterruptingSignal() {
  for (const CaughtSignal& caught : kCaught) {
    if (caught.number == first_signal) return caught.name;
  }
  return nullptr;
}

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)), slot_(0) {
  for (; slot_ < unfinished.size(); ++slot_) {
    const char* free = nullptr;
    if (unfinished.at(slot_).compare_exchange_strong(free, path_.c_str())) return;
  }
}

UnfinishedFile::~UnfinishedFile() {
  if (slot_ < unfinished.size()) unfinished.at(slot_) = nullptr;
}

}  // namespace stopngo
