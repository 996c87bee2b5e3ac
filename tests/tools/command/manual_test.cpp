// manual_test.cpp: the man pages tell what --help, the table of settings and the module's header tell, all of it.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "host/settings/setting_table.h"
#include "host/settings/settings_file.h"
#include "program.h"

namespace stopngo::test {
namespace {

namespace fs = std::filesystem;

/// The page as a terminal of endless width shows it, without underlining; a test is skipped where nothing can.
class ManualTest : public testing::Test {
 protected:
  void SetUp() override {
    if (Shell("command -v scdoc && command -v man").exit_code != 0) GTEST_SKIP() << "scdoc or man is missing";
  }

  [[nodiscard]] std::string Shown(const std::string& page) const {
    const std::string file = folder_ / page;
    const CommandResult made =
        Shell(STOPNGO_PROGRAM " manual " STOPNGO_MAN_PAGES "/" + page + ".scd --header " STOPNGO_HEADER " >" +
              file + ".scd && scdoc <" + file + ".scd >" + file);
    EXPECT_EQ(made.exit_code, 0) << page << ": " << made.err;
    const CommandResult shown = Shell(
        "LC_ALL=C.UTF-8 MANROFFOPT=-rHY=0 MANWIDTH=2000 man --warnings -E UTF-8 -l " + file + " | col -bx");
    EXPECT_EQ(shown.exit_code, 0);
    EXPECT_EQ(shown.err, "") << page;
    return shown.out;
  }

  const TemporaryFolder folder_;
};

std::vector<std::string> Found(const std::string& text, const char* pattern) {
  const std::regex expression(pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), expression); at != std::sregex_iterator(); ++at) {
    found.push_back(at->str(1));
  }
  return found;
}

std::vector<std::string> Subcommands() {
  const std::string help = Stopngo("--help").out;
  return Found(help.substr(help.find("Subcommands:")), R"(\n  ([a-z]+) )");
}

TEST_F(ManualTest, EverySubcommandHasItsPageWithItsOptionsAndExamples) {
  const std::vector<std::string> subcommands = Subcommands();
  ASSERT_GE(subcommands.size(), 10U);
  const std::string overview = Shown("stopngo.1");
  std::set<std::string> pages{"stopngo.1.scd", "zetstopngo-selftest.1.scd"};
  for (const std::string& subcommand : subcommands) {
    SCOPED_TRACE(subcommand);
    const std::string page = Shown("stopngo-" + subcommand + ".1");
    pages.insert("stopngo-" + subcommand + ".1.scd");
    EXPECT_NE(overview.find("stopngo-" + subcommand + "(1)"), std::string::npos);
    const std::string help = Stopngo(subcommand + " --help").out;
    const std::vector<std::string> options = Found(help, R"(\n  (-[^ \n]+))");
    EXPECT_GE(options.size(), subcommand == "completion" ? 1U : 5U);
    for (const std::string& names : options) {
      std::string shown = names;
      if (const std::size_t comma = shown.find(','); comma != std::string::npos) shown.insert(comma + 1, " ");
      // Of two names each has the value behind it.
      EXPECT_TRUE(std::regex_search(
          page,
          std::regex("\n       " + std::regex_replace(shown, std::regex(", "), "[^,\n]*, ") + "( |\n)")))
          << names;
    }
    // --option NAME=value
    for (const std::string& usual :
         Found(help, R"(\n  -[^ ]+ [A-Z][^ =\n]*(?: in \[[^\]]*\])?=\[?([^ \]\n]+))")) {
      EXPECT_NE(page.find("Default: " + usual), std::string::npos) << usual;
    }
    for (const std::string& range : Found(help, R"( in \[([^\]]+)\])")) {
      EXPECT_NE(page.find("Takes " + std::regex_replace(range, std::regex(" - "), " to ") + '.'),
                std::string::npos)
          << range;
    }
    for (const std::string& example : Found(help.substr(help.find("Examples:")), R"(\n  (.+))")) {
      EXPECT_NE(page.find("\n           " + example + "\n"), std::string::npos) << example;
    }
  }
  // And none is left of one that is gone.
  for (const fs::directory_entry& entry : fs::directory_iterator(STOPNGO_MAN_PAGES)) {
    const std::string name = entry.path().filename();
    EXPECT_TRUE(name.find(".1.scd") == std::string::npos || pages.contains(name)) << name;
  }
  (void)Shown("zetstopngo-selftest.1");
}

TEST_F(ManualTest, EverySettingIsToldWithDefaultAndValues) {
  const std::string page = Shown("stopngo.toml.5");
  for (const Setting& setting : SettingTable()) {
    if (*setting.name == '\0') continue;
    SCOPED_TRACE(setting.name);
    const std::string usual = TextOf(Settings(), setting);
    const bool flag = usual == "true" || usual == "false";
    std::string heading = std::string("\n       ") + setting.name;
    if (!usual.empty()) heading += " = " + (flag ? usual : TomlValue(usual));
    const std::size_t at = page.find(heading + '\n');
    ASSERT_NE(at, std::string::npos) << heading;
    const std::string told = page.substr(at, page.find("\n\n", at) - at);
    EXPECT_NE(told.find(setting.help), std::string::npos) << told;
    EXPECT_NE(told.find("Takes " + RangeOf(setting) + '.'), std::string::npos) << told;
  }
}

TEST_F(ManualTest, TheModulesPageHasEveryNameAndCode) {
  const std::string page = Shown("zetstopngo.3");
  const std::vector<std::string> names = Found(ReadFile(STOPNGO_EXPORTS), R"(\n    ([A-Za-z_0-9]+);)");
  ASSERT_EQ(names.size(), 26U);
  for (const std::string& name : names) {
    EXPECT_TRUE(std::regex_search(page, std::regex("[ *]" + name + "[(;]"))) << name;
  }
  for (std::uint32_t code = VEL_CTRL_STOPNGO_END; code < VEL_CTRL_STOPNGO_MAX; ++code) {
    EXPECT_TRUE(std::regex_search(
        page, std::regex("\n       VEL_CTRL_STOPNGO_[A-Z_]+ \\(" + std::to_string(code) + "\\)")))
        << code;
  }
}

}  // namespace
}  // namespace stopngo::test
