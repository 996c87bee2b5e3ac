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

const KernelTable& Plain() {
  static const KernelTable plain = [] {
    KernelTable table = STOPNGO_TABLE(plain_at_o2);
    table.Name = AvailableKernels().front().Name;
    return table;
  }();
  return plain;
}

}  // namespace

const std::vector<const KernelTable*>& Levels() {
  static const std::vector<const KernelTable*> levels = [] {
    std::vector<const KernelTable*> tables = {&Plain()};
    for (const KernelTable& faster : AvailableKernels().subspan(1)) tables.push_back(&faster);
    return tables;
  }();
  return levels;
}

}  // namespace bench
