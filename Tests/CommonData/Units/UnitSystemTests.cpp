// Unit systems: how they are made, completed, searched, loaded and undone.

#include "Server/CommonData/Units/UnitSystem.h"

#include <thread>

#include "Tests/CommonData/Units/UnitSystemTesting.h"

namespace Vn::Units {

namespace {

using Managed::Testing::Document;
using Managed::Testing::Leaf;
using Texts = std::vector<std::wstring>;

TEST(UnitSystemsTests, MakeIsTheRootOfTheSegment) {
    Document const document;
    EXPECT_EQ(UnitSystems::segmentRootId(), "UnitSystems");
    EXPECT_FALSE(UnitSystems::find(document.segment()));
    StrongRef<UnitSystems> const systems = UnitSystems::make(document.segment());
    ASSERT_TRUE(systems);
    EXPECT_EQ(document.segment()->rootEntity("UnitSystems"), systems);
    EXPECT_EQ(UnitSystems::find(document.segment()), systems);
    EXPECT_EQ(systems->unitSystems(), 0U);
    EXPECT_EQ(systems->refCount(), 2U); // the root's and ours
}

TEST(UnitSystemsTests, FindOnASegmentWithoutTheRootIsNull) {
    Document const document;
    EXPECT_FALSE(UnitSystems::find(document.segment()));
    EXPECT_FALSE(UnitSystems::find(nullptr));
    StrongRef<Leaf> const other = Leaf::make(document.segment());
    document.segment()->addRoot(other, UnitSystems::segmentRootId());
    EXPECT_FALSE(UnitSystems::find(document.segment()));
    EXPECT_FALSE(UnitSystems::make(nullptr));
}

TEST(UnitSystemsTests, MakeThatNobodyTakesStaysAsTheRoot) {
    Document const document;
    { auto const made = UnitSystems::make(document.segment()); }
    EXPECT_TRUE(UnitSystems::find(document.segment()));
}

TEST(UnitSystemsTests, UndoAndRedoOfMakeLeaveOneRoot) {
    Document const document;
    document.step([&] { auto const made = UnitSystems::make(document.segment()); });
    auto const keys = [&] {
        std::vector<std::string> found;
        document.segment()->rootEntityIds(found);
        return found;
    };
    EXPECT_EQ(keys(), std::vector<std::string>{"UnitSystems"});
    unsigned long long const id = UnitSystems::find(document.segment())->id();
    for (int i = 0; i < 3; ++i) {
        document.undo();
        EXPECT_FALSE(UnitSystems::find(document.segment()));
        EXPECT_TRUE(keys().empty());
        document.redo();
        EXPECT_EQ(keys(), std::vector<std::string>{"UnitSystems"});
        EXPECT_EQ(UnitSystems::find(document.segment())->id(), id);
        EXPECT_EQ(document.asset().entities(), 1U);
    }
}

TEST(UnitSystemsTests, ASecondMakeTakesThePlaceOfTheFirst) {
    SystemDocument const document;
    StrongRef<UnitSystems> second;
    document.step([&] { second = UnitSystems::make(document.segment()); });
    EXPECT_EQ(UnitSystems::find(document.segment()), second);
    EXPECT_EQ(second->unitSystems(), 0U);
    document.undo();
    EXPECT_EQ(UnitSystems::find(document.segment()), document.systems());
    EXPECT_EQ(UnitSystems::find(document.segment())->unitSystems(), 1U);
}

TEST(UnitSystemsTests, FirstOfTwoSystemsWithOneIdIsFound) {
    SystemDocument const document;
    StrongRef<UnitSystem> const twin = document.make(L"Twin", "system");
    ASSERT_TRUE(twin);
    EXPECT_EQ(document.systems()->findUnitSystem("system"), document.system());
    document.systems()->remove(document.system());
    EXPECT_EQ(document.systems()->findUnitSystem("system"), twin);
    EXPECT_FALSE(document.systems()->findUnitSystem("System"));
    EXPECT_FALSE(document.systems()->findUnitSystem(std::string("system\0", 7)));
    document.systems()->remove(twin);
    EXPECT_EQ(document.systems()->unitSystems(), 0U);
    EXPECT_FALSE(document.systems()->findUnitSystem("system"));
}

TEST(UnitSystemsTests, OtherChildrenAndNullPlacesArePassedOver) {
    Document const document;
    StrongRef<UnitSystems> const systems = UnitSystems::make(document.segment());
    systems->insertChild(nullptr, 0);
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(systems));
    StrongRef<UnitSystem> const system = UnitSystem::make(systems, std::wstring(L"One"), "one");
    ASSERT_EQ(systems->unitSystems(), 3U);
    EXPECT_FALSE(systems->unitSystem(0));
    EXPECT_FALSE(systems->unitSystem(1));
    EXPECT_EQ(systems->unitSystem(2), system);
    EXPECT_FALSE(systems->unitSystem(3));
    EXPECT_FALSE(systems->unitSystem(0xFFFFFFFFU));
    EXPECT_EQ(systems->findUnitSystem("one"), system);
}

TEST(UnitSystemTests, MadeSystemIsInitializedAndNotComplete) {
    SystemDocument const document;
    UnitSystem const & system = *document.system();
    EXPECT_TRUE(system.initialized());
    EXPECT_FALSE(system.isComplete());
    EXPECT_EQ(system.unitSystemChoices(), 0U);
    EXPECT_EQ(system.name(), L"System");
    EXPECT_EQ(system.id(), "system");
    EXPECT_EQ(system.parentUnitSystems(), document.systems());
    EXPECT_EQ(document.systems()->unitSystem(0), document.system());
}

TEST(UnitSystemTests, NameMayComeFromTheStringTable) {
    SystemDocument const document;
    StrongRef<UnitSystem> const system = UnitSystem::make(
        document.systems(), GlobalizedString("VnCommonData", "noSuchKey", L"Default"), "id");
    EXPECT_EQ(system->name(), L"Default");
    EXPECT_FALSE(UnitSystem::make(StrongRef<UnitSystems>(), std::wstring(L"None"), "none"));
}

TEST(UnitSystemTests, LoadedSystemIsCompleteAndInitializedWhenItIsAsked) {
    SystemDocument const document;
    document.system()->completeCommonUnits();
    Loaded const loaded(document.asset());
    StrongRef<UnitSystem> const system = loaded.system();
    EXPECT_FALSE(system->initialized());
    EXPECT_TRUE(system->isComplete());
    EXPECT_EQ(system->name(), L"System");
    EXPECT_EQ(system->id(), "system");
    auto * const choice = query<UnitSystemChoice>(system->child(0).get());
    EXPECT_TRUE(choice->units().isEmpty());
    EXPECT_EQ(choice->unitString(), L"");
    EXPECT_EQ(choice->storedUnitString(), L"ampere");
    EXPECT_EQ(system->unitSystemChoices(), 5U);
    EXPECT_TRUE(system->initialized());
    EXPECT_EQ(choice->unitString(), L"ampere");
    std::vector<std::string> keys;
    loaded.segment()->rootEntityIds(keys);
    EXPECT_EQ(keys, std::vector<std::string>{"UnitSystems"});
}

TEST(UnitSystemTests, EveryWayInInitializes) {
    SystemDocument const document;
    document.system()->completeAsMKS();
    auto const ways = {
        +[](UnitSystem & system) { static_cast<void>(system.unitSystemChoices()); },
        +[](UnitSystem & system) { static_cast<void>(system.unitSystemChoice(0)); },
        +[](UnitSystem & system) { static_cast<void>(system.find(UnitTypeLength)); },
        +[](UnitSystem & system) { static_cast<void>(system.find(&ComplexUnit::none())); },
        +[](UnitSystem & system) { static_cast<void>(system.find("id")); },
        +[](UnitSystem & system) {
            ComplexUnit out;
            EXPECT_TRUE(system.make(&UnitInch::get()->asComplexUnit(), out));
        },
        +[](UnitSystem & system) { system.initializeIfNeeded(); },
        +[](UnitSystem & system) { system.initialize(); },
        +[](UnitSystem & system) { system.completeCommonUnits(); },
        +[](UnitSystem & system) {
            EXPECT_TRUE(query<UnitSystemChoice>(system.child(0).get())->changeUnits(L"km"));
        },
    };
    for (auto const & way : ways) {
        Loaded const loaded(document.asset());
        way(*loaded.system());
        EXPECT_TRUE(loaded.system()->initialized());
    }
}

TEST(UnitSystemTests, FindOnALoadedSystemWithoutChildrenIsNullAndInitializes) {
    SystemDocument const document;
    EXPECT_FALSE(document.system()->find(UnitTypeLength));
    Loaded const loaded(document.asset());
    EXPECT_FALSE(loaded.system()->find(UnitTypeLength));
    EXPECT_TRUE(loaded.system()->initialized());
}

struct Completion {
    char const * name;
    void (UnitSystem::*complete)();
    Texts units;
    bool isComplete;
};

class UnitSystemCompletionTests : public testing::TestWithParam<Completion> {};

TEST_P(UnitSystemCompletionTests, AddsItsUnitsInOrder) {
    SystemDocument const document;
    UnitSystem & system = *document.system();
    (system.*GetParam().complete)();
    EXPECT_EQ(storedUnits(system), GetParam().units);
    EXPECT_EQ(system.isComplete(), GetParam().isComplete);
    for (unsigned i = 0; i < system.unitSystemChoices(); ++i) {
        auto const * const choice = query<UnitSystemChoiceByUnit>(system.unitSystemChoice(i).get());
        ASSERT_NE(choice, nullptr);
        SimpleUnit const * unit = nullptr;
        ASSERT_TRUE(choice->units().isSimpleUnit(&unit));
        EXPECT_EQ(choice->simpleUnitType(), unit->simpleUnitType());
        EXPECT_EQ(choice->name(), unit->simpleUnitTypeName());
        EXPECT_EQ(system.find(unit->simpleUnitType()).get(), choice);
    }
    (system.*GetParam().complete)();
    EXPECT_EQ(storedUnits(system), GetParam().units);
}

INSTANTIATE_TEST_SUITE_P(
    Units, UnitSystemCompletionTests,
    testing::Values(Completion{"MKS",
                               &UnitSystem::completeAsMKS,
                               {L"meter", L"kilogram", L"second", L"celsius", L"MetersPerSecond",
                                L"liter", L"pascal", L"newton", L"watt", L"joule", L"ampere",
                                L"Mole", L"candela", L"degree", L"dollar"},
                               true},
                    Completion{"CGS",
                               &UnitSystem::completeAsCGS,
                               {L"centimeter", L"gram", L"second", L"celsius", L"dyne", L"erg",
                                L"ampere", L"Mole", L"candela", L"degree", L"dollar"},
                               true},
                    Completion{"Imperial",
                               &UnitSystem::completeAsImperial,
                               {L"foot", L"lbmass", L"second", L"farenheit", L"FeetPerSecond",
                                L"psi", L"lbforce", L"ampere", L"Mole", L"candela", L"degree",
                                L"dollar"},
                               true},
                    Completion{"Common",
                               &UnitSystem::completeCommonUnits,
                               {L"ampere", L"Mole", L"candela", L"degree", L"dollar"},
                               false}),
    [](auto const & row) { return std::string(row.param.name); });

TEST(UnitSystemTests, CompletingKeepsALengthChoiceThatIsThere) {
    SystemDocument const document;
    UnitSystem & system = *document.system();
    StrongRef<UnitSystemChoice> const foot = addUnit(document.system(), UnitFoot::get());
    system.completeAsMKS();
    EXPECT_EQ(system.unitSystemChoices(), 15U);
    EXPECT_EQ(system.unitSystemChoice(0), foot);
    EXPECT_EQ(system.find(UnitTypeLength), foot);
    EXPECT_EQ(unitOf(system.find(UnitTypeMass)), L"kg");
}

TEST(UnitSystemTests, CompletingAsAnotherAddsOnlyTheMissingKinds) {
    SystemDocument const document;
    UnitSystem & system = *document.system();
    system.completeAsMKS();
    system.completeAsImperial();
    EXPECT_TRUE(system.isComplete());
    EXPECT_EQ(system.unitSystemChoices(), 15U);
    EXPECT_EQ(unitOf(system.find(UnitTypeLength)), L"m");
    StrongRef<UnitSystem> const other = document.make(L"Other", "other");
    other->completeAsCGS();
    other->completeAsImperial();
    EXPECT_EQ(other->unitSystemChoices(), 13U); // speed and pressure
    EXPECT_EQ(unitOf(other->find(UnitTypePressure)), L"psi");
    EXPECT_EQ(unitOf(other->find(UnitTypeForce)), L"dyne");
}

TEST(UnitSystemTests, UndoOfCompletingLeavesTheMarkAndNoChoice) {
    SystemDocument const document;
    document.step([&] { document.system()->completeAsMKS(); });
    EXPECT_EQ(document.system()->unitSystemChoices(), 15U);
    document.undo();
    EXPECT_EQ(document.system()->unitSystemChoices(), 0U);
    EXPECT_TRUE(document.system()->isComplete());
    document.redo();
    EXPECT_EQ(document.system()->unitSystemChoices(), 15U);
    EXPECT_EQ(unitOf(document.system()->find(UnitTypeForce)), L"N");
}

TEST(UnitSystemTests, LumenAndCandelaLiveSideBySide) {
    SystemDocument const document;
    ASSERT_TRUE(addUnit(document.system(), UnitCandela::get(1.0)));
    ASSERT_TRUE(addUnit(document.system(), UnitLumen::get(1.0)));
    EXPECT_EQ(unitOf(document.system()->find(UnitTypeLuminosity)), L"cd");
    EXPECT_EQ(unitOf(document.system()->find(UnitTypeLuminousFlux)), L"lm");
}

TEST(UnitSystemTests, MakeByKindIsAlwaysFalse) {
    SystemDocument const document;
    document.system()->completeAsMKS();
    ComplexUnit out(UnitGram::get(1.0));
    for (unsigned kind = 0; kind <= c_simpleUnitTypes; ++kind)
        EXPECT_FALSE(document.system()->make(static_cast<ESimpleUnitType>(kind), out));
    EXPECT_EQ(abbreviations(out), L"g");
}

TEST(UnitSystemTests, MakeTranslatesIntoTheBaseUnitsOfTheSystem) {
    struct Row {
        std::wstring source;
        std::wstring made; // empty if there is no translation
    };
    SystemDocument const document;
    StrongRef<UnitSystem> const & system = document.system();
    system->completeAsImperial();
    for (Row const & row :
         {Row{L"N", L"ft lbmass / s s"}, Row{L"cm", L"ft"}, Row{L"km^3", L"ft ft ft"},
          Row{L"g / cm^3", L"lbmass / ft ft ft"}, Row{L"V", L"ft ft lbmass / A s s s"},
          Row{L"Hz", L"/ s"}, Row{L"m s m", L"ft ft s"}}) {
        ComplexUnit source;
        ASSERT_TRUE(UnitSystemChoice::parse(row.source, source));
        ComplexUnit made;
        EXPECT_TRUE(system->make(&source, made));
        std::wstring text = abbreviations(made);
        if (text.starts_with(L' ')) text.erase(0, 1);
        EXPECT_EQ(text, row.made);
    }
    ComplexUnit out;
    EXPECT_FALSE(system->make(nullptr, out));
}

TEST(UnitSystemTests, MakeWantsAChoiceOfASingleBaseUnitForEachKind) {
    SystemDocument const document;
    StrongRef<UnitSystem> const & system = document.system();
    ComplexUnit const speed = complexUnit({L"m"}, {L"s"});
    ComplexUnit out(UnitGram::get(1.0));
    ASSERT_TRUE(addUnit(system, UnitFoot::get()));
    EXPECT_FALSE(system->make(&speed, out)); // no time
    ASSERT_TRUE(addUnits(system, L"s^2 / s"));
    EXPECT_EQ(unitOf(system->unitSystemChoice(1)), L"s s / s");
    EXPECT_EQ(system->find(UnitTypeTime), system->unitSystemChoice(1));
    EXPECT_FALSE(system->make(&speed, out)); // a time, but no single unit
    EXPECT_EQ(abbreviations(out), L"g");
    ASSERT_TRUE(system->unitSystemChoice(1)->changeUnits(UnitHour::get()));
    EXPECT_TRUE(system->make(&speed, out));
    EXPECT_EQ(abbreviations(out), L"ft / hr");
}

TEST(UnitSystemTests, MakeOfAUnitlessSourceIsEmptyEvenWithoutChoices) {
    SystemDocument const document;
    ComplexUnit out(UnitGram::get(1.0));
    ComplexUnit const ratio = complexUnit({L"cm"}, {L"in"});
    EXPECT_TRUE(document.system()->make(&ratio, out));
    EXPECT_TRUE(out.isEmpty());
}

TEST(UnitSystemTests, OtherChildrenAndNullPlacesArePassedOver) {
    SystemDocument const document;
    StrongRef<UnitSystem> const & system = document.system();
    system->insertChild(nullptr, 0);
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(system));
    StrongRef<UnitSystemChoice> const choice = addUnit(system, UnitInch::get());
    ASSERT_EQ(system->unitSystemChoices(), 3U);
    EXPECT_FALSE(system->unitSystemChoice(0));
    EXPECT_FALSE(system->unitSystemChoice(1));
    EXPECT_EQ(system->unitSystemChoice(2), choice);
    EXPECT_FALSE(system->unitSystemChoice(3));
    EXPECT_EQ(system->find(UnitTypeLength), choice);
    system->removeChild(nullptr); // an empty place isn't saved
    Loaded const loaded(document.asset());
    EXPECT_EQ(unitOf(loaded.system()->find(UnitTypeLength)), L"in");
    EXPECT_EQ(loaded.system()->unitSystemChoices(), 2U);
}

