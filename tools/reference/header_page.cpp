// header_page.cpp: the module's public header, as the man page of the module tells it.
#include "reference/header_page.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <sstream>
#include <vector>

#include "reference/scdoc.h"

namespace stopngo {
namespace {

/// What stands between two empty lines of the header.
struct Block {
  std::string comment;  ///< without its stars
  std::string code;
};

std::string WithoutStars(std::string line) {
  if (line.ends_with("*/")) line.erase(line.size() - 2);
  line.erase(0, std::min(line.find_first_not_of("/* "), line.size()));
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

// Of a comment's line that is not the first: behind " * ", where code is indented further.
std::string WithoutStar(std::string line) {
  if (line.ends_with("*/")) line.erase(line.size() - 2);
  line.erase(0, std::min<std::size_t>(3, line.size()));
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

std::vector<Block> BlocksOf(std::string_view header) {
  std::vector<Block> blocks(1);
  bool in_comment = false;
  std::istringstream lines{std::string(header)};
  for (std::string line; std::getline(lines, line);) {
    Block& block = blocks.back();
    const bool begins = !in_comment && block.code.empty() && line.starts_with("/*");
    if (begins || in_comment) {
      block.comment += (begins ? WithoutStars(line) : WithoutStar(line)) + '\n';
      in_comment = !line.ends_with("*/");
    } else if (!line.empty()) {
      block.code += line + '\n';
    } else if (!block.code.empty() || !block.comment.empty()) {
      blocks.emplace_back();
    }
  }
  return blocks;
}

bool IsDeclaration(const std::string& code) {
  constexpr const char* kBeginnings[] = {"VEL_STOPNGO_API ", "extern VEL_STOPNGO_API ", "typedef "};
  return std::ranges::any_of(kBeginnings, [&](const char* start) { return code.starts_with(start); });
}

std::string WithoutExport(std::string code) {
  constexpr std::string_view kExport = "VEL_STOPNGO_API ";
  for (std::size_t at = 0; (at = code.find(kExport, at)) != std::string::npos;)
    code.erase(at, kExport.size());
  return code;
}

std::string Indented(const std::string& prose) {
  std::string indented;
  std::istringstream lines(prose);
  for (std::string line; std::getline(lines, line);) indented += (line.empty() ? "" : '\t' + line) + '\n';
  return indented;
}

/// "---- Title. Sentences. ----": what follows is about that.
std::string Heading(std::string comment) {
  comment = std::regex_replace(comment, std::regex("-{4} ?| -{4}"), "");
  const std::size_t end = comment.find_first_of(".\n");
  std::string title = comment.substr(0, end);
  std::ranges::transform(title, title.begin(), [](unsigned char c) { return std::toupper(c); });
  const std::size_t rest = comment.find_first_not_of(".\n ", end);
  return "## " + title + '\n' + (rest == std::string::npos ? "" : '\n' + ProseScdoc(comment.substr(rest)));
}

}  // namespace

std::string OverviewPage(std::string_view header) {
  const std::string comment = BlocksOf(header).front().comment;
  return ProseScdoc(std::string_view(comment).substr(comment.find("\n\n") + 2));
}

std::string ControlCodePage(std::string_view header) {
  static const std::regex code_line(
      R"(\n  (VEL_CTRL_STOPNGO_[A-Z_]+) = (\d+), +/\* (?:([^:\n]+): )?(.*) \*/)");
  constexpr std::string_view kCount = "VEL_CTRL_STOPNGO_MAX";  // no code
  const std::string text(header);
  std::string page;
  for (std::sregex_iterator code(text.begin(), text.end(), code_line); code != std::sregex_iterator();
       ++code) {
    const std::smatch& part = *code;
    if (part.str(1) == kCount) break;
    page += (page.empty() ? "" : "\n") + ('*' + PlainScdoc(part.str(1)) + "* (") + part.str(2) + ')';
    if (part[3].matched) page += ", _" + PlainScdoc(part.str(3)) + '_';
    page += "\n\t" + PlainScdoc(part.str(4)) + ".\n";
  }
  return page;
}

std::string RoutinePage(std::string_view header) {
  std::string page;
  for (const Block& block : BlocksOf(header)) {
    std::string part;
    if (block.code.empty() && block.comment.starts_with("----")) {
      part = Heading(block.comment);
    } else if (IsDeclaration(block.code)) {
      part = LiteralScdoc(WithoutExport(block.code));
      if (!block.comment.empty()) part += '\n' + Indented(ProseScdoc(block.comment));
    } else {
      continue;
    }
    page += (page.empty() ? "" : "\n") + part;
  }
  return page;
}

}  // namespace stopngo
