#ifndef VN_PLATFORM_GRAPHICS_EFFECTPARAMS_H
#define VN_PLATFORM_GRAPHICS_EFFECTPARAMS_H

#include "Platform/Types/Color.h"

namespace Vrx::Graphics {

// How a node looks, and all below it that has no effect of its own.
struct EffectParams {
    // Opaque black, or what is given here.
    constexpr EffectParams() noexcept = default;
    constexpr EffectParams(Vn::Color const & ofColor, bool doesOverride,
                           unsigned char ofLayer) noexcept
        : color(ofColor), overrides(doesOverride), layer(ofLayer) {}

    // Equal in everything; a color with a NaN equals none.
    bool operator==(EffectParams const &) const noexcept = default;

    Vn::Color color;         // in which the node shows
    bool overrides = false;  // whether it also replaces the effects of the nodes below
    unsigned char layer = 0; // nodes of a higher layer are drawn over those of lower ones
};

} // namespace Vrx::Graphics

#endif
