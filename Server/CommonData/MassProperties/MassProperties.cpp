#include "Server/CommonData/MassProperties/MassProperties.h"

#include <new>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/StringTable.h"
#include "Platform/DataModel/Entity.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Managed/PersistedEntity.h"
#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::CommonData {

namespace {

using System = StrongRef<Units::UnitSystem>;
using Units::SimpleUnit;

// What a quantity is that nobody has written.
constexpr double c_unknown = -1.0;

// The single unit that a system has chosen for an identifier; else the default.
SimpleUnit const * modelingUnit(System const & system, std::string const & id,
                                wchar_t const * defaultText, SimpleUnit const * defaultUnit) {
    Units::UnitContext const context(system, id, std::wstring(defaultText));
    SimpleUnit const * const unit = context.findSimpleExpectedUnits();
    return unit ? unit : defaultUnit;
}

SimpleUnit const * lengthUnit(System const & system) {
    return modelingUnit(system, Units::UnitSystemChoiceById::modelingLengthId(), L"cm",
                        Units::UnitMeter::get(0.01));
}

SimpleUnit const * massUnit(System const & system) {
    return modelingUnit(system, Units::UnitSystemChoiceById::modelingMassId(), L"kg",
                        Units::UnitGram::get(1000.0));
}

std::wstring shown(Units::Unit const & unit, double value) {
    return unit.reconstructString(value, Units::ValueAndUnit, Units::UnitDisplaySettings::get());
}

std::wstring shownInPower(SimpleUnit const * unit, int power, double value) {
    Units::ComplexUnit units;
    for (int i = 0; i < power; ++i) units.addToNumerator(unit);
    return shown(units, value);
}

enum EText : unsigned {
#define VN_MASS_PROPERTY_TEXT(key, text) key,
#include "Server/CommonData/MassProperties/MassPropertyTexts.inc"
};

std::wstring text(EText key) {
    struct Row {
        char const * key;
        wchar_t const * text;
    };
    static constexpr Row c_rows[] = {
#define VN_MASS_PROPERTY_TEXT(key, text) {#key, text},
#include "Server/CommonData/MassProperties/MassPropertyTexts.inc"
    };
    return StringTable::getLocalizedString("VnCommonData", c_rows[key].key, c_rows[key].text);
}

IMassPropertyCalculator * calculatorOf(Entity * owner) {
    return query<IMassPropertyCalculator>(owner);
}

} // namespace

MassProperties::MassProperties() { initializeMemberSetIfNeeded(); }

MassPropertiesValueMetaType * MassProperties::s_metaType() {
    return MassPropertiesValueMetaType::get();
}

void MassProperties::initializeMemberSetIfNeeded() {
    MassPropertiesValueMetaType * const type = s_metaType();
    MemberSet * const set = type->memberSet(c_latestVersion);
    Managed::fillOnce(set, 4, [&] {
        set->initialize(this, type->valueTypeName().c_str());
        initializeMemberSet(type->version(), set);
        MetaType * const base = MetaTypeMgr::get()->metaType(type->baseIdentifier());
        if (base) set->base(base->memberSet(c_latestVersion));
    });
    m_version = type->version();
}

void MassProperties::initializeMemberSet(unsigned version, MemberSet * set) {
    if (version != 0) return;
    Managed::addMember(set, "volumeOverride", m_volumeOverride);
    Managed::addMember(set, "areaOverride", m_areaOverride);
    Managed::addMember(set, "massOverride", m_massOverride);
    Managed::addMember(set, "densityOverride", m_densityOverride);
}

double MassProperties::volume(IComponentTraversalContext * context, bool flag) const {
    double volume = c_unknown;
    if (!isVolumeOverridden(&volume))
        calculatorOf(m_pOwner)->calculate(this, &volume, nullptr, nullptr, nullptr, context, flag);
    return volume;
}

double MassProperties::area(IComponentTraversalContext * context, bool flag) const {
    double area = c_unknown;
    if (!isAreaOverridden(&area))
        calculatorOf(m_pOwner)->calculate(this, nullptr, &area, nullptr, nullptr, context, flag);
    return area;
}

double MassProperties::mass(IComponentTraversalContext * context, bool flag) const {
    double mass = c_unknown;
    calculatorOf(m_pOwner)->calculate(this, nullptr, nullptr, &mass, nullptr, context, flag);
    return mass;
}

double MassProperties::density(IComponentTraversalContext * context, bool flag) const {
    double density = c_unknown;
    calculatorOf(m_pOwner)->calculate(this, nullptr, nullptr, nullptr, &density, context, flag);
    return density;
}

PhysicalMaterial const *
MassProperties::getCommonPhysicalMaterial(IComponentTraversalContext * context, bool flag) const {
    return calculatorOf(m_pOwner)->commonPhysicalMaterial(context, flag);
}

std::wstring MassProperties::volumeString(double value, System system, IComponentTraversalContext *,
                                          bool) {
    return shownInPower(lengthUnit(system), 3, value);
}

std::wstring MassProperties::areaString(double value, System system, IComponentTraversalContext *,
                                        bool) {
    return shownInPower(lengthUnit(system), 2, value);
}

std::wstring MassProperties::massString(double value, System system, IComponentTraversalContext *,
                                        bool) {
    return shown(*massUnit(system), value);
}

std::wstring MassProperties::densityString(double value, System system,
                                           IComponentTraversalContext *, bool) {
    SimpleUnit const * const length = lengthUnit(system);
    Units::ComplexUnit units(massUnit(system));
    for (int i = 0; i < 3; ++i) units.addToDenominator(length);
    return shown(units, value);
}

