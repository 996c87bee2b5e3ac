// evaluation_options.h: the options of every subcommand that runs the module over manifests.
#pragma once

#include <string>
#include <vector>

#include "clips/clip.h"
#include "command/settings_options.h"
#include "host/settings.h"

namespace CLI {
class App;
}

namespace stopngo {

struct EvaluationOptions {
  explicit EvaluationOptions(CLI::App& app);
  /// The clips of all manifests, after the configuration was loaded. Throws Failure.
  std::vector<Clip> Clips();
  /// What is read beside the clips: manifests, configuration, weights.
  [[nodiscard]] std::vector<std::string> Files() const;

  Settings settings;
  std::vector<std::string> manifests;
  int jobs;
  double false_per_hour = 1;  ///< wanted at most, of standing
  bool allow_damaged = false;
  bool json = false;

 private:
  SettingsOptions options_;
};

}  // namespace stopngo
