// settings_file_test.cpp: settings in TOML files: taken, left, refused with their line.
#include "host/settings/settings_file.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "host/settings/settings.h"
#include "support/damage.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

bool Nothing(const std::string& /*name*/) { return false; }

TEST(SettingsFile, GivesWhatIsNotSettledOtherwise) {
  const TemporaryFolder folder;
  const std::string path =
      folder.File("car.toml", "rate = 6.25\nthreshold = 0.1\nweights = \"sub/w.bin\"\nno-weights = false");
  Settings settings;
  const auto taken =
      ReadSettingsFile(path, settings, [](const std::string& name) { return name == "threshold"; });
  EXPECT_EQ(taken, (std::set<std::string>{"no-weights", "rate", "weights"}));
  EXPECT_EQ(settings.rate, 6.25);
  EXPECT_EQ(settings.threshold, Settings().threshold);
  EXPECT_EQ(settings.weights, folder / "sub/w.bin") << "paths start at the file";
}

TEST(SettingsFile, LinesOfSettingsReadBackAsTheyWere) {
  const TemporaryFolder folder;
  Settings settings;
  settings.weights = folder / "a \"b\\c\nd.bin";
  settings.filter = 2;
  settings.time_leaving = {0.75, true};
  settings.original_size = 1280;
  std::string text;
  for (const std::string& line : SettingsLines(settings)) text += line + "\n";
  Settings read;
  (void)ReadSettingsFile(folder.File("written.toml", text), read, Nothing);
  EXPECT_EQ(SettingsLines(read), SettingsLines(settings)) << text;
  EXPECT_EQ(read.weights, settings.weights);
}

TEST(SettingsFile, FaultsAreToldWithTheirLine) {
  const TemporaryFolder folder;
  struct Case {
    std::string text;
    std::vector<std::string> words;
  };
  const std::vector<Case> cases = {
      {"rate = 5\n\nbogus = 1\n", {"c.toml:3", "bogus", "no such setting"}},
      {"roi-x = [1]\n", {"c.toml:1", "roi-x", "single value"}},
      {"rate = 5\nroi-x = 4294967296\n", {"c.toml:2", "roi-x", "4294967296"}},
      {"weights = 3\n", {"c.toml:1", "weights", "path in quotes"}},
      {"weights = \"\"\n", {"c.toml:1", "weights", "missing"}},
      {"no-weights = \"yes\"\n", {"c.toml:1", "no-weights", "neither true nor false"}},
      {"rate = \n", {"c.toml:1"}},
  };
  for (const Case& bad : cases) {
    const std::string path = folder.File("c.toml", bad.text);
    Settings settings;
    ExpectWords(FailureOf([&] { (void)ReadSettingsFile(path, settings, Nothing); }), bad.words);
  }
  Settings settings;
  ExpectWords(FailureOf([&] { (void)ReadSettingsFile(folder / "gone.toml", settings, Nothing); }),
              {"gone.toml", "No such file"});
  ExpectWords(FailureOf([&] { (void)ReadSettingsFile(folder / ".", settings, Nothing); }), {"a folder"});
}

TEST(SettingsFile, NothingLongerOrDeeperThanSettingsIsRead) {
  const TemporaryFolder folder;
  const auto fault = [](const std::string& path) {
    Settings settings;
    return FailureOf([&] { (void)ReadSettingsFile(path, settings, Nothing); });
  };
  std::string parts = "a";
  for (int i = 0; i < 60000; i++) parts += ".a";
  for (const std::string& text :
       {parts + " = 1\n", "[" + parts + "]\n", "rate = [{" + parts + " = 1}]\n",
        "rate = " + std::string(60000, '['), "x = '''\n'\"''' # \"\ny = \"\\\"\" # '\n" + parts + " = 1\n"}) {
    ExpectWords(fault(folder.File("deep.toml", text)), {"deep.toml", "more lists, tables and parts of keys"});
  }
  ExpectWords(fault("/dev/zero"), {"/dev/zero", "more than 1048576 bytes"});
  ExpectWords(fault(folder.File("long.toml", std::string((1 << 20) + 1, '\n'))),
              {"long.toml", "1048577 bytes"});
  // What is only written about takes no stack: a comment, a path.
  const std::string dots(50000, '.');
  const std::string fine = "# " + dots + "[[[\nweights = \"" + dots + "\" # \"" + dots + "\nrate = 5\n";
  Settings settings;
  (void)ReadSettingsFile(folder.File("fine.toml", fine), settings, Nothing);
  EXPECT_EQ(settings.rate, 5);
}

TEST(SettingsFile, DamagedOnesAreReadOrRefused) {
  const TemporaryFolder folder;
  const std::string intact =
      "# a car's\nrate = 6.5\nroi-x = 300\ntime-cooling = \"5s\"\nthreshold = 0.4\nfilter = "
      "\"median\"\nweights = \"w.bin\"\n";
  ReadDamaged(folder, "car.toml", intact, 3000, [](const std::string& path) {
    Settings settings;
    (void)ReadSettingsFile(path, settings, Nothing);
    EXPECT_TRUE(settings.rate == 0 || settings.rate >= kLowestRate) << settings.rate;
  });
}

}  // namespace
}  // namespace stopngo::test
