// kernels_bench.cpp: the routines plain, at every level, and by libraries: a table held against the targets.
//
//     stopngo_bench [--frames | Google Benchmark's options]
//
// Contestants take turns in one process, in random order; each counts with the least of its rounds, which
// is what a shared machine disturbs least. Exits with 1 when a target is missed.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "contestant.h"
#include "frames.h"
#include "kernels/kernels.h"
#include "levels.h"
#include "targets.h"

namespace {

using bench::Contestant;
using Clock = std::chrono::steady_clock;

/// Rounds shorter than a scheduler's slice: enough of them are left in peace.
constexpr int kRounds = 40;
constexpr double kSecondsARound = 0.002;

double Nanoseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::nano>(duration).count();
}

constexpr const char* kByCall = "by call";

/// Runs a contestant with a table in force. Where calls need preparation they are timed one by one.
void Measure(benchmark::State& state, const Contestant& contestant, const KernelTable* table) {
  ForceKernels(table);
  constexpr int kBatch = 16;
  if (contestant.prepare == nullptr) {
    while (state.KeepRunningBatch(kBatch)) contestant.run(kBatch);
    return;
  }
  for (auto _ : state) {
    contestant.prepare();
    const auto start = Clock::now();
    contestant.run(1);
    state.SetIterationTime(Nanoseconds(Clock::now() - start) * 1e-9);
  }
  state.SetLabel(kByCall);
}

/// The least time of every contestant, by name.
class Least : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      // Where a call is timed by itself, its time is given as real time.
      const double time = run.report_label == kByCall ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
      const auto [place, is_new] = least_.try_emplace(run.run_name.function_name, time);
      place->second = std::min(place->second, time);
    }
  }
  /// 0 when it did not run.
  [[nodiscard]] double Of(const std::string& routine, const std::string& who) const {
    const auto found = least_.find(routine + " | " + who);
    return found == least_.end() ? 0 : found->second;
  }

 private:
  std::map<std::string, double> least_;
};

/// In rising order of the claim that they make: a routine's targets are against the last one that it has.
std::vector<Contestant> Peers() {
  std::vector<Contestant> peers;
#if STOPNGO_WITH_LIBYUV
  bench::AddLibyuvPeers(peers);
#endif
#if STOPNGO_WITH_EIGEN
  bench::AddEigenPeers(peers);
#endif
#if STOPNGO_WITH_OPENCV
  bench::AddOpenCvPeers(peers);
#endif
#if STOPNGO_WITH_COMPOSITION
  bench::AddCompositionPeers(peers);
#endif
  bench::AddCopyPeers(peers);
  return peers;
}

void Register(const Contestant& contestant, const std::string& who, const KernelTable* table) {
  auto* registered = benchmark::RegisterBenchmark(
      (contestant.routine + " | " + who).c_str(),
      [&contestant, table](benchmark::State& state) { Measure(state, contestant, table); });
  registered->Repetitions(kRounds)->MinTime(kSecondsARound);
  if (contestant.prepare != nullptr) registered->UseManualTime();
}

/// The library that a routine is held against; empty for none.
std::string PeerOf(const std::vector<Contestant>& peers, const std::string& routine) {
  const auto found =
      std::find_if(peers.rbegin(), peers.rend(), [&](const auto& p) { return p.routine == routine; });
  return found == peers.rend() ? "" : found->who;
}

bool HasTable(const std::string& name) {
  return std::ranges::any_of(bench::Levels(), [&](const KernelTable* table) { return name == table->Name; });
}

/// What a routine takes in the plain form and by its peer.
struct References {
  std::string routine;
  double plain;
  std::string peer;
  double peer_time;  ///< 0 when there is none
};

/// Prints a line up to the target; returns what ours takes.
double PrintTimes(const References& against, const std::string& table, const Least& least) {
  const double ours = least.Of(against.routine, table);
  std::printf("%-38s %-11s %10.1f %10.1f ", against.routine.c_str(), table.c_str(), against.plain, ours);
  if (against.peer_time > 0) {
    std::printf("%10.1f %-9s %8.1f %8.3f  ", against.peer_time, against.peer.c_str(), against.plain / ours,
                ours / against.peer_time);
  } else {
    std::printf("%10s %-9s %8.1f %8s  ", "-", "-", against.plain / ours, "-");
  }
  return ours;
}

