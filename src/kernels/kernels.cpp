// kernels.cpp: the one place that chooses which form of the kernels runs.
#include "kernels.h"

#include "forms.h"
#if defined(__aarch64__)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

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
    .mark_rows = generic::MarkRows,
    .exchange_rows = generic::ExchangeRows,
};

#if defined(__x86_64__)
constexpr KernelTable kSse41 = {
    .name = "sse41",
    .block_match = sse41::MatchBlocks,
    .histogram = sse41::SumDirections,
    .convert = sse41::Convert,
    .score = sse41::Score,
    .resample = sse41::Resample,
    .median_in_place = sse41::MedianInPlace,
    .gaussian_in_place = sse41::GaussianInPlace,
    .median_separate = sse41::MedianSeparate,
    .mark_rows = sse41::MarkRows,
    .exchange_rows = sse41::ExchangeRows,
};

constexpr KernelTable kAvx2 = {
    .name = "avx2",
    .block_match = avx2::MatchBlocks,
    .histogram = avx2::SumDirections,
    .convert = avx2::Convert,
    .score = avx2::Score,
    .resample = avx2::Resample,
    .median_in_place = avx2::MedianInPlace,
    .gaussian_in_place = avx2::GaussianInPlace,
    .median_separate = avx2::MedianSeparate,
    .mark_rows = avx2::MarkRows,
    .exchange_rows = avx2::ExchangeRows,
};

constexpr KernelTable kAvx512Vnni = {
    .name = "avx512vnni",
    .block_match = avx512vnni::MatchBlocks,
    .histogram = avx2::SumDirections,
    .convert = avx2::Convert,
    .score = avx2::Score,
    .resample = avx2::Resample,
    .median_in_place = avx2::MedianInPlace,
    .gaussian_in_place = avx2::GaussianInPlace,
    .median_separate = avx2::MedianSeparate,
    .mark_rows = avx2::MarkRows,
    .exchange_rows = avx2::ExchangeRows,
};

/// From the plain forms up: a processor that runs a table runs those before it too.
constexpr const KernelTable* kTables[] = {&kGeneric, &kSse41, &kAvx2, &kAvx512Vnni};

std::size_t CountTables() {
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("sse4.1")) return 1;
  if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma")) return 2;
  const bool Vnni = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                    __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vnni");
  return Vnni ? 4 : 3;
}
#elif defined(__aarch64__)
constexpr KernelTable kNeon = {
    .name = "neon",
    .block_match = neon::MatchBlocks,
    .histogram = neon::SumDirections,
    .convert = neon::Convert,
    .score = neon::Score,
    .resample = neon::Resample,
    .median_in_place = neon::MedianInPlace,
    .gaussian_in_place = neon::GaussianInPlace,
    .median_separate = neon::MedianSeparate,
    .mark_rows = neon::MarkRows,
    .exchange_rows = neon::ExchangeRows,
};

constexpr KernelTable kNeonDotprod = {
    .name = "neon_dotprod",
    .block_match = neon_dotprod::MatchBlocks,
    .histogram = neon::SumDirections,
    .convert = neon::Convert,
    .score = neon::Score,
    .resample = neon::Resample,
    .median_in_place = neon::MedianInPlace,
    .gaussian_in_place = neon::GaussianInPlace,
    .median_separate = neon::MedianSeparate,
    .mark_rows = neon::MarkRows,
    .exchange_rows = neon::ExchangeRows,
};

constexpr const KernelTable* kTables[] = {&kGeneric, &kNeon, &kNeonDotprod};

std::size_t CountTables() { return (getauxval(AT_HWCAP) & HWCAP_ASIMDDP) != 0 ? 3 : 2; }
#else
constexpr const KernelTable* kTables[] = {&kGeneric};

std::size_t CountTables() { return 1; }
#endif

}  // namespace

/// A constructor of another module that comes before the one below finds the plain forms.
const KernelTable* KernelsInForce = &kGeneric;

std::span<const KernelTable* const> AvailableKernels() { return std::span(kTables).first(CountTables()); }

void ForceKernels(const KernelTable* Table) {
  KernelsInForce = Table != nullptr ? Table : AvailableKernels().back();
}

/// At load time, so that no call has to ask whether the choice has been made.
[[gnu::constructor]] static void ChooseKernels() { ForceKernels(nullptr); }
