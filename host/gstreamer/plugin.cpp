// plugin.cpp: where GStreamer enters the plugin.
#include <gst/gst.h>

#include "host/gstreamer/element.h"

namespace {

gboolean Register(GstPlugin* plugin) { return static_cast<gboolean>(stopngo::gst::RegisterElement(plugin)); }

}  // namespace

#define PACKAGE "libzetstopngo"  // what the macro calls its source
// No licence is chosen yet.
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zetstopngo, "Tells when the vehicle ahead drives off",
                  Register, STOPNGO_VERSION, GST_LICENSE_UNKNOWN, "libzetstopngo", "libzetstopngo")
