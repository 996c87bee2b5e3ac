// setting_table.cpp: the one table of settings, which drives the options, the TOML keys and the calls of
// the module's control.
#include "host/settings/setting_table.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "host/common/text.h"
#include "host/settings/gate_kinds.h"

namespace stopngo {
namespace {

constexpr const char* kFilterNames[] = {"none", "median", "gaussian"};
constexpr const char* kFailNames[] = {"open", "closed"};

using S = Settings;
constexpr VEL_CTRL_STOPNGO kTools = VEL_CTRL_STOPNGO_END;
constexpr std::array kTable = {
    Setting{"input-width", VEL_CTRL_STOPNGO_INPUT_WIDTH, &S::input_width, "columns of a working-size frame"},
    Setting{"input-height", VEL_CTRL_STOPNGO_INPUT_HEIGHT, &S::input_height, "rows of a working-size frame"},
    Setting{
        "original-size", VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, &S::original_size,
        "width of the frames handed over (1920, 1280 or the input width); follows the frames when not given"},
    Setting{"roi-x", VEL_CTRL_STOPNGO_ROI_X, &S::roi_x, "left column of the region of interest"},
    Setting{"roi-y", VEL_CTRL_STOPNGO_ROI_Y, &S::roi_y, "top row of the region"},
    Setting{"roi-width", VEL_CTRL_STOPNGO_ROI_WIDTH, &S::roi_width, "columns of the region", true},
    Setting{"roi-height", VEL_CTRL_STOPNGO_ROI_HEIGHT, &S::roi_height, "rows of the region", true},
    Setting{"scale", VEL_CTRL_STOPNGO_SET_SCALE, &S::scale,
            "zoom into the region, in tenths: 2, 4, 5, 6, 7, 8 (with --original 2, 4, 6, 8); 0 is off", true},
    Setting{"block-size", VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, &S::block_size, "side of a motion block, pixels",
            true},
    Setting{"features", VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, &S::features, "features of one frame"},
    Setting{"hiddens", VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, &S::hiddens, "hidden nodes of the perceptron"},
    Setting{"time-beeping", VEL_CTRL_STOPNGO_SET_TIME_BEEPING, &S::time_beeping,
            "how long after an alarm the decision stays 1: frames (25) or seconds (1.5s)", true},
    Setting{"time-cooling", VEL_CTRL_STOPNGO_SET_TIME_COOLING, &S::time_cooling,
            "how long after an alarm nothing is analysed: frames or seconds", true},
    Setting{"time-leaving", VEL_CTRL_STOPNGO_SET_TIME_LEAVING, &S::time_leaving,
            "count of high scores to be exceeded for an alarm: frames or seconds", true},
    Setting{"frame-skip", VEL_CTRL_STOPNGO_SET_FRAME_SKIP, &S::frame_skip,
            "how long the decision is held at 0 from the start: frames or seconds"},
    Setting{"threshold", VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD, &S::threshold,
            "score to be exceeded, 0 to 1", true},
    Setting{"gap-op", VEL_CTRL_STOPNGO_SET_GAP_OP, &S::gap_op, "taken off the alarm count on a low score",
            true},
    Setting{"filter", VEL_CTRL_STOPNGO_SET_FILTER, Choice{&S::filter, kFilterNames},
            "smoothing of the region: none, median, gaussian, or 0 to 2", true},
    Setting{"log", VEL_CTRL_STOPNGO_SET_LOG, &S::log, "above 0: the module's own lines, on standard error"},
    Setting{"lcd-width", VEL_CTRL_STOPNGO_LCD_WIDTH, &S::lcd_width, "columns of the debug framebuffer"},
    Setting{"lcd-height", VEL_CTRL_STOPNGO_LCD_HEIGHT, &S::lcd_height, "rows of the debug framebuffer"},
    // The framebuffer itself is the tool's; the setting says where its picture goes at the end.
    Setting{"debug-fb", VEL_CTRL_STOPNGO_DEBUG_FB, &S::debug_fb,
            "PPM file that receives the debug framebuffer after the last frame"},
    // Always sent, here and once: block grid, cell grid and feature layout follow the sizes above.
    Setting{"", VEL_CTRL_STOPNGO_UPDATE_PARAMS, Internal{}, ""},
    // The tool's own callback and its argument: every decision that is shown comes through them.
    Setting{"", VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, Internal{}, ""},
    Setting{"", VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, Internal{}, ""},
    Setting{"weights", VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH, &S::weights, "weights file of the perceptron"},
    // Follows the path, and only where there is one.
    Setting{"", VEL_CTRL_STOPNGO_LOAD_CLASSIFY, Internal{}, ""},
    Setting{"no-weights", VEL_CTRL_STOPNGO_END, &S::no_weights, "run without weights: every score is 0.5"},
    Setting{"rate", VEL_CTRL_STOPNGO_END, RateField{&S::rate},
            "frames a second to hand over, the nearest ones; 0: all", true},
    // All that follows is kept from the module: gates act through the settings above.
    Setting{
        "gates", kTools, NameSet{&S::gates, kGateNames, kDefaultGates},
        "what may hold an alarm back: history, light, speed, once, picture, in any number; none; or default",
        true},
    Setting{"history-weights", kTools, &S::history_weights, "weights file of the history gate"},
    Setting{"history-threshold", kTools, &S::history_threshold, "closes history: a score below, 0 to 1",
            true},
    Setting{"light-rate", kTools, &S::light_rate, "closes light: levels a second of the region's mean"},
    Setting{"light-calm", kTools, SecondsField{&S::light_calm_s},
            "opens light: how long no such change has come"},
    Setting{"speed-file", kTools, &S::speed_file,
            "file or named pipe that is read for the own speed, a number a line"},
    Setting{"speed-above", kTools, &S::speed_above, "closes speed: own speed, in the unit of the file"},
    Setting{"speed-time", kTools, SecondsField{&S::speed_time_s}, "how long after that speed stays closed"},
    Setting{"speed-stale", kTools, SecondsField{&S::speed_stale_s},
            "for so long a speed that was told holds"},
    Setting{"speed-fails", kTools, Choice{&S::speed_fails, kFailNames},
            "what speed is without one: open, closed, or 0 to 1"},
    Setting{"once-busy", kTools, &S::once_busy,
            "sum of a frame's histogram with which the own vehicle may drive"},
    Setting{"once-busy-time", kTools, SecondsField{&S::once_busy_time_s},
            "how long it is seen before once opens"},
    Setting{"once-calm", kTools, &S::once_calm, "sum up to which it then may stand"},
    Setting{"once-calm-time", kTools, SecondsField{&S::once_calm_time_s}, "how long that is seen after it"},
    Setting{"picture-frozen", kTools, SecondsField{&S::picture_frozen_s},
            "closes picture: how long every pixel of the region is the same"},
    Setting{"picture-black", kTools, &S::picture_black, "closes picture: below this mean luma of the region"},
    Setting{"picture-lost", kTools, SecondsField{&S::picture_lost_s},
            "closes picture: more between two frames"},
};

// The module's 32-bit fields are partly signed, partly unsigned, and take any bits.
int IntegerOf(const std::string& text) {
  const std::optional<std::int64_t> number = NumberOf<std::int64_t>(text);
  if (!number || *number < std::numeric_limits<std::int32_t>::min() ||
      *number > std::numeric_limits<std::uint32_t>::max()) {
    throw std::invalid_argument(Quoted(text) + " is no whole number from -2147483648 to 4294967295");
  }
  return static_cast<int>(*number);
}

double RealOf(const std::string& text) {
  const std::optional<double> number = FiniteOf(text);
  if (!number) throw std::invalid_argument(Quoted(text) + " is no number");
  return *number;
}

double RateOf(const std::string& text) {
  const double rate = RealOf(text);
  if (rate != 0 && rate < kLowestRate) {
    throw std::invalid_argument(Quoted(text) + " is neither 0 nor " + NumberText(kLowestRate) + " or more");
  }
  return rate;
}

FrameCount FrameCountOf(const std::string& text) {
  if (!text.ends_with('s')) {
    try {
      return {static_cast<double>(IntegerOf(text)), false};
    } catch (const std::invalid_argument&) {
      throw std::invalid_argument(Quoted(text) + " is neither a number of frames (25) nor of seconds (1.5s)");
    }
  }
  const std::optional<double> seconds = NumberOf<double>(std::string_view(text).substr(0, text.size() - 1));
  // A year: beyond it the frames would not fit the module's counters at any rate worth having.
  if (!seconds || !(*seconds >= 0 && *seconds <= 366 * 86400.0)) {
    throw std::invalid_argument(Quoted(text) + " is no number of seconds");
  }
  return {*seconds, true};
}

std::string Enlisted(std::span<const char* const> names) {
  std::string list;
  for (const char* const name : names) Enlist(list, name);
  return list;
}

int ChoiceOf(const std::string& text, const Choice& choice) {
  for (std::size_t i = 0; i < choice.names.size(); ++i) {
    if (text == choice.names[i] || text == std::to_string(i)) return static_cast<int>(i);
  }
  throw std::invalid_argument(Quoted(text) + " is none of " + Enlisted(choice.names) + ", 0 to " +
                              std::to_string(choice.names.size() - 1));
}

double SecondsOf(const std::string& text) {
  const std::optional<double> seconds =
      text.ends_with('s') ? FiniteOf(std::string_view(text).substr(0, text.size() - 1)) : std::nullopt;
  if (!seconds || *seconds < 0) throw std::invalid_argument(Quoted(text) + " is no number of seconds (1.5s)");
  return *seconds;
}

int SetOf(const std::string& text, const NameSet& set) {
  if (text == "none") return 0;
  if (text == "default") return set.usual;
  int bits = 0;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find(',', start), text.size());
    const std::string name = text.substr(start, end - start);
    const auto found = std::ranges::find(set.names, name);
    if (found == set.names.end()) {
      throw std::invalid_argument(Quoted(name) + " is none of " + Enlisted(set.names) +
                                  ", nor are all together none or default");
    }
    bits |= 1 << (found - set.names.begin());
    start = end + 1;
  }
  return bits;
}

