// train.cpp: stopngo train: makes a weights file from labelled clips.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/file_register.h"
#include "base/output_file.h"
#include "base/parallel.h"
#include "base/results.h"
#include "classify.h"
#include "clips/manifest.h"
#include "clips/twofold.h"
#include "command/options/evaluation_options.h"
#include "command/options/number_checks.h"
#include "command/options/settings_options.h"
#include "command/options/setup_check.h"
#include "command/options/source_options.h"
#include "command/subcommand.h"
#include "host/common/failure.h"
#include "host/common/file.h"
#include "host/common/sha256.h"
#include "host/module/module.h"
#include "host/settings/gate_kinds.h"
#include "host/settings/settings.h"
#include "host/settings/sidecar.h"
#include "host/settings/weights_file.h"
#include "train/history_loss.h"
#include "train/report.h"
#include "train/training.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

constexpr const char* kTrainFooter =
    R"(Without --validation every fifth clip is kept apart: training ends when it gets no better on those,
and on those the threshold is placed. The same manifests and options give the same bytes.

Examples:
  stopngo train scenes.tsv -o weights.bin
  stopngo train scenes.tsv drives.tsv --validation other.tsv --rate 6 -o weights.bin --report curves.png
  stopngo train scenes.tsv --gate history --looks 1 -o history.bin)";

constexpr std::size_t kValidationPart = 5;

/// Clips, and the manifests that name them.
struct ClipSet {
  std::vector<std::string> manifests;
  std::vector<Clip> clips;
  nlohmann::ordered_json files = nlohmann::ordered_json::array();  ///< the manifests as they were read

  void Read(const Settings& settings, bool allow_damaged, FileRegister& used) {
    for (const std::string& path : manifests) {
      RefuseReadOnce(path);
      files.push_back({{"file", std::filesystem::path(path).filename().string()},
                       {"sha256", Sha256(ReadFile(path, kManifestFile))}});
    }
    clips = ClipsOf(manifests, settings, allow_damaged, used);
    for (std::size_t i = 0; i < manifests.size(); i++) {
      if (files[i]["sha256"] == Sha256(ReadFile(manifests[i], kManifestFile))) continue;
      throw Failure(manifests[i] + ": changed while it was read");
    }
  }

 private:
  // A pipe has no name to train from again, and is empty when its SHA-256 is taken.
  static void RefuseReadOnce(const std::string& path) {
    std::error_code ignored;
    if (std::filesystem::is_fifo(path, ignored)) {
      throw Failure(path + ": a manifest whose SHA-256 goes into the sidecar has to be a file, not a pipe");
    }
  }
};

/// Figures on clips that a network was trained on say nothing about others.
void RefuseShared(const std::vector<Clip>& trained, const std::vector<Clip>& others, const char* option) {
  std::vector<const Clip*> all;
  all.reserve(trained.size() + others.size());
  for (const std::vector<Clip>* const clips : {&trained, &others}) {
    for (const Clip& clip : *clips) all.push_back(&clip);
  }
  if (const Clip* const shared = ComesTwice(all)) {
    throw Failure(shared->name + ": is trained on, and in " + option + " as well", ExitCode::kUsage);
  }
}

class TrainCommand : public Subcommand {
 public:
  explicit TrainCommand(CLI::App& app);
  void Complete() override;
  void Run() override;

 private:
  void RefuseSettings() const;
  void ReadClips(FileRegister& files);
  [[nodiscard]] const FeatureFolder* Stored() const { return features_ ? &*features_ : nullptr; }
  [[nodiscard]] nlohmann::ordered_json Describe(const std::vector<Training>& trainings) const;
  [[nodiscard]] bool OfHistory() const { return !gate_.empty(); }

  Settings settings_;
  SettingsOptions options_;
  TrainingOptions training_;
  ClipSet clips_, validation_, test_;
  std::string output_, report_, features_from_;
  std::optional<FeatureFolder> features_;
  std::string gate_;  ///< whose network is trained; empty: the detector's
  CLI::Option* false_alarm_weight_ = nullptr;
  bool allow_damaged_ = false;
  int jobs_ = HardwareJobs();
};

