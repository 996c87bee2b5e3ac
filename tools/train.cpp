// train.cpp: stopngo train: makes a weights file from labelled clips.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "alarm_loss.h"
#include "calibration.h"
#include "detector.h"
#include "evaluation.h"
#include "failure.h"
#include "figures.h"
#include "manifest.h"
#include "output_file.h"
#include "parallel.h"
#include "progress.h"
#include "results.h"
#include "settings.h"
#include "sha256.h"
#include "sidecar.h"
#include "subcommands.h"
#include "trainer.h"
#include "training_report.h"
#include "training_set.h"
#include "weights_file.h"

namespace stopngo {
namespace {

constexpr const char* kTrainFooter =
    R"(Without --validation every fifth clip is kept apart: training ends when it gets no better on those,
and on those the threshold is placed. The same manifests and options give the same bytes.

Examples:
  stopngo train scenes.tsv -o weights.bin
  stopngo train scenes.tsv drives.tsv --validation other.tsv --rate 6 -o weights.bin --report curves.png)";

constexpr std::size_t kValidationPart = 5;

/// A choice of the training that is an option and goes into the sidecar under the same name.
struct TrainingOptions {
  int looks = 6;
  int seeds = 3;
  std::uint64_t seed = 1;
  double false_alarms_per_hour = 0.5;
  LossOptions loss;
  TrainerOptions trainer;
};

class TrainCommand {
 public:
  explicit TrainCommand(CLI::App& app);
  void operator()();

 private:
  void ReadClips();
  void RefuseUnwritable() const;
  [[nodiscard]] nlohmann::ordered_json TestFigures() const;
  [[nodiscard]] nlohmann::ordered_json Describe(const std::vector<Training>& trainings) const;
  [[nodiscard]] std::vector<FeatureTrack> Collect(const Module& module, const std::vector<Clip>& clips,
                                                  const char* title, int looks) const;
  [[nodiscard]] std::vector<Training> TrainSeeds(const std::vector<FeatureTrack>& tracks,
                                                 const std::vector<FeatureTrack>& unseen) const;

  Settings settings_;
  SettingsOptions options_;
  TrainingOptions training_;
  std::vector<std::string> manifests_, validation_manifests_, test_manifests_;
  std::string output_, report_;
  int jobs_ = HardwareJobs();
  std::vector<Clip> clips_, validation_, test_;
};

TrainCommand::TrainCommand(CLI::App& app) : options_(app, settings_) {
  app.footer(kTrainFooter);
  app.add_option("manifest", manifests_, "clips to train on")->required()->type_name("MANIFEST");
  app.add_option("-o,--output", output_, "weights file; its sidecar gets .json behind the name")
      ->required()
      ->type_name("FILE");
  app.add_option("--validation", validation_manifests_, "clips that tell when to stop")
      ->type_name("MANIFEST");
  app.add_option("--test", test_manifests_, "clips that the figures in the sidecar are taken on")
      ->type_name("MANIFEST");
  app.add_option("--report", report_, "learning curves as a PNG picture")->type_name("FILE");
  app.add_option("--jobs", jobs_, "threads")
      ->capture_default_str()
      ->check(CLI::Range(1, 256))
      ->type_name("N");
  const auto number = [&app](const char* name, auto& value, const char* help, auto low, auto high) {
    app.add_option(name, value, help)
        ->capture_default_str()
        ->check(CLI::Range(low, high))
        ->type_name("N")
        ->group("Training");
  };
  number("--looks", training_.looks, "tracks from each clip: the first as it stands, others varied", 1, 64);
  number("--seeds", training_.seeds, "starting points, of which the best on validation wins", 1, 64);
  number("--seed", training_.seed, "the first of them, and of how clips are varied", std::uint64_t{0},
         std::uint64_t{1} << 62);
  number("--iterations", training_.trainer.iterations, "at most, from each starting point", 1, 100000);
  number("--patience", training_.trainer.patience, "iterations without progress on validation", 1, 100000);
  number("--decay", training_.loss.decay, "of the weights' squares", 0.0, 1.0);
  number("--margin", training_.loss.margin, "by which scores should clear the threshold, in log odds", 0.0,
         10.0);
  number("--false-alarm-weight", training_.loss.false_alarm_weight,
         "of false alarms, against that of missed departures", 0.0, 1e6);
  number("--false-alarms-per-hour", training_.false_alarms_per_hour,
         "limit on validation that the output's bias is moved for", 0.0, 1e6);
}

std::vector<Clip> ReadAll(const std::vector<std::string>& manifests) {
  std::vector<Clip> clips;
  for (const std::string& path : manifests) {
    for (Clip& clip : ReadManifest(path)) clips.push_back(std::move(clip));
  }
  return clips;
}

void TrainCommand::ReadClips() {
  clips_ = ReadAll(manifests_);
  validation_ = ReadAll(validation_manifests_);
  test_ = ReadAll(test_manifests_);
  if (validation_manifests_.empty()) {
    std::vector<Clip> kept;
    for (std::size_t i = 0; i < clips_.size(); i++) {
      (i % kValidationPart == kValidationPart - 1 ? validation_ : kept).push_back(std::move(clips_[i]));
    }
    clips_ = std::move(kept);
  }
  if (clips_.empty() || validation_.empty()) {
    throw Failure("training needs clips, and others for validation: five at least");
  }
}

// A training of hours is not to end at a folder that is not there.
void TrainCommand::RefuseUnwritable() const {
  for (const std::string& path : {output_, report_}) {
    if (!path.empty()) const OutputFile writable(path);
  }
}

std::vector<FeatureTrack> TrainCommand::Collect(const Module& module, const std::vector<Clip>& clips,
                                                const char* title, int looks) const {
  Progress progress(title, static_cast<std::int64_t>(clips.size()));
  return CollectTracks(module, settings_, clips, {looks, training_.seed}, jobs_,
                       [&progress] { progress.Step(); });
}

std::vector<Training> TrainCommand::TrainSeeds(const std::vector<FeatureTrack>& tracks,
                                               const std::vector<FeatureTrack>& unseen) const {
  const AlarmLoss loss(training_.loss, tracks, jobs_);
  const AlarmLoss validation(training_.loss, unseen, jobs_);
  std::vector<Training> trainings;
  for (int i = 0; i < training_.seeds; i++) {
    TrainerOptions trainer = training_.trainer;
    trainer.seed = training_.seed + static_cast<std::uint64_t>(i);
    Progress progress("training " + std::to_string(i + 1) + "/" + std::to_string(training_.seeds),
                      trainer.iterations);
    trainings.push_back(Train(loss, validation, training_.loss.hiddens, trainer,
                              [&progress](const LearningPoint&) { progress.Step(); }));
  }
  return trainings;
}

const Training& BestOf(const std::vector<Training>& trainings) {
  return *std::min_element(trainings.begin(), trainings.end(),
                           [](const Training& a, const Training& b) { return a.validation < b.validation; });
}

nlohmann::ordered_json TrainCommand::Describe(const std::vector<Training>& trainings) const {
  const auto files = [](const std::vector<std::string>& paths) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const std::string& path : paths) {
      list.push_back(
          {{"file", std::filesystem::path(path).filename().string()}, {"sha256", Sha256OfFile(path)}});
    }
    return list;
  };
  nlohmann::ordered_json seeds = nlohmann::ordered_json::array();
  for (std::size_t i = 0; i < trainings.size(); i++) {
    seeds.push_back({{"seed", training_.seed + i},
                     {"iterations", trainings[i].curve.size()},
                     {"validation_loss", trainings[i].validation}});
  }
  return {{"manifests", files(manifests_)},
          {"validation", files(validation_manifests_)},
          {"clips", clips_.size()},
          {"validation_clips", validation_.size()},
          {"looks", training_.looks},
          {"iterations", training_.trainer.iterations},
          {"patience", training_.trainer.patience},
          {"decay", training_.loss.decay},
          {"margin", training_.loss.margin},
          {"false_alarm_weight", training_.loss.false_alarm_weight},
          {"false_alarms_per_hour", training_.false_alarms_per_hour},
          {"seeds", seeds}};
}

