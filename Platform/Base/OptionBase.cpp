#include "Platform/Base/OptionBase.h"

#include <algorithm>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OptionGroup.h"
#include "Platform/Base/Text.h"

namespace Vn {

OptionBase::OptionBase(std::string const & id, std::wstring const & userName,
                       std::wstring const & toolTip, OptionGroup * group)
    : OptionBase(id, userName, toolTip, group, true) {}

OptionBase::OptionBase(std::string const & id, std::wstring const & userName,
                       std::wstring const & toolTip, OptionGroup * group, bool isListed)
    : m_id(id), m_userName(userName), m_toolTip(toolTip), m_pGroup(group) {
    if (m_pGroup && isListed) m_pGroup->join(this);
}

OptionBase::~OptionBase() {
    if (m_pGroup) m_pGroup->leave(this);
}

void OptionBase::setValueFromString(std::wstring const &) {}
bool OptionBase::doesStringMatchValue(std::wstring const &) const { return false; }
OptionBase::EDataType OptionBase::valueType() const { return DataTypeNone; }

void OptionBase::addChoice(std::wstring const & value, std::wstring const & text) {
    m_choices.push_back({value, text});
}

bool OptionBase::choose(std::wstring const & value) {
    bool const isOffered =
        std::any_of(m_choices.begin(), m_choices.end(),
                    [&](Choice const & choice) { return choice.value == value; });
    if (!isOffered) return false;
    setValueFromString(value);
    if (m_pGroup) m_pGroup->onChoiceChanged(this, value);
    return true;
}

void OptionBase::onSave(XMLNode &, Status &) {}
void OptionBase::onPostSave() {}
void OptionBase::onLoad(XMLNode &, Status &) {}
bool OptionBase::onReload(XMLNode &, Status &) { return false; }
bool OptionBase::onDirty() const { return false; }
bool OptionBase::onNonDefault() const { return false; }
void OptionBase::onReset(Status &) {}
std::wstring OptionBase::onToString() const { return {}; }
std::wstring OptionBase::onGetDynamicStubValue() const { return toString(); }
void OptionBase::onSetFromDynamicStubValue(std::wstring const &) {}

void OptionBase::notifyChange() {
    if (m_pGroup && m_pGroup->isQuiet()) return;
    if (m_pGroup) m_pGroup->onOptionChanged(this);
    if (m_pListener) m_pListener->onOptionChanged(this);
}

void OptionBase::noteUnreadable(std::wstring const & text, char const * wanted, Status & status) {
    m_bUnreadable = true;
    status = Status::corrupt(
        "read the option", m_id,
        localized("\"%1%\" isn't %2%", Text::printable(Text::clipped(text)), localized(wanted)));
}

void OptionBase::noteReadable() noexcept {
    m_bUnreadable = false;
    m_bReplacing = false;
}

} // namespace Vn
