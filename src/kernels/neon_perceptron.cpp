// neon_perceptron.cpp: conversion of features and the perceptron's score with NEON.
#include <arm_neon.h>

#include <cstddef>

#include "activation.h"
#include "forms.h"
#include "fused.h"
#include "v128.h"

namespace neon {

void Convert(const INTE_08* Input, real_32* Output, DATA_32 Length) {
  DATA_32 k = 0;
  for (; Length - k >= 16; k += 16) {
    const int8x16_t Bytes = vld1q_s8(Input + k);
    const int16x8_t Low = vmovl_s8(vget_low_s8(Bytes));
    const int16x8_t High = vmovl_high_s8(Bytes);
    // A number with 7 fraction bits: the division by 128 is part of the conversion.
    vst1q_f32(Output + k, vcvtq_n_f32_s32(vmovl_s16(vget_low_s16(Low)), 7));
    vst1q_f32(Output + k + 4, vcvtq_n_f32_s32(vmovl_high_s16(Low), 7));
    vst1q_f32(Output + k + 8, vcvtq_n_f32_s32(vmovl_s16(vget_low_s16(High)), 7));
    vst1q_f32(Output + k + 12, vcvtq_n_f32_s32(vmovl_high_s16(High), 7));
  }
  generic::Convert(Input + k, Output + k, Length - k);
}

namespace {

/// Lanes are hidden nodes, so that each sum adds in the order of the inputs.
constexpr std::size_t kNodes = 4;

/// Adds the products of four inputs to four nodes' sums; Row0 to Row3 are the nodes' weights of them.
STOPNGO_INLINE float32x4_t AddProducts(float32x4_t Sum, float32x4_t Row0, float32x4_t Row1, float32x4_t Row2,
                                       float32x4_t Row3, float32x4_t Feature) {
  const float64x2_t a = vreinterpretq_f64_f32(vtrn1q_f32(Row0, Row1));
  const float64x2_t b = vreinterpretq_f64_f32(vtrn2q_f32(Row0, Row1));
  const float64x2_t c = vreinterpretq_f64_f32(vtrn1q_f32(Row2, Row3));
  const float64x2_t d = vreinterpretq_f64_f32(vtrn2q_f32(Row2, Row3));
  // Products are rounded before they are added.
  Sum = vaddq_f32(Sum, vmulq_laneq_f32(vreinterpretq_f32_f64(vtrn1q_f64(a, c)), Feature, 0));
  Sum = vaddq_f32(Sum, vmulq_laneq_f32(vreinterpretq_f32_f64(vtrn1q_f64(b, d)), Feature, 1));
  Sum = vaddq_f32(Sum, vmulq_laneq_f32(vreinterpretq_f32_f64(vtrn2q_f64(a, c)), Feature, 2));
  return vaddq_f32(Sum, vmulq_laneq_f32(vreinterpretq_f32_f64(vtrn2q_f64(b, d)), Feature, 3));
}

/// Inputs of a round: a node's weights of them are one load.
constexpr std::size_t kRound = 16;

/// Adds the products of a round to four nodes' sums; Row is the first node's weights.
STOPNGO_INLINE float32x4_t AddRound(float32x4_t Sum, const REAL_32* Row, std::size_t Inputs,
                                    const float32x4x4_t& Feature) {
  const float32x4x4_t a = vld1q_f32_x4(Row);
  const float32x4x4_t b = vld1q_f32_x4(Row + Inputs);
  const float32x4x4_t c = vld1q_f32_x4(Row + 2 * Inputs);
  const float32x4x4_t d = vld1q_f32_x4(Row + 3 * Inputs);
  Sum = AddProducts(Sum, a.val[0], b.val[0], c.val[0], d.val[0], Feature.val[0]);
  Sum = AddProducts(Sum, a.val[1], b.val[1], c.val[1], d.val[1], Feature.val[1]);
  Sum = AddProducts(Sum, a.val[2], b.val[2], c.val[2], d.val[2], Feature.val[2]);
  return AddProducts(Sum, a.val[3], b.val[3], c.val[3], d.val[3], Feature.val[3]);
}

/// Four nodes' sums before activation; Weight is the first node's.
STOPNGO_INLINE float32x4_t SumNodes(float32x4_t Sum, const REAL_32* Feature, const REAL_32* Weight,
                                    std::size_t Inputs) {
  std::size_t i = 0;
  for (; Inputs - i >= kRound; i += kRound) {
    Sum = AddRound(Sum, Weight + i, Inputs, vld1q_f32_x4(Feature + i));
  }
  for (; i < Inputs; ++i) {
    const REAL_32* Row = Weight + i;
    const real_32 Column[kNodes] = {Row[0], Row[Inputs], Row[2 * Inputs], Row[3 * Inputs]};
    Sum = vaddq_f32(Sum, vmulq_n_f32(vld1q_f32(Column), Feature[i]));
  }
  return Sum;
}

/// Activate() of four sums. The conversion saturates, and takes what is not a number as 0, by itself.
STOPNGO_INLINE float32x4_t ActivateNodes(float32x4_t Sum) {
  const uint32x4_t Sign = vandq_u32(vreinterpretq_u32_f32(Sum), vdupq_n_u32(0x80000000U));
  const uint32x4_t Steps = vcvtq_u32_f32(vmulq_n_f32(vabsq_f32(Sum), kActivationSteps));
  const uint32x4_t Place = vminq_u32(Steps, vdupq_n_u32(kActivationEntries - 1));
  const data_32* Table = Activation.data();
  uint32x4_t Entry = vld1q_dup_u32(Table + vgetq_lane_u32(Place, 0));
  Entry = vld1q_lane_u32(Table + vgetq_lane_u32(Place, 1), Entry, 1);
  Entry = vld1q_lane_u32(Table + vgetq_lane_u32(Place, 2), Entry, 2);
  Entry = vld1q_lane_u32(Table + vgetq_lane_u32(Place, 3), Entry, 3);
  return vaddq_f32(vreinterpretq_f32_u32(vorrq_u32(Entry, Sign)), vdupq_n_f32(0.5F));
}

}  // namespace

real_32 Score(const REAL_32* Feature, const REAL_32* Weight, DATA_32 Inputs, DATA_32 Hiddens) {
  const REAL_32* WeightIHBias = Weight + std::size_t{Inputs} * Hiddens;
  const REAL_32* WeightHO = WeightIHBias + Hiddens;
  real_32 Output = WeightHO[Hiddens];
  std::size_t Index = 0;
  for (; Hiddens - Index >= kNodes; Index += kNodes) {
    const float32x4_t Sum =
        SumNodes(vld1q_f32(WeightIHBias + Index), Feature, Weight + Index * Inputs, Inputs);
    real_32 Node[kNodes];
    vst1q_f32(Node, ActivateNodes(Sum));
    for (std::size_t n = 0; n < kNodes; ++n) Output = FusedMultiplyAdd(WeightHO[Index + n], Node[n], Output);
  }
  for (; Index < Hiddens; ++Index) {
    real_32 Node = WeightIHBias[Index];
    for (std::size_t i = 0; i < Inputs; ++i) Node += Feature[i] * Weight[Index * Inputs + i];
    Output = FusedMultiplyAdd(WeightHO[Index], Activate(Node), Output);
  }
  return Activate(Output);
}

}  // namespace neon
