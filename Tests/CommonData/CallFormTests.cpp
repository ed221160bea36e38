// The forms of calls that other modules rely on, written by a module of its own: what compiles here
// links with what the library exports.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/ScopedLock.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Components/ComponentChangeSummarizer.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/CommonBaseRootCollection.h"
#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Server/CommonData/MassProperties/MassProperties.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitLookup.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::CallFormTests {

namespace {

using Expressions::Tokens;
using Units::ComplexUnit;
using Units::SimpleUnit;
using Units::UnitMeter;
using Units::UnitSecond;
using UnitList = std::vector<SimpleUnit const *>;

TEST(CallFormTests, PositionsAndLengthsMayBeUnsigned) {
    Tokens const & tokens = *Tokens::get();
    unsigned int length = 7;
    EXPECT_TRUE(tokens.matchesToken(L"2 inches", 2U, Expressions::e_INCH, length));
    EXPECT_EQ(length, 4U);
    length = 7;
    EXPECT_FALSE(tokens.matchesToken(L"2 inches", 6U, Expressions::e_INCH, length));
    EXPECT_EQ(length, 7U);
    unsigned int position = 0;
    EXPECT_TRUE(tokens.invalidNameCharsInStr(L"cm*2", position, true));
    EXPECT_EQ(position, 2U);
    position = 0;
    EXPECT_FALSE(tokens.invalidNameCharsInStr(L"cm2", position, true));
    EXPECT_EQ(position, 3U);
}

TEST(CallFormTests, PositionsAndLengthsMayBeSizes) {
    Tokens const & tokens = *Tokens::get();
    std::size_t length = 0;
    EXPECT_TRUE(tokens.matchesToken(L"2 inches", 2, Expressions::e_INCH, length));
    EXPECT_EQ(length, 4U);
    std::size_t position = 0;
    EXPECT_TRUE(tokens.invalidNameCharsInStr(L"cm*2", position, true));
    EXPECT_EQ(position, 2U);
}

TEST(CallFormTests, AUnitOnTheHeapEndsItself) {
    ComplexUnit * const unit = ComplexUnit::make(UnitMeter::get(1.0));
    EXPECT_TRUE(unit->isSimpleUnit(nullptr));
    unit->destroy();
    ComplexUnit::destroy(ComplexUnit::make(UnitMeter::get(1.0)));
    ComplexUnit::destroy(nullptr);
}

TEST(CallFormTests, TheListsOfAUnitAreLists) {
    ComplexUnit units(UnitMeter::get(1.0));
    UnitList const added{UnitMeter::get(0.01), UnitSecond::get(1.0)};
    units.addToNumerator(added);
    units.addToDenominator(added);
    UnitList const numerator = units.numerator();
    EXPECT_EQ(numerator,
              (UnitList{UnitMeter::get(1.0), UnitMeter::get(0.01), UnitSecond::get(1.0)}));
    std::vector<SimpleUnit const *> const & denominator = units.denominator();
    EXPECT_EQ(denominator, added);
    EXPECT_TRUE(units.denominator() == added);
    EXPECT_FALSE(units.numerator() == units.denominator());
    EXPECT_EQ(units.numerator().at(2), UnitSecond::get(1.0));
    EXPECT_EQ(units.numerator()[0], UnitMeter::get(1.0));
    EXPECT_THROW(static_cast<void>(units.numerator().at(3)), std::out_of_range);
    ComplexUnit copy;
    copy.addToNumerator(units.numerator());
    EXPECT_TRUE(copy.numerator() == units.numerator());
}

TEST(CallFormTests, ALockSaysWhatItGuardsAndHowDeepItStands) {
    unsigned const level = 2;
    ScopedLockBase const creation(LockCreation, level);
    EXPECT_EQ(creation.lockType(), LockCreation);
    EXPECT_EQ(creation.level(), 2U);
    ScopedLockBase const byNumber(0, 0);
    EXPECT_EQ(byNumber.lockType(), LockShared);
    EXPECT_EQ(byNumber.isLocking(), creation.isLocking());
}

TEST(CallFormTests, AWideTextIsNarrowed) {
    EXPECT_EQ(ToHString(L"45\u00B0"), "45\u00B0");
    std::wstring const text = DataChange::typeText(DataChange::ChangeValue);
    EXPECT_EQ(ToHString(text), Text::toUtf8(text));
}

// A unit of another module that says no more than it has to.
class UnitPace final : public Units::LengthUnit {
public:
    UnitPace() = default;

private:
    std::string const * onIdentifier() const override {
        static std::string const s_identifier = "UnitPace";
        return &s_identifier;
    }
    double onInternalConversionFactor() const override { return 75.0; }
    std::wstring const & onName() const override { return m_name; }
    std::wstring const & onAbbreviation() const override { return m_name; }
    bool onSupportsMagnitude() const override { return false; }

