#ifndef VN_PLATFORM_DATAMODEL_ACTIVEASSET_H
#define VN_PLATFORM_DATAMODEL_ACTIVEASSET_H

#include "Platform/DataModel/Export.h"

namespace Vn {

class Asset;

// The document that the user works on, for what has no other way to it, such as the text commands
// of add-ins.  A host that has one tells it here.  Belongs to the thread of the documents.
class VN_DATAMODEL_API ActiveAsset {
public:
    // That document; null if there is none.  It isn't owned, and isn't active any more from the
    // moment at which it is closed.
    static Asset * get() noexcept;
    // Makes a document the active one in place of another; null for none.
    static void set(Asset * asset) noexcept;

    ActiveAsset() = delete;
};

} // namespace Vn

#endif
