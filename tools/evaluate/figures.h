// figures.h: how good a detector is, as tables, sentences and JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <vector>

#include "evaluate/tally.h"

namespace stopngo {

/// Columns with their names above them, a line a result.
std::vector<std::string> FigureTable(std::span<const NamedTally> rows);
/// The figures that matter most, in one line.
std::string FigureSentence(const Tally& tally);
/// Counts and figures; what cannot be told is null.
nlohmann::ordered_json FigureJson(const Tally& tally);
/// The same as tab-separated values, under these names.
std::string FigureNames();
std::string FigureValues(const Tally& tally);

}  // namespace stopngo
