/* minimal_host.c: a complete host, in the smallest number of steps: load the module, feed it, be told.
 *
 *     minimal_host libzetstopngo.so weights.bin < frames.raw
 *
 * Standard input holds luma planes of 800 × 480 bytes, one after the other. Every change of the decision
 * is printed. Nothing is linked but the C library: the module is found at run time, as on a device. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

#include "vel_stopngo.h"

enum { WIDTH = 800, HEIGHT = 480 };

/* Called inside write whenever the decision changes. */
static int on_decision(void* param, int flag) {
  static const char* const names[] = {"no alarm", "alarm", "cooling"};
  const long* frame = param;
  printf("frame %ld: %s\n", *frame, names[flag]);
  return 0;
}

static int fail(const char* what) {
  fprintf(stderr, "minimal_host: %s\n", what);
  return 1;
}

int main(int argc, char** argv) {
  static unsigned char luma[WIDTH * HEIGHT];
  long frame = 0;
  int loaded = -1;
  int status = 0;

  if (argc != 3) return fail("usage: minimal_host MODULE WEIGHTS < FRAMES");
  void* module = dlopen(argv[1], RTLD_NOW);
  if (module == NULL) return fail(dlerror());
  const VEL_STOPNGO_OPERATION* detector = dlsym(module, "vel_stopngo");
  if (detector == NULL) return fail(dlerror());

  void* ctx = malloc((size_t)detector->ctxsize);
  if (ctx == NULL || detector->open(ctx) != 0) return fail("no context");

  /* The threshold is a double; every list ends with VEL_CTRL_STOPNGO_END. */
  /* clang-format off */
  detector->control(ctx, VEL_CTRL_STOPNGO_ROI_X, 290, VEL_CTRL_STOPNGO_ROI_Y, 260,
                    VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD, 0.5,
                    VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, on_decision,
                    VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, (void*)&frame,
                    VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH, argv[2],
                    VEL_CTRL_STOPNGO_LOAD_CLASSIFY, &loaded, VEL_CTRL_STOPNGO_END);
  /* clang-format on */
  if (loaded != 0) {
    status = fail("the weights file could not be read");
  } else {
    for (; fread(luma, sizeof luma, 1, stdin) == 1; ++frame) {
      if (detector->write(ctx, luma, sizeof luma) != 0) {
        status = fail("frame refused");
        break;
      }
    }
    printf("%ld frames\n", frame);
  }
  detector->close(ctx);
  free(ctx);
  dlclose(module);
  return status;
}
