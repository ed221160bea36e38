#include "Server/CommonData/Units/UnitSystem.h"

#include <initializer_list>

#include "Platform/Base/ScopedLock.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Units {

namespace {

UnitSystemChoice * asChoice(StrongRef<Managed::ManagedEntity> const & child) {
    return query<UnitSystemChoice>(child.get());
}

template <class What>
StrongRef<UnitSystemChoice> findFirst(UnitSystem const & system, What const & what) {
    for (unsigned i = 0;; ++i) {
        system.initializeIfNeeded();
        if (i >= system.children()) return nullptr;
        UnitSystemChoice * const choice = asChoice(system.child(i));
        if (choice && choice->matches(what)) return StrongRef<UnitSystemChoice>(choice);
    }
}

} // namespace

UnitSystem::UnitSystem(PassiveRef<Entity> const & parent, GlobalizedString const & name,
                       std::string const & id)
    : Persisted(parent), m_name(name), m_id(id), m_bInitialized(true), m_bIsComplete(false) {
    initializeMemberSetIfNeeded();
}

UnitSystem::UnitSystem(Segment * segment, unsigned long long id)
    : Persisted(segment, id), m_bInitialized(false), m_bIsComplete(true) {
    initializeMemberSetIfNeeded();
}

UnitSystem::~UnitSystem() = default;

StrongRefCreator<UnitSystem> UnitSystem::make(StrongRef<UnitSystems> const & parent,
                                              std::wstring const & name, std::string const & id) {
    return make(parent, GlobalizedString(name), id);
}

StrongRefCreator<UnitSystem> UnitSystem::make(StrongRef<UnitSystems> const & parent,
                                              GlobalizedString const & name,
                                              std::string const & id) {
    return create(PassiveRef<Entity>(parent), name, id);
}

void UnitSystem::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "name", m_name);
    Managed::addMember(set, "id", m_id);
}

StrongRef<UnitSystems> UnitSystem::parentUnitSystems() const {
    StrongRef<Entity> const up = parent();
    return StrongRef<UnitSystems>(query<UnitSystems>(up.get()));
}

void UnitSystem::initializeIfNeeded() const {
    if (!initialized()) const_cast<UnitSystem *>(this)->initialize();
}

void UnitSystem::initialize() {
    ScopedLockBase const scope(LockCreation, 0);
    if (!scope.isLocking()) return initializeChoices();
    SpinLockGuard const guard(m_lock);
    initializeChoices();
}

// Other threads take the choices as they are once they see the flag, so it comes last.
void UnitSystem::initializeChoices() {
    if (initialized()) return;
    for (StrongRef<Managed::ManagedEntity> const & child : childrenVector())
        if (UnitSystemChoice * const choice = asChoice(child)) choice->initialize();
    m_bInitialized.store(true, std::memory_order_release);
}

// Choices that come into a system whose own are initialized have to be so too: a replay may bring
// one back that left before, and another system's may be added.
void UnitSystem::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                              DataChange * details) {
    auto const initializeNew = [](StrongRef<Managed::ManagedEntity> const & child) {
        UnitSystemChoice * const choice = asChoice(child);
        if (choice && !choice->initialized()) choice->initialize();
    };
    if (initialized()) {
        if (DataChange::test(transact, DataChange::TransactReplay))
            for (StrongRef<Managed::ManagedEntity> const & child : childrenVector())
                initializeNew(child);
        else if (auto const * const change =
                     query<Managed::ManagedGroupEntityChangeDetails>(details);
                 change && change->changeType() != change->ChildRemoved)
            initializeNew(change->managedEntity());
    }
    ManagedGroupEntity::onPostChange(transact, type, details);
}

unsigned UnitSystem::unitSystemChoices() const {
    initializeIfNeeded();
    return children();
}

StrongRef<UnitSystemChoice> UnitSystem::unitSystemChoice(unsigned index) const {
    initializeIfNeeded();
    return StrongRef<UnitSystemChoice>(index < children() ? asChoice(child(index)) : nullptr);
}

StrongRef<UnitSystemChoice> UnitSystem::find(ESimpleUnitType type) const {
    return findFirst(*this, type);
}

StrongRef<UnitSystemChoice> UnitSystem::find(ComplexUnit const * units) const {
    return findFirst(*this, units);
}

StrongRef<UnitSystemChoice> UnitSystem::find(std::string const & id) const {
    return findFirst(*this, id);
}