    std::wstring const m_name = L"pace";
};

TEST(CallFormTests, AnotherModuleDerivesAUnit) {
    // Kept, as units live to the end of the process.
    static UnitPace const * const s_pPace = new UnitPace;
    Units::Unit const & unit = *s_pPace;
    EXPECT_EQ(unit.toInternal(2.0), 150.0);
    EXPECT_EQ(unit.toThisUnit(150.0), 2.0);
    EXPECT_EQ(unit.unitType(), Units::BaseUnitKind);
    EXPECT_EQ(s_pPace->internalConversionOffset(), 0.0);
    EXPECT_FALSE(s_pPace->hasSymbol());
    EXPECT_EQ(s_pPace->simpleUnitType(), Units::UnitTypeLength);
    EXPECT_TRUE(
        s_pPace->asComplexUnit().isDimensionallyEquivalent(&UnitMeter::get(1.0)->asComplexUnit()));
}

TEST(CallFormTests, UnitsAreListedAndFound) {
    UnitList const units = Units::listUnits();
    EXPECT_GE(units.size(), 71U);
    EXPECT_NE(std::find(units.begin(), units.end(), UnitMeter::get(1.0)), units.end());
    std::wstring_view prefix;
    EXPECT_EQ(Units::findUnit(L"xmeter", &prefix), UnitMeter::get(1.0));
    EXPECT_EQ(prefix, L"x");
    EXPECT_EQ(Units::findUnit(L"meter"), UnitMeter::get(1.0));
    EXPECT_EQ(Units::findUnit(L""), nullptr);
    EXPECT_EQ(Units::findUnitInAnyCase(L"INCH"), Units::UnitInch::get());
    EXPECT_EQ(Units::findUnitInAnyCase(L"M"), nullptr);
    EXPECT_EQ(Units::findEquivalentUnit(Units::UnitMho::get(1.0)->asComplexUnit()),
              Units::UnitSiemens::get(1.0));
}

TEST(CallFormTests, ARootCollectionIsMadeByItsKeyAndTheTypeOfItsElements) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const segment = asset->segment(1U);
    StrongRef<CommonData::CommonBaseRootCollection> const roots =
        CommonData::CommonBaseRootCollection::make(segment, "Elements",
                                                   CommonData::CommonBaseEntity::s_metaType());
    ASSERT_TRUE(roots);
    EXPECT_EQ(segment->rootEntity("Elements"), roots);
    EXPECT_EQ(roots->rootId(), "Elements");
    StrongRef<CommonData::CommonBaseEntity> const element =
        CommonData::CommonBaseEntity::make(segment);
    ASSERT_EQ(roots->rootElements(), 1U);
    EXPECT_EQ(roots->rootElement(0), element);
    EXPECT_FALSE(CommonData::CommonBaseRootCollection::make(
        nullptr, "Elements", CommonData::CommonBaseEntity::s_metaType()));
}

// The place of a virtual operation among those of its class, as the compiler writes it into a
// pointer to the operation.
template <class Operation>
std::size_t placeOf(Operation operation) {
    static_assert(sizeof operation >= sizeof(std::size_t));
    std::size_t place = 0;
    std::memcpy(&place, &operation, sizeof place);
    return place / sizeof(void *);
}

void expectInOrder(std::vector<std::size_t> const & places) {
    for (std::size_t i = 1; i < places.size(); ++i)
        EXPECT_EQ(places[i], places[i - 1] + 1) << "at " << i;
}

