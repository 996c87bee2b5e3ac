/* vel_stopngo.h: the host's view of libzetstopngo, a stop-and-go detector for camera luma planes.
 *
 * Everything that a host needs is in this one header: the operations record with the entry points
 * of the detector, the control codes, and the image, motion and classifier routines that the shared
 * object exports besides. Valid as C99 and as C++17; nothing but the C standard library is needed.
 *
 * A detector's whole life:
 *
 *     void* ctx = malloc(vel_stopngo.ctxsize);
 *     vel_stopngo.open(ctx);
 *     vel_stopngo.control(ctx, VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH, "weights.bin",
 *                         VEL_CTRL_STOPNGO_LOAD_CLASSIFY, &result,
 *                         VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, on_decision,
 *                         VEL_CTRL_STOPNGO_END);
 *     while (frame = next_luma_plane()) vel_stopngo.write(ctx, frame, frame_size);
 *     vel_stopngo.close(ctx);
 *     free(ctx);
 *
 * Threads: the module starts none and keeps no state outside the context. Calls on one context are
 * made by one thread at a time; different contexts may run on different threads at once.
 *
 * Memory: no settings and no weights file make the module touch memory that the host did not give.
 * A frame that the settings in force cannot process inside its buffers is refused by write with -1.
 * The routines further down trust their arguments where their comment says so.
 */
#ifndef VEL_STOPNGO_H
#define VEL_STOPNGO_H

#include <stdint.h>
#include <sys/types.h> /* off_t */

#if defined(__GNUC__)
#define VEL_STOPNGO_API __attribute__((visibility("default")))
#else
#define VEL_STOPNGO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The decision changed. param is the value of VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS; flag is the
 * new decision: 0 no alarm, 1 alarm (beeping), 2 cooling. The returned int is ignored. Called inside
 * write, on the caller's thread. It may call control (any code, VEL_CTRL_STOPNGO_UPDATE_PARAMS
 * included) and close on this context, and anything on another one; it must not free the context. */
typedef int (*VEL_STIOPNGO_EVENT_CALLBACK)(void* param, int flag);

/* Control codes. A list handed to control is code, value, code, value, …, VEL_CTRL_STOPNGO_END; the
 * comment gives the type of the value as it is passed. Values are stored as they are: a setting that
 * a frame cannot be processed with shows when the frame is written.
 *
 * [u] marks the settings that need VEL_CTRL_STOPNGO_UPDATE_PARAMS after them, before the next frame. */