std::string SetText(int bits, const NameSet& set) {
  std::string text;
  for (std::size_t i = 0; i < set.names.size(); ++i) {
    if ((bits >> i & 1) != 0) text.append(text.empty() ? "" : ",").append(set.names[i]);
  }
  return text.empty() ? "none" : text;
}

// One overload a kind of field: how its text is read, and how it is written.
struct TextReader {
  Settings& settings;
  const std::string& text;

  void operator()(Internal) const {}
  void operator()(int Settings::*field) const { settings.*field = IntegerOf(text); }
  void operator()(std::optional<int> Settings::*field) const { settings.*field = IntegerOf(text); }
  void operator()(double Settings::*field) const { settings.*field = RealOf(text); }
  void operator()(const RateField& rate) const { settings.*rate.field = RateOf(text); }
  void operator()(FrameCount Settings::*field) const { settings.*field = FrameCountOf(text); }
  void operator()(std::string Settings::*field) const {
    if (text.empty()) throw std::invalid_argument("a path is missing");
    settings.*field = text;
  }
  void operator()(bool Settings::*field) const {
    if (text != "true" && text != "false")
      throw std::invalid_argument(Quoted(text) + " is neither true nor false");
    settings.*field = text == "true";
  }
  void operator()(const Choice& choice) const { settings.*choice.field = ChoiceOf(text, choice); }
  void operator()(const SecondsField& time) const { settings.*time.field = SecondsOf(text); }
  void operator()(const NameSet& set) const { settings.*set.field = SetOf(text, set); }
};

