// sha256.h: the fingerprint of a file's bytes.
#pragma once

#include <string>
#include <string_view>

namespace stopngo {

/// SHA-256 as 64 hexadecimal digits, in lower case.
std::string Sha256(std::string_view bytes);

}  // namespace stopngo
