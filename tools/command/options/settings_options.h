// settings_options.h: the settings as options of a subcommand.
#pragma once

#include <map>
#include <string>

#include "base/file_register.h"
#include "host/check.h"
#include "host/settings/settings.h"
#include "host/settings_in_force.h"
#include "video/frame_source.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace stopngo {

/// Adds an option for every setting to a subcommand, and --config FILE for the TOML file. Call a Complete
/// after parsing. What an option gives wins over the file, the file over the sidecar of the weights, and
/// that over the defaults.
class SettingsOptions {
 public:
  SettingsOptions(CLI::App& app, Settings& settings);
  /// Reads the file, settles the weights (the default ones where none are named) and takes their
  /// sidecar's settings. Throws Failure: naming file, line and key when the file is unreadable, malformed,
  /// or has a key or a value that is not known; and when a sidecar does not match its weights.
  void Complete();
  /// For a subcommand that reads no weights: takes the file alone, without what it says of weights, and
  /// refuses options that name some.
  void CompleteWithoutWeights();
  /// The settings, once complete, with the weights' sidecar and what was given, for CheckSetup: alone, or with the
  /// frames that are handed over.
  [[nodiscard]] Setup InForce() const;
  [[nodiscard]] Setup InForce(const SourceInfo& frames) const;
  /// Reads files, weights and sidecar once more, for what was given once. Throws Failure as Complete does.
  [[nodiscard]] Setup ReadAnew() const;
  /// Where a setting came from: "option", "file", "sidecar" or "default".
  [[nodiscard]] const char* OriginOf(const std::string& name) const;
  /// Enters the files that the settings come from: configuration, weights and their sidecar.
  void EnterFiles(FileRegister& files) const;

 private:
  void ReadConfiguration();
  [[nodiscard]] bool IsGiven(const std::string& name) const;

  Settings& settings_;
  Settings given_;  ///< before anything was read
  /// By the names of their settings: the parser's own look-up ends the program when memory is short.
  std::map<std::string, CLI::Option*> options_;
  std::string config_;
  SettingsInForce in_force_;
};

}  // namespace stopngo
