// kernels.cpp: the one place that chooses which form of the kernels runs.
#include "kernels.h"

#include <atomic>

#include "forms.h"

namespace {

constexpr KernelTable kGeneric = {
    .name = "generic",
    .block_match = generic::MatchBlocks,
    .histogram = generic::SumDirections,
    .convert = generic::Convert,
    .score = generic::Score,
    .resample = generic::Resample,
    .median_in_place = generic::MedianInPlace,
    .gaussian_in_place = generic::GaussianInPlace,
    .median_separate = generic::MedianSeparate,
    .mark_row = generic::MarkRow,
    .exchange_rows = generic::ExchangeRows,
};

constexpr const KernelTable* kTables[] = {&kGeneric};

std::atomic<const KernelTable*> InForce = nullptr;

}  // namespace

std::span<const KernelTable* const> AvailableKernels() { return kTables; }

const KernelTable& Kernels() {
  const KernelTable* Table = InForce.load(std::memory_order_relaxed);
  // Threads that come here at the same time choose the same.
  if (Table == nullptr) InForce.store(Table = AvailableKernels().back(), std::memory_order_relaxed);
  return *Table;
}

void ForceKernels(const KernelTable* Table) { InForce.store(Table, std::memory_order_relaxed); }
