#include "Platform/DataModel/DataChange.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn {

namespace {

constinit InterfaceId s_id("Vn::DataChange");

} // namespace

DataChange::DataChange() = default;

DataChange::DataChange(DataChange const & other) { *this = other; }

DataChange & DataChange::operator=(DataChange const & other) {
    if (this == &other) return *this;
    std::vector<Attached> const attached = other.m_attached;
    dropAttached();
    for (Attached const & i : attached)
        if (i.isOwned)
            addDataChange(i.details->clone().release(), true);
        else
            addDataChange(i.details, false);
    return *this;
}

DataChange::~DataChange() { dropAttached(); }

void DataChange::dropAttached() noexcept {
    for (Attached const & i : m_attached)
        if (i.isOwned) delete i.details;
    m_attached.clear();
}

void DataChange::addDataChange(DataChange * details, bool own) {
    if (!details) return;
    std::unique_ptr<DataChange> guard(own ? details : nullptr);
    m_attached.push_back({details, own});
    static_cast<void>(guard.release());
}

unsigned DataChange::dataChanges() const noexcept {
    return static_cast<unsigned>(m_attached.size());
}

DataChange * DataChange::dataChange(unsigned index) const noexcept {
    return index < m_attached.size() ? m_attached[index].details : nullptr;
}

DataChange * DataChange::find(UniqueString const * interfaceId) {
    if (queryInterface(interfaceId)) return this;
    for (Attached const & i : m_attached)
        if (DataChange * const found = i.details->find(interfaceId)) return found;
    return nullptr;
}

std::wstring DataChange::typeText(EChangeType type) {
    if (type == ChangeStructural) return L"ChangeStructural";
    std::wstring text;
    auto const add = [&](EChangeType bit, wchar_t const * word) {
        if (!(type & bit)) return;
        if (!text.empty()) text += L" | ";
        text += word;
    };
    add(ChangeValue, L"ChangeValue");
    add(ChangeChildren, L"ChangeChildren");
    unsigned const rest = type & ~(0U + ChangeValue + ChangeChildren);
    if (rest) {
        if (!text.empty()) text += L" | ";
        text += std::to_wstring(rest);
    }
    return text;
}

UniqueString const * DataChange::interfaceId() { return s_id.get(); }
UniqueString const * DataChange::getInterfaceId() const { return interfaceId(); }
void * DataChange::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<DataChange *>(this) : nullptr;
}

DataChange * DataChange::onClone() const { return new DataChange(*this); }
std::string DataChange::onToString() const { return "DataChange"; }

} // namespace Vn
