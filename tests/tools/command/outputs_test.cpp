// outputs_test.cpp: what a subcommand writes never takes the place of what it reads, and nothing unfinished stays.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "program.h"

namespace stopngo::test {
namespace {

namespace fs = std::filesystem;

class OutputsTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

// Both are open already: written in place, and nothing is left beside them.
TEST_F(OutputsTest, StandardStreamsAreWrittenInPlace) {
  const CommandResult result =
      Stopngo("synth - --length 0.2 --labels /dev/stderr > /dev/null 2> " + folder_ / "labels");
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_NE(ReadFile(folder_ / "labels").find("start_s"), std::string::npos);
  EXPECT_EQ(folder_.Files(), 1U);
}

// Under another name, too, and before anything is opened.
TEST_F(OutputsTest, InputsAreNotOverwritten) {
  const std::string clip = folder_ / "clip.y4m";
  ASSERT_EQ(Stopngo("synth " + clip + " --length 0.2").exit_code, 0);
  const std::string weights = folder_.File("w.bin", std::string(10372, '\1'));
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
TEST_F(OutputsTest, InterruptedScenesLeaveNothingBehind) {
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
