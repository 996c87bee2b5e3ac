// properties_test.cpp: settings as properties, and what is said of those that cannot work.
#include "host/gstreamer/properties.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/settings/setting_table.h"
#include "pipe.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

std::string TextOfProperty(GstElement* element, const std::string& name) {
  const GParamSpec* const spec = g_object_class_find_property(G_OBJECT_GET_CLASS(element), name.c_str());
  if (spec == nullptr) return "none";
  GValue value = G_VALUE_INIT;
  g_value_init(&value, spec->value_type);
  g_object_get_property(G_OBJECT(element), name.c_str(), &value);
  if (G_IS_PARAM_SPEC_ENUM(spec)) {
    const int number = g_value_get_enum(&value);
    g_value_unset(&value);
    return g_enum_get_value(G_PARAM_SPEC_ENUM(spec)->enum_class, number)->value_nick;
  }
  GValue text = G_VALUE_INIT;
  g_value_init(&text, G_TYPE_STRING);
  g_value_transform(&value, &text);
  std::string result = g_value_get_string(&text) == nullptr ? "" : g_value_get_string(&text);
  g_value_unset(&text);
  g_value_unset(&value);
  return result;
}

TEST(ElementProperties, EverySettingIsOneWithItsDefaultAndItsHelp) {
  const LoneElement element(Properties{{"weights", ""}});
  const Settings defaults;
  for (const Setting& setting : SettingTable()) {
    if (*setting.name == '\0' || gst::IsOfNoUse(setting.name)) continue;
    GParamSpec* const spec = g_object_class_find_property(G_OBJECT_GET_CLASS(element.Get()), setting.name);
    ASSERT_NE(spec, nullptr) << setting.name;
    EXPECT_STREQ(g_param_spec_get_blurb(spec), setting.help);
    const std::string text = TextOfProperty(element.Get(), setting.name);
    if (G_IS_PARAM_SPEC_DOUBLE(spec)) {
      EXPECT_EQ(std::stod(text), std::stod(TextOf(defaults, setting))) << setting.name;
    } else if (G_IS_PARAM_SPEC_BOOLEAN(spec)) {
      EXPECT_EQ(text == "TRUE", TextOf(defaults, setting) == "true") << setting.name;
    } else {
      EXPECT_EQ(text, TextOf(defaults, setting)) << setting.name;
    }
  }
  EXPECT_EQ(TextOfProperty(element.Get(), "debug-fb"), "none");
}

TEST(ElementProperties, ValuesComeBackAsTheyWereGiven) {
  LoneElement element;
  for (const auto& [name, value, expected] : {std::tuple{"roi-x", "17", "17"},
                                              {"threshold", "0.75", "0.750000"},
                                              {"filter", "gaussian", "gaussian"},
                                              {"time-beeping", "1.5s", "1.5s"},
                                              {"gates", "light,once", "light,once"},
                                              {"original-size", "800", "800"},
                                              {"no-weights", "true", "TRUE"},
                                              {"config", "car.toml", "car.toml"},
                                              {"draw", "region", "region"}}) {
    element.Set(name, value);
    EXPECT_EQ(TextOfProperty(element.Get(), name), expected) << name;
  }
}

/// What is on the bus when the element starts; empty: it did.
std::string FailureAtStart(const Properties& properties) {
  LoneElement element(properties);
  const bool started = gst_element_set_state(element.Get(), GST_STATE_PAUSED) != GST_STATE_CHANGE_FAILURE;
  std::string sentences = element.TakeSentences(GST_MESSAGE_ERROR);
  EXPECT_EQ(started, sentences.empty()) << sentences;
  return sentences;
}

TEST(ElementProperties, WhatCannotWorkIsSaidBeforeTheFirstFrame) {
  const TemporaryFolder folder;
  EXPECT_EQ(FailureAtStart({}), "");
  ExpectWords(FailureAtStart({{"time-beeping", "soon"}, {"gates", "garden"}}),
              {"gates: 'garden'", "time-beeping: 'soon'"});
  ExpectWords(FailureAtStart({{"rate", "0.001"}}), {"rate: '0.001'"});
  ExpectWords(FailureAtStart({{"config", folder / "none.toml"}}), {"none.toml", "No such file"});
  ExpectWords(FailureAtStart({{"config", folder.File("bad.toml", "threshold = 0.5\nroi = 3\n")}}),
              {"bad.toml:2: roi"});
  ExpectWords(FailureAtStart({{"no-weights", "true"}}), {"weights and no-weights"});
  setenv("STOPNGO_MODULE", "/nowhere.so", 1);
  ExpectWords(FailureAtStart({}), {"/nowhere.so"});
  setenv("STOPNGO_MODULE", STOPNGO_MODULE_FILE, 1);
}

/// What is said of a set-up when frames are announced, errors first.
std::pair<std::string, std::string> SaidOfFrames(const Properties& properties,
                                                 const PipeFormat& format = {}) {
  LoneElement element(properties);
  gst_element_set_state(element.Get(), GST_STATE_PLAYING);
  GstPad* const pad = gst_element_get_static_pad(element.Get(), "sink");
  GstCaps* const caps = gst_caps_from_string(format.Caps().c_str());
  gst_pad_send_event(pad, gst_event_new_stream_start("test"));
  const bool taken = gst_pad_send_event(pad, gst_event_new_caps(caps)) != 0;
  gst_caps_unref(caps);
  gst_object_unref(pad);
  std::pair said{element.TakeSentences(GST_MESSAGE_ERROR), element.TakeSentences(GST_MESSAGE_WARNING)};
  EXPECT_EQ(taken, said.first.empty()) << said.first;
  return said;
}

TEST(ElementProperties, FindingsOfTheCheckAreOnTheBus) {
  EXPECT_EQ(SaidOfFrames({}), (std::pair<std::string, std::string>()));
  ExpectWords(SaidOfFrames({{"roi-x", "700"}}).first, {"outside-frame", "220 x 140", "property roi-x"});
  ExpectWords(SaidOfFrames({{"weights", "/nowhere.bin"}}).first, {"/nowhere.bin"});
  ExpectWords(SaidOfFrames({{"original-size", "1920"}}).first, {"1920 x 1080", "800 x 480"});
  ExpectWords(SaidOfFrames({{"time-cooling", "60s"}}).second,
              {"long-cooling", "60 s", "property time-cooling"});
  PipeFormat slow;
  slow.fps_n = 2;
  ExpectWords(SaidOfFrames({}, slow).second, {"rate:", "6 frames a second", "the input gives 2"});
  PipeFormat large;
  large.width = 20000;
  ExpectWords(SaidOfFrames({}, large).first, {"20000 x 480"});
}

TEST(ElementProperties, AFileGivesWayToPropertiesAndGoesBeforeWhatBelongsToWeights) {
  const TemporaryFolder folder;
  const std::string config =
      folder.File("car.toml", "time-cooling = \"40s\"\ntime-beeping = \"50s\"\nlcd-width = 3\n");
  const auto [errors, warnings] = SaidOfFrames({{"config", config}, {"time-beeping", "1s"}});
  EXPECT_EQ(errors, "");
  ExpectWords(warnings, {"long-cooling", "40 s", config + ": lcd-width: is the command's"});
  EXPECT_EQ(warnings.find("beeping-cooling"), std::string::npos) << warnings;
}

}  // namespace
}  // namespace stopngo::test