std::wstring MassProperties::volumeString(System system, IComponentTraversalContext * context,
                                          bool flag) const {
    return volumeString(volume(context, flag), system, context, flag);
}

std::wstring MassProperties::areaString(System system, IComponentTraversalContext * context,
                                        bool flag) const {
    return areaString(area(context, flag), system, context, flag);
}

std::wstring MassProperties::massString(System system, IComponentTraversalContext * context,
                                        bool flag) const {
    return massString(mass(context, flag), system, context, flag);
}

std::wstring MassProperties::densityString(System system, IComponentTraversalContext * context,
                                           bool flag) const {
    return densityString(density(context, flag), system, context, flag);
}

void MassProperties::getAllMassProperties(std::map<std::wstring, std::wstring> & out, System system,
                                          IComponentTraversalContext * context, bool flag) const {
    IMassPropertyCalculator * const calculator = calculatorOf(m_pOwner);
    PhysicalMaterial const * const material = calculator->commonPhysicalMaterial(context, flag);
    std::wstring const materialName = material ? material->name() : text(VariedProperty);
    double volume = c_unknown;
    double area = c_unknown;
    double mass = c_unknown;
    double density = c_unknown;
    calculator->calculate(this, &volume, &area, &mass, &density, context, flag);
    out.insert({text(MaterialProperty), materialName});
    out.insert({text(VolumeProperty), volumeString(volume, system, context, flag)});
    out.insert({text(AreaProperty), areaString(area, system, context, flag)});
    out.insert({text(MassProperty), massString(mass, system, context, flag)});
    out.insert({text(DensityProperty), densityString(density, system, context, flag)});
}

std::wstring MassProperties::toString() const {
    return (Managed::debugFormat(L"Volume %1%, Area %2%, Mass %3%, Density %4%") %
            m_volumeOverride % m_areaOverride % m_massOverride % m_densityOverride)
        .str();
}

void * MassProperties::queryMTInterface(MetaType const * type) {
    return type == s_metaType() ? this : nullptr;
}

// The variable is constant-initialized, and filled in its turn.
MassPropertiesValueMetaType *
    MassPropertiesValueMetaType::c_pTheOnlyOneMassPropertiesValueMetaType = nullptr;

namespace {

struct Publication {
    Publication() {
        MassPropertiesValueMetaType::c_pTheOnlyOneMassPropertiesValueMetaType =
            MassPropertiesValueMetaType::init();
    }
};

[[maybe_unused]] Publication const s_publication VN_LOAD_MASS_PROPERTIES;

} // namespace

MassPropertiesValueMetaType * MassPropertiesValueMetaType::init() {
    static MassPropertiesValueMetaType s_type;
    return &s_type;
}

MassPropertiesValueMetaType * MassPropertiesValueMetaType::get() {
    MassPropertiesValueMetaType * const only = c_pTheOnlyOneMassPropertiesValueMetaType;
    return only ? only : init();
}

std::string MassPropertiesValueMetaType::s_metaTypeId() {
    return "98F3955C-FE39-404A-8724-36D0C15A456C";
}

MassPropertiesValueMetaType::MassPropertiesValueMetaType()
    : ValueMetaType(s_metaTypeId(), "MassPropertiesValueMetaType", 0, "MassProperties", {}) {}

std::size_t MassPropertiesValueMetaType::doSizeInBytes(VisitorContext const &) const {
    return sizeof(MassProperties);
}

void * MassPropertiesValueMetaType::doConstruct(void * memory, VisitorContext const &) const {
    if (memory) new (memory) MassProperties;
    return memory;
}

void * MassPropertiesValueMetaType::doConstruct() const { return new MassProperties; }

void MassPropertiesValueMetaType::doDestruct(void * value) const {
    delete static_cast<MassProperties *>(value);
}

std::wstring MassPropertiesValueMetaType::doToString(void * value, VisitorContext const &) const {
    return static_cast<MassProperties *>(value)->toString();
}

MigrationHelper * MassPropertiesValueMetaType::doMigrationHelper(void * value) const {
    return static_cast<MassProperties *>(value)->m_pMigrationHelper;
}

unsigned MassPropertiesValueMetaType::doMigratingVersion(void * value,
                                                         VisitorContext const &) const {
    return static_cast<MassProperties *>(value)->m_version;
}

void MassPropertiesValueMetaType::doMigratingVersion(void * value, unsigned version,
                                                     VisitorContext const &) const {
    static_cast<MassProperties *>(value)->m_version = version;
}

void * MassPropertiesValueMetaType::doQueryMTInterface(void * value) const {
    return static_cast<MassProperties *>(value)->queryMTInterface(this);
}

EMigrationStatusValue MassPropertiesValueMetaType::onPostMigrate(void *, unsigned,
                                                                 VisitorContext const &) const {
    return MigrationDone;
}

MigrationHelper * MassPropertiesValueMetaType::doCreateMigrationHelper(void *) const {
    return nullptr;
}

bool MassPropertiesValueMetaType::doDeleteMigrationHelper(void *) const { return false; }

void MassPropertiesValueMetaType::onMigratingMemberSet(void * value, unsigned version,
                                                       MemberSet * set,
                                                       VisitorContext const &) const {
    set->initialize(value, "MassProperties");
    static_cast<MassProperties *>(value)->initializeMemberSet(version, set);
}

} // namespace Vn::CommonData
