// manifest.h: lists of labelled clips, as files.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "clips/clip.h"
#include "host/common/file.h"
#include "host/settings/settings.h"

namespace stopngo {

/// Reads a manifest: tab-separated columns named by its first line, a line a clip, "#" before comments.
///   clip    file (from the manifest's own folder), synth:KIND:SEED, or synth:KIND:FIRST-LAST, a clip a seed
///   region  X,Y,WIDTH,HEIGHT in a picture of 800 × 480; "-": the scene's own, or the tools' default
///   rate    frames a second handed over; "-": as settings tell
///   labels  START END NAME;… in seconds, in order; what lies between is not judged; "-" for scenes
///   kind    the group that the clip counts in (optional); "-": the scene's kind, or "recording"
/// Throws Failure naming file, line and reason.
std::vector<Clip> ReadManifest(const std::string& path);

inline constexpr FileKind kManifestFile{"a manifest", std::uint64_t{64} << 20, true};

/// The clips of several manifests; a recording without a region gets that of the settings. Throws Failure,
/// also when the settings ask for what clips have no place for: frames of another size, a debug framebuffer.
/// allow_damaged: of all of them.
std::vector<Clip> ReadManifests(std::span<const std::string> paths, const Settings& settings,
                                bool allow_damaged);

}  // namespace stopngo
