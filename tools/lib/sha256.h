// sha256.h: a file's fingerprint.
#pragma once

#include <string>

namespace stopngo {

/// The SHA-256 of a file's bytes in 64 lower-case hexadecimal digits. Throws Failure when it cannot be read.
std::string Sha256OfFile(const std::string& path);

}  // namespace stopngo