#ifdef __cplusplus
enum tagSTOPNGO_CTRL : uint32_t
#else
enum tagSTOPNGO_CTRL
#endif
{
  VEL_CTRL_STOPNGO_END = 0,                      /* none: ends the list */
  VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH = 1,        /* char*: weights file, copied, 127 characters */
  VEL_CTRL_STOPNGO_LOAD_CLASSIFY = 2,            /* int*: loads the file, receives 0 or -1 */
  VEL_CTRL_STOPNGO_SET_TIME_BEEPING = 3,         /* int: frames after an alarm with decision 1 */
  VEL_CTRL_STOPNGO_SET_TIME_COOLING = 4,         /* int: frames after an alarm without analysis [u] */
  VEL_CTRL_STOPNGO_SET_TIME_LEAVING = 5,         /* int: count to be exceeded for an alarm */
  VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD = 6,  /* double: score to be exceeded, 0 to 1 */
  VEL_CTRL_STOPNGO_INPUT_WIDTH = 7,              /* int: columns of a working-size frame */
  VEL_CTRL_STOPNGO_INPUT_HEIGHT = 8,             /* int: rows of a working-size frame */
  VEL_CTRL_STOPNGO_ROI_X = 9,                    /* int: left column of the region of interest */
  VEL_CTRL_STOPNGO_ROI_Y = 10,                   /* int: top row of the region of interest */
  VEL_CTRL_STOPNGO_ROI_WIDTH = 11,               /* int: columns of the region [u] */
  VEL_CTRL_STOPNGO_ROI_HEIGHT = 12,              /* int: rows of the region [u] */
  VEL_CTRL_STOPNGO_SET_SCALE = 13,               /* int: zoom in tenths; 0 is off */
  VEL_CTRL_STOPNGO_SET_FRAME_SKIP = 14,          /* int: frames to hold the decision at 0 */
  VEL_CTRL_STOPNGO_SET_GAP_OP = 15,              /* int: taken off the counter on a low score */
  VEL_CTRL_STOPNGO_SET_FILTER = 16,              /* int: 0 none, 1 median, 2 Gaussian */
  VEL_CTRL_STOPNGO_SET_LOG = 17,                 /* int: above 0, write prints its lines */
  VEL_CTRL_STOPNGO_SET_BLOCK_SIZE = 18,          /* int: side of a motion block, pixels [u] */
  VEL_CTRL_STOPNGO_SET_FEATURES_COUNT = 19,      /* int: features of one frame, at most 80 [u] */
  VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT = 20,       /* int: hidden nodes */
  VEL_CTRL_STOPNGO_UPDATE_PARAMS = 21,           /* int*, not null, not used: derive the sizes anew */
  VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK = 22,      /* VEL_STIOPNGO_EVENT_CALLBACK */
  VEL_CTRL_STOPNGO_DEBUG_FB = 23,                /* char*: framebuffer, 4 bytes a pixel, borrowed */
  VEL_CTRL_STOPNGO_LCD_WIDTH = 24,               /* int: framebuffer width, pixels */
  VEL_CTRL_STOPNGO_LCD_HEIGHT = 25,              /* int: framebuffer height, pixels; 0: not clipped */
  VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE = 26,       /* int: width of the frames handed to write */
  VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS = 27, /* void*: first argument of the callback, borrowed */
  VEL_CTRL_STOPNGO_MAX = 28                      /* the number of codes; not a code */
};
typedef enum tagSTOPNGO_CTRL VEL_CTRL_STOPNGO;

/* A detector's context is opaque to the host: a block of ctxsize bytes, aligned for pointers, that the
 * host allocates and frees. The module owns what the context points at, between open and close. */
typedef struct VEL_STOPNGO_CTX VEL_STOPNGO_CTX;

typedef struct VEL_STOPNGO_OPERATION {
  const char* name; /* "vel_stopngo" */
  int ctxsize;      /* 11920: bytes that the host allocates for a context */
  int maxctrl;      /* 28: number of control codes */
  int (*open)(void* ctx);
  int (*close)(void* ctx);
  off_t (*read)(void* ctx, void* data, off_t size);
  off_t (*write)(void* ctx, void* data, off_t size);
  int (*control)(void* ctx, VEL_CTRL_STOPNGO type, ...);
} VEL_STOPNGO_OPERATION;

/* The module, as a host that uses dlopen finds it: dlsym(handle, "vel_stopngo"). */
extern VEL_STOPNGO_API const VEL_STOPNGO_OPERATION vel_stopngo;

/* ---- The detector. Every entry point returns -1 for a null context and does nothing else. ---- */

/* The size of a context in bytes, the same as vel_stopngo.ctxsize. */
VEL_STOPNGO_API int vel_stopngo_get_ctx_size(void);

/* Fills a context with the defaults: 800 × 480 frames, a region of 220 × 140 at the origin, blocks of
 * 10, 80 features, 16 hidden nodes, threshold 0.4, beeping 25, cooling 20, leaving 3, gap 2, no
 * weights. Releases nothing: close a context that has been written to before opening it again. */
VEL_STOPNGO_API int vel_stopngo_open(void* ctx_t);

/* Releases the analysis buffers. The settings stay; the next write starts with a first frame. */
VEL_STOPNGO_API int vel_stopngo_close(void* ctx_t);

/* Reads nothing and returns 0; there for the shape of the operations record. */
VEL_STOPNGO_API off_t vel_stopngo_read(void* ctx_t, void* data, off_t size);

/* Takes one frame: data is its luma plane, one byte a pixel, rows without padding, of input width ×
 * height, or 1920 × 1080 or 1280 × 720 when the original size says so. size is not used. The frame is
 * only read, during the call, and only where the region of interest lies. Allocates on the first and
 * on the second frame only.
 *
 * Returns 0, or -1 with the context unchanged when data is null, when memory for an analysis buffer
 * cannot be had (the next write may succeed), or when the settings would make this frame's
 * processing leave the frame or a buffer; with the log on, a line then says why. */
