// properties.h: the table of settings as properties of an object.
#pragma once

#include <glib-object.h>

#include <map>
#include <string>

#include "host/settings/settings.h"

namespace stopngo::gst {

/// Installs a property for each setting that a pipeline has a use for, all of them under one number.
void InstallSettings(GObjectClass* object, unsigned property_id);

/// What was given as properties.
class GivenSettings {
 public:
  /// name: of a property that InstallSettings installed.
  void Set(const std::string& name, const GValue& value);
  void Get(const std::string& name, GValue& value) const;

  [[nodiscard]] bool Has(const std::string& name) const { return texts_.contains(name); }
  /// The defaults with what was given. Throws Failure naming each property whose value is none.
  [[nodiscard]] Settings Values() const;

 private:
  std::map<std::string, std::string> texts_;  ///< by name, as SetFromText takes them
};

/// A setting that a pipeline has no use for: it may stand in a file that is the command's too.
bool IsOfNoUse(const std::string& name);

}  // namespace stopngo::gst
