// control_call.h: settings as the C that sets a device so.
#pragma once

#include <string>
#include <vector>

#include "host/luma.h"
#include "host/settings.h"

namespace stopngo {

/// A C function that gives a detector these settings by one control call, for frames handed over like these: its
/// lines.
std::vector<std::string> ControlCall(const Settings& settings, const FrameFormat& frames);

}  // namespace stopngo
