// replay.cpp: gives a fuzz target every input of its corpus, where no fuzzer is linked: what was found once is found
// again. A line of the corpus is an input, in hexadecimal digits.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// Of its own length, at whose end a sanitizer looks.
std::vector<std::uint8_t> BytesOf(const std::string& digits) {
  std::vector<std::uint8_t> bytes(digits.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(std::stoul(digits.substr(2 * i, 2), nullptr, 16));
  }
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s CORPUS\n", argv[0]);
    return 2;
  }
  std::ifstream corpus(argv[1]);
  int inputs = 0;
  for (std::string line; std::getline(corpus, line);) {
    std::fprintf(stderr, "%s:%d\n", argv[1], ++inputs);  // the last one told is the one that failed
    const std::vector<std::uint8_t> input = BytesOf(line);
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  std::fprintf(stderr, "%d inputs of %s\n", inputs, argv[1]);
  return inputs > 0 ? 0 : 1;
}
