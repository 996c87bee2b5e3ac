// synth_test.cpp: stopngo synth and the video files it writes: bytes, motion in the picture, labels, faults.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "clips/region.h"
#include "host/file.h"
#include "scene/lane/lane_vehicle.h"
#include "scene/lens/sensor.h"
#include "scene/scene.h"
#include "scene/script/script.h"
#include "support/command.h"
#include "video/frame_rate.h"
#include "video/frame_source.h"
#include "video/open_sink.h"
#include "video/open_source.h"

namespace stopngo::test {
namespace {

using Luma = std::vector<std::uint8_t>;

std::uint64_t Fnv1a(std::string_view bytes) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char byte : bytes) hash = (hash ^ static_cast<std::uint8_t>(byte)) * 0x100000001b3U;
  return hash;
}

/// From where the camera is at the beginning to the rear of the vehicle ahead.
double DistanceOfLead(const SceneOptions& options, double time_s) {
  return LaneVehicle(options.lead, 4, 1e4, options.seed).At(time_s).z;
}

Luma Rendered(Scene& scene, const SceneOptions& options, std::int64_t frame) {
  Luma picture(static_cast<std::size_t>(options.width) * static_cast<std::size_t>(options.height));
  scene.Render(frame, picture);
  return picture;
}

Luma Rendered(const SceneOptions& options, std::int64_t frame) {
  Scene scene(options);
  return Rendered(scene, options, frame);
}

double MeanDifference(const Luma& a, const Luma& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); i++) sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(a.size());
}

/// A camera that neither shakes nor hisses: what changes is the vehicle.
SceneOptions Quiet(std::uint64_t seed) {
  SceneOptions options;
  options.width = 200;
  options.height = 120;
  options.length_s = 40;
  options.seed = seed;
  LeaveAt(options.lead, 2, 1.2);
  options.camera.vibration = 0;
  options.sensor.noise = 0;
  return options;
}

/// A scene of a kind as it is drawn, small.
SceneOptions Drawn(SceneKind kind, std::uint64_t seed) {
  SceneOptions options = DrawScene(kind, seed);
  options.width = 400;
  options.height = 240;
  options.fps = 8;
  return options;
}

std::string WriteY4m(const TemporaryFolder& folder, const SinkOptions& options, const Luma& picture) {
  SinkOptions named = options;
  named.path = folder / "sink.y4m";
  const auto sink = OpenSink(named);
  sink->Write(picture);
  sink->Finish();
  return ReadFile(named.path);
}

}  // namespace

// The hash holds other machines, compilers and optimisations to these very bytes. It changes with the
// look of the scene, and then has to be taken anew.
TEST(Synth, SameSeedSameBytesEverywhere) {
  const std::string arguments = "synth - --size 176x100 --length 3 --departure 1 --vibration 1.5 --seed ";
  // A saloon, a hatchback and a van.
  const std::vector<std::pair<const char*, std::uint64_t>> pinned{
      {"1", 0x4379cabc22f61897U}, {"2", 0xe8e2ccc636bb6810U}, {"3", 0xea90df1a9146381fU}};
  for (const auto& [seed, hash] : pinned) {
    const CommandResult clip = Stopngo(arguments + seed);
    ASSERT_EQ(clip.exit_code, 0) << clip.err;
    const std::size_t header = clip.out.find('\n') + 1;
    EXPECT_EQ(clip.out.substr(0, header), "YUV4MPEG2 W176 H100 F25:1 Ip A1:1 Cmono\n");
    EXPECT_EQ(clip.out.size(), header + 75 * (6 + 176 * 100));
    EXPECT_EQ(Fnv1a(clip.out), hash) << "seed " << seed << std::hex << ": 0x" << Fnv1a(clip.out);
  }
  // All 64 bits of a seed count.
  EXPECT_NE(Stopngo(arguments + "4294967295").out, Stopngo(arguments + "18446744073709551615").out);
}

