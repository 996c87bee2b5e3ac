// output_folder.cpp: folders that a command writes files to.
#include "base/output_folder.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/common/failure.h"

namespace stopngo {

void MakeOutputFolder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (!error && access(path.c_str(), W_OK | X_OK) != 0) error = {errno, std::generic_category()};
  if (error) throw Failure(path + ": " + error.message());
}

}  // namespace stopngo
