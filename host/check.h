// check.h: everything that speaks against a set-up, before it is run or put on a device.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/common/luma.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "host/settings/sidecar.h"

namespace stopngo {

enum class Severity {
  kWarning,  ///< it runs, and is probably not what is wanted
  kError,    ///< it cannot work
};

struct Finding {
  std::string code;  ///< stays the same from version to version, such as "threshold-never"
  Severity severity = Severity::kWarning;
  std::string setting;   ///< the setting to look at first
  std::string sentence;  ///< what is wrong, with the values
  std::string remedy;    ///< what to do
};

/// What a detector is going to run with.
struct Setup {
  Settings settings;
  std::optional<Sidecar> sidecar;      ///< of the weights
  std::optional<FrameFormat> frames;   ///< as they are handed over; unset: as the settings announce them
  std::optional<std::int64_t> length;  ///< how many of them there are, where that is known
  bool frame_counts_given = false;     ///< the user gave the rate, and beeping or cooling in frames
};

/// The frames that are handed over, or those that the settings announce.
FrameFormat FramesOf(const Setup& setup);

/// A finding in one line: code, sentence, remedy.
std::string SentenceOf(const Finding& finding);

/// The findings in the order of the table in docs/check.md, errors first. The module itself is asked whether it
/// takes a frame: two blank ones are handed to a detector of their own.
std::vector<Finding> CheckSetup(const Module& module, const Setup& setup);

}  // namespace stopngo
