// completion_test.cpp: what a shell offers for words of this command line.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "program.h"

namespace stopngo::test {
namespace {

/// What bash offers for the last of some words, in a folder with clip.mp4, w.bin and kept/; a space between.
std::string Offered(const std::vector<std::string>& words) {
  const TemporaryFolder folder;
  (void)folder.File("clip.mp4", "");
  (void)folder.File("w w.bin", "");
  std::string line;
  for (const std::string& word : words) line += " '" + word + '\'';
  const CommandResult result = Shell("cd " + folder / "." +
                                     " && mkdir kept && bash -uc 'source <(" STOPNGO_PROGRAM
                                     " completion bash); COMP_WORDS=(stopngo \"$@\"); COMP_CWORD=$#; "
                                     "_stopngo; echo \"${COMPREPLY[*]}\"' bash" +
                                     line);
  EXPECT_EQ(result.err, "");
  return result.out.substr(0, result.out.find('\n'));
}

TEST(Completion, BashOffersCommandsOptionsChoicesAndFiles) {
  struct Case {
    std::vector<std::string> words;
    const char* offered;
  };
  const Case cases[] = {
      {{"t"}, "train tune"},
      {{"--v"}, "--version"},
      {{"man"}, ""},
      {{"run", "--tr"}, "--trace"},
      {{"run", "--weights", "w"}, "w w.bin"},
      {{"run", "--filter", "m"}, "median"},
      {{"run", "--filter", "=", "g"}, "gaussian"},
      {{"run", "--filter", "="}, "none median gaussian"},
      {{"run", "--gates", "light,sp"}, "light,speed"},
      {{"run", "--raw", ""}, ""},
      {{"run", "--json", "c"}, "clip.mp4"},
      {{"run", "clip.mp4", "--speed-fails", "cl"}, "closed"},
      {{"check", "--emit", ""}, "c toml"},
      {{"synth", "--kind", "over"}, "overhead"},
      {{"eval", "m.tsv", "--features-from", ""}, "kept"},
      {{"eval", "--baseline", "difference,fl"}, "difference,flow"},
      {{"tune", "--try-filter", "none,med"}, "none,median"},
      {{"features", "-o", "k"}, "kept"},
      {{"completion", ""}, "bash zsh fish"},
      {{"nonsense", "--"}, ""},
  };
  for (const Case& c : cases) EXPECT_EQ(Offered(c.words), c.offered) << testing::PrintToString(c.words);
}

TEST(Completion, EveryShellCanReadItsScript) {
  for (const std::string shell : {"bash", "zsh", "fish"}) {
    const CommandResult script = Stopngo("completion " + shell);
    ASSERT_EQ(script.exit_code, 0) << script.err;
    for (const char* const word : {"try-threshold", "speed-fails", "mixed", "difference"}) {
      EXPECT_NE(script.out.find(word), std::string::npos) << shell << ": " << word;
    }
    if (Shell("command -v " + shell).exit_code != 0) continue;
    const CommandResult read = Shell(shell + " -n /dev/stdin", script.out);
    EXPECT_EQ(read.exit_code, 0) << shell << ": " << read.err;
    EXPECT_EQ(read.err, "");
  }
  ExpectRefusal(Stopngo("completion csh"), 2, {"SHELL", "csh", "bash"});
}

}  // namespace
}  // namespace stopngo::test
