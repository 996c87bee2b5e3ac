// refusal.cpp: whether a frame can be processed without leaving a buffer, asked of each of its steps.
#include "refusal.h"

#include "classify.h"
#include "filter.h"
#include "match.h"
#include "mirror.h"
#include "saturate.h"

namespace {

/// Bytes of an analysis buffer that crop and filter touch.
std::uint64_t CropExtent(const VEL_STOPNGO_CTX& ctx, const FrameInput& Input) {
  const std::uint64_t Whole = std::uint64_t{ctx.EndY} * ctx.EndX;
  const bool Cropped = Input.Source.Rows != nullptr;
  return Cropped || FilterRuns(ctx.Filter, ctx.EndX, ctx.EndY) ? Whole : 0;
}

/// Whether the newer frame's features lie inside the context's own array, after the older one's. As addresses:
/// the pointer may have been derived from a count out of capacity.
bool FeaturesFit(const VEL_STOPNGO_CTX& ctx) {
  if (ctx.Features == 0) return true;
  const std::uint64_t Offset =
      reinterpret_cast<std::uintptr_t>(ctx.FeatureNew) - reinterpret_cast<std::uintptr_t>(ctx.Feature);
  return SaturatingAdd(Offset, ctx.Features * sizeof(real_32)) <= sizeof ctx.Feature;
}

// Cells are derived with the blocks, twelve of which one has: where those fit, so do the cells' sums.
static_assert(kMotionCapacity / 24 * 4 <= kChunkCapacity);
// The older frame's features start the vector.
static_assert(kChunkCapacity <= kFeatureCapacity);

const char* AnalysisRefusal(const VEL_STOPNGO_CTX& ctx, const BufferSizes& Sizes) {
  const std::uint64_t Blocks = std::uint64_t{ctx.NumY} * ctx.NumX;
  if (Blocks > kMotionCapacity / 2) return "more blocks than the motion field holds";
  if (!SearchStaysInside({Sizes.Previous, Sizes.Current}, ctx.BlockSize, ctx.NumY, ctx.NumX, ctx.EndX)) {
    return "block matching would leave the analysis buffers";
  }
  if (ctx.Features > kChunkCapacity) return "more features than the histogram has entries";
  if (!FeaturesFit(ctx)) return "features do not fit the feature vector";
  if (ctx.Hiddens > 0 && ctx.Features_2 > kFeatureCapacity)
    return "more inputs than the feature vector holds";
  if (NetworkLength(ctx.Features_2, ctx.Hiddens) > kWeightCapacity) return "network larger than the weights";
  return nullptr;
}

}  // namespace

const char* RefusalReason(const VEL_STOPNGO_CTX& ctx, const FrameInput& Input, const BufferSizes& Sizes,
                          bool FirstFrame, bool Analyse) {
  const std::uint64_t Frame = std::uint64_t{Input.EndY} * Input.EndX;
  // A corner before the frame is a large number, and sums with it may wrap to a place inside.
  const bool BeforeFrame = static_cast<inte_32>(ctx.ROI_Y) < 0 || static_cast<inte_32>(ctx.ROI_X) < 0;
  if (BeforeFrame || SamplingExtent(Input.Source, ctx.EndY, ctx.EndX, Input.EndX) > Frame) {
    return "region reaches outside the frame";
  }
  if (CropExtent(ctx, Input) > Sizes.Current) return "region does not fit the analysis buffer";
  if (FirstFrame) return nullptr;
  if (MirrorExtent(ctx) > Sizes.Current) return "debug mirror reads outside the analysis buffer";
  return Analyse ? AnalysisRefusal(ctx, Sizes) : nullptr;
}
