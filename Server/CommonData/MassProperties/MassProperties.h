#ifndef VN_SERVER_COMMONDATA_MASSPROPERTIES_MASSPROPERTIES_H
#define VN_SERVER_COMMONDATA_MASSPROPERTIES_MASSPROPERTIES_H

#include <map>
#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/Types/PhysicalMaterial.h"
#include "Server/CommonData/Export.h"

namespace Vn {
class Entity;
class MemberSet;
class MigrationHelper;
} // namespace Vn

namespace Vn::Units {
class SimpleUnit;
class UnitSystem;
} // namespace Vn::Units

namespace Vn::CommonData {

class IComponentTraversalContext;
class MassPropertiesValueMetaType;

// What a user says of the volume, the area, the mass and the density of something, in place of what
// is calculated; and the way to ask for them, and to show them in a document's units.  Numbers are
// internal: cm^3, cm^2, kg, kg/cm^3.
//
// It is a value that an entity embeds as a persisted member.  The entity offers
// IMassPropertyCalculator, and installs itself as the owner in each of its constructors:
//
//     m_massProperties.installOwner(this);
//
// Volume and area are what overrides them, and are calculated otherwise.  Mass and density are
// always calculated: a calculator that is to heed their overrides asks the record that it is given.
// All four of the listed properties are the calculator's.
//
// The operations that calculate need an owner that offers the interface; they aren't guarded.  What
// a calculator doesn't write is -1.0.
class VN_COMMONDATA_API MassProperties final {
public:
    // Nothing is overridden, and there is no owner.
    MassProperties();
    // A copy names the same owner, until another is installed.
    MassProperties(MassProperties const &) = default;
    MassProperties & operator=(MassProperties const &) = default;

    // The entity that embeds the record, not owned; null at first.
    void installOwner(Entity * owner) noexcept { m_pOwner = owner; }
    Entity * owningEntity() const noexcept { return m_pOwner; }

    // The first record that an entity embeds as a member, for hosts that don't know its class; null
    // if there is none, and for null.  It stays a part of the entity.
    static MassProperties const * of(Entity const * entity);

    // The kind of the value, for member sets.
    static MassPropertiesValueMetaType * s_metaType();

    // Store a value in place of what is calculated.  It isn't checked, and -1.0 is the same as
    // clearing.  There is no bracket: the owner brackets its own change.
    void overrideVolume(double value) noexcept { m_volumeOverride = value; }
    void overrideArea(double value) noexcept { m_areaOverride = value; }
    void overrideMass(double value) noexcept { m_massOverride = value; }
    void overrideDensity(double value) noexcept { m_densityOverride = value; }
    // Go back to what is calculated.
    void clearVolumeOverride() noexcept { m_volumeOverride = c_notOverridden; }
    void clearAreaOverride() noexcept { m_areaOverride = c_notOverridden; }
    void clearMassOverride() noexcept { m_massOverride = c_notOverridden; }
    void clearDensityOverride() noexcept { m_densityOverride = c_notOverridden; }
    // Whether a quantity is overridden; if so, its value is stored in `value` unless that is null.
    bool isVolumeOverridden(double * value = nullptr) const {
        return isOverridden(m_volumeOverride, value);
    }
    bool isAreaOverridden(double * value = nullptr) const {
        return isOverridden(m_areaOverride, value);
    }
    bool isMassOverridden(double * value = nullptr) const {
        return isOverridden(m_massOverride, value);
    }
    bool isDensityOverridden(double * value = nullptr) const {
        return isOverridden(m_densityOverride, value);
    }

    // The quantities.  `context` and `flag` go to the calculator as they are.
    double volume(IComponentTraversalContext * context, bool flag) const;
    double area(IComponentTraversalContext * context, bool flag) const;
    double mass(IComponentTraversalContext * context, bool flag) const;
    double density(IComponentTraversalContext * context, bool flag) const;
    // The material of everything that is measured; null if it isn't one.
    PhysicalMaterial const * getCommonPhysicalMaterial(IComponentTraversalContext * context,
                                                       bool flag) const;

