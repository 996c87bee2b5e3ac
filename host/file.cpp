// file.cpp: whole files, read at once.
#include "host/file.h"

#include <cerrno>
#include <fstream>
#include <iterator>

#include "host/failure.h"
#include "host/system_error.h"

namespace stopngo {

std::string ReadFile(const std::string& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw Failure(path + ": " + LastSystemError());
  return bytes;
}

}  // namespace stopngo
