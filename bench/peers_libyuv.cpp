// peers_libyuv.cpp: the crops by libyuv's point sampling, from the same area to the same size.
#include <libyuv/scale.h>

#include "contestant.h"
#include "crops.h"

namespace bench {

void AddLibyuvPeers(std::vector<Contestant>& peers) {
  for (const CropCase& crop : CropCases()) {
    peers.push_back({crop.name, "libyuv", nullptr, Repeat([&crop] {
                       const auto width = static_cast<int>(crop.out_width);
                       libyuv::ScalePlane(crop.frame + std::size_t{crop.top} * crop.frame_width + crop.left,
                                          static_cast<int>(crop.frame_width), static_cast<int>(crop.columns),
                                          static_cast<int>(crop.rows), CropOutput(), width, width,
                                          static_cast<int>(crop.out_height), libyuv::kFilterNone);
                     })});
  }
}

}  // namespace bench
