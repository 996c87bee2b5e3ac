// clip_keeper_test.cpp: clips around alarms: what they hold, and what of the folder stays.
#include "live/clip_keeper.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "../video/waves.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

Alarm AlarmAt(std::int64_t ms) {
  return {"rtsp://u:p@host/a b", 12, 0.5, 0.5F, 7, std::chrono::system_clock::time_point(milliseconds(ms))};
}

std::vector<std::string> Names(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

SourceOptions Plain(const std::string& path) {
  SourceOptions options;
  options.input = path;
  options.width = 64;
  options.height = 48;
  return options;
}

LumaFrame Picture(std::int64_t number) {
  LumaFrame frame;
  frame.width = 64;
  frame.height = 48;
  frame.index = number;
  frame.pixels = Waves(64, 48, number);
  return frame;
}

/// Ten frames, an alarm, ten more.
ClipKeeper::Counts KeepFrames(const ClipOptions& options, std::int64_t when_ms) {
  ClipKeeper keeper(options, "street");
  for (std::int64_t i = 0; i < 20; ++i) {
    keeper.Frame(Picture(i));
    if (i == 9) keeper.Raise(AlarmAt(when_ms));
  }
  keeper.Finish();
  return keeper.Told();
}

TEST(ClipKeeper, KeepsFramesAroundAnAlarm) {
  const TemporaryFolder folder;
  const auto counts = KeepFrames({folder / "", 10, 5, {}}, 1000);
  EXPECT_EQ(counts.written, 1);
  EXPECT_EQ(counts.cut_short, 1) << "the run ended first";
  KeepFrames({folder / "", 10, 0, {}}, 1000);
  const std::vector<std::string> names = Names(folder / "");
  ASSERT_EQ(names.size(), 4U);
  EXPECT_EQ(names[2], "19700101T000001.000Z-host-a-b.json");
  EXPECT_EQ(names[0], "19700101T000001.000Z-host-a-b-2.json") << "the name was taken";
  const auto json = nlohmann::json::parse(ReadFile(folder / names[2]));
  EXPECT_EQ(json["frames"], 20);
  EXPECT_EQ(json["cut_short"], true);
  EXPECT_EQ(json["alarms"][0]["frame"], 12);
  const auto frames = FramesOf(Plain(folder / names[3]));
  ASSERT_EQ(frames.size(), 20U);
}

#if STOPNGO_WITH_FFMPEG
TEST(ClipKeeper, KeepsPacketsFromAKeyOn) {
  const TemporaryFolder folder;
  Record(folder / "input.mkv", 64, 48, 25, 600);  // a key every 250 pictures
  fs::create_directory(folder / "clips");
  ClipKeeper keeper({folder / "clips", 0, 0.05, {}}, "street");
  SourceOptions options = Plain(folder / "input.mkv");
  options.tap = &keeper;
  {
    const auto source = OpenSource(options);
    LumaFrame frame;
    for (int i = 0; i < 300; ++i) ASSERT_TRUE(source->Next(frame));
    keeper.Raise(AlarmAt(1000));
    keeper.Raise(AlarmAt(2000));
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(source->Next(frame));
    std::this_thread::sleep_for(milliseconds(100));
    while (source->Next(frame)) keeper.Frame(frame);
  }
  keeper.Finish();
  EXPECT_EQ(keeper.Told().written, 1);
  EXPECT_EQ(keeper.Told().cut_short, 0);
  const std::vector<std::string> names = Names(folder / "clips");
  ASSERT_EQ(names.size(), 2U);
  const auto json = nlohmann::json::parse(ReadFile(folder / ("clips/" + names[0])));
  EXPECT_EQ(json["alarms"].size(), 2U);
  const auto frames = FramesOf(Plain(folder / ("clips/" + names[1])));
  EXPECT_EQ(json["packets"], frames.size());
  ASSERT_GE(frames.size(), 55U);
  EXPECT_LT(frames.size(), 350U);
  double nearest = 255;
  for (std::int64_t i = 0; i < 320; ++i) {
    nearest = std::min(nearest, MeanDifference(frames[0].pixels, Waves(64, 48, i)));
  }
  EXPECT_LT(nearest, 3) << "a whole picture comes first";
  EXPECT_NEAR(frames[50].time_s - frames[0].time_s, 2, 0.01) << "the input's own times";
}

/// A connection of an input: so many pictures of a recording, with an alarm after some of them.
void Connect(ClipKeeper& keeper, const std::string& recording, int frames, int alarm_after = -1) {
  SourceOptions options = Plain(recording);
  options.tap = &keeper;
  const auto source = OpenSource(options);
  LumaFrame frame;
  for (int i = 0; i < frames; ++i) {
    if (i == alarm_after) keeper.Raise(AlarmAt(1000));
    ASSERT_TRUE(source->Next(frame));
  }
}

TEST(ClipKeeper, AnInputThatComesBackGoesOnInItsClip) {
  const TemporaryFolder folder;
  Record(folder / "input.mkv", 64, 48, 25, 10);
  fs::create_directory(folder / "clips");
  ClipKeeper keeper({folder / "clips", 10, 5, {}}, "street");
  Connect(keeper, folder / "input.mkv", 10, 5);
  std::this_thread::sleep_for(milliseconds(600));
  Connect(keeper, folder / "input.mkv", 10);
  Connect(keeper, folder / "input.mkv", 10);
  keeper.Finish();
  const std::vector<std::string> names = Names(folder / "clips");
  ASSERT_EQ(names.size(), 2U);
  EXPECT_EQ(keeper.Told().written, 1);
  const auto json = nlohmann::json::parse(ReadFile(folder / ("clips/" + names[0])));
  EXPECT_EQ(json["packets"], 30);
  EXPECT_TRUE(json["previous"].is_null() && json["next"].is_null());
  const auto frames = FramesOf(Plain(folder / ("clips/" + names[1])));
  ASSERT_EQ(frames.size(), 30U);
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const auto number = static_cast<std::int64_t>(i % 10);
    EXPECT_LT(MeanDifference(frames[i].pixels, Waves(64, 48, number)), 3) << i;
    if (number == 0) continue;
    EXPECT_NEAR(frames[i].time_s - frames[i - 1].time_s, 0.04, 0.002) << i;
  }
  EXPECT_GE(frames[10].time_s - frames[0].time_s, 0.6) << "the clock went on meanwhile";
  EXPECT_GT(frames[20].time_s, frames[19].time_s) << "though it had come sooner, from a file";
}

