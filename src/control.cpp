// control.cpp: the variadic code and value protocol of vel_stopngo_control.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "vel_stopngo.h"
#include "vel_stopngo_ctx.h"

namespace {

/// How the value of a code is passed and what becomes of it.
enum class Kind : data_08 {
  kWord,      ///< int, stored bit for bit in a 32-bit field
  kReal,      ///< double, rounded to single precision
  kPath,      ///< char*, copied
  kPointer,   ///< object pointer, stored unless null
  kCallback,  ///< function pointer, stored unless null
  kLoad,      ///< int*, loads the weights
  kUpdate,    ///< int*, derives the sizes anew
};

struct Code {
  Kind Value;
  std::size_t Field;  ///< offset in the context, where the kind stores something
};

#define FIELD(name) offsetof(VEL_STOPNGO_CTX, name)

/// By control code, from the one behind END on.
constexpr Code kCodes[VEL_CTRL_STOPNGO_MAX - 1] = {
    /* SET_CLASSIFY_PATH */ {Kind::kPath, FIELD(classify_path)},
    /* LOAD_CLASSIFY */ {Kind::kLoad, 0},
    /* SET_TIME_BEEPING */ {Kind::kWord, FIELD(TimeBeeping)},
    /* SET_TIME_COOLING */ {Kind::kWord, FIELD(TimeCooling)},
    /* SET_TIME_LEAVING */ {Kind::kWord, FIELD(TimeLeaving)},
    /* SET_CLASSIFIY_THRESHOLD */ {Kind::kReal, FIELD(Classifiy)},
    /* INPUT_WIDTH */ {Kind::kWord, FIELD(EndXInput)},
    /* INPUT_HEIGHT */ {Kind::kWord, FIELD(EndYInput)},
    /* ROI_X */ {Kind::kWord, FIELD(ROI_X)},
    /* ROI_Y */ {Kind::kWord, FIELD(ROI_Y)},
    /* ROI_WIDTH */ {Kind::kWord, FIELD(EndX)},
    /* ROI_HEIGHT */ {Kind::kWord, FIELD(EndY)},
    /* SET_SCALE */ {Kind::kWord, FIELD(Scale)},
    /* SET_FRAME_SKIP */ {Kind::kWord, FIELD(FrameSkip)},
    /* SET_GAP_OP */ {Kind::kWord, FIELD(GapOp)},
    /* SET_FILTER */ {Kind::kWord, FIELD(Filter)},
    /* SET_LOG */ {Kind::kWord, FIELD(Log)},
    /* SET_BLOCK_SIZE */ {Kind::kWord, FIELD(BlockSize)},
    /* SET_FEATURES_COUNT */ {Kind::kWord, FIELD(Features)},
    /* SET_HIDDENS_COUNT */ {Kind::kWord, FIELD(Hiddens)},
    /* UPDATE_PARAMS */ {Kind::kUpdate, 0},
    /* SET_EVENT_CALLBACK */ {Kind::kCallback, FIELD(event_callback)},
    /* DEBUG_FB */ {Kind::kPointer, FIELD(debug_fb)},
    /* LCD_WIDTH */ {Kind::kWord, FIELD(debug_fb_width)},
    /* LCD_HEIGHT */ {Kind::kWord, FIELD(debug_fb_height)},
    /* SET_ORIGINAL_SIZE */ {Kind::kWord, FIELD(originalSize)},
    /* SET_EVENT_CALLBACK_ARGS */ {Kind::kPointer, FIELD(callback_param)},
};

#undef FIELD

template <typename Type>
void Store(VEL_STOPNGO_CTX& ctx, std::size_t Field, Type Value) {
  std::memcpy(reinterpret_cast<char*>(&ctx) + Field, &Value, sizeof Value);
}

template <typename Type>
void StoreUnlessNull(VEL_STOPNGO_CTX& ctx, std::size_t Field, Type* Pointer) {
  if (Pointer != nullptr) Store(ctx, Field, Pointer);
}

void SetPath(VEL_STOPNGO_CTX& ctx, NAME_08* FileName) {
  if (FileName == nullptr) return;
  const std::size_t Length = strnlen(FileName, kPathCapacity - 1);
  std::memmove(ctx.classify_path, FileName, Length);
  ctx.classify_path[Length] = '\0';
}

void LoadWeights(VEL_STOPNGO_CTX& ctx, int* Result) {
  if (Result == nullptr) return;
  *Result = Classify_Load_(ctx.classify_path, ctx.Weight, ctx.Features_2, ctx.Hiddens);
  std::printf("load classify. path:%s, feature:%d, hidden:%d, result:%d\n", ctx.classify_path,
              static_cast<int>(ctx.Features_2), static_cast<int>(ctx.Hiddens), *Result);
}

/// Takes the code's value off the list and applies it.
void Apply(VEL_STOPNGO_CTX& ctx, const Code& Given, va_list* List) {
  switch (Given.Value) {  // LCOV_EXCL_BR_LINE: every kind has its case
    case Kind::kWord:
      Store(ctx, Given.Field, va_arg(*List, int));
      break;
    case Kind::kReal:
      Store(ctx, Given.Field, static_cast<real_32>(va_arg(*List, double)));
      break;
    case Kind::kPath:
      SetPath(ctx, va_arg(*List, NAME_08*));
      break;
    case Kind::kPointer:
      StoreUnlessNull(ctx, Given.Field, va_arg(*List, void*));
      break;
    case Kind::kCallback:
      StoreUnlessNull(ctx, Given.Field, va_arg(*List, VEL_STIOPNGO_EVENT_CALLBACK));
      break;
    case Kind::kLoad:
      LoadWeights(ctx, va_arg(*List, int*));
      break;
    case Kind::kUpdate:
      if (va_arg(*List, int*) != nullptr) vel_stopngo_update_params(&ctx);
      break;
  }
}

}  // namespace

extern "C" int vel_stopngo_control(void* ctx_t, VEL_CTRL_STOPNGO type, ...) {
  auto* ctx = static_cast<VEL_STOPNGO_CTX*>(ctx_t);
  // Negative codes are large ones here, and out of range too.
  auto Number = static_cast<data_32>(type);
  if (ctx == nullptr || Number >= VEL_CTRL_STOPNGO_MAX) return -1;

  va_list List;
#if defined(__clang__)
#pragma clang diagnostic push
// The enumeration's type is fixed at 32 bits: promoted or not, it is passed in the same way.
#pragma clang diagnostic ignored "-Wvarargs"
#endif
  va_start(List, type);
#if defined(__clang__)
#pragma clang diagnostic pop
#endif
  while (Number != VEL_CTRL_STOPNGO_END) {
    if (Number < VEL_CTRL_STOPNGO_MAX) Apply(*ctx, kCodes[Number - 1], &List);
    Number = static_cast<data_32>(va_arg(List, int));
  }
  va_end(List);
  return 0;
}
