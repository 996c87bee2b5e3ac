// sidecar.cpp: fuzz target: any bytes as a sidecar. What was read is written and reads back as it was, and settings
// take it or refuse it.
#include "host/settings/sidecar.h"

#include <optional>
#include <string>

#include "host/settings/settings.h"
#include "reading.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using stopngo::Sidecar;
  static const std::string weights = fuzz::Folder().File("w.bin", std::string(4, '\0'));
  const std::string path = stopngo::SidecarPath("w.bin");
  (void)fuzz::Folder().File(path, fuzz::Input(data, size).Rest());
  std::optional<Sidecar> sidecar;
  if (!fuzz::ReadOrRefuse(weights, [&] { sidecar = stopngo::ReadSidecar(weights); })) return 0;
  fuzz::Expect(sidecar.has_value(), "a sidecar that is there is not found");

  stopngo::Settings settings;
  settings.weights = weights;
  (void)fuzz::ReadOrRefuse(
      weights, [&] { (void)stopngo::TakeSidecar(settings, [](const std::string&) { return false; }); });

  const std::string text = stopngo::SidecarText(*sidecar);
  (void)fuzz::Folder().File(path, text);
  std::optional<Sidecar> read;
  fuzz::Expect(fuzz::ReadOrRefuse(weights, [&] { read = stopngo::ReadSidecar(weights); }),
               "a sidecar that was written is refused:\n" + text);
  fuzz::Expect(read && stopngo::SidecarText(*read) == text,
               "a sidecar that was written reads back otherwise:\n" + text);
  return 0;
}
