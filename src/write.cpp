// write.cpp: one frame's way through the detector.
#include <cstdio>
#include <cstring>
#include <utility>

#include "analysis_buffer.h"
#include "decide.h"
#include "filter.h"
#include "geometry.h"
#include "match.h"
#include "mirror.h"
#include "refusal.h"
#include "vel_stopngo.h"
#include "vel_stopngo_ctx.h"

namespace {

/// Which buffers exist: none before a first frame, FrameOld before a second one, then both.
enum class Stage { kFirst, kSecond, kLater };

Stage StageOf(const VEL_STOPNGO_CTX& ctx) {
  if (ctx.FrameOld == nullptr) return Stage::kFirst;
  return ctx.FrameNew == nullptr ? Stage::kSecond : Stage::kLater;
}

/// What the host hands over. Only the widths 1920 and 1280 mean full resolution, and only where the
/// working size has another width.
FrameInput InputOf(const VEL_STOPNGO_CTX& ctx, const FrameGeometry& Geometry) {
  const auto Ratio = static_cast<DATA_32>(Geometry.scale);
  const auto Width = static_cast<DATA_32>(ctx.originalSize);
  if (Width == ctx.EndXInput || (Width != 1920 && Width != 1280)) {
    return {false, ctx.EndYInput, ctx.EndXInput, CroppingSource(Geometry.Source_ROI, Ratio)};
  }
  const DATA_32 Height = Width == 1920 ? 1080 : 720;
  return {true, Height, Width, OriginalCroppingSource(Width, Geometry.Source_ROI, ctx.EndY, ctx.EndX, Ratio)};
}

/// A buffer that is still to be allocated has the size that it will have.
BufferSizes SizesOf(const VEL_STOPNGO_CTX& ctx, Stage Now, DATA_32 sz) {
  if (Now == Stage::kFirst) return {sz, 0};
  const std::uint64_t Old = AnalysisBufferSize(ctx.FrameOld);
  if (Now == Stage::kSecond) return {sz, Old};
  // The buffers change places: the older picture is overwritten.
  return {Old, AnalysisBufferSize(ctx.FrameNew)};
}

/// The part that both geometry lines share: zoom, region, source rectangle.
void LogGeometry(const char* Start, const FrameGeometry& Geometry, const VEL_STOPNGO_CTX& ctx) {
  const DATA_32* Source = Geometry.Source_ROI;
  std::printf("%sscale:%d, w:%d,h:%d roi X:%d,Y:%d,W:%d,H:%d s-roi X:%d,Y:%d,W:%d,H:%d", Start,
              Geometry.scale, Geometry.width_ratio, Geometry.height_ratio, static_cast<int>(ctx.ROI_X),
              static_cast<int>(ctx.ROI_Y), static_cast<int>(ctx.EndX), static_cast<int>(ctx.EndY),
              static_cast<int>(Source[1]), static_cast<int>(Source[0]),
              static_cast<int>(Source[3] - Source[1]), static_cast<int>(Source[2] - Source[0]));
}

void LogFirstFrame(const FrameGeometry& Geometry, const VEL_STOPNGO_CTX& ctx) {
  if (ctx.Log <= 0) return;
  std::printf("[Stop&Go] org:%d, ", ctx.originalSize);
  LogGeometry("", Geometry, ctx);
  std::printf("\n");
}

void LogSecondFrame(const FrameGeometry& Geometry, const VEL_STOPNGO_CTX& ctx) {
  if (ctx.Log <= 0) return;
  LogGeometry("[Stop&Go] ", Geometry, ctx);
  std::printf(", ctx->Filter : %d\n", ctx.Filter);
}

/// Makes FrameNew (FrameOld on a first frame) the buffer to fill; false when the heap has none, with the
/// context as it was.
bool PrepareBuffer(VEL_STOPNGO_CTX& ctx, Stage Now, DATA_32 sz) {
  if (Now == Stage::kLater) {
    std::swap(ctx.FrameOld, ctx.FrameNew);
    return true;
  }
  data_08*& Buffer = Now == Stage::kFirst ? ctx.FrameOld : ctx.FrameNew;
  Buffer = AllocateAnalysisBuffer(sz);
  return Buffer != nullptr;
}

void CropAndFilter(const VEL_STOPNGO_CTX& ctx, const FrameGeometry& Geometry, const FrameInput& Input,
                   const DATA_08* data, data_08* Out) {
  const auto Ratio = static_cast<DATA_32>(Geometry.scale);
  if (Input.Original) {
    Image_Original_Cropping_(Input.EndX, Input.EndY, data, Out, Geometry.Source_ROI, Geometry.ROI, Ratio, 0,
                             Input.EndY, Input.EndX);
  } else {
    Image_Cropping_(data, Out, Geometry.Source_ROI, Geometry.ROI, Ratio, 0, Input.EndY, Input.EndX);
  }
  const DATA_32 Width = Geometry.ROI[3] - Geometry.ROI[1];
  const DATA_32 Height = Geometry.ROI[2] - Geometry.ROI[0];
  RunFilter(ctx.Filter, Out, Width, Height);
}

/// Scores the motion between the two buffers together with that of the frame analysed before.
real_32 Analyse(VEL_STOPNGO_CTX& ctx) {
  MatchMotion(ctx.FrameOld, ctx.FrameNew, ctx.Motion, ctx.BlockSize, ctx.NumY, ctx.NumX, ctx.EndX);
  Block_Local_Histogram_(ctx.Motion, ctx.MotionChunk, ctx.SumY, ctx.SumX);
  // The halves overlap when Features has grown since the derivation.
  std::memmove(ctx.FeatureOld, ctx.FeatureNew, ctx.Features * sizeof(real_32));
  Classify_Conversion_(ctx.MotionChunk, ctx.FeatureNew, ctx.Features);
  return Classify_Feature_(ctx.Feature, ctx.Weight, ctx.Features_2, ctx.Hiddens);
}

off_t Refuse(const VEL_STOPNGO_CTX& ctx, const char* Reason) {
  if (ctx.Log > 0) std::printf("[Stop&Go] frame refused: %s\n", Reason);
  return -1;
}

}  // namespace

extern "C" off_t vel_stopngo_write(void* ctx_t, void* data, off_t /*size*/) {
  if (ctx_t == nullptr) return -1;
  auto& ctx = *static_cast<VEL_STOPNGO_CTX*>(ctx_t);
  if (data == nullptr) return Refuse(ctx, "no frame data");

  const FrameGeometry Geometry = DeriveFrameGeometry(ctx);
  const FrameInput Input = InputOf(ctx, Geometry);
  const Stage Now = StageOf(ctx);
  const bool Analysed = !InHold(ctx);
  const char* Reason =
      RefusalReason(ctx, Input, SizesOf(ctx, Now, Geometry.sz), Now == Stage::kFirst, Analysed);
  if (Reason != nullptr) return Refuse(ctx, Reason);
  if (!PrepareBuffer(ctx, Now, Geometry.sz)) return Refuse(ctx, "no memory for an analysis buffer");

  const auto* Frame = static_cast<const DATA_08*>(data);
  if (Now == Stage::kFirst) {
    LogFirstFrame(Geometry, ctx);
    CropAndFilter(ctx, Geometry, Input, Frame, ctx.FrameOld);
    return 0;
  }
  if (Now == Stage::kSecond) LogSecondFrame(Geometry, ctx);
  CropAndFilter(ctx, Geometry, Input, Frame, ctx.FrameNew);
  Mirror(ctx);
  Decide(ctx, Analysed ? Analyse(ctx) : 0);
  return 0;
}
