// instructions.cpp: instructions of one call of each routine, plain and at every level, against the targets.
//
//     STOPNGO_COUNTER=FILE qemu-aarch64 -plugin count_plugin.so,counter=FILE stopngo_instructions [--frames]
//
// The plugin counts in the file that is mapped here. Counts repeat exactly. Exits with 1 when a target is
// missed or the level that it is for does not run.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "contestant.h"
#include "frames.h"
#include "kernels/kernels.h"
#include "levels.h"
#include "targets.h"

namespace {

const volatile std::uint64_t* MapCounter() {
  const char* path = std::getenv("STOPNGO_COUNTER");
  if (path == nullptr) return nullptr;
  const int file = open(path, O_RDONLY);
  if (file < 0) return nullptr;
  void* const mapped = mmap(nullptr, sizeof(std::uint64_t), PROT_READ, MAP_SHARED, file, 0);
  close(file);
  return mapped == MAP_FAILED ? nullptr : static_cast<const volatile std::uint64_t*>(mapped);
}

/// Instructions of a call, less those of calling nothing.
class Counter {
 public:
  explicit Counter(const volatile std::uint64_t* counter) : counter_(counter) {
    empty_ = Count(bench::Repeat([] {}));
  }
  [[nodiscard]] double Of(const std::function<void(int)>& run) const {
    return static_cast<double>(Count(run) - empty_);
  }

 private:
  [[nodiscard]] std::uint64_t Count(const std::function<void(int)>& run) const {
    const std::uint64_t before = *counter_;
    run(1);
    return *counter_ - before;
  }

  const volatile std::uint64_t* counter_;
  std::uint64_t empty_ = 0;
};

using Counts = std::map<std::pair<std::string, std::string>, double>;

Counts CountAll(const Counter& counter) {
  Counts counts;
  for (const bench::Contestant& routine : bench::Routines()) {
    for (const KernelTable* table : bench::Levels()) {
      ForceKernels(table);
      // Once ahead: symbols get bound, a detector gets its buffers and its first frame.
      for (int i = 0; i < 3; ++i) {
        if (routine.prepare != nullptr) routine.prepare();
        if (i < 2) routine.run(1);
      }
      counts[{routine.routine, table->Name}] = counter.Of(routine.run);
    }
  }
  ForceKernels(nullptr);
  return counts;
}

void PrintCounts(const Counts& counts) {
  std::printf("%-38s", "instructions of a call");
  for (const KernelTable* table : bench::Levels()) std::printf(" %12s", table->Name);
  std::printf("\n");
  for (const bench::Contestant& routine : bench::Routines()) {
    std::printf("%-38s", routine.routine.c_str());
    for (const KernelTable* table : bench::Levels()) {
      std::printf(" %12.0f", counts.at({routine.routine, table->Name}));
    }
    std::printf("\n");
  }
}

int PrintTargets(const Counts& counts) {
  int missed = 0;
  std::printf("\n%-38s %-12s %12s %12s %8s  %-12s\n", "routine", "kernels", "plain", "ours", "plain/",
              "target");
  for (const bench::CountTarget& target : bench::kCountTargets) {
    const char* table = target.table != nullptr ? target.table : bench::Levels().back()->Name;
    const double plain = counts.at({target.routine, "generic"});
    const auto ours = counts.find({target.routine, table});
    const bool held = ours != counts.end() && ours->second <= target.bound;
    missed += held ? 0 : 1;
    std::printf("%-38s %-12s %12.0f ", target.routine, table, plain);
    if (ours == counts.end()) {
      std::printf("%12s %8s  <= %-9.0f MISSED: does not run here\n", "-", "-", target.bound);
    } else {
      std::printf("%12.0f %8.1f  <= %-9.0f %s\n", ours->second, plain / ours->second, target.bound,
                  held ? "held" : "MISSED");
    }
  }
  return missed;
}

}  // namespace

int main(int argc, char** argv) {
  const volatile std::uint64_t* mapped = MapCounter();
  if (mapped == nullptr) {
    std::fprintf(stderr, "stopngo_instructions: STOPNGO_COUNTER names no counter\n");
    return 2;
  }
  const Counter counter(mapped);
  if (argc == 2 && std::strcmp(argv[1], "--frames") == 0) {
    bench::PrintFrameCosts([&](const auto& run) { return counter.Of(run); }, "instructions");
    return 0;
  }
  const Counts counts = CountAll(counter);
  PrintCounts(counts);
  const int missed = PrintTargets(counts);
  std::printf("\n%d targets missed\n", missed);
  return missed == 0 ? 0 : 1;
}
