// synth.cpp: stopngo synth: renders a scene in which the vehicle ahead departs, with its labels.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/file_place.h"
#include "base/file_register.h"
#include "base/output_file.h"
#include "base/progress.h"
#include "base/results.h"
#include "clips/region.h"
#include "command/options/number_checks.h"
#include "command/subcommand.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "scene/scene.h"
#include "scene/script/script.h"
#include "video/open_sink.h"

namespace stopngo {
namespace {

/// What is given on the command line overrides what a kind draws.
struct SynthArguments {
  std::string size = "800x480";
  std::string seed = "1";
  std::string kind;
  std::optional<double> fps, length_s, departure_s, distance_m, acceleration, vibration, noise;
  std::string output;
  std::string labels;
  bool list_kinds = false;
  bool json = false;
};

constexpr double kDeparture_s = 5;  // unless told otherwise
constexpr double kAcceleration = 1.2;

void ParseSize(const std::string& text, SceneOptions& scene) {
  const auto refuse = [&](const char* reason) {
    throw Failure("--size: " + text + reason, ExitCode::kUsage);
  };
  const std::optional<FrameSize> size = SizeOf(text);
  if (!size) refuse(" is not WIDTHxHEIGHT, such as 800x480");
  if (size->width < 64 || size->width > 3840 || size->height < 48 || size->height > 2160) {
    refuse(" is out of range: 64x48 to 3840x2160");
  }
  scene.width = size->width;
  scene.height = size->height;
}

// Not left to the command line's parser, which wraps -1 around to the largest seed.
void ParseSeed(const std::string& text, SceneOptions& scene) {
  const auto seed = NumberOf<std::uint64_t>(text);
  if (!seed) throw Failure("--seed: " + text + " is not a whole number from 0 to 2^64 - 1", ExitCode::kUsage);
  scene.seed = *seed;
}

/// Of a name that the parser has held against the table.
SceneKind KindOf(const std::string& name) {
  return std::ranges::find(SceneKinds(), name, &SceneKindName::name)->kind;
}

/// Without a kind: a car that leaves a street by day, as described by the options alone.
SceneOptions MakeOptions(const SynthArguments& arguments) {
  SceneOptions scene;
  ParseSeed(arguments.seed, scene);
  if (!arguments.kind.empty()) scene = DrawScene(KindOf(arguments.kind), scene.seed);
  ParseSize(arguments.size, scene);
  scene.fps = arguments.fps.value_or(scene.fps);
  scene.length_s = arguments.length_s.value_or(scene.length_s);
  scene.lead.distance_m = arguments.distance_m.value_or(scene.lead.distance_m);
  scene.camera.vibration = arguments.vibration.value_or(scene.camera.vibration);
  scene.sensor.noise = arguments.noise.value_or(scene.sensor.noise);
  if (arguments.kind.empty() || arguments.departure_s || arguments.acceleration) {
    LeaveAt(scene.lead, arguments.departure_s.value_or(kDeparture_s),
            arguments.acceleration.value_or(kAcceleration));
  }
  // A vehicle that never leaves keeps its brakes on.
  if (arguments.departure_s.value_or(0) >= scene.length_s) scene.lead.brake_switches_s.clear();
  return scene;
}

nlohmann::ordered_json Describe(const SynthArguments& arguments, const SceneOptions& options,
                                const Scene& scene) {
  const Region region = SuggestedRegion(options);
  const std::optional<RearSides> rear = RearOf(options);
  return {{"kind", arguments.kind.empty() ? "plain" : arguments.kind},
          {"seed", NumberOf<std::uint64_t>(arguments.seed).value()},
          {"width", options.width},
          {"height", options.height},
          {"fps", options.fps},
          {"frames", scene.Frames()},
          {"length_s", options.length_s},
          {"distance_m", options.lead.distance_m},
          {"vibration", options.camera.vibration},
          {"noise", options.sensor.noise},
          {"lead_width", rear ? nlohmann::ordered_json(rear->right - rear->left) : nlohmann::ordered_json()},
          {"roi", {region.x, region.y, region.width, region.height}}};
}

void WriteLabels(std::ostream& out, const std::vector<LabelSpan>& labels,
                 const nlohmann::ordered_json& scene) {
  out << "# " << scene.dump() << "\nstart_s\tend_s\tlabel\n";
  for (const LabelSpan& label : labels) {
    out << PlainText(label.start_s) << '\t' << PlainText(label.end_s) << '\t' << NameOf(label.activity)
        << '\n';
  }
}

std::string Summary(const SynthArguments& arguments, const nlohmann::ordered_json& scene,
                    const std::vector<LabelSpan>& labels) {
  if (arguments.json) {
    nlohmann::ordered_json line{{"output", arguments.output}};
    if (!arguments.labels.empty()) line["labels_file"] = arguments.labels;
    line.update(scene);
    for (const LabelSpan& label : labels) {
      line["labels"].push_back(
          {{"start_s", label.start_s}, {"end_s", label.end_s}, {"label", NameOf(label.activity)}});
    }
    return JsonLine(line);
  }
  std::string text = arguments.output + ": " + scene["frames"].dump() + " frames of " + arguments.size +
                     " at " + PlainText(scene["fps"]) + " a second, region " + scene["roi"].dump();
  for (const LabelSpan& label : labels) {
    text += ", " + std::string(NameOf(label.activity)) + " " + PlainText(label.start_s) + "–" +
            PlainText(label.end_s) + " s";
  }
  return text;
}

void Render(Scene& scene, const SceneOptions& options, VideoSink& sink) {
  Progress progress("Rendering", scene.Frames());
  std::vector<std::uint8_t> luma(static_cast<std::size_t>(options.width) *
                                 static_cast<std::size_t>(options.height));
  for (std::int64_t frame = 0; frame < scene.Frames(); frame++) {
    scene.Render(frame, luma);
    sink.Write(luma);
    progress.Step();
  }
}

void ListKinds() {
  for (const SceneKindName& kind : SceneKinds()) WriteResult(Print("%-14s%s", kind.name, kind.help));
}

class SynthCommand : public Subcommand {
 public:
  explicit SynthCommand(CLI::App& app);
  void Complete() override;
  void Run() override;

