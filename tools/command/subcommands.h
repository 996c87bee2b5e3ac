// subcommands.h: the subcommands of stopngo. Each adds itself to the command line and gives back what
// main() is to call when it was chosen.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace stopngo {

std::function<void()> AddRun(CLI::App& app);
std::function<void()> AddSynth(CLI::App& app);
std::function<void()> AddRender(CLI::App& app);
std::function<void()> AddTrain(CLI::App& app);
std::function<void()> AddEval(CLI::App& app);
std::function<void()> AddTune(CLI::App& app);
std::function<void()> AddWeights(CLI::App& app);

}  // namespace stopngo
