// module_note.h: what a module's file tells of itself (src/note.cpp).
#pragma once

#include <string>

namespace stopngo {

struct ModuleNote {
  std::string version;  ///< such as "1.0.0"
  std::string kernels;  ///< the set in force on this processor, such as "avx2"
};

/// Of the loaded file that an address lies in; empty texts where the file has no such note.
ModuleNote NoteOf(const void* address);

}  // namespace stopngo
