// settings_file.cpp: settings in a TOML file.
#include "host/settings/settings_file.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <variant>

#include "host/common/failure.h"
#include "host/common/file.h"
#include "host/common/spelling.h"
#include "host/common/text.h"
#include "host/settings/setting_table.h"

namespace stopngo {
namespace {

constexpr FileKind kSettingsFile{"a TOML file of settings", std::uint64_t{1} << 20, true};

/// Where a quoted text, or a comment, that begins a piece of TOML ends; 0 where none begins.
std::size_t EndOfQuoted(std::string_view text) {
  if (text.front() == '#') return std::min(text.find('\n'), text.size());
  if (text.front() != '"' && text.front() != '\'') return 0;
  const std::string_view three = text.substr(0, 3);
  const bool lines = three.size() == 3 && three[1] == three[0] && three[2] == three[0];
  const std::string_view mark = text.substr(0, lines ? 3 : 1);
  for (std::size_t at = mark.size(); at < text.size(); ++at) {
    if (text.substr(at).starts_with(mark)) return at + mark.size();
    if (!lines && text[at] == '\n') return at;
    if (text[at] == '\\' && mark[0] == '"') ++at;
  }
  return text.size();
}

/// The parser takes the stack for what lies in one another: parts of a key, lists, tables. Each takes one of these
/// signs, and settings, which are flat, take a point in a number at most.
void RefuseNesting(const std::string& path, std::string_view text) {
  constexpr int kMost = 1000;
  int signs = 0;
  while (!text.empty()) {
    const std::size_t quoted = EndOfQuoted(text);
    if (quoted == 0 && std::string_view(".[{").find(text.front()) != std::string_view::npos) ++signs;
    if (signs > kMost) throw Failure(path + ": more lists, tables and parts of keys than settings have");
    text.remove_prefix(std::max<std::size_t>(quoted, 1));
  }
}

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

/// What the parser says, without where in its own code it was; a key that comes again is told as that.
std::string SentenceOf(std::string_view fault) {
  const std::size_t again = fault.find("cannot redefine existing ");
  const std::size_t name = fault.find('\'', again);
  if (again == std::string_view::npos || name == std::string_view::npos) return std::string(fault);
  return std::string(fault.substr(name)) + " is given twice";
}

toml::table ParsedToml(const std::string& path) {
  const std::string text = ReadFile(path, kSettingsFile);
  RefuseNesting(path, text);
  try {
    // Without the path: the library takes memory for it where a lack of memory ends the program.
    return toml::parse(text);
  } catch (const toml::parse_error& fault) {
    const auto line = fault.source().begin.line;
    const std::string where = line > 0 ? ":" + std::to_string(line) : std::string();
    throw Failure(path + where + ": " + SentenceOf(fault.description()));
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
    if (setting == nullptr) throw Failure(where + "no such setting" + MeantBy(name, SettingNames()));
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

std::string TomlValue(std::string_view text) {
  if (FiniteOf(text)) {
    // Whole numbers have 64 bits in TOML. A larger one is one of those with a point.
    const bool too_large =
        text.find_first_of(".eE") == std::string_view::npos && !NumberOf<std::int64_t>(text);
    return std::string(text).append(too_large ? ".0" : "");
  }
  std::string value = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') value += '\\';
    value += byte < ' ' || byte == 0x7f ? Print("\\u%04x", unsigned{byte}) : std::string(1, c);
  }
  return value + '"';
}

std::vector<std::string> SettingsLines(const Settings& settings) {
  std::vector<std::string> lines;
  lines.reserve(SettingTable().size());
  for (const Setting& setting : SettingTable()) {
    std::string text = *setting.name == '\0' ? std::string() : TextOf(settings, setting);
    const bool flag = std::holds_alternative<bool Settings::*>(setting.field);
    if (text.empty() || (flag && text == "false")) continue;
    if (IsPath(setting)) text = std::filesystem::absolute(text).lexically_normal().string();
    lines.push_back(std::string(setting.name) + " = " + (flag ? text : TomlValue(text)));
  }
  return lines;
}

}  // namespace stopngo