    // The units of lengths and masses in which a system has quantities shown: the single ones that
    // it has chosen for the identifiers "ModelingLength" and "ModelingMass", else for lengths and
    // masses, else cm and kg.  Without a system it is cm and kg.
    static Units::SimpleUnit const * lengthUnit(StrongRef<Units::UnitSystem> const & system);
    static Units::SimpleUnit const * massUnit(StrongRef<Units::UnitSystem> const & system);

    // Internal values as texts, in these units and their powers.  The choices of a system for
    // volumes and areas don't count.
    static std::wstring volumeString(double value, StrongRef<Units::UnitSystem> system,
                                     IComponentTraversalContext * context, bool flag);
    static std::wstring areaString(double value, StrongRef<Units::UnitSystem> system,
                                   IComponentTraversalContext * context, bool flag);
    static std::wstring massString(double value, StrongRef<Units::UnitSystem> system,
                                   IComponentTraversalContext * context, bool flag);
    static std::wstring densityString(double value, StrongRef<Units::UnitSystem> system,
                                      IComponentTraversalContext * context, bool flag);
    // The same of the quantities of this record.
    std::wstring volumeString(StrongRef<Units::UnitSystem> system,
                              IComponentTraversalContext * context, bool flag) const;
    std::wstring areaString(StrongRef<Units::UnitSystem> system,
                            IComponentTraversalContext * context, bool flag) const;
    std::wstring massString(StrongRef<Units::UnitSystem> system,
                            IComponentTraversalContext * context, bool flag) const;
    std::wstring densityString(StrongRef<Units::UnitSystem> system,
                               IComponentTraversalContext * context, bool flag) const;

    // Inserts the material and the four quantities under their names in the user's language; an
    // entry that is there stays as it is.  They are what the calculator says, whatever is
    // overridden.
    void getAllMassProperties(std::map<std::wstring, std::wstring> & out,
                              StrongRef<Units::UnitSystem> system,
                              IComponentTraversalContext * context, bool flag) const;

    // The overrides as they stand, for a person who is looking for a mistake.
    std::wstring toString() const;

    // The record, if it is what a meta type describes; else null.
    virtual void * queryMTInterface(MetaType const * type);

private:
    friend class MassPropertiesValueMetaType;

    static constexpr double c_notOverridden = -1.0;

    static bool isOverridden(double field, double * value) {
        if (field == c_notOverridden) return false;
        if (value) *value = field;
        return true;
    }
    void initializeMemberSetIfNeeded();
    void initializeMemberSet(unsigned version, MemberSet * set);

    unsigned m_version = 0;
    MigrationHelper * m_pMigrationHelper = nullptr;
    Entity * m_pOwner = nullptr;
    double m_volumeOverride = c_notOverridden;
    double m_areaOverride = c_notOverridden;
    double m_massOverride = c_notOverridden;
    double m_densityOverride = c_notOverridden;
};

// The kind of members that are such records.
class VN_COMMONDATA_API MassPropertiesValueMetaType final : public ValueMetaType {
public:
    // The id of the kind in documents.
    static std::string s_metaTypeId();
    // The one instance.
    static MassPropertiesValueMetaType * get();
    // Makes the one instance at the first call.
    static MassPropertiesValueMetaType * init();

    // The one instance, from the load of the module on.
    static MassPropertiesValueMetaType * c_pTheOnlyOneMassPropertiesValueMetaType;

private:
    MassPropertiesValueMetaType();

    std::size_t doSizeInBytes(VisitorContext const & context) const override;
    void * doConstruct(void * memory, VisitorContext const & context) const override;
    void * doConstruct() const override;
    void doDestruct(void * value) const override;
    std::wstring doToString(void * value, VisitorContext const & context) const override;
    MigrationHelper * doMigrationHelper(void * value) const override;
    unsigned doMigratingVersion(void * value, VisitorContext const & context) const override;
    void doMigratingVersion(void * value, unsigned version,
                            VisitorContext const & context) const override;
    void * doQueryMTInterface(void * value) const override;
    void onMigratingMemberSet(void * value, unsigned version, MemberSet * set,
                              VisitorContext const & context) const override;
};

} // namespace Vn::CommonData

#endif
