#ifndef VN_PLATFORM_DATAMODEL_IPASTESOURCE_H
#define VN_PLATFORM_DATAMODEL_IPASTESOURCE_H

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"

namespace Vn::DataModel {

// An object that can be taken to another place.
class VN_DATAMODEL_API IPasteSource {
public:
    virtual ~IPasteSource();

    // Whether it can be cut and copied, and whether it can be moved among its siblings.
    bool canCut() const { return onCanCut(); }
    bool canCopy() const { return onCanCopy(); }
    bool canReorder() const { return onCanReorder(); }

private:
    // The order of the virtual operations is binding.
    virtual bool onCanCut() const = 0;
    virtual bool onCanCopy() const = 0;
    virtual bool onCanReorder() const = 0;

public:
    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

} // namespace Vn::DataModel

#endif
