// levels.cpp: the plain forms once more, compiled for -O2 whatever the module is compiled for.
//
// Targets are ratios to plain loops at -O2: at -O3 the compiler makes vectors of some of them, of which ones
// changes with its version. The source is the module's, under another namespace.
#include "levels.h"

#define generic plain_at_o2
#include "kernels/generic.cpp"
#undef generic

namespace bench {
namespace {

constexpr KernelTable kPlain = {
    .name = "generic",
    .block_match = plain_at_o2::MatchBlocks,
    .histogram = plain_at_o2::SumDirections,
    .convert = plain_at_o2::Convert,
    .score = plain_at_o2::Score,
    .resample = plain_at_o2::Resample,
    .median_in_place = plain_at_o2::MedianInPlace,
    .gaussian_in_place = plain_at_o2::GaussianInPlace,
    .median_separate = plain_at_o2::MedianSeparate,
    .mark_rows = plain_at_o2::MarkRows,
    .exchange_rows = plain_at_o2::ExchangeRows,
};

}  // namespace

const std::vector<const KernelTable*>& Levels() {
  static const std::vector<const KernelTable*> levels = [] {
    std::vector<const KernelTable*> tables(AvailableKernels().begin(), AvailableKernels().end());
    tables.front() = &kPlain;
    return tables;
  }();
  return levels;
}

}  // namespace bench
