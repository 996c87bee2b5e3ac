/* host.c: a host to start from: hands a camera's frames to the module as it is set up, and tells its decisions.
 *
 *     stopngo check --weights default.bin --emit c > set_up.h
 *     cc -std=c99 host.c -o host $(pkg-config --cflags zetstopngo) -ldl
 *     host 800 480 832 30 < frames.raw
 *
 * Standard input stands for the camera: frames of WIDTH × HEIGHT bytes of luma, rows STRIDE bytes apart, FPS of
 * them a second. A camera's driver takes the place of next_frame; the rest can stay as it is. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "vel_stopngo.h"

/* What the command printed: set_up(), and which frames it is for. */
#include "set_up.h"

enum { WIDTH = STOPNGO_FRAME_WIDTH, HEIGHT = STOPNGO_FRAME_HEIGHT, LONGEST_STRIDE = 65536 };

struct frame {
  unsigned char* rows; /* HEIGHT of them, stride bytes apart */
  double time_s;       /* when it was taken, seconds; grows from frame to frame */
};

static size_t stride; /* bytes, WIDTH at least */
static double fps;    /* frames a second of the camera */

static int fail(const char* what) {
  fprintf(stderr, "host: %s\n", what);
  return 1;
}

/* Called inside write whenever the decision changes; this is where a driver would be told. */
static int on_decision(void* param, int flag) {
  static const char* const names[] = {"no alarm", "alarm", "cooling"};
  const double* const time_s = param;
  printf("%8.3f s  decision %d (%s)\n", *time_s, flag, flag >= 0 && flag <= 2 ? names[flag] : "unknown");
  return fflush(stdout); /* not used by the module; what could not be printed is said at the end */
}

/* The camera's next frame: 1, or 0 when there is none any more, or -1 when it is not whole. */
static int next_frame(struct frame* frame) {
  static long count = 0;
  const size_t size = stride * HEIGHT, got = fread(frame->rows, 1, size, stdin);
  frame->time_s = (double)count++ / fps;
  return got == size ? 1 : got == 0 && feof(stdin) ? 0 : -1;
}

/* Whether a frame is the nearest to one of the times 0, 1/rate, 2/rate, …, counted in *wanted; gaps are stepped
 * over. Half a microsecond more: the last bits of time stamps decide nothing. */
static int is_wanted(long long* wanted, double time_s, double next_s) {
  const double middle = ((time_s + next_s) / 2 + 0.5e-6) * STOPNGO_FRAMES_A_SECOND;
  if ((double)*wanted >= middle) return 0;
  *wanted = (long long)middle + 1;
  return 1;
}

/* The module takes rows without padding. */
static unsigned char* packed(const struct frame* frame) {
  static unsigned char buffer[WIDTH * HEIGHT];
  if (stride == WIDTH) return frame->rows;
  for (size_t y = 0; y < HEIGHT; ++y) memcpy(buffer + y * WIDTH, frame->rows + y * stride, WIDTH);
  return buffer;
}

/* Hands frames over until there are no more. Two are kept: the next one's time tells whether one is the nearest. */
static int run(const VEL_STOPNGO_OPERATION* operations, void* context, struct frame* frames, double* time_s) {
  long long wanted = 0;
  long count = 0, handed = 0;
  int more = next_frame(&frames[0]);
  while (more > 0) {
    const struct frame* const frame = &frames[count % 2];
    struct frame* const next = &frames[++count % 2];
    more = next_frame(next);
    if (next->time_s <= frame->time_s) return fail("time stamps have to grow");
    if (!is_wanted(&wanted, frame->time_s, next->time_s)) continue;
    *time_s = frame->time_s;
    if (operations->write(context, packed(frame), WIDTH * HEIGHT) != 0) {
      return fail("a frame was refused: with SET_LOG 1 in set_up.h the module says why");
    }
    ++handed;
  }
  if (more < 0) return fail("the input ends within a frame, or cannot be read");
  if (handed < 2) return fail("less than two frames: nothing was decided");
  printf("%ld frames, %ld handed over\n", count, handed);
  return fflush(stdout) == 0 && !ferror(stdout) ? 0 : fail("the decisions could not be printed");
}

int main(int argc, char** argv) {
  double given[4];
  char rest; /* behind a number nothing may follow */
  for (int i = 0; i < 4; ++i)
    if (argc != 5 || sscanf(argv[i + 1], "%lf%c", &given[i], &rest) != 1)
      return fail("usage: host WIDTH HEIGHT STRIDE FPS < FRAMES");
  /* The module is not told a frame's size: one of another would be read past its end. */
  if (given[0] != WIDTH || given[1] != HEIGHT) return fail("set_up.h is for frames of another size");
  stride = given[2] >= WIDTH && given[2] <= LONGEST_STRIDE ? (size_t)given[2] : 0;
  if (stride == 0 || (double)stride != given[2]) return fail("STRIDE is no whole number from WIDTH to 65536");
  fps = given[3];
  if (!(fps >= STOPNGO_FRAMES_A_SECOND)) return fail("FPS is less than set_up.h asks for");
  void* const module = dlopen("libzetstopngo.so.1", RTLD_NOW | RTLD_LOCAL);
  const VEL_STOPNGO_OPERATION* const operations = module == NULL ? NULL : dlsym(module, "vel_stopngo");
  if (operations == NULL) return fail(dlerror());
  if (operations->maxctrl < VEL_CTRL_STOPNGO_MAX) return fail("the module is older than its header");
  double time_s = 0; /* of the frame that is handed over */
  void* const context = malloc((size_t)operations->ctxsize);
  struct frame frames[2] = {{malloc(stride * HEIGHT), 0}, {malloc(stride * HEIGHT), 0}};
  if (context == NULL || frames[0].rows == NULL || frames[1].rows == NULL) return fail("no memory");
  if (operations->open(context) != 0) return fail("the module gives no detector");
  int status = set_up(operations, context, on_decision, &time_s) == 0
                   ? run(operations, context, frames, &time_s)
                   : fail("the weights file named in set_up.h could not be read");
  if (operations->close(context) != 0) status = fail("the detector could not be closed");
  free(frames[0].rows);
  free(frames[1].rows);
  free(context);
  return dlclose(module) == 0 ? status : fail(dlerror());
}
