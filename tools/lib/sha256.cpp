// sha256.cpp: a file's fingerprint.
#include "sha256.h"

#include <openssl/evp.h>

#include <array>
#include <fstream>
#include <memory>

#include "failure.h"
#include "system_error.h"

namespace stopngo {

std::string Sha256OfFile(const std::string& path) {
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> digest(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  bool good = digest && EVP_DigestInit_ex(digest.get(), EVP_sha256(), nullptr) == 1;
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw Failure(path + ": " + LastSystemError());
  std::array<char, 65536> block;
  while (good && file) {
    file.read(block.data(), block.size());
    good = EVP_DigestUpdate(digest.get(), block.data(), static_cast<std::size_t>(file.gcount())) == 1;
  }
  if (file.bad()) throw Failure(path + ": " + LastSystemError());
  std::array<unsigned char, 32> bytes{};
  if (!good || EVP_DigestFinal_ex(digest.get(), bytes.data(), nullptr) != 1) {
    throw Failure(path + ": its SHA-256 cannot be worked out");
  }
  std::string text;
  for (const unsigned char byte : bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    text += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return text;
}

}  // namespace stopngo
