// feature_file.h: the features of some clips as a file.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "features/clip_features.h"
#include "host/settings/settings.h"
#include "scene/version.h"

namespace stopngo {

inline constexpr std::string_view kFeaturesEnding = ".features";

/// What the features of all clips of a file follow from.
struct FeatureRecipe {
  FeatureRecipe() = default;
  FeatureRecipe(const Settings& settings, const FeatureChoice& choice)
      : scale(settings.scale),
        block_size(settings.block_size),
        filter(choice.looks > 0 ? settings.filter : 0),
        evaluation(choice.evaluation),
        looks(choice.looks) {}

  std::uint32_t scene_version = kSceneVersion;
  std::int32_t scale = 0;
  std::int32_t block_size = 0;
  std::int32_t filter = 0;  ///< that looks go by; an evaluation has a view of every one
  bool evaluation = false;
  std::int32_t looks = 0;

  bool operator==(const FeatureRecipe&) const = default;
};

/// The file's bytes. records: one a clip (features/clip_record.h).
std::string FeatureFileBytes(const FeatureRecipe& recipe, std::span<const std::string> records);

/// A file as it was read.
class FeatureFile {
 public:
  /// Throws Failure naming the path when it cannot be read, is none, of another format, or damaged.
  explicit FeatureFile(std::string path);
  FeatureFile(const FeatureFile&) = delete;
  FeatureFile& operator=(const FeatureFile&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] const FeatureRecipe& Recipe() const { return recipe_; }
  [[nodiscard]] const std::vector<std::string_view>& Records() const { return records_; }
  /// That of a record of this file. Throws Failure.
  [[nodiscard]] ClipFeatures Features(std::string_view record) const;
  [[nodiscard]] std::string_view Key(std::string_view record) const;

 private:
  void Parse();
  [[noreturn]] void Refuse(const std::string& reason) const;

  std::string path_;
  std::string bytes_;
  FeatureRecipe recipe_;
  std::vector<std::string_view> records_;
};

}  // namespace stopngo
