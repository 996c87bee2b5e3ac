// flip_mark.cpp: turning an image over and marking it. The detector needs neither: they are for the host.
#include <cstddef>

#include "kernels/kernels.h"
#include "vel_stopngo.h"

extern "C" {

void Image_Flipping_(data_08* Image, data_08* Buffer, DATA_32 EndY, DATA_32 EndX) {
  if (Image == nullptr || Buffer == nullptr || EndX == 0) return;
  const std::size_t RowLength = EndX;
  for (DATA_32 Row = 0; Row < EndY / 2; ++Row) {
    data_08* LineA = Image + Row * RowLength;
    data_08* LineB = Image + (EndY - 1 - Row) * RowLength;
    Kernels().ExchangeRows(LineA, LineB, Buffer, EndX);
  }
}

void Image_Marking_(data_08* Image, const DATA_08* Mark, const DATA_32* Location, DATA_32 EndX) {
  if (Image == nullptr || Mark == nullptr || Location == nullptr) return;
  if (Location[2] <= Location[0] || Location[3] <= Location[1]) return;
  const DATA_32 Width = Location[3] - Location[1];
  data_08* ImagePointer = Image + std::size_t{Location[0]} * EndX + Location[1];
  Kernels().MarkRows(ImagePointer, Mark, Location[2] - Location[0], Width, EndX);
}

}  // extern "C"