 private:
  void RenderAll();

  SynthArguments arguments_;
  SceneOptions options_;
};

SynthCommand::SynthCommand(CLI::App& app) {
  std::vector<std::string> kinds;
  for (const SceneKindName& kind : SceneKinds()) kinds.emplace_back(kind.name);
  app.add_option("OUTPUT", arguments_.output,
                 "Y4M file, - for Y4M on standard output, or any video file (.mp4, .mkv)")
      ->type_name("FILE");
  app.add_option("--kind", arguments_.kind,
                 "draw everything that is not given here from the seed, for a scene of this kind")
      ->type_name("NAME")
      ->check(CLI::IsMember(kinds));
  app.add_flag("--list-kinds", arguments_.list_kinds, "tell the kinds of scenes");
  app.add_option("--size", arguments_.size, "size of the picture")->type_name("WxH")->capture_default_str();
  const auto number = [&app](const char* name, std::optional<double>& value, const char* help,
                             const CLI::Validator& takes) {
    app.add_option(name, value, help)->type_name("NUMBER")->check(takes);
  };
  // What a street, a camera and a vehicle can be like.
  number("--rate", arguments_.fps, "frames a second; 25 unless drawn", Within(1, 240));
  number("--length", arguments_.length_s, "length in seconds; 12 unless drawn", Within(0.1, 3600));
  number("--departure", arguments_.departure_s,
         "second at which the vehicle starts; past the length: never; 5 unless drawn", Within(0, 1e6));
  number("--distance", arguments_.distance_m, "metres to the vehicle's rear while it waits; 5 unless drawn",
         Within(2, 1000));
  number("--acceleration", arguments_.acceleration,
         "of the vehicle, m/s², reached after 0.8 s; 1.2 unless drawn", Within(0.1, 10));
  number("--vibration", arguments_.vibration, "largest shake of the picture, pixels; 0.4 unless drawn",
         Within(0, 8));
  number("--noise", arguments_.noise, "standard deviation of the sensor noise, grey levels; 2 unless drawn",
         Within(0, 60));
  app.add_option("--seed", arguments_.seed,
                 "chooses street, vehicle, noise and shake; the same gives the same bytes")
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--labels", arguments_.labels,
                 "labels file; OUTPUT.labels.tsv unless given, and none for - and /dev/fd/N")
      ->type_name("FILE");
  app.add_flag("--json", arguments_.json, "describe the clip as one line of JSON");
  app.footer(
      "A signal (Ctrl-C) leaves no part of a clip, and what was there before as it was.\n\n"
      "Examples:\n"
      "  stopngo synth clip.y4m\n"
      "  stopngo synth clip.mp4 --seed 7 --departure 4 --acceleration 0.6\n"
      "  stopngo synth waiting.mkv --length 30 --departure 30 --vibration 1\n"
      "  stopngo synth night.mp4 --kind mixed --seed 12\n"
      "  stopngo synth - --seed 3 | stopngo run -");
}

void SynthCommand::Complete() {
  if (arguments_.list_kinds) return;
  if (arguments_.output.empty()) throw Failure("output is required", ExitCode::kUsage);
  options_ = MakeOptions(arguments_);
  // Nothing lies beside a file that has only the number by which it was opened.
  if (arguments_.labels.empty() && !OpenDescriptor(arguments_.output, STDOUT_FILENO)) {
    arguments_.labels = arguments_.output + ".labels.tsv";
  }
  FileRegister files;
  files.Writes(arguments_.output, "the video");
  files.Writes(arguments_.labels, "the labels");
}

void SynthCommand::Run() { arguments_.list_kinds ? ListKinds() : RenderAll(); }

void SynthCommand::RenderAll() {
  // Outputs are opened before the work, so that one that cannot be written is told at once.
  OutputFile video(arguments_.output);
  std::optional<OutputFile> labels_file;
  if (!arguments_.labels.empty()) labels_file.emplace(arguments_.labels);
  const auto sink =
      OpenSink({arguments_.output, options_.width, options_.height, options_.fps, PixelFormat::kGray}, video);

  Scene scene(options_);
  const std::vector<LabelSpan> labels = scene.Labels();
  const nlohmann::ordered_json description = Describe(arguments_, options_, scene);
  Render(scene, options_, *sink);
  if (labels_file) WriteLabels(labels_file->Stream(), labels, description);
  sink->Finish();
  // Labels ahead of the video: those of a video that is not there are of no harm.
  CommitTogether({labels_file ? &*labels_file : nullptr, &video});

  WriteResult(Summary(arguments_, description, labels));
}

}  // namespace

std::unique_ptr<Subcommand> DeclareSynth(CLI::App& app) { return std::make_unique<SynthCommand>(app); }

}  // namespace stopngo