/// Prints a line with its target; a target against a library that is not there counts as missed.
bool Held(const bench::RatioTarget& target, const References& against, const Least& least) {
  const bool of_plain = target.against == bench::Against::kPlain;
  const double ours =
      PrintTimes(against, target.table != nullptr ? target.table : bench::Levels().back()->Name, least);
  const bool measured = of_plain || against.peer_time > 0;
  const bool held =
      of_plain ? against.plain / ours >= target.bound : measured && ours / against.peer_time <= target.bound;
  std::printf("%s %-6.4g %s\n", of_plain ? ">=" : "<=", target.bound,
              held       ? "held"
              : measured ? "MISSED"
                         : "MISSED: no peer");
  return held;
}

/// A line for each target, or one without for a routine that has none. Targets of levels that this
/// processor lacks do not count.
int PrintTargets(const std::vector<Contestant>& routines, const std::vector<Contestant>& peers,
                 const Least& least) {
  int missed = 0;
  std::printf("%-38s %-11s %10s %10s %10s %-9s %8s %8s  %s\n", "routine", "kernels", "plain ns", "ours ns",
              "peer ns", "peer", "plain/", "/peer", "target");
  for (const Contestant& routine : routines) {
    References against{routine.routine, least.Of(routine.routine, "generic"), PeerOf(peers, routine.routine),
                       0};
    against.peer_time = least.Of(routine.routine, against.peer);
    if (against.plain == 0) continue;
    bool any = false;
    for (const bench::RatioTarget& target : bench::kRatioTargets) {
      if (target.routine != routine.routine || (target.table != nullptr && !HasTable(target.table))) continue;
      any = true;
      missed += Held(target, against, least) ? 0 : 1;
    }
    if (!any) {
      PrintTimes(against, bench::Levels().back()->Name, least);
      std::printf("-\n");
    }
  }
  return missed;
}

void PrintLevels(const std::vector<Contestant>& routines, const Least& least) {
  std::printf("\n%-38s", "ns");
  for (const KernelTable* table : bench::Levels()) std::printf(" %12s", table->Name);
  std::printf("\n");
  for (const Contestant& routine : routines) {
    if (least.Of(routine.routine, "generic") == 0) continue;
    std::printf("%-38s", routine.routine.c_str());
    for (const KernelTable* table : bench::Levels()) {
      std::printf(" %12.1f", least.Of(routine.routine, table->Name));
    }
    std::printf("\n");
  }
}

/// Goes on for longer than a machine that others use too is slow at a stretch.
double LeastOfMany(const std::function<void(int)>& run) {
  constexpr auto kEnough = std::chrono::milliseconds(150);
  double least = 1e18;
  const auto begin = Clock::now();
  for (auto start = begin; start - begin < kEnough;) {
    run(2);
    const auto end = Clock::now();
    least = std::min(least, Nanoseconds(end - start) / 2);
    start = end;
  }
  return least;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "--frames") == 0) {
    bench::PrintFrameCosts(LeastOfMany, "nanoseconds");
    return 0;
  }
  char interleave[] = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments = {argv[0], interleave};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

  const std::vector<Contestant> routines = bench::Routines();
  const std::vector<Contestant> peers = Peers();
  for (const Contestant& routine : routines) {
    for (const KernelTable* table : bench::Levels()) Register(routine, table->Name, table);
  }
  for (const Contestant& peer : peers) Register(peer, peer.who, nullptr);
  Least least;
  benchmark::RunSpecifiedBenchmarks(&least);
  const int missed = PrintTargets(routines, peers, least);
  PrintLevels(routines, least);
  std::printf("\n%d targets missed\n", missed);
  return missed == 0 ? 0 : 1;
}
