// interruption_test.cpp: signals end a program with their own code and nothing unfinished stays.
#include "base/interruption.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "base/output_file.h"
#include "host/common/file.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

class InterruptionTest : public testing::Test {
 protected:
  [[nodiscard]] std::string Path() const { return folder_ / "output"; }
  TemporaryFolder folder_;
};

TEST_F(InterruptionTest, UnfinishedFilesGoAtOnce) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const auto work = [&] {
      CatchSignals();
      const OutputFile file(Path());
      raise(signal);
    };
    EXPECT_EXIT(work(), testing::KilledBySignal(signal), "");
    EXPECT_EQ(folder_.Files(), 0U);
  }
}

// The flag is seen, the file is committed, and the signal takes effect after that.
TEST_F(InterruptionTest, WorkThatEndsEarlyKeepsWhatItHas) {
  const auto work = [&] {
    CatchSignals();
    EndsEarly ends_early;
    OutputFile file(Path());
    raise(SIGTERM);
    if (!Interrupted() || InterruptingSignal() != std::string("SIGTERM")) return;
    ends_early.Finishing();
    file.Stream() << "text";
    file.Commit();
  };
  EXPECT_EXIT(work(), testing::KilledBySignal(SIGTERM), "");
  EXPECT_EQ(ReadFile(Path()), "text");
  EXPECT_EQ(folder_.Files(), 1U);
}

TEST_F(InterruptionTest, WorkThatDoesNotSeeTheFlagIsEnded) {
  const auto work = [&](bool again) {
    CatchSignals();
    const EndsEarly ends_early;
    const OutputFile file(Path());
    raise(SIGINT);
    if (again) raise(SIGTERM);
    for (;;) pause();
  };
  EXPECT_EXIT(work(true), testing::KilledBySignal(SIGINT), "");
  EXPECT_EXIT(work(false), testing::KilledBySignal(SIGINT), "") << "after two seconds";
  EXPECT_EQ(folder_.Files(), 0U);
}

TEST_F(InterruptionTest, SignalsWaitForWhatIsDoneAllOrNotAtAll) {
  const auto work = [&] {
    CatchSignals();
    const SignalsWait wait;
    for (const int signal : {SIGHUP, SIGINT}) raise(signal);
    WriteFile(Path(), "text");
  };
  EXPECT_EXIT(work(), testing::KilledBySignal(SIGHUP), "");
  EXPECT_EQ(ReadFile(Path()), "text");
}

// As nohup starts programs.
TEST_F(InterruptionTest, AHangUpThatIsIgnoredStaysSo) {
  const auto work = [] {
    signal(SIGHUP, SIG_IGN);
    CatchSignals();
    raise(SIGHUP);
    std::exit(7);  // NOLINT(concurrency-mt-unsafe)
  };
  EXPECT_EXIT(work(), testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace stopngo::test
