// Units read from a text.

#include "Server/CommonData/Units/UnitSystemChoice.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"

namespace Vn::Units {

namespace {

TEST(UnitParseTests, ReadsWhatTheEngineReadsAsUnits) {
    struct Row {
        wchar_t const * text;
        wchar_t const * units;
    };
    Row const rows[] = {
        {L"cm", L"cm"},           {L"m / (s s)", L"m / s s"},
        {L"m / s^2", L"m / s s"}, {L"kg m / s s", L"kg m / s s"},
        {L"W / C", L"W / C"},     {L"m^3", L"m m m"},
        {L"kilometer", L"km"},    {L"INCH", L"in"},
        {L"min", L"min"},         {L" cm ", L"cm"},
    };
    for (Row const & row : rows) {
        ComplexUnit units;
        EXPECT_TRUE(UnitSystemChoice::parse(row.text, units)) << testing::PrintToString(row.text);
        EXPECT_EQ(abbreviations(units), row.units) << testing::PrintToString(row.text);
    }
}

TEST(UnitParseTests, EmptyTextIsAnEmptyUnit) {
    for (wchar_t const * text : {L"", L" ", L"\t"}) {
        ComplexUnit units(UnitInch::get());
        EXPECT_TRUE(UnitSystemChoice::parse(text, units));
        EXPECT_TRUE(units.isEmpty());
    }
}

TEST(UnitParseTests, FailureLeavesTheUnitUntouched) {
    for (wchar_t const * text : {L"2 cm", L"cm^0.5", L"nonsense", L"CM", L"m / (s", L"m /", L")",
                                 L";", L"cm,", L"cm^0.5 m"}) {
        ComplexUnit units(UnitInch::get());
        EXPECT_FALSE(UnitSystemChoice::parse(text, units)) << testing::PrintToString(text);
        EXPECT_EQ(abbreviations(units), L"in") << testing::PrintToString(text);
    }
}

// A unit string is an expression after a "1", and any tree counts.
TEST(UnitParseTests, ExpressionCountsAsItsUnits) {
    struct Row {
        wchar_t const * text;
        wchar_t const * units;
    };
    Row const rows[] = {
        {L"cm * 2", L"cm"},
        {L"+ 2", L""},
        {L"cm * 3 s", L"cm s"},
    };
    for (Row const & row : rows) {
        ComplexUnit units;
        EXPECT_TRUE(UnitSystemChoice::parse(row.text, units)) << testing::PrintToString(row.text);
        EXPECT_EQ(abbreviations(units), row.units) << testing::PrintToString(row.text);
    }
}

TEST(UnitParseTests, LongTextsEnd) {
    ComplexUnit units(UnitInch::get());
    EXPECT_FALSE(UnitSystemChoice::parse(std::wstring(1'000'000, L'x'), units));
    EXPECT_FALSE(UnitSystemChoice::parse(std::wstring(1'000'000, L'('), units));
    EXPECT_EQ(abbreviations(units), L"in");
    EXPECT_TRUE(UnitSystemChoice::parse(std::wstring(1'000'000, L' ') + L"cm", units));
    EXPECT_EQ(abbreviations(units), L"cm");
}

// Whether a unit can't be typed: an underscore ends a name.
bool isUntypable(SimpleUnit const * unit) {
    return unit == UnitCircularMil::get() || unit == UnitOunceVolume::get();
}

std::vector<SimpleUnit const *> typableUnits() {
    std::vector<SimpleUnit const *> units = catalogueUnits();
    std::erase_if(units, &isUntypable);
    return units;
}

// The text of a unit under these settings, read again, is a unit of the same dimension and size.
void expectReadsBack(ComplexUnit const & units, UnitDisplaySettings const & settings) {
    std::wstring const text = units.reconstructString(1.0, UnitOnly, settings);
    ComplexUnit again;
    EXPECT_TRUE(UnitSystemChoice::parse(text, again)) << testing::PrintToString(text);
    EXPECT_TRUE(again.isDimensionallyEquivalent(&units)) << testing::PrintToString(text);
    // A unitless product has no text of its own.
    SimpleUnit const * lone = nullptr;
    if (units.isSimpleUnit(&lone) || !units.isUnitless()) {
        EXPECT_DOUBLE_EQ(again.baseConversionFactor(), units.baseConversionFactor())
            << testing::PrintToString(text);
    }
}

// In short and in full, with powers and with repeated factors.
void expectReadsBack(ComplexUnit const & units) {
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    expectReadsBack(units, settings);
    settings.compressUnits(false);
    expectReadsBack(units, settings);
    settings.displayAbbreviated(false);
    expectReadsBack(units, settings);
}

TEST(UnitParseTests, TextOfEveryUnitReadsBack) {
    for (SimpleUnit const * const unit : typableUnits()) {
        expectReadsBack(ComplexUnit(unit));
        if (!unit->supportsMagnitude()) continue;
        for (UnitTables::PrefixRow const & prefix : UnitTables::c_prefixes)
            expectReadsBack(ComplexUnit(
                SimpleUnitRegistry::get().findOrClone(unit->identifier(), prefix.magnitude)));
    }
}

TEST(UnitParseTests, TextOfEveryPairReadsBack) {
    std::vector<SimpleUnit const *> const units = typableUnits();
    ASSERT_EQ(units.size(), 69U);
    for (SimpleUnit const * const a : units)
        for (SimpleUnit const * const b : units) {
            ComplexUnit product(a);
            product.addToNumerator(b);
            expectReadsBack(product);
            ComplexUnit quotient(a);
            quotient.addToDenominator(b);
            expectReadsBack(quotient);
            ComplexUnit powers(a);
            powers.addToNumerator(a);
            powers.addToDenominator(b);
            powers.addToDenominator(b);
            powers.addToDenominator(a);
            expectReadsBack(powers);
        }
}

TEST(UnitParseTests, TextOfEveryInverseReadsBack) {
    for (SimpleUnit const * const unit : typableUnits()) {
        if (unit == UnitMinute::get()) continue;
        ComplexUnit inverse(unit);
        inverse.invert();
        expectReadsBack(inverse);
        inverse.addToDenominator(UnitMinute::get());
        expectReadsBack(inverse);
    }
}

// After the "/" of a quotient without a numerator a factor is read, and the word "min" is a
// function there before it is a unit.
TEST(UnitParseTests, InverseMinuteReadsBackOnlyInFull) {
    ComplexUnit inverse(UnitMinute::get());
    inverse.invert();
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    EXPECT_EQ(inverse.reconstructString(1.0, UnitOnly, settings), L"/ min");
    ComplexUnit units;
    EXPECT_FALSE(UnitSystemChoice::parse(L"/ min", units));
    EXPECT_FALSE(UnitSystemChoice::parse(L"/ (min s)", units));
    EXPECT_TRUE(UnitSystemChoice::parse(L"/ (s min)", units));
    EXPECT_TRUE(UnitSystemChoice::parse(L"rad / min", units));
    settings.displayAbbreviated(false);
    expectReadsBack(inverse, settings);
}

TEST(UnitParseTests, TextOfEveryInternalProductReadsBack) {
    for (SimpleUnit const * const unit : catalogueUnits())
        if (unit->unitType() == CompositeUnitKind)
            expectReadsBack(*static_cast<CompositeUnit const *>(unit)->internalComplexUnit());
}

TEST(UnitParseTests, TwoUnitsCantBeTyped) {
    ComplexUnit units;
    EXPECT_FALSE(UnitSystemChoice::parse(L"circular_mil", units));
    EXPECT_FALSE(UnitSystemChoice::parse(L"fl_oz", units));
    EXPECT_TRUE(units.isEmpty());
    EXPECT_TRUE(UnitSystemChoice::parse(L"ouncevolume", units));
    EXPECT_EQ(abbreviations(units), L"fl_oz");
}

} // namespace

} // namespace Vn::Units
