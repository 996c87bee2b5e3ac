// decide.cpp: alarm counter, hold timer, frame skip, and the report to the host.
#include "decide.h"

#include <cstdio>

#include "saturate.h"

namespace {

/// A frame of the hold: beeping first, then cooling.
void Hold(VEL_STOPNGO_CTX& ctx) {
  ctx.Flag = ctx.AlarmCounter[1] < ctx.TimeBeeping ? 1 : 2;
  ++ctx.AlarmCounter[1];
}

void CountHighScore(VEL_STOPNGO_CTX& ctx) {
  ctx.AlarmCounter[0] = WrappingAdd(ctx.AlarmCounter[0], 1);
  const bool Alarm = ctx.AlarmCounter[0] > ctx.TimeLeaving;
  ctx.Flag = Alarm ? 1 : 0;
  if (Alarm) {
    ctx.AlarmCounter[0] = 0;
    ctx.AlarmCounter[1] = 0;
  }
}

/// Returns the gap between threshold and score in whole tenths.
int CountLowScore(VEL_STOPNGO_CTX& ctx, real_32 Score) {
  const inte_32 target = SaturatingInt(ctx.Classifiy * 10.0F);
  const inte_32 result = SaturatingInt(Score * 10.0F);
  const int gap = WrappingSubtract(target, result);
  // A score just below the threshold neither raises nor lowers the counter.
  if (gap > 1) ctx.AlarmCounter[0] = WrappingSubtract(ctx.AlarmCounter[0], ctx.GapOp);
  if (ctx.AlarmCounter[0] < 0) ctx.AlarmCounter[0] = 0;
  ctx.Flag = 0;
  return gap;
}

void SkipFrame(VEL_STOPNGO_CTX& ctx) {
  --ctx.FrameSkip;
  ctx.Flag = 0;
  ctx.FlagOld = 0;
  ctx.AlarmCounter[0] = 0;
}

/// The callback may change or close the context; after it only FlagOld is touched.
void Report(VEL_STOPNGO_CTX& ctx) {
  const integer Flag = ctx.Flag;
  if (Flag == ctx.FlagOld) return;
  if (ctx.event_callback != nullptr) ctx.event_callback(ctx.callback_param, Flag);
  ctx.FlagOld = Flag;
}

}  // namespace

void Decide(VEL_STOPNGO_CTX& ctx, real_32 Score) {
  int gap = 0;
  if (InHold(ctx)) {
    Score = 0;
    Hold(ctx);
  } else if (Score > ctx.Classifiy) {
    CountHighScore(ctx);
  } else {
    gap = CountLowScore(ctx, Score);
  }
  if (ctx.FrameSkip > 0) SkipFrame(ctx);
  if (ctx.Log > 0) {
    std::printf(
        "[Stop&Go] result:%f, AlarmCounter0:%d, AlarmCounter1:%d, flagOld:%d, flag:%d, gap:%d, skip:%d, "
        "GapOp:%d\n",
        static_cast<double>(Score), ctx.AlarmCounter[0], ctx.AlarmCounter[1], ctx.FlagOld, ctx.Flag, gap,
        ctx.FrameSkip, ctx.GapOp);
  }
  Report(ctx);
}
