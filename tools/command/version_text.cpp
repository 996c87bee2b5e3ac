// version_text.cpp: what stopngo --version says.
#include "command/version.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/module/module.h"
#include "host/module/module_note.h"
#include "video/ffmpeg_version.h"

namespace stopngo {
namespace {

// Whatever lies in front of the command, a host's own build included.
std::string ModuleLines() {
  const Module module;
  const ModuleNote note = NoteOf(&module.Operations());
  const auto told = [](const std::string& text) { return text.empty() ? "unknown" : Escaped(text); };
  return "module " + Escaped(module.Path()) + "\nmodule version " + told(note.version) + ", kernels " +
         told(note.kernels);
}

}  // namespace

std::string VersionText() {
  std::string text = std::string("stopngo ") + kVersion + "\ncommit " + kCommit;
  const char* const ffmpeg = FfmpegVersion();
  text += std::string("\nFFmpeg ") + (ffmpeg == nullptr ? "none: built without it" : ffmpeg) + '\n';
  try {
    return text + ModuleLines();
  } catch (const Failure& failure) {
    return text + Escaped(failure.what());
  }
}

}  // namespace stopngo
