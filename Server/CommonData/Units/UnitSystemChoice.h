// The lines of a unit system: named units of a document, each found by the kind of quantity that it
// stands for, or by an identifier.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITSYSTEMCHOICE_H
#define VN_SERVER_COMMONDATA_UNITS_UNITSYSTEMCHOICE_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/Types/GlobalizedString.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ManagedEntity.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/UnitTypes.h"

namespace Vn::Units {

class SimpleUnit;
class UnitSystem;

// A named unit.  The document keeps the unit as a text, and the object holds it as a ComplexUnit as
// well.  A choice that was made has both.  A choice that was loaded has its unit once its system
// was initialized, which everything that goes through the system does; until then it is empty.
//
// The base answers for nothing: only objects of the two derived classes are ever found.
class VN_COMMONDATA_API UnitSystemChoice
    : public Managed::Persisted<UnitSystemChoice, Managed::ManagedEntity> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::Units::UnitSystemChoice",
                                                     "199B8352-4C51-4cb3-9756-26722AE44E76", 0};
    static EntityMetaType * s_metaType();

    ~UnitSystemChoice() override;

    // The name, in the user's language if it comes from the string table.
    std::wstring const & name() const { return m_name.value(); }
    // The name, and where it comes from.
    GlobalizedString const & globalizedName() const noexcept { return m_name; }
    // The unit; it stays valid until the unit is changed.
    ComplexUnit const & units() const noexcept { return m_units; }
    // The text of the unit, as of reconstructString.
    std::wstring unitString() const { return reconstructString(&m_units); }
    // The text that the document keeps.  Where the unit can't be read from it, that is all there
    // is.
    std::wstring const & storedUnitString() const noexcept { return m_unitString; }

    // Whether the choice answers for a kind of quantity, for an identifier, and for values in that
    // unit.  False for a null unit.
    bool matches(ESimpleUnitType type) const { return onMatches(type); }
    bool matches(std::string const & id) const { return onMatches(id); }
    bool matches(ComplexUnit const * units) const { return units && onMatches(units); }

    // Takes another unit of the same dimension, as one change, even if it is the same unit. Neither
    // the name nor the kind follows.  False, and nothing changes, for a unit of another dimension,
    // for null, and for a text that isn't a unit.
    bool changeUnits(ComplexUnit const * newUnits);
    bool changeUnits(SimpleUnit const * newUnits);
    bool changeUnits(std::wstring const & newUnits);

    // Reads the unit from the text that the document keeps.  The unit stays as it was if the text
    // isn't one.
    void initialize();
    // Whether the unit is there: not so in a choice that was loaded and not yet initialized.
    bool initialized() const noexcept { return m_bInitialized; }

    // The system; null if there is none.
    StrongRef<UnitSystem> parentUnitSystem() const;

    // Reads a unit such as "kg m / s s" into `out`.  There is no grammar of units alone: "1 " is
    // put in front of the text, and what the expression engine then reads as one quantity is a
    // unit.  False, with `out` untouched, if it reads nothing.  An empty text is an empty unit.
    static bool parse(std::wstring const & text, ComplexUnit & out);
    // The text that documents keep of a unit: full names with English prefixes, whatever the user's
    // language and settings, but powers as the user has them written.  A unitless product has an
    // empty text.  Null has none either.
    static std::wstring reconstructString(ComplexUnit const * units);
    // Whether a document gives a unit back: its text reads as the same dimension and, but for
    // rounding, the same factor.  Not so of a unitless product, which has no text, and of a
    // magnitude without a prefix.  False for null.
    static bool isStorable(ComplexUnit const * units);

protected:
    // Under `parent`, with a unit; and one that is being loaded, without anything.
    UnitSystemChoice(PassiveRef<Entity> const & parent, GlobalizedString const & name,
                     ComplexUnit const & units);
    UnitSystemChoice(Segment * segment, unsigned long long id);

    // Whether that unit, which mustn't be null, has the dimension of this one.
    bool equivalentUnits(ComplexUnit const * units) const {
        return m_units.isDimensionallyEquivalent(units);
    }

    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;
    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    // The order of the three is binding.
    virtual bool onMatches(ESimpleUnitType type) const;
    virtual bool onMatches(std::string const & id) const;
    virtual bool onMatches(ComplexUnit const * units) const;

    void initializeMemberSet(unsigned version, MemberSet * set);
    static bool readStored(std::wstring const & text, ComplexUnit & out);
    void readUnits();

    GlobalizedString m_name;
    std::wstring m_unitString;
    // Not persisted.  The base form is valid, so that several threads may ask.
    ComplexUnit m_units;
    bool m_bInitialized = false;
};

