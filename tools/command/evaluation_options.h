// evaluation_options.h: the options of every subcommand that runs the module over manifests.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/file_register.h"
#include "clips/clip.h"
#include "command/settings_options.h"
#include "host/settings.h"

namespace CLI {
class App;
}

namespace stopngo {

struct EvaluationOptions {
  explicit EvaluationOptions(CLI::App& app);
  /// The clips of all manifests, after the configuration was loaded. Enters all that is read for them. Throws
  /// Failure.
  std::vector<Clip> Clips(FileRegister& files);

  Settings settings;
  std::vector<std::string> manifests;
  int jobs;
  double false_per_hour = 1;  ///< wanted at most, of standing
  bool allow_damaged = false;
  bool json = false;

 private:
  SettingsOptions options_;
};

/// The clips of manifests. Enters these and the recordings that they name. Throws Failure.
std::vector<Clip> ClipsOf(std::span<const std::string> manifests, const Settings& settings,
                          bool allow_damaged, FileRegister& files);

}  // namespace stopngo
