// source_options.h: the options of every subcommand that reads frames.
#pragma once

#include <string>
#include <vector>

#include "base/file_register.h"
#include "host/settings/settings.h"
#include "video/damage.h"
#include "video/frame_source.h"

namespace CLI {
class App;
}

namespace stopngo {

/// Adds INPUT; or, of at least one, all there are.
void AddInput(CLI::App& app, std::string& input);
void AddInput(CLI::App& app, std::vector<std::string>& inputs);

/// Adds --format, --original, --raw and --raw-fps.
void AddSourceOptions(CLI::App& app, SourceOptions& options);

/// The option of every subcommand that reads recordings.
void AddAllowDamaged(CLI::App& app, bool& allow_damaged);

/// The options with what the settings say of the frames, their size and rate. damage: hears of what the input is;
/// outlives the source that is opened.
SourceOptions ForSettings(SourceOptions options, const Settings& settings, DamageRule& damage);

/// Enters the files that will be read as an input: a sequence's pictures and what a list names, too. what: how the user
/// is to be told of it.
void EnterInput(FileRegister& files, const std::string& input, const std::string& what = "the recording");

/// False also when a signal came; what that broke off is no failure of the input.
bool NextFrame(FrameSource& frames, LumaFrame& frame);

}  // namespace stopngo
