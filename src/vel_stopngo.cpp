// vel_stopngo.cpp: the operations record and the life of a context.
#include "vel_stopngo.h"

#include <cstdlib>
#include <cstring>

#include "analysis_buffer.h"
#include "vel_stopngo_ctx.h"

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
