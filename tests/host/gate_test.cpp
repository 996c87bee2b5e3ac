// gate_test.cpp: each gate on sequences of frames: when it closes, why, and when it opens again.
#include "host/gates/gate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "host/gates/light_gate.h"
#include "host/gates/once_gate.h"
#include "host/gates/picture_gate.h"
#include "host/gates/speed_gate.h"
#include "host/settings/settings.h"

namespace stopngo::test {
namespace {

constexpr double kPeriod_s = 1.0 / 6;

/// A letter a frame: '.' where the gate was open when it was handed over, else the first letter of the reason's last
/// word. frame(i) is what number i comes to; its time is set here, unless it is given.
std::string States(Gate& gate, int frames, const std::function<GateFrame(int)>& frame_at,
                   const std::function<std::optional<double>(int)>& speed_at = {}) {
  std::string states;
  for (int i = 0; i < frames; ++i) {
    GateFrame frame = frame_at(i);
    if (frame.time_s == 0) frame.time_s = i * kPeriod_s;
    gate.Before(frame.time_s, speed_at ? speed_at(i) : std::nullopt);
    const std::string reason = gate.Reason() == nullptr ? "." : gate.Reason();
    states += reason[reason.rfind(' ') + 1];
    gate.After(frame);
  }
  return states;
}

GateFrame Luma(double luma) {
  GateFrame frame;
  frame.luma = luma;
  return frame;
}

TEST(Gate, LightClosesOnStepsAndDriftsAndOpensWhenItIsCalm) {
  const Settings settings;
  struct Case {
    const char* states;
    std::function<double(int)> luma;
  };
  for (const Case& one : {
           // A vehicle that leaves, 7 levels a second; noise of a level.
           Case{"............", [](int i) { return 100 + 7 * i * kPeriod_s + i % 2; }},
           Case{"....cc......", [](int i) { return i < 3 ? 100 : 130; }},
           Case{"....cc......", [](int i) { return i < 3 ? 100 : 95.5; }},
           // It is looked at again from the last change on.
           Case{"....cccc....", [](int i) { return i < 3   ? 100
                                                   : i < 5 ? 130
                                                           : 90; }},
           Case{"..cccccccccc", [](int i) { return 100 + 30 * i * kPeriod_s; }},
       }) {
    LightGate gate(settings);
    EXPECT_EQ(States(gate, 12, [&](int i) { return Luma(one.luma(i)); }), one.states);
  }
  // At 30 frames a second the flicker of a lamp is no change of that kind, and a step is one.
  LightGate gate(settings);
  const std::string fast = States(gate, 60, [](int i) {
    GateFrame frame = Luma((i < 40 ? 100 : 110) + i % 2);
    frame.time_s = 1 + i / 30.0;
    return frame;
  });
  EXPECT_EQ(fast.find('c'), 41U) << fast;
}

TEST(Gate, SpeedStaysClosedForSomeTimeAfterStopping) {
  Settings settings;
  settings.speed_time_s = 0.5;
  const auto nothing = [](int) { return GateFrame(); };
  const auto drive = [](int i) -> std::optional<double> {
    if (i >= 9) return std::nullopt;
    return i >= 2 && i < 5 ? -20 : 0.4;
  };
  SpeedGate opens(settings);
  EXPECT_EQ(States(opens, 11, nothing, drive), "..mmmss....");
  settings.speed_fails = kFailsClosed;
  SpeedGate closes(settings);
  EXPECT_EQ(States(closes, 11, nothing, drive), "..mmmss..uu");
}

/// Of a sum, as far as entries of a byte go.
GateFrame Motion(int sum, int decision) {
  static std::array<std::int8_t, 80> histogram;
  histogram.fill(static_cast<std::int8_t>(sum / 80));
  GateFrame frame;
  frame.histogram = histogram;
  frame.decision = decision;
  return frame;
}

TEST(Gate, OnceOpensAtTheNextStop) {
  Settings settings;
  settings.once_busy_time_s = 1;
  settings.once_calm_time_s = 0.5;
  // An alarm at 2 with a hold until 5; driving with calm pairs in between, then standing, and another alarm.
  const auto drive = [](int i) {
    if (i >= 2 && i < 5) {
      GateFrame held;
      held.decision = i < 4 ? 1 : 2;
      return held;
    }
    if (i < 16) return Motion(i % 4 == 3 ? 80 : 1000, 0);
    return Motion(i == 17 ? 480 : 80, i == 22 ? 1 : 0);
  };
  OnceGate by_picture(settings);
  EXPECT_EQ(States(by_picture, 25, drive), "...aaaaaaaaaaaaaaaaaa..aa");
  // What stands goes on standing, however long; a crossing is not driving.
  OnceGate waits(settings);
  EXPECT_EQ(States(waits, 60, [](int i) { return Motion(i > 20 && i < 26 ? 1000 : 80, i == 0 ? 1 : 0); }),
            "." + std::string(59, 'a'));
  OnceGate by_speed(settings);
  EXPECT_EQ(States(
                by_speed, 8, [](int i) { return Motion(80, i == 1 ? 1 : 0); },
                [](int i) { return i == 5 ? 7.0 : 0.0; }),
            "..aaa...");
}

TEST(Gate, PictureTellsFrozenBlackAndLostAndThatItIsBack) {
  Settings settings;
  settings.picture_frozen_s = 0.5;
  const auto run = [&](const std::function<GateFrame(int)>& frame_at) {
    PictureGate gate(settings);
    return States(gate, 12, frame_at);
  };
  EXPECT_EQ(run([](int i) {
              GateFrame frame = Luma(100);
              frame.repeated = i >= 3 && i < 8;  // the first of these looks like number 2
              return frame;
            }),
            "......fff...");
  EXPECT_EQ(run([](int i) { return Luma(i == 0 || (i > 4 && i < 8) ? 3 : 15); }), ".b....bbb...");
  EXPECT_EQ(run([](int i) {
              GateFrame frame = Luma(100);
              frame.time_s = (i < 6 ? i : i + 9) * kPeriod_s;
              return frame;
            }),
            "......l.....");
}

}  // namespace
}  // namespace stopngo::test
