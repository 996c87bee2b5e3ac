// synth.cpp: stopngo synth: renders a scene in which the vehicle ahead departs, with its labels.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "failure.h"
#include "output_file.h"
#include "progress.h"
#include "results.h"
#include "scene.h"
#include "subcommands.h"
#include "system_error.h"
#include "video_sink.h"

namespace stopngo {
namespace {

// A vehicle that drives away counts as departing for this long: later it is too small to be told apart
// from one that is merely far.
constexpr double kDepartureLabel_s = 3;

struct Arguments {
  SceneOptions scene;
  std::string size = "800x480";
  std::string seed = "1";
  std::string output;
  std::string labels;
  bool json = false;
};

struct Label {
  double start_s;
  double end_s;
  std::string name;
};

std::string Text(double value) {
  std::array<char, 512> digits{};  // the largest double has 309
  const auto result =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
  return {digits.data(), result.ptr};
}

void ParseSize(const std::string& text, SceneOptions& scene) {
  const char* const end = text.data() + text.size();
  const auto width = std::from_chars(text.data(), end, scene.width);
  const bool separated = width.ec == std::errc{} && width.ptr != end && *width.ptr == 'x';
  if (separated) {
    const auto height = std::from_chars(width.ptr + 1, end, scene.height);
    if (height.ec == std::errc{} && height.ptr == end) return;
  }
  throw Failure("--size: " + text + " is not WIDTHxHEIGHT, such as 800x480", ExitCode::kUsage);
}

// Not left to the command line's parser, which wraps -1 around to the largest seed.
void ParseSeed(const std::string& text, SceneOptions& scene) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, scene.seed);
  if (result.ec == std::errc{} && result.ptr == end) return;
  throw Failure("--seed: " + text + " is not a whole number from 0 to 2^64 - 1", ExitCode::kUsage);
}

/// What a street, a camera and a vehicle can be like.
void CheckRanges(const SceneOptions& scene) {
  struct Range {
    const char* option;
    double value, least, most;
    const char* unit;
  };
  const std::array<Range, 9> ranges{{
      {"--size", static_cast<double>(scene.width), 64, 3840, "pixels of width"},
      {"--size", static_cast<double>(scene.height), 48, 2160, "pixels of height"},
      {"--rate", scene.fps, 1, 240, "frames a second"},
      {"--length", scene.length_s, 0.1, 3600, "seconds"},
      {"--departure", scene.departure_s, 0, 1e6, "seconds"},
      {"--distance", scene.distance_m, 2, 100, "metres"},
      {"--acceleration", scene.acceleration, 0.1, 10, "m/s²"},
      {"--vibration", scene.vibration, 0, 8, "pixels"},
      {"--noise", scene.noise, 0, 60, "grey levels"},
  }};
  for (const Range& range : ranges) {
    if (range.value >= range.least && range.value <= range.most) continue;
    throw Failure(std::string(range.option) + ": " + Text(range.value) +
                      " is out of range: " + Text(range.least) + " to " + Text(range.most) + " " + range.unit,
                  ExitCode::kUsage);
  }
}

std::vector<Label> Labels(const SceneOptions& scene, double length) {
  const double length_s = std::round(length * 1000) / 1000;
  const double start = std::min(scene.departure_s, length_s);
  std::vector<Label> labels;
  if (start > 0) labels.push_back({0, start, "still"});
  if (start < length_s)
    labels.push_back({start, std::min(start + kDepartureLabel_s, length_s), "lead_departs"});
  return labels;
}

nlohmann::ordered_json Describe(const SceneOptions& options, const Scene& scene) {
  const SceneRegion region = scene.SuggestedRegion();
  return {{"seed", options.seed},
          {"width", options.width},
          {"height", options.height},
          {"fps", options.fps},
          {"frames", scene.Frames()},
          {"departure_s", options.departure_s},
          {"distance_m", options.distance_m},
          {"acceleration", options.acceleration},
          {"vibration", options.vibration},
          {"noise", options.noise},
          {"roi", {region.x, region.y, region.width, region.height}}};
}

// Flushed at once: a full disk has to be noticed before the video takes its final name.
void WriteLabels(const std::string& path, std::ostream& out, const std::vector<Label>& labels,
                 const nlohmann::ordered_json& scene) {
  errno = 0;
  out << "# " << scene.dump() << "\nstart_s\tend_s\tlabel\n";
  for (const Label& label : labels) {
    out << Text(label.start_s) << '\t' << Text(label.end_s) << '\t' << label.name << '\n';
  }
  out.flush();
  if (!out) throw Failure(path + ": " + LastSystemError());
}

