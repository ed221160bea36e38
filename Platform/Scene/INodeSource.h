#ifndef VN_PLATFORM_SCENE_INODESOURCE_H
#define VN_PLATFORM_SCENE_INODESOURCE_H

#include "Platform/Base/UniqueString.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Scene/Export.h"

namespace Vn::Scene {

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
};

} // namespace Vn::Scene

#endif
