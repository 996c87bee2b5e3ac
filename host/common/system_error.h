// system_error.h: the operating system's reason for a failure, as a user reads it.
#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace stopngo {

/// The reason that a call has just left in errno; something true when it left none.
inline std::string LastSystemError() {
  return errno == 0 ? "the system gives no reason" : std::generic_category().message(errno);
}

}  // namespace stopngo
