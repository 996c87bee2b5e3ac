// properties.cpp: the table of settings as properties of an object.
#include "host/gstreamer/properties.h"

#include <gst/gst.h>

#include <limits>
#include <stdexcept>
#include <variant>

#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/settings/setting_table.h"

namespace stopngo::gst {
namespace {

constexpr auto kFlags =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_NAME | G_PARAM_STATIC_NICK |
                             G_PARAM_STATIC_BLURB | GST_PARAM_MUTABLE_READY);

/// The names of a choice as an enumeration, which the type system keeps for as long as the program runs.
GType EnumOf(const Setting& setting, const Choice& choice) {
  const std::string type_name = "GstZetStopngo-" + std::string(setting.name);
  if (const GType known = g_type_from_name(type_name.c_str()); known != G_TYPE_INVALID) return known;
  auto* const values = g_new0(GEnumValue, choice.names.size() + 1);
  for (std::size_t i = 0; i < choice.names.size(); ++i) {
    values[i] = {static_cast<int>(i), choice.names[i], choice.names[i]};
  }
  return g_enum_register_static(type_name.c_str(), values);
}

/// A kind of setting as a kind of property. Times, sets of names and numbers that may be left out are texts, as they
/// are in a file.
struct SpecMaker {
  const Setting& setting;
  const Settings& defaults;

  GParamSpec* operator()(Internal) const { return nullptr; }
  GParamSpec* operator()(int Settings::*field) const {
    return g_param_spec_int(setting.name, setting.name, setting.help, std::numeric_limits<int>::min(),
                            std::numeric_limits<int>::max(), defaults.*field, kFlags);
  }
  GParamSpec* operator()(double Settings::*field) const { return Real(-kMost, defaults.*field); }
  GParamSpec* operator()(const RateField& rate) const { return Real(0, defaults.*rate.field); }
  GParamSpec* operator()(bool Settings::*field) const {
    return g_param_spec_boolean(setting.name, setting.name, setting.help,
                                static_cast<gboolean>(defaults.*field), kFlags);
  }
  GParamSpec* operator()(const Choice& choice) const {
    return g_param_spec_enum(setting.name, setting.name, setting.help, EnumOf(setting, choice),
                             defaults.*choice.field, kFlags);
  }
  template <typename Text>
  GParamSpec* operator()(const Text& /*field*/) const {
    // What nothing is set for has no default, not an empty one.
    const std::string text = TextOf(defaults, setting);
    return g_param_spec_string(setting.name, setting.name, setting.help,
                               text.empty() ? nullptr : text.c_str(), kFlags);
  }

  static constexpr double kMost = std::numeric_limits<double>::max();

  [[nodiscard]] GParamSpec* Real(double least, double value) const {
    return g_param_spec_double(setting.name, setting.name, setting.help, least, kMost, value, kFlags);
  }
};

/// The class of an enumeration, for as long as its names are looked up.
class EnumNames {
 public:
  explicit EnumNames(const GValue& value)
      : names_(static_cast<GEnumClass*>(g_type_class_ref(G_VALUE_TYPE(&value)))) {}
  ~EnumNames() { g_type_class_unref(names_); }
  EnumNames(const EnumNames&) = delete;
  EnumNames& operator=(const EnumNames&) = delete;

  [[nodiscard]] const char* NameOf(int number) const { return g_enum_get_value(names_, number)->value_nick; }
  [[nodiscard]] int NumberOf(const std::string& name) const {
    return g_enum_get_value_by_nick(names_, name.c_str())->value;
  }

 private:
  GEnumClass* names_;
};

/// The value as the table takes it; empty: none.
std::string TextOfValue(const GValue& value) {
  if (G_VALUE_HOLDS_INT(&value)) return std::to_string(g_value_get_int(&value));
  if (G_VALUE_HOLDS_DOUBLE(&value)) return NumberText(g_value_get_double(&value));
  if (G_VALUE_HOLDS_BOOLEAN(&value)) return g_value_get_boolean(&value) != 0 ? "true" : "false";
  if (G_VALUE_HOLDS_ENUM(&value)) return EnumNames(value).NameOf(g_value_get_enum(&value));
  const char* const text = g_value_get_string(&value);
  return text == nullptr ? "" : text;
}

void PutText(GValue& value, const std::string& text) {
  if (G_VALUE_HOLDS_INT(&value)) {
    g_value_set_int(&value, NumberOf<int>(text).value_or(0));
  } else if (G_VALUE_HOLDS_DOUBLE(&value)) {
    g_value_set_double(&value, NumberOf<double>(text).value_or(0));
  } else if (G_VALUE_HOLDS_BOOLEAN(&value)) {
    g_value_set_boolean(&value, static_cast<gboolean>(text == "true"));
  } else if (G_VALUE_HOLDS_ENUM(&value)) {
    g_value_set_enum(&value, EnumNames(value).NumberOf(text));
  } else {
    g_value_set_string(&value, text.empty() ? nullptr : text.c_str());
  }
}

}  // namespace

// The debug framebuffer ends as a picture that the command writes.
bool IsOfNoUse(const std::string& name) {
  const Setting* const setting = FindSetting(name);
  return setting != nullptr &&
         (setting->code == VEL_CTRL_STOPNGO_DEBUG_FB || setting->code == VEL_CTRL_STOPNGO_LCD_WIDTH ||
          setting->code == VEL_CTRL_STOPNGO_LCD_HEIGHT);
}

void InstallSettings(GObjectClass* object, unsigned property_id) {
  const Settings defaults;
  for (const Setting& setting : SettingTable()) {
    GParamSpec* const spec =
        IsOfNoUse(setting.name) ? nullptr : std::visit(SpecMaker{setting, defaults}, setting.field);
    if (spec != nullptr) g_object_class_install_property(object, property_id, spec);
  }
}

void GivenSettings::Set(const std::string& name, const GValue& value) {
  const std::string text = TextOfValue(value);
  if (text.empty()) {
    texts_.erase(name);
  } else {
    texts_[name] = text;
  }
}

void GivenSettings::Get(const std::string& name, GValue& value) const {
  const auto given = texts_.find(name);
  PutText(value, given != texts_.end() ? given->second : TextOf(Settings(), *FindSetting(name)));
}

Settings GivenSettings::Values() const {
  Settings settings;
  std::string faults;
  for (const auto& [name, text] : texts_) {
    try {
      SetFromText(settings, *FindSetting(name), text);
    } catch (const std::invalid_argument& reason) {
      Enlist(faults, name + ": " + reason.what());
    }
  }
  if (!faults.empty()) throw Failure(faults);
  return settings;
}

}  // namespace stopngo::gst
