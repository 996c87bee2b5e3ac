// live_options.h: the options of stopngo run for inputs that do not wait, and for what is to happen at an alarm.
#pragma once

#include <string>
#include <vector>

#include "live/clip_keeper.h"
#include "live/live_input.h"
#include "video/frame_source.h"

namespace CLI {
class App;
}

namespace stopngo {

struct LiveOptions {
  bool live = false;  ///< every input is taken for live
  LiveLimits limits;
  std::string status;  ///< a file, or "-"; empty: none

  std::string on_alarm;  ///< a command; empty: none
  int on_alarm_jobs = 1;
  double on_alarm_limit_s = 30;

  ClipOptions clips;  ///< without a folder: none
};

/// size and rate go to what is asked of a camera.
void AddLiveOptions(CLI::App& app, LiveOptions& options, SourceOptions& source);

}  // namespace stopngo
