#ifndef VN_PLATFORM_SCENE_INODESOURCE_H
#define VN_PLATFORM_SCENE_INODESOURCE_H

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Scene/Export.h"

namespace Vn::Scene {

class NodeChange;

// An entity that shows itself in the render graph.
class VN_SCENE_API INodeSource {
public:
    virtual ~INodeSource();

    // The node that stands for the entity.  It stays owned by the source; null if there is none.
    virtual Vrx::Graphics::ARenderNode * renderNode() const = 0;
    // The group that takes the nodes of what stands below the entity; owned as above, and may be
    // null.
    virtual Vrx::Graphics::GroupNode * groupNode() const = 0;

    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;

    // The source for which a NodeChange made a node; null if it was made for none, if that is gone,
    // and for null.
    static INodeSource * of(Vrx::Graphics::ARenderNode const * node) noexcept;

protected:
    INodeSource() noexcept = default;
    // The nodes of a source aren't those of its copy.
    INodeSource(INodeSource const &) noexcept {}
    INodeSource & operator=(INodeSource const &) noexcept { return *this; }

private:
    friend class NodeChange;

    // What the nodes of this source keep, made at the first call.
    StrongRef<RefCounted> tag();

    StrongRef<RefCounted> m_rTag;
};

} // namespace Vn::Scene

#endif
