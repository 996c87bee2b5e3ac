// main.cpp: zetstopngo-selftest: whether this build gives the right bits on this processor.
#include <dlfcn.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include "traces.h"
#include "vel_stopngo_ctx.h"

namespace {

constexpr const char* kUsage =
    "zetstopngo-selftest [MODULE]: whether the module gives the right bits on this processor\n"
    "\n"
    "Holds every set of kernels that the processor has against the plain forms, MODULE and the sets against\n"
    "recorded traces of whole detectors, and says what a frame takes. MODULE: the shared object to ask, the\n"
    "one beside this program or where the system keeps it unless given.\n"
    "\n"
    "Exit code: 0 the right bits, 1 wrong ones, 2 wrong usage or no module.\n";

constexpr int kCalls = 100;
/// Shares no factor with the number of ways to crop, so that it meets every filter.
constexpr std::size_t kStride = 5;

/// An instruction that the processor does not have, or memory that a kernel must not touch.
void OnSignal(int /*signal*/) {
  for (const char* part :
       {"\nzetstopngo-selftest: FAILED, ended by a signal at ", selftest::AtWork(), "\n"}) {
    if (write(STDERR_FILENO, part, std::strlen(part)) < 0) break;
  }
  std::_Exit(1);
}

/// The module's entry points; null operations, with a word, when there are none.
test::Origin Load(const char* path) {
  void* handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    std::fprintf(stderr, "zetstopngo-selftest: %s\n", dlerror());
    return {nullptr, nullptr};
  }
  const test::Origin origin = {
      static_cast<const VEL_STOPNGO_OPERATION*>(dlsym(handle, "vel_stopngo")),
      reinterpret_cast<decltype(&Classify_Feature_)>(dlsym(handle, "Classify_Feature_"))};
  Dl_info where{};
  if (origin.operations == nullptr || origin.score == nullptr || dladdr(origin.operations, &where) == 0 ||
      origin.operations->ctxsize != sizeof(VEL_STOPNGO_CTX)) {
    std::fprintf(stderr, "zetstopngo-selftest: %s is no module of this kind\n", path);
    return {nullptr, nullptr};
  }
  // The loader's name for it may lead through "..".
  char* const path_in_full = realpath(where.dli_fname, nullptr);
  std::printf("module   %s\n", path_in_full == nullptr ? where.dli_fname : path_in_full);
  std::free(path_in_full);
  return origin;
}

/// Prints a check's line, and its findings; whether there are none.
bool Report(const std::string& check, const selftest::Findings& findings) {
  std::printf("%-8s %s\n", findings.empty() ? "passed" : "FAILED", check.c_str());
  for (const std::string& finding : findings) std::printf("         %s\n", finding.c_str());
  std::fflush(stdout);
  return findings.empty();
}

bool Run(const test::Origin& module) {
  const std::span<const KernelTable> tables = AvailableKernels();
  bool good =
      Report("module: every golden trace", selftest::CheckTraces(module, selftest::kRecordedTraces, 1));
  good &= Report(std::to_string(tables.size() - 1) + " sets of kernels against the plain forms, " +
                     std::to_string(kCalls) + " random calls each",
                 selftest::CheckKernels(tables, kCalls));
  const test::Origin objects = {&vel_stopngo, Classify_Feature_};
  for (const KernelTable& table : tables) {
    ForceKernels(&table);
    const std::string name = table.Name;
    good &= Report(name + ": golden traces, every fifth",
                   selftest::CheckTraces(objects, selftest::kRecordedTraces, kStride));
    std::printf("frame    %s: %.1f us\n", table.Name, selftest::FrameTime_us(objects));
  }
  ForceKernels(nullptr);
  std::printf("frame    module: %.1f us\n", selftest::FrameTime_us(module));
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  const bool help = argc == 2 && std::strcmp(argv[1], "--help") == 0;
  if (help || argc > 2 || (argc == 2 && argv[1][0] == '-')) {
    std::fputs(kUsage, help ? stdout : stderr);
    return help ? 0 : 2;
  }
  for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) std::signal(signal, OnSignal);
  const test::Origin module = Load(argc == 2 ? argv[1] : STOPNGO_MODULE_NAME);
  if (module.operations == nullptr) return 2;
  const bool good = Run(module);
  std::printf("zetstopngo-selftest: %s\n", good ? "passed" : "FAILED: these are not the right bits");
  return good ? 0 : 1;
}
