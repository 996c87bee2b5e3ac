// settings.cpp: fuzz target: any bytes as a TOML file of settings. What was read is written and reads back as it was.
#include "host/settings/settings.h"

#include <string>
#include <vector>

#include "host/settings/settings_file.h"
#include "reading.h"

namespace {

bool Nothing(const std::string& /*name*/) { return false; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string path = fuzz::Folder().File("car.toml", fuzz::Input(data, size).Rest());
  stopngo::Settings settings;
  if (!fuzz::ReadOrRefuse(path, [&] { (void)ReadSettingsFile(path, settings, Nothing); })) return 0;
  const std::vector<std::string> lines = SettingsLines(settings);
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  const std::string written = fuzz::Folder().File("written.toml", text);
  stopngo::Settings read;
  fuzz::Expect(fuzz::ReadOrRefuse(written, [&] { (void)ReadSettingsFile(written, read, Nothing); }),
               "settings that were written are refused:\n" + text);
  fuzz::Expect(SettingsLines(read) == lines, "settings that were written read back otherwise:\n" + text);
  return 0;
}