std::string Summary(const Arguments& arguments, const nlohmann::ordered_json& scene,
                    const std::vector<Label>& labels) {
  if (arguments.json) {
    nlohmann::ordered_json line{{"output", arguments.output}};
    if (!arguments.labels.empty()) line["labels_file"] = arguments.labels;
    line.update(scene);
    for (const Label& label : labels) {
      line["labels"].push_back({{"start_s", label.start_s}, {"end_s", label.end_s}, {"label", label.name}});
    }
    return line.dump();
  }
  std::string text = arguments.output + ": " + scene["frames"].dump() + " frames of " + arguments.size +
                     " at " + Text(arguments.scene.fps) + " a second, region " + scene["roi"].dump();
  for (const Label& label : labels) {
    text += ", " + label.name + " " + Text(label.start_s) + "–" + Text(label.end_s) + " s";
  }
  return text;
}

void Render(const Scene& scene, const SceneOptions& options, VideoSink& sink) {
  Progress progress("Rendering", scene.Frames());
  std::vector<std::uint8_t> luma(static_cast<std::size_t>(options.width) *
                                 static_cast<std::size_t>(options.height));
  for (std::int64_t frame = 0; frame < scene.Frames(); frame++) {
    scene.Render(frame, luma);
    sink.Write(luma);
    progress.Step();
  }
}

void Synth(Arguments arguments) {
  SceneOptions& options = arguments.scene;
  ParseSize(arguments.size, options);
  ParseSeed(arguments.seed, options);
  CheckRanges(options);
  const bool to_stdout = arguments.output == "-";
  if (arguments.labels.empty() && !to_stdout) arguments.labels = arguments.output + ".labels.tsv";

  // Outputs are opened before the work, so that one that cannot be written is told at once.
  const auto sink =
      OpenSink({arguments.output, options.width, options.height, options.fps, PixelFormat::kGray});
  std::optional<OutputFile> labels_file;
  if (!arguments.labels.empty()) labels_file.emplace(arguments.labels);

  const Scene scene(options);
  const auto labels = Labels(options, static_cast<double>(scene.Frames()) / options.fps);
  const nlohmann::ordered_json description = Describe(options, scene);
  Render(scene, options, *sink);
  if (labels_file) WriteLabels(arguments.labels, labels_file->Stream(), labels, description);
  sink->Finish();
  if (labels_file) labels_file->Commit();

  const std::string summary = Summary(arguments, description, labels);
  if (to_stdout) {
    std::cerr << summary << '\n';  // standard output is the video
  } else {
    WriteResult(summary);
  }
}

}  // namespace

std::function<void()> AddSynth(CLI::App& app) {
  auto arguments = std::make_shared<Arguments>();
  SceneOptions& scene = arguments->scene;
  CLI::App* synth = app.add_subcommand(
      "synth", "Render a street scene: a camera waits behind a vehicle, which drives away; with its labels");
  synth
      ->add_option("output", arguments->output,
                   "Y4M file, - for Y4M on standard output, or any video file (.mp4, .mkv)")
      ->required();
  synth->add_option("--size", arguments->size, "Picture size, WIDTHxHEIGHT")->capture_default_str();
  synth->add_option("--rate", scene.fps, "Frames a second")->capture_default_str();
  synth->add_option("--length", scene.length_s, "Length in seconds")->capture_default_str();
  synth
      ->add_option("--departure", scene.departure_s,
                   "Second at which the vehicle starts; past the length: never")
      ->capture_default_str();
  synth
      ->add_option("--seed", arguments->seed,
                   "Chooses street, vehicle, noise and shake; the same gives the same bytes")
      ->capture_default_str();
  synth->add_option("--distance", scene.distance_m, "Metres to the vehicle's rear while it waits")
      ->capture_default_str();
  synth->add_option("--acceleration", scene.acceleration, "Of the vehicle, m/s², reached after 0.8 s")
      ->capture_default_str();
  synth->add_option("--vibration", scene.vibration, "Largest shake of the picture, pixels")
      ->capture_default_str();
  synth->add_option("--noise", scene.noise, "Standard deviation of the sensor noise, grey levels")
      ->capture_default_str();
  synth->add_option("--labels", arguments->labels, "Labels file (default: OUTPUT.labels.tsv; none for -)");
  synth->add_flag("--json", arguments->json, "Describe the clip as one line of JSON");
  synth->footer(
      "Examples:\n"
      "  stopngo synth clip.y4m\n"
      "  stopngo synth clip.mp4 --seed 7 --departure 4 --acceleration 0.6\n"
      "  stopngo synth waiting.mkv --length 30 --departure 30 --vibration 1\n"
      "  stopngo synth - --seed 3 | stopngo run -");
  return [arguments] { Synth(*arguments); };
}

}  // namespace stopngo
