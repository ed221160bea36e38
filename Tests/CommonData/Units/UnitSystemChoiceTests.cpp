// The choices of unit systems: how they are made, matched, changed, stored and read back.

#include "Server/CommonData/Units/UnitSystemChoice.h"

#include "Platform/DataModel/EntityMembers.h"
#include "Tests/CommonData/Units/UnitSystemTesting.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Units {

namespace {

using Managed::Testing::Leaf;
using Managed::Testing::Recorder;

ComplexUnit parsed(wchar_t const * text) {
    ComplexUnit units;
    EXPECT_TRUE(UnitSystemChoice::parse(text, units));
    return units;
}

// A choice as a document may hold it and nothing makes: of no kind at all.
class PlainChoice : public Managed::Persisted<PlainChoice, UnitSystemChoice> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Units::PlainChoice",
                                                     "1A5B0C3E-0001-4000-8000-0000000000A1", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<PlainChoice> make(StrongRef<UnitSystem> const & system) {
        return create(PassiveRef<Entity>(system));
    }

private:
    friend class Managed::PersistedAccess;
    explicit PlainChoice(PassiveRef<Entity> const & parent)
        : Persisted(parent, GlobalizedString(L"Plain"), ComplexUnit(UnitInch::get())) {
        initializeMemberSetIfNeeded();
    }
    PlainChoice(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class PlainChoiceMetaType final : public Managed::PersistedMetaType<PlainChoice> {};
PlainChoiceMetaType s_plainChoice;
EntityMetaType * PlainChoice::s_metaType() { return &s_plainChoice; }

TEST(UnitSystemChoiceTests, PlainChoiceIsFoundByNoFind) {
    SystemDocument const document;
    StrongRef<PlainChoice> const plain = PlainChoice::make(document.system());
    EXPECT_EQ(document.system()->unitSystemChoice(0), plain);
    EXPECT_FALSE(document.system()->find(UnitTypeLength));
    EXPECT_FALSE(document.system()->find(""));
    EXPECT_FALSE(document.system()->find(&plain->units()));
}

TEST(UnitSystemChoiceByUnitTests, MakeNamesTheKindOfASimpleUnit) {
    SystemDocument const document;
    StrongRef<UnitSystemChoiceByUnit> const choice = addUnit(document.system(), UnitFoot::get());
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->name(), L"Length");
    EXPECT_EQ(choice->globalizedName().key(), "UnitTypeLength");
    EXPECT_EQ(choice->simpleUnitType(), UnitTypeLength);
    EXPECT_EQ(unitOf(choice), L"ft");
    EXPECT_EQ(choice->unitString(), L"foot");
    EXPECT_EQ(choice->storedUnitString(), L"foot");
    EXPECT_EQ(choice->parentUnitSystem(), document.system());
    EXPECT_EQ(document.system()->unitSystemChoice(0), choice);
}

TEST(UnitSystemChoiceByUnitTests, MakeOfAKindThatIsHeldIsNull) {
    SystemDocument const document;
    ASSERT_TRUE(addUnit(document.system(), UnitFoot::get()));
    EXPECT_FALSE(addUnit(document.system(), UnitInch::get()));
    EXPECT_FALSE(addUnit(document.system(), UnitFoot::get()));
    EXPECT_EQ(document.system()->unitSystemChoices(), 1U);
}

TEST(UnitSystemChoiceByUnitTests, MakeOfADimensionThatIsHeldIsNullHoweverItIsWritten) {
    SystemDocument const document;
    ASSERT_TRUE(addUnit(document.system(), UnitFoot::get()));
    EXPECT_FALSE(addUnits(document.system(), L"mm"));
    EXPECT_FALSE(addUnits(document.system(), L"mm^2 / mm"));
    EXPECT_FALSE(addUnits(document.system(), L"acre / mi"));
    EXPECT_TRUE(addUnits(document.system(), L"mm^2"));
    EXPECT_EQ(document.system()->unitSystemChoices(), 2U);
}

TEST(UnitSystemChoiceByUnitTests, MakeWithoutSystemUnitOrUnitTextIsNull) {
    SystemDocument const document;
    GlobalizedString const name(L"Name");
    using Choice = UnitSystemChoiceByUnit;
    EXPECT_FALSE(addUnit(StrongRef<UnitSystem>(), UnitFoot::get()));
    EXPECT_FALSE(addUnit(document.system(), nullptr));
    EXPECT_FALSE(Choice::make(document.system(), static_cast<ComplexUnit *>(nullptr), name));
    EXPECT_FALSE(Choice::make(document.system(), std::wstring(L"nonsense"), name));
    EXPECT_FALSE(Choice::make(document.system(), std::wstring(L"2 cm"), name));
    EXPECT_EQ(document.system()->unitSystemChoices(), 0U);
}

TEST(UnitSystemChoiceByUnitTests, KindIsThatOfTheUnitOrOfItsDimension) {
    struct Row {
        wchar_t const * text;
        unsigned kind;
    };
    for (Row const & row :
         {Row{L"in", UnitTypeLength}, Row{L"lm", UnitTypeLuminousFlux}, Row{L"N m", UnitTypeEnergy},
          Row{L"m^2", UnitTypeArea}, Row{L"m / s^2", UnitSystemChoiceByUnit::c_noKind},
          Row{L"cd^2 / cd", UnitTypeLuminosity}, Row{L"", UnitTypeSolidAngle},
          Row{L"cm / in", UnitTypeSolidAngle}, Row{L"1 / s", UnitTypeFrequency}}) {
        SystemDocument const document;
        ComplexUnit units;
        if (!UnitSystemChoice::parse(row.text, units)) { // "1 / s" is written "/ s"
            units.addToDenominator(UnitSecond::get(1.0));
        }
        StrongRef<UnitSystemChoiceByUnit> const choice =
            UnitSystemChoiceByUnit::make(document.system(), &units, GlobalizedString(row.text));
        ASSERT_TRUE(choice);
        EXPECT_EQ(choice->simpleUnitType(), row.kind) << testing::PrintToString(row.text);
    }
}

TEST(UnitSystemChoiceByUnitTests, KindIsStoredAfterTheSystemListsTheChoiceAndWithoutABracket) {
    SystemDocument const document;
    Recorder system(*document.system());
    unsigned seen = 0;
    system.m_onPost = [&](DataChange *) {
        seen = query<UnitSystemChoiceByUnit>(document.system()->child(0).get())->simpleUnitType();
    };
    StrongRef<UnitSystemChoiceByUnit> const choice = addUnit(document.system(), UnitFoot::get());
    document.system()->unsubscribe(&system);
    EXPECT_EQ(seen, UnitSystemChoiceByUnit::c_noKind);
    EXPECT_EQ(system.m_told.size(), 2U);
    EXPECT_EQ(choice->simpleUnitType(), UnitTypeLength);
}

TEST(UnitSystemChoiceByUnitTests, KindIsKeptByUndoRedoSavingAndLoading) {
    SystemDocument const document;
    document.step([&] { addUnit(document.system(), UnitFoot::get()); });
    document.undo();
    EXPECT_EQ(document.system()->unitSystemChoices(), 0U);
    document.redo();
    EXPECT_EQ(unitOf(document.system()->find(UnitTypeLength)), L"ft");
    Loaded const loaded(document.asset());
    EXPECT_EQ(unitOf(loaded.system()->find(UnitTypeLength)), L"ft");
}

TEST(UnitSystemChoiceByUnitTests, SimpleUnitMatchesByKindAndAnyOtherByDimension) {
    SystemDocument const document;
    StrongRef<UnitSystemChoiceByUnit> const choice =
        addUnit(document.system(), UnitCandela::get(1.0));
    ComplexUnit const lumen = complexUnit({L"lm"});
    ComplexUnit const product = complexUnit({L"lm", L"cd"}, {L"cd"});
    EXPECT_FALSE(choice->matches(&lumen));
    EXPECT_TRUE(choice->matches(&product));
    EXPECT_TRUE(choice->matches(UnitTypeLuminosity));
    EXPECT_FALSE(choice->matches(UnitTypeLuminousFlux));
    EXPECT_FALSE(choice->matches("Luminosity"));
    EXPECT_FALSE(choice->matches(static_cast<ComplexUnit const *>(nullptr)));
}

TEST(UnitSystemChoiceByUnitTests, ChoiceWithoutAKindMatchesTheNumberOfNone) {
    SystemDocument const document;
    StrongRef<UnitSystemChoice> const choice = addUnits(document.system(), L"m / s^2");
    EXPECT_EQ(document.system()->find(static_cast<ESimpleUnitType>(31)), choice);
    ComplexUnit const acceleration = parsed(L"ft / hr^2");
    EXPECT_EQ(document.system()->find(&acceleration), choice);
}

TEST(UnitSystemChoiceByUnitTests, KindFromAFileIsKeptAsItIs) {
    SystemDocument const document;
    addUnit(document.system(), UnitFoot::get());
    Loaded const loaded(document.asset(),
                        {"UPDATE UnitSystemChoiceByUnit SET "
                         "\"UnitSystemChoiceByUnit.eSimpleUnitType\" = 4000000000"});
    StrongRef<UnitSystem> const system = loaded.system();
    auto const kind = static_cast<ESimpleUnitType>(4000000000U);
    EXPECT_EQ(query<UnitSystemChoiceByUnit>(system->unitSystemChoice(0).get())->simpleUnitType(),
              kind);
    EXPECT_TRUE(system->find(kind));
    EXPECT_FALSE(system->find(UnitTypeLength));
    EXPECT_FALSE(system->find(static_cast<ESimpleUnitType>(31)));
    ASSERT_TRUE(system->unitSystemChoice(0)->changeUnits(L"in"));
    ASSERT_TRUE(DocumentFile::save(loaded.asset()));
    StrongRef<Asset> again;
    ASSERT_TRUE(DocumentFile::load(loaded.file(), nullptr, again));
    EXPECT_TRUE(UnitSystems::find(again->segment(1U))->unitSystem(0)->find(kind));
}

TEST(UnitSystemChoiceByIdTests, MakeByTextAndByUnit) {
    SystemDocument const document;
    StrongRef<UnitSystemChoiceById> const byText = addId(document.system(), "a", L"mm");
    StrongRef<UnitSystemChoiceById> const byUnit = UnitSystemChoiceById::make(
        document.system(), GlobalizedString(L"B"), "b", UnitMeter::get(0.001));
    ASSERT_TRUE(byText);
    ASSERT_TRUE(byUnit); // the same unit, under another id
    EXPECT_EQ(byText->id(), "a");
    EXPECT_EQ(byUnit->name(), L"B");
    EXPECT_EQ(byUnit->unitString(), L"millimeter");
    EXPECT_EQ(document.system()->find("b"), byUnit);
    EXPECT_FALSE(document.system()->find("c"));
    EXPECT_FALSE(document.system()->find(UnitTypeLength));
    EXPECT_FALSE(document.system()->find(&byText->units()));
}

TEST(UnitSystemChoiceByIdTests, IdsAreComparedAsWholeStrings) {
    SystemDocument const document;
    std::string const withNull("a\0b", 3);
    ASSERT_TRUE(addId(document.system(), withNull, L"mm"));
    EXPECT_TRUE(document.system()->find(withNull));
    EXPECT_FALSE(document.system()->find("a"));
    ASSERT_TRUE(addId(document.system(), "", L"m"));
    EXPECT_EQ(unitOf(document.system()->find("")), L"m");
}

TEST(UnitSystemChoiceByIdTests, MakeOfATextThatDoesntParseIsNull) {
    SystemDocument const document;
    for (wchar_t const * text : {L"nonsense", L"2 cm", L"CM", L"(", L"circular_mil"})
        EXPECT_FALSE(addId(document.system(), "id", text)) << testing::PrintToString(text);
    EXPECT_FALSE(addId(StrongRef<UnitSystem>(), "id", L"m"));
    EXPECT_FALSE(UnitSystemChoiceById::make(document.system(), GlobalizedString(L""), "id",
                                            static_cast<SimpleUnit *>(nullptr)));
    EXPECT_EQ(document.system()->unitSystemChoices(), 0U);
}

TEST(UnitSystemChoiceByIdTests, MakeOfAnIdThatIsHeldIsNullWhateverTheText) {
    SystemDocument const document;
    ASSERT_TRUE(addId(document.system(), "id", L"mm"));
    for (wchar_t const * text : {L"mm", L"kg", L"nonsense"})
        EXPECT_FALSE(addId(document.system(), "id", text));
    EXPECT_EQ(document.system()->unitSystemChoices(), 1U);
}

TEST(UnitSystemChoiceByIdTests, KnowsTwoIdsAndTheirNames) {
    EXPECT_EQ(UnitSystemChoiceById::modelingLengthId(), "ModelingLength");
    EXPECT_EQ(UnitSystemChoiceById::modelingMassId(), "ModelingMass");
    EXPECT_EQ(UnitSystemChoiceById::modelingLengthName().value(), L"Modeling Length");
    EXPECT_EQ(UnitSystemChoiceById::modelingLengthName().key(), "modelingLengthName");
    EXPECT_EQ(UnitSystemChoiceById::modelingMassName().value(), L"Modeling Mass");
    EXPECT_EQ(UnitSystemChoiceById::modelingMassName().module(), "VnCommonData");
    EXPECT_EQ(&UnitSystemChoiceById::modelingMassName(), &UnitSystemChoiceById::modelingMassName());
}

TEST(UnitSystemChoiceTests, ChangeOfUnitsToAnotherDimensionIsRefusedWithoutAChange) {
    SystemDocument const document;
    StrongRef<UnitSystemChoice> const choice = addUnit(document.system(), UnitFoot::get());
    Recorder told(*choice);
    EXPECT_FALSE(choice->changeUnits(UnitGram::get(1.0)));
    EXPECT_FALSE(choice->changeUnits(std::wstring(L"m^2")));
    EXPECT_FALSE(choice->changeUnits(std::wstring(L"nonsense")));
    EXPECT_FALSE(choice->changeUnits(static_cast<ComplexUnit const *>(nullptr)));
    EXPECT_FALSE(choice->changeUnits(static_cast<SimpleUnit const *>(nullptr)));
    EXPECT_TRUE(told.m_told.empty());
    EXPECT_EQ(choice->storedUnitString(), L"foot");
    choice->unsubscribe(&told);
}

TEST(UnitSystemChoiceTests, ChangeToTheSameUnitIsAChange) {
    SystemDocument const document;
    StrongRef<UnitSystemChoice> const choice = addUnit(document.system(), UnitFoot::get());
    Recorder told(*choice);
    EXPECT_TRUE(choice->changeUnits(UnitFoot::get()));
    EXPECT_TRUE(choice->changeUnits(&choice->units()));
    ASSERT_EQ(told.m_told.size(), 4U);
    EXPECT_EQ(told.m_told[0].type, DataChange::ChangeValue);
    EXPECT_EQ(told.m_told[0].transact, DataChange::TransactDirect);
    EXPECT_EQ(choice->unitString(), L"foot");
    choice->unsubscribe(&told);
}

TEST(UnitSystemChoiceTests, ChangeOfUnitsIsUndoneAndRedone) {
    SystemDocument const document;
    StrongRef<UnitSystemChoice> const choice = addUnit(document.system(), UnitFoot::get());
    document.step([&] { EXPECT_TRUE(choice->changeUnits(std::wstring(L"mm^2 / mm"))); });
    EXPECT_EQ(unitOf(choice), L"mm mm / mm");
    document.undo();
    EXPECT_EQ(unitOf(choice), L"ft");
    EXPECT_EQ(choice->storedUnitString(), L"foot");
    document.redo();
    EXPECT_EQ(unitOf(choice), L"mm mm / mm");
    EXPECT_EQ(choice->storedUnitString(), choice->unitString());
}

TEST(UnitSystemChoiceTests, NeitherKindNorNameFollowsTheUnit) {
    SystemDocument const document;
    StrongRef<UnitSystemChoiceByUnit> const choice =
        addUnit(document.system(), UnitCandela::get(1.0));
    EXPECT_TRUE(choice->changeUnits(UnitLumen::get(1.0)));
    EXPECT_EQ(choice->simpleUnitType(), UnitTypeLuminosity);
    EXPECT_EQ(choice->name(), L"Luminosity");
    EXPECT_FALSE(document.system()->find(UnitTypeLuminousFlux));
    EXPECT_EQ(unitOf(document.system()->find(UnitTypeLuminosity)), L"lm");
}

TEST(UnitSystemChoiceTests, ObserverThatChangesTheUnitMeanwhileLeavesUnitAndTextInStep) {
    SystemDocument const document;
    StrongRef<UnitSystemChoice> const choice = addUnit(document.system(), UnitFoot::get());
    Recorder told(*choice);
    told.m_onPre = [&](DataChange *) {
        told.m_onPre = nullptr;
        EXPECT_TRUE(choice->changeUnits(UnitMile::get()));
    };
    EXPECT_TRUE(choice->changeUnits(&choice->units()));
    EXPECT_EQ(unitOf(choice), L"ft");
    EXPECT_EQ(choice->storedUnitString(), L"foot");
    choice->unsubscribe(&told);
}

TEST(UnitSystemChoiceTests, StoredTextHasFullNamesWhateverTheSettings) {
    SettingsGuard const guard;
    SystemDocument const document;
    UnitDisplaySettings & settings = UnitDisplaySettings::userEditableSettings();
    for (bool const abbreviated : {false, true})
        for (bool const symbol : {false, true}) {
            settings.displayAbbreviated(abbreviated);
            settings.displaySymbol(symbol);
            ComplexUnit const dollars = parsed(L"dol / km");
            EXPECT_EQ(UnitSystemChoice::reconstructString(&dollars), L"dollar / kilometer");
            EXPECT_EQ(UnitSystemChoice::reconstructString(&UnitDegree::get()->asComplexUnit()),
                      L"degree");
        }
}

TEST(UnitSystemChoiceTests, PowersAreStoredAsTheSettingsSayAndBothRead) {
    SettingsGuard const guard;
    SystemDocument const document;
    for (bool const compress : {true, false}) {
        UnitDisplaySettings::userEditableSettings().compressUnits(compress);
        StrongRef<UnitSystemChoice> const choice =
            addId(document.system(), compress ? "compressed" : "plain", L"m^2 / s^2");
        EXPECT_EQ(choice->storedUnitString(),
                  compress ? L"meter^2 / second^2" : L"meter meter / (second second)");
    }
    Loaded const loaded(document.asset());
    EXPECT_EQ(unitOf(loaded.system()->find("compressed")), L"m m / s s");
    EXPECT_EQ(unitOf(loaded.system()->find("plain")), L"m m / s s");
    EXPECT_EQ(loaded.system()->find("plain")->storedUnitString(), L"meter meter / (second second)");
}

TEST(UnitSystemChoiceTests, WhatATextCannotHoldIsLost) {
    SystemDocument const document;
    for (wchar_t const * const text :
         {L"cm", L"m / s^2", L"sr", L"", L"kg m^2 / (s^2 A)", L"Em^3"}) {
        ComplexUnit const units = parsed(text);
        EXPECT_TRUE(UnitSystemChoice::isStorable(&units)) << testing::PrintToString(text);
    }
    for (ComplexUnit const & units : {parsed(L"cm / in"), ComplexUnit(UnitMeter::get(1E5))})
        EXPECT_FALSE(UnitSystemChoice::isStorable(&units));
    EXPECT_FALSE(UnitSystemChoice::isStorable(nullptr));
    StrongRef<UnitSystemChoice> const ratio = addId(document.system(), "ratio", L"cm / in");
    EXPECT_EQ(ratio->storedUnitString(), L"");
    StrongRef<UnitSystemChoice> const scaled = UnitSystemChoiceById::make(
        document.system(), GlobalizedString(L""), "scaled", UnitMeter::get(1E5));
    EXPECT_EQ(scaled->storedUnitString(), L"meter");
    Loaded const loaded(document.asset());
    EXPECT_TRUE(loaded.system()->find("ratio")->units().isEmpty());
    EXPECT_EQ(unitOf(loaded.system()->find("scaled")), L"m");
}

// In a document that another program wrote: once this one has an attobar, it doesn't read "megabar"
// as a unit that it hasn't met.
void checkUnitsThatCannotBeTyped() {
    SystemDocument const document;
    for (char const * const id : {"circular_mil", "megabar", "attobar", "/ (megabar attobar)"})
        ASSERT_TRUE(addId(document.system(), id, L"mm"));
    Loaded const loaded(document.asset(), {"UPDATE UnitSystemChoiceById SET "
                                           "\"UnitSystemChoice.unitString\" = "
                                           "\"UnitSystemChoiceById.id\""});
    static_cast<void>(UnitBar::get(1E-18));
    ComplexUnit units;
    EXPECT_FALSE(UnitSystemChoice::parse(L"circular_mil", units));
    EXPECT_FALSE(UnitSystemChoice::parse(L"megabar", units));
    for (char const * const id : {"circular_mil", "megabar", "attobar", "/ (megabar attobar)"})
        EXPECT_EQ(loaded.system()->find(id)->unitString(), Text::fromUtf8(id));
}

TEST(UnitSystemChoiceTests, UnitsThatCannotBeTypedComeBack) {
    expectInFreshProcess(&checkUnitsThatCannotBeTyped);
}

// A text that is no unit stays in the document until the unit is changed.
TEST(UnitSystemChoiceTests, TextThatIsNoUnitIsKept) {
    SystemDocument const document;
    addId(document.system(), "id", L"mm");
    for (std::string const & text :
         {std::string("furlong per fortnight"), std::string("2 cm"), std::string(1'000'000, '('),
          std::string(10'000'000, 'x'), std::string("meter^99999999"), std::string("meter^0.5"),
          std::string("meter  second"), std::string("/ (meter second) x")}) {
        Loaded const loaded(
            document.asset(),
            {"UPDATE UnitSystemChoiceById SET \"UnitSystemChoice.unitString\" = '" + text + "'"});
        StrongRef<UnitSystem> const system = loaded.system();
        StrongRef<UnitSystemChoice> const choice = system->find("id");
        ASSERT_TRUE(choice);
        if (text == "meter  second") {
            EXPECT_EQ(unitOf(choice), L"m s"); // as the engine reads it
            continue;
        }
        EXPECT_TRUE(choice->units().isEmpty()) << text.substr(0, 30);
        EXPECT_EQ(choice->unitString(), L"");
        EXPECT_TRUE(choice->storedUnitString() == Text::fromUtf8(text));
        EXPECT_FALSE(choice->changeUnits(UnitFoot::get()));
        addUnit(system, UnitGram::get(1.0)); // so that there is something to save
        ASSERT_TRUE(DocumentFile::save(loaded.asset()));
        StrongRef<Asset> again;
        ASSERT_TRUE(DocumentFile::load(loaded.file(), nullptr, again));
        EXPECT_TRUE(
            UnitSystems::find(again->segment(1U))->unitSystem(0)->find("id")->storedUnitString() ==
            Text::fromUtf8(text));
    }
}

TEST(UnitSystemChoiceTests, GeneralSettingOfTextAndKindIsRefusedWithTheReason) {
    SystemDocument const document;
    StrongRef<UnitSystemChoiceByUnit> const choice = addUnit(document.system(), UnitFoot::get());
    for (char const * const member : {"unitString", "eSimpleUnitType"}) {
        Status const status = EntityMembers(choice).set(member, L"5");
        EXPECT_FALSE(status);
        EXPECT_NE(status.toString().find("the unit"), std::string::npos) << status.toString();
    }
    EXPECT_EQ(choice->storedUnitString(), L"foot");
}

TEST(UnitSystemChoiceTests, ToStringTellsUnitsAndName) {
    SystemDocument const document;
    StrongRef<UnitSystemChoice> const byUnit = addUnits(document.system(), L"m / s^2");
    StrongRef<UnitSystemChoice> const byId = addId(document.system(), "id", L"mm");
    EXPECT_EQ(byUnit->toString(),
              L"UnitSystemChoiceByUnit : (base UnitSystemChoice units: (meter) / (second*second) "
              L"name: m / s^2 (base ManagedEntity (base Entity 3) : HasParent: 1))");
    EXPECT_EQ(
        byId->toString(),
        L"UnitSystemChoiceById Id : id (base UnitSystemChoice units: (millimeter) / (1) name: "
        L"A name (base ManagedEntity (base Entity 4) : HasParent: 1))");
}

TEST(UnitSystemChoiceTests, TenThousandLoadedChoicesAreChangedUndoneAndRedone) {
    SystemDocument const document;
    addId(document.system(), "one", L"mm");
    Loaded const loaded(document.asset(), manyChoices(10'000));
    ASSERT_EQ(loaded.system()->children(), 10'000U);
    StrongRef<UnitSystem> const system = loaded.system();
    {
        Transaction transaction(loaded.asset(), L"Change");
        for (unsigned i = 0; i < system->unitSystemChoices(); ++i)
            EXPECT_TRUE(system->unitSystemChoice(i)->changeUnits(UnitFoot::get()));
        transaction.commit();
    }
    ASSERT_TRUE(loaded.asset().history().undo().ok());
    for (unsigned i = 0; i < system->unitSystemChoices(); ++i)
        EXPECT_EQ(unitOf(system->unitSystemChoice(i)), L"mm");
    EXPECT_EQ(unitOf(system->find("9999")), L"mm");
    ASSERT_TRUE(loaded.asset().history().redo().ok());
    for (unsigned i = 0; i < system->unitSystemChoices(); ++i)
        EXPECT_EQ(unitOf(system->unitSystemChoice(i)), L"ft");
}

} // namespace

} // namespace Vn::Units
