// module.h: the module, loaded from its shared object as a device's host does.
#pragma once

#include <string>

#include "vel_stopngo.h"

namespace stopngo {

/// libzetstopngo.so, loaded with dlopen.
class Module {
 public:
  /// path: the shared object; empty: $STOPNGO_MODULE, else in the first of LibraryFolders (host/places.h) that has it.
  /// Nowhere else: not in the current folder, not where the loader looks. Throws Failure naming what was tried.
  explicit Module(const std::string& path = {});
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  /// The file that was loaded.
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] const VEL_STOPNGO_OPERATION& Operations() const { return *operations_; }
  /// An exported routine by its name and type, such as Routine<decltype(Classify_Feature_)>("Classify_Feature_").
  template <typename Function>
  [[nodiscard]] Function* Routine(const char* name) const {
    return reinterpret_cast<Function*>(Symbol(name));
  }

 private:
  [[nodiscard]] void* Symbol(const char* name) const;

  std::string path_;
  void* handle_;
  const VEL_STOPNGO_OPERATION* operations_;
};

}  // namespace stopngo