// A choice for a kind of quantity: "lengths are in feet".
class VN_COMMONDATA_API UnitSystemChoiceByUnit
    : public Managed::Persisted<UnitSystemChoiceByUnit, UnitSystemChoice> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::Units::UnitSystemChoiceByUnit",
                                                     "C6EE7300-667E-4ea5-9F61-71F98412DE8B", 0};
    static EntityMetaType * s_metaType();
    // The kind of a choice whose unit is of none: one past the last.
    static constexpr unsigned c_noKind = c_simpleUnitTypes;

    // A choice in a system, with the name of the kind of the unit or another.  Null if the system
    // or the unit is null, if the text isn't a unit, and if the system has a choice that matches
    // the unit.
    static StrongRefCreator<UnitSystemChoiceByUnit> make(StrongRef<UnitSystem> const & system,
                                                         SimpleUnit const * units);
    static StrongRefCreator<UnitSystemChoiceByUnit> make(StrongRef<UnitSystem> const & system,
                                                         ComplexUnit const * units,
                                                         GlobalizedString const & name);
    static StrongRefCreator<UnitSystemChoiceByUnit> make(StrongRef<UnitSystem> const & system,
                                                         std::wstring const & units,
                                                         GlobalizedString const & name);
    ~UnitSystemChoiceByUnit() override;

    // The kind of quantity, or c_noKind; a document may hold any number.
    ESimpleUnitType simpleUnitType() const noexcept {
        return static_cast<ESimpleUnitType>(m_eSimpleUnitType);
    }

protected:
    // As of UnitSystemChoice.
    UnitSystemChoiceByUnit(PassiveRef<Entity> const & parent, GlobalizedString const & name,
                           ComplexUnit const & units);
    UnitSystemChoiceByUnit(Segment * segment, unsigned long long id);

    // As of ManagedEntity.
    void onPostCreation(DataChange::ETransact transact) override;
    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    bool onMatches(ESimpleUnitType type) const override;
    bool onMatches(std::string const & id) const override;
    bool onMatches(ComplexUnit const * units) const override;

    void initializeMemberSet(unsigned version, MemberSet * set);

    unsigned m_eSimpleUnitType = c_noKind;
};

// A choice for an identifier: "the lengths of the model are in millimetres".
class VN_COMMONDATA_API UnitSystemChoiceById
    : public Managed::Persisted<UnitSystemChoiceById, UnitSystemChoice> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::Units::UnitSystemChoiceById",
                                                     "B61F1D39-4984-47b0-9248-3A1113E86FC1", 0};
    static EntityMetaType * s_metaType();

    // A choice in a system.  Null if the system or the unit is null, if the text isn't a unit, and
    // if the system has a choice with that identifier.
    static StrongRefCreator<UnitSystemChoiceById> make(StrongRef<UnitSystem> const & system,
                                                       GlobalizedString const & name,
                                                       std::string const & id,
                                                       std::wstring const & units);
    static StrongRefCreator<UnitSystemChoiceById> make(StrongRef<UnitSystem> const & system,
                                                       GlobalizedString const & name,
                                                       std::string const & id,
                                                       SimpleUnit const * units);
    ~UnitSystemChoiceById() override;

    // The identifier, which is compared byte for byte.
    std::string const & id() const noexcept { return m_id; }

    // The identifiers that the system knows itself, for the lengths and the masses of the model,
    // and their names.
    static std::string const & modelingLengthId();
    static std::string const & modelingMassId();
    static GlobalizedString const & modelingLengthName();
    static GlobalizedString const & modelingMassName();

protected:
    // As of UnitSystemChoice.
    UnitSystemChoiceById(PassiveRef<Entity> const & parent, GlobalizedString const & name,
                         std::string const & id, ComplexUnit const & units);
    UnitSystemChoiceById(Segment * segment, unsigned long long id);

    // As of ManagedEntity.
    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    bool onMatches(ESimpleUnitType type) const override;
    bool onMatches(std::string const & id) const override;
    bool onMatches(ComplexUnit const * units) const override;

    void initializeMemberSet(unsigned version, MemberSet * set);

    std::string m_id;
};

} // namespace Vn::Units

#endif