// By kind of clip, of the weights as they were written.
nlohmann::ordered_json TrainCommand::TestFigures() const {
  Settings settings = settings_;
  settings.weights = output_;
  const std::vector<ClipRun> runs = RunClips(test_, {"test clips", {&settings, 1}, false, jobs_});
  nlohmann::ordered_json figures;
  for (const NamedTally& kind : TallyKinds(test_, runs, 0)) figures[kind.name] = FigureJson(kind.tally);
  figures["all"] = FigureJson(TallyAll(runs, 0));
  return figures;
}

void TrainCommand::operator()() {
  options_.CompleteWithoutWeights();
  training_.loss.run =
      static_cast<std::size_t>(std::max(0, settings_.time_leaving.Frames(settings_.rate))) + 1;
  training_.loss.hiddens = static_cast<std::size_t>(settings_.hiddens);
  training_.loss.threshold = settings_.threshold;
  ReadClips();
  RefuseUnwritable();
  const Module module;
  const std::vector<FeatureTrack> tracks = Collect(module, clips_, "training clips", training_.looks);
  const std::vector<FeatureTrack> unseen = Collect(module, validation_, "validation clips", 1);
  const std::vector<Training> trainings = TrainSeeds(tracks, unseen);

  const std::size_t inputs = 2 * tracks.front().features;
  Network network{inputs, training_.loss.hiddens,
                  FileNumbers(BestOf(trainings).parameters, tracks.front().features, training_.loss.hiddens)};
  const Calibration calibration =
      Calibrate(network, validation_, settings_, training_.false_alarms_per_hour, jobs_);
  network.numbers.back() += static_cast<float>(calibration.shift);
  WriteWeights(output_, network);
  Sidecar sidecar{inputs, network.hiddens, Sha256OfFile(output_), SidecarSettings(settings_)};
  sidecar.training = Describe(trainings);
  sidecar.figures = {{"validation", FigureJson(calibration.tally)}};
  if (!test_.empty()) sidecar.figures["test"] = TestFigures();
  WriteSidecar(output_, sidecar);
  if (!report_.empty()) {
    OutputFile report(report_);
    WriteLearningCurves(report.Stream(), trainings);
    report.Commit();
  }
  for (std::size_t i = 0; i < trainings.size(); i++) {
    WriteResult("seed " + std::to_string(training_.seed + i) + ": " +
                std::to_string(trainings[i].curve.size()) + " iterations, validation loss " +
                std::to_string(trainings[i].validation));
  }
  WriteResult(output_ + ": on validation, " + FigureSentence(calibration.tally));
}

}  // namespace

std::function<void()> AddTrain(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("train", "Make a weights file from labelled clips");
  const auto train = std::make_shared<TrainCommand>(command);
  return [train] { (*train)(); };
}

}  // namespace stopngo
