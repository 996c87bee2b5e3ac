// source_options.h: the options of every subcommand that reads frames.
#pragma once

#include "host/settings.h"
#include "video/frame_source.h"

namespace CLI {
class App;
}

namespace stopngo {

/// Adds INPUT, --format, --original, --raw and --raw-fps.
void AddSourceOptions(CLI::App& app, SourceOptions& options);

/// The options with what the settings say of the frames: their size and rate.
SourceOptions ForSettings(SourceOptions options, const Settings& settings);

}  // namespace stopngo