TEST(Synth, VehicleStandsThenLeaves) {
  for (const std::uint64_t seed : {1, 2, 3}) {
    const SceneOptions options = Quiet(seed);
    Scene scene(options);
    const Luma first = Rendered(scene, options, 0);
    EXPECT_EQ(first, Rendered(scene, options, 38)) << "nothing may move before the brakes come off";
    const Luma before = Rendered(scene, options, 49);  // brakes off, not yet moving
    const double early = MeanDifference(before, Rendered(scene, options, 70));
    const double late = MeanDifference(before, Rendered(scene, options, 120));
    EXPECT_GT(early, 0.3) << "seed " << seed;
    EXPECT_GT(late, 2 * early) << "seed " << seed;
    EXPECT_EQ(first, Rendered(scene, options, 0)) << "frames do not depend on what was rendered before";
  }
}

// The bumper is found in the picture as what differs from the empty street in its row: its edges have to
// lie where a lens 1.3 m above the road with 0.9 widths of focal length sees them at that distance.
TEST(Synth, RearShrinksAsPerspectiveTells) {
  for (const std::uint64_t seed : {1, 2, 3, 4}) {
    const SceneOptions options = Quiet(seed);
    Scene scene(options);
    const Luma gone = Rendered(scene, options, 999);
    const auto width_at = [&](std::int64_t frame) {
      const Luma picture = Rendered(scene, options, frame);
      const double distance = DistanceOfLead(options, static_cast<double>(frame) / options.fps);
      const auto row = static_cast<std::size_t>(0.52 * 120 + 180 * (1.3 - 0.5) / distance) * 200;
      int left = 200;
      int right = 0;
      for (int x = 0; x < 200; x++) {
        if (std::abs(picture[row + x] - gone[row + x]) <= 6) continue;
        left = std::min(left, x);
        right = std::max(right, x + 1);
      }
      EXPECT_NEAR(0.5 * (left + right), 100, 4) << "straight ahead, seed " << seed << " frame " << frame;
      return (right - left) * distance / 180;
    };
    for (const std::int64_t frame : {0, 80, 110, 140}) {
      EXPECT_NEAR(width_at(frame), 1.84, 0.2) << "metres, seed " << seed << " frame " << frame;
    }
  }
}

TEST(Synth, DepartureIsSmoothAndAsStrongAsAsked) {
  SceneOptions options = Quiet(1);
  options.length_s = 60;
  options.lead.distance_m = 7;
  LeaveAt(options.lead, 3, 2);
  Scene scene(options);
  const double step = 0.01;
  double last = 0;
  for (int i = 1; i < 3000; i++) {
    const double time = i * step;
    const double acceleration = (DistanceOfLead(options, time + step) - 2 * DistanceOfLead(options, time) +
                                 DistanceOfLead(options, time - step)) /
                                (step * step);
    ASSERT_GE(acceleration, -1e-6) << time;
    ASSERT_LE(acceleration, 2 + 1e-6) << time;
    ASSERT_NEAR(acceleration, last, 2.6 * step) << "jerk at " << time;
    last = acceleration;
    if (time > 4 && time < 8) {
      ASSERT_NEAR(acceleration, 2, 1e-6) << time;
    }
  }
  EXPECT_DOUBLE_EQ(DistanceOfLead(options, 3), 7);
  EXPECT_NEAR(DistanceOfLead(options, 30) - DistanceOfLead(options, 29), 50 / 3.6, 0.1)
      << "the speed limit of a town";
}

TEST(Synth, SensorNoiseIsAsStrongAsAsked) {
  SceneOptions options = Quiet(5);
  const Luma exact = Rendered(options, 0);
  options.sensor.noise = 4;
  const Luma noisy = Rendered(options, 0);
  double sum = 0;
  double squares = 0;
  int count = 0;
  for (std::size_t i = 0; i < exact.size(); i++) {
    if (std::abs(exact[i] - 110) > 10) continue;
    sum += noisy[i] - exact[i];
    squares += (noisy[i] - exact[i]) * (noisy[i] - exact[i]);
    count++;
  }
  ASSERT_GT(count, 1000);
  EXPECT_NEAR(sum / count, 0, 0.15);
  EXPECT_NEAR(std::sqrt(squares / count), 4, 0.3);
}

