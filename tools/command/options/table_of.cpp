// table_of.cpp: the command line as data, taken from the parser that reads it.
#include "command/options/table_of.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>

#include "host/settings/setting_table.h"

namespace stopngo {
namespace {

std::vector<std::string> SplitAt(const std::string& text, char mark) {
  std::vector<std::string> parts;
  std::istringstream rest(text);
  for (std::string part; std::getline(rest, part, mark);) parts.push_back(part);
  return parts;
}

ValueKind KindOfName(std::string_view value) {
  if (value.starts_with("FILE") || value == "MANIFEST") return ValueKind::kFile;
  return value == "DIR" ? ValueKind::kFolder : ValueKind::kText;
}

/// What a check of the parser's own says of itself: "{c,toml}", "in [1 - 64]", "NONNEGATIVE".
void AddCheck(OptionRow& row, const std::string& check) {
  if (check.starts_with('{')) {
    row.choices = SplitAt(check.substr(1, check.size() - 2), ',');
  } else if (constexpr std::string_view kRange = "in ["; check.starts_with(kRange)) {
    row.range = check.substr(kRange.size(), check.size() - kRange.size() - 1);
    row.range.replace(row.range.find(" - "), 3, " to ");
  } else if (check == "NONNEGATIVE") {
    row.range = "0 or more";
  } else if (check == "POSITIVE") {
    row.range = "above 0";
  }
}

/// The setting that an option gives, or gives values to try of.
const Setting* SettingOf(const CLI::Option& option) {
  if (option.get_lnames().empty()) return nullptr;
  constexpr std::string_view kTry = "try-";
  const std::string_view name = option.get_lnames().front();
  if (name.starts_with(kTry)) return FindSetting(name.substr(kTry.size()));
  return option.get_group() == "Settings" ? FindSetting(name) : nullptr;
}

OptionRow RowOf(const CLI::Option& option) {
  OptionRow row;
  row.help = option.get_description();
  row.usual = option.get_default_str();
  // Of lists; a name or a number is in no brackets.
  if (row.usual.starts_with('[')) row.usual = row.usual.substr(1, row.usual.size() - 2);
  row.group = option.get_group();
  row.required = option.get_required();
  row.repeated = option.get_items_expected_max() > 1;
  if (option.get_positional()) row.names.push_back(option.get_name(true));
  for (const std::string& name : option.get_snames()) row.names.push_back('-' + name);
  for (const std::string& name : option.get_lnames()) row.names.push_back("--" + name);
  for (const CLI::Option* other : option.get_excludes()) row.excludes.push_back(other->get_name());
  std::ranges::sort(row.excludes);  // they come in the order of their addresses
  if (option.get_items_expected_max() == 0) return row;
  const std::vector<std::string> parts = SplitAt(option.get_type_name(), ':');
  row.value = parts.empty() ? "TEXT" : parts.front();
  for (std::size_t i = 1; i < parts.size(); ++i) AddCheck(row, parts[i]);
  // Of a setting the table knows more than the parser, which takes any text for it.
  if (const Setting* const setting = SettingOf(option)) {
    row.range = RangeOf(*setting);
    row.choices = ChoicesOf(*setting);
  }
  const ValueKind one = row.choices.empty() ? KindOfName(row.value) : ValueKind::kChoice;
  const bool several = one == ValueKind::kChoice && row.value.ends_with("…");
  row.kind = several ? ValueKind::kChoices : one;
  return row;
}

CommandRow RowOf(const CLI::App& app) {
  CommandRow row{app.get_name(), app.get_description(), app.get_footer(), {}, {}};
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;
    (option->get_positional() ? row.positionals : row.options).push_back(RowOf(*option));
  }
  return row;
}

}  // namespace

CommandTable TableOf(const CLI::App& app) {
  CommandTable table{RowOf(app), {}};
  for (const CLI::App* part : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (!part->get_group().empty()) table.subcommands.push_back(RowOf(*part));
  }
  return table;
}

}  // namespace stopngo
