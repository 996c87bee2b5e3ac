// settings_file.cpp: settings in a TOML file.
#include "host/settings_file.h"

#include <toml++/toml.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <variant>

#include "host/failure.h"
#include "host/setting_table.h"
#include "host/text.h"

namespace stopngo {
namespace {

bool IsPath(const Setting& setting) { return std::holds_alternative<std::string Settings::*>(setting.field); }

// A TOML value as the text that an option would have.
std::string TextOf(const toml::node& node) {
  if (const auto* text = node.as_string()) return text->get();
  if (const auto* number = node.as_integer()) return std::to_string(number->get());
  if (const auto* flag = node.as_boolean()) return flag->get() ? "true" : "false";
  if (const auto* number = node.as_floating_point()) return Print("%.17g", number->get());
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

std::set<std::string> ReadSettingsFile(const std::string& path, Settings& settings,
                                       const std::function<bool(const std::string& name)>& settled) {
  std::set<std::string> taken;
  const toml::table table = ParsedToml(path);
  for (const auto& [key, node] : table) {
    const std::string name(key.str());
    const std::string where = Print("%s:%u: %s: ", path.c_str(), key.source().begin.line, name.c_str());
    const Setting* const setting = FindSetting(name);
    if (setting == nullptr) throw Failure(where + "no such setting");
    if (settled(name)) continue;
    try {
      TakeNode(settings, *setting, node, path);
    } catch (const std::invalid_argument& reason) {
      throw Failure(where + reason.what());
    }
    taken.insert(name);
  }
  return taken;
}

}  // namespace stopngo
