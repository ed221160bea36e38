// Mass properties: overrides, the questions to the calculator, the texts, and the record within an
// entity.

#include "Server/CommonData/MassProperties/MassProperties.h"

#include <cmath>
#include <limits>
#include <thread>

#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Tests/CommonData/Units/UnitSystemTesting.h"

namespace Vn::CommonData {

namespace {

using Managed::Testing::Document;
using Units::addId;
using Units::Loaded;
using Units::SystemDocument;

StrongRef<Units::UnitSystem> const c_noSystem;

// A box that embeds a record, and calculates: it writes down what it is asked.
class Box : public Managed::Persisted<Box, Managed::ManagedEntity, IMassPropertyCalculator> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::CommonData::Box",
                                                     "1A5B0C3E-0001-4000-8000-0000000000B1", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Box> make(Segment * segment) { return create(segment); }

    void change(void (*work)(MassProperties & record)) {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        work(m_record);
    }

    void calculate(MassProperties const * record, double * volume, double * area, double * mass,
                   double * density, IComponentTraversalContext * context, bool flag) override {
        if (volume) m_asked += 'V';
        if (area) m_asked += 'A';
        if (mass) m_asked += 'M';
        if (density) m_asked += 'D';
        m_asked += flag ? "+ " : " ";
        m_pRecord = record;
        m_pContext = context;
        if (!m_bWrites) return;
        if (volume) *volume = 6000;
        if (area) *area = 2200;
        if (mass) *mass = 47.1;
        if (density) *density = 0.00785;
    }
    PhysicalMaterial const * commonPhysicalMaterial(IComponentTraversalContext * context,
                                                    bool flag) override {
        m_asked += flag ? "material+ " : "material ";
        m_pContext = context;
        return m_pMaterial;
    }
    bool isMeasurable() const override { return true; }