TEST(UnitSystemTests, ChoiceThatLeftBeforeInitializationComesBackWithItsUnit) {
    SystemDocument const document;
    document.system()->completeAsMKS();
    for (bool const isHeld : {false, true}) {
        Loaded const loaded(document.asset());
        StrongRef<UnitSystem> const system = loaded.system();
        StrongRef<Managed::ManagedEntity> held;
        if (isHeld) held = system->child(0);
        {
            Transaction transaction(loaded.asset(), L"Remove");
            system->removeChild(StrongRef<Managed::ManagedEntity>(system->child(0)));
            transaction.commit();
        }
        EXPECT_FALSE(system->find(UnitTypeLength));
        ASSERT_TRUE(loaded.asset().history().undo().ok());
        EXPECT_EQ(unitOf(system->unitSystemChoice(0)), L"m");
        EXPECT_EQ(unitOf(system->find(UnitTypeLength)), L"m");
    }
}

TEST(UnitSystemTests, ChoiceOfAnotherSystemIsInitializedWhenItIsAdded) {
    SystemDocument const document;
    document.system()->completeAsMKS();
    Loaded const loaded(document.asset());
    StrongRef<UnitSystem> const other =
        UnitSystem::make(loaded.systems(), std::wstring(L"Other"), "other");
    StrongRef<Managed::ManagedEntity> const length = loaded.system()->child(0);
    loaded.system()->removeChild(length);
    other->addChild(length);
    EXPECT_FALSE(loaded.system()->initialized());
    EXPECT_EQ(unitOf(other->unitSystemChoice(0)), L"m");
}

