// training.h: what stopngo train does between reading its clips and writing its files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "clips/clip.h"
#include "features/feature_folder.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "host/settings/weights_file.h"
#include "train/alarm_loss.h"
#include "train/feature_track.h"
#include "train/loss.h"
#include "train/trainer.h"

namespace stopngo {

/// Choices of the training that are options and go into the sidecar under the same names.
struct TrainingOptions {
  int looks = 6;
  int seeds = 3;
  std::uint64_t seed = 1;
  double false_alarms_per_hour = 0.5;
  LossOptions loss;
  TrainerOptions trainer;
};

/// What a training works on.
struct TrainingTask {
  const Module& module;
  const Settings& settings;
  const TrainingOptions& options;
  const std::vector<Clip>& clips;
  const std::vector<Clip>& validation;
  const std::vector<Clip>& test;  ///< none: no figures of it
  const FeatureFolder* features;  ///< null: made from pictures
  int jobs;
};

/// What came out of a training, and how good it is.
struct Outcome {
  std::vector<Training> trainings;
  Network network;
  nlohmann::ordered_json figures;
  std::string sentence;
};

/// Trains the detector's network. Throws Failure where the clips show nothing that could be learnt from.
Outcome TrainDetector(const TrainingTask& task);

/// The same for the network of the history gate.
Outcome TrainHistory(const TrainingTask& task);

// --- What both are made of --------------------------------------------------------------------------------

/// Throws Failure where features that are asked for at the training's end are not kept: it is not to end at them.
void RefuseUnkept(const TrainingTask& task, const std::vector<Clip>& clips, const FeatureChoice& choice);

/// Clips as they are looked at, in so many ways.
std::vector<FeatureTrack> Collect(const TrainingTask& task, const std::vector<Clip>& clips, const char* title,
                                  int looks);

struct TrainingTracks {
  std::vector<FeatureTrack> trained, validation;
};

/// Throws Failure where either shows no departure that could be learnt from.
TrainingTracks TracksOf(const TrainingTask& task);

/// From each starting point.
std::vector<Training> TrainSeeds(const TrainingOptions& options, const Loss& loss, const Loss& validation,
                                 std::size_t hiddens);

/// The best on validation.
const Training& BestOf(const std::vector<Training>& trainings);

/// Throws Failure where a network that came out holds numbers that are none.
void RefuseUseless(const Network& network);

}  // namespace stopngo
