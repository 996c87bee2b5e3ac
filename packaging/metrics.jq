# metrics.jq: the status of stopngo run as metrics in text, for a collector such as Prometheus' node_exporter.
#
#     jq -r -f metrics.jq status.json
def metric($name; $kind; $help; value):
  "# HELP stopngo_\($name) \($help)", "# TYPE stopngo_\($name) \($kind)",
  (.inputs[] | "stopngo_\($name){input=\(.input | tojson)} \(value)");
metric("up"; "gauge"; "1 while frames come."; if .state == "running" then 1 else 0 end),
metric("frames_total"; "counter"; "Frames that came in."; .frames),
metric("frames_handed_over_total"; "counter"; "Frames that the detector got."; .handed_over),
metric("frames_dropped_total"; "counter"; "Frames that a newer one came before."; .dropped),
metric("frames_refused_total"; "counter"; "Frames that the module refused."; .refused),
metric("frames_late_total"; "counter"; "Frames decided later than the next one was due."; .late // 0),
metric("frame_age_median_seconds"; "gauge"; "From a frame's coming to its decision."; (.age_ms.median // 0) / 1000),
metric("alarm"; "gauge"; "1 while the decision is an alarm."; if .decision == "alarm" then 1 else 0 end),
metric("troubles_total"; "counter"; "How often the input could not be opened or read on."; .troubles // 0),
metric("reconnects_total"; "counter"; "How often it was opened anew."; .reconnects // 0)
