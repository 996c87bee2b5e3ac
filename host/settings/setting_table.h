// setting_table.h: the one table of settings, which drives the options, the TOML keys and the calls of
// the module's control.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/settings/settings.h"
#include "vel_stopngo.h"

namespace stopngo {

/// A setting whose values have names, in the order of their numbers from 0.
struct Choice {
  int Settings::*field;
  std::span<const char* const> names;
};

/// Frames a second: 0, or kLowestRate and above.
struct RateField {
  double Settings::*field;
};

/// Seconds, which are no number of frames.
struct SecondsField {
  double Settings::*field;
};

/// Any of some names, a bit each.
struct NameSet {
  int Settings::*field;
  std::span<const char* const> names;
  int usual;  ///< what "default" stands for
};

/// The tool's own end of a code: nothing that a user sets.
struct Internal {};

using SettingField = std::variant<Internal, int Settings::*, std::optional<int> Settings::*,
                                  double Settings::*, RateField, FrameCount Settings::*,
                                  std::string Settings::*, bool Settings::*, Choice, SecondsField, NameSet>;

struct Setting {
  const char* name;       ///< option (behind two dashes) and TOML key; empty: internal
  VEL_CTRL_STOPNGO code;  ///< VEL_CTRL_STOPNGO_END: a setting of the tools alone
  SettingField field;
  const char* help;
  bool in_sidecar = false;  ///< belongs to what a network was made for, and so beside its weights
};

/// In the order in which the codes are sent: sizes first, then the derivation that follows them, then
/// the weights, whose file is read with the derived counts.
std::span<const Setting> SettingTable();

/// The row of a name; null where there is none.
const Setting* FindSetting(std::string_view name);

/// All names, for suggestions.
std::vector<std::string> SettingNames();

/// The values that a setting takes, in words, such as "a whole number".
std::string RangeOf(const Setting& setting);

/// The words that it takes; none where its values are no words.
std::vector<std::string> ChoicesOf(const Setting& setting);

/// Takes a value as text. Throws std::invalid_argument with what is expected instead.
void SetFromText(Settings& settings, const Setting& setting, const std::string& text);

/// The value as SetFromText takes it; empty where nothing is set.
std::string TextOf(const Settings& settings, const Setting& setting);

}  // namespace stopngo
