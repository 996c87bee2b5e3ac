// row_text.h: marking and exchanging rows, for whatever vectors are in scope.
//
// Not a header of its own: the file of an instruction set includes it once, amid its namespace and target,
// after Bytes, kBytes, Load, Store and Xor are known there. Both answer whether the row was served.

/// Rows start and end with a vector that overlaps its neighbour. What these two write is read before all
/// else, so it is right however much was written meanwhile; between them the vectors of the image are
/// aligned, so that no store straddles two cache lines. The byte loop sees its own marks only where the
/// mark lies behind the image by less than a row; one ahead of the image is read before it changes.
bool MarkVectors(data_08* Image, const DATA_08* Mark, DATA_32 Width) {
  const auto Behind = reinterpret_cast<std::uintptr_t>(Image) - reinterpret_cast<std::uintptr_t>(Mark);
  if (Width < kBytes || Behind - 1 < Width - std::uintptr_t{1}) return false;
  const std::size_t Last = Width - std::size_t{kBytes};
  const Bytes Start = Xor(Load(Image), Load(Mark));
  const Bytes End = Xor(Load(Image + Last), Load(Mark + Last));
  std::size_t i = kBytes - reinterpret_cast<std::uintptr_t>(Image) % kBytes;
  for (; i + kBytes < Last; i += 2 * kBytes) {
    const Bytes First = Xor(Load(Image + i), Load(Mark + i));
    const Bytes Second = Xor(Load(Image + i + kBytes), Load(Mark + i + kBytes));
    Store(Image + i, First);
    Store(Image + i + kBytes, Second);
  }
  if (i < Last) Store(Image + i, Xor(Load(Image + i), Load(Mark + i)));
  Store(Image, Start);
  Store(Image + Last, End);
  return true;
}

/// Exchanges four vectors; all are read before any is written, so that loads and stores come in bursts.
STOPNGO_INLINE void ExchangeBurst(data_08* LineA, data_08* LineB) {
  const Bytes a0 = Load(LineA);
  const Bytes a1 = Load(LineA + kBytes);
  const Bytes a2 = Load(LineA + 2 * kBytes);
  const Bytes a3 = Load(LineA + 3 * kBytes);
  const Bytes b0 = Load(LineB);
  const Bytes b1 = Load(LineB + kBytes);
  const Bytes b2 = Load(LineB + 2 * kBytes);
  const Bytes b3 = Load(LineB + 3 * kBytes);
  Store(LineA, b0);
  Store(LineA + kBytes, b1);
  Store(LineA + 2 * kBytes, b2);
  Store(LineA + 3 * kBytes, b3);
  Store(LineB, a0);
  Store(LineB + kBytes, a1);
  Store(LineB + 2 * kBytes, a2);
  Store(LineB + 3 * kBytes, a3);
}

/// The rows trade places in registers, without the buffer. Between a vector at either end the vectors of
/// LineA are aligned, so that none of its stores straddles two cache lines; nor do those of LineB, when the
/// rows are a multiple of the vector apart.
bool ExchangeVectors(data_08* LineA, data_08* LineB, DATA_32 Width) {
  if (Width < kBytes) return false;
  const std::size_t Last = Width - std::size_t{kBytes};
  const Bytes StartA = Load(LineA);
  const Bytes StartB = Load(LineB);
  const Bytes EndA = Load(LineA + Last);
  const Bytes EndB = Load(LineB + Last);
  std::size_t i = kBytes - reinterpret_cast<std::uintptr_t>(LineA) % kBytes;
  for (; i + 4 * kBytes <= Last; i += 4 * kBytes) ExchangeBurst(LineA + i, LineB + i);
  for (; i < Last; i += kBytes) {
    const Bytes a = Load(LineA + i);
    Store(LineA + i, Load(LineB + i));
    Store(LineB + i, a);
  }
  Store(LineA, StartB);
  Store(LineB, StartA);
  Store(LineA + Last, EndB);
  Store(LineB + Last, EndA);
  return true;
}