struct EntityOperations : Entity {
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const *) const override;
    void destroy() noexcept override;
    void onPreDelete() override;
    void * queryMTInterface(MetaType const *) override;
    void onPreChange(DataChange::ETransact, DataChange::EChangeType, DataChange *) override;
    void onPostChange(DataChange::ETransact, DataChange::EChangeType, DataChange *) override;
    void onPreDeletion(DataChange::ETransact) override;
    void onPostCreation(DataChange::ETransact) override;
    void onPostTransactChange(DataChange::ETransact) override;
    void onPostTransactCreation(DataChange::ETransact) override;
    std::wstring onToString() const override;
    EntityMetaType * onMetaType() const override;
    std::size_t onSizeInBytes() const override;
    void onPostMigrate() override;
    unsigned version() const override;
    void doInitializeMigrationHelpers() override;
    void doUninitializeMigrationHelpers() override;
};

TEST(CallFormTests, TheVirtualOperationsOfAnEntityStandInTheirOrder) {
    using E = EntityOperations;
    expectInOrder({placeOf(&E::getInterfaceId), placeOf(&E::queryInterface), placeOf(&E::destroy),
                   placeOf(&E::onPreDelete), placeOf(&E::queryMTInterface),
                   placeOf(&E::onPreChange), placeOf(&E::onPostChange), placeOf(&E::onPreDeletion),
                   placeOf(&E::onPostCreation), placeOf(&E::onPostTransactChange),
                   placeOf(&E::onPostTransactCreation), placeOf(&E::onToString),
                   placeOf(&E::onMetaType), placeOf(&E::onSizeInBytes), placeOf(&E::onPostMigrate),
                   placeOf(&E::version), placeOf(&E::doInitializeMigrationHelpers),
                   placeOf(&E::doUninitializeMigrationHelpers)});
}

struct ManagedOperations : Managed::ManagedEntity {
    void doUninitializeMigrationHelpers() override;
    unsigned insertionIndex() const override;
};

TEST(CallFormTests, TheInsertionIndexStandsAfterTheOperationsOfAnEntity) {
    expectInOrder({placeOf(&ManagedOperations::doUninitializeMigrationHelpers),
                   placeOf(&ManagedOperations::insertionIndex)});
}

template <class Summarizer>
struct SummarizerOperations : Summarizer {
    void onPreChange(DataChange::EChangeType) override;
    void onPostChange(DataChange::EChangeType) override;
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const *) const override;

    static void expectOrder() {
        using S = SummarizerOperations;
        expectInOrder({placeOf(&S::onPreChange), placeOf(&S::onPostChange),
                       placeOf(&S::getInterfaceId), placeOf(&S::queryInterface)});
    }
};

TEST(CallFormTests, TheVirtualOperationsOfASummarizerStandInTheirOrder) {
    SummarizerOperations<EntityChangeSummarizer>::expectOrder();
    SummarizerOperations<CommonData::ComponentChangeSummarizer>::expectOrder();
}

ComplexUnit metersPerSecondSquared() {
    ComplexUnit units(UnitMeter::get(1.0));
    units.addToDenominator(UnitSecond::get(1.0));
    units.addToDenominator(UnitSecond::get(1.0));
    return units;
}

