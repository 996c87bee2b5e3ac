// file_register_test.cpp: one file under two names is found out, and what only looks like one is not.
#include "base/file_register.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/common/failure.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

namespace fs = std::filesystem;

class FileRegisterTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_hard_link(file_, folder_ / "twin");
    fs::create_symlink("file", folder_ / "alias");
    fs::create_directory_symlink(".", folder_ / "folder");
    fs::create_symlink("missing", folder_ / "dangling");
    fs::create_symlink(folder_ / "dangling", folder_ / "chain");
  }
  TemporaryFolder folder_;
  std::string file_ = folder_.File("file", "text");
};

TEST_F(FileRegisterTest, OneFileIsNeitherReadAndWrittenNorWrittenTwice) {
  struct Same {
    std::string name;
    std::vector<std::string> others;
  };
  const std::vector<Same> files{{"file", {"file", "./file", "twin", "alias", "folder/file", "folder/./file"}},
                                {"missing", {"missing", "./missing", "dangling", "chain", "folder/missing"}}};
  const auto enter = [](FileRegister& entered, const std::string& path, bool writes) {
    writes ? entered.Writes(path, "a trace") : entered.Reads(path, "a recording");
  };
  for (const Same& same : files) {
    for (const std::string& other : same.others) {
      for (const auto& [first, second] :
           {std::pair(true, true), std::pair(true, false), std::pair(false, true)}) {
        FileRegister entered;
        enter(entered, folder_ / same.name, first);
        const std::string sentence =
            FailureOf([&, writes = second] { enter(entered, folder_ / other, writes); });
        const auto use = [](bool writes) { return writes ? " (a trace)" : " (a recording)"; };
        ExpectWords(sentence, {folder_ / same.name + use(first), folder_ / other + use(second), "same file"});
      }
    }
  }
}

TEST_F(FileRegisterTest, OtherFilesGoTogether) {
  FileRegister entered;
  for (int i = 0; i < 2; ++i) entered.Reads(file_, "a recording");  // read as often as one likes
  for (const char* const device : {"/dev/full", "/dev/full", "", ""}) entered.Writes(device, "--trace");
  for (const char* const name : {"new", "file2", "nowhere/new", "nowhere/file"}) {
    entered.Writes(folder_ / name, "an output");
  }
  entered.Reads("-", "the recording");
}

// Whoever names standard output adds to it; a name of the file that it is led to would empty that.
TEST_F(FileRegisterTest, StandardOutputIsAFileToo) {
  const int output = dup(STDOUT_FILENO);
  const auto led_to_file = [&](const auto& enter) {
    const int file = open(file_.c_str(), O_WRONLY | O_CLOEXEC);
    dup2(file, STDOUT_FILENO);
    close(file);
    std::string sentence = FailureOf([&] {
      FileRegister entered;
      enter(entered);
    });
    dup2(output, STDOUT_FILENO);
    return sentence;
  };
  EXPECT_EQ(led_to_file([](FileRegister& entered) { entered.Writes("/dev/stdout", "--trace"); }),
            "no failure");
  EXPECT_EQ(led_to_file([](FileRegister& entered) { entered.Writes("-", "the video"); }), "no failure");
  ExpectWords(led_to_file([&](FileRegister& entered) { entered.Writes(folder_ / "alias", "--trace"); }),
              {"standard output", "alias (--trace)"});
  ExpectWords(led_to_file([&](FileRegister& entered) { entered.Reads(file_, "the recording"); }),
              {"standard output", "(the recording)"});
  ExpectWords(led_to_file([](FileRegister& entered) {
                entered.Writes("-", "the video");
                entered.Writes("/dev/stdout", "the labels");
              }),
              {"standard output (the video)", "/dev/stdout (the labels)"});
  close(output);
}

}  // namespace
}  // namespace stopngo::test