TrainCommand::TrainCommand(CLI::App& app) : options_(app, settings_) {
  app.footer(kTrainFooter);
  app.add_option("MANIFEST", clips_.manifests, "clips to train on")->required()->type_name("FILE");
  app.add_option("-o,--output", output_, "weights file; its sidecar gets .json behind the name")
      ->required()
      ->type_name("FILE");
  app.add_option("--validation", validation_.manifests, "clips that tell when to stop")->type_name("FILE");
  app.add_option("--test", test_.manifests, "clips that the figures in the sidecar are taken on")
      ->type_name("FILE");
  app.add_option("--report", report_, "learning curves as a PNG picture")->type_name("FILE");
  AddJobs(app, jobs_);
  AddAllowDamaged(app, allow_damaged_);
  AddFeaturesFrom(app, features_from_);
  CLI::Option* const gate =
      app.add_option("--gate", gate_, "train the network of this gate, and not the detector's: history")
          ->check(CLI::IsMember({NameOf(GateKind::kHistory)}))
          ->type_name("NAME");
  const auto number = [&app](const char* name, auto& value, const char* help, double least, double most) {
    return app.add_option(name, value, help)
        ->capture_default_str()
        ->check(Within(least, most))
        ->type_name("N")
        ->group("Training");
  };
  number("--looks", training_.looks, "tracks from each clip: the first as it stands, others varied", 1, 64);
  number("--seeds", training_.seeds, "starting points, of which the best on validation wins", 1, 64);
  number("--seed", training_.seed, "the first of them, and of how clips are varied", 0, kLargestSeed);
  number("--iterations", training_.trainer.iterations, "at most, from each starting point", 1, 100000);
  number("--patience", training_.trainer.patience, "iterations without progress on validation", 1, 100000);
  number("--decay", training_.loss.decay, "of the weights' squares", 0.0, 1.0);
  number("--margin", training_.loss.margin, "by which scores should clear the threshold, in log odds", 0.0,
         10.0)
      ->excludes(gate);
  false_alarm_weight_ = number("--false-alarm-weight", training_.loss.false_alarm_weight,
                               "of false alarms, against that of missed departures", 0.0, 1e6);
  number("--false-alarms-per-hour", training_.false_alarms_per_hour,
         "limit on validation that the output's bias is moved for", 0.0, 1e6)
      ->excludes(gate);
}

// What the module and the other commands may take, but no network can be made for.
void TrainCommand::RefuseSettings() const {
  const auto refuse = [](const std::string& sentence) { throw Failure(sentence, ExitCode::kUsage); };
  if (output_ == "-") refuse("--output: the sidecar goes beside a file, and results to standard output");
  if (!(settings_.threshold > 0 && settings_.threshold < 1)) {
    refuse("--threshold: scores lie between 0 and 1, and so has what they are to exceed");
  }
  if (settings_.rate <= 0 && settings_.time_leaving.seconds) {
    refuse("--time-leaving: how many frames the seconds are takes a --rate above 0");
  }
  const auto features = static_cast<std::uint32_t>(settings_.features);
  const auto hiddens = static_cast<std::uint32_t>(settings_.hiddens);
  if (features == 0 || hiddens == 0 ||
      NetworkLength(2 * std::uint64_t{features}, hiddens) > kWeightCapacity) {
    refuse("--features, --hiddens: the module has room for 1 to " + std::to_string(kWeightCapacity) +
           " weights");
  }
  if (features > kChunkCapacity) {
    refuse("--features: the module's histogram has " + std::to_string(kChunkCapacity) + " entries");
  }
}

void TrainCommand::ReadClips(FileRegister& files) {
  for (ClipSet* const set : {&clips_, &validation_, &test_}) set->Read(settings_, allow_damaged_, files);
  RefuseShared(clips_.clips, validation_.clips, "--validation");
  RefuseShared(clips_.clips, test_.clips, "--test");
  if (validation_.manifests.empty()) {
    std::vector<Clip> kept;
    for (std::size_t i = 0; i < clips_.clips.size(); i++) {
      (i % kValidationPart == kValidationPart - 1 ? validation_.clips : kept)
          .push_back(std::move(clips_.clips[i]));
    }
    clips_.clips = std::move(kept);
  }
  if (clips_.clips.empty() || validation_.clips.empty()) {
    throw Failure("training needs clips, and others for validation: five at least");
  }
}

