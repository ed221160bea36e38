#ifndef VN_PLATFORM_DATAMODEL_IPASTESINK_H
#define VN_PLATFORM_DATAMODEL_IPASTESINK_H

#include <memory>
#include <vector>

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/IPasteRequest.h"
#include "Platform/DataModel/ObjectPath.h"

namespace Vn::DataModel {

// An object at which others can be pasted or dropped.  In all of it `paths` lead to the others, and
// `target` to this object.
class VN_DATAMODEL_API IPasteSink {
public:
    virtual ~IPasteSink();

    // Whether the others can be pasted here.
    bool canPaste(std::vector<ObjectPath> const & paths, ObjectPath const & target) const {
        return onCanPaste(paths, target);
    }
    // A request that pastes them, for Asset::run.  `insertAfter` and `cut` are as of IPasteRequest;
    // with `reorder` the objects are to be moved among their siblings.  Null if the object has
    // none.
    std::unique_ptr<IPasteRequest> providePasteRequest(std::vector<ObjectPath> const & paths,
                                                       ObjectPath const & target, bool insertAfter,
                                                       bool cut, bool reorder) const {
        return onProvidePasteRequest(paths, target, insertAfter, cut, reorder);
    }
    // Whether the others can be moved to a place beside this object.
    bool canReorder(std::vector<ObjectPath> const & paths, ObjectPath const & target) const {
        return onCanReorder(paths, target);
    }

private:
    // The order of the virtual operations is binding.

    // What can be moved here can be pasted here, by default.
    virtual bool onCanPaste(std::vector<ObjectPath> const & paths, ObjectPath const & target) const;
    virtual std::unique_ptr<IPasteRequest>
    onProvidePasteRequest(std::vector<ObjectPath> const & paths, ObjectPath const & target,
                          bool insertAfter, bool cut, bool reorder) const = 0;
    virtual bool onCanReorder(std::vector<ObjectPath> const & paths,
                              ObjectPath const & target) const = 0;

public:
    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

} // namespace Vn::DataModel

#endif
