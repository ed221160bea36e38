#include "Platform/AddInMgr/AddIn.h"

#include <utility>

#include "Platform/AddInMgr/AddInMgr.h"

namespace Vn {

namespace {

AddInConfiguration plainConfiguration(std::string identifier, bool isCore) {
    AddInConfiguration configuration;
    configuration.identifier = std::move(identifier);
    configuration.isCore = isCore;
    return configuration;
}

} // namespace

AddIn::AddIn(std::string identifier, bool coreAddIn)
    : AddIn(plainConfiguration(std::move(identifier), coreAddIn)) {}

AddIn::AddIn(AddInConfiguration configuration) : m_configuration(std::move(configuration)) {}

AddIn::~AddIn() = default;

AddIn * AddIn::defaultCommonDataServerAddIn() { return &AddInMgr::get()->commonDataServer(); }

EAddInState AddIn::state() const {
    std::lock_guard const guard(m_mutex);
    return m_state;
}

Status AddIn::status() const {
    std::lock_guard const guard(m_mutex);
    return m_status;
}

IAddIn * AddIn::object() const {
    std::lock_guard const guard(m_mutex);
    return m_pObject;
}

void AddIn::set(EAddInState state, Status status, IAddIn * object) {
    std::lock_guard const guard(m_mutex);
    m_state = state;
    m_status = std::move(status);
    m_pObject = object;
}

} // namespace Vn
