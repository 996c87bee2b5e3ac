// crops.h: the crops that are measured, for ours and for the libraries that do them too.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct CropCase {
  std::string name;
  const std::uint8_t* frame;  ///< rows of frame_width
  std::uint32_t frame_width, frame_height;
  std::uint32_t top, left;      ///< of the sampled area
  std::uint32_t rows, columns;  ///< of the sampled area
  std::uint32_t out_height, out_width;
  void (*run)(const CropCase& crop, std::uint8_t* output);
  std::uint32_t ratio;
};

const std::vector<CropCase>& CropCases();

/// Room for the largest output.
std::uint8_t* CropOutput();

}  // namespace bench
