// module_lookup_test.cpp: which module the program loads: its own, never one that lies about.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "program.h"

namespace stopngo::test {
namespace {

namespace fs = std::filesystem;

TEST(ModuleLookup, TheOneThatIsLoadedIsNamed) {
  if (fs::exists(STOPNGO_FULL_LIBDIR "/libzetstopngo.so"))
    GTEST_SKIP() << "one is installed for every program";
  const TemporaryFolder folder;
  for (const char* const name : {"bin", "here"}) fs::create_directory(folder / name);
  const std::string program = folder / "bin/stopngo";
  fs::copy_file(STOPNGO_PROGRAM, program);
  // A library that lies in the current folder is anybody's.
  fs::copy_file(STOPNGO_MODULE_FILE, folder / "here/libzetstopngo.so");
  const auto version = [&](const std::string& environment) {
    const CommandResult result =
        Shell("cd " + folder / "here && " + environment + " " + program + " --version");
    EXPECT_EQ(result.exit_code, 0);
    return result.out;
  };
  const std::string none = version("");
  EXPECT_NE(none.find("\nthe module cannot be loaded"), std::string::npos);
  // Where the program lies, where a module is installed with it, where this build installs one; and nowhere else.
  std::size_t last = 0;
  for (const std::string& place :
       {folder / "bin", folder / STOPNGO_LIBDIR, std::string(STOPNGO_FULL_LIBDIR)}) {
    const std::size_t told = none.find(' ' + place + "/libzetstopngo.so: ");
    ASSERT_NE(told, std::string::npos) << place << " in " << none;
    EXPECT_GT(told, last);
    last = told;
  }
  EXPECT_EQ(none.find(folder / "here"), std::string::npos);
  EXPECT_NE(version("STOPNGO_MODULE=libzetstopngo.so").find("module " + folder / "here/libzetstopngo.so\n"),
            std::string::npos);
  fs::copy_file(STOPNGO_MODULE_FILE, folder / "bin/libzetstopngo.so");
  EXPECT_NE(version("").find("module " + folder / "bin/libzetstopngo.so\n"), std::string::npos);
}

// An empty or a relative entry is the folder that the user happens to be in.
TEST(ModuleLookup, TheLoaderIsGivenNoFolderOfItsOwn) {
  const CommandResult entries = Shell("readelf -d " STOPNGO_PROGRAM);
  ASSERT_EQ(entries.exit_code, 0) << entries.err;
  ASSERT_NE(entries.out.find("NEEDED"), std::string::npos);
  std::istringstream lines(entries.out);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.find("RUNPATH") == std::string::npos && line.find("RPATH") == std::string::npos) << line;
  }
}

}  // namespace
}  // namespace stopngo::test
