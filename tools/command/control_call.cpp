// control_call.cpp: settings as the C that sets a device so.
#include "command/control_call.h"

#include <array>
#include <cstdint>

#include "host/common/text.h"
#include "host/settings/setting_table.h"

namespace stopngo {
namespace {

constexpr std::array kCodeNames{"END",
                                "SET_CLASSIFY_PATH",
                                "LOAD_CLASSIFY",
                                "SET_TIME_BEEPING",
                                "SET_TIME_COOLING",
                                "SET_TIME_LEAVING",
                                "SET_CLASSIFIY_THRESHOLD",
                                "INPUT_WIDTH",
                                "INPUT_HEIGHT",
                                "ROI_X",
                                "ROI_Y",
                                "ROI_WIDTH",
                                "ROI_HEIGHT",
                                "SET_SCALE",
                                "SET_FRAME_SKIP",
                                "SET_GAP_OP",
                                "SET_FILTER",
                                "SET_LOG",
                                "SET_BLOCK_SIZE",
                                "SET_FEATURES_COUNT",
                                "SET_HIDDENS_COUNT",
                                "UPDATE_PARAMS",
                                "SET_EVENT_CALLBACK",
                                "DEBUG_FB",
                                "LCD_WIDTH",
                                "LCD_HEIGHT",
                                "SET_ORIGINAL_SIZE",
                                "SET_EVENT_CALLBACK_ARGS"};
static_assert(kCodeNames.size() == VEL_CTRL_STOPNGO_MAX);

// As C has it: what is neither letter, digit nor harmless sign as three octal digits.
std::string CString(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    const bool plain = c >= ' ' && c <= '~' && c != '"' && c != '\\' && c != '?';
    quoted +=
        plain ? std::string(1, c) : Print("\\%03o", static_cast<unsigned>(static_cast<unsigned char>(c)));
  }
  return quoted + '"';
}

// With a point: a list of unnamed arguments takes a double for a double alone.
std::string DoubleText(double number) {
  const std::string text = PlainText(number);
  return text.find('.') == std::string::npos ? text + ".0" : text;
}

/// What follows a code; empty where the code is not sent.
struct ValueWriter {
  const Settings& settings;
  const FrameFormat& frames;
  VEL_CTRL_STOPNGO code;

  std::string operator()(Internal) const {
    if (code == VEL_CTRL_STOPNGO_UPDATE_PARAMS) return "&unused";
    if (code == VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK) return "changed";
    if (code == VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS) return "argument";
    return settings.weights.empty() ? "" : "&loaded";
  }
  std::string operator()(int Settings::*field) const { return std::to_string(settings.*field); }
  std::string operator()(std::optional<int> Settings::*field) const {
    return std::to_string((settings.*field).value_or(frames.width));
  }
  std::string operator()(double Settings::*field) const { return DoubleText(settings.*field); }
  std::string operator()(const RateField&) const { return {}; }
  std::string operator()(FrameCount Settings::*field) const {
    return std::to_string((settings.*field).Frames(frames.fps));
  }
  std::string operator()(std::string Settings::*) const {
    const bool path = code == VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH && !settings.weights.empty();
    return path ? CString(settings.weights) : std::string();
  }
  std::string operator()(bool Settings::*) const { return {}; }
  std::string operator()(const Choice& choice) const { return std::to_string(settings.*choice.field); }
  std::string operator()(const SecondsField&) const { return {}; }
  std::string operator()(const NameSet&) const { return {}; }
};

}  // namespace

std::vector<std::string> ControlCall(const Settings& settings, const FrameFormat& frames) {
  std::vector<std::string> lines{
      "/* The frames to be handed over, and how many a second: the times below count them. */",
      Print("#define STOPNGO_FRAME_WIDTH %d", frames.width),
      Print("#define STOPNGO_FRAME_HEIGHT %d", frames.height),
      "#define STOPNGO_FRAMES_A_SECOND " + DoubleText(frames.fps),
      "",
      "/* Gives a detector that was opened its settings. Returns 0 unless the weights could not be read. */",
      "/* clang-format off */",
      "static int set_up(const VEL_STOPNGO_OPERATION* operations, void* context,",
      "                  VEL_STIOPNGO_EVENT_CALLBACK changed, void* argument)",
      "{",
      "  int unused = 0;",
      settings.weights.empty() ? "  int loaded = 0;" : "  int loaded = -1;",
      "  const int applied = operations->control(context,"};
  lines.reserve(lines.size() + SettingTable().size() + 4);
  for (const Setting& setting : SettingTable()) {
    if (setting.code == VEL_CTRL_STOPNGO_END) continue;
    const std::string value = std::visit(ValueWriter{settings, frames, setting.code}, setting.field);
    if (value.empty()) continue;
    lines.push_back(Print("      VEL_CTRL_STOPNGO_%s, %s,", kCodeNames.at(setting.code), value.c_str()));
  }
  if (settings.gates != 0) {
    lines.insert(
        lines.begin(),
        {"/* Without the gates: they are no settings of the module, but the host library's. */", ""});
  }
  lines.insert(lines.end(), {"      VEL_CTRL_STOPNGO_END);", "  return applied == 0 ? loaded : -1;", "}",
                             "/* clang-format on */"});
  return lines;
}

}  // namespace stopngo
