// The default units of a document.
//
//   UnitSystems                     the root "UnitSystems" of the document's segment
//     UnitSystem                    a named list of units, at most one for each kind of quantity
//       UnitSystemChoiceByUnit      the unit of a kind: "lengths are in feet"
//       UnitSystemChoiceById        the unit of an identifier, such as "ModelingLength"
//
// A system says in which units a document shows its values, and nothing about how a number is
// written: that is the user's preference.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITSYSTEM_H
#define VN_SERVER_COMMONDATA_UNITS_UNITSYSTEM_H

#include <atomic>
#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/SpinLock.h"
#include "Platform/Types/GlobalizedString.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"
#include "Server/CommonData/Units/UnitTypes.h"

namespace Vn::Units {

class ComplexUnit;
class SimpleUnit;
class UnitSystemChoice;
class UnitSystems;

// A named list of default units.
//
// The units of a system that was loaded are read from their texts when one of them is first needed.
// Several threads may find units in one system, and make contexts of it, as long as none changes
// it.
class VN_COMMONDATA_API UnitSystem
    : public Managed::Persisted<UnitSystem, Managed::ManagedGroupEntity> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::Units::UnitSystem",
                                                     "21086CE0-C398-4b1b-9CD6-86F092429833", 0};
    static EntityMetaType * s_metaType();

    // A new system without choices.  Several may have one identifier, and the first is the one that
    // is found.  Null if `parent` is null or its document is closed.
    static StrongRefCreator<UnitSystem> make(StrongRef<UnitSystems> const & parent,
                                             std::wstring const & name, std::string const & id);
    static StrongRefCreator<UnitSystem> make(StrongRef<UnitSystems> const & parent,
                                             GlobalizedString const & name, std::string const & id);
    ~UnitSystem() override;

    // The name, in the user's language if it comes from the string table.
    std::wstring const & name() const { return m_name.value(); }
    std::string const & id() const noexcept { return m_id; }
    // The collection that the system is in; null if it is in none.
    StrongRef<UnitSystems> parentUnitSystems() const;

    // Whether one of the three operations below has filled the system.  It isn't part of the
    // document: it is false in a system that was made, whatever is undone later, and true in every
    // system that was loaded.
    bool isComplete() const noexcept { return m_bIsComplete; }
    // Whether all choices have their units.
    bool initialized() const noexcept { return m_bInitialized.load(std::memory_order_acquire); }
    // Reads the units of all choices from their texts, unless that was done.
    void initialize();
    void initializeIfNeeded() const;

    // The number of children; each of them, null if it isn't a choice or if there is none at that
    // place.
    unsigned unitSystemChoices() const;
    StrongRef<UnitSystemChoice> unitSystemChoice(unsigned index) const;

    // The first choice that answers for a kind of quantity, for values in a unit, and for an
    // identifier; null if none does.
    StrongRef<UnitSystemChoice> find(ESimpleUnitType type) const;
    StrongRef<UnitSystemChoice> find(ComplexUnit const * units) const;
    StrongRef<UnitSystemChoice> find(std::string const & id) const;

    // Translates a unit into the base units that the system has chosen: a "N" into "kg m / s s".
    // False, with `result` untouched, if a kind that it consists of has no choice, or one that
    // isn't a single base unit, and for null.
    bool make(ComplexUnit const * source, ComplexUnit & result) const;
    // False: there is no translation of a kind.
    bool make(ESimpleUnitType type, ComplexUnit & result) const;

    // Add a choice for each kind of their list that has none yet.  The last adds what the others
    // have in common, and alone doesn't make the system complete.
    void completeAsMKS();
    void completeAsCGS();
    void completeAsImperial();
    void completeCommonUnits();

protected:
    // Under `parent`; and one that is being loaded.
    UnitSystem(PassiveRef<Entity> const & parent, GlobalizedString const & name,
               std::string const & id);
    UnitSystem(Segment * segment, unsigned long long id);

    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;
    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    void initializeChoices();
    void addChoiceIfNeeded(SimpleUnit const * unit);

    GlobalizedString m_name;
    std::string m_id;
    std::atomic<bool> m_bInitialized;
    bool m_bIsComplete;
    SpinLock m_lock; // while the choices are initialized
};

// The unit systems of a document.
class VN_COMMONDATA_API UnitSystems
    : public Managed::Persisted<UnitSystems, Managed::ManagedGroupEntity> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::Units::UnitSystems",
                                                     "A1675506-5D2D-47a5-8AD2-8FD5CE946DA0", 0};
    static EntityMetaType * s_metaType();

    // A new, empty collection, which takes the root key "UnitSystems" of the segment, in place of
    // what had it.  Null without a segment.
    static StrongRefCreator<UnitSystems> make(Segment * segment);
    ~UnitSystems() override;

    // The collection of a segment; null if it has none, and for null.
    static StrongRef<UnitSystems> find(Segment * segment);
    // "UnitSystems".
    static std::string const & segmentRootId();

    // The number of children; each of them, null if it isn't a system or if there is none at that
    // place.
    unsigned unitSystems() const noexcept { return children(); }
    StrongRef<UnitSystem> unitSystem(unsigned index) const;
    // The first system with an identifier, compared byte for byte; null if there is none.
    StrongRef<UnitSystem> findUnitSystem(std::string const & id) const;
    // Takes a system out, if it is there.
    void remove(StrongRef<UnitSystem> const & system);

protected:
    // As a root; and one that is being loaded.
    explicit UnitSystems(Segment * segment);
    UnitSystems(Segment * segment, unsigned long long id);

    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
};

} // namespace Vn::Units

#endif
