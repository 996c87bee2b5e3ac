// settings_in_force.cpp: settings from all that says something of them.
#include "host/settings_in_force.h"

#include <algorithm>

#include "host/common/failure.h"
#include "host/settings/default_weights.h"
#include "host/settings/settings_file.h"

namespace stopngo {

// Where the user settled the weights, what the file says of them is out of force: either setting excludes the other.
bool SettingsInForce::IsGiven(const std::string& name) const {
  if (name == "weights" || name == "no-weights") return given_("weights") || given_("no-weights");
  return given_(name);
}

void SettingsInForce::TakeFile(const std::string& path) {
  file_ = path;
  of_file_ = ReadSettingsFile(path, settings_, [this](const std::string& name) { return IsGiven(name); });
}

void SettingsInForce::SettleWeights() {
  if (settings_.no_weights) {
    if (settings_.weights.empty()) return;
    throw Failure((file_.empty() ? file_ : file_ + ": ") + "weights and no-weights exclude each other");
  }
  if (settings_.weights.empty()) settings_.weights = FindDefaultWeights().value_or("");
  if (settings_.weights.empty()) return;
  sidecar_ = TakeSidecar(settings_, [this](const std::string& name) { return IsTold(name); });
}

Setup SettingsInForce::AsSetup() const {
  const auto in_frames = [this](const char* name, const FrameCount& time) {
    return IsTold(name) && !time.seconds;
  };
  Setup setup;
  setup.settings = settings_;
  setup.sidecar = sidecar_;
  setup.frame_counts_given = IsTold("rate") && settings_.rate > 0 &&
                             (in_frames("time-beeping", settings_.time_beeping) ||
                              in_frames("time-cooling", settings_.time_cooling));
  return setup;
}

bool SettingsInForce::OfSidecar(const std::string& name) const {
  const bool counts = name == "features" || name == "hiddens";
  const auto told = [&name](const auto& setting) { return setting.first == name; };
  return sidecar_ && !IsTold(name) && (counts || std::ranges::any_of(sidecar_->settings, told));
}

}  // namespace stopngo
