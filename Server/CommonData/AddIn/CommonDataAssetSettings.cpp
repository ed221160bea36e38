#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"

#include <utility>

#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Server/CommonData/NamedViews/NamedViews.h"
#include "Server/CommonData/Units/UnitSystem.h"

namespace Vn::CommonData {

namespace {

// The kind of a member.
template <class Value>
MemberMetaType * kindOf() {
    return Managed::FieldKind<Value>::get();
}
template <>
MemberMetaType * kindOf<TgPoint3d>() {
    return TgPoint3dMetaType::get();
}
template <>
MemberMetaType * kindOf<TgVector3d>() {
    return TgVector3dMetaType::get();
}

template <class Stored, class Value>
void store(CommonDataAssetSettings & settings, Stored & stored, Value const & value) {
    EntityChange const change(&settings, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    stored = value;
}

template <class Value>
void storeIfChanged(CommonDataAssetSettings & settings, Value & stored, Value const & value) {
    if (stored != value) store(settings, stored, value);
}

} // namespace

StrongRefCreator<CommonDataAssetSettings> CommonDataAssetSettings::make(Segment * segment) {
    return create(segment);
}

CommonDataAssetSettings::CommonDataAssetSettings(Segment * segment) : Persisted(segment) {
#define VN_SETTING(type, accessor, member, standard, version) m_##accessor = standard;
#define VN_SETTING_MARK VN_SETTING
#define VN_SETTING_SYSTEM(type, accessor, member, version)
#define VN_SETTING_VIEWS(type, accessor, member, version)
#include "Server/CommonData/AddIn/CommonDataAssetSettings.inc"
    initializeMemberSetIfNeeded();
}

// What the file lacks stays zero.
CommonDataAssetSettings::CommonDataAssetSettings(Segment * segment, unsigned long long id)
    : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

CommonDataAssetSettings::~CommonDataAssetSettings() = default;

void CommonDataAssetSettings::initializeMemberSet(unsigned version, MemberSet * set) {
    auto const add = [&]<class Field>(char const * name, Field & field, unsigned since) {
        return version < since ? nullptr : Managed::addMember(set, name, field, kindOf<Field>());
    };
#define VN_SETTING(type, accessor, member, standard, since) add(member, m_##accessor, since);
#define VN_SETTING_MARK VN_SETTING
#define VN_SETTING_SYSTEM(type, accessor, member, since)                                           \
    add(member, m_##accessor, since)->clear(Member::OptionFollowed);
#define VN_SETTING_VIEWS(type, accessor, member, since) add(member, m_##accessor, since);
#include "Server/CommonData/AddIn/CommonDataAssetSettings.inc"
}

#define VN_SETTING(type, accessor, member, standard, version)                                      \
    void CommonDataAssetSettings::accessor(type value) {                                           \
        storeIfChanged(*this, m_##accessor, value);                                                \
    }                                                                                              \
    type CommonDataAssetSettings::accessor() const { return m_##accessor; }
#define VN_SETTING_MARK(type, accessor, member, standard, version)
#define VN_SETTING_SYSTEM(type, accessor, member, version)
#define VN_SETTING_VIEWS(type, accessor, member, version)
#include "Server/CommonData/AddIn/CommonDataAssetSettings.inc"

void CommonDataAssetSettings::settingsInitialized(bool initialized) {
    m_settingsInitialized = initialized;
    markModified(&m_settingsInitialized);
}
bool CommonDataAssetSettings::settingsInitialized() const { return m_settingsInitialized; }

void CommonDataAssetSettings::activateUnitSystem(StrongRef<Units::UnitSystem> system) {
    if (activeUnitSystem() != system) store(*this, m_activeUnitSystem, system);
}
StrongRef<Units::UnitSystem> CommonDataAssetSettings::activeUnitSystem() const {
    return m_activeUnitSystem.lock();
}

void CommonDataAssetSettings::namedViews(StrongRef<NameView::NamedViews> views) {
    if (m_namedViews == views) return;
    m_namedViews = std::move(views);
    markModified(&m_namedViews);
}
StrongRef<NameView::NamedViews> CommonDataAssetSettings::namedViews() const {
    return m_namedViews && m_namedViews->isAlive() ? m_namedViews : nullptr;
}

void CommonDataAssetSettings::gridSize(int number, double first, double second) {
    if (m_gridNumber == number && m_firstGridSize == first && m_secondGridSize == second) return;
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, false);
    m_gridNumber = number;
    m_firstGridSize = first;
    m_secondGridSize = second;
}
int CommonDataAssetSettings::gridSize(double & first, double & second) const {
    first = m_firstGridSize;
    second = m_secondGridSize;
    return m_gridNumber;
}

std::wstring CommonDataAssetSettings::onToString() const {
    return (Managed::debugFormat(L"CommonDataAssetSettings (base %1%)") %
            AssetSettings::onToString())
        .str();
}

} // namespace Vn::CommonData
