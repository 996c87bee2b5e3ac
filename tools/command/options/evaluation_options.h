// evaluation_options.h: the options of every subcommand that runs the module over manifests.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/file_register.h"
#include "clips/clip.h"
#include "command/options/settings_options.h"
#include "features/feature_folder.h"
#include "host/settings/settings.h"

namespace CLI {
class App;
}

namespace stopngo {

struct EvaluationOptions {
  explicit EvaluationOptions(CLI::App& app);
  /// The clips of all manifests, after the configuration was loaded. Enters all that is read for them. Throws
  /// Failure.
  std::vector<Clip> Clips(FileRegister& files);
  /// In the stead of the clips' pictures, once those were read; null: none are.
  [[nodiscard]] const FeatureFolder* Features() const { return features_ ? &*features_ : nullptr; }

  Settings settings;
  std::vector<std::string> manifests;
  int jobs;
  double false_per_hour = 1;  ///< wanted at most, of standing
  bool allow_damaged = false;
  bool json = false;

 private:
  SettingsOptions options_;
  std::string features_from_;
  std::optional<FeatureFolder> features_;
};

/// Adds --jobs, of every subcommand that works on several threads.
void AddJobs(CLI::App& app, int& jobs);

/// Adds --features-from, of every subcommand that can do without pictures.
void AddFeaturesFrom(CLI::App& app, std::string& folder);

/// Reads a folder of features, unless there is none, and enters its files. Throws Failure, also for settings that ask
/// for pictures.
void ReadFeatures(const std::string& folder, const Settings& settings, FileRegister& files,
                  std::optional<FeatureFolder>& features);

/// The clips of manifests. Enters these and the recordings that they name. Throws Failure.
std::vector<Clip> ClipsOf(std::span<const std::string> manifests, const Settings& settings,
                          bool allow_damaged, FileRegister& files);

}  // namespace stopngo