VEL_STOPNGO_API off_t vel_stopngo_write(void* ctx_t, void* data, off_t size);

/* Applies a list of codes and values, in order, closed by VEL_CTRL_STOPNGO_END. Returns 0, or -1
 * without reading any value when the first code is not one of 0 to 27; later codes that are none of
 * 1 to 27 are skipped, without a value. A null pointer value is skipped. The result of loading a
 * weights file is given through the int of VEL_CTRL_STOPNGO_LOAD_CLASSIFY alone. */
VEL_STOPNGO_API int vel_stopngo_control(void* ctx_t, VEL_CTRL_STOPNGO type, ...);

/* Derives block grid, cell grid and feature layout from the settings, empties the alarm counter, ends
 * a running hold and releases the analysis buffers. The same as VEL_CTRL_STOPNGO_UPDATE_PARAMS. */
VEL_STOPNGO_API int vel_stopngo_update_params(VEL_STOPNGO_CTX* ctx);

/* ---- Routines for the host ----
 *
 * Images are 8-bit grey, rows top to bottom without padding. Rectangles are four values {top, left,
 * bottom, right}, bottom and right exclusive. A negative Flip reads the rows from the bottom of the
 * input upwards; columns are never mirrored. None of these allocates or keeps state. A null pointer
 * makes them return without writing; sizes and rectangles are trusted, and an output of no rows or
 * no columns is left alone. Inputs and outputs do not overlap unless it says so. */

/* One motion vector a block of BlockSize pixels, by a three-step search for the block of ImageNew in
 * ImageOld. MotionVector receives NumY × NumX pairs (down, right), each -7 … 7. The first block lies
 * at (BlockSize, BlockSize). Both images have (NumY + 2) × BlockSize rows of EndX bytes. Where the search
 * could leave them, as linear offsets (the blocks with their rows rounded up to 8 pixels, and in ImageOld 7
 * pixels more on every side), nothing is read and all vectors are 0: with blocks of 6 and less always. */
VEL_STOPNGO_API void Block_Match_TSS_(const uint8_t* ImageOld, const uint8_t* ImageNew, int8_t* MotionVector,
                                      uint32_t BlockSize, uint32_t NumY, uint32_t NumX, uint32_t EndX);

/* Sums the vectors of every cell of 3 × 4 blocks by direction. Vector: 24 × NumY × NumX entries, cell
 * counts NumY and NumX, rows of 4 × NumX vectors. Chunk receives {down, right, up, left} a cell. */
VEL_STOPNGO_API void Block_Local_Histogram_(const int8_t* Vector, int8_t* Chunk, uint32_t NumY,
                                            uint32_t NumX);

/* Reads (Inputs + 2) × Hiddens + 1 little-endian floats from a file into Weight: a row of Inputs a
 * hidden node, the hidden biases, the output weights, the output bias. Returns 0 when all arrived,
 * otherwise -1; a short file has then replaced the start of Weight. A network of more than 2600
 * numbers, the capacity of a context, is refused with -1 and nothing is read. */
VEL_STOPNGO_API int Classify_Load_(const char* FileName, float* Weight, uint32_t Inputs, uint32_t Hiddens);

/* Output[k] = Input[k] / 128 for k below Length. */
VEL_STOPNGO_API void Classify_Conversion_(const int8_t* Input, float* Output, uint32_t Length);

/* The perceptron's score of Inputs features, 0.000337958336 … 0.999662042. Weight is laid out as in
 * the file of Classify_Load_. A null pointer gives 0. */
VEL_STOPNGO_API float Classify_Feature_(const float* Feature, const float* Weight, uint32_t Inputs,
                                        uint32_t Hiddens);

/* Copies or magnifies the area of Input (EndY rows of EndX bytes) that starts at Source_Location[0],
 * Source_Location[1] into Output, which is as large as Location. Ratio, tenths: 0 copies; 2, 4, 5, 6,
 * 7, 8 magnify by 10 / (10 - Ratio); any other leaves Output alone. */
