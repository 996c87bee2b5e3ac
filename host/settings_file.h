// settings_file.h: settings in a TOML file, under the names that they have in the table of settings.
#pragma once

#include <functional>
#include <set>
#include <string>

#include "host/settings.h"

namespace stopngo {

/// Takes what the file says of all that is not settled otherwise, and gives back the names that it took. Paths
/// in the file start at the file. Throws Failure naming file, line and key when the file is unreadable,
/// malformed, or has a key or a value that is not known.
std::set<std::string> ReadSettingsFile(const std::string& path, Settings& settings,
                                       const std::function<bool(const std::string& name)>& settled);

}  // namespace stopngo
