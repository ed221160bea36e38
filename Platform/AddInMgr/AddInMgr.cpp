#include "Platform/AddInMgr/AddInMgr.h"

#include <utility>

#include "Platform/Base/Shared.h"

namespace Vn {

AddIn::AddIn(std::string identifier, bool coreAddIn)
    : m_identifier(std::move(identifier)), m_bCoreAddIn(coreAddIn) {}

AddInMgr * AddInMgr::get() {
    static constinit Shared<AddInMgr> s_manager;
    return &s_manager.get([] { return new AddInMgr; });
}

AddIn * AddInMgr::addIn(std::string const & identifier) const {
    std::lock_guard const guard(m_mutex);
    auto const found = m_addIns.find(identifier);
    return found == m_addIns.end() ? nullptr : found->second.get();
}

bool AddInMgr::registerAddIn(std::unique_ptr<AddIn> addIn) {
    if (!addIn) return false;
    std::lock_guard const guard(m_mutex);
    std::string const & identifier = addIn->identifier();
    return m_addIns.try_emplace(identifier, std::move(addIn)).second;
}

} // namespace Vn