VEL_STOPNGO_API void Image_Cropping_(const uint8_t* Input, uint8_t* Output, const uint32_t Source_Location[4],
                                     const uint32_t Location[4], uint32_t Ratio, int32_t Flip, uint32_t EndY,
                                     uint32_t EndX);

/* Samples the region that starts at Source_L, in 800 × 480 coordinates, from a frame of 1920 × 1080
 * (original_width 1920) or 1280 × 720 (any other) into Output, which is as large as Location. Ratio
 * 0, 2, 4, 6, 8 sample ever smaller centred parts; any other leaves Output alone. EndX is the distance
 * between rows of Input in bytes; EndY is not read. */
VEL_STOPNGO_API void Image_Original_Cropping_(uint32_t original_width, uint32_t original_height,
                                              const uint8_t* Input, uint8_t* Output,
                                              const uint32_t Source_L[4], const uint32_t Location[4],
                                              uint32_t Ratio, int32_t Flip, uint32_t EndY, uint32_t EndX);

/* Keeps every second or third pixel and row. EndY × EndX is the size of Output; Input's rows are 2 or
 * 3 × EndX bytes long. Output may be the same buffer as Input. */
VEL_STOPNGO_API void Image_Subsampling_2_(const uint8_t* Input, uint8_t* Output, uint32_t EndY,
                                          uint32_t EndX);
VEL_STOPNGO_API void Image_Subsampling_3_(const uint8_t* Input, uint8_t* Output, uint32_t EndY,
                                          uint32_t EndX);

/* The rectangle Location of Input (EndY rows of EndX bytes) without every second row: half the rows,
 * rounded down, all the columns. */
VEL_STOPNGO_API void Image_Cropping_2_(const uint8_t* Input, uint8_t* Output, const uint32_t Location[4],
                                       int32_t Flip, uint32_t EndY, uint32_t EndX);

/* The rectangle Location, in coordinates of the image subsampled by 2 or 3, from the full Input. */
VEL_STOPNGO_API void Image_ROI_2_(const uint8_t* Input, uint8_t* Output, const uint32_t Location[4],
                                  int32_t Flip, uint32_t EndY, uint32_t EndX);
VEL_STOPNGO_API void Image_ROI_3_(const uint8_t* Input, uint8_t* Output, const uint32_t Location[4],
                                  int32_t Flip, uint32_t EndY, uint32_t EndX);

/* Turns Image upside down in place. Buffer: EndX bytes of scratch. */
VEL_STOPNGO_API void Image_Flipping_(uint8_t* Image, uint8_t* Buffer, uint32_t EndY, uint32_t EndX);

/* Replaces every pixel of the rectangle Location of Image by its exclusive or with Mark, a packed
 * image of the rectangle's size. Mark may lie inside Image: bytes are then taken one after the other,
 * in order, as they are at that moment. */
VEL_STOPNGO_API void Image_Marking_(uint8_t* Image, const uint8_t* Mark, const uint32_t Location[4],
                                    uint32_t EndX);

/* 3 × 3 median in place: windows see the pixels that were already replaced. The outermost Skip rows
 * and columns (1 when Skip is not positive) stay; images of 3 rows or columns or fewer stay whole. */
VEL_STOPNGO_API void image_median_filter(uint8_t* Image, int Skip, uint32_t Width, uint32_t Height);

/* 5 × 5 Gaussian in place, results rounded down to multiples of 10: windows see the pixels that were
 * already replaced. The outermost Skip rows and columns (2 when Skip is less) stay. */
VEL_STOPNGO_API void image_gaussian_blur_filter(uint8_t* Image, uint32_t Skip, uint32_t Width,
                                                uint32_t Height);

/* Sorts npix bytes ascending. */
VEL_STOPNGO_API void pixel_qsort(uint8_t* pix_arr, int npix);

/* 3 × 3 median of image into filteredimage, whose outermost rows and columns are not written. Always
 * returns 0. */
VEL_STOPNGO_API int median_filter(const uint8_t* image, int rows, int cols, uint8_t* filteredimage);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VEL_STOPNGO_H */
