// training.cpp: training the detector's network, and what trainings have in common.
#include "train/training.h"

#include <algorithm>
#include <cstdint>

#include "base/memory_file.h"
#include "base/output_file.h"
#include "base/progress.h"
#include "evaluate/evaluation.h"
#include "evaluate/figures.h"
#include "host/common/failure.h"
#include "train/alarm_loss.h"
#include "train/calibration.h"
#include "train/training_set.h"

namespace stopngo {
namespace {

void RefuseWithoutDepartures(const std::vector<FeatureTrack>& tracks, std::size_t run,
                             const std::string& which) {
  for (const FeatureTrack& track : tracks) {
    for (const DepartureWindow& departure : track.departures) {
      if (departure.end >= run) return;
    }
  }
  throw Failure("the " + which + " clips show no departure that a run of " + std::to_string(run) +
                " scores could tell of");
}

// By kind of clip.
nlohmann::ordered_json TestFigures(const TrainingTask& task, const Network& network) {
  const MemoryFile file;  // the output's path may be longer than the module takes
  WriteFile(file.Path(), WeightsBytes(network));
  Settings settings = task.settings;
  settings.weights = file.Path();
  const std::vector<ClipRun> runs = RunClips(
      task.test,
      {.title = "test clips", .settings = {&settings, 1}, .jobs = task.jobs, .features = task.features});
  nlohmann::ordered_json figures;
  for (const NamedTally& kind : TallyKinds(task.test, runs, 0)) figures[kind.name] = FigureJson(kind.tally);
  figures["all"] = FigureJson(TallyAll(runs, 0));
  return figures;
}

}  // namespace

void RefuseUnkept(const TrainingTask& task, const std::vector<Clip>& clips, const FeatureChoice& choice) {
  if (task.features == nullptr) return;
  for (const Clip& clip : clips) static_cast<void>(task.features->Find(clip, task.settings, choice));
}

std::vector<FeatureTrack> Collect(const TrainingTask& task, const std::vector<Clip>& clips, const char* title,
                                  int looks) {
  Progress progress(title, static_cast<std::int64_t>(clips.size()));
  return CollectTracks(task.module, task.settings, clips, {looks, task.options.seed, task.features},
                       task.jobs, [&progress] { progress.Step(); });
}

TrainingTracks TracksOf(const TrainingTask& task) {
  TrainingTracks tracks;
  tracks.validation = Collect(task, task.validation, "validation clips", 1);
  RefuseWithoutDepartures(tracks.validation, task.options.loss.run, "validation");
  tracks.trained = Collect(task, task.clips, "training clips", task.options.looks);
  RefuseWithoutDepartures(tracks.trained, task.options.loss.run, "training");
  return tracks;
}

std::vector<Training> TrainSeeds(const TrainingOptions& options, const Loss& loss, const Loss& validation,
                                 std::size_t hiddens) {
  std::vector<Training> trainings;
  for (int i = 0; i < options.seeds; i++) {
    TrainerOptions trainer = options.trainer;
    trainer.seed = options.seed + static_cast<std::uint64_t>(i);
    Progress progress("training " + std::to_string(i + 1) + "/" + std::to_string(options.seeds),
                      trainer.iterations);
    trainings.push_back(
        Train(loss, validation, hiddens, trainer, [&progress](const LearningPoint&) { progress.Step(); }));
  }
  return trainings;
}

const Training& BestOf(const std::vector<Training>& trainings) {
  return *std::min_element(trainings.begin(), trainings.end(),
                           [](const Training& a, const Training& b) { return a.validation < b.validation; });
}

void RefuseUseless(const Network& network) {
  const std::string fault = FaultOf(network);
  if (!fault.empty()) throw Failure("the network that came out: " + fault);
}

Outcome TrainDetector(const TrainingTask& task) {
  const LossOptions& options = task.options.loss;
  for (const auto* const judged : {&task.validation, &task.test}) {
    RefuseUnkept(task, *judged, {.evaluation = true, .looks = 0, .seed = 0});
  }
  const TrainingTracks tracks = TracksOf(task);
  const std::size_t features = tracks.trained.front().features;
  const AlarmLoss loss(options, tracks.trained, task.jobs);
  const AlarmLoss validation(options, tracks.validation, task.jobs);
  Outcome outcome{TrainSeeds(task.options, loss, validation, options.hiddens),
                  {2 * features, options.hiddens, {}},
                  {},
                  {}};
  outcome.network.numbers = FileNumbers(BestOf(outcome.trainings).parameters, features, options.hiddens);
  RefuseUseless(outcome.network);
  const Calibration calibration = Calibrate(outcome.network, task.validation, task.settings,
                                            task.options.false_alarms_per_hour, task.jobs, task.features);
  outcome.network.numbers.back() += static_cast<float>(calibration.shift);
  outcome.figures = {{"validation", FigureJson(calibration.tally)}};
  if (!task.test.empty()) outcome.figures["test"] = TestFigures(task, outcome.network);
  outcome.sentence = FigureSentence(calibration.tally);
  return outcome;
}

}  // namespace stopngo
