#include "Platform/DataModel/IPasteRequest.h"

#include <utility>

namespace Vn {

IPasteRequest::IPasteRequest(Asset * asset, std::vector<ObjectPath> const & paths,
                             ObjectPath const & target, bool insertAfter, bool cut,
                             std::wstring name)
    : Request(asset, std::move(name)), m_paths(paths), m_target(target),
      m_bInsertAfter(insertAfter), m_bCut(cut) {}

IPasteRequest::~IPasteRequest() = default;

void IPasteRequest::onExecute(Status & status) {
    Request::onExecute(status);
    m_target.bind();
    for (ObjectPath & path : m_paths) path.bind();
    for (ObjectPath const & path : m_paths) onPastePath(path);
}

} // namespace Vn