struct TextWriter {
  const Settings& settings;

  std::string operator()(Internal) const { return {}; }
  std::string operator()(int Settings::*field) const { return std::to_string(settings.*field); }
  std::string operator()(std::optional<int> Settings::*field) const {
    return (settings.*field).has_value() ? std::to_string(*(settings.*field)) : std::string();
  }
  std::string operator()(double Settings::*field) const { return NumberText(settings.*field); }
  std::string operator()(const RateField& rate) const { return NumberText(settings.*rate.field); }
  std::string operator()(FrameCount Settings::*field) const {
    const FrameCount& count = settings.*field;
    return NumberText(count.value) + (count.seconds ? "s" : "");
  }
  std::string operator()(std::string Settings::*field) const { return settings.*field; }
  std::string operator()(bool Settings::*field) const { return settings.*field ? "true" : "false"; }
  std::string operator()(const Choice& choice) const { return choice.names[settings.*choice.field]; }
  std::string operator()(const SecondsField& time) const { return NumberText(settings.*time.field) + "s"; }
  std::string operator()(const NameSet& set) const { return SetText(settings.*set.field, set); }
};

struct RangeWriter {
  std::string operator()(Internal) const { return {}; }
  std::string operator()(int Settings::*) const { return "a whole number"; }
  std::string operator()(std::optional<int> Settings::*) const { return "a whole number"; }
  std::string operator()(double Settings::*) const { return "a number"; }
  std::string operator()(const RateField&) const { return "0, or " + NumberText(kLowestRate) + " or more"; }
  std::string operator()(FrameCount Settings::*) const {
    return "frames (25), or seconds up to a year (1.5s)";
  }
  std::string operator()(std::string Settings::*) const { return "a path"; }
  std::string operator()(bool Settings::*) const { return "true or false"; }
  std::string operator()(const Choice& choice) const {
    return Enlisted(choice.names) + ", or 0 to " + std::to_string(choice.names.size() - 1);
  }
  std::string operator()(const SecondsField&) const { return "seconds (1.5s), 0s or more"; }
  std::string operator()(const NameSet& set) const {
    return "any of " + Enlisted(set.names) + ", with commas between; or none, or default, which is " +
           SetText(set.usual, set);
  }
};

}  // namespace

