// control_call.h: settings as the C that sets a device so.
#pragma once

#include <string>
#include <vector>

#include "host/common/luma.h"
#include "host/settings/settings.h"

namespace stopngo {

/// Lines of C: the frames that are handed over, and a function that gives a detector these settings by one control
/// call.
std::vector<std::string> ControlCall(const Settings& settings, const FrameFormat& frames);

}  // namespace stopngo