TEST(ClipKeeper, AnInputThatComesBackAsAnotherBeginsASecondFile) {
  const TemporaryFolder folder;
  Record(folder / "small.mkv", 64, 48, 25, 50);
  Record(folder / "large.mkv", 96, 64, 25, 30);
  fs::create_directory(folder / "clips");
  ClipKeeper keeper({folder / "clips", 10, 5, {}}, "street");
  Connect(keeper, folder / "small.mkv", 50, 20);
  Connect(keeper, folder / "large.mkv", 30);
  keeper.Finish();
  EXPECT_EQ(keeper.Told().written, 2);
  EXPECT_EQ(keeper.Told().cut_short, 1) << "the second, since the run ended";
  const std::vector<std::string> names = Names(folder / "clips");
  ASSERT_EQ(names.size(), 4U);
  const auto second = nlohmann::json::parse(ReadFile(folder / ("clips/" + names[0])));
  const auto first = nlohmann::json::parse(ReadFile(folder / ("clips/" + names[2])));
  EXPECT_EQ(first["next"], names[1]);
  EXPECT_EQ(second["previous"], names[3]);
  EXPECT_EQ(first["packets"], 50);
  EXPECT_EQ(second["packets"], 30);
  EXPECT_EQ(second["alarms"], first["alarms"]);
  EXPECT_EQ(FramesOf(Plain(folder / ("clips/" + names[1]))).size(), 30U);
}

TEST(ClipKeeper, WhatWasLongBeforeIsNotInTheClip) {
  const TemporaryFolder folder;
  Record(folder / "input.mkv", 64, 48, 25, 60);
  fs::create_directory(folder / "clips");
  ClipKeeper keeper({folder / "clips", 0.1, 0, {}}, "street");
  Connect(keeper, folder / "input.mkv", 60);
  std::this_thread::sleep_for(milliseconds(200));
  Connect(keeper, folder / "input.mkv", 60, 50);
  keeper.Finish();
  const std::vector<std::string> names = Names(folder / "clips");
  ASSERT_EQ(names.size(), 2U);
  EXPECT_LE(FramesOf(Plain(folder / ("clips/" + names[1]))).size(), 60U);
}
#endif

TEST(ClipKeeper, RemovesItsOldestAndNothingElse) {
  const TemporaryFolder folder;
  const std::string name = "19600101T000001.000Z-street";
  const std::string lone = folder.File(name + ".mkv", std::string(1 << 20, 'x'));
  const std::string text = folder.File("19600101T000001.000Z-text.json", "{}");
  const std::string other = folder.File("1960-street.mkv", std::string(1 << 20, 'x'));
  const std::string beside = folder.File("1960-street.json", "{}");
  ClipOptions options{folder / "", 10, 0, {}};
  KeepFrames(options, 1000);
  std::vector<std::string> names = Names(folder / "");
  const auto first = std::find_if(names.begin(), names.end(),
                                  [](const std::string& kept) { return kept.starts_with("1970"); });
  ASSERT_NE(first, names.end());
  options.bounds.max_bytes = fs::file_size(folder / *std::next(first)) * 5 / 2;
  KeepFrames(options, 2000);
  EXPECT_EQ(Names(folder / "").size(), 8U) << "there is room for two, as they are on the disk";
  EXPECT_EQ(KeepFrames(options, 3000).written, 1);
  names = Names(folder / "");
  EXPECT_EQ(names.size(), 8U) << "and for no third one";
  for (const std::string& path : {lone, text, other, beside}) EXPECT_TRUE(fs::exists(path)) << path;
  for (const std::string& kept : names) {
    if (kept.starts_with("1970"))
      fs::last_write_time(folder / kept, fs::file_time_type::clock::now() - std::chrono::hours(2));
  }
  options.bounds = {0, 3600};
  KeepFrames(options, 4000);
  names = Names(folder / "");
  EXPECT_EQ(names.size(), 6U) << "those of two hours ago went";
  EXPECT_TRUE(names.back().starts_with("19700101T000004"));
}

TEST(ClipKeeper, GoesOnWhenTheDiskDoesNot) {
  const TemporaryFolder folder;
  testing::internal::CaptureStderr();
  EXPECT_EQ(KeepFrames({folder / "none", 10, 0, {}}, 1000).failed, 1);
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit tiny{600, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &tiny);
  const auto full = KeepFrames({folder / "", 10, 0, {}}, 1000);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, before);
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(full.failed, 1);
  EXPECT_EQ(folder.Files(), 0U);
  ExpectWords(said,
              {"no clip of the alarm of 1970-01-01T00:00:01.000Z", "none: No such file", "File too large"});
  EXPECT_EQ(KeepFrames({folder / "", 10, 0, {}}, 1000).written, 1);
}

}  // namespace
}  // namespace stopngo::test
