// followed_file_test.cpp: lines are there as soon as they are written, and nothing is lost before the first.
#include "base/followed_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "host/common/failure.h"
#include "host/common/file.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

namespace fs = std::filesystem;

class FollowedFileTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

TEST_F(FollowedFileTest, LinesAreThereAtOnce) {
  const std::string old = folder_.File("old", "before, and longer than a line");
  fs::create_symlink("old", folder_ / "alias");
  {
    FollowedFile file(folder_ / "alias");
    EXPECT_EQ(ReadFile(old), "before, and longer than a line");
    file.Write("first\n");
    EXPECT_EQ(ReadFile(old), "first\n");
    fs::resize_file(old, 0);  // as who rotates such files does
    file.Write("second\n");
  }
  EXPECT_EQ(ReadFile(old), "second\n");
  EXPECT_TRUE(fs::is_symlink(folder_ / "alias"));
}

TEST_F(FollowedFileTest, WithoutLinesNothingIsTouched) {
  const std::string old = folder_.File("old", "before");
  { const FollowedFile file(old); }
  { const FollowedFile file(folder_ / "new"); }
  EXPECT_EQ(ReadFile(old), "before");
  EXPECT_EQ(folder_.Files(), 1U);
  EXPECT_THROW(FollowedFile(folder_ / "no/new"), Failure);
}

// A limit on the size of files stands for a disk that is full.
TEST_F(FollowedFileTest, ALineThatDoesNotFitLeavesNoneOfIt) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  signal(SIGXFSZ, SIG_IGN);
  const auto write = [&](const std::string& name, int lines) {
    FollowedFile file(folder_ / name);
    for (int i = 0; i < lines; ++i) file.Write("0123456\n");
  };
  const rlimit small{20, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_THROW(write("some", 3), Failure);
  const rlimit tiny{4, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &tiny);
  EXPECT_THROW(write("none", 1), Failure);
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(ReadFile(folder_ / "some"), "0123456\n0123456\n");
  EXPECT_FALSE(fs::exists(folder_ / "none"));
}

}  // namespace
}  // namespace stopngo::test
