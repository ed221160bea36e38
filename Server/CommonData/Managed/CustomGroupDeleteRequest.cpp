#include "Server/CommonData/Managed/CustomGroupDeleteRequest.h"

#include <utility>

#include "Server/CommonData/Managed/CustomGroups.h"

namespace Vn::Managed {

CustomGroupDeleteRequest::CustomGroupDeleteRequest(Asset * asset, StrongRef<CustomGroup> group)
    : Request(asset, L"Delete Group"), m_rGroup(std::move(group)) {}

CustomGroupDeleteRequest::~CustomGroupDeleteRequest() = default;

std::unique_ptr<CustomGroupDeleteRequest>
CustomGroupDeleteRequest::make(Asset * asset, StrongRef<CustomGroup> group) {
    return std::unique_ptr<CustomGroupDeleteRequest>(
        new CustomGroupDeleteRequest(asset, std::move(group)));
}

void CustomGroupDeleteRequest::onPreExecute(Status & status) { Request::onPreExecute(status); }
void CustomGroupDeleteRequest::onPostExecute(Status & status) { Request::onPostExecute(status); }
void CustomGroupDeleteRequest::onCancel() { Request::onCancel(); }

void CustomGroupDeleteRequest::onExecute(Status & status) {
    Request::onExecute(status);
    if (!m_rGroup) return;
    ICustomGroupParent * const holder = m_rGroup->groupParent();
    StrongRef<Entity> const parent = m_rGroup->parent();
    auto * const groups = query<CustomGroups>(parent.get());
    if (!holder || !groups) return;
    groups->removeChild(m_rGroup);
    holder->removeGroupChild(m_rGroup.get());
    m_rGroup.reset();
}

} // namespace Vn::Managed
