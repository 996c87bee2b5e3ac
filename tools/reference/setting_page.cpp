// setting_page.cpp: the settings, as the man page of their file tells them.
#include "reference/setting_page.h"

#include <variant>

#include "host/settings/setting_table.h"
#include "host/settings/settings.h"
#include "host/settings/settings_file.h"
#include "reference/scdoc.h"

namespace stopngo {

std::string SettingPage() {
  const Settings usual;
  std::string text;
  for (const Setting& setting : SettingTable()) {
    if (*setting.name == '\0') continue;
    const std::string value = TextOf(usual, setting);
    const bool flag = std::holds_alternative<bool Settings::*>(setting.field);
    const std::string name = PlainScdoc(setting.name);
    text += text.empty() ? "" : "\n";
    text += '*' + name + '*';
    if (!value.empty()) text += " = " + PlainScdoc(flag ? value : TomlValue(value));
    text += "\n\t" + PlainScdoc(setting.help) + ". Takes " + PlainScdoc(RangeOf(setting)) + '.';
    if (value.empty()) text += " Not set unless given.";
    if (setting.code != VEL_CTRL_STOPNGO_END) text += " Control code " + std::to_string(setting.code) + '.';
    if (setting.in_sidecar) text += " A sidecar may give it.";
    text += '\n';
  }
  return text;
}

}  // namespace stopngo
