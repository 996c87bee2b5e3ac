// settings.cpp: the settings on the command line and in the TOML file.
#include "settings.h"

#include <toml++/toml.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "default_weights.h"
#include "failure.h"
#include "setting_table.h"
#include "sidecar.h"

namespace stopngo {
namespace {

bool IsPath(const Setting& setting) { return std::holds_alternative<std::string Settings::*>(setting.field); }
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
  };
  return std::visit(Names{}, setting.field);
}

void AddOption(CLI::App& app, Settings& settings, const Setting& setting) {
  const std::string option = std::string("--") + setting.name;
  if (IsFlag(setting)) {
    app.add_flag_callback(
           option, [&settings, &setting] { SetFromText(settings, setting, "true"); }, setting.help)
        ->group("Settings");
    return;
  }
  const auto take = [&settings, &setting, option](const std::string& text) {
    try {
      SetFromText(settings, setting, text);
    } catch (const std::invalid_argument& reason) {
      throw CLI::ValidationError(option, reason.what());
    }
  };
  app.add_option_function<std::string>(option, take, setting.help)
      ->type_name(TypeName(setting))
      ->default_str(TextOf(settings, setting))
      ->group("Settings");
}

// A TOML value as the text that an option would have.
std::string TextOf(const toml::node& node) {
  if (const auto* text = node.as_string()) return text->get();
  if (const auto* number = node.as_integer()) return std::to_string(number->get());
  if (const auto* flag = node.as_boolean()) return flag->get() ? "true" : "false";
  if (const auto* number = node.as_floating_point()) {
    std::ostringstream text;
    text.precision(std::numeric_limits<double>::max_digits10);
    text << number->get();
    return text.str();
  }
  throw std::invalid_argument("a single value is expected");
}

void TakeNode(Settings& settings, const Setting& setting, const toml::node& node, const std::string& config) {
  if (!IsPath(setting)) {
    SetFromText(settings, setting, TextOf(node));
    return;
  }
  if (!node.is_string()) throw std::invalid_argument("a path in quotes is expected");
  // Paths in a file start at the file, so that it works from every folder.
  const std::filesystem::path path = node.as_string()->get();
  const std::filesystem::path base = std::filesystem::path(config).parent_path();
  SetFromText(settings, setting, path.empty() ? std::string() : (base / path).string());
}

// With the weights settled on the command line, what the file says of them is out of force: either
// option excludes the other.
bool GivenAsOption(const CLI::App& app, const std::string& name) {
  const auto given = [&app](const char* option) { return app.get_option(option)->count() > 0; };
  if (name == "weights" || name == "no-weights") return given("--weights") || given("--no-weights");
  return given(("--" + name).c_str());
}

toml::table ParsedToml(const std::string& path) {
  // The parser's own message for a file that is not there names neither the file nor the reason.
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) throw Failure(path + ": No such file");
  if (std::filesystem::is_directory(status)) throw Failure(path + ": a folder, not a TOML file");
  try {
    return toml::parse_file(path);
  } catch (const toml::parse_error& fault) {
    const auto line = fault.source().begin.line;
    const std::string where = line > 0 ? ":" + std::to_string(line) : std::string();
    throw Failure(path + where + ": " + std::string(fault.description()));
  }
}

}  // namespace

int FrameCount::Frames(double fps) const {
  if (!seconds) return static_cast<int>(static_cast<std::int64_t>(value));
  const double frames = std::round(value * fps);
  if (!(frames <= std::numeric_limits<int>::max())) {
    throw Failure("a time of " + std::to_string(value) + " s has too many frames", ExitCode::kUsage);
  }
  return static_cast<int>(frames);
}

SettingsOptions::SettingsOptions(CLI::App& app, Settings& settings) : app_(app), settings_(settings) {
  app.add_option("--config", config_, "TOML file with any of the settings below; options win over it")
      ->type_name("FILE");
  for (const Setting& setting : SettingTable()) {
    if (*setting.name != '\0') AddOption(app, settings, setting);
  }
  app.get_option("--weights")->excludes(app.get_option("--no-weights"));
}

bool SettingsOptions::Given(const std::string& name) const {
  return configured_.contains(name) || GivenAsOption(app_, name);
}

void SettingsOptions::CompleteWithoutWeights() {
  for (const char* const option : {"--weights", "--no-weights"}) {
    if (app_.get_option(option)->count() > 0) {
      throw Failure(std::string(option) + ": no weights are read here", ExitCode::kUsage);
    }
  }
  ReadConfiguration();
  settings_.weights.clear();
  settings_.no_weights = false;
}

void SettingsOptions::ReadConfiguration() {
  if (config_.empty()) return;
  const toml::table table = ParsedToml(config_);
  for (const auto& [key, node] : table) {
    const std::string name(key.str());
    const std::string where = config_ + ":" + std::to_string(key.source().begin.line) + ": " + name + ": ";
    const Setting* const setting = FindSetting(name);
    if (setting == nullptr) throw Failure(where + "no such setting");
    if (GivenAsOption(app_, name)) continue;
    try {
      TakeNode(settings_, *setting, node, config_);
    } catch (const std::invalid_argument& reason) {
      throw Failure(where + reason.what());
    }
    configured_.insert(name);
  }
}

void SettingsOptions::Complete() {
  ReadConfiguration();
  if (settings_.no_weights) {
    if (settings_.weights.empty()) return;
    throw Failure(config_ + ": weights and no-weights exclude each other");
  }
  if (settings_.weights.empty()) settings_.weights = FindDefaultWeights().value_or("");
  if (!settings_.weights.empty()) TakeSidecar();
}

void SettingsOptions::TakeSidecar() {
  const std::optional<Sidecar> sidecar = ReadSidecar(settings_.weights);
  if (!sidecar) return;
  SettingTexts texts = sidecar->settings;
  texts.emplace_back("features", std::to_string(sidecar->inputs / 2));
  texts.emplace_back("hiddens", std::to_string(sidecar->hiddens));
  for (const auto& [name, text] : texts) {
    if (Given(name)) continue;
    try {
      SetFromText(settings_, *FindSetting(name), text);
    } catch (const std::invalid_argument& reason) {
      throw Failure(SidecarPath(settings_.weights) + ": " + name + ": " + reason.what());
    }
  }
  const auto count = [](int setting) { return std::uint64_t{static_cast<std::uint32_t>(setting)}; };
  CheckSidecar(settings_.weights, *sidecar, 2 * count(settings_.features), count(settings_.hiddens));
}

}  // namespace stopngo
