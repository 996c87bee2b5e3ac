// element.h: the element zetstopngo, as GStreamer sees it.
#pragma once

#include <gst/gst.h>

namespace stopngo::gst {

/// The element's type: a filter that lets video pass.
GType ElementType();

/// Registers it under its name, for a plugin or, with null, for the program.
bool RegisterElement(GstPlugin* plugin);

}  // namespace stopngo::gst
