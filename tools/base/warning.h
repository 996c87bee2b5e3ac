// warning.h: what a user should know, though the work goes on.
#pragma once

#include <string>

namespace stopngo {

/// Says a sentence on standard error, each once however often it comes up. From any thread.
void Warn(const std::string& sentence);

/// Says it each time: what happens in a run that never ends, and is to take no memory for it.
void Report(const std::string& sentence);

}  // namespace stopngo
