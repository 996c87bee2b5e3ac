/* fail_allocations.c: runs a program over and over, each time without one of the allocations that it asks for.
 *
 * Loaded ahead of the C library, it takes the place of main: a copy of the process that is about to run does the
 * program's work, so that loading it costs once. In the folder $STOPNGO_SWEEP, for the run without allocation N, it
 * leaves N.code (the exit code, or 128 + the signal), N.out, N.err, N.tsv: what became of old.tsv, and N.json: of
 * old.tsv.json. N = 0 is the run that lacks none. Of the others there are $STOPNGO_SWEEP_RUNS, the closer together the later they come, for most
 * allocations are of the options' declarations; $STOPNGO_SWEEP_SHIFT, below 1, moves them all. 0: one for each. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

static long failing = 0;     /* the allocation that fails, from 1; 0: none */
static long* counted = NULL; /* allocations of the run; shared with the process that watches */

static int fails(void) {
  if (counted == NULL) return 0;
  if (__atomic_add_fetch(counted, 1, __ATOMIC_RELAXED) != failing) return 0;
  errno = ENOMEM;
  return 1;
}

void* malloc(size_t size) { return fails() ? NULL : __libc_malloc(size); }
void* calloc(size_t count, size_t size) { return fails() ? NULL : __libc_calloc(count, size); }
void* realloc(void* block, size_t size) { return fails() ? NULL : __libc_realloc(block, size); }
void* memalign(size_t alignment, size_t size) { return fails() ? NULL : __libc_memalign(alignment, size); }
void* aligned_alloc(size_t alignment, size_t size) { return memalign(alignment, size); }
int posix_memalign(void** block, size_t alignment, size_t size) {
  void* const made = memalign(alignment, size);
  if (made == NULL) return ENOMEM;
  *block = made;
  return 0;
}

typedef int (*main_function)(int, char**, char**);
static main_function real_main;

static void send(int descriptor, long number, const char* ending) {
  char name[64];
  snprintf(name, sizeof name, "%ld.%s", number, ending);
  const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0 || dup2(file, descriptor) < 0) _exit(99);
  close(file);
}

static void leave_old(const char* name) {
  FILE* const old = fopen(name, "w");
  if (old == NULL || fputs("old", old) < 0 || fclose(old) != 0) _exit(99);
}

/* One run; how many allocations it asked for. */
static long run(long number, long* counter, int argc, char** argv, char** environment) {
  char name[64];
  leave_old("old.tsv");
  leave_old("old.tsv.json");
  *counter = 0;
  const pid_t child = fork();
  if (child < 0) _exit(99);
  if (child == 0) {
    send(STDOUT_FILENO, number, "out");
    send(STDERR_FILENO, number, "err");
    failing = number;
    counted = counter;
    const int code = real_main(argc, argv, environment);
    counted = NULL;
    exit(code);
  }
  int status = 0;
  waitpid(child, &status, 0);
  snprintf(name, sizeof name, "%ld.code", number);
  FILE* const code = fopen(name, "w");
  if (code == NULL) _exit(99);
  fprintf(code, "%d\n", WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
  fclose(code);
  snprintf(name, sizeof name, "%ld.tsv", number);
  rename("old.tsv", name);
  snprintf(name, sizeof name, "%ld.json", number);
  rename("old.tsv.json", name);
  return *counter;
}

static int sweep(int argc, char** argv, char** environment) {
  const char* const folder = getenv("STOPNGO_SWEEP");
  if (folder == NULL) return real_main(argc, argv, environment);
  if (chdir(folder) != 0) return 99;
  long* const counter =
      mmap(NULL, sizeof *counter, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (counter == MAP_FAILED) return 99;
  const long runs = atol(getenv("STOPNGO_SWEEP_RUNS"));
  const double shift = atof(getenv("STOPNGO_SWEEP_SHIFT"));
  const long count = run(0, counter, argc, argv, environment);
  for (long i = 0, last = 0; i < (runs > 0 ? runs : count); ++i) {
    const double left = runs > 0 ? 1 - ((double)i + shift) / (double)runs : 0;
    const long number = runs > 0 ? 1 + (long)((double)count * (1 - left * left * left)) : i + 1;
    if (number == last) continue;
    run(number, counter, argc, argv, environment);
    last = number;
  }
  return 0;
}

int __libc_start_main(main_function main, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*rtld_fini)(void), void* stack_end) {
  __typeof__(&__libc_start_main) start = NULL;
  *(void**)&start = dlsym(RTLD_NEXT, "__libc_start_main");
  real_main = main;
  return start(&sweep, argc, argv, init, fini, rtld_fini, stack_end);
}