TEST(CallFormTests, UnitSystemsAreMadeFilledAndAsked) {
    using namespace Units;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const segment = asset->segment(1U);
    StrongRef<UnitSystems> const systems = UnitSystems::make(segment);
    StrongRef<UnitSystem> const mks = UnitSystem::make(systems, L"MKS", "mks");
    StrongRef<UnitSystem> const named =
        UnitSystem::make(systems, GlobalizedString("VnCommonData", "key", L"Text"), "named");
    mks->completeAsMKS();
    GlobalizedString const name(L"Name");
    ComplexUnit const acceleration(metersPerSecondSquared());
    StrongRef<UnitSystemChoiceByUnit> const byUnit =
        UnitSystemChoiceByUnit::make(named, UnitInch::get());
    StrongRef<UnitSystemChoiceByUnit> const byUnits =
        UnitSystemChoiceByUnit::make(named, &acceleration, name);
    StrongRef<UnitSystemChoiceByUnit> const byText =
        UnitSystemChoiceByUnit::make(named, L"kg / m^3", name);
    StrongRef<UnitSystemChoiceById> const byId =
        UnitSystemChoiceById::make(named, name, "id", L"mm");
    StrongRef<UnitSystemChoiceById> const byIdAndUnit =
        UnitSystemChoiceById::make(named, UnitSystemChoiceById::modelingMassName(),
                                   UnitSystemChoiceById::modelingMassId(), UnitGram::get(1.0));
    for (UnitSystemChoice const * const each :
         {static_cast<UnitSystemChoice *>(byUnit.get()),
          static_cast<UnitSystemChoice *>(byUnits.get()),
          static_cast<UnitSystemChoice *>(byText.get()),
          static_cast<UnitSystemChoice *>(byId.get()),
          static_cast<UnitSystemChoice *>(byIdAndUnit.get())}) {
        ASSERT_NE(each, nullptr);
        EXPECT_EQ(each->parentUnitSystem(), named);
        EXPECT_EQ(each->unitString(), UnitSystemChoice::reconstructString(&each->units()));
    }
    EXPECT_TRUE(byId->changeUnits(UnitInch::get()));
    EXPECT_TRUE(byId->changeUnits(L"ft"));
    EXPECT_TRUE(byId->changeUnits(&byUnit->units()));
    EXPECT_EQ(named->find("id"), byId);
    EXPECT_EQ(named->find(UnitTypeLength), byUnit);
    EXPECT_EQ(named->find(&acceleration), byUnits);
    EXPECT_EQ(named->unitSystemChoices(), 5U);
    EXPECT_EQ(named->unitSystemChoice(3), byId);
    EXPECT_EQ(systems->findUnitSystem("mks"), mks);
    EXPECT_EQ(systems->unitSystem(1), named);
    EXPECT_EQ(UnitSystems::find(segment), systems);
    ComplexUnit out;
    EXPECT_TRUE(mks->make(&acceleration, out));
    EXPECT_FALSE(mks->make(UnitTypeLength, out));
    systems->remove(named);
    EXPECT_EQ(systems->unitSystems(), 1U);
}

TEST(CallFormTests, ContextsAreMadeWithAUnitSystem) {
    using namespace Units;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<UnitSystems> const systems = UnitSystems::make(asset->segment(1U));
    StrongRef<UnitSystem> const mks = UnitSystem::make(systems, L"MKS", "mks");
    mks->completeAsMKS();
    ComplexUnit const inch(UnitInch::get());
    std::string const id = "id";
    for (UnitContext const & context :
         {UnitContext(mks, UnitInch::get()), UnitContext(mks, &inch), UnitContext(mks, L"in"),
          UnitContext(mks, id, UnitInch::get()), UnitContext(mks, "id", &inch),
          UnitContext(mks, id, L"in")}) {
        ASSERT_TRUE(context.hasExpectedUnits());
        EXPECT_EQ(context.findSimpleExpectedUnits(), UnitMeter::get(1.0));
        EXPECT_EQ(context.activeUnitSystem(), mks);
    }
}

TEST(CallFormTests, MassPropertiesAreShownWithoutARecord) {
    using CommonData::MassProperties;
    StrongRef<Units::UnitSystem> const none;
    EXPECT_EQ(MassProperties::volumeString(1.0, none, nullptr, false), L"1.00 cm^3");
    EXPECT_EQ(MassProperties::areaString(1.0, none, nullptr, false), L"1.00 cm^2");
    EXPECT_EQ(MassProperties::massString(1.0, none, nullptr, false), L"1.00 kg");
    EXPECT_EQ(MassProperties::densityString(1.0, none, nullptr, false), L"1.00 kg / cm^3");
    MassProperties record;
    record.overrideVolume(2.0);
    EXPECT_EQ(record.volumeString(none, nullptr, false), L"2.00 cm^3");
    EXPECT_EQ(record.queryMTInterface(MassProperties::s_metaType()), &record);
}

struct CalculatorOperations : CommonData::IMassPropertyCalculator {
    void calculate(CommonData::MassProperties const *, double *, double *, double *, double *,
                   CommonData::IComponentTraversalContext *, bool) override;
    PhysicalMaterial const * commonPhysicalMaterial(CommonData::IComponentTraversalContext *,
                                                    bool) override;
    bool isMeasurable() const override;
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const *) const override;
};

TEST(CallFormTests, TheVirtualOperationsOfACalculatorStandInTheirOrder) {
    using C = CalculatorOperations;
    expectInOrder({placeOf(&C::calculate), placeOf(&C::commonPhysicalMaterial),
                   placeOf(&C::isMeasurable), placeOf(&C::getInterfaceId),
                   placeOf(&C::queryInterface)});
}

} // namespace

} // namespace Vn::CallFormTests
