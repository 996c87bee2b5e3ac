// feature_folder.cpp: a folder of features.
#include "features/feature_folder.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "host/common/text.h"

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
  const bool whole =
      (!choice.evaluation || (features.evaluation && features.evaluation->views.size() == kFilters)) &&
      (choice.looks == 0 || !features.looks.empty());
  if (!whole) return Failure(start + "features that lack what their file announces");
  return std::nullopt;
}

}  // namespace

std::vector<std::string> FeatureFilesIn(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> paths;
  for (auto entry = std::filesystem::directory_iterator(folder, error);
       !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (entry->path().extension() == kFeaturesEnding) paths.push_back(entry->path().string());
  }
  if (error) throw Failure(folder + ": " + error.message());
  std::sort(paths.begin(), paths.end());
  return paths;
}

FeatureFolder::FeatureFolder(std::string folder) : folder_(std::move(folder)) {
  for (const std::string& path : FeatureFilesIn(folder_)) {
    const FeatureFile& file = files_.emplace_back(path);
    for (const std::string_view record : file.Records())
      entries_[file.Key(record)].push_back({&file, record});
  }
  if (files_.empty()) throw Failure(folder_ + ": no features in it; stopngo features makes them");
}

ClipFeatures FeatureFolder::Find(const Clip& clip, const Settings& settings,
                                 const FeatureChoice& choice) const {
  const std::string key = keys_.Of(clip, settings.rate);
  const auto found = entries_.find(key);
  if (found == entries_.end()) {
    throw Failure(folder_ + ": no features of " + clip.name + " (" + key + "); stopngo features makes them");
  }
  const FeatureRecipe wanted(settings, choice);
  std::optional<Failure> first;
  for (const Entry& entry : found->second) {
    std::optional<Failure> fault = FaultOf(*entry.file, clip, wanted);
    if (!fault) {
      ClipFeatures features = entry.file->Features(entry.record);
      fault = FaultOf(*entry.file, clip, choice, features);
      if (!fault) {
        if (!clip.IsScene()) features.labels = clip.labels;
        return features;
      }
    }
    if (!first) first = std::move(fault);
  }
  throw Failure(*first);
}

}  // namespace stopngo