TEST(UnitSystemTests, ToStringTellsNameIdAndState) {
    SystemDocument const document;
    document.system()->completeCommonUnits();
    EXPECT_EQ(document.system()->toString(),
              L"UnitSystem name: System id: system initialized: 1 (base ManagedGroupEntity (base "
              L"ManagedEntity (base Entity 2) : HasParent: 1) children : 5)");
    EXPECT_EQ(document.systems()->toString(),
              L"UnitSystems (base ManagedGroupEntity (base ManagedEntity (base Entity 1) : "
              L"HasParent: 0) children : 1)");
    Loaded const loaded(document.asset());
    EXPECT_NE(loaded.system()->toString().find(L"initialized: 0"), std::wstring::npos);
}

TEST(UnitSystemTests, SchemasAreThoseOfTheFormat) {
    struct Row {
        EntityMetaType * type;
        char const * id;
        char const * name;
        char const * base;
    };
    for (Row const & row :
         {Row{UnitSystem::s_metaType(), "21086CE0-C398-4b1b-9CD6-86F092429833",
              "UnitSystemMetaType", "834C9DEF-4C39-4587-A08D-A5BD1267B7B4"},
          Row{UnitSystems::s_metaType(), "A1675506-5D2D-47a5-8AD2-8FD5CE946DA0",
              "UnitSystemsMetaType", "834C9DEF-4C39-4587-A08D-A5BD1267B7B4"},
          Row{UnitSystemChoice::s_metaType(), "199B8352-4C51-4cb3-9756-26722AE44E76",
              "UnitSystemChoiceMetaType", "CB844AB6-240D-4fc9-9C9F-3679DC896D6F"},
          Row{UnitSystemChoiceByUnit::s_metaType(), "C6EE7300-667E-4ea5-9F61-71F98412DE8B",
              "UnitSystemChoiceByUnitMetaType", "199B8352-4C51-4cb3-9756-26722AE44E76"},
          Row{UnitSystemChoiceById::s_metaType(), "B61F1D39-4984-47b0-9248-3A1113E86FC1",
              "UnitSystemChoiceByIdMetaType", "199B8352-4C51-4cb3-9756-26722AE44E76"}}) {
        EXPECT_EQ(row.type->identifier(), row.id);
        EXPECT_EQ(row.type->name(), row.name);
        EXPECT_EQ(row.type->version(), 0U);
        EXPECT_EQ(row.type->baseIdentifier(), row.base);
        EXPECT_EQ(row.type->addInIdentifier(), "CommonData");
    }
    SystemDocument const document;
    StrongRef<UnitSystemChoice> const byUnit = addUnit(document.system(), UnitInch::get());
    StrongRef<UnitSystemChoice> const byId = addId(document.system(), "id", L"m");
    auto const members = [](MemberSet const & set) {
        std::vector<std::string> names;
        for (unsigned i = 0; i < set.members(); ++i) names.push_back(set.member(i).name());
        return names;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(members(*document.system()->memberSet()), (Names{"name", "id"}));
    EXPECT_EQ(members(*document.systems()->memberSet()), Names());
    EXPECT_EQ(members(*byUnit->memberSet()), (Names{"name", "unitString"}));
    EXPECT_EQ(members(*UnitSystemChoiceByUnit::s_metaType()->memberSet(0xFFFFFFFF)),
              Names{"eSimpleUnitType"});
    EXPECT_EQ(members(*UnitSystemChoiceById::s_metaType()->memberSet(0xFFFFFFFF)), Names{"id"});
}

// Finding and making contexts from several threads, in a system that none of them has touched.
TEST(UnitSystemTests, EightThreadsFindAndMakeContextsInASystemJustLoaded) {
    SystemDocument const document;
    document.system()->completeAsMKS();
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(addId(document.system(), "id" + std::to_string(i), L"mm"));
    Loaded const loaded(document.asset());
    StrongRef<UnitSystem> const system = loaded.system();
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([thread, system] {
            ComplexUnit const force = complexUnit({L"lbforce"});
            for (int i = 0; i < 50; ++i) {
                switch (thread % 4) {
                case 0:
                    EXPECT_EQ(unitOf(system->find(UnitTypeForce)), L"N");
                    break;
                case 1:
                    EXPECT_EQ(unitOf(system->find(&force)), L"N");
                    break;
                case 2:
                    EXPECT_EQ(unitOf(system->find("id150")), L"mm");
                    break;
                default:
                    break;
                }
                EXPECT_EQ(expected(UnitContext(system, UnitInch::get())), L"m");
                EXPECT_EQ(expected(UnitContext(system, "id7", UnitGram::get(1.0))), L"mm");
                UnitContext const context(system, std::wstring(L"ft / hr"));
                EXPECT_EQ(expected(context), L"mps");
                UnitContext const copy(context);
                ComplexUnit out;
                EXPECT_TRUE(copy.findDefault(force, out));
                EXPECT_EQ(abbreviations(out), L"N");
            }
        });
    threads.clear();
    EXPECT_TRUE(system->initialized());
}

} // namespace

} // namespace Vn::Units