TEST(Synth, ExposureChangesMultiply) {
  SensorOptions options;
  options.gain = 0.8;
  options.exposure = {{2, 1, 1.5}, {5, 0, 0.5}};
  const Sensor sensor(options, {0, 0, 8, 8, 8, 8}, 1);
  EXPECT_DOUBLE_EQ(sensor.Gain(0), 0.8);
  EXPECT_DOUBLE_EQ(sensor.Gain(2.5), 0.8 * 1.25);
  EXPECT_DOUBLE_EQ(sensor.Gain(4), 0.8 * 1.5);
  EXPECT_DOUBLE_EQ(sensor.Gain(6), 0.8 * 1.5 * 0.5);
}

// A shutter of 16 ms, a frame in every 16 ms: each is the mean of two of another camera that takes one every
// 4 ms, in which hardly anything moves.
TEST(Synth, ShutterSmearsWhatMoves) {
  SceneOptions options = Quiet(1);
  options.actors = {{ActorKind::kCrossingNear, 1, 4}};
  options.fps = 62.5;
  options.sensor.shutter_s = 0.016;
  SceneOptions quick = options;
  quick.fps = 250;
  quick.sensor.shutter_s = 1e-4;
  Scene smeared(options);
  Scene sharp(quick);
  int moved = 0;  // by how many grey levels at an edge
  for (std::int64_t frame = 180; frame < 320; frame += 4) {
    const Luma picture = Rendered(smeared, options, frame);
    const Luma early = Rendered(sharp, quick, 4 * frame - 1);
    const Luma late = Rendered(sharp, quick, 4 * frame + 1);
    for (std::size_t i = 0; i < picture.size(); i++) {
      ASSERT_NEAR(picture[i], 0.5 * (early[i] + late[i]), 1);
      moved = std::max(moved, std::abs(early[i] - late[i]));
    }
  }
  EXPECT_GT(moved, 10);
}

// What every machine and compiler has to draw alike, from all that a scene can hold.
TEST(Synth, ScenesOfAllKindsHaveTheSameBytesEverywhere) {
  std::uint64_t hash = 0;
  for (const SceneKindName& kind : SceneKinds()) {
    std::vector<Luma> pictures;
    for (const std::uint64_t seed : {1, 2}) {
      const SceneOptions options = Drawn(kind.kind, seed);
      Scene scene(options);
      for (const std::int64_t frame : {0, 44}) pictures.push_back(Rendered(scene, options, frame));
    }
    EXPECT_GT(MeanDifference(pictures[0], pictures[2]), 3) << kind.name << ": seeds must differ";
    for (const Luma& picture : pictures) {
      hash = hash * 31 + Fnv1a({reinterpret_cast<const char*>(picture.data()), picture.size()});
    }
  }
  EXPECT_EQ(hash, 0x7fbac054d19f11d1U) << std::hex << "0x" << hash;
}

// Detectors are to learn from such scenes what is no departure: specks at the horizon would teach nothing.
TEST(Synth, TrafficComesNearWhereNobodyIsAhead) {
  constexpr int kSeeds = 5;
  for (const ActorKind kind : {ActorKind::kCrossing, ActorKind::kCrowd, ActorKind::kNeighbourStarts}) {
    double share = 0;  // of the picture that changes
    for (std::uint64_t seed = 1; seed <= kSeeds; seed++) {
      SceneOptions options = Quiet(seed);
      options.lead_present = false;
      options.actors = {{kind, seed, 4}};
      Scene scene(options);
      const Luma before = Rendered(scene, options, 75);
      const Luma after = Rendered(scene, options, 125);
      std::size_t changed = 0;
      for (std::size_t i = 0; i < before.size(); i++) changed += std::abs(before[i] - after[i]) > 4 ? 1 : 0;
      share += static_cast<double>(changed) / static_cast<double>(before.size()) / kSeeds;
    }
    EXPECT_GT(share, 0.02) << static_cast<int>(kind);
  }
}

