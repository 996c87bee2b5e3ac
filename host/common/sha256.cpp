// sha256.cpp: the fingerprint of a file's bytes.
#include "host/common/sha256.h"

#include <openssl/evp.h>

#include <array>

#include "host/common/failure.h"

namespace stopngo {

std::string Sha256(std::string_view bytes) {
  std::array<unsigned char, 32> digest{};
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1) {
    throw Failure("a SHA-256 cannot be worked out");
  }
  std::string text;
  for (const unsigned char byte : digest) {
    constexpr const char* kDigits = "0123456789abcdef";
    text += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return text;
}

}  // namespace stopngo
