// check.cpp: the questions of the self-test.
#include "check.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>

#include "kernel_calls.h"
#include "moving_picture.h"
#include "random.h"

namespace selftest {
namespace {

/// Not a string: a signal may come while it changes.
char at_work[160] = "the start";

void SetAtWork(const std::string& what) { std::snprintf(at_work, sizeof at_work, "%s", what.c_str()); }

}  // namespace

const char* AtWork() { return at_work; }

Findings CheckKernels(std::span<const KernelTable> tables, std::uint64_t calls) {
  Findings findings;
  for (const test::KernelCalls& kernel : test::AllKernelCalls()) {
    for (const KernelTable& table : tables.subspan(1)) {
      for (std::uint64_t seed = 1; seed <= calls; ++seed) {
        test::Random random(seed);
        const test::Call call = kernel.draw(random);
        const std::string name = std::string(table.Name).append(" ").append(kernel.name);
        SetAtWork(name + ", " + call.what);
        const auto fence = seed % 2 == 0 ? test::Fenced::Side::kStart : test::Fenced::Side::kEnd;
        if (call.make(table, fence) == call.make(tables.front(), fence)) continue;
        findings.push_back(name + ": other bits than " + tables.front().Name + ", " + call.what);
        break;
      }
    }
  }
  return findings;
}

Findings CheckTraces(const test::Origin& origin, std::string_view recorded, std::size_t stride) {
  Findings findings;
  const std::map<std::string, std::string> traces = test::RecordedTraces(recorded);
  const std::vector<test::GoldenCase> all = test::GoldenCases();
  for (std::size_t i = 0; i < all.size(); i += stride) {
    const std::string name = all[i].Name();
    SetAtWork("trace " + name);
    const auto known = traces.find(name);
    if (known == traces.end() || test::Trace(origin, all[i]).line != known->second) {
      findings.push_back("trace " + name + ": other bits than recorded");
    }
  }
  return findings;
}

double FrameTime_us(const test::Origin& origin) {
  using Clock = std::chrono::steady_clock;
  constexpr std::size_t kMost = 400;
  SetAtWork("the time of a frame");
  const auto context = std::make_unique<std::uint64_t[]>((origin.operations->ctxsize + 7) / 8);
  origin.operations->open(context.get());
  // No alarm: its hold would leave frames unanalysed.
  origin.operations->control(context.get(), VEL_CTRL_STOPNGO_SET_TIME_LEAVING, 1 << 30, VEL_CTRL_STOPNGO_END);
  test::MovingPicture picture(800, 480, 1);
  std::vector<double> times;
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(500);
  while (times.size() < kMost && (times.size() < 5 || Clock::now() < end)) {
    void* frame = const_cast<std::uint8_t*>(picture.Next().data());
    const Clock::time_point start = Clock::now();
    origin.operations->write(context.get(), frame, 0);
    times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
  }
  origin.operations->close(context.get());
  std::ranges::sort(times);
  return times[times.size() / 2];
}

}  // namespace selftest
