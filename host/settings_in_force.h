// settings_in_force.h: settings from all that says something of them.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "host/check.h"
#include "host/settings/settings.h"
#include "host/settings/sidecar.h"

namespace stopngo {

/// What the user gave, as an option or a property, wins over the settings' file, the file over the sidecar of the
/// weights, and that over the defaults.
class SettingsInForce {
 public:
  using Given = std::function<bool(const std::string& name)>;

  /// settings: holds what was given already, and receives the rest. given: whether the user gave a setting. Both
  /// outlive this.
  SettingsInForce(Settings& settings, Given given) : settings_(settings), given_(std::move(given)) {}

  /// Takes a TOML file. Throws Failure as ReadSettingsFile does.
  void TakeFile(const std::string& path);
  /// Settles the weights, the default ones where none are named, and takes their sidecar's settings. Throws Failure
  /// when weights are named and refused at once, and when the sidecar is not theirs.
  void SettleWeights();

  /// The settings, once the weights are settled, for CheckSetup.
  [[nodiscard]] Setup AsSetup() const;
  /// Where a setting came from: the file, the sidecar, or none of them.
  [[nodiscard]] bool OfFile(const std::string& name) const { return of_file_.contains(name); }
  [[nodiscard]] bool OfSidecar(const std::string& name) const;

 private:
  [[nodiscard]] bool IsGiven(const std::string& name) const;
  [[nodiscard]] bool IsTold(const std::string& name) const { return OfFile(name) || IsGiven(name); }

  Settings& settings_;
  Given given_;
  std::string file_;
  std::set<std::string> of_file_;
  std::optional<Sidecar> sidecar_;  ///< of the weights
};

}  // namespace stopngo
