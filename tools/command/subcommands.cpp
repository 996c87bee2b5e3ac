// subcommands.cpp: the table of all subcommands.
#include <array>

#include "command/subcommand.h"

namespace stopngo {
namespace {

constexpr std::array kSubcommands{
    SubcommandEntry{"run", "Run the detector over a recording or a camera", DeclareRun},
    SubcommandEntry{
        "synth", "Render a street scene: a camera waits behind a vehicle, which drives away; with its labels",
        DeclareSynth},
    SubcommandEntry{"render", "Draw what the module sees on a recording", DeclareRender},
    SubcommandEntry{"train", "Make a weights file from labelled clips", DeclareTrain},
    SubcommandEntry{"eval", "Judge a detector on labelled clips", DeclareEval},
    SubcommandEntry{"features", "Keep the module's histograms of labelled clips, or tell what they look like",
                    DeclareFeatures},
    SubcommandEntry{"tune", "Search the decision's settings on labelled clips", DeclareTune},
    SubcommandEntry{"check", "Say everything that speaks against a set-up", DeclareCheck},
    SubcommandEntry{"weights", "Show and check a weights file", DeclareWeights},
    SubcommandEntry{"completion", "Print what a shell is to be told to complete this command",
                    DeclareCompletion},
    SubcommandEntry{"manual", "Print a man page, for the build", DeclareManual},
};

}  // namespace

std::span<const SubcommandEntry> Subcommands() { return kSubcommands; }

}  // namespace stopngo
