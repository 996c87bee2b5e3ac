// man_page.cpp: man pages, in the language of scdoc(5): what a person wrote, with the tables put in.
#include "reference/man_page.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "host/common/failure.h"
#include "host/common/text.h"
#include "reference/header_page.h"
#include "reference/scdoc.h"
#include "reference/setting_page.h"

namespace stopngo {
namespace {

constexpr std::string_view kExamples = "Examples:\n";

struct Page {
  std::string name;     ///< stopngo-run
  std::string section;  ///< 1
  const ManualSources& sources;
  /// What it is about: a subcommand, or the program.
  const CommandRow* command;
};

std::string Bold(const std::string& text) { return '*' + PlainScdoc(text) + '*'; }
std::string Slanted(const std::string& text) { return '_' + PlainScdoc(text) + '_'; }

std::string Preamble(const Page& page) {
  return page.name + '(' + page.section + ") \"zetstopngo " + page.sources.version + "\" \"stopngo\"\n";
}

// "FILE ...", in brackets where it may be left out.
std::string Argument(const OptionRow& row) {
  const std::string text = Slanted(row.names.front()) + (row.repeated ? "..." : "");
  return row.required ? text : "\\[" + text + ']';
}

std::string Head(const Page& page) {
  const CommandRow& command = *page.command;
  std::string text = Preamble(page) + "\n# NAME\n\n" + page.name + " - " + PlainScdoc(command.help) +
                     "\n\n# SYNOPSIS\n\n" +
                     Bold(command.name == "stopngo" ? "stopngo" : "stopngo " + command.name);
  text += " \\[_option_...]";
  for (const OptionRow& row : command.positionals) text += ' ' + Argument(row);
  const std::string_view footer = command.footer;
  const std::string prose = ProseScdoc(footer.substr(0, footer.find(kExamples)));
  return text + "\n\n# DESCRIPTION\n" + (prose.empty() ? "" : '\n' + prose);
}

std::string Term(const OptionRow& row) {
  std::string term;
  for (const std::string& name : row.names) {
    Enlist(term, Bold(name));
    if (!row.value.empty()) term += ' ' + Slanted(row.value);
  }
  return row.repeated && row.value.find("…") == std::string::npos ? term + "..." : term;
}

std::string Definition(const OptionRow& row) {
  std::string text = PlainScdoc(row.help);
  const auto add = [&text](const std::string& sentence) { text += ". " + sentence; };
  if (!row.choices.empty()) {
    std::string choices;
    for (const std::string& choice : row.choices) Enlist(choices, Bold(choice));
    add("One of " + choices);
    if (row.kind == ValueKind::kChoices) text += ", or several with commas between";
  }
  const bool path = row.kind == ValueKind::kFile || row.kind == ValueKind::kFolder;
  if (row.choices.empty() && !row.range.empty() && !path) add("Takes " + PlainScdoc(row.range));
  if (!row.usual.empty()) add("Default: " + Bold(row.usual));
  if (row.required) add("Required");
  if (!row.excludes.empty()) {
    std::string others;
    for (const std::string& other : row.excludes) Enlist(others, Bold(other));
    add("Not together with " + others);
  }
  return text + '.';
}

std::string Definitions(const std::vector<OptionRow>& rows, const std::string& group) {
  std::string text;
  for (const OptionRow& row : rows) {
    if (row.group != group) continue;
    text += '\n' + Term(row) + "\n\t" + Definition(row) + '\n';
  }
  return text;
}

/// Every group of options below a heading of its own, in the order of --help.
std::string Options(const Page& page) {
  const CommandRow& command = *page.command;
  std::string text;
  if (!command.positionals.empty()) {
    text += "# ARGUMENTS\n" + Definitions(command.positionals, command.positionals.front().group) + '\n';
  }
  std::vector<std::string> groups;
  for (const OptionRow& row : command.options) {
    if (std::ranges::find(groups, row.group) == groups.end()) groups.push_back(row.group);
  }
  for (const std::string& group : groups) {
    std::string heading = group;
    std::ranges::transform(heading, heading.begin(), [](unsigned char c) { return std::toupper(c); });
    text += "# " + heading + '\n' + Definitions(command.options, group) + '\n';
  }
  text.pop_back();
  return text;
}

std::string Examples(const Page& page) {
  const std::string& footer = page.command->footer;
  const std::size_t at = footer.find(kExamples);
  if (at == std::string::npos) return {};
  return "# EXAMPLES\n\n" + ProseScdoc(std::string_view(footer).substr(at + kExamples.size()));
}

std::string Commands(const Page& page) {
  std::string text;
  for (const CommandRow& row : page.sources.commands.subcommands) {
    text +=
        (text.empty() ? "" : "\n") + Bold("stopngo-" + row.name) + "(1)\n\t" + PlainScdoc(row.help) + ".\n";
  }
  return text;
}

std::string Codes(const Page& page) { return ControlCodePage(page.sources.read("vel_stopngo.h")); }
std::string Routines(const Page& page) { return RoutinePage(page.sources.read("vel_stopngo.h")); }
std::string Overview(const Page& page) { return OverviewPage(page.sources.read("vel_stopngo.h")); }
std::string SettingKeys(const Page& /*page*/) { return SettingPage(); }

struct Word {
  std::string_view word;
  std::string (*text)(const Page& page);
};

constexpr std::array kWords{
    Word{"@PREAMBLE@", Preamble}, Word{"@HEAD@", Head},         Word{"@OPTIONS@", Options},
    Word{"@EXAMPLES@", Examples}, Word{"@COMMANDS@", Commands}, Word{"@SETTINGS@", SettingKeys},
    Word{"@CODES@", Codes},       Word{"@ROUTINES@", Routines}, Word{"@OVERVIEW@", Overview},
};

std::string Replacement(const std::string& line, const Page& page) {
  if (!line.starts_with('@') || !line.ends_with('@') || line.size() < 2) return line + '\n';
  constexpr std::string_view kFile = "@FILE ";
  if (line.starts_with(kFile))
    return page.sources.read(line.substr(kFile.size(), line.size() - kFile.size() - 1));
  const auto found = std::ranges::find(kWords, line, &Word::word);
  if (found == kWords.end())
    throw Failure(page.name + '.' + page.section + ": " + line + " stands for nothing");
  return found->text(page);
}

const CommandRow* About(const std::string& name, const CommandTable& commands) {
  constexpr std::string_view kPrefix = "stopngo-";
  if (!name.starts_with(kPrefix)) return &commands.program;
  const auto row = std::ranges::find(commands.subcommands, name.substr(kPrefix.size()), &CommandRow::name);
  if (row == commands.subcommands.end()) throw Failure(name + ": a page of no subcommand");
  return &*row;
}

}  // namespace

std::string ManPage(const std::string& file_name, std::string_view text, const ManualSources& sources) {
  // stopngo.toml.5.scd
  const std::string stem = file_name.substr(0, file_name.rfind(".scd"));
  const std::size_t point = stem.rfind('.');
  if (point == std::string::npos) throw Failure(file_name + ": is no NAME.SECTION.scd");
  const std::string name = stem.substr(0, point);
  const Page page{name, stem.substr(point + 1), sources, About(name, sources.commands)};
  std::string written;
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) written += Replacement(line, page);
  return written;
}

}  // namespace stopngo
