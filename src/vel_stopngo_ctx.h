// vel_stopngo_ctx.h: the context record, everything that one detector is.
//
// Private to the module and to the tools that look inside a running detector; a host sees an opaque
// block of bytes. Order, types and size are fixed: hosts of every version allocate 11,920 bytes, so
// whatever has to be remembered beyond these fields is kept elsewhere (the size of an analysis buffer
// lies beside the buffer, see analysis_buffer.h).
#pragma once

#include <cstddef>

#include "bitclip.h"
#include "penclip.h"
#include "vel_stopngo.h"

/// Capacities of the record's arrays. The first four follow from the default geometry: 12 × 20 blocks
/// of two components, 4 × 5 cells of four directions, two frames' features.
inline constexpr DATA_32 kPathCapacity = 128;
inline constexpr DATA_32 kMotionCapacity = 480;
inline constexpr DATA_32 kChunkCapacity = 80;
inline constexpr DATA_32 kFeatureCapacity = 160;
/// (160 + 2) × 16 + 1 = 2593 numbers for the default network, rounded up to the next hundred.
inline constexpr DATA_32 kWeightCapacity = 2600;

struct VEL_STOPNGO_CTX {
  name_08 classify_path[kPathCapacity];  ///< weights file, NUL-terminated

  VEL_STIOPNGO_EVENT_CALLBACK event_callback;
  void* callback_param;
  char* debug_fb;           ///< host's framebuffer, 4 bytes a pixel, or null
  DATA_32 debug_fb_width;   ///< pixels; the stride is 4 × this
  DATA_32 debug_fb_height;  ///< pixels; 0: the host vouches for the height

  DATA_32 EndYInput, EndXInput;  ///< rows and columns of a working-size frame
  DATA_32 ROI_X, ROI_Y;          ///< top-left corner of the region, working-size coordinates
  DATA_32 EndY, EndX;            ///< rows and columns of the region and of an analysis buffer
  DATA_32 NumY, NumX;            ///< block grid (derived)
  DATA_32 SumY, SumX;            ///< cell grid (derived)
  DATA_32 BlockSize;             ///< pixels
  DATA_32 Features;              ///< of one frame
  DATA_32 Hiddens;
  DATA_32 Features_2;  ///< perceptron inputs (derived)

  integer Toggle;   ///< not used; keeps its place in the record
  integer Flag;     ///< decision: 0, 1 or 2
  integer FlagOld;  ///< decision last reported

  real_32 Classifiy;    ///< score threshold
  INTE_32 TimeBeeping;  ///< frames
  INTE_32 TimeCooling;  ///< frames
  INTE_32 TimeLeaving;  ///< counter value to be exceeded
  INTE_32 Scale;        ///< tenths
  INTE_32 FrameSkip;    ///< frames still to pass
  INTE_32 GapOp;
  INTE_32 Filter;  ///< 0 none, 1 median, 2 Gaussian
  INTE_32 Log;

  data_08* FrameOld;  ///< previous frame's analysis buffer, module-owned
  data_08* FrameNew;  ///< current frame's analysis buffer, module-owned
  data_08* FrameTmp;  ///< spare, released by close when set
  real_32* FeatureOld;
  real_32* FeatureNew;

  inte_08 Motion[kMotionCapacity];
  inte_08 MotionChunk[kChunkCapacity];
  real_32 Feature[kFeatureCapacity];
  real_32 Weight[kWeightCapacity];
  inte_32 AlarmCounter[2];  ///< [0] alarm counter, [1] hold timer: frames since the last alarm
  integer originalSize;     ///< width of the frames that the host writes
};

static_assert(sizeof(VEL_STOPNGO_CTX) == 11920, "ctxsize is part of the binary interface");
static_assert(offsetof(VEL_STOPNGO_CTX, event_callback) == 128);
static_assert(offsetof(VEL_STOPNGO_CTX, EndYInput) == 160);
static_assert(offsetof(VEL_STOPNGO_CTX, Classifiy) == 228);
static_assert(offsetof(VEL_STOPNGO_CTX, FrameOld) == 264);
static_assert(offsetof(VEL_STOPNGO_CTX, Motion) == 304);
static_assert(offsetof(VEL_STOPNGO_CTX, Weight) == 1504);
static_assert(offsetof(VEL_STOPNGO_CTX, AlarmCounter) == 11904);
