#include "Server/CommonData/Units/UnitSystemChoice.h"

#include <cmath>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Expressions/Interface.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/StoredUnitTextInternal.h"
#include "Server/CommonData/Units/UnitLookup.h"
#include "Server/CommonData/Units/UnitSystem.h"

namespace Vn::Units {

UnitSystemChoice::UnitSystemChoice(PassiveRef<Entity> const & parent, GlobalizedString const & name,
                                   ComplexUnit const & units)
    : Persisted(parent), m_name(name), m_unitString(reconstructString(&units)), m_units(units),
      m_bInitialized(true) {
    m_units.validateBase();
    initializeMemberSetIfNeeded();
}

UnitSystemChoice::UnitSystemChoice(Segment * segment, unsigned long long id)
    : Persisted(segment, id) {
    m_units.validateBase();
    initializeMemberSetIfNeeded();
}

UnitSystemChoice::~UnitSystemChoice() = default;

void UnitSystemChoice::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "name", m_name);
    Managed::addMember(set, "unitString", m_unitString)
        ->readOnly(localizable(
            "it is the text of the unit, which is changed by the commands of unit systems"));
}

bool UnitSystemChoice::onMatches(ESimpleUnitType) const { return false; }
bool UnitSystemChoice::onMatches(std::string const &) const { return false; }
bool UnitSystemChoice::onMatches(ComplexUnit const *) const { return false; }

StrongRef<UnitSystem> UnitSystemChoice::parentUnitSystem() const {
    StrongRef<Entity> const up = parent();
    return StrongRef<UnitSystem>(query<UnitSystem>(up.get()));
}

bool UnitSystemChoice::parse(std::wstring const & text, ComplexUnit & out) {
    Expressions::Interface const & engine = *Expressions::Interface::get();
    UnitContext const context;
    Expressions::ParseResult result;
    Expressions::Node * const node = engine.parse(L"1 " + text, context, result);
    if (!node) return false;
    engine.unitEvaluate(node, out, context);
    engine.destroy(node);
    return true;
}

std::wstring UnitSystemChoice::reconstructString(ComplexUnit const * units) {
    return units ? StoredUnitText::write(*units) : std::wstring();
}

bool UnitSystemChoice::isStorable(ComplexUnit const * units) {
    ComplexUnit stored;
    if (!units || !readStored(reconstructString(units), stored)) return false;
    double const factor = units->baseConversionFactor();
    return stored.isDimensionallyEquivalent(units) &&
           std::fabs(stored.baseConversionFactor() - factor) <= 1e-9 * std::fabs(factor);
}

// What the engine doesn't read may still be what is written: a name that can't be typed, one that a
// prefixed unit hides, and all prefixes in another language of the user's.
bool UnitSystemChoice::readStored(std::wstring const & text, ComplexUnit & out) {
    return parse(text, out) || StoredUnitText::read(text, out);
}

void UnitSystemChoice::readUnits() {
    ComplexUnit units;
    if (!readStored(m_unitString, units)) return;
    m_units = units;
    m_units.validateBase();
}

void UnitSystemChoice::initialize() {
    readUnits();
    m_bInitialized = true;
}

bool UnitSystemChoice::changeUnits(ComplexUnit const * newUnits) {
    if (!newUnits) return false;
    // A copy: `newUnits` may be this choice's own, which an observer may change before it is
    // stored.
    ComplexUnit const units(*newUnits);
    if (!m_bInitialized) {
        if (StrongRef<UnitSystem> const system = parentUnitSystem()) system->initializeIfNeeded();
        if (!m_bInitialized) initialize();
    }
    if (!equivalentUnits(&units)) return false;
    std::wstring text = reconstructString(&units);
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_units = units;
    m_units.validateBase();
    m_unitString = std::move(text);
    return true;
}

bool UnitSystemChoice::changeUnits(SimpleUnit const * newUnits) {
    return newUnits && changeUnits(&newUnits->asComplexUnit());
}

bool UnitSystemChoice::changeUnits(std::wstring const & newUnits) {
    ComplexUnit units;
    return parse(newUnits, units) && changeUnits(&units);
}

void UnitSystemChoice::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                                    DataChange * details) {
    if (DataChange::test(transact, DataChange::TransactReplay)) readUnits();
    ManagedEntity::onPostChange(transact, type, details);
}

std::wstring UnitSystemChoice::onToString() const {
    return (Managed::debugFormat(L"UnitSystemChoice units: %1% name: %2% (base %3%)") %
            m_units.toString() % name() % ManagedEntity::onToString())
        .str();
}

UnitSystemChoiceByUnit::UnitSystemChoiceByUnit(PassiveRef<Entity> const & parent,
                                               GlobalizedString const & name,
                                               ComplexUnit const & units)
    : Persisted(parent, name, units) {
    initializeMemberSetIfNeeded();
}

UnitSystemChoiceByUnit::UnitSystemChoiceByUnit(Segment * segment, unsigned long long id)
    : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

UnitSystemChoiceByUnit::~UnitSystemChoiceByUnit() = default;