TEST(Synth, WindowIsAPartOfThePicture) {
  for (const SceneKind kind : {SceneKind::kMixed, SceneKind::kDriving, SceneKind::kRain}) {
    for (const std::uint64_t seed : {1, 2}) {
      SceneOptions options = Drawn(kind, seed);
      options.sensor.noise = 0;
      Scene whole(options);
      const SceneWindow window{131, 90, 141, 93};
      Scene part(options, window);
      Luma seen(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height));
      for (std::int64_t frame = 0; frame < 70; frame += 7) {
        const Luma picture = Rendered(whole, options, frame);
        part.Render(frame, seen);
        Luma cut;
        for (int row = 0; row < window.height; row++) {
          const auto begin = picture.begin() + (window.y + row) * options.width + window.x;
          cut.insert(cut.end(), begin, begin + window.width);
        }
        EXPECT_LT(MeanDifference(cut, seen), 1.5) << static_cast<int>(kind) << " " << seed << " " << frame;
      }
    }
  }
}

// The lead's place tells when it starts; the picture has to tell it too, and not before.
TEST(Synth, LabelsAgreeWithThePicture) {
  int departures = 0;
  for (std::uint64_t seed = 1; seed <= 6; seed++) {
    SceneOptions options = Drawn(SceneKind::kDeparture, seed);
    options.camera = {};
    options.camera.vibration = 0;
    options.sensor = {};
    options.sensor.noise = 0;
    options.light = {};
    options.actors.clear();
    options.others.clear();
    options.lead.brake_switches_s.clear();
    options.lead.indicator = Indicator::kNone;
    Scene scene(options);
    for (const LabelSpan& label : scene.Labels()) {
      if (label.activity != Activity::kLeadDeparts) continue;
      departures++;
      EXPECT_EQ(DistanceOfLead(options, label.start_s), DistanceOfLead(options, 0));
      EXPECT_GT(DistanceOfLead(options, label.start_s + 2.2), 1.09 * DistanceOfLead(options, 0))
          << "seed " << seed;
      const auto before = static_cast<std::int64_t>(std::floor((label.start_s - 0.15) * options.fps));
      const Luma first = Rendered(scene, options, 0);
      EXPECT_EQ(first, Rendered(scene, options, before)) << "seed " << seed;
      EXPECT_GT(MeanDifference(first, Rendered(scene, options, before + 20)), 0.2) << "seed " << seed;
    }
  }
  EXPECT_EQ(departures, 6);
}

TEST(Synth, LabelsOfEveryKindFollowOneAnother) {
  for (const SceneKindName& kind : SceneKinds()) {
    int departures = 0;
    bool moving = false;
    for (std::uint64_t seed = 1; seed <= 8; seed++) {
      const SceneOptions options = Drawn(kind.kind, seed);
      Scene scene(options, {0, 0, 8, 8});
      double last = 0;
      for (const LabelSpan& label : scene.Labels()) {
        EXPECT_GE(label.start_s, last) << kind.name << " " << seed;
        EXPECT_GT(label.end_s, label.start_s) << kind.name << " " << seed;
        last = label.end_s;
        moving = moving || label.activity == Activity::kEgoMoving;
        if (label.activity != Activity::kLeadDeparts) continue;
        departures++;
        EXPECT_GE(label.start_s, 3) << kind.name << " " << seed;
      }
      EXPECT_LE(last, options.length_s + 0.2);
    }
    const bool leaves = kind.kind == SceneKind::kDeparture || kind.kind == SceneKind::kCreep ||
                        kind.kind == SceneKind::kMixed;
    if (leaves) {
      EXPECT_EQ(departures, 8) << kind.name;
    } else if (kind.kind != SceneKind::kQueue) {
      EXPECT_EQ(departures, 0) << kind.name;
    }
    if (kind.kind == SceneKind::kDriving) {
      EXPECT_TRUE(moving);
    }
  }
}

