// vel_stopngo.cpp: the operations record and the life of a context: opened, derived anew, closed.
#include "vel_stopngo.h"

#include <cstdlib>
#include <cstring>

#include "analysis_buffer.h"
#include "vel_stopngo_ctx.h"

namespace {

/// The target's division: a quotient by 0 is 0.
DATA_32 Quotient(DATA_32 Dividend, DATA_32 Divisor) { return Divisor == 0 ? 0 : Dividend / Divisor; }

}  // namespace

extern "C" {

const VEL_STOPNGO_OPERATION vel_stopngo = {
    .name = "vel_stopngo",
    .ctxsize = sizeof(VEL_STOPNGO_CTX),
    .maxctrl = VEL_CTRL_STOPNGO_MAX,
    .open = vel_stopngo_open,
    .close = vel_stopngo_close,
    .read = vel_stopngo_read,
    .write = vel_stopngo_write,
    .control = vel_stopngo_control,
};

int vel_stopngo_get_ctx_size(void) { return sizeof(VEL_STOPNGO_CTX); }

int vel_stopngo_open(void* ctx_t) {
  if (ctx_t == nullptr) return -1;
  std::memset(ctx_t, 0, sizeof(VEL_STOPNGO_CTX));
  auto* ctx = static_cast<VEL_STOPNGO_CTX*>(ctx_t);
  ctx->TimeBeeping = 25;
  ctx->TimeCooling = 20;
  ctx->TimeLeaving = 3;
  ctx->GapOp = 2;
  ctx->BlockSize = 10;
  ctx->Features = 80;
  ctx->Hiddens = 16;
  ctx->Classifiy = 0.4F;
  ctx->EndYInput = 480;
  ctx->EndXInput = 800;
  ctx->EndY = 140;
  ctx->EndX = 220;
  ctx->originalSize = 800;
  return vel_stopngo_update_params(ctx);
}

int vel_stopngo_update_params(VEL_STOPNGO_CTX* ctx) {
  if (ctx == nullptr) return -1;
  // One block of margin on every side, where the search may reach.
  ctx->NumY = Quotient(ctx->EndY, ctx->BlockSize) - 2;
  ctx->NumX = Quotient(ctx->EndX, ctx->BlockSize) - 2;
  ctx->SumY = ctx->NumY / 3;
  ctx->SumX = ctx->NumX / 4;
  ctx->Features_2 = 2 * ctx->Features;
  ctx->FeatureOld = ctx->Feature;
  // As an address: with a count out of capacity it lies outside Feature, and write refuses to use it.
  const std::uintptr_t NewHalf =
      reinterpret_cast<std::uintptr_t>(ctx->Feature) + std::uintptr_t{ctx->Features} * sizeof(real_32);
  ctx->FeatureNew = reinterpret_cast<real_32*>(NewHalf);  // NOLINT(performance-no-int-to-ptr): see above
  ctx->AlarmCounter[0] = 0;
  ctx->AlarmCounter[1] = ctx->TimeCooling;
  ReleaseAnalysisBuffer(ctx->FrameOld);
  ReleaseAnalysisBuffer(ctx->FrameNew);
  return 0;
}

int vel_stopngo_close(void* ctx_t) {
  if (ctx_t == nullptr) return -1;
  auto* ctx = static_cast<VEL_STOPNGO_CTX*>(ctx_t);
  ReleaseAnalysisBuffer(ctx->FrameOld);
  ReleaseAnalysisBuffer(ctx->FrameNew);
  // Never an analysis buffer of ours: whoever set it took it from malloc.
  std::free(ctx->FrameTmp);
  ctx->FrameTmp = nullptr;
  return 0;
}

off_t vel_stopngo_read(void* ctx_t, void* /*data*/, off_t /*size*/) { return ctx_t == nullptr ? -1 : 0; }

}  // extern "C"
