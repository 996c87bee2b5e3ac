// left_over_test.cpp: what a killed run left beside its output is named, and nothing that a run still writes.
#include "base/left_over.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "base/output_file.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

class LeftOverTest : public testing::Test {
 protected:
  /// What is said before a run writes to a path.
  std::string SaidOf(const std::string& path) {
    testing::internal::CaptureStderr();
    WarnOfLeftOvers(path);
    return testing::internal::GetCapturedStderr();
  }
  /// A run that writes a path until it is killed.
  void LeaveBehind(const std::string& path) {
    const pid_t child = fork();
    if (child == 0) {
      OutputFile file(path);
      file.Stream() << "half";
      file.Flush();
      raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
  }
  TemporaryFolder folder_;
};

TEST_F(LeftOverTest, FilesOfKilledRunsAreNamedAndKept) {
  LeaveBehind(folder_ / "video.y4m");
  ASSERT_EQ(folder_.Files(), 1U);
  const std::string name =
      std::filesystem::directory_iterator(std::filesystem::path(folder_ / "x").parent_path())
          ->path()
          .string();
  ExpectWords(SaidOf(folder_ / "other.y4m"), {"killed", name});
  EXPECT_EQ(SaidOf(folder_ / "other.y4m"), "") << "once";
  EXPECT_EQ(ReadFile(name), "half");
  for (int i = 0; i < 4; ++i) LeaveBehind(folder_ / "video.y4m");
  ExpectWords(SaidOf(folder_ / "video.y4m"), {"2 more"});
}

TEST_F(LeftOverTest, RunsThatGoOnAndTheUsersFilesAreNot) {
  const OutputFile going_on(folder_ / "video.y4m");
  (void)folder_.File(".stopngo-notes", "the user's");
  (void)folder_.File(".stopngo-ABCDEFGHIJKL", "the user's");
  ASSERT_EQ(mkfifo((folder_ / ".stopngo-abcdefghijkl").c_str(), 0600), 0);
  std::filesystem::create_symlink(".stopngo-notes", folder_ / ".stopngo-mnopqrstuvwx");
  EXPECT_EQ(SaidOf(folder_ / "video.y4m"), "");
  EXPECT_EQ(SaidOf(folder_ / "nowhere/video.y4m"), "");
}

}  // namespace
}  // namespace stopngo::test
