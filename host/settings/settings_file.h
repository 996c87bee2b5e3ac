// settings_file.h: settings in a TOML file, under the names that they have in the table of settings.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/settings/settings.h"

namespace stopngo {

/// Takes what the file says of all that is not settled otherwise, and gives back the names that it took. Paths
/// in the file start at the file. Throws Failure naming file, line and key when the file is unreadable,
/// malformed, or has a key or a value that is not known.
std::set<std::string> ReadSettingsFile(const std::string& path, Settings& settings,
                                       const std::function<bool(const std::string& name)>& settled);

/// A setting's text as a value of TOML.
std::string TomlValue(std::string_view text);

/// The settings as a file has them, a line each; paths so that they hold in every folder.
std::vector<std::string> SettingsLines(const Settings& settings);

}  // namespace stopngo
