// setting_table_test.cpp: values of settings as text, both ways.
#include "host/settings/setting_table.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "host/common/failure.h"

namespace stopngo::test {
namespace {

TEST(SettingTable, DefaultsComeBackFromTheirText) {
  const Settings defaults;
  for (const Setting& setting : SettingTable()) {
    const std::string text = TextOf(defaults, setting);
    if (text.empty()) continue;  // nothing is set
    Settings settings;
    SetFromText(settings, setting, text);
    EXPECT_EQ(TextOf(settings, setting), text) << setting.name;
  }
  EXPECT_EQ(FindSetting(""), nullptr) << "internal rows are not to be set";
  EXPECT_EQ(FindSetting("Rate"), nullptr);
}

TEST(SettingTable, ValuesAreTakenOrRefusedWhole) {
  struct Case {
    const char* name;
    const char* text;
    const char* taken;  ///< as TextOf gives it; null: refused
  };
  for (const Case& value : {Case{"roi-x", "-2147483648", "-2147483648"},
                            {"roi-x", "4294967295", "-1"},  // the same 32 bits
                            {"roi-x", "4294967296", nullptr},
                            {"roi-x", "-2147483649", nullptr},
                            {"roi-x", "1.5", nullptr},
                            {"roi-x", "", nullptr},
                            {"roi-x", " 1", nullptr},
                            {"original-size", "1920", "1920"},
                            {"original-size", "wide", nullptr},
                            {"threshold", "0.30000000000000004", "0.30000000000000004"},
                            {"threshold", "inf", nullptr},
                            {"threshold", "0.4x", nullptr},
                            {"rate", "0", "0"},
                            {"rate", "0.01", "0.01"},
                            {"rate", "0.009", nullptr},
                            {"rate", "-1", nullptr},
                            {"rate", "nan", nullptr},
                            {"time-cooling", "25", "25"},
                            {"time-cooling", "1.5s", "1.5s"},
                            {"time-cooling", "-1s", nullptr},
                            {"time-cooling", "1e9s", nullptr},
                            {"time-cooling", "s", nullptr},
                            {"time-cooling", "1.5", nullptr},
                            {"filter", "gaussian", "gaussian"},
                            {"filter", "1", "median"},
                            {"filter", "3", nullptr},
                            {"gates", "none", "none"},
                            {"gates", "default", "history"},
                            {"gates", "picture,light,light", "light,picture"},
                            {"gates", "light,", nullptr},
                            {"gates", "light,none", nullptr},
                            {"gates", "", nullptr},
                            {"light-calm", "0s", "0s"},
                            {"light-calm", "1", nullptr},
                            {"light-calm", "-1s", nullptr},
                            {"light-calm", "infs", nullptr},
                            {"speed-fails", "closed", "closed"},
                            {"weights", "w.bin", "w.bin"},
                            {"weights", "", nullptr},
                            {"no-weights", "true", "true"},
                            {"no-weights", "yes", nullptr}}) {
    const Setting* const setting = FindSetting(value.name);
    ASSERT_NE(setting, nullptr) << value.name;
    Settings settings;
    const std::string before = TextOf(settings, *setting);
    try {
      SetFromText(settings, *setting, value.text);
      ASSERT_NE(value.taken, nullptr) << value.name << " takes '" << value.text << "'";
      EXPECT_EQ(TextOf(settings, *setting), value.taken) << value.name;
    } catch (const std::invalid_argument& reason) {
      EXPECT_EQ(value.taken, nullptr) << value.name << ": " << reason.what();
      EXPECT_EQ(TextOf(settings, *setting), before) << value.name;
    }
  }
}

TEST(FrameCount, SecondsFollowTheRateAndFramesDoNot) {
  EXPECT_EQ((FrameCount{1.5, true}.Frames(25)), 38);
  EXPECT_EQ((FrameCount{0.26, true}.Frames(20)), 5);
  EXPECT_EQ((FrameCount{33, false}.Frames(20)), 33);
  EXPECT_THROW((void)(FrameCount{1e8, true}.Frames(100)), Failure);
}

}  // namespace
}  // namespace stopngo::test
