// output_file_test.cpp: outputs appear whole or not at all, alone and together, behind links too.
#include "base/output_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "base/memory_file.h"
#include "host/common/failure.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

namespace fs = std::filesystem;

class OutputFileTest : public testing::Test {
 protected:
  static void Write(const std::string& path, const std::string& text, bool commit) {
    OutputFile file(path);
    file.Stream() << text;
    if (commit) file.Commit();
  }
  static mode_t ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  }
  TemporaryFolder folder_;
};

TEST_F(OutputFileTest, WithoutCommitNothingIsTouched) {
  const std::string old = folder_.File("old", "before");
  Write(old, "after", false);
  Write(folder_ / "new", "after", false);
  EXPECT_EQ(ReadFile(old), "before");
  EXPECT_EQ(folder_.Files(), 1U);
  EXPECT_THROW(Write(folder_ / "no/new", "after", false), Failure);
  EXPECT_THROW(Write(folder_ / "", "after", false), Failure) << "a folder";
}

// A name as long as names may be leaves none for an addition; and files that look like ours are the user's.
TEST_F(OutputFileTest, OtherNamesAreLeftAlone) {
  const std::string longest = folder_ / std::string(255, 'n');
  const std::string part = folder_.File("file.part", "the user's");
  fs::create_symlink("file.part", folder_ / "file.tmp");
  Write(longest, "text", true);
  Write(folder_ / "file", "text", true);
  EXPECT_EQ(ReadFile(longest), "text");
  EXPECT_EQ(ReadFile(part), "the user's");
  EXPECT_EQ(folder_.Files(), 4U);
}

TEST_F(OutputFileTest, ModesAreTheOldFilesOrTheUmasks) {
  const mode_t umask_before = umask(027);
  const std::string old = folder_.File("old", "before");
  fs::permissions(old, static_cast<fs::perms>(0604));
  Write(old, "after", true);
  Write(folder_ / "new", "after", true);
  umask(umask_before);
  EXPECT_EQ(ModeOf(old), 0604U);
  EXPECT_EQ(ModeOf(folder_ / "new"), 0640U);
  if (geteuid() != 0) {
    fs::permissions(old, static_cast<fs::perms>(0444));
    EXPECT_THROW(Write(old, "lost", true), Failure) << "a file that may not be written";
    return;
  }
  constexpr uid_t kSomeone = 4321;
  ASSERT_EQ(chown(old.c_str(), kSomeone, kSomeone), 0);
  Write(old, "after", true);
  struct stat status {};
  ASSERT_EQ(stat(old.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kSomeone);
  EXPECT_EQ(status.st_gid, kSomeone);
}

TEST_F(OutputFileTest, LinksStayLinksAndTheirFilesAreReplacedWhole) {
  const std::string file = folder_.File("file", "before");
  fs::create_directory(folder_ / "links");
  fs::create_symlink("../file", folder_ / "links/relative");
  fs::create_symlink(folder_ / "links/relative", folder_ / "chain");
  fs::create_symlink(folder_ / "missing", folder_ / "dangling");
  fs::create_symlink("circle", folder_ / "circle");
  for (const char* const link : {"links/relative", "chain"}) {
    Write(folder_ / link, "lost", false);
    EXPECT_EQ(ReadFile(file), "before");
    Write(folder_ / link, "after", true);
    EXPECT_EQ(ReadFile(file), "after");
    EXPECT_TRUE(fs::is_symlink(folder_ / link));
    Write(file, "before", true);
  }
  Write(folder_ / "dangling", "new", true);
  EXPECT_EQ(ReadFile(folder_ / "missing"), "new");
  EXPECT_THROW(Write(folder_ / "circle", "after", true), Failure);
  EXPECT_TRUE(fs::is_symlink(folder_ / "circle"));
}

TEST_F(OutputFileTest, WhatIsOpenAlreadyIsWrittenInPlace) {
  const MemoryFile memory;
  Write(memory.Path(), "text", true);
  EXPECT_EQ(ReadFile(memory.Path()), "text");
}

TEST_F(OutputFileTest, WhatCannotBeWrittenIsToldWithItsReason) {
  const std::string full = FailureOf([] { Write("/dev/full", std::string(1 << 20, 'x'), true); });
  ExpectWords(full, {"/dev/full", "No space left on device"});
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  signal(SIGPIPE, SIG_IGN);
  EXPECT_THROW(Write("/dev/fd/" + std::to_string(ends[1]), "text", true), NobodyReads);
  close(ends[1]);
}

TEST_F(OutputFileTest, TogetherAllTakeTheirPlacesOrNone) {
  const std::string old = folder_.File("old", "before");
  const std::string last = folder_ / "last";
  const auto write_all = [&](bool possible) {
    OutputFile first(old);
    OutputFile second(folder_ / "new");
    OutputFile third(last);
    for (OutputFile* const file : {&first, &second, &third}) file->Stream() << "after";
    if (!possible) fs::create_directory(last);
    CommitTogether({&first, nullptr, &second, &third});
  };
  EXPECT_THROW(write_all(false), Failure);
  EXPECT_EQ(ReadFile(old), "before");
  EXPECT_EQ(folder_.Files(), 2U) << "neither the new file nor one beside it";
  fs::remove(last);
  write_all(true);
  for (const char* const name : {"old", "new", "last"}) EXPECT_EQ(ReadFile(folder_ / name), "after") << name;
  EXPECT_EQ(folder_.Files(), 3U);
}

TEST_F(OutputFileTest, NoneTakesItsPlaceBeforeAllAreWritten) {
  const std::string old = folder_.File("old", "before");
  OutputFile first(old);
  OutputFile full("/dev/full");
  first.Stream() << "after";
  full.Stream() << "after";
  EXPECT_THROW(CommitTogether({&first, &full}), Failure);
  EXPECT_EQ(ReadFile(old), "before");
}

}  // namespace
}  // namespace stopngo::test
