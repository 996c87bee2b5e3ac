// feature_folder.h: a folder of features, from which clips are taken without their pictures.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "clips/clip.h"
#include "features/clip_features.h"
#include "features/clip_keys.h"
#include "features/feature_file.h"
#include "host/common/failure.h"
#include "host/settings/settings.h"

namespace stopngo {

/// The files of features in a folder, in the order of their names. Throws Failure.
std::vector<std::string> FeatureFilesIn(const std::string& folder);

/// Any number of threads may ask for clips.
class FeatureFolder {
 public:
  /// Reads all of its files. Throws Failure.
  explicit FeatureFolder(std::string folder);

  /// What is chosen of a clip, and maybe more: never anything that was not made from this clip with these settings.
  /// Throws Failure with the reason, as wrong usage where other features would do for other settings.
  [[nodiscard]] ClipFeatures Find(const Clip& clip, const Settings& settings,
                                  const FeatureChoice& choice) const;

 private:
  struct Entry {
    const FeatureFile* file;
    std::string_view record;
  };

  std::string folder_;
  std::deque<FeatureFile> files_;
  std::unordered_map<std::string_view, std::vector<Entry>> entries_;  ///< by key
  mutable ClipKeys keys_;
};

}  // namespace stopngo
