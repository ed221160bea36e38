#ifndef VN_PLATFORM_SCENE_SCENEROOTINTERNAL_H
#define VN_PLATFORM_SCENE_SCENEROOTINTERNAL_H

#include <utility>

#include "Platform/Graphics/NodeObservers.h"
#include "Platform/Graphics/RenderNode.h"

namespace Vn::Scene {

// The root that a scene shows, and those who watch the scene whichever its root is.  Counted, since
// brackets may outlive the scene.
class SceneRoot final : public Vrx::Graphics::NodeObservers {
public:
    Vrx::Graphics::GroupNode * root() const noexcept { return m_rRoot.get(); }

    // Shows another, which may be null.  A scene that has ended shows nothing.
    void root(StrongRef<Vrx::Graphics::GroupNode> root) noexcept {
        if (m_bEnded) return;
        if (m_rRoot && m_rRoot->observers() == this) m_rRoot->observers(nullptr);
        m_rRoot.swap(root);
        if (m_rRoot) m_rRoot->observers(StrongRef<Vrx::Graphics::NodeObservers>(this));
    }
    // Lets go of the root for good, which ends the circle of it and its observers.
    void end() noexcept {
        root(nullptr);
        m_bEnded = true;
    }

private:
    StrongRef<Vrx::Graphics::GroupNode> m_rRoot;
    bool m_bEnded = false;
};

} // namespace Vn::Scene

#endif
