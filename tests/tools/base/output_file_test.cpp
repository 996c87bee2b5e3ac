// output_file_test.cpp: outputs appear whole or not at all, behind links too.
#include "base/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/memory_file.h"
#include "host/failure.h"
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
  TemporaryFolder folder_;
};

TEST_F(OutputFileTest, WithoutCommitNothingIsTouched) {
  const std::string old = folder_.File("old", "before");
  Write(old, "after", false);
  Write(folder_ / "new", "after", false);
  EXPECT_EQ(ReadFile(old), "before");
  EXPECT_EQ(folder_.Files(), 1U);
  EXPECT_THROW(Write(folder_ / "no/new", "after", false), Failure);
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
  EXPECT_FALSE(fs::exists(folder_ / "file.part"));
}

TEST_F(OutputFileTest, WhatIsOpenAlreadyIsWrittenInPlace) {
  const MemoryFile memory;
  Write(memory.Path(), "text", true);
  EXPECT_EQ(ReadFile(memory.Path()), "text");
}

TEST_F(OutputFileTest, TwoOutputsNeverShareAFile) {
  const std::string path = folder_ / "file";
  fs::create_symlink("file", folder_ / "link");
  {
    OutputFile first(path);
    for (const std::string& same : {path, folder_ / "./file", folder_ / "link"}) {
      EXPECT_THROW(const OutputFile second(same), Failure) << same;
    }
    first.Commit();
  }
  Write(path, "later", true);
  EXPECT_EQ(ReadFile(path), "later");
}

TEST_F(OutputFileTest, InputsAreToldApartFromOutputsByFileNotByName) {
  const std::string input = folder_.File("input", "before");
  fs::create_symlink("input", folder_ / "alias");
  fs::create_hard_link(input, folder_ / "twin");
  const std::string inputs[] = {"-", "", input, folder_ / "gone"};
  for (const char* const name : {"input", "./input", "alias", "twin"}) {
    const std::string outputs[] = {"-", folder_ / name};
    EXPECT_THROW(RefuseOverwriting(outputs, inputs), Failure) << name;
  }
  const std::string outputs[] = {"-", "", folder_ / "output"};
  RefuseOverwriting(outputs, inputs);
}

}  // namespace
}  // namespace stopngo::test
