// element.cpp: the element zetstopngo, as GStreamer sees it.
#include "host/gstreamer/element.h"

#include <gst/base/gstbasetransform.h>
#include <gst/video/video.h>

#include <exception>
#include <limits>
#include <new>
#include <string>

#include "host/common/failure.h"
#include "host/gstreamer/formats.h"
#include "host/gstreamer/properties.h"
#include "host/gstreamer/telling.h"
#include "host/gstreamer/watcher.h"

namespace stopngo::gst {
namespace {

struct Element {
  GstBaseTransform base;
  Watcher* watcher;
};

struct ElementClass {
  GstBaseTransformClass base;
};

GstBaseTransformClass* parent_class = nullptr;

Watcher& WatcherOf(void* object) { return *static_cast<Element*>(object)->watcher; }

/// Nothing that is thrown gets past here; it is told on the bus.
template <typename Work>
bool Guarded(void* object, Work work) {
  auto* const element = static_cast<GstElement*>(object);
  try {
    work(WatcherOf(object));
    return true;
  } catch (const std::bad_alloc&) {
    Fail(element, "not enough memory");
  } catch (const std::exception& fault) {
    Fail(element, fault.what());
  }
  return false;
}

// ---- Properties: those of the table of settings, and the element's own ----

enum Property : unsigned { kNoProperty, kSetting, kConfig, kSpeed, kSilent, kDraw };

GType DrawingType() {
  static const GEnumValue values[] = {
      {static_cast<int>(Drawing::kNone), "nothing", "none"},
      {static_cast<int>(Drawing::kRegion), "the region's outline, bolder while there is an alarm", "region"},
      {static_cast<int>(Drawing::kAll), "what the module saw, as stopngo render draws it, in grey", "all"},
      {0, nullptr, nullptr}};
  static const GType type = g_enum_register_static("GstZetStopngoDrawing", values);
  return type;
}

void SetProperty(GObject* object, unsigned id, const GValue* value, GParamSpec* spec) {
  Guarded(object, [&](Watcher& watcher) {
    watcher.WithWishes([&](Wishes& wishes) {
      if (id == kSetting) wishes.settings.Set(spec->name, *value);
      if (id == kConfig)
        wishes.config = g_value_get_string(value) != nullptr ? g_value_get_string(value) : "";
      if (id == kSpeed) wishes.speed = wishes.last_speed = g_value_get_double(value);
      if (id == kSilent) wishes.silent = g_value_get_boolean(value) != 0;
      if (id == kDraw) wishes.drawing = static_cast<Drawing>(g_value_get_enum(value));
    });
  });
}

void GetProperty(GObject* object, unsigned id, GValue* value, GParamSpec* spec) {
  Guarded(object, [&](Watcher& watcher) {
    watcher.WithWishes([&](const Wishes& wishes) {
      if (id == kSetting) wishes.settings.Get(spec->name, *value);
      if (id == kConfig) g_value_set_string(value, wishes.config.empty() ? nullptr : wishes.config.c_str());
      if (id == kSpeed) g_value_set_double(value, wishes.last_speed);
      if (id == kSilent) g_value_set_boolean(value, wishes.silent ? TRUE : FALSE);
      if (id == kDraw) g_value_set_enum(value, static_cast<int>(wishes.drawing));
    });
  });
}

void InstallProperties(GObjectClass* object) {
  object->set_property = SetProperty;
  object->get_property = GetProperty;
  InstallSettings(object, kSetting);
  constexpr auto kReadWrite = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
  constexpr auto kBeforeStart = static_cast<GParamFlags>(kReadWrite | GST_PARAM_MUTABLE_READY);
  constexpr auto kAnyTime = static_cast<GParamFlags>(kReadWrite | GST_PARAM_MUTABLE_PLAYING);
  g_object_class_install_property(
      object, kConfig,
      g_param_spec_string(
          "config", "config",
          "TOML file with any of the settings; properties win over it, and it over what belongs to the "
          "weights",
          nullptr, kBeforeStart));
  g_object_class_install_property(
      object, kSpeed,
      g_param_spec_double(
          "speed", "speed",
          "own speed, for the gates speed and once; holds for speed-stale, so tell it again also when "
          "it is the same",
          0, std::numeric_limits<double>::max(), 0, kAnyTime));
  g_object_class_install_property(
      object, kSilent,
      g_param_spec_boolean("silent", "silent",
                           "messages of changed decisions alone; false: of every frame that was handed over",
                           TRUE, kAnyTime));
  g_object_class_install_property(
      object, kDraw,
      g_param_spec_enum("draw", "draw", "what is drawn into the stream, to look at", DrawingType(),
                        static_cast<int>(Drawing::kNone), kAnyTime));
}

// ---- The stream ----

gboolean Start(GstBaseTransform* base) {
  return static_cast<gboolean>(Guarded(base, [](Watcher& watcher) { watcher.Start(); }));
}

gboolean Stop(GstBaseTransform* base) {
  return static_cast<gboolean>(Guarded(base, [](Watcher& watcher) { watcher.Stop(); }));
}

gboolean SetCaps(GstBaseTransform* base, GstCaps* caps, GstCaps* /*out*/) {
  return static_cast<gboolean>(Guarded(base, [caps](Watcher& watcher) {
    GstVideoInfo info;
    if (gst_video_info_from_caps(&info, caps) == 0) throw Failure("the stream's caps tell no frames");
    watcher.Expect(info);
  }));
}

gboolean SinkEvent(GstBaseTransform* base, GstEvent* event) {
  if (GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP) WatcherOf(base).Forget();
  return parent_class->sink_event(base, event);
}

// In place of a transformation: as long as frames pass untouched, the class hands them out as they are, which may have
// others that hold them.
GstFlowReturn GenerateOutput(GstBaseTransform* base, GstBuffer** out) {
  GstBuffer* buffer = base->queued_buf;
  base->queued_buf = nullptr;
  *out = nullptr;
  if (buffer == nullptr) return GST_FLOW_OK;
  if (!Guarded(base, [&](Watcher& watcher) { watcher.Watch(buffer, base->segment); })) {
    gst_buffer_unref(buffer);
    return GST_FLOW_ERROR;
  }
  *out = buffer;
  return GST_FLOW_OK;
}

// ---- The type ----

void Finalize(GObject* object) {
  delete static_cast<Element*>(static_cast<void*>(object))->watcher;
  G_OBJECT_CLASS(parent_class)->finalize(object);
}

void InitClass(void* type_class, void* /*data*/) {
  parent_class = static_cast<GstBaseTransformClass*>(g_type_class_peek_parent(type_class));
  auto* const object = static_cast<GObjectClass*>(type_class);
  object->finalize = Finalize;
  InstallProperties(object);

  auto* const element = static_cast<GstElementClass*>(type_class);
  gst_element_class_set_static_metadata(
      element, "Stop-and-go detector", "Filter/Analyzer/Video",
      "Lets video pass and tells, on the bus and on the buffers, when the vehicle ahead drives off",
      "libzetstopngo");
  GstCaps* const caps = LumaCaps();
  for (const GstPadDirection direction : {GST_PAD_SINK, GST_PAD_SRC}) {
    gst_element_class_add_pad_template(
        element,
        gst_pad_template_new(direction == GST_PAD_SINK ? "sink" : "src", direction, GST_PAD_ALWAYS, caps));
  }
  gst_caps_unref(caps);

  auto* const base = static_cast<GstBaseTransformClass*>(type_class);
  base->start = Start;
  base->stop = Stop;
  base->set_caps = SetCaps;
  base->sink_event = SinkEvent;
  base->generate_output = GenerateOutput;
}

void InitInstance(GTypeInstance* instance, void* /*class*/) {
  auto* const element = static_cast<Element*>(static_cast<void*>(instance));
  element->watcher = new Watcher(&element->base.element);
  // What is drawn goes into a copy where the pixels have other readers, so that frames pass in either case.
  gst_base_transform_set_passthrough(&element->base, TRUE);
}

}  // namespace

GType ElementType() {
  static const GType type =
      g_type_register_static_simple(GST_TYPE_BASE_TRANSFORM, "GstZetStopngo", sizeof(ElementClass), InitClass,
                                    sizeof(Element), InitInstance, static_cast<GTypeFlags>(0));
  return type;
}

bool RegisterElement(GstPlugin* plugin) {
  return gst_element_register(plugin, "zetstopngo", GST_RANK_NONE, ElementType()) != 0;
}

}  // namespace stopngo::gst
