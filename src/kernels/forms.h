// forms.h: the forms of the kernels, a namespace for each instruction set; kernels.h has the contracts.
#pragma once

#include "kernels.h"

#define STOPNGO_FORM(Set, Form, Contract) \
  namespace Set {                         \
  Contract Form;                          \
  }
#define STOPNGO_FORM_OF(Set, Form, Contract) .Form = Set::Form,
/// The table of a set's forms.
#define STOPNGO_TABLE(Set) \
  { .Name = #Set, STOPNGO_KERNELS(STOPNGO_FORM_OF, Set) }

STOPNGO_KERNELS(STOPNGO_FORM, generic)

// A set with few forms of its own has the others from the set below it.
#if defined(__x86_64__)
STOPNGO_KERNELS(STOPNGO_FORM, sse41)
STOPNGO_KERNELS(STOPNGO_FORM, avx2)

namespace avx512vnni {
using namespace avx2;
BlockMatch MatchBlocks;
}  // namespace avx512vnni
#elif defined(__aarch64__)
STOPNGO_KERNELS(STOPNGO_FORM, neon)

namespace neon_dotprod {
using namespace neon;
BlockMatch MatchBlocks;
}  // namespace neon_dotprod
#endif

#undef STOPNGO_FORM
