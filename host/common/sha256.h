// sha256.h: the fingerprint of a file's bytes.
#pragma once

#include <string>
#include <string_view>

namespace stopngo {

/// SHA-256 as 64 hexadecimal digits, in lower case.
std::string Sha256(std::string_view bytes);

/// That of a file, of whatever length. Throws Failure with the path: it cannot be read, or is no regular file.
std::string Sha256OfFile(const std::string& path);

}  // namespace stopngo
