// sha256.cpp: the fingerprint of a file's bytes.
#include "host/common/sha256.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <vector>

#include "host/common/descriptor.h"
#include "host/common/failure.h"
#include "host/common/system_error.h"

namespace stopngo {
namespace {

class Digest {
 public:
  Digest() : context_(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
    Check(context_ ? EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) : 0);
  }
  void Add(std::string_view bytes) { Check(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size())); }
  std::string Text() {
    std::array<unsigned char, 32> digest{};
    Check(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr));
    std::string text;
    for (const unsigned char byte : digest) {
      constexpr const char* kDigits = "0123456789abcdef";
      text += {kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return text;
  }

 private:
  static void Check(int result) {
    if (result != 1) throw Failure("a SHA-256 cannot be worked out");
  }

  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_;
};

}  // namespace

std::string Sha256(std::string_view bytes) {
  Digest digest;
  digest.Add(bytes);
  return digest.Text();
}

std::string Sha256OfFile(const std::string& path) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  errno = 0;
  // Without waiting for the writer of a pipe.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat status {};
  if (file.Number() < 0 || fstat(file.Number(), &status) != 0) throw Failure(path + ": " + LastSystemError());
  if (!S_ISREG(status.st_mode)) throw Failure(path + ": no file, of which a SHA-256 could be taken");
  Digest digest;
  std::vector<char> piece(kPiece);
  for (;;) {
    errno = 0;
    const ssize_t count = read(file.Number(), piece.data(), piece.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw Failure(path + ": " + LastSystemError());
    if (count == 0) return digest.Text();
    digest.Add({piece.data(), static_cast<std::size_t>(count)});
  }
}

}  // namespace stopngo