std::span<const Setting> SettingTable() { return kTable; }

const Setting* FindSetting(std::string_view name) {
  const auto* const row = std::find_if(kTable.begin(), kTable.end(), [&](const Setting& setting) {
    return !name.empty() && name == setting.name;
  });
  return row == kTable.end() ? nullptr : row;
}

std::vector<std::string> SettingNames() {
  std::vector<std::string> names;
  names.reserve(kTable.size());
  for (const Setting& setting : kTable) {
    if (*setting.name != '\0') names.emplace_back(setting.name);
  }
  return names;
}

std::string RangeOf(const Setting& setting) { return std::visit(RangeWriter{}, setting.field); }

std::vector<std::string> ChoicesOf(const Setting& setting) {
  if (const auto* const choice = std::get_if<Choice>(&setting.field)) {
    return {choice->names.begin(), choice->names.end()};
  }
  const auto* const set = std::get_if<NameSet>(&setting.field);
  if (set == nullptr) return {};
  std::vector<std::string> choices(set->names.begin(), set->names.end());
  choices.insert(choices.end(), {"none", "default"});
  return choices;
}

void SetFromText(Settings& settings, const Setting& setting, const std::string& text) {
  std::visit(TextReader{settings, text}, setting.field);
}

std::string TextOf(const Settings& settings, const Setting& setting) {
  return std::visit(TextWriter{settings}, setting.field);
}

}  // namespace stopngo
