// version_test.cpp: what stopngo --version tells of program, module and processor.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "program.h"

namespace stopngo::test {
namespace {

// The set that the module has in force, as the processor's flags ask for it.
std::string KernelsOfThisProcessor() {
#if defined(__x86_64__)
  const std::string flags = Shell("grep -m1 ^flags /proc/cpuinfo").out + ' ';
  const auto has = [&](const std::string& flag) {
    return flags.find(' ' + flag + ' ') != std::string::npos ||
           flags.find(' ' + flag + '\n') != std::string::npos;
  };
  if (!has("sse4_1")) return "generic";
  if (!has("avx2") || !has("fma")) return "sse41";
  const bool vnni = has("avx512f") && has("avx512bw") && has("avx512vl") && has("avx512_vnni");
  return vnni ? "avx512vnni" : "avx2";
#else
  const std::string features = Shell("grep -m1 ^Features /proc/cpuinfo").out;
  return features.find(" asimddp") != std::string::npos ? "neon_dotprod" : "neon";
#endif
}

TEST(Version, TellsCommitFfmpegAndTheModuleWithItsKernels) {
  const CommandResult version = Stopngo("--version");
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_EQ(version.err, "");
  const auto tells = [&](const std::string& line) {
    EXPECT_NE(('\n' + version.out).find('\n' + line), std::string::npos) << line << " in " << version.out;
  };
  tells("stopngo " STOPNGO_VERSION "\n");
  tells("commit ");
  tells(STOPNGO_WITH_FFMPEG ? "FFmpeg " : "FFmpeg none: built without it\n");
  const std::string module = std::filesystem::path(STOPNGO_MODULE_FILE).parent_path() / "libzetstopngo.so";
  tells("module " + module + "\nmodule version " STOPNGO_VERSION ", kernels " + KernelsOfThisProcessor() +
        "\n");
}

// Another library with the same names, such as an older one, has no note: that is said, and nothing is guessed.
TEST(Version, AModuleThatTellsNothingIsUnknown) {
  const TemporaryFolder folder;
  const std::string other = folder / "libzetstopngo.so";
  const std::string rename =
      R"(sed 's/zetstopngo\x00\x00/zetstopnga\x00\x00/' )" STOPNGO_MODULE_FILE " >" + other;
  ASSERT_EQ(Shell(rename).exit_code, 0);
  const CommandResult version = Shell("STOPNGO_MODULE=" + other + " " STOPNGO_PROGRAM " --version");
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_NE(version.out.find("module " + other + "\nmodule version unknown, kernels unknown\n"),
            std::string::npos)
      << version.out << version.err;
}

}  // namespace
}  // namespace stopngo::test