nlohmann::ordered_json TrainCommand::Describe(const std::vector<Training>& trainings) const {
  nlohmann::ordered_json seeds = nlohmann::ordered_json::array();
  for (std::size_t i = 0; i < trainings.size(); i++) {
    seeds.push_back({{"seed", training_.seed + i},
                     {"iterations", trainings[i].curve.size()},
                     {"validation_loss", trainings[i].validation}});
  }
  nlohmann::ordered_json training{{"manifests", clips_.files},
                                  {"validation", validation_.files},
                                  {"test", test_.files},
                                  {"clips", clips_.clips.size()},
                                  {"validation_clips", validation_.clips.size()},
                                  {"looks", training_.looks},
                                  {"iterations", training_.trainer.iterations},
                                  {"patience", training_.trainer.patience},
                                  {"decay", training_.loss.decay}};
  if (!OfHistory()) training["margin"] = training_.loss.margin;
  training["false_alarm_weight"] = training_.loss.false_alarm_weight;
  if (!OfHistory()) training["false_alarms_per_hour"] = training_.false_alarms_per_hour;
  training["seeds"] = seeds;
  return training;
}

void TrainCommand::Complete() {
  options_.CompleteWithoutWeights();
  RefuseSettings();
  training_.loss.run =
      static_cast<std::size_t>(std::max(0, settings_.time_leaving.Frames(settings_.rate))) + 1;
  training_.loss.hiddens = static_cast<std::size_t>(settings_.hiddens);
  training_.loss.threshold = settings_.threshold;
  if (OfHistory() && false_alarm_weight_->count() == 0) {
    training_.loss.false_alarm_weight = HistoryLossOptions().false_alarm_weight;
  }
  FileRegister files;
  files.Writes(output_, "--output");
  files.Writes(SidecarPath(output_), "the sidecar of --output");
  files.Writes(report_, "--report");
  Setup setup = options_.InForce();
  setup.settings.no_weights = true;  // they are what is made here
  HeedFindings(Module(), setup);
  options_.EnterFiles(files);
  ReadClips(files);
  ReadFeatures(features_from_, settings_, files, features_);
}

void TrainCommand::Run() {
  const Module module;
  // A training of hours is not to end at a folder that is not there.
  OutputFile weights_file(output_);
  OutputFile sidecar_file(SidecarPath(output_));
  std::optional<OutputFile> report_file;
  if (!report_.empty()) report_file.emplace(report_);
  const TrainingTask task{module,      settings_, training_, clips_.clips, validation_.clips,
                          test_.clips, Stored(),  jobs_};
  const Outcome outcome = OfHistory() ? TrainHistory(task) : TrainDetector(task);
  const std::vector<Training>& trainings = outcome.trainings;
  const std::string bytes = WeightsBytes(outcome.network);
  weights_file.Stream() << bytes;
  Sidecar sidecar{outcome.network.inputs, outcome.network.hiddens, Sha256(bytes), SidecarSettings(settings_)};
  sidecar.gate = gate_;
  sidecar.training = Describe(trainings);
  sidecar.figures = outcome.figures;
  sidecar_file.Stream() << SidecarText(sidecar);
  if (report_file) WriteLearningCurves(report_file->Stream(), trainings);
  // The sidecar first: should the power fail between the two, it is refused as that of other weights.
  CommitTogether({&sidecar_file, &weights_file, report_file ? &*report_file : nullptr});
  for (std::size_t i = 0; i < trainings.size(); i++) {
    WriteResult("seed " + std::to_string(training_.seed + i) + ": " +
                std::to_string(trainings[i].curve.size()) + " iterations, validation loss " +
                std::to_string(trainings[i].validation));
  }
  WriteResult(output_ + ": on validation, " + outcome.sentence);
}

}  // namespace

std::unique_ptr<Subcommand> DeclareTrain(CLI::App& app) { return std::make_unique<TrainCommand>(app); }

}  // namespace stopngo
