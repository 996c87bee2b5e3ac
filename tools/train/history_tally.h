// history_tally.h: what a history gate with some network would have let through.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/module/module.h"
#include "host/settings/weights_file.h"
#include "train/history_examples.h"

namespace stopngo {

struct HistoryTally {
  std::size_t right = 0;       ///< moments in which an alarm would be right
  std::size_t right_open = 0;  ///< of them, those with the gate open
  std::size_t others = 0;
  std::size_t others_open = 0;
};

/// Scored by the module's own routine, as the gate does it; closed below the threshold.
HistoryTally TallyHistory(const Module& module, const Network& network, double threshold,
                          const HistoryExamples& examples);

/// "open in 91.2 % of 4120 moments in which an alarm is right, and in 5.3 % of 88001 others".
std::string HistorySentence(const HistoryTally& tally);
/// The four counts, by their names.
nlohmann::ordered_json HistoryJson(const HistoryTally& tally);

}  // namespace stopngo
