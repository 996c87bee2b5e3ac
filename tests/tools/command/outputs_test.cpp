// outputs_test.cpp: what a subcommand writes never takes the place of what it uses, and nothing unfinished stays.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <map>
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

// What a shell gives a command for >(…) is a pipe by its number: no folder of the user's, and no ending.
TEST_F(OutputsTest, ScenesGoToOpenFilesAsToStandardOutput) {
  const std::string synth = "synth /dev/fd/3 --length 0.2 --size 64x48";
  const CommandResult scene = Stopngo(synth + " 3> " + folder_ / "v.y4m");
  EXPECT_EQ(scene.exit_code, 0) << scene.err;
  EXPECT_NE(scene.out.find("5 frames"), std::string::npos) << scene.out;
  EXPECT_TRUE(ReadFile(folder_ / "v.y4m").starts_with("YUV4MPEG2"));
  EXPECT_EQ(folder_.Files(), 1U);
  const CommandResult piped = Stopngo("synth /dev/stdout --length 0.2 --size 64x48 | cat");
  EXPECT_TRUE(piped.out.starts_with("YUV4MPEG2"));
  EXPECT_EQ(piped.out.find("5 frames"), std::string::npos) << "that is said on standard error";
  EXPECT_EQ(Stopngo(synth + " --labels " + folder_ / "labels 3> " + folder_ / "v.y4m").exit_code, 0);
  EXPECT_EQ(folder_.Files(), 2U);
  const CommandResult traced =
      Stopngo("synth - --length 0.2 | " STOPNGO_PROGRAM " run - --no-weights --json --trace -");
  EXPECT_TRUE(traced.out.starts_with("frame\t")) << traced.out;
  EXPECT_EQ(traced.out.find('{'), std::string::npos) << "a trace alone";
  EXPECT_NE(traced.err.find("\"type\":\"summary\""), std::string::npos) << traced.err;
}

// A file would get the text of a stream that is not there.
TEST_F(OutputsTest, ClosedStreamsAreNoFiles) {
  const std::string video = folder_ / "v.y4m";
  const std::string synth = "synth " + video + " --length 0.2 --size 64x48 --labels -";
  ExpectRefusal(Stopngo(synth + " >&-"), 1, {"standard output"});
  EXPECT_EQ(folder_.Files(), 0U);
  EXPECT_EQ(Stopngo(synth + " 2>&-").exit_code, 0);
  ExpectRefusal(Stopngo("run - --no-weights <&-"), 1, {"standard input"});
}

// Whatever a command reads or writes and whatever name it goes by, before anything is read or rendered.
TEST_F(OutputsTest, OneFileIsNotUsedTwice) {
  const std::string clip = folder_ / "clip.y4m";
  ASSERT_EQ(Stopngo("synth " + clip + " --length 0.2 --size 64x48").exit_code, 0);
  const std::string weights = folder_.File("w.bin", std::string(10372, '\1'));
  const std::string config = folder_.File("car.toml", "rate = 5\n");
  const std::string manifest =
      folder_.File("m.tsv", "clip\tregion\trate\tlabels\nclip.y4m\t-\t-\t0 0.2 still\n");
  fs::create_symlink("clip.y4m", folder_ / "alias.y4m");
  fs::copy_file(clip, folder_ / "img1.y4m");
  const std::string list = folder_.File("list.m3u8", "#EXTM3U\n#EXT-X-MAP:URI=\"head.mp4\"\r\nclip.y4m\r\n");
  const std::string concat = folder_.File("list.ffconcat", "ffconcat version 1.0\n file 'list'\\.m3u8\n");
  const std::string lists =
      folder_.File("l.tsv", "clip\tregion\trate\tlabels\nlist.ffconcat\t-\t-\t0 0.2 still\n");
  const std::string alias = folder_ / "alias.y4m";
  const std::string out = folder_ / "o.y4m";
  const std::string picture = folder_ / "o.png";
  const std::string run = "run " + clip + " --no-weights ";
  const std::string render = "render " + clip + " " + out + " --no-weights ";
  const std::string train = "train " + manifest + " -o " + out;
  const std::string eval = "eval " + manifest + " --no-weights ";
  struct Case {
    std::string arguments;
    std::string words;
  };
  const std::vector<Case> cases{
      {run + "--trace " + alias, "the recording"},
      {run + "--debug-fb " + clip, "the recording"},
      {run + "--trace " + out + " --debug-fb " + out, "--debug-fb"},
      {run + "--config " + config + " --trace " + config, "--config"},
      {run + "--trace " + out + " > " + out, "standard output"},
      {"run - --no-weights --trace " + clip + " < " + clip, "standard input"},
      {"run file:" + clip + " --no-weights --trace " + clip, "the recording"},
      {"run " + folder_ / "img%d.y4m" + " --no-weights --trace " + folder_ / "img1.y4m", "a picture"},
      {"run " + list + " --no-weights --trace " + clip, "what the recording lists"},
      {"run " + concat + " --no-weights --trace " + clip, "what the recording lists"},
      {"run " + clip + " --weights " + weights + " --trace " + weights, "the weights"},
      {"run " + clip + " --weights " + weights + " --trace " + weights + ".json", "the weights' sidecar"},
      {"render " + alias + " " + clip + " --no-weights", "the recording"},
      {render + "--debug-fb " + alias, "the recording"},
      {render + "--still " + folder_ / "./o.y4m", "the still picture"},
      {"synth " + clip + " --labels " + alias, "the labels"},
      {"synth " + out + " --labels " + out, "the labels"},
      {"train " + manifest + " -o " + manifest, "the manifest"},
      {train + " --config " + config + " --report " + config, "--config"},
      {train + " --report " + out, "--report"},
      {train + " --report " + out + ".json", "the sidecar"},
      {train + " --report " + clip, "recording"},
      {train + " --test " + manifest + " --report " + manifest, "the manifest"},
      {eval + "--curve " + clip, "recording"},
      {"eval " + lists + " --no-weights --curve " + clip, "what a clip's recording lists"},
      {eval + "--curve " + manifest, "the manifest"},
      {eval + "--curve " + picture, "its plot"},
      {"tune " + manifest + " --no-weights >> " + manifest, "standard output"},
      {"weights " + weights + " --picture " + weights, "the weights"},
      {"weights " + weights + " --picture " + weights + ".json", "sidecar"},
  };
  const auto contents = [this] {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder_ / "")) {
      files[entry.path().string()] = ReadFile(entry.path().string());
    }
    return files;
  };
  (void)folder_.File("o.y4m", "");  // the shell makes it before the command starts
  const auto before = contents();
  for (const Case& refused : cases) {
    SCOPED_TRACE(refused.arguments);
    ExpectRefusal(Stopngo(refused.arguments), 2, {refused.words, "are the same file"});
    EXPECT_TRUE(contents() == before);
  }
}

// However early the interruption comes: the signal is sent as soon as there is something to remove.
TEST_F(OutputsTest, InterruptedScenesLeaveNothingBehind) {
  const CommandResult result =
      Shell("cd " + folder_ / "" +
            "; " STOPNGO_PROGRAM
            " synth long.y4m --length 3600 & while kill -0 $! && [ -z \"$(ls -A)\" ]; do :; done; "
            "kill -INT $!; wait $!");
  EXPECT_EQ(result.exit_code, 128 + SIGINT) << result.err;
  EXPECT_EQ(folder_.Files(), 0U);
}

}  // namespace
}  // namespace stopngo::test
