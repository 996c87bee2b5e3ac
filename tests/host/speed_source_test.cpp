// speed_source_test.cpp: the own speed from calls, files and pipes; what is no speed is said once and does no harm.
#include "host/gates/speed_source.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

constexpr double kStale_s = 2;

std::string Remark(SpeedSource& source) {
  const char* const remark = source.TakeRemark();
  return remark == nullptr ? "" : remark;
}

TEST(SpeedSource, HoldsWhatItWasToldUntilItIsStale) {
  SpeedSource source("", kStale_s);
  EXPECT_EQ(source.At(10), std::nullopt);
  EXPECT_EQ(Remark(source), "");
  source.Tell(30, 10.5);
  EXPECT_EQ(source.At(12.5), 30);
  source.Tell(std::nan(""), 12.5);
  EXPECT_NE(Remark(source).find("no number"), std::string::npos);
  EXPECT_EQ(source.At(12.6), std::nullopt);
  EXPECT_NE(Remark(source).find("speed-stale"), std::string::npos);
  // It comes back, and goes again: that has been said.
  source.Tell(0, 13);
  EXPECT_EQ(source.At(13), 0);
  EXPECT_EQ(source.At(20), std::nullopt);
  EXPECT_EQ(Remark(source), "");
  SpeedSource never("", kStale_s);
  EXPECT_EQ(never.At(100), std::nullopt);
  EXPECT_EQ(Remark(never), "");
  EXPECT_EQ(never.At(103), std::nullopt);
  EXPECT_NE(Remark(never).find("speed-stale"), std::string::npos);
}

TEST(SpeedSource, ReadsAFileWheneverItIsWritten) {
  const TemporaryFolder folder;
  const std::string path = folder / "speed";
  SpeedSource source(path, kStale_s);
  EXPECT_EQ(source.At(0), std::nullopt);
  const auto put = [&](const std::string& text) { std::filesystem::rename(folder.File("new", text), path); };
  put("12.5\n");
  EXPECT_EQ(source.At(1), 12.5);
  EXPECT_EQ(source.At(3), 12.5);
  EXPECT_EQ(source.At(3.5), std::nullopt) << "nobody writes it any more";
  (void)source.TakeRemark();
  put(" 12.5 ");
  EXPECT_EQ(source.At(4), 12.5);
  put("");
  EXPECT_EQ(source.At(4), 12.5) << "somebody is about to write it";
  EXPECT_EQ(Remark(source), "");
  for (const char* const bad : {"fast", "12,5", "nan", "1e999", "1 2"}) {
    put(bad);
    EXPECT_EQ(source.At(5), 12.5) << bad;
  }
  EXPECT_NE(Remark(source).find("no number"), std::string::npos);
  put(std::string(5000, '7'));
  EXPECT_EQ(source.At(5), 12.5);
  EXPECT_EQ(Remark(source), "");
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_EQ(source.At(6), 12.5);
}

TEST(SpeedSource, TakesTheLastWholeLineOfAPipe) {
  const TemporaryFolder folder;
  const std::string path = folder / "pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  SpeedSource source(path, kStale_s);
  EXPECT_EQ(source.At(0), std::nullopt) << "nobody has it open, and nobody waits";
  int writer = open(path.c_str(), O_WRONLY | O_NONBLOCK);
  ASSERT_GE(writer, 0);
  const auto put = [&writer](const std::string& text) {
    ASSERT_EQ(write(writer, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  };
  put("1\n2\n3");
  EXPECT_EQ(source.At(1), 2);
  put("4\n");
  EXPECT_EQ(source.At(1), 34);
  std::string many;
  for (int i = 0; i < 1000; ++i) many += std::to_string(i) + "\n";
  put(many);
  EXPECT_EQ(source.At(1), 999);
  put(std::string(1000, '5') + "\n6\n");
  EXPECT_EQ(source.At(1), 6);
  EXPECT_NE(Remark(source).find("no number"), std::string::npos);
  close(writer);
  EXPECT_EQ(source.At(2), 6);
  EXPECT_EQ(source.At(4), std::nullopt);
  writer = open(path.c_str(), O_WRONLY | O_NONBLOCK);
  ASSERT_GE(writer, 0);
  put("0\n");
  EXPECT_EQ(source.At(5), 0) << "another writer";
  close(writer);
}

}  // namespace
}  // namespace stopngo::test
