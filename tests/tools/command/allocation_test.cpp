// allocation_test.cpp: a command that lacks one of the allocations it asks for fails in one sentence, or does its work
// all the same; never half of it. Of plain inputs: some libraries beneath FFmpeg and Fontconfig end a program themselves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "program.h"
#include "support/random.h"
#include "support/seed.h"
#include "support/squares.h"

#if defined(STOPNGO_FAIL_ALLOCATIONS)
namespace stopngo::test {
namespace {

namespace fs = std::filesystem;

/// A trace without its last column, which is the time that a frame took. Other results have no tabs.
std::string WithoutTimes(std::string table) {
  for (std::size_t end = table.find('\n'); end != std::string::npos; end = table.find('\n', end + 1)) {
    const std::size_t column = table.rfind('\t', end);
    if (column == std::string::npos) continue;
    table.erase(column, end - column);
    end = column;
  }
  return table;
}

class AllocationTest : public testing::Test {
 protected:
  AllocationTest() {
    std::string video = "YUV4MPEG2 W800 H480 F6:1 Ip Cmono\n";
    for (int i = 0; i < 4; ++i) video += "FRAME\n" + Squares(800, 480, i, 2 * i);
    (void)folder_.File("v.y4m", video);
    (void)folder_.File("w.bin", std::string(10372, '\1'));
    const std::string head = "clip\tregion\trate\tlabels\n";
    (void)folder_.File("clips.tsv", head + "v.y4m\t-\t-\t0 0.6 still\n");
    fs::copy_file(folder_ / "v.y4m", folder_ / "u.y4m");
    const std::string departs = "\t-\t-\t0 0.2 still; 0.2 0.6 lead_departs\n";
    (void)folder_.File("trained.tsv", head + "v.y4m" + departs);
    (void)folder_.File("validation.tsv", head + "u.y4m" + departs);
  }

  /// Runs a command, which may write old.tsv and old.tsv.json, without one allocation after the other. result: the ending of what it
  /// gives besides that says what came out.
  void Sweep(const std::string& arguments, const char* result) {
    SCOPED_TRACE(arguments);
    ::test::Random random(::test::Seed(31));
    const bool every = std::getenv("STOPNGO_EVERY_ALLOCATION") != nullptr;
    const CommandResult sweep =
        Shell("STOPNGO_SWEEP=" + folder_ / "." + " STOPNGO_SWEEP_RUNS=" + (every ? "0" : "40") +
              " STOPNGO_SWEEP_SHIFT=" + std::to_string(random.Below(1000) / 1000.0) +
              " STOPNGO_MODULE=" STOPNGO_MODULE_FILE " LD_PRELOAD=" STOPNGO_FAIL_ALLOCATIONS
              " " STOPNGO_PROGRAM " " +
              arguments);
    ASSERT_EQ(sweep.exit_code, 0) << sweep.err;
    ASSERT_EQ(Left("0", "code"), "0\n") << Left("0", "err");
    int failed = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_ / ".")) {
      if (entry.path().extension() != ".code" || entry.path().stem() == "0") continue;
      const std::string number = entry.path().stem();
      SCOPED_TRACE("without allocation " + number);
      if (Left(number, "code") == "0\n") {
        EXPECT_EQ(WithoutTimes(Left(number, result)), WithoutTimes(Left("0", result)));
        EXPECT_EQ(Left(number, "json"), Left("0", "json"));
      } else {
        ExpectFailure(number);
        ++failed;
      }
    }
    EXPECT_GT(failed, 10);
  }

  TemporaryFolder folder_;

 private:
  [[nodiscard]] std::string Left(const std::string& number, const char* ending) const {
    return ReadFile(folder_ / (number + "." + ending));
  }
  void ExpectFailure(const std::string& number) const {
    EXPECT_EQ(Left(number, "code"), "1\n");
    const std::string told = Left(number, "err");
    EXPECT_EQ(told.rfind("stopngo: ", 0), 0U) << told;
    EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
    // Where the results could not be told any more, a set is the new one, and whole.
    const bool told_less =
        Left(number, "json") == Left("0", "json") && Left(number, "tsv") == Left("0", "tsv");
    EXPECT_TRUE(Left(number, "json") == "old" || told_less);
    if (told_less) return;
    // Traces are followed while they are written: there is as much of one as there was memory for.
    const std::string table = Left(number, "tsv");
    const std::string rows = WithoutTimes(table.substr(0, table.find("# cut short: not enough memory\n")));
    EXPECT_TRUE(table == "old" || WithoutTimes(Left("0", "tsv")).starts_with(rows)) << table;
  }
};

TEST_F(AllocationTest, Run) { Sweep("run v.y4m --weights w.bin --time-leaving 1 --trace old.tsv", "tsv"); }

TEST_F(AllocationTest, Evaluation) {
  Sweep("eval clips.tsv --weights w.bin --jobs 2 --baseline flow", "out");
}

TEST_F(AllocationTest, Training) {
  Sweep(
      "train trained.tsv --validation validation.tsv --looks 2 --seeds 1 --iterations 2 --time-leaving 0 "
      "--jobs 2 "
      "-o old.tsv",
      "tsv");
}

}  // namespace
}  // namespace stopngo::test
#endif
