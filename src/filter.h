// filter.h: the filter of the frame path, as its setting chooses it.
#pragma once

#include "bitclip.h"

/// Whether Filter, 1 the median and 2 the Gaussian, changes a picture of that size at all.
bool FilterRuns(INTE_32 Filter, DATA_32 Width, DATA_32 Height);

/// Runs it in place.
void RunFilter(INTE_32 Filter, data_08* Image, DATA_32 Width, DATA_32 Height);
