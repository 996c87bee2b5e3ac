// kernels.cpp: the one place that chooses which form of the kernels runs.
#include "kernels.h"

#include "forms.h"
#if defined(__aarch64__)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

namespace {

/// From the plain forms up: a processor that runs a table runs those before it too.
constexpr KernelTable kTables[] = {
    STOPNGO_TABLE(generic),
#if defined(__x86_64__)
    STOPNGO_TABLE(sse41),
    STOPNGO_TABLE(avx2),
    STOPNGO_TABLE(avx512vnni),
#elif defined(__aarch64__)
    STOPNGO_TABLE(neon),
    STOPNGO_TABLE(neon_dotprod),
#endif
};

/// How many of them this processor runs.
std::size_t CountTables() {
#if defined(__x86_64__)
  // LCOV_EXCL_BR_START: one processor takes one way; Dispatch.OffersTheFormsOfThisProcessor holds it to that.
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("sse4.1")) return 1;
  if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma")) return 2;
  const bool Vnni = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                    __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vnni");
  return Vnni ? 4 : 3;
  // LCOV_EXCL_BR_STOP
#elif defined(__aarch64__)
  return (getauxval(AT_HWCAP) & HWCAP_ASIMDDP) != 0 ? 3 : 2;
#else
  return 1;
#endif
}

}  // namespace

/// A constructor of another module that comes before the one below finds the plain forms.
const KernelTable* KernelsInForce = kTables;

std::span<const KernelTable> AvailableKernels() { return std::span(kTables).first(CountTables()); }

void ForceKernels(const KernelTable* Table) {
  KernelsInForce = Table != nullptr ? Table : &AvailableKernels().back();
}

/// At load time, so that no call has to ask whether the choice has been made.
[[gnu::constructor]] static void ChooseKernels() { ForceKernels(nullptr); }
