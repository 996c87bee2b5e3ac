// import.h: what the frame pipeline asks of the crops before it calls them.
#pragma once

#include "bitclip.h"
#include "resample.h"

/// What Image_Cropping_ samples.
Sampling CroppingSource(const DATA_32* Source_Location, DATA_32 Ratio);

/// What Image_Original_Cropping_ samples, for an output of CropY × CropX.
Sampling OriginalCroppingSource(DATA_32 original_width, const DATA_32* Source_L, DATA_32 CropY, DATA_32 CropX,
                                DATA_32 Ratio);