bool UnitSystem::make(ComplexUnit const * source, ComplexUnit & result) const {
    if (!source) return false;
    ComplexUnit base;
    source->produceBaseRepresentation(base);
    ComplexUnit made;
    // The units of one kind stand side by side, and have one choice.
    auto const translate = [&](UnitSpan units, void (ComplexUnit::*add)(SimpleUnit const *)) {
        SimpleUnit const * last = nullptr;
        BaseUnit const * chosen = nullptr;
        for (SimpleUnit const * const unit : units) {
            if (unit != last) {
                StrongRef<UnitSystemChoice> const choice = find(unit->simpleUnitType());
                if (!choice || !choice->units().isBaseUnit(&chosen)) return false;
                last = unit;
            }
            (made.*add)(chosen);
        }
        return true;
    };
    if (!translate(base.numerator(), &ComplexUnit::addToNumerator) ||
        !translate(base.denominator(), &ComplexUnit::addToDenominator))
        return false;
    result = made;
    return true;
}

bool UnitSystem::make(ESimpleUnitType, ComplexUnit &) const { return false; }

void UnitSystem::addChoiceIfNeeded(SimpleUnit const * unit) {
    if (find(unit->simpleUnitType())) return;
    StrongRef<UnitSystemChoice> const made =
        UnitSystemChoiceByUnit::make(StrongRef<UnitSystem>(this), unit);
}

void UnitSystem::completeCommonUnits() {
    for (SimpleUnit const * const unit :
         {UnitAmp::get(1.0), UnitMole::get(1.0), UnitCandela::get(1.0), UnitDegree::get(),
          UnitDollar::get()})
        addChoiceIfNeeded(unit);
}

void UnitSystem::completeAsMKS() {
    for (SimpleUnit const * const unit :
         {UnitMeter::get(1.0), UnitGram::get(1000.0), UnitSecond::get(1.0), UnitCelsius::get(),
          UnitMetersPerSecond::get(1.0), UnitLiter::get(1.0), UnitPascal::get(1.0),
          UnitNewton::get(1.0), UnitWatt::get(1.0), UnitJoule::get(1.0)})
        addChoiceIfNeeded(unit);
    completeCommonUnits();
    m_bIsComplete = true;
}

void UnitSystem::completeAsCGS() {
    for (SimpleUnit const * const unit :
         {UnitMeter::get(0.01), UnitGram::get(1.0), UnitSecond::get(1.0), UnitCelsius::get(),
          UnitDyne::get(), UnitErg::get()})
        addChoiceIfNeeded(unit);
    completeCommonUnits();
    m_bIsComplete = true;
}

void UnitSystem::completeAsImperial() {
    for (SimpleUnit const * const unit :
         {UnitFoot::get(), UnitPoundMass::get(), UnitSecond::get(1.0), UnitFarenheit::get(),
          UnitFeetPerSecond::get(), UnitPSI::get(), UnitLbForce::get()})
        addChoiceIfNeeded(unit);
    completeCommonUnits();
    m_bIsComplete = true;
}

std::wstring UnitSystem::onToString() const {
    return (Managed::debugFormat(L"UnitSystem name: %1% id: %2% initialized: %3% (base %4%)") %
            name() % Text::fromUtf8(m_id) % initialized() % ManagedGroupEntity::onToString())
        .str();
}

UnitSystems::UnitSystems(Segment * segment) : Persisted(segment) {
    initializeMemberSetIfNeeded();
    // Nothing owns the object yet: it would end with this reference if the segment didn't take it.
    StrongRef<Entity> self(this);
    struct LetGo {
        UnitSystems & object;
        StrongRef<Entity> & self;
        ~LetGo() {
            static_cast<void>(self.detach());
            object.strongCount(object.refCount() - 1);
        }
    } const letGo{*this, self};
    segment->addRoot(self, segmentRootId());
}

UnitSystems::UnitSystems(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

UnitSystems::~UnitSystems() = default;

StrongRefCreator<UnitSystems> UnitSystems::make(Segment * segment) { return create(segment); }

void UnitSystems::initializeMemberSet(unsigned, MemberSet *) {}

StrongRef<UnitSystems> UnitSystems::find(Segment * segment) {
    if (!segment) return nullptr;
    StrongRef<Entity> const root = segment->rootEntity(segmentRootId());
    return StrongRef<UnitSystems>(query<UnitSystems>(root.get()));
}

std::string const & UnitSystems::segmentRootId() {
    static constinit Shared<std::string const> s_id;
    return s_id.get([] { return new std::string("UnitSystems"); });
}

StrongRef<UnitSystem> UnitSystems::unitSystem(unsigned index) const {
    if (index >= children()) return nullptr;
    return StrongRef<UnitSystem>(query<UnitSystem>(child(index).get()));
}

StrongRef<UnitSystem> UnitSystems::findUnitSystem(std::string const & id) const {
    for (unsigned i = 0; i < children(); ++i)
        if (StrongRef<UnitSystem> system = unitSystem(i); system && system->id() == id)
            return system;
    return nullptr;
}

void UnitSystems::remove(StrongRef<UnitSystem> const & system) { removeChild(system); }

std::wstring UnitSystems::onToString() const {
    return (Managed::debugFormat(L"UnitSystems (base %1%)") % ManagedGroupEntity::onToString())
        .str();
}

} // namespace Vn::Units
