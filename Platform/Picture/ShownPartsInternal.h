// What pictures and models agree on.

#ifndef VN_PLATFORM_PICTURE_SHOWNPARTSINTERNAL_H
#define VN_PLATFORM_PICTURE_SHOWNPARTSINTERNAL_H

#include <optional>

#include "Platform/Graphics/NodeWalk.h"
#include "Platform/Picture/ShownParts.h"

namespace Vn::Picture {

// Whether a node, and what is below it, may be seen.
bool isShown(Vrx::Graphics::ARenderNode const & node);

// The finest mesh of a node, if that has triangles; null if it hasn't.
Vrx::Devices::SimpleMesh * shownMesh(Vrx::Graphics::ARenderNode const & node);

// Whether a walk from the top group stands at the background.
bool isBackground(Vrx::Graphics::NodeWalk const & walk);

// The color of an effect, made sound; grey where there is none.
Color shownColor(std::optional<Vrx::Graphics::EffectParams> const & effect);

} // namespace Vn::Picture

#endif
