// classify.cpp: the weights file, and the perceptron's exported routines.
#include "classify.h"

#include <bit>
#include <cstdio>

#include "kernels/kernels.h"
#include "penclip.h"
#include "vel_stopngo.h"
#include "vel_stopngo_ctx.h"

static_assert(std::endian::native == std::endian::little, "the weights file is read as it lies in memory");

extern "C" {

integer Classify_Load_(NAME_08* FileName, real_32* Weight, DATA_32 Inputs, DATA_32 Hiddens) {
  const std::uint64_t Length = NetworkLength(Inputs, Hiddens);
  if (FileName == nullptr || Weight == nullptr || Length > kWeightCapacity) return -1;
  std::FILE* File = std::fopen(FileName, "rb");
  if (File == nullptr) return -1;
  const integer Success = std::fread(Weight, sizeof(real_32), Length, File) == Length ? 0 : -1;
  std::fclose(File);
  return Success;
}

void Classify_Conversion_(const INTE_08* Input, real_32* Output, DATA_32 Length) {
  if (Input == nullptr || Output == nullptr) return;
  Kernels().Convert(Input, Output, Length);
}

real_32 Classify_Feature_(const REAL_32* Feature, const REAL_32* Weight, DATA_32 Inputs, DATA_32 Hiddens) {
  if (Feature == nullptr || Weight == nullptr) return 0;
  return Kernels().Score(Feature, Weight, Inputs, Hiddens);
}

}  // extern "C"
