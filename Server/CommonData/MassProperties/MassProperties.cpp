#include "Server/CommonData/MassProperties/MassProperties.h"

#include <new>
#include <vector>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Shared.h"
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

// The single unit that a context of a system, an identifier and a text expects; else the unit of
// the text.
SimpleUnit const * modelingUnit(System const & system, std::string const & id,
                                wchar_t const * defaultText, SimpleUnit const * (*defaultUnit)()) {
    SimpleUnit const * unit = nullptr;
    // A choice by the identifier goes before everything.
    if (StrongRef<Units::UnitSystemChoice> const choice = system ? system->find(id) : nullptr)
        choice->units().isSimpleUnit(&unit);
    else
        unit = Units::UnitContext(system, std::wstring(defaultText)).findSimpleExpectedUnits();
    return unit ? unit : defaultUnit();
}

std::wstring shown(Units::Unit const & unit, double value) {
    return unit.reconstructString(value, Units::ValueAndUnit, Units::UnitDisplaySettings::get());
}

// The quantities in the units of lengths and masses that are given.
std::wstring shownVolume(SimpleUnit const * length, double value) {
    Units::ComplexUnit units(length);
    units.addToNumerator(length);
    units.addToNumerator(length);
    return shown(units, value);
}

std::wstring shownArea(SimpleUnit const * length, double value) {
    Units::ComplexUnit units(length);
    units.addToNumerator(length);
    return shown(units, value);
}

std::wstring shownDensity(SimpleUnit const * mass, SimpleUnit const * length, double value) {
    Units::ComplexUnit units(mass);
    for (int i = 0; i < 3; ++i) units.addToDenominator(length);
    return shown(units, value);
}

enum EText : unsigned {
#define VN_MASS_PROPERTY_TEXT(key, text) key,
#include "Server/CommonData/MassProperties/MassPropertyTexts.inc"
};

// In the user's language, looked up once.
std::wstring const & text(EText key) {
    using Texts = std::vector<std::wstring>;
    static constinit Shared<Texts const> s_texts;
    return s_texts.get([] {
        return new Texts{
#define VN_MASS_PROPERTY_TEXT(key, text)                                                           \
    StringTable::getLocalizedString("VnCommonData", #key, text),
#include "Server/CommonData/MassProperties/MassPropertyTexts.inc"
        };
    })[key];
}

IMassPropertyCalculator * calculatorOf(Entity * owner) {
    return query<IMassPropertyCalculator>(owner);
}

} // namespace

MassProperties::MassProperties() { initializeMemberSetIfNeeded(); }

MassPropertiesValueMetaType * MassProperties::s_metaType() {
    return MassPropertiesValueMetaType::get();
}

MassProperties const * MassProperties::of(Entity const * entity) {
    for (MemberSet const * set = entity ? entity->metaType()->memberSet(c_latestVersion) : nullptr;
         set; set = set->base()) {
        for (unsigned i = 0; i < set->members(); ++i) {
            Member const & member = set->member(i);
            if (member.type() == s_metaType() && !member.functions() && !member.inHelper())
                return reinterpret_cast<MassProperties const *>(
                    reinterpret_cast<char const *>(entity) + member.offset());
        }
    }
    return nullptr;
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

SimpleUnit const * MassProperties::lengthUnit(System const & system) {
    return modelingUnit(system, Units::UnitSystemChoiceById::modelingLengthId(), L"cm",
                        [] { return Units::UnitMeter::get(0.01); });
}

SimpleUnit const * MassProperties::massUnit(System const & system) {
    return modelingUnit(system, Units::UnitSystemChoiceById::modelingMassId(), L"kg",
                        [] { return Units::UnitGram::get(1000.0); });
}

std::wstring MassProperties::volumeString(double value, System system, IComponentTraversalContext *,
                                          bool) {
    return shownVolume(lengthUnit(system), value);
}

std::wstring MassProperties::areaString(double value, System system, IComponentTraversalContext *,
                                        bool) {
    return shownArea(lengthUnit(system), value);
}

std::wstring MassProperties::massString(double value, System system, IComponentTraversalContext *,
                                        bool) {
    return shown(*massUnit(system), value);
}

std::wstring MassProperties::densityString(double value, System system,
                                           IComponentTraversalContext *, bool) {
    return shownDensity(massUnit(system), lengthUnit(system), value);
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
    double volume = c_unknown;
    double area = c_unknown;
    double mass = c_unknown;
    double density = c_unknown;
    calculator->calculate(this, &volume, &area, &mass, &density, context, flag);
    SimpleUnit const * const lengths = lengthUnit(system);
    SimpleUnit const * const masses = massUnit(system);
    out.try_emplace(text(MaterialProperty), material ? material->name() : text(VariedProperty));
    out.try_emplace(text(VolumeProperty), shownVolume(lengths, volume));
    out.try_emplace(text(AreaProperty), shownArea(lengths, area));
    out.try_emplace(text(MassProperty), shown(*masses, mass));
    out.try_emplace(text(DensityProperty), shownDensity(masses, lengths, density));
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

void MassPropertiesValueMetaType::onMigratingMemberSet(void * value, unsigned version,
                                                       MemberSet * set,
                                                       VisitorContext const &) const {
    set->initialize(value, "MassProperties");
    static_cast<MassProperties *>(value)->initializeMemberSet(version, set);
}

} // namespace Vn::CommonData
