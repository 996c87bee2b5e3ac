// left_over.h: the names beside outputs, and what a run that was killed left under one.
#pragma once

#include <string>

namespace stopngo {

/// A name for a file that is written beside its target, of a length that every folder takes.
std::string NameBeside(const std::string& target);

/// Marks a file under such a name as that of a run that goes on: for as long as it is open, or this run lives.
void MarkInUse(int file);

/// Warns of the files under such names in the target's folder that no run has in use. They are never removed here:
/// a killed run may have left the file that it was replacing under one.
void WarnOfLeftOvers(const std::string& target);

}  // namespace stopngo
