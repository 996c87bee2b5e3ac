// clip_folder.h: the folder that clips are kept in: their names, and how much of them stays.
#pragma once

#include <cstdint>
#include <string>

#include "live/alarm.h"

namespace stopngo {

struct ClipBounds {
  std::uint64_t max_bytes = 0;  ///< of all clips; 0: no bound
  double max_age_s = 0;         ///< 0: no bound
};

/// A path without its ending that neither a clip nor its JSON has: "DIR/20261125T123456.789Z-INPUT", with "-2" and so on
/// where it is taken. current: one that is going to be.
std::string FreeClipPath(const std::string& folder, const Alarm& alarm, const std::string& current = {});

/// Removes the oldest clips, each with its JSON, until growing more bytes keep within the bounds. Only what has a clip's
/// name and its JSON beside it is one: nothing else is touched. Throws Failure when the folder cannot be read.
void MakeRoom(const std::string& folder, const ClipBounds& bounds, std::uint64_t growing);

}  // namespace stopngo
