// history_tally.cpp: what a history gate with some network would have let through.
#include "train/history_tally.h"

#include <algorithm>
#include <cstddef>

#include "classify.h"
#include "host/common/text.h"
#include "host/gates/history.h"

namespace stopngo {
namespace {

std::string ShareOf(std::size_t part, std::size_t whole) {
  const auto divisor = static_cast<double>(std::max<std::size_t>(1, whole));
  return Print("%.1f %% of %zu", 100 * static_cast<double>(part) / divisor, whole);
}

}  // namespace

HistoryTally TallyHistory(const Module& module, const Network& network, double threshold,
                          const HistoryExamples& examples) {
  auto* const score = module.Routine<decltype(Classify_Feature_)>("Classify_Feature_");
  HistoryTally tally;
  for (std::size_t i = 0; i < examples.Count(); ++i) {
    const float* const quantities = examples.quantities.data() + i * kHistoryInputs;
    const bool open = score(quantities, network.numbers.data(), static_cast<DATA_32>(network.inputs),
                            static_cast<DATA_32>(network.hiddens)) >= threshold;
    const bool right = examples.right[i] != 0;
    ++(right ? tally.right : tally.others);
    if (open) ++(right ? tally.right_open : tally.others_open);
  }
  return tally;
}

std::string HistorySentence(const HistoryTally& tally) {
  return "open in " + ShareOf(tally.right_open, tally.right) +
         " moments in which an alarm is right, and in " + ShareOf(tally.others_open, tally.others) +
         " others";
}

nlohmann::ordered_json HistoryJson(const HistoryTally& tally) {
  return {{"right", tally.right},
          {"right_open", tally.right_open},
          {"others", tally.others},
          {"others_open", tally.others_open}};
}

}  // namespace stopngo
