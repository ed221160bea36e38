#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"

#include "Platform/Base/Initializer.h"
#include "Platform/Base/Numeric.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/StringTable.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

namespace {

Initializer s_options VN_LOAD_UNIT_OPTIONS([] { UnitDisplaySettingsOptionGroup::get(); });

std::wstring localized(char const * key, wchar_t const * text) {
    return StringTable::getLocalizedString("VnCommonData", key, text);
}

// What the record can hold of a value.
short toShort(Option<int> const & option) { return Numeric::saturate<short>(option.value()); }

std::wstring fileNamed(std::wstring const & name) {
    std::wstring const directory = PathInfo::optionsDirectory(true);
    return directory.empty() ? directory : directory + name + L".xml";
}

} // namespace

UnitDisplaySettingsOptionGroup * UnitDisplaySettingsOptionGroup::get() {
#define VN_OPTION_PAGE(id, nameKey, name, tipKey, tip)                                             \
    static UnitDisplaySettingsOptionGroup s_group(id, localized(nameKey, name),                    \
                                                  localized(tipKey, tip));
#include "Server/CommonData/Units/UnitDisplayOptions.inc"
    return &s_group;
}

UnitDisplaySettingsOptionGroup::UnitDisplaySettingsOptionGroup(std::string const & id,
                                                               std::wstring const & userName)
    : OptionGroup(id, userName) {
    prepare();
}

UnitDisplaySettingsOptionGroup::UnitDisplaySettingsOptionGroup(std::string const & id,
                                                               std::wstring const & userName,
                                                               std::wstring const & toolTip)
    : OptionGroup(id, userName, toolTip) {
    prepare();
}

UnitDisplaySettingsOptionGroup::~UnitDisplaySettingsOptionGroup() = default;

void UnitDisplaySettingsOptionGroup::prepare() {
    createOptions();
    Status status; // the base keeps it for the host
    load(status);
    rebuildUserDisplaySettings();
    postLoadOperation([this] { postLoad(); });
}

void UnitDisplaySettingsOptionGroup::createOptions() {
#define VN_OPTION_SUB_GROUP(id, nameKey, name, tipKey, tip)                                        \
    makeSubGroup(id, localized(nameKey, name), localized(tipKey, tip), true, true);
#include "Server/CommonData/Units/UnitDisplayOptions.inc"

    auto const put = [this](OptionBase & option, char const * under) {
        if (!under) return;
        OptionBase * parent = findOption(under);
        for (auto const & subGroup : subGroups())
            if (subGroup->id() == under) parent = subGroup.get();
        option.subGroup(parent);
    };
#define VN_OPTION(name, field, type, standard, under, id, nameKey, userName, tipKey, tip)          \
    m_p##name = std::make_unique<Option<type>>(id, localized(nameKey, userName),                   \
                                               localized(tipKey, tip), this, standard);            \
    put(*m_p##name, under);
#define VN_OPTION_CHOICE(name, value, key, text) m_p##name->addChoice(value, localized(key, text));
#include "Server/CommonData/Units/UnitDisplayOptions.inc"
    m_pCompressUnits->advanced(true);
}

void UnitDisplaySettingsOptionGroup::rebuildUserDisplaySettings() {
    UnitDisplaySettings & settings = UnitDisplaySettings::userEditableSettings();
    settings.generalUnit(toShort(*m_pGeneralUnits));
    settings.generalPrecision(toShort(*m_pGeneralPrecision));
    settings.angularPrecision(toShort(*m_pAngularPrecision));
    settings.scientificPrecision(toShort(*m_pScientificPrecision));
    settings.lengthDisplay(static_cast<ELengthDisplay>(m_pLengthDisplay->value()));
    settings.degreeDisplay(static_cast<EDegreeDisplay>(m_pDegreeDisplay->value()));
    settings.compressUnits(m_pCompressUnits->value());
    settings.scientificNotation(m_pScientificNotation->value());
    settings.decimalPointIsFullStop(m_pDecimalPoint->value());
    settings.displayAbbreviated(m_pDisplayAbbreviated->value());
    settings.displaySymbol(m_pDisplaySymbol->value());
    settings.hideTrailingZeroes(m_pHideTrailingZeroes->value());
    settings.minimumPrecision(toShort(*m_pMinimumPrecision));
    settings.useScientificNotationAboveThreshold(m_pAboveThreshold->value());
    settings.useScientificNotationBelowThreshold(m_pBelowThreshold->value());
}

void UnitDisplaySettingsOptionGroup::postLoad() { rebuildUserDisplaySettings(); }

void UnitDisplaySettingsOptionGroup::onOptionChanged(OptionBase * option) {
    OptionGroup::onOptionChanged(option);
    rebuildUserDisplaySettings();
}

std::wstring
UnitDisplaySettingsOptionGroup::onPersistFile(std::vector<std::wstring> & otherFiles) const {
    otherFiles.push_back(fileNamed(serverOptionFileName()));
    return fileNamed(globalOptionFileName());
}

char const * UnitDisplaySettingsOptionGroup::fieldName(OptionBase const & option) noexcept {
#define VN_OPTION(name, field, type, standard, under, optionId, nameKey, userName, tipKey, tip)    \
    if (option.id() == optionId) return #field;
#include "Server/CommonData/Units/UnitDisplayOptions.inc"
    return nullptr;
}

} // namespace Vn::Units
