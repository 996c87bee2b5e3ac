// setting_page.h: the settings, as the man page of their file tells them.
#pragma once

#include <string>

namespace stopngo {

/// Every key with its values, default and control code, in the language of scdoc(5).
std::string SettingPage();

}  // namespace stopngo
