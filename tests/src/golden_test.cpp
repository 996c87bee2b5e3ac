// golden_test.cpp: whole detectors against recorded traces, the same on every machine and kernel.
//
// STOPNGO_GOLDEN_UPDATE=1 records them anew.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "golden_trace.h"
#include "kernels/kernels.h"

namespace {

std::map<std::string, std::string> Recorded() {
  std::ifstream file(STOPNGO_GOLDEN);
  return test::RecordedTraces(std::string(std::istreambuf_iterator<char>(file), {}));
}

struct Tally {
  std::ostringstream lines;
  int alarms = 0;
  int scored = 0;
};

/// Makes every stride-th trace with table, and holds it to the recorded one.
Tally TraceAll(const KernelTable& table, std::size_t stride, bool compare) {
  SCOPED_TRACE(table.Name);
  ForceKernels(&table);
  std::map<std::string, std::string> recorded = Recorded();
  Tally tally;
  const test::Origin objects = {&vel_stopngo, Classify_Feature_};
  const std::vector<test::GoldenCase> all = test::GoldenCases();
  for (std::size_t i = 0; i < all.size(); i += stride) {
    const test::Traced traced = test::Trace(objects, all[i]);
    tally.lines << all[i].Name() << "\t" << traced.line << "\n";
    if (compare) {
      EXPECT_EQ(traced.line, recorded[all[i].Name()]) << all[i].Name();
    }
    tally.alarms += traced.line.find(" 1x") != std::string::npos ? 1 : 0;
    tally.scored += traced.scored;
  }
  ForceKernels(nullptr);
  return tally;
}

TEST(Golden, PlainFormsGiveTheRecordedTraces) {
  const bool update = std::getenv("STOPNGO_GOLDEN_UPDATE") != nullptr;
  const Tally tally = TraceAll(AvailableKernels().front(), 1, !update);
  // Few scores, or no alarm in most traces, would show little.
  EXPECT_GE(tally.scored, 2000);
  EXPECT_GT(tally.alarms, 30);
  if (update) std::ofstream(STOPNGO_GOLDEN) << tally.lines.str();
}

TEST(Golden, FastestFormsGiveTheRecordedTraces) {
  if (AvailableKernels().size() == 1) GTEST_SKIP() << "the plain forms are all there is";
  TraceAll(AvailableKernels().back(), 1, true);
}

TEST(Golden, FormsInBetweenGiveTheRecordedTraces) {
  if (AvailableKernels().size() < 3) GTEST_SKIP() << "there are none";
  // The stride shares no factor with the number of ways to crop, so that it meets every filter.
  for (const KernelTable& table : AvailableKernels().subspan(1, AvailableKernels().size() - 2)) {
    EXPECT_GT(TraceAll(table, 5, true).scored, 300);
  }
}

}  // namespace
