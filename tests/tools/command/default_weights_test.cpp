// default_weights_test.cpp: the weights that are used when none are named.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "program.h"
#include "support/failure_text.h"

namespace stopngo::test {
namespace {

// A copy of the program shows what it finds from where it lies.
TEST(DefaultWeights, AreFoundAsInstalledAndInAClone) {
  namespace fs = std::filesystem;
  if (fs::exists(STOPNGO_FULL_DATADIR "/default.bin")) GTEST_SKIP() << "some are installed for every program";
  const TemporaryFolder folder;
  const fs::path root = folder / "root";
  for (const char* const name : {"bin", "share/zetstopngo", "build/any", "weights"}) {
    fs::create_directories(root / name);
  }
  const auto run = [&](const char* place, const std::string& environment = {}) {
    fs::copy_file(STOPNGO_PROGRAM, root / place / "stopngo", fs::copy_options::skip_existing);
    return Shell("STOPNGO_MODULE=" STOPNGO_MODULE_FILE " STOPNGO_WEIGHTS=" + environment + " " +
                     (root / place / "stopngo").string() + " run - --raw 800x480 --raw-fps 10 --rate 0",
                 std::string(384000, '\0'));
  };
  for (const char* const place : {"bin", "build/any"}) {
    const CommandResult none = run(place);
    EXPECT_EQ(none.exit_code, 2) << place;
    ExpectWords(none.err, {"--weights", "--no-weights"});
  }
  const std::string weights = folder.File("w.bin", std::string(10372, '\1'));
  fs::copy_file(weights, root / "bin/default.bin");
  EXPECT_EQ(run("bin").exit_code, 0) << "beside the program";
  fs::remove(root / "bin/default.bin");
  fs::copy_file(weights, root / "share/zetstopngo/default.bin");
  EXPECT_EQ(run("bin").exit_code, 0);
  (void)folder.File("root/build/any/CMakeCache.txt", "");
  EXPECT_EQ(run("build/any").exit_code, 2) << "a build folder uses what the clone has";
  fs::copy_file(weights, root / "weights/default.bin");
  EXPECT_EQ(run("build/any").exit_code, 0);
  ExpectWords(run("bin", "gone.bin").err, {"gone.bin"});
  // What the sidecar of weights found by default does not match is told, too.
  (void)folder.File("root/share/zetstopngo/default.bin.json", "{}");
  const CommandResult bad = run("bin");
  EXPECT_EQ(bad.exit_code, 1);
  ExpectWords(bad.err, {"default.bin.json", "format"});
}

}  // namespace
}  // namespace stopngo::test