StrongRefCreator<UnitSystemChoiceByUnit>
UnitSystemChoiceByUnit::make(StrongRef<UnitSystem> const & system, SimpleUnit const * units) {
    if (!units) return nullptr;
    return make(system, &units->asComplexUnit(), units->globalizedSimpleUnitTypeName());
}

StrongRefCreator<UnitSystemChoiceByUnit>
UnitSystemChoiceByUnit::make(StrongRef<UnitSystem> const & system, ComplexUnit const * units,
                             GlobalizedString const & name) {
    if (!system || !units || system->find(units)) return nullptr;
    return create(PassiveRef<Entity>(system), name, *units);
}

StrongRefCreator<UnitSystemChoiceByUnit>
UnitSystemChoiceByUnit::make(StrongRef<UnitSystem> const & system, std::wstring const & units,
                             GlobalizedString const & name) {
    ComplexUnit parsed;
    if (!parse(units, parsed)) return nullptr;
    return make(system, &parsed, name);
}

void UnitSystemChoiceByUnit::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "eSimpleUnitType", m_eSimpleUnitType)
        ->readOnly(localizable("it is the kind of the unit that the choice was made with"));
}

// The kind is stored without a bracket: it belongs to the making of the choice.
void UnitSystemChoiceByUnit::onPostCreation(DataChange::ETransact transact) {
    ManagedEntity::onPostCreation(transact); // NOLINT(bugprone-parent-virtual-call)
    if (DataChange::test(transact, DataChange::TransactReplay)) return;
    SimpleUnit const * unit = nullptr;
    if (!units().isSimpleUnit(&unit)) unit = findEquivalentUnit(units());
    if (unit) m_eSimpleUnitType = unit->simpleUnitType();
}

bool UnitSystemChoiceByUnit::onMatches(ESimpleUnitType type) const {
    return m_eSimpleUnitType == type;
}
bool UnitSystemChoiceByUnit::onMatches(std::string const &) const { return false; }
bool UnitSystemChoiceByUnit::onMatches(ComplexUnit const * units) const {
    SimpleUnit const * unit = nullptr;
    if (units->isSimpleUnit(&unit)) return unit && onMatches(unit->simpleUnitType());
    return equivalentUnits(units);
}

std::wstring UnitSystemChoiceByUnit::onToString() const {
    return (Managed::debugFormat(L"UnitSystemChoiceByUnit : (base %1%)") %
            UnitSystemChoice::onToString())
        .str();
}

UnitSystemChoiceById::UnitSystemChoiceById(PassiveRef<Entity> const & parent,
                                           GlobalizedString const & name, std::string const & id,
                                           ComplexUnit const & units)
    : Persisted(parent, name, units), m_id(id) {
    initializeMemberSetIfNeeded();
}

UnitSystemChoiceById::UnitSystemChoiceById(Segment * segment, unsigned long long id)
    : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

UnitSystemChoiceById::~UnitSystemChoiceById() = default;

StrongRefCreator<UnitSystemChoiceById>
UnitSystemChoiceById::make(StrongRef<UnitSystem> const & system, GlobalizedString const & name,
                           std::string const & id, std::wstring const & units) {
    ComplexUnit parsed;
    if (!system || system->find(id) || !parse(units, parsed)) return nullptr;
    return create(PassiveRef<Entity>(system), name, id, parsed);
}

StrongRefCreator<UnitSystemChoiceById>
UnitSystemChoiceById::make(StrongRef<UnitSystem> const & system, GlobalizedString const & name,
                           std::string const & id, SimpleUnit const * units) {
    if (!system || !units || system->find(id)) return nullptr;
    return create(PassiveRef<Entity>(system), name, id, units->asComplexUnit());
}

void UnitSystemChoiceById::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "id", m_id);
}

bool UnitSystemChoiceById::onMatches(ESimpleUnitType) const { return false; }
bool UnitSystemChoiceById::onMatches(std::string const & id) const { return m_id == id; }
bool UnitSystemChoiceById::onMatches(ComplexUnit const *) const { return false; }

std::wstring UnitSystemChoiceById::onToString() const {
    return (Managed::debugFormat(L"UnitSystemChoiceById Id : %1% (base %2%)") %
            Text::fromUtf8(m_id) % UnitSystemChoice::onToString())
        .str();
}

std::string const & UnitSystemChoiceById::modelingLengthId() {
    static constinit Shared<std::string const> s_id;
    return s_id.get([] { return new std::string("ModelingLength"); });
}

std::string const & UnitSystemChoiceById::modelingMassId() {
    static constinit Shared<std::string const> s_id;
    return s_id.get([] { return new std::string("ModelingMass"); });
}

GlobalizedString const & UnitSystemChoiceById::modelingLengthName() {
    static constinit Shared<GlobalizedString const> s_name;
    return s_name.get([] {
        return new GlobalizedString("VnCommonData", "modelingLengthName", L"Modeling Length");
    });
}

GlobalizedString const & UnitSystemChoiceById::modelingMassName() {
    static constinit Shared<GlobalizedString const> s_name;
    return s_name.get(
        [] { return new GlobalizedString("VnCommonData", "modelingMassName", L"Modeling Mass"); });
}

} // namespace Vn::Units
