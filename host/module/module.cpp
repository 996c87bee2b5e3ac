// module.cpp: finds and loads the module's shared object, as a device's host does.
#include "host/module/module.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "host/common/failure.h"
#include "host/common/places.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

constexpr const char* kRecordName = "vel_stopngo";
// The first is what a device's host and a build folder have, the second what a runtime package installs.
constexpr const char* kFileNames[] = {"libzetstopngo.so", "libzetstopngo.so.1"};

// Where to look, in order; each has a slash, for dlopen searches the loader's folders for a name without one.
std::vector<std::string> Candidates(const std::string& path) {
  if (!path.empty()) return {path.find('/') == std::string::npos ? "./" + path : path};
  if (const char* const named = std::getenv("STOPNGO_MODULE"); named != nullptr && *named != '\0') {
    return Candidates(named);
  }
  std::vector<std::string> candidates;
  for (const std::filesystem::path& folder : LibraryFolders()) {
    for (const char* name : kFileNames) candidates.push_back((folder / name).string());
  }
  return candidates;
}

// The tools read the context's fields by their place, so another version of it is not for them.
const char* Fault(const VEL_STOPNGO_OPERATION* record) {
  if (record == nullptr) return "it has no record vel_stopngo";
  if (record->name == nullptr || std::strcmp(record->name, kRecordName) != 0)
    return "its record has another name";
  if (record->ctxsize != static_cast<int>(sizeof(VEL_STOPNGO_CTX))) return "its context has another size";
  if (record->maxctrl != VEL_CTRL_STOPNGO_MAX) return "it has another number of control codes";
  if (record->open == nullptr || record->close == nullptr || record->write == nullptr ||
      record->control == nullptr) {
    return "its record lacks an entry point";
  }
  return nullptr;
}

}  // namespace

Module::Module(const std::string& path) : handle_(nullptr), operations_(nullptr) {
  std::string reasons;
  for (const std::string& candidate : Candidates(path)) {
    handle_ = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ != nullptr) {
      std::error_code error;
      path_ = std::filesystem::absolute(candidate, error).lexically_normal().string();
      break;
    }
    reasons += (reasons.empty() ? "" : "; ") + std::string(dlerror());
  }
  if (handle_ == nullptr) throw Failure("the module cannot be loaded: " + reasons + " (see STOPNGO_MODULE)");
  operations_ = static_cast<const VEL_STOPNGO_OPERATION*>(dlsym(handle_, kRecordName));
  if (const char* const fault = Fault(operations_); fault != nullptr) {
    dlclose(handle_);
    throw Failure("the module that was loaded is not the one wanted: " + std::string(fault));
  }
}

Module::~Module() { dlclose(handle_); }

void* Module::Symbol(const char* name) const {
  void* const symbol = dlsym(handle_, name);
  if (symbol == nullptr) throw Failure(std::string("the module does not export ") + name);
  return symbol;
}

}  // namespace stopngo
