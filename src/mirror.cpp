// mirror.cpp: the analysis buffer shown in the host's debug framebuffer.
#include "mirror.h"

#include <algorithm>

namespace {

constexpr DATA_32 kBytesPerPixel = 4;

DATA_32 MirrorRows(const VEL_STOPNGO_CTX& ctx) {
  return ctx.debug_fb_height > 0 ? std::min(ctx.EndY, ctx.debug_fb_height) : ctx.EndY;
}

DATA_32 MirrorColumns(const VEL_STOPNGO_CTX& ctx) { return std::min(ctx.EndX, ctx.debug_fb_width); }

}  // namespace

std::uint64_t MirrorExtent(const VEL_STOPNGO_CTX& ctx) {
  const std::uint64_t Rows = MirrorRows(ctx);
  const std::uint64_t Columns = MirrorColumns(ctx);
  if (ctx.debug_fb == nullptr || Rows == 0 || Columns == 0) return 0;
  return (Rows - 1) * ctx.EndX + Columns;
}

void Mirror(const VEL_STOPNGO_CTX& ctx) {
  // Rows without columns may be four thousand million.
  if (MirrorExtent(ctx) == 0) return;
  auto* Framebuffer = reinterpret_cast<data_08*>(ctx.debug_fb);
  for (DATA_32 y = 0; y < MirrorRows(ctx); ++y) {
    const DATA_08* Row = ctx.FrameNew + std::size_t{y} * ctx.EndX;
    for (DATA_32 x = 0; x < MirrorColumns(ctx); ++x) {
      // Framebuffer offsets are 32 bits wide.
      const DATA_32 Offset = (y * ctx.debug_fb_width + x) * kBytesPerPixel;
      data_08* Pixel = Framebuffer + Offset;
      Pixel[0] = Pixel[1] = Pixel[2] = Row[x];
      Pixel[3] = 255;
    }
  }
}
