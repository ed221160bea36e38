#ifndef VN_SERVER_COMMONDATA_MANAGED_LISTPLACEINTERNAL_H
#define VN_SERVER_COMMONDATA_MANAGED_LISTPLACEINTERNAL_H

#include <algorithm>
#include <cstddef>

#include "Platform/Base/RefCounted.h"

namespace Vn::Managed {

// The first place of an entity in a list of references, or the end.  Where it stood before hooks
// ran, which may have changed the list, is looked at first, since that is where it mostly still is.
template <class List, class T>
auto findAgain(List const & list, StrongRef<T> const & entity, std::ptrdiff_t before) {
    if (before < static_cast<std::ptrdiff_t>(list.size())) {
        auto const place = list.begin() + before;
        if (*place == entity) return place;
    }
    return std::find(list.begin(), list.end(), entity);
}

} // namespace Vn::Managed

#endif
