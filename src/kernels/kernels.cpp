// kernels.cpp: the one place that chooses which form of the kernels runs.
#include "kernels.h"

const KernelTable& Kernels() { return kGenericKernels; }
