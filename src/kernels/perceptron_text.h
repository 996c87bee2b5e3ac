// perceptron_text.h: conversion and scoring, for whatever lanes are in scope.
//
// Not a header of its own: the file of an instruction set includes it once, amid its namespace and target,
// after these are known there:
//     Lanes, kLanes                              a vector of floats, one a hidden node
//     LoadLanes, StoreLanes
//     AddFour(Nodes, Feature, Weight, Inputs)    adds the products of four inputs, in their order
//     AddOne(Nodes, Feature, Weight, Inputs)     the same for one input
//     FusedStep(A, B, C)                         A × B + C, rounded once
//     ConvertEight(Input, Output)

/// Whether the call was served; if not, there are fewer than eight values.
bool ConvertVectors(const INTE_08* Input, real_32* Output, DATA_32 Length) {
  constexpr DATA_32 kRun = 8;
  if (Length < kRun) return false;
  const std::size_t Last = Length - kRun;
  std::size_t k = 0;
  for (; k + 3 * kRun < Last; k += 4 * kRun) {
#pragma GCC unroll 4
    for (std::size_t i = 0; i < 4 * kRun; i += kRun) ConvertEight(Input + k + i, Output + k + i);
  }
  for (; k < Last; k += kRun) ConvertEight(Input + k, Output + k);
  ConvertEight(Input + Last, Output + Last);
  return true;
}

/// The sums of Vectors × kLanes nodes. Several vectors are chains of additions that run in each other's shade.
template <int Vectors>
void SumNodes(const REAL_32* Feature, const REAL_32* Weight, std::size_t Inputs, const REAL_32* Bias,
              real_32* Out) {
  Lanes Nodes[Vectors];
#pragma GCC unroll 4
  for (int v = 0; v < Vectors; ++v) Nodes[v] = LoadLanes(Bias + v * kLanes);
  std::size_t i = 0;
  for (; i + 4 <= Inputs; i += 4) {
    const __m128 Four = _mm_loadu_ps(Feature + i);
#pragma GCC unroll 4
    for (int v = 0; v < Vectors; ++v)
      Nodes[v] = AddFour(Nodes[v], Four, Weight + v * kLanes * Inputs + i, Inputs);
  }
  for (; i < Inputs; ++i) {
#pragma GCC unroll 4
    for (int v = 0; v < Vectors; ++v)
      Nodes[v] = AddOne(Nodes[v], Feature[i], Weight + v * kLanes * Inputs + i, Inputs);
  }
#pragma GCC unroll 4
  for (int v = 0; v < Vectors; ++v) StoreLanes(Out + v * kLanes, Nodes[v]);
}

/// The score of a network with at least Vectors × kLanes hidden nodes: the last nodes overlap the ones
/// before them, and what has been added is passed over.
template <int Vectors>
real_32 ScoreWith(const REAL_32* Feature, const REAL_32* Weight, std::size_t Inputs, std::size_t Hiddens) {
  constexpr std::size_t kNodes = Vectors * kLanes;
  const REAL_32* Bias = Weight + Inputs * Hiddens;
  const REAL_32* WeightHO = Bias + Hiddens;
  real_32 Output = WeightHO[Hiddens];
  real_32 Nodes[kNodes];
  for (std::size_t Index = 0; Index < Hiddens;) {
    const std::size_t First = std::min(Index, Hiddens - kNodes);
    SumNodes<Vectors>(Feature, Weight + First * Inputs, Inputs, Bias + First, Nodes);
    for (; Index < First + kNodes; ++Index) {
      Output = FusedStep(WeightHO[Index], Activate(Nodes[Index - First]), Output);
    }
  }
  return Activate(Output);
}
