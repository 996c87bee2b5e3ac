// decide.h: from scores to the decision that the host is told.
#pragma once

#include "vel_stopngo_ctx.h"

/// Whether the hold after an alarm is running: such a frame is not analysed.
inline bool InHold(const VEL_STOPNGO_CTX& ctx) { return ctx.AlarmCounter[1] < ctx.TimeCooling; }

/// Decides one frame: counters, frame skip, log line, callback. Score is not read in a hold.
void Decide(VEL_STOPNGO_CTX& ctx, real_32 Score);
