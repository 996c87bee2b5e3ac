// sse41_perceptron.cpp: conversion and scoring with lanes of four.
#include <smmintrin.h>

#include <algorithm>
#include <cstddef>

#include "activation.h"
#include "forms.h"
#include "fused.h"
#include "target.h"

STOPNGO_TARGET_BEGIN("sse4.1")

namespace sse41 {
namespace {

using Lanes = __m128;

constexpr int kLanes = 4;

[[gnu::always_inline]] inline Lanes LoadLanes(const REAL_32* From) { return _mm_loadu_ps(From); }
[[gnu::always_inline]] inline void StoreLanes(real_32* To, Lanes v) { _mm_storeu_ps(To, v); }

[[gnu::always_inline]] inline void ConvertEight(const INTE_08* Input, real_32* Output) {
  const __m128i Bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(Input));
  const __m128 Scale = _mm_set1_ps(0.0078125F);
  const __m128 Low = _mm_cvtepi32_ps(_mm_cvtepi8_epi32(Bytes));
  const __m128 High = _mm_cvtepi32_ps(_mm_cvtepi8_epi32(_mm_srli_si128(Bytes, 4)));
  _mm_storeu_ps(Output, _mm_mul_ps(Low, Scale));
  _mm_storeu_ps(Output + 4, _mm_mul_ps(High, Scale));
}

/// Adds the products of four inputs to four nodes, in the order of the inputs: products are rounded the
/// same before a transposition as after it.
[[gnu::always_inline]] inline __m128 AddFour(__m128 Nodes, __m128 Feature, const REAL_32* Weight,
                                             std::size_t Inputs) {
  __m128 a = _mm_mul_ps(Feature, _mm_loadu_ps(Weight));
  __m128 b = _mm_mul_ps(Feature, _mm_loadu_ps(Weight + Inputs));
  __m128 c = _mm_mul_ps(Feature, _mm_loadu_ps(Weight + 2 * Inputs));
  __m128 d = _mm_mul_ps(Feature, _mm_loadu_ps(Weight + 3 * Inputs));
  _MM_TRANSPOSE4_PS(a, b, c, d);
  Nodes = _mm_add_ps(Nodes, a);
  Nodes = _mm_add_ps(Nodes, b);
  Nodes = _mm_add_ps(Nodes, c);
  return _mm_add_ps(Nodes, d);
}

/// The same for one input.
[[gnu::always_inline]] inline __m128 AddOne(__m128 Nodes, REAL_32 Feature, const REAL_32* Weight,
                                            std::size_t Inputs) {
  const __m128 Weights = _mm_setr_ps(Weight[0], Weight[Inputs], Weight[2 * Inputs], Weight[3 * Inputs]);
  return _mm_add_ps(Nodes, _mm_mul_ps(_mm_set1_ps(Feature), Weights));
}

real_32 FusedStep(real_32 A, real_32 B, real_32 C) { return FusedMultiplyAdd(A, B, C); }

#include "perceptron.inc"

}  // namespace

void Convert(const INTE_08* Input, real_32* Output, DATA_32 Length) {
  if (!ConvertVectors(Input, Output, Length)) generic::Convert(Input, Output, Length);
}

real_32 Score(const REAL_32* Feature, const REAL_32* Weight, DATA_32 Inputs, DATA_32 Hiddens) {
  if (Hiddens >= 4 * kLanes) return ScoreWith<4>(Feature, Weight, Inputs, Hiddens);
  if (Hiddens >= kLanes) return ScoreWith<1>(Feature, Weight, Inputs, Hiddens);
  return generic::Score(Feature, Weight, Inputs, Hiddens);
}

}  // namespace sse41

STOPNGO_TARGET_END