// A coder keeps what hardly changes: in a still picture that hisses most pixels are those of before, and
// the hiss is gone from what it keeps; what truly changes comes through.
TEST(Synth, CompressionFreezesWhatStands) {
  SceneOptions options = Quiet(4);
  options.sensor.noise = 1.5;
  options.sensor.compression = 0.6;
  options.sensor.refresh_s = 100;
  Scene scene(options);
  const Luma first = Rendered(scene, options, 0);
  const Luma second = Rendered(scene, options, 1);
  const auto same = std::inner_product(first.begin(), first.end(), second.begin(), 0, std::plus<>(),
                                       [](int a, int b) { return a == b ? 1 : 0; });
  EXPECT_GT(same, 0.9 * static_cast<double>(first.size()));
  options.sensor.compression = 0;
  options.sensor.noise = 0;
  const Luma exact = Rendered(options, 0);
  EXPECT_LT(MeanDifference(first, exact), 5);
  EXPECT_GT(MeanDifference(first, exact), 0.2);
  const Luma later = Rendered(scene, options, 110);
  EXPECT_LT(MeanDifference(later, Rendered(options, 110)), 5);
}

TEST(Synth, LabelsAgreeWithOptions) {
  struct Case {
    const char* options;
    const char* lines;
  };
  for (const Case& c : {Case{"--length 6 --departure 1.5", "0\t1.5\tstill\n1.5\t4.5\tlead_departs\n"},
                        Case{"--length 2 --departure 1", "0\t1\tstill\n1\t2\tlead_departs\n"},
                        Case{"--length 2 --departure 0", "0\t2\tlead_departs\n"},
                        Case{"--length 2 --departure 2", "0\t2\tstill\n"}}) {
    const TemporaryFolder folder;
    const std::string video = folder / "clip.y4m";
    const CommandResult result = Stopngo("synth " + video + " --json --seed 9 --size 96x64 " + c.options);
    ASSERT_EQ(result.exit_code, 0) << result.err;
    const std::string labels = ReadFile(video + ".labels.tsv");
    const std::size_t end = labels.find('\n');
    EXPECT_EQ(labels.substr(end + 1), std::string("start_s\tend_s\tlabel\n") + c.lines);
    const auto comment = nlohmann::json::parse(labels.substr(2, end - 2));
    const auto line = nlohmann::json::parse(result.out);
    EXPECT_EQ(comment["seed"], 9);
    EXPECT_EQ(comment["roi"], (std::vector<int>{290, 260, 220, 140}));
    EXPECT_EQ(comment["roi"], line["roi"]);
    EXPECT_EQ(line["labels"].size(), std::count(c.lines, c.lines + std::strlen(c.lines), '\n'));
    EXPECT_EQ(folder.Files(), 2U);
  }
}

TEST(Synth, FaultsGiveOneSentenceAndLeaveNothing) {
  struct Case {
    const char* arguments;  ///< @/ stands for the folder
    int exit_code;
    const char* named;
  };
  const TemporaryFolder folder;
  std::filesystem::create_symlink("/dev/full", folder / "full.y4m");
  std::filesystem::create_symlink("/dev/full", folder / "full.tsv");
  std::vector<Case> cases{{"@/clip.y4m --length 0", 2, "--length"},
                          {"@/clip.y4m --rate -3", 2, "--rate"},
                          {"@/clip.y4m --rate nan", 2, "--rate"},
                          {"@/clip.y4m --rate 1e9", 2, "--rate"},
                          {"@/clip.y4m --distance -1", 2, "--distance"},
                          {"@/clip.y4m --size 800", 2, "--size"},
                          {"@/clip.y4m --size 99999x480", 2, "--size"},
                          {"@/clip.y4m --seed -1", 2, "--seed"},
                          {"@/clip.y4m --kind parade", 2, "parade"},
                          {"@/nowhere/clip.y4m", 1, "nowhere/clip.y4m"},
                          {"@/clip.nonsense", 1, "clip.nonsense"},
                          {"@/full.y4m", 1, "full.y4m"},
                          {"@/clip.y4m --labels @/full.tsv", 1, "full.tsv"},
                          {"@/clip.y4m --labels @/nowhere/l", 1, "nowhere/l"}};
#if STOPNGO_WITH_FFMPEG
  cases.insert(cases.end(),
               {{"@/clip.mp4 --size 101x64", 1, "even"}, {"@/nowhere/clip.mp4", 1, "nowhere/clip.mp4"}});
#else
  cases.push_back({"@/clip.mp4", 1, "FFmpeg"});
#endif
  for (const Case& c : cases) {
    std::string arguments = c.arguments;
    if (arguments.find("--size") == std::string::npos) arguments += " --size 64x48";
    for (auto at = arguments.find("@/"); at != std::string::npos; at = arguments.find("@/")) {
      arguments.replace(at, 2, folder / "");
    }
    const CommandResult result = Stopngo("synth " + arguments);
    EXPECT_EQ(result.exit_code, c.exit_code) << c.arguments;
    EXPECT_EQ(result.err.rfind("stopngo: ", 0), 0U) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(c.named), std::string::npos) << c.arguments << ": " << result.err;
    EXPECT_EQ(folder.Files(), 2U) << c.arguments;
  }
}

