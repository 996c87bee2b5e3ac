// ffmpeg_calls.cpp: loads FFmpeg's larger libraries, of the version whose headers this was compiled with.
#include "video/ffmpeg_calls.h"

extern "C" {
#include <libavdevice/avdevice.h>
}

#include <dlfcn.h>

#include <string>

#include "host/common/failure.h"

namespace stopngo {
namespace {

/// A library that stays loaded until the program ends.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const char* name) : handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) throw Failure(std::string("FFmpeg cannot be used: ") + dlerror());
  }

  template <typename Function>
  void Find(const char* name, Function& function) const {
    function = reinterpret_cast<Function>(dlsym(handle_, name));
    if (function == nullptr) throw Failure(std::string("FFmpeg cannot be used: ") + dlerror());
  }

 private:
  void* handle_;
};

FfmpegCalls LoadCalls() {
  const LoadedLibrary avformat("libavformat.so." AV_STRINGIFY(LIBAVFORMAT_VERSION_MAJOR));
  const LoadedLibrary avcodec("libavcodec.so." AV_STRINGIFY(LIBAVCODEC_VERSION_MAJOR));
  FfmpegCalls calls;
#define FFMPEG_CALL(library, function) (library).Find(#function, calls.function);
#include "video/ffmpeg_calls.def"
#undef FFMPEG_CALL
  return calls;
}

}  // namespace

const FfmpegCalls& Ffmpeg() {
  static const FfmpegCalls calls = LoadCalls();
  return calls;
}

void RegisterDevices() {
  const LoadedLibrary avdevice("libavdevice.so." AV_STRINGIFY(LIBAVDEVICE_VERSION_MAJOR));
  decltype(&avdevice_register_all) register_all = nullptr;
  avdevice.Find("avdevice_register_all", register_all);
  register_all();
}

}  // namespace stopngo
