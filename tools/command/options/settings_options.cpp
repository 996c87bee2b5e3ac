// settings_options.cpp: the settings as options of a subcommand.
#include "command/options/settings_options.h"

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <variant>

#include "host/common/failure.h"
#include "host/gates/history_gate.h"
#include "host/settings/setting_table.h"
#include "host/settings/sidecar.h"

namespace stopngo {
namespace {

bool IsFlag(const Setting& setting) { return std::holds_alternative<bool Settings::*>(setting.field); }

const char* TypeName(const Setting& setting) {
  struct Names {
    const char* operator()(Internal) const { return ""; }
    const char* operator()(int Settings::*) const { return "N"; }
    const char* operator()(std::optional<int> Settings::*) const { return "N"; }
    const char* operator()(double Settings::*) const { return "NUMBER"; }
    const char* operator()(const RateField&) const { return "NUMBER"; }
    const char* operator()(FrameCount Settings::*) const { return "TIME"; }
    const char* operator()(std::string Settings::*) const { return "FILE"; }
    const char* operator()(bool Settings::*) const { return ""; }
    const char* operator()(const Choice&) const { return "NAME"; }
    const char* operator()(const SecondsField&) const { return "TIME"; }
    const char* operator()(const NameSet&) const { return "NAME,…"; }
  };
  return std::visit(Names{}, setting.field);
}

CLI::Option* AddOption(CLI::App& app, Settings& settings, const Setting& setting) {
  const std::string option = std::string("--") + setting.name;
  if (IsFlag(setting)) {
    return app
        .add_flag_callback(
            option, [&settings, &setting] { SetFromText(settings, setting, "true"); }, setting.help)
        ->group("Settings");
  }
  const auto take = [&settings, &setting, option](const std::string& text) {
    try {
      SetFromText(settings, setting, text);
    } catch (const std::invalid_argument& reason) {
      throw CLI::ValidationError(option, reason.what());
    }
  };
  return app.add_option_function<std::string>(option, take, setting.help)
      ->type_name(TypeName(setting))
      ->default_str(TextOf(settings, setting))
      ->group("Settings");
}

}  // namespace

SettingsOptions::SettingsOptions(CLI::App& app, Settings& settings)
    : settings_(settings), in_force_(settings, [this](const std::string& name) { return IsGiven(name); }) {
  app.add_option("--config", config_, "TOML file with any of the settings below; options win over it")
      ->type_name("FILE");
  for (const Setting& setting : SettingTable()) {
    if (*setting.name != '\0') options_[setting.name] = AddOption(app, settings, setting);
  }
  options_.at("weights")->excludes(options_.at("no-weights"));
}

void SettingsOptions::CompleteWithoutWeights() {
  for (const char* const option : {"weights", "no-weights"}) {
    if (options_.at(option)->count() > 0) {
      throw Failure(std::string("--") + option + ": no weights are read here", ExitCode::kUsage);
    }
  }
  ReadConfiguration();
  settings_.weights.clear();
  settings_.no_weights = false;
}

bool SettingsOptions::IsGiven(const std::string& name) const { return options_.at(name)->count() > 0; }

void SettingsOptions::ReadConfiguration() {
  given_ = settings_;
  if (!config_.empty()) in_force_.TakeFile(config_);
}

void SettingsOptions::Complete() {
  ReadConfiguration();
  in_force_.SettleWeights();
}

Setup SettingsOptions::ReadAnew() const {
  Settings settings = given_;
  SettingsInForce in_force(settings, [this](const std::string& name) { return IsGiven(name); });
  if (!config_.empty()) in_force.TakeFile(config_);
  in_force.SettleWeights();
  return in_force.AsSetup();
}

Setup SettingsOptions::InForce() const { return in_force_.AsSetup(); }

Setup SettingsOptions::InForce(const SourceInfo& frames) const {
  Setup setup = InForce();
  setup.frames = frames;
  setup.length = frames.frames;
  return setup;
}

const char* SettingsOptions::OriginOf(const std::string& name) const {
  if (IsGiven(name)) return "option";
  if (in_force_.OfFile(name)) return "file";
  return in_force_.OfSidecar(name) ? "sidecar" : "default";
}

void SettingsOptions::EnterFiles(FileRegister& files) const {
  files.Reads(config_, "--config");
  files.Reads(settings_.speed_file, "--speed-file");
  const bool history = (settings_.gates & BitOf(GateKind::kHistory)) != 0;
  const std::string history_weights = history ? HistoryWeightsPath(settings_) : settings_.history_weights;
  if (!history_weights.empty()) {
    files.Reads(history_weights, "the history gate's weights");
    files.Reads(SidecarPath(history_weights), "their sidecar");
  }
  if (settings_.weights.empty()) return;
  files.Reads(settings_.weights, "the weights");
  files.Reads(SidecarPath(settings_.weights), "the weights' sidecar");
}

}  // namespace stopngo
