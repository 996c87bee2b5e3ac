// history_training.cpp: training the network of the history gate.
#include <algorithm>
#include <iterator>
#include <map>

#include "host/common/failure.h"
#include "host/gates/history.h"
#include "train/history_examples.h"
#include "train/history_loss.h"
#include "train/history_tally.h"
#include "train/training.h"

namespace stopngo {
namespace {

/// Examples of both kinds, which a network is to tell apart.
HistoryExamples HistoryExamplesOf(const std::vector<FeatureTrack>& tracks, const std::string& which) {
  HistoryExamples examples = ExamplesOf(tracks);
  const std::size_t right = examples.RightCount();
  if (right > 0 && right < examples.Count()) return examples;
  throw Failure("the " + which + " clips show no moment in which an alarm would be " +
                (right == 0 ? "right" : "false") + ", and that has the history which the gate looks at");
}

// By kind of clip.
nlohmann::ordered_json HistoryTestFigures(const TrainingTask& task, const Network& network) {
  const std::vector<FeatureTrack> tracks = Collect(task, task.test, "test clips", 1);
  std::map<std::string, std::vector<FeatureTrack>> kinds;
  for (std::size_t i = 0; i < tracks.size(); ++i) kinds[task.test[i].kind].push_back(tracks[i]);
  nlohmann::ordered_json figures;
  const auto tally = [&](const std::vector<FeatureTrack>& some) {
    return HistoryJson(TallyHistory(task.module, network, task.settings.history_threshold, ExamplesOf(some)));
  };
  for (const auto& [kind, some] : kinds) figures[kind] = tally(some);
  figures["all"] = tally(tracks);
  return figures;
}

}  // namespace

Outcome TrainHistory(const TrainingTask& task) {
  RefuseUnkept(task, task.test, {.evaluation = false, .looks = 1, .seed = task.options.seed});
  const TrainingTracks tracks = TracksOf(task);
  const HistoryExamples examples = HistoryExamplesOf(tracks.trained, "training");
  const HistoryExamples others = HistoryExamplesOf(tracks.validation, "validation");
  const HistoryLossOptions options{task.options.loss.false_alarm_weight, task.options.loss.decay};
  const HistoryLoss loss(options, examples, task.jobs);
  const HistoryLoss validation(options, others, task.jobs);
  Outcome outcome{TrainSeeds(task.options, loss, validation, kHistoryHiddens),
                  {kHistoryInputs, kHistoryHiddens, {}},
                  {},
                  {}};
  const std::vector<double>& parameters = BestOf(outcome.trainings).parameters;
  std::ranges::transform(parameters, std::back_inserter(outcome.network.numbers),
                         [](double number) { return static_cast<float>(number); });
  RefuseUseless(outcome.network);
  const HistoryTally tally =
      TallyHistory(task.module, outcome.network, task.settings.history_threshold, others);
  outcome.figures = {{"validation", HistoryJson(tally)}};
  if (!task.test.empty()) outcome.figures["test"] = HistoryTestFigures(task, outcome.network);
  outcome.sentence = HistorySentence(tally);
  return outcome;
}

}  // namespace stopngo
