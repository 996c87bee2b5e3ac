// output_file_test.cpp: outputs appear whole or not at all, behind links too.
#include "base/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/memory_file.h"
#include "host/failure.h"
#include "host/file.h"
#include "support/command.h"

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
  const CommandResult result =
      Stopngo("synth - --length 0.2 --labels /dev/stderr > /dev/null 2> " + folder_ / "labels");
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_NE(ReadFile(folder_ / "labels").find("start_s"), std::string::npos);
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

// Under another name, too, and before anything is opened.
TEST_F(OutputFileTest, InputsAreNotOverwritten) {
  const std::string clip = folder_ / "clip.y4m";
  ASSERT_EQ(Stopngo("synth " + clip + " --length 0.2").exit_code, 0);
  const std::string weights = folder_.File("w.bin", std::string(10372, '\0'));
  const std::string config = folder_.File("car.toml", "rate = 5\n");
  fs::create_symlink("clip.y4m", folder_ / "alias.y4m");
  const std::string before = ReadFile(clip);
  const std::string alias = folder_ / "alias.y4m";
  const std::size_t files = folder_.Files();
  const std::string out = folder_ / "o.y4m";
  const std::string run = "run " + clip + " --no-weights ";
  const std::string render = "render " + clip + " " + out + " --no-weights ";
  const std::vector<std::string> refused{
      run + "--trace " + alias,
      run + "--debug-fb " + clip,
      run + "--config " + config + " --trace " + config,
      "run " + clip + " --weights " + weights + " --trace " + weights,
      "render " + alias + " " + clip + " --no-weights",
      render + "--debug-fb " + alias,
      render + "--still " + folder_ / "./o.y4m",
      "synth " + clip + " --labels " + alias,
      "weights " + weights + " --picture " + weights,
  };
  for (const std::string& arguments : refused) {
    const CommandResult result = Stopngo(arguments);
    EXPECT_EQ(result.exit_code, 2) << arguments << '\n' << result.err;
    EXPECT_EQ(folder_.Files(), files) << arguments;
  }
  EXPECT_TRUE(ReadFile(clip) == before);
  EXPECT_EQ(ReadFile(config), "rate = 5\n");
}

// However early the interruption comes: the signal is sent as soon as there is something to remove.
TEST_F(OutputFileTest, InterruptedScenesLeaveNothingBehind) {
  const std::string video = folder_ / "long.y4m";
  const CommandResult result =
      Shell(STOPNGO_PROGRAM " synth " + video + " --length 3600 & while kill -0 $! && [ ! -e " + video +
            ".part ]; do :; done; kill $!; wait $!");
  EXPECT_EQ(result.exit_code, 1) << result.err;
  EXPECT_NE(result.err.find("interrupted"), std::string::npos) << result.err;
  EXPECT_EQ(folder_.Files(), 0U);
}

}  // namespace
}  // namespace stopngo::test
