// avx2_perceptron.cpp: conversion and scoring with lanes of eight.
#include <immintrin.h>

#include <algorithm>
#include <cstddef>

#include "activation.h"
#include "forms.h"
#include "target.h"

// The fused step of the output sum is this processor's own: one rounding, as everywhere. The hidden sums
// keep multiplication and addition apart, and the compiler is told not to fuse them.
STOPNGO_TARGET_BEGIN("avx2,fma")

namespace avx2 {
namespace {

using Lanes = __m256;

constexpr int kLanes = 8;

[[gnu::always_inline]] inline Lanes LoadLanes(const REAL_32* From) { return _mm256_loadu_ps(From); }
[[gnu::always_inline]] inline void StoreLanes(real_32* To, Lanes v) { _mm256_storeu_ps(To, v); }

[[gnu::always_inline]] inline void ConvertEight(const INTE_08* Input, real_32* Output) {
  const __m128i Bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(Input));
  const __m256 Value = _mm256_cvtepi32_ps(_mm256_cvtepi8_epi32(Bytes));
  _mm256_storeu_ps(Output, _mm256_mul_ps(Value, _mm256_set1_ps(0.0078125F)));
}

/// Products of four inputs with the weights of two nodes, the second one four rows further on. A broadcast
/// costs a load alone, and blends run on ports where the shuffles of AddFour cannot.
[[gnu::always_inline]] inline __m256 Products(__m128 Feature, const REAL_32* Weight, std::size_t Inputs) {
  return _mm256_mul_ps(_mm256_set_m128(Feature, Feature), _mm256_loadu2_m128(Weight + 4 * Inputs, Weight));
}

/// Adds the products of four inputs to eight nodes, in the order of the inputs: products are rounded the
/// same before a transposition as after it.
[[gnu::always_inline]] inline __m256 AddFour(__m256 Nodes, __m128 Feature, const REAL_32* Weight,
                                             std::size_t Inputs) {
  const __m256 a = Products(Feature, Weight, Inputs);
  const __m256 b = Products(Feature, Weight + Inputs, Inputs);
  const __m256 c = Products(Feature, Weight + 2 * Inputs, Inputs);
  const __m256 d = Products(Feature, Weight + 3 * Inputs, Inputs);
  const __m256 ab01 = _mm256_unpacklo_ps(a, b);
  const __m256 ab23 = _mm256_unpackhi_ps(a, b);
  const __m256 cd01 = _mm256_unpacklo_ps(c, d);
  const __m256 cd23 = _mm256_unpackhi_ps(c, d);
  Nodes = _mm256_add_ps(Nodes, _mm256_shuffle_ps(ab01, cd01, 0x44));
  Nodes = _mm256_add_ps(Nodes, _mm256_shuffle_ps(ab01, cd01, 0xEE));
  Nodes = _mm256_add_ps(Nodes, _mm256_shuffle_ps(ab23, cd23, 0x44));
  return _mm256_add_ps(Nodes, _mm256_shuffle_ps(ab23, cd23, 0xEE));
}

/// The same for one input.
[[gnu::always_inline]] inline __m256 AddOne(__m256 Nodes, REAL_32 Feature, const REAL_32* Weight,
                                            std::size_t Inputs) {
  const __m256 Weights =
      _mm256_setr_ps(Weight[0], Weight[Inputs], Weight[2 * Inputs], Weight[3 * Inputs], Weight[4 * Inputs],
                     Weight[5 * Inputs], Weight[6 * Inputs], Weight[7 * Inputs]);
  return _mm256_add_ps(Nodes, _mm256_mul_ps(_mm256_set1_ps(Feature), Weights));
}

real_32 FusedStep(real_32 A, real_32 B, real_32 C) {
  return _mm_cvtss_f32(_mm_fmadd_ss(_mm_set_ss(A), _mm_set_ss(B), _mm_set_ss(C)));
}

#include "perceptron.inc"

}  // namespace

void Convert(const INTE_08* Input, real_32* Output, DATA_32 Length) {
  if (!ConvertVectors(Input, Output, Length)) generic::Convert(Input, Output, Length);
}

real_32 Score(const REAL_32* Feature, const REAL_32* Weight, DATA_32 Inputs, DATA_32 Hiddens) {
  if (Hiddens >= 2 * kLanes) return ScoreWith<2>(Feature, Weight, Inputs, Hiddens);
  if (Hiddens >= kLanes) return ScoreWith<1>(Feature, Weight, Inputs, Hiddens);
  return generic::Score(Feature, Weight, Inputs, Hiddens);
}

}  // namespace avx2

STOPNGO_TARGET_END
