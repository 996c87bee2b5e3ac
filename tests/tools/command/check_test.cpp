// check_test.cpp: stopngo check: what it finds, how it ends, and what it emits.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "program.h"
#include "support/failure_text.h"

namespace stopngo::test {
namespace {

TEST(CheckCommand, EndsByTheWorstThatItFinds) {
  const CommandResult sound = Stopngo("check --no-weights");
  EXPECT_EQ(sound.exit_code, 0) << sound.err;
  EXPECT_EQ(sound.out + sound.err, "");

  const std::string warned = "check --no-weights --roi-width 225";
  const CommandResult warning = Stopngo(warned);
  EXPECT_EQ(warning.exit_code, 0) << warning.err;
  ExpectWords(warning.out, {"warning: part-blocks: a region of 225 x 140"});
  EXPECT_EQ(Stopngo(warned + " --strict").exit_code, 1);

  const CommandResult error = Stopngo("check --no-weights --roi-x 700 --json");
  EXPECT_EQ(error.exit_code, 2);
  const auto finding = nlohmann::json::parse(error.out.substr(0, error.out.find('\n')));
  EXPECT_EQ(finding["code"], "outside-frame");
  EXPECT_EQ(finding["setting"], "roi-x");
  EXPECT_EQ(Stopngo("check gone.mp4 --no-weights").exit_code, 1);
}

TEST(CheckCommand, TellsWhereSettingsComeFrom) {
  const TemporaryFolder folder;
  const std::string config = folder.File("car.toml", "rate = 5\nroi-x = 300\n");
  const CommandResult told = Stopngo("check --no-weights --print --rate 8 --config " + config);
  ExpectWords(told.out, {"\nrate              8                        option\n",
                         "\nroi-x             300                      file\n",
                         "\nroi-y             260                      default\n"});
}

TEST(CheckCommand, EmitsWhatSetsADeviceSo) {
  const TemporaryFolder folder;
  const std::string check =
      "check --no-weights --rate 10 --time-cooling 2s --threshold 1e-1 --filter median ";
  const CommandResult toml = Stopngo(check + "--emit toml");
  ASSERT_EQ(toml.exit_code, 0) << toml.err;
  EXPECT_EQ(Stopngo("check --emit toml --config " + folder.File("car.toml", toml.out)).out, toml.out);
  ExpectWords(Stopngo(check + "--emit c").out,
              {"VEL_CTRL_STOPNGO_SET_TIME_COOLING, 20,", "SET_CLASSIFIY_THRESHOLD, 0.1,", "SET_FILTER, 1,",
               "UPDATE_PARAMS, &unused,", "VEL_CTRL_STOPNGO_END);"});
  ExpectWords(Stopngo(check + "--gates light --emit c").out, {"Without the gates"});
  EXPECT_EQ(Stopngo("check --no-weights --roi-x 700 --emit c").out, "") << "not what cannot work";
}

}  // namespace
}  // namespace stopngo::test
