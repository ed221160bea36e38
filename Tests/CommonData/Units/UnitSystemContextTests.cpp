// What a document's unit system makes of what a caller asks for.

#include "Tests/CommonData/Units/UnitSystemTesting.h"

namespace Vn::Units {

namespace {

using Expressions::Expression;

StrongRef<UnitSystem> const c_none;
SimpleUnit const * const c_noUnit = nullptr;

class UnitSystemContextTests : public testing::Test {
protected:
    UnitSystemContextTests() {
        mks()->completeAsMKS();
        imperial()->completeAsImperial();
    }

    StrongRef<UnitSystem> const & mks() const { return m_document.system(); }
    StrongRef<UnitSystem> const & imperial() const { return m_rImperial; }
    StrongRef<UnitSystem> const & empty() const { return m_rEmpty; }

    SystemDocument const m_document;

private:
    StrongRef<UnitSystem> const m_rImperial = m_document.make(L"Imperial", "imperial");
    StrongRef<UnitSystem> const m_rEmpty = m_document.make(L"Empty", "empty");
};

// A system and a simple unit.

TEST_F(UnitSystemContextTests, SimpleUnitWithoutASystemIsExpected) {
    UnitContext const context(c_none, UnitInch::get());
    EXPECT_EQ(expected(context), L"in");
    EXPECT_FALSE(context.activeUnitSystem());
}

TEST_F(UnitSystemContextTests, SimpleUnitGivesWayToTheChoiceOfItsKind) {
    UnitContext const context(mks(), UnitInch::get());
    EXPECT_EQ(expected(context), L"m");
    EXPECT_EQ(context.activeUnitSystem(), mks());
    EXPECT_EQ(expected(UnitContext(imperial(), UnitMeter::get(1.0))), L"ft");
    EXPECT_EQ(expected(UnitContext(mks(), UnitGallon::get())), L"l");
}

TEST_F(UnitSystemContextTests, SimpleUnitWithoutAChoiceOfItsKindStays) {
    EXPECT_EQ(expected(UnitContext(mks(), UnitAcre::get())), L"acre");
    EXPECT_EQ(expected(UnitContext(empty(), UnitInch::get())), L"in");
    EXPECT_EQ(expected(UnitContext(mks(), UnitSteradian::get(1.0))), L"sr");
}

// A system and a complex unit.

TEST_F(UnitSystemContextTests, ComplexUnitWithoutASystemIsExpected) {
    ComplexUnit const speed = complexUnit({L"mi"}, {L"hr"});
    EXPECT_EQ(expected(UnitContext(c_none, &speed)), L"mi / hr");
}

TEST_F(UnitSystemContextTests, ComplexUnitGivesWayToTheChoiceOfItsDimension) {
    ComplexUnit const speed = complexUnit({L"mi"}, {L"hr"});
    EXPECT_EQ(expected(UnitContext(mks(), &speed)), L"mps");
    ComplexUnit const volume = complexUnit({L"m", L"m", L"m"});
    EXPECT_EQ(expected(UnitContext(mks(), &volume)), L"l");
    ComplexUnit const inch = complexUnit({L"in"}); // one simple unit is found by its kind
    EXPECT_EQ(expected(UnitContext(mks(), &inch)), L"m");
}

TEST_F(UnitSystemContextTests, ComplexUnitWithoutAChoiceIsTranslated) {
    ComplexUnit const acceleration = complexUnit({L"in"}, {L"hr", L"hr"});
    EXPECT_EQ(expected(UnitContext(mks(), &acceleration)), L"m / s s");
    ComplexUnit const acre = complexUnit({L"acre"});
    EXPECT_EQ(expected(UnitContext(mks(), &acre)), L"m m");
    ComplexUnit const volume = complexUnit({L"gal"});
    EXPECT_EQ(expected(UnitContext(imperial(), &volume)), L"ft ft ft");
}

TEST_F(UnitSystemContextTests, ComplexUnitThatCannotBeTranslatedStays) {
    ComplexUnit const acceleration = complexUnit({L"in"}, {L"hr", L"hr"});
    EXPECT_EQ(expected(UnitContext(empty(), &acceleration)), L"in / hr hr");
}

// A system and a text.

TEST_F(UnitSystemContextTests, TextWithoutASystemIsExpected) {
    EXPECT_EQ(expected(UnitContext(c_none, std::wstring(L"mi / hr"))), L"mi / hr");
    EXPECT_EQ(expected(UnitContext(c_none, std::wstring(L"nonsense"))), L"nothing");
}

TEST_F(UnitSystemContextTests, TextGivesWayToTheSystem) {
    EXPECT_EQ(expected(UnitContext(mks(), std::wstring(L"acre"))), L"m m");
    EXPECT_EQ(expected(UnitContext(mks(), std::wstring(L"m^3"))), L"l");
    EXPECT_EQ(expected(UnitContext(imperial(), std::wstring(L"mm"))), L"ft");
    EXPECT_EQ(expected(UnitContext(empty(), std::wstring(L"mm"))), L"mm");
}

TEST_F(UnitSystemContextTests, TextThatDoesntParseExpectsNothing) {
    UnitContext const context(mks(), std::wstring(L"2 cm"));
    EXPECT_EQ(expected(context), L"nothing");
    EXPECT_EQ(context.activeUnitSystem(), mks());
    EXPECT_EQ(context.findDefault(UnitTypeLength), UnitMeter::get(1.0));
}

TEST_F(UnitSystemContextTests, UnitlessTextsExpectAUnitlessResult) {
    for (wchar_t const * text : {L"", L"sr", L"cm / in"}) {
        UnitContext const context(mks(), std::wstring(text));
        ASSERT_TRUE(context.hasExpectedUnits());
        EXPECT_TRUE(context.expectedUnits()->isEmpty()) << testing::PrintToString(text);
    }
}

// A system, an identifier and a simple unit.

TEST_F(UnitSystemContextTests, IdAndSimpleUnitWithoutASystemExpectTheUnit) {
    EXPECT_EQ(expected(UnitContext(c_none, "id", UnitInch::get())), L"in");
}

TEST_F(UnitSystemContextTests, IdAndNoUnitWithoutASystemExpectNothing) {
    UnitContext const context(c_none, "id", c_noUnit);
    EXPECT_EQ(expected(context), L"nothing");
    EXPECT_EQ(context.findSimpleExpectedUnits(), nullptr);
}

TEST_F(UnitSystemContextTests, ChoiceByIdGoesBeforeTheSimpleUnitEvenOfAnotherKind) {
    ASSERT_TRUE(addId(mks(), "id", L"kg / mm"));
    EXPECT_EQ(expected(UnitContext(mks(), "id", UnitInch::get())), L"kg / mm");
    EXPECT_EQ(expected(UnitContext(mks(), "id", c_noUnit)), L"kg / mm");
}

TEST_F(UnitSystemContextTests, UnknownIdFallsThroughToTheKindOfTheSimpleUnit) {
    EXPECT_EQ(expected(UnitContext(mks(), "other", UnitInch::get())), L"m");
    EXPECT_EQ(expected(UnitContext(mks(), "other", UnitAcre::get())), L"acre");
}

TEST_F(UnitSystemContextTests, UnknownIdAndNoUnitExpectNothing) {
    UnitContext const context(mks(), "other", c_noUnit);
    EXPECT_FALSE(context.hasExpectedUnits());
    EXPECT_EQ(context.expectedUnits(), nullptr);
    EXPECT_EQ(context.findSimpleExpectedUnits(), nullptr);
    UnitContext copy(context);
    UnitContext assigned(UnitInch::get());
    assigned = copy;
    for (UnitContext const * const each : {&context, static_cast<UnitContext const *>(&copy),
                                           static_cast<UnitContext const *>(&assigned)}) {
        EXPECT_FALSE(each->hasExpectedUnits());
        EXPECT_EQ(each->activeUnitSystem(), mks());
        EXPECT_EQ(each->findDefault(UnitTypeLength), UnitMeter::get(1.0));
        ComplexUnit out;
        EXPECT_TRUE(each->findDefault(complexUnit({L"lbforce"}), out));
        EXPECT_EQ(abbreviations(out), L"N");
        ComplexUnit::destroy(each->cloneExpectedUnits());
        EXPECT_EQ(shown(L"2 in", *each), L"2.00 in");
        EXPECT_EQ(shown(L"2", *each), L"2.00");
    }
    assigned = UnitContext(UnitInch::get());
    EXPECT_EQ(expected(assigned), L"in");
}

// A system, an identifier and a complex unit.

TEST_F(UnitSystemContextTests, IdAndComplexUnitWithoutASystemExpectTheUnit) {
    ComplexUnit const speed = complexUnit({L"mi"}, {L"hr"});
    EXPECT_EQ(expected(UnitContext(c_none, "id", &speed)), L"mi / hr");
}

TEST_F(UnitSystemContextTests, ChoiceByIdGoesBeforeTheComplexUnit) {
    ASSERT_TRUE(addId(mks(), "id", L"kg"));
    ComplexUnit const speed = complexUnit({L"mi"}, {L"hr"});
    EXPECT_EQ(expected(UnitContext(mks(), "id", &speed)), L"kg");
}

TEST_F(UnitSystemContextTests, UnknownIdFallsThroughToTheDimensionOfTheComplexUnit) {
    ComplexUnit const speed = complexUnit({L"mi"}, {L"hr"});
    EXPECT_EQ(expected(UnitContext(mks(), "other", &speed)), L"mps");
    ComplexUnit const acre = complexUnit({L"acre"});
    EXPECT_EQ(expected(UnitContext(mks(), "other", &acre)), L"m m");
    EXPECT_EQ(expected(UnitContext(empty(), "other", &speed)), L"mi / hr");
}

// A system, an identifier and a text.

TEST_F(UnitSystemContextTests, IdAndTextWithoutASystemExpectTheUnit) {
    EXPECT_EQ(expected(UnitContext(c_none, "id", std::wstring(L"mi / hr"))), L"mi / hr");
    EXPECT_EQ(expected(UnitContext(c_none, "id", std::wstring(L"nonsense"))), L"nothing");
}

TEST_F(UnitSystemContextTests, ChoiceByIdGoesBeforeTheTextWhichIsntRead) {
    ASSERT_TRUE(addId(mks(), "id", L"kg"));
    EXPECT_EQ(expected(UnitContext(mks(), "id", std::wstring(L"mm"))), L"kg");
    EXPECT_EQ(expected(UnitContext(mks(), "id", std::wstring(L"nonsense"))), L"kg");
}

TEST_F(UnitSystemContextTests, UnknownIdFallsThroughToTheText) {
    EXPECT_EQ(expected(UnitContext(mks(), "other", std::wstring(L"acre"))), L"m m");
    EXPECT_EQ(expected(UnitContext(imperial(), "other", std::wstring(L"mm"))), L"ft");
    EXPECT_EQ(expected(UnitContext(mks(), "other", std::wstring(L"nonsense"))), L"nothing");
}

// The system alone, and what a context answers later.

TEST_F(UnitSystemContextTests, SystemAloneExpectsNothingAndIsAsked) {
    UnitContext const context(mks());
    EXPECT_EQ(expected(context), L"nothing");
    EXPECT_EQ(context.activeUnitSystem(), mks());
    EXPECT_EQ(context.findDefault(UnitTypeLength), UnitMeter::get(1.0));
}

TEST_F(UnitSystemContextTests, DefaultOfADimensionIsTheChoiceOrTheTranslation) {
    UnitContext const context(mks(), UnitInch::get());
    ComplexUnit out(UnitGram::get(1.0));
    EXPECT_TRUE(context.findDefault(complexUnit({L"km"}), out)); // what is expected
    EXPECT_EQ(abbreviations(out), L"m");
    EXPECT_TRUE(context.findDefault(complexUnit({L"lbforce"}), out)); // the choice of the kind
    EXPECT_EQ(abbreviations(out), L"N");
    EXPECT_TRUE(context.findDefault(complexUnit({L"g", L"cm"}, {L"s", L"s"}), out)); // dimension
    EXPECT_EQ(abbreviations(out), L"N");
    EXPECT_TRUE(context.findDefault(complexUnit({L"in"}, {L"hr", L"hr"}), out)); // translation
    EXPECT_EQ(abbreviations(out), L"m / s s");
}

TEST_F(UnitSystemContextTests, DefaultOfADimensionThatTheSystemHasntIsNone) {
    UnitContext const context(empty());
    ComplexUnit out(UnitGram::get(1.0));
    EXPECT_FALSE(context.findDefault(complexUnit({L"lbforce"}), out));
    EXPECT_EQ(abbreviations(out), L"g");
}

TEST_F(UnitSystemContextTests, DefaultOfAKindIsTheChoicesSimpleUnit) {
    UnitContext const context(mks(), UnitInch::get());
    EXPECT_EQ(context.findDefault(UnitTypeLength), UnitMeter::get(1.0));
    EXPECT_EQ(context.findDefault(UnitTypeForce), UnitNewton::get(1.0));
    EXPECT_EQ(context.findDefault(UnitTypeArea), nullptr);
    EXPECT_EQ(UnitContext(empty()).findDefault(UnitTypeLength), nullptr);
}

TEST_F(UnitSystemContextTests, DefaultOfAKindWhoseChoiceIsAProductIsNull) {
    ASSERT_TRUE(addUnits(empty(), L"mm^2 / mm"));
    ASSERT_TRUE(empty()->find(UnitTypeLength));
    EXPECT_EQ(UnitContext(empty()).findDefault(UnitTypeLength), nullptr);
}

TEST_F(UnitSystemContextTests, ExpressionsAreShownInTheUnitsOfTheSystem) {
    UnitContext const length(imperial(), UnitMeter::get(1.0));
    Expression const bare(L"2", length);
    ASSERT_TRUE(bare.value().has_value());
    EXPECT_NEAR(*bare.value(), 60.96, 1e-9);
    EXPECT_EQ(shown(L"2", length), L"2.00 ft");
    EXPECT_EQ(shown(L"1 m", length), L"3.281 ft");
    EXPECT_EQ(shown(L"1 N", UnitContext(imperial(), UnitNewton::get(1.0))), L"0.225 lbforce");
}

TEST_F(UnitSystemContextTests, ContextFollowsNoLaterChangeOfTheSystem) {
    UnitContext const before(mks(), UnitInch::get());
    ASSERT_TRUE(mks()->find(UnitTypeLength)->changeUnits(UnitMile::get()));
    EXPECT_EQ(expected(before), L"m");
    EXPECT_EQ(expected(UnitContext(mks(), UnitInch::get())), L"mi");
}

TEST_F(UnitSystemContextTests, ContextOutlivesItsDocument) {
    Loaded loaded(m_document.asset());
    UnitContext const asked(loaded.system());
    UnitContext const made(loaded.system(), UnitInch::get());
    loaded.close();
    for (UnitContext const * const context : {&asked, &made}) {
        StrongRef<UnitSystem> const system = context->activeUnitSystem();
        ASSERT_TRUE(system);
        EXPECT_EQ(system->unitSystemChoices(), 15U);
        EXPECT_FALSE(system->unitSystemChoice(0));
        EXPECT_FALSE(system->find(UnitTypeLength));
        ComplexUnit out;
        EXPECT_FALSE(context->findDefault(complexUnit({L"lbforce"}), out));
        EXPECT_FALSE(system->parentUnitSystems());
        EXPECT_FALSE(UnitSystemChoiceByUnit::make(system, UnitInch::get()));
        system->completeAsMKS();
        EXPECT_EQ(system->unitSystemChoices(), 15U);
    }
    EXPECT_EQ(expected(made), L"m");
    EXPECT_EQ(shown(L"2", made), L"2.00 m");
}

} // namespace

} // namespace Vn::Units
