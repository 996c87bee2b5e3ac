// scdoc.cpp: text as scdoc(5) takes it.
#include "reference/scdoc.h"

#include <sstream>

namespace stopngo {
namespace {

constexpr std::string_view kMarks = "\\*_+";     // anywhere
constexpr std::string_view kFirst = "#-[|:];`";  // where a line begins
constexpr std::string_view kIndent = "  ";

}  // namespace

std::string PlainScdoc(std::string_view text) {
  std::string plain;
  for (const char c : text) {
    const bool marks = kMarks.find(c) != std::string_view::npos ||
                       (plain.empty() && kFirst.find(c) != std::string_view::npos);
    if (marks) plain += '\\';
    plain += c;
  }
  return plain;
}

std::string LiteralScdoc(std::string_view lines) {
  std::string literal = "```\n";
  literal.append(lines);
  if (!lines.ends_with('\n')) literal += '\n';
  return literal + "```\n";
}

std::string ProseScdoc(std::string_view text) {
  std::string prose;
  std::string paragraph;
  std::string shown;
  const auto end = [&prose](std::string& part, const std::string& written) {
    if (part.empty()) return;
    prose += (prose.empty() ? "" : "\n") + written;
    part.clear();
  };
  const auto end_both = [&] {
    end(paragraph, PlainScdoc(paragraph) + '\n');
    end(shown, LiteralScdoc(shown));
  };
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) {
    const bool as_it_stands = line.starts_with(kIndent);
    // What was begun ends at an empty line, and where the other kind begins.
    if (line.empty() || !(as_it_stands ? paragraph : shown).empty()) end_both();
    if (as_it_stands) {
      shown += line.substr(kIndent.size()) + '\n';
    } else if (!line.empty()) {
      paragraph += (paragraph.empty() ? "" : " ") + line;
    }
  }
  end_both();
  return prose;
}

}  // namespace stopngo
