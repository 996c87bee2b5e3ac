// targets.h: what the kernels have to reach, as ratios on x86-64 and as instructions on aarch64.
#pragma once

namespace bench {

enum class Against {
  kPlain,  ///< at least bound times as fast as the plain form
  kPeer,   ///< at most bound times as long as the library takes
};

struct RatioTarget {
  const char* routine;
  const char* table;  ///< of kernels; null: the fastest there is
  Against against;
  double bound;
};

/// A tenth or so beyond what was seen: ratios differ between machines, and a miss shall be a slower kernel.
inline constexpr RatioTarget kRatioTargets[] = {
    {"Block_Match_TSS_", "avx2", Against::kPlain, 17},
    {"Block_Match_TSS_", "avx2", Against::kPeer, 0.70},
    {"Block_Match_TSS_", "avx512vnni", Against::kPlain, 26},
    {"Block_Match_TSS_", "avx512vnni", Against::kPeer, 0.45},
    {"Block_Local_Histogram_", nullptr, Against::kPlain, 15},
    {"Classify_Conversion_", nullptr, Against::kPlain, 7},
    {"Classify_Feature_", nullptr, Against::kPlain, 7},
    // As fast as memory is copied: a tenth is left to noise.
    {"Image_Cropping_ Ratio 0", nullptr, Against::kPeer, 1.1},
    {"Image_Cropping_ Ratio 2", nullptr, Against::kPeer, 0.10},
    {"Image_Cropping_ Ratio 4", nullptr, Against::kPeer, 0.10},
    {"Image_Cropping_ Ratio 5", nullptr, Against::kPeer, 0.14},
    {"Image_Cropping_ Ratio 6", nullptr, Against::kPeer, 0.08},
    {"Image_Cropping_ Ratio 7", nullptr, Against::kPeer, 0.08},
    {"Image_Cropping_ Ratio 8", nullptr, Against::kPeer, 0.08},
    {"Image_Original_Cropping_ 1920 Ratio 0", nullptr, Against::kPeer, 0.35},
    {"Image_Original_Cropping_ 1920 Ratio 2", nullptr, Against::kPeer, 0.35},
    {"Image_Original_Cropping_ 1920 Ratio 4", nullptr, Against::kPeer, 0.30},
    {"Image_Original_Cropping_ 1920 Ratio 6", nullptr, Against::kPeer, 1.2},
    {"Image_Original_Cropping_ 1920 Ratio 8", nullptr, Against::kPeer, 0.25},
    {"Image_Original_Cropping_ 1280 Ratio 0", nullptr, Against::kPeer, 0.18},
    {"Image_Original_Cropping_ 1280 Ratio 2", nullptr, Against::kPeer, 0.18},
    {"Image_Original_Cropping_ 1280 Ratio 4", nullptr, Against::kPeer, 0.37},
    {"Image_Original_Cropping_ 1280 Ratio 6", nullptr, Against::kPeer, 0.13},
    {"Image_Original_Cropping_ 1280 Ratio 8", nullptr, Against::kPeer, 0.13},
    {"Image_Subsampling_2_", nullptr, Against::kPeer, 1.0},
    {"Image_Subsampling_3_", nullptr, Against::kPeer, 0.17},
    {"Image_ROI_2_", nullptr, Against::kPeer, 1.0},
    {"Image_ROI_3_", nullptr, Against::kPeer, 0.17},
    {"Image_Flipping_", nullptr, Against::kPeer, 0.75},
    {"Image_Marking_", nullptr, Against::kPeer, 0.40},
    {"image_median_filter", nullptr, Against::kPlain, 270},
    {"image_median_filter", nullptr, Against::kPeer, 0.28},
    {"image_gaussian_blur_filter", nullptr, Against::kPlain, 22},
    {"image_gaussian_blur_filter", nullptr, Against::kPeer, 0.70},
    {"median_filter", nullptr, Against::kPlain, 700},
    {"median_filter", nullptr, Against::kPeer, 0.13},
    {"vel_stopngo_write", "avx2", Against::kPlain, 16},
    {"vel_stopngo_write", "avx2", Against::kPeer, 0.70},
    {"vel_stopngo_write", "avx512vnni", Against::kPlain, 24},
    {"vel_stopngo_write", "avx512vnni", Against::kPeer, 0.45},
};

struct CountTarget {
  const char* routine;
  const char* table;  ///< of kernels; null: the fastest there is
  double bound;       ///< instructions of one call
};

inline constexpr CountTarget kCountTargets[] = {
    {"Block_Match_TSS_", "neon", 400'000},
    {"Block_Match_TSS_", "neon_dotprod", 225'000},
    {"image_median_filter", nullptr, 150'000},
    {"image_gaussian_blur_filter", nullptr, 250'000},
    {"Classify_Feature_", nullptr, 3'600},
    {"Image_Cropping_ Ratio 2", nullptr, 9'500},
    {"median_filter", nullptr, 80'000},
    {"vel_stopngo_write", "neon", 420'000},
    {"vel_stopngo_write", "neon_dotprod", 240'000},
};

}  // namespace bench