    MassProperties m_record;
    std::string m_asked;
    MassProperties const * m_pRecord = nullptr;
    IComponentTraversalContext * m_pContext = nullptr;
    PhysicalMaterial const * m_pMaterial = nullptr;
    bool m_bWrites = true;

private:
    friend class Managed::PersistedAccess;
    explicit Box(Segment * segment) : Persisted(segment) {
        m_record.installOwner(this);
        initializeMemberSetIfNeeded();
    }
    Box(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        m_record.installOwner(this);
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        Managed::addMember(set, "massProperties", m_record, MassProperties::s_metaType());
    }
};

class BoxMetaType final : public Managed::PersistedMetaType<Box> {};
BoxMetaType s_box;
EntityMetaType * Box::s_metaType() { return &s_box; }

class MassPropertiesTests : public testing::Test {
protected:
    SystemDocument const m_document;
    StrongRef<Box> const m_box = Box::make(m_document.segment());
    StrongRef<Units::UnitSystem> const & system() const { return m_document.system(); }
};

TEST_F(MassPropertiesTests, FreshRecordOverridesNothing) {
    MassProperties const record;
    double value = 7;
    EXPECT_FALSE(record.isVolumeOverridden(&value));
    EXPECT_FALSE(record.isAreaOverridden(&value));
    EXPECT_FALSE(record.isMassOverridden(&value));
    EXPECT_FALSE(record.isDensityOverridden(&value));
    EXPECT_EQ(value, 7);
    EXPECT_EQ(record.toString(), L"Volume -1, Area -1, Mass -1, Density -1");
    EXPECT_EQ(record.owningEntity(), nullptr);
}

TEST_F(MassPropertiesTests, TheRecordOfAnEntityIsFoundWithoutItsClass) {
    EXPECT_EQ(MassProperties::of(m_box.get()), &m_box->m_record);
    EXPECT_EQ(MassProperties::of(system().get()), nullptr);
    EXPECT_EQ(MassProperties::of(nullptr), nullptr);
}

TEST_F(MassPropertiesTests, OverridesAreStoredAndCleared) {
    MassProperties record;
    record.overrideVolume(1);
    record.overrideArea(2.5);
    record.overrideMass(0);
    record.overrideDensity(-2);
    EXPECT_EQ(record.toString(), L"Volume 1, Area 2.5, Mass 0, Density -2");
    double value = 7;
    EXPECT_TRUE(record.isVolumeOverridden());
    EXPECT_TRUE(record.isAreaOverridden(&value));
    EXPECT_EQ(value, 2.5);
    EXPECT_TRUE(record.isMassOverridden(&value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(record.isDensityOverridden(&value));
    EXPECT_EQ(value, -2);
    record.clearVolumeOverride();
    record.clearAreaOverride();
    record.clearMassOverride();
    record.clearDensityOverride();
    EXPECT_EQ(record.toString(), L"Volume -1, Area -1, Mass -1, Density -1");
}

TEST_F(MassPropertiesTests, OverrideByMinusOneIsNone) {
    MassProperties record;
    record.overrideVolume(-1.0);
    EXPECT_FALSE(record.isVolumeOverridden());
    record.overrideVolume(std::nextafter(-1.0, 0.0));
    EXPECT_TRUE(record.isVolumeOverridden());
    record.overrideVolume(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(record.isVolumeOverridden());
}

TEST_F(MassPropertiesTests, OverriddenVolumeOfZeroIsTheVolumeAndNobodyIsAsked) {
    m_box->m_record.overrideVolume(0.0);
    m_box->m_record.overrideArea(3.0);
    EXPECT_TRUE(m_box->m_record.isVolumeOverridden());
    EXPECT_EQ(m_box->m_record.volume(nullptr, false), 0.0);
    EXPECT_EQ(m_box->m_record.area(nullptr, false), 3.0);
    EXPECT_EQ(m_box->m_asked, "");
}

TEST_F(MassPropertiesTests, MassAndDensityAreTheCalculatorsWhateverIsOverridden) {
    m_box->m_record.overrideMass(5.0);
    m_box->m_record.overrideDensity(6.0);
    EXPECT_TRUE(m_box->m_record.isMassOverridden());
    EXPECT_EQ(m_box->m_record.mass(nullptr, false), 47.1);
    EXPECT_EQ(m_box->m_record.density(nullptr, true), 0.00785);
    EXPECT_EQ(m_box->m_asked, "M D+ ");
    EXPECT_EQ(m_box->m_pRecord, &m_box->m_record);
}

TEST_F(MassPropertiesTests, EachQuantityIsAskedForAlone) {
    auto * const context = reinterpret_cast<IComponentTraversalContext *>(&m_box->m_asked);
    EXPECT_EQ(m_box->m_record.volume(context, true), 6000);
    EXPECT_EQ(m_box->m_pContext, context);
    EXPECT_EQ(m_box->m_record.area(nullptr, false), 2200);
    EXPECT_EQ(m_box->m_record.mass(nullptr, false), 47.1);
    EXPECT_EQ(m_box->m_record.density(nullptr, false), 0.00785);
    EXPECT_EQ(m_box->m_record.getCommonPhysicalMaterial(context, true), nullptr);
    EXPECT_EQ(m_box->m_pContext, context);
    EXPECT_EQ(m_box->m_asked, "V+ A M D material+ ");
}

TEST_F(MassPropertiesTests, WhatACalculatorDoesntWriteIsMinusOne) {
    m_box->m_bWrites = false;
    EXPECT_EQ(m_box->m_record.volume(nullptr, false), -1.0);
    EXPECT_EQ(m_box->m_record.area(nullptr, false), -1.0);
    EXPECT_EQ(m_box->m_record.mass(nullptr, false), -1.0);
    EXPECT_EQ(m_box->m_record.density(nullptr, false), -1.0);
    std::map<std::wstring, std::wstring> all;
    m_box->m_record.getAllMassProperties(all, c_noSystem, nullptr, false);
    EXPECT_EQ(all[L"Volume"], L"-1.00 cm^3");
    EXPECT_EQ(all[L"Mass"], L"-1.00 kg");
}

TEST_F(MassPropertiesTests, TextsWithoutASystemAreInCentimetersAndKilograms) {
    EXPECT_EQ(MassProperties::volumeString(2.5, c_noSystem, nullptr, false), L"2.50 cm^3");
    EXPECT_EQ(MassProperties::areaString(2.5, c_noSystem, nullptr, false), L"2.50 cm^2");
    EXPECT_EQ(MassProperties::massString(2.5, c_noSystem, nullptr, false), L"2.50 kg");
    EXPECT_EQ(MassProperties::densityString(2.5, c_noSystem, nullptr, false), L"2.50 kg / cm^3");
}

TEST_F(MassPropertiesTests, TextsFollowTheModelingUnits) {
    ASSERT_TRUE(addId(system(), "ModelingLength", L"in"));
    ASSERT_TRUE(addId(system(), "ModelingMass", L"lbmass"));
    EXPECT_EQ(MassProperties::volumeString(16.387064, system(), nullptr, false), L"1.00 in^3");
    EXPECT_EQ(MassProperties::areaString(6.4516, system(), nullptr, false), L"1.00 in^2");
    EXPECT_EQ(MassProperties::massString(0.4535924, system(), nullptr, false), L"1.00 lbmass");
    EXPECT_EQ(MassProperties::densityString(0.4535924 / 16.387064, system(), nullptr, false),
              L"1.00 lbmass / in^3");
}

TEST_F(MassPropertiesTests, TextsWithoutModelingUnitsFollowTheKinds) {
    system()->completeAsMKS();
    EXPECT_EQ(MassProperties::volumeString(2'000'000, system(), nullptr, false), L"2.00 m^3");
    EXPECT_EQ(MassProperties::areaString(20'000, system(), nullptr, false), L"2.00 m^2");
    EXPECT_EQ(MassProperties::massString(2, system(), nullptr, false), L"2.00 kg");
    EXPECT_EQ(MassProperties::densityString(0.00785, system(), nullptr, false),
              L"7850.00 kg / m^3");
}

TEST_F(MassPropertiesTests, ProductAsModelingUnitGivesWayToTheDefault) {
    ASSERT_TRUE(addId(system(), "ModelingLength", L"m"));
    ASSERT_TRUE(addId(system(), "ModelingMass", L"kg"));
    ASSERT_TRUE(system()->find("ModelingLength")->changeUnits(std::wstring(L"m^2 / m")));
    ASSERT_TRUE(system()->find("ModelingMass")->changeUnits(std::wstring(L"g m / m")));
    EXPECT_EQ(MassProperties::volumeString(2.5, system(), nullptr, false), L"2.50 cm^3");
    EXPECT_EQ(MassProperties::massString(2.5, system(), nullptr, false), L"2.50 kg");
}

TEST_F(MassPropertiesTests, ModelingLengthOfAnotherKindIsUsedAsItIs) {
    ASSERT_TRUE(addId(system(), "ModelingLength", L"kg"));
    EXPECT_EQ(MassProperties::volumeString(1, system(), nullptr, false), L"1.00 kg^3");
}

TEST_F(MassPropertiesTests, TextsOfARecordFollowItsQuantities) {
    m_box->m_record.overrideVolume(1.0);
    m_box->m_record.overrideMass(1.0);
    EXPECT_EQ(m_box->m_record.volumeString(c_noSystem, nullptr, false), L"1.00 cm^3");
    EXPECT_EQ(m_box->m_record.areaString(c_noSystem, nullptr, false), L"2200.00 cm^2");
    EXPECT_EQ(m_box->m_record.massString(c_noSystem, nullptr, false), L"47.10 kg");
    EXPECT_EQ(m_box->m_record.densityString(c_noSystem, nullptr, false), L"0.008 kg / cm^3");
    EXPECT_EQ(m_box->m_asked, "A M D ");
}

TEST_F(MassPropertiesTests, AllAreTheCalculatorsAndAskedForOnce) {
    PhysicalMaterial const steel(L"Steel", 0.00785);
    m_box->m_pMaterial = &steel;
    m_box->m_record.overrideVolume(1.0);
    m_box->m_record.overrideMass(1.0);
    std::map<std::wstring, std::wstring> all;
    m_box->m_record.getAllMassProperties(all, c_noSystem, nullptr, true);
    EXPECT_EQ(m_box->m_asked, "material+ VAMD+ ");
    EXPECT_EQ(all, (std::map<std::wstring, std::wstring>{{L"Material", L"Steel"},
                                                         {L"Volume", L"6000.00 cm^3"},
                                                         {L"Area", L"2200.00 cm^2"},
                                                         {L"Mass", L"47.10 kg"},
                                                         {L"Density", L"0.008 kg / cm^3"}}));
}

TEST_F(MassPropertiesTests, WithoutACommonMaterialItIsVarious) {
    std::map<std::wstring, std::wstring> all;
    m_box->m_record.getAllMassProperties(all, c_noSystem, nullptr, false);
    EXPECT_EQ(all[L"Material"], L"(Various)");
}

TEST_F(MassPropertiesTests, EntryThatIsThereStaysAsItIs) {
    std::map<std::wstring, std::wstring> all{{L"Volume", L"mine"}, {L"Other", L"too"}};
    m_box->m_record.getAllMassProperties(all, c_noSystem, nullptr, false);
    EXPECT_EQ(all.size(), 6U);
    EXPECT_EQ(all[L"Volume"], L"mine");
    EXPECT_EQ(all[L"Other"], L"too");
    EXPECT_EQ(all[L"Area"], L"2200.00 cm^2");
}

TEST_F(MassPropertiesTests, CopyNamesTheOwnerUntilAnotherIsInstalled) {
    m_box->m_record.overrideVolume(5.0);
    MassProperties copy(m_box->m_record);
    EXPECT_EQ(copy.owningEntity(), m_box.get());
    EXPECT_TRUE(copy.isVolumeOverridden());
    EXPECT_EQ(copy.mass(nullptr, false), 47.1);
    EXPECT_EQ(m_box->m_pRecord, &copy);
    StrongRef<Box> const other = Box::make(m_document.segment());
    copy.installOwner(other.get());
    static_cast<void>(copy.mass(nullptr, false));
    EXPECT_EQ(other->m_asked, "M ");
    MassProperties assigned;
    assigned = copy;
    EXPECT_EQ(assigned.owningEntity(), other.get());
}

TEST_F(MassPropertiesTests, KindIsThatOfTheFormat) {
    MassPropertiesValueMetaType * const type = MassProperties::s_metaType();
    EXPECT_EQ(type, MassPropertiesValueMetaType::get());
    EXPECT_EQ(type, MassPropertiesValueMetaType::init());
    EXPECT_EQ(type, MassPropertiesValueMetaType::c_pTheOnlyOneMassPropertiesValueMetaType);
    EXPECT_EQ(MetaTypeMgr::get()->metaType("98F3955C-FE39-404A-8724-36D0C15A456C"), type);
    EXPECT_EQ(MassPropertiesValueMetaType::s_metaTypeId(), type->identifier());
    EXPECT_EQ(type->name(), "MassPropertiesValueMetaType");
    EXPECT_EQ(type->version(), 0U);
    EXPECT_EQ(type->valueTypeName(), "MassProperties");
    EXPECT_EQ(type->baseIdentifier(), "");
    MassProperties record;
    MemberSet const & members = *type->memberSet(0xFFFFFFFF);
    ASSERT_EQ(members.members(), 4U);
    char const * const names[] = {"volumeOverride", "areaOverride", "massOverride",
                                  "densityOverride"};
    for (unsigned i = 0; i < 4; ++i) {
        EXPECT_EQ(members.member(i).name(), names[i]);
        EXPECT_EQ(members.member(i).type(), IntrinsicMetaType<double>::get());
    }
    EXPECT_EQ(members.base(), nullptr);
    EXPECT_EQ(members.className(), "MassProperties");
}

TEST_F(MassPropertiesTests, KindMakesEndsAndDescribesRecords) {
    ValueMetaType const & type = *MassProperties::s_metaType();
    EXPECT_EQ(type.sizeInBytes(), sizeof(MassProperties));
    alignas(MassProperties) std::byte memory[sizeof(MassProperties)];
    ASSERT_EQ(type.construct(memory), memory);
    auto * const inPlace = reinterpret_cast<MassProperties *>(memory);
    inPlace->overrideArea(4);
    EXPECT_EQ(type.toString(inPlace), L"Volume -1, Area 4, Mass -1, Density -1");
    EXPECT_EQ(type.migratingVersion(inPlace), 0U);
    type.migratingVersion(inPlace, 3);
    EXPECT_EQ(type.migratingVersion(inPlace), 3U);
    EXPECT_EQ(type.postMigrate(inPlace, 0), static_cast<unsigned>(MigrationDone));
    EXPECT_EQ(type.queryMTInterface(inPlace), inPlace);
    EXPECT_EQ(inPlace->queryMTInterface(&type), inPlace);
    EXPECT_EQ(inPlace->queryMTInterface(Box::s_metaType()), nullptr);
    EXPECT_EQ(inPlace->queryMTInterface(nullptr), nullptr);
    inPlace->~MassProperties();
    EXPECT_EQ(type.construct(nullptr), nullptr);
    type.destruct(type.construct());
    type.destruct(nullptr);
}

TEST_F(MassPropertiesTests, RecordInAnEntityIsUndoneAndRedone) {
    m_document.step([&] {
        m_box->change([](MassProperties & record) {
            record.overrideVolume(1);
            record.overrideDensity(0);
        });
    });
    m_document.step([&] { m_box->change([](MassProperties & r) { r.clearVolumeOverride(); }); });
    EXPECT_EQ(m_box->m_record.toString(), L"Volume -1, Area -1, Mass -1, Density 0");
    m_document.undo();
    EXPECT_EQ(m_box->m_record.toString(), L"Volume 1, Area -1, Mass -1, Density 0");
    m_document.undo();
    EXPECT_EQ(m_box->m_record.toString(), L"Volume -1, Area -1, Mass -1, Density -1");
    m_document.redo();
    EXPECT_EQ(m_box->m_record.toString(), L"Volume 1, Area -1, Mass -1, Density 0");
    EXPECT_EQ(m_box->m_record.owningEntity(), m_box.get());
}

TEST_F(MassPropertiesTests, RecordInAnEntityIsSavedAndLoaded) {
    m_box->change([](MassProperties & record) {
        record.overrideVolume(1.25);
        record.overrideArea(std::numeric_limits<double>::infinity());
        record.overrideMass(0);
    });
    m_document.segment()->addRoot(m_box, "box");
    Loaded const loaded(m_document.asset());
    StrongRef<Entity> const root = loaded.segment()->rootEntity("box");
    auto * const box = query<Box>(root.get());
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->m_record.toString(), L"Volume 1.25, Area inf, Mass 0, Density -1");
    EXPECT_EQ(box->m_record.owningEntity(), box);
    EXPECT_EQ(box->m_record.mass(nullptr, false), 47.1);
}

TEST_F(MassPropertiesTests, RecordsAreMadeByManyThreads) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] {
            for (int j = 0; j < 100; ++j) EXPECT_FALSE(MassProperties().isMassOverridden());
        });
}

} // namespace

} // namespace Vn::CommonData
