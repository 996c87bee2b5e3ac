// cast.h: the table of what can move in a scene.
#pragma once

#include <cstdint>
#include <memory>

#include "scene/recipe/kinds.h"
#include "scene/stage/actor.h"

namespace stopngo {

/// The actors of a kind, drawn from a seed: the same on every machine.
Actors MakeActors(ActorKind kind, const Stage& stage, std::uint64_t seed);
std::unique_ptr<ScreenEffect> MakeOverlay(OverlayKind kind, const Stage& stage, std::uint64_t seed);

}  // namespace stopngo
