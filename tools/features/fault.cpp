// fault.cpp: whether kept features are what is asked for.
#include "features/fault.h"

#include <cstdint>
#include <string>
#include <utility>

namespace stopngo {
namespace {

constexpr std::size_t kFilters = 3;

std::string Told(std::int32_t number) { return std::to_string(number); }

/// Why features of a file will not do; nothing where they do.
std::optional<Failure> FaultOf(const FeatureFile& file, const Clip& clip, const FeatureRecipe& wanted) {
  const FeatureRecipe& made = file.Recipe();
  const auto fault = [&](const std::string& reason, ExitCode code) {
    return Failure(file.Path() + ": " + clip.name + ": " + reason, code);
  };
  if (clip.IsScene() && made.scene_version != kSceneVersion) {
    return fault("features of version " + std::to_string(made.scene_version) +
                     " of the scenes, and this program renders version " + std::to_string(kSceneVersion) +
                     "; remove the file, and make it anew with stopngo features",
                 ExitCode::kFailed);
  }
  if (made.scale != wanted.scale || made.block_size != wanted.block_size) {
    return fault("features with --scale " + Told(made.scale) + " and --block-size " + Told(made.block_size) +
                     " serve no detector with " + Told(wanted.scale) + " and " + Told(wanted.block_size),
                 ExitCode::kUsage);
  }
  if (wanted.evaluation && !made.evaluation) {
    return fault("features for a training alone (--only-looks), and decisions are asked for",
                 ExitCode::kUsage);
  }
  if (wanted.looks > made.looks) {
    return fault(
        "features with --looks " + Told(made.looks) + ", and " + Told(wanted.looks) + " are asked for",
        ExitCode::kUsage);
  }
  if (wanted.looks > 0 && wanted.filter != made.filter) {
    return fault("features whose looks have another --filter", ExitCode::kUsage);
  }
  return std::nullopt;
}

std::optional<Failure> FaultOf(const FeatureFile& file, const Clip& clip, const FeatureChoice& choice,
                               const ClipFeatures& features) {
  const std::string start = file.Path() + ": " + clip.name + ": ";
  if (choice.looks > 1 && features.looks_seed != choice.seed + clip.number) {
    return Failure(
        start + "features whose looks were drawn with another --seed, or for another place in the manifests",
        ExitCode::kUsage);
  }
  if (features.damaged_allowed && !clip.allow_damaged) {
    return Failure(
        start + "features of a recording that was taken as far as it goes, which asks for --allow-damaged",
        ExitCode::kUsage);
  }
  std::size_t looks = 0;
  for (const Pass& pass : features.looks) looks += pass.views.size();
  const bool decides = features.evaluation && features.evaluation->views.size() == kFilters;
  if ((choice.evaluation && !decides) || looks < static_cast<std::size_t>(choice.looks))
    return Failure(start + "features that lack what their file announces");
  return std::nullopt;
}

}  // namespace

FoundFeatures FindIn(const FeatureFile& file, std::string_view record, const Clip& clip,
                     const Settings& settings, const FeatureChoice& choice) {
  FoundFeatures found{{}, FaultOf(file, clip, FeatureRecipe(settings, choice))};
  if (found.fault) return found;
  found.features = file.Features(record);
  found.fault = FaultOf(file, clip, choice, found.features);
  return found;
}

}  // namespace stopngo
