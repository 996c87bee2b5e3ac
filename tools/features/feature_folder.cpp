// feature_folder.cpp: a folder of features.
#include "features/feature_folder.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "features/fault.h"

namespace stopngo {

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
  std::optional<Failure> first;
  for (const Entry& entry : found->second) {
    FoundFeatures kept = FindIn(*entry.file, entry.record, clip, settings, choice);
    if (!kept.fault) {
      if (!clip.IsScene()) kept.features.labels = clip.labels;
      return std::move(kept.features);
    }
    if (!first) first = std::move(kept.fault);
  }
  throw Failure(*first);
}

}  // namespace stopngo