TEST(VideoSink, UnfinishedLeavesTheOldFile) {
  const TemporaryFolder folder;
  std::vector<std::string> names{"old.y4m"};
#if STOPNGO_WITH_FFMPEG
  names.emplace_back("old.mkv");
#endif
  for (const std::string& name : names) {
    const std::string path = folder.File(name, "old");
    const auto before = folder.Files();
    {
      const auto sink = OpenSink({path, 64, 48, 25, PixelFormat::kGray});
      sink->Write(Luma(64 * 48, 90));
    }
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(folder.Files(), before);
  }
}

TEST(VideoSink, RatesAreExactRatios) {
  const TemporaryFolder folder;
  for (const auto& [fps, text] : {std::pair{25.0, " F25:1 "},
                                  {29.97, " F30000:1001 "},
                                  {23.976, " F24000:1001 "},
                                  {59.94, " F60000:1001 "},
                                  {12.5, " F25:2 "},
                                  {7.3, " F73:10 "}}) {
    const std::string file = WriteY4m(folder, {"", 2, 2, fps, PixelFormat::kGray}, Luma(4, 90));
    EXPECT_NE(file.find(text), std::string::npos) << fps << ": " << file;
  }
}

// The corners of the colour cube as ITU-R BT.601 codes them.
TEST(VideoSink, ColoursOfY4m) {
  const TemporaryFolder folder;
  const Luma bgrx{255, 255, 255, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0};
  const std::string file = WriteY4m(folder, {"", 2, 2, 25, PixelFormat::kBgrx}, bgrx);
  EXPECT_NE(file.find(" C444\n"), std::string::npos);
  const std::vector<int> expected{235, 82, 144, 41, 128, 90, 54, 240, 128, 240, 34, 110};
  ASSERT_GT(file.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); i++) {
    EXPECT_NEAR(static_cast<std::uint8_t>(file[file.size() - expected.size() + i]), expected[i], 1) << i;
  }
}

#if STOPNGO_WITH_FFMPEG
TEST(VideoSink, VideoFilesKeepGreyLevelsAndTimes) {
  SceneOptions options = Quiet(1);
  options.width = 320;
  options.height = 192;
  options.fps = 29.97;
  options.length_s = 1;
  LeaveAt(options.lead, 0, 1.2);
  Scene scene(options);
  const TemporaryFolder folder;
  for (const char* name : {"clip.mp4", "clip.mkv", "clip.avi"}) {
    const std::string path = folder / name;
    const auto sink = OpenSink({path, options.width, options.height, options.fps, PixelFormat::kGray});
    for (std::int64_t i = 0; i < scene.Frames(); i++) sink->Write(Rendered(scene, options, i));
    sink->Finish();
    SourceOptions input;
    input.input = path;
    input.width = options.width;
    input.height = options.height;
    const auto source = OpenSource(input);
    LumaFrame frame;
    std::int64_t count = 0;
    for (; source->Next(frame); count++) {
      EXPECT_LT(MeanDifference(frame.pixels, Rendered(scene, options, count)), 2.5)
          << name << " frame " << count;
      EXPECT_NEAR(frame.time_s, static_cast<double>(count) * 1001 / 30000, 0.002) << name;
    }
    EXPECT_EQ(count, 30) << name;
  }
}
#endif

}  // namespace stopngo::test
