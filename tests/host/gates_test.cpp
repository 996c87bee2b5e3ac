// gates_test.cpp: what the gates do to the decisions of the real module, and that they leave no trace where all are open.
#include "host/gates/gates.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/detector.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "vel_stopngo_ctx.h"

namespace stopngo::test {
namespace {

constexpr double kFed = 6;

/// Without weights every score is 0.5, so that alarms come by the count alone.
Settings Counting(int gates) {
  Settings settings;
  settings.no_weights = true;
  settings.gates = gates;
  settings.time_beeping = {2, false};
  settings.time_cooling = {4, false};
  return settings;
}

/// A grey frame with noise, so that no two are the same.
void Paint(LumaFrame& frame, int grey) {
  std::uint32_t state = static_cast<std::uint32_t>(frame.index) + 1;
  for (std::uint8_t& pixel : frame.pixels) {
    state = state * 1664525 + 1013904223;
    pixel = static_cast<std::uint8_t>(grey + static_cast<int>(state >> 30));
  }
}

struct Scenario {
  int frames = 0;
  std::function<int(int)> grey = [](int) { return 100; };
  std::function<void(int, double, stopngo::Detector&)> before = [](int, double, stopngo::Detector&) {};
};

struct Told {
  std::string decisions;  ///< as the callback told them: frame:decision
  std::string gates;      ///< whether any was closed, a letter a frame
  std::vector<FrameReport> reports;
};

Told Play(const Settings& settings, const Scenario& scenario) {
  static const Module module(STOPNGO_MODULE_FILE);
  stopngo::Detector detector(module, settings, {800, 480, kFed});
  LumaFrame frame{800, 480, 0, 0, std::vector<std::uint8_t>(std::size_t{800} * 480)};
  Told told;
  for (int i = 0; i < scenario.frames; ++i) {
    frame.index = i;
    frame.time_s = i / kFed;
    Paint(frame, scenario.grey(i));
    scenario.before(i, frame.time_s, detector);
    told.reports.push_back(detector.Write(frame));
    const FrameReport& report = told.reports.back();
    if (report.changed) told.decisions += std::to_string(i) + ":" + std::to_string(report.decision) + " ";
    told.gates += ClosedText(report.closed).empty() ? '.' : '#';
    EXPECT_EQ(told.gates.back() == '.', detector.Context().TimeLeaving == settings.time_leaving.Frames(kFed));
  }
  return told;
}

TEST(Gates, OpenOnesChangeNothing) {
  const Scenario scenario{.frames = 30};
  const Told without = Play(Counting(0), scenario);
  const Told with =
      Play(Counting(BitOf(GateKind::kLight) | BitOf(GateKind::kSpeed) | BitOf(GateKind::kPicture)), scenario);
  EXPECT_EQ(without.decisions, "4:1 7:2 9:0 12:1 15:2 17:0 20:1 23:2 25:0 28:1 ");
  EXPECT_EQ(with.decisions, without.decisions);
  for (std::size_t i = 0; i < without.reports.size(); ++i) {
    EXPECT_EQ(with.reports[i].alarm_counter, without.reports[i].alarm_counter) << i;
    EXPECT_EQ(with.reports[i].hold_timer, without.reports[i].hold_timer) << i;
  }
}

TEST(Gates, CountsOnWhileTheLightChanges) {
  const Told told = Play(Counting(BitOf(GateKind::kLight)),
                         {.frames = 10, .grey = [](int i) { return i < 2 ? 100 : 140; }});
  EXPECT_EQ(told.gates, "...##.....");
  EXPECT_EQ(told.decisions, "5:1 8:2 ") << "the alarm of frame 4 comes as soon as the gate opens";
}

TEST(Gates, AnAlarmThatAGateClosesOnIsToldToItsEnd) {
  // The vehicle moves from the alarm on, and stands again later.
  const auto drive = [](int i, double time_s, stopngo::Detector& detector) {
    detector.SetSpeed(i >= 5 && i < 15 ? 30 : 0, time_s);
  };
  Settings settings = Counting(BitOf(GateKind::kSpeed));
  settings.speed_time_s = 0.5;
  const Told told = Play(settings, {.frames = 24, .before = drive});
  EXPECT_EQ(told.gates, ".....############.......");
  EXPECT_EQ(told.decisions, "4:1 7:2 9:0 20:1 23:2 ") << "and the count starts from nothing at 17";
  // Without a hold the next alarm could come on the frame behind the first one.
  settings.time_cooling = settings.time_leaving = {0, false};
  EXPECT_EQ(Play(settings, {.frames = 17, .before = drive}).decisions, "1:1 5:0 ");
}

TEST(Gates, OneAlarmAStop) {
  const Told told = Play(Counting(BitOf(GateKind::kOnce)), {.frames = 40});
  EXPECT_EQ(told.decisions, "4:1 7:2 9:0 ");
  const Told moved = Play(Counting(BitOf(GateKind::kOnce)),
                          {.frames = 40, .before = [](int i, double time_s, stopngo::Detector& detector) {
                             detector.SetSpeed(i == 20 ? 5 : 0, time_s);
                           }});
  EXPECT_EQ(moved.decisions, "4:1 7:2 9:0 23:1 26:2 28:0 ");
}

TEST(Gates, ThePicturesStateIsToldAndEvidenceStartsAnew) {
  const Told told = Play(Counting(BitOf(GateKind::kPicture)),
                         {.frames = 12, .grey = [](int i) { return i >= 2 && i < 5 ? 0 : 100; }});
  EXPECT_EQ(told.gates, "...###......");
  EXPECT_EQ(ClosedText(told.reports[3].closed), "picture (picture black)");
  EXPECT_EQ(told.decisions, "9:1 ");
}

// The module takes a fixed number off a count that may have gone far beyond the alarm's while a gate was closed.
TEST(Gates, WhatWasCountedBeyondTheAlarmIsForgottenAtTheFirstLowScore) {
  const Module module(STOPNGO_MODULE_FILE);
  VEL_STOPNGO_CTX context;
  module.Operations().open(&context);
  Settings settings = Counting(BitOf(GateKind::kSpeed));
  Gates gates(module, settings, kFed);
  const int alarm = settings.time_leaving.Frames(kFed) + 1;
  for (const int count : {0, alarm, alarm + 1, 500}) {
    context.AlarmCounter[0] = count;
    gates.Before(0, context);
    EXPECT_EQ(context.AlarmCounter[0] - context.GapOp, std::min(count, alarm) - settings.gap_op);
  }
  module.Operations().close(&context);
}

}  // namespace
}  // namespace stopngo::test
