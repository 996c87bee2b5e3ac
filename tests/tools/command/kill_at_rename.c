/* kill_at_rename.c: kills a program as it is about to give a file its name, for the $STOPNGO_KILL_AT-th time.
 *
 * Loaded ahead of the C library. Nothing that a program does can hinder that, so it stands for a power failure, too. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

static void count(void) {
  static int calls = 0;
  const char* const last = getenv("STOPNGO_KILL_AT");
  if (last != NULL && ++calls == atoi(last)) raise(SIGKILL);
}

int rename(const char* old_name, const char* new_name) {
  int (*next)(const char*, const char*) = NULL;
  *(void**)&next = dlsym(RTLD_NEXT, "rename");
  count();
  return next(old_name, new_name);
}

int renameat2(int old_folder, const char* old_name, int new_folder, const char* new_name, unsigned flags) {
  int (*next)(int, const char*, int, const char*, unsigned) = NULL;
  *(void**)&next = dlsym(RTLD_NEXT, "renameat2");
  count();
  return next(old_folder, old_name, new_folder, new_name, flags);
}
