// memory_file.cpp: a file without a place on a disk, for what the module takes from files alone.
#include "base/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include "host/common/failure.h"
#include "host/common/system_error.h"

namespace stopngo {

MemoryFile::MemoryFile() : descriptor_(memfd_create("stopngo", MFD_CLOEXEC)) {
  if (descriptor_ < 0) throw Failure("no file in memory can be made: " + LastSystemError());
}

MemoryFile::~MemoryFile() { close(descriptor_); }

std::string MemoryFile::Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

}  // namespace stopngo
