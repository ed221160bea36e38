// Units and values as text: names with prefixes, the forms of lengths and angles, and the lists of
// complex units.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Server/CommonData/Units/Unit.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"

namespace Vn::Units {

namespace {

using Expressions::Expression;
using Settings = UnitDisplaySettings;
using UnitTables::c_prefixes;
using UnitTables::PrefixRow;

Settings namesInFull() {
    Settings settings = Settings::standard();
    settings.displayAbbreviated(false);
    return settings;
}

Settings withSymbols(Settings settings = Settings::standard()) {
    settings.displaySymbol(true);
    return settings;
}

TEST(UnitStringsTests, PrefixesHaveTheirTexts) {
    Settings const & standard = Settings::standard();
    for (PrefixRow const & prefix : c_prefixes) {
        SimpleUnit const & unit = *UnitNewton::get(prefix.magnitude);
        SCOPED_TRACE(testing::PrintToString(prefix.name));
        EXPECT_EQ(unit.name(standard), std::wstring(prefix.name) + L"newton");
        EXPECT_EQ(unit.abbreviation(standard), std::wstring(prefix.abbreviation) + L"N");
        EXPECT_EQ(unit.displayString(standard), std::wstring(prefix.abbreviation) + L"N");
        EXPECT_EQ(unit.displayString(namesInFull()), std::wstring(prefix.name) + L"newton");
    }
}

TEST(UnitStringsTests, PrefixTokensHaveTheirNumbers) {
    using Expressions::EToken;
    Expressions::Tokens const & tokens = *Expressions::Tokens::get();
    int token = 17;
    for (PrefixRow const & prefix : c_prefixes) {
        EXPECT_EQ(tokens.getString(static_cast<EToken>(token)), prefix.name);
        EXPECT_EQ(tokens.getString(static_cast<EToken>(token + 1)), prefix.abbreviation);
        EXPECT_EQ(tokens.getMagnitudeValue(static_cast<EToken>(token)), prefix.magnitude);
        EXPECT_EQ(tokens.getMagnitudeValue(static_cast<EToken>(token + 1)), prefix.magnitude);
        token += token == 31 ? 3 : 2; // 33 has no text
    }
    EXPECT_EQ(token, 50);
}

// Without a prefix the text is that of the catalogue unit, while the value is scaled all the same.
TEST(UnitStringsTests, MagnitudeWithoutAPrefixPrintsAsTheCatalogueUnit) {
    for (double const magnitude : {1e5, 0.5, 1000.0000001, 1e-7, 1e21}) {
        SimpleUnit const & unit = *UnitMeter::get(magnitude);
        EXPECT_EQ(unit.name(Settings::standard()), L"meter");
        EXPECT_EQ(unit.abbreviation(Settings::standard()), L"m");
    }
    EXPECT_EQ(UnitMeter::get(1e5)->reconstructString(2e7, ValueAndUnit, Settings::standard()),
              L"2.00 m");
}

TEST(UnitStringsTests, NameAndAbbreviationDontDependOnTheSettings) {
    SimpleUnit const & kilonewton = *UnitNewton::get(1000.0);
    for (Settings const & settings : {Settings::standard(), namesInFull(), withSymbols()}) {
        EXPECT_EQ(kilonewton.name(settings), L"kilonewton");
        EXPECT_EQ(kilonewton.abbreviation(settings), L"kN");
    }
}

TEST(UnitStringsTests, SymbolGoesBeforeAbbreviationBeforeName) {
    struct Row {
        SimpleUnit const * unit;
        wchar_t const * standard;
        wchar_t const * full;
        wchar_t const * symbol;
        wchar_t const * symbolFull;
    };
    Row const rows[] = {
        {UnitInch::get(), L"in", L"inch", L"\"", L"\""},
        {UnitDegree::get(), L"deg", L"degree", L"\u00B0", L"\u00B0"},
        {UnitMicron::get(), L"micron", L"micron", L"\u00B5", L"\u00B5"},
        {UnitDollar::get(), L"dol", L"dollar", L"$", L"$"},
        {UnitFoot::get(), L"ft", L"foot", L"ft", L"foot"},
        {UnitMeter::get(0.01), L"cm", L"centimeter", L"cm", L"centimeter"},
        {UnitMole::get(1000.0), L"kmole", L"kiloMole", L"kmole", L"kiloMole"},
    };
    for (Row const & row : rows) {
        EXPECT_EQ(row.unit->displayString(Settings::standard()), row.standard);
        EXPECT_EQ(row.unit->displayString(namesInFull()), row.full);
        EXPECT_EQ(row.unit->displayString(withSymbols()), row.symbol);
        EXPECT_EQ(row.unit->displayString(withSymbols(namesInFull())), row.symbolFull);
        EXPECT_EQ(row.unit->reconstructString(0.0, UnitOnly, Settings::standard()), row.standard);
    }
}

// A unit without a symbol has a symbol text of its prefix alone, long or short by the settings.
TEST(UnitStringsTests, SymbolTextBeginsWithThePrefixOfTheSettings) {
    SimpleUnit const & kilometer = *UnitMeter::get(1000.0);
    EXPECT_EQ(kilometer.symbol(Settings::standard()), L"k");
    EXPECT_EQ(kilometer.symbol(namesInFull()), L"kilo");
    EXPECT_EQ(UnitDegree::get()->symbol(namesInFull()), L"\u00B0");
    EXPECT_FALSE(kilometer.hasSymbol());
}

TEST(UnitStringsTests, ModesChooseTheParts) {
    Settings const & standard = Settings::standard();
    struct Row {
        SimpleUnit const * unit;
        double internal;
        wchar_t const * both;
        wchar_t const * value;
        wchar_t const * unitText;
    };
    Row const rows[] = {
        {UnitMeter::get(0.01), 2.05, L"2.05 cm", L"2.05", L"cm"},
        {UnitCelsius::get(), 1.0, L"-272.16 C", L"-272.16", L"C"},
        {UnitDollar::get(), 20.0, L"20.00 dol", L"20.00", L"dol"},
        {UnitAmp::get(1000.0), 20000.0, L"20.00 kA", L"20.00", L"kA"},
    };
    for (Row const & row : rows) {
        EXPECT_EQ(row.unit->reconstructString(row.internal, ValueAndUnit, standard), row.both);
        EXPECT_EQ(row.unit->reconstructString(row.internal, ValueOnly, standard), row.value);
        EXPECT_EQ(row.unit->reconstructString(row.internal, UnitOnly, standard), row.unitText);
    }
    std::wstring text = L"is ";
    UnitInch::get()->appendReconstruction(text, 2.54, ValueAndUnit, standard);
    EXPECT_EQ(text, L"is 1.00 in");
}

// The forms of lengths and angles, rule by rule.
struct FormRow {
    char const * rule;
    ELengthDisplay length;
    EDegreeDisplay degree;
    bool node;
    SimpleUnit const * unit;
    double internal;
    wchar_t const * both;
    wchar_t const * value;
    wchar_t const * unitText;
};

TEST(UnitStringsTests, LengthsAndAnglesHaveTheirForms) {
    double const deg = 0.017453292519943295;
    FormRow const rows[] = {
        {"feet as fractions are inches", LengthFractional, DegreeDecimal, false, UnitFoot::get(),
         2.5 * 2.54, L"2 1/2\"", L"2 1/2", L"ft"},
        {"inches as fractions have the mark", LengthFractional, DegreeDecimal, false,
         UnitInch::get(), 2.5 * 2.54, L"2 1/2\"", L"2 1/2", L"in"},
        {"other lengths stay decimal", LengthFractional, DegreeDecimal, false, UnitYard::get(),
         91.44 * 2.5, L"2.50 yd", L"2.50", L"yd"},
        {"a number as typed is a fraction in any unit", LengthFractional, DegreeDecimal, true,
         UnitMeter::get(0.01), 2.5, L"2 1/2 cm", L"2 1/2", L"cm"},
        {"feet as typed stay feet", LengthFractional, DegreeDecimal, true, UnitFoot::get(),
         30.48 * 2.5, L"2 1/2 ft", L"2 1/2", L"ft"},
        {"inches as typed have the mark", LengthFractional, DegreeDecimal, true, UnitInch::get(),
         2.54 * 2.5, L"2 1/2\"", L"2 1/2", L"in"},
        {"inches in feet and inches", LengthArchitectural, DegreeDecimal, false, UnitInch::get(),
         6.75 * 2.54, L"0'-6 3/4\"", L"0'-6 3/4\"", L"in"},
        {"feet in feet and inches", LengthArchitectural, DegreeDecimal, false, UnitFoot::get(),
         1.75 * 30.48, L"1'-9\"", L"1'-9\"", L"ft"},
        {"other lengths aren't in feet", LengthArchitectural, DegreeDecimal, false,
         UnitMeter::get(0.01), 2.5, L"2.50 cm", L"2.50", L"cm"},
        {"as typed, any unit is written like feet", LengthArchitectural, DegreeDecimal, true,
         UnitMeter::get(0.01), 1.75, L"1'-9\"", L"1'-9\"", L"cm"},
        {"degrees, minutes and seconds", LengthDecimal, DegreeDegMinSec, false, UnitDegree::get(),
         45.5 * deg, L"45deg 30'", L"45deg 30'", L"deg"},
        {"other angles stay decimal", LengthDecimal, DegreeDegMinSec, false, UnitRadian::get(), 1.5,
         L"1.50 rad", L"1.50", L"rad"},
        {"as typed, any unit is written like degrees", LengthDecimal, DegreeDegMinSec, true,
         UnitRadian::get(), 1.5, L"1deg 30'", L"1deg 30'", L"rad"},
        {"decimal degrees have the angular precision", LengthDecimal, DegreeDecimal, false,
         UnitDegree::get(), 45.0 * deg, L"45.0 deg", L"45.0", L"deg"},
        {"degrees as typed have the general form", LengthDecimal, DegreeDecimal, true,
         UnitDegree::get(), 45.0 * deg, L"4.500E+01 deg", L"4.500E+01", L"deg"},
        {"lengths go before angles", LengthFractional, DegreeDegMinSec, true, UnitDegree::get(),
         45.5 * deg, L"45 1/2 deg", L"45 1/2", L"deg"},
    };
    for (FormRow const & row : rows) {
        SCOPED_TRACE(row.rule);
        Settings settings = Settings::standard();
        settings.lengthDisplay(row.length);
        settings.degreeDisplay(row.degree);
        settings.specifiedByNode(row.node);
        EXPECT_EQ(row.unit->reconstructString(row.internal, ValueAndUnit, settings), row.both);
        EXPECT_EQ(row.unit->reconstructString(row.internal, ValueOnly, settings), row.value);
        EXPECT_EQ(row.unit->reconstructString(row.internal, UnitOnly, settings), row.unitText);
    }
}

TEST(UnitStringsTests, AngularPrecisionBelongsToDecimalDegrees) {
    Settings settings = Settings::standard();
    settings.angularPrecision(4);
    settings.generalPrecision(0);
    double const deg = 0.017453292519943295;
    EXPECT_EQ(UnitDegree::get()->reconstructString(12.3456 * deg, ValueAndUnit, settings),
              L"12.3456 deg");
    EXPECT_EQ(UnitRadian::get()->reconstructString(12.3456, ValueAndUnit, settings), L"12 rad");
}

// The special forms belong to a unit that stands alone.
TEST(UnitStringsTests, FormsBelongToALoneUnit) {
    Settings settings = Settings::standard();
    settings.lengthDisplay(LengthFractional);
    settings.degreeDisplay(DegreeDegMinSec);
    EXPECT_EQ(complexUnit({L"in"}).reconstructString(2.5 * 2.54, ValueAndUnit, settings),
              L"2 1/2\"");
    EXPECT_EQ(complexUnit({L"in"}, {L"s"}).reconstructString(2.5 * 2.54, ValueAndUnit, settings),
              L"2.50 in / s");
    EXPECT_EQ(complexUnit({L"deg"}, {L"s"}).reconstructString(1.0, UnitOnly, settings), L"deg / s");
}

TEST(UnitStringsTests, ListsAreWrittenInRuns) {
    Settings const & compressed = Settings::standard();
    Settings plain = Settings::standard();
    plain.compressUnits(false);
    struct Row {
        ComplexUnit units;
        wchar_t const * compressed;
        wchar_t const * plain;
    };
    Row const rows[] = {
        {complexUnit({L"m", L"m", L"m"}), L"m^3", L"m m m"},
        {complexUnit({L"cm", L"cm", L"cm", L"cm"}, {L"cm"}), L"cm^4 / cm", L"cm cm cm cm / cm"},
        {complexUnit({L"m"}, {L"s", L"s"}), L"m / s^2", L"m / (s s)"},
        {complexUnit({}, {L"m", L"s"}), L"/ (m s)", L"/ (m s)"},
        {complexUnit({}, {L"cm"}), L"/ cm", L"/ cm"},
        {complexUnit({}, {L"s", L"s"}), L"/ s^2", L"/ (s s)"},
        // Only neighbours merge.
        {complexUnit({L"m", L"s", L"m"}), L"m s m", L"m s m"},
        {complexUnit({L"m", L"m", L"s", L"s", L"m"}), L"m^2 s^2 m", L"m m s s m"},
        {complexUnit({L"kg", L"m"}, {L"s", L"s"}), L"kg m / s^2", L"kg m / (s s)"},
        {complexUnit({L"kg"}, {L"m", L"s", L"s"}), L"kg / (m s^2)", L"kg / (m s s)"},
        // A prefix makes another unit.
        {complexUnit({L"km", L"m", L"m"}), L"km m^2", L"km m m"},
    };
    for (Row const & row : rows) {
        EXPECT_EQ(row.units.reconstructString(1.0, UnitOnly, compressed), row.compressed);
        EXPECT_EQ(row.units.reconstructString(1.0, UnitOnly, plain), row.plain);
        double const three = row.units.toInternal(3.0);
        EXPECT_EQ(row.units.reconstructString(three, ValueAndUnit, compressed),
                  std::wstring(L"3.00 ") + row.compressed);
        EXPECT_EQ(row.units.reconstructString(three, ValueOnly, compressed), L"3.00");
    }
}

TEST(UnitStringsTests, CompositesComeFirst) {
    struct Row {
        ComplexUnit units;
        wchar_t const * text;
    };
    Row const rows[] = {
        {complexUnit({L"m", L"N"}), L"N m"},
        {complexUnit({L"s", L"m", L"W", L"N"}), L"W N s m"},
        {complexUnit({L"m", L"N", L"m"}), L"N m^2"},
        {complexUnit({L"N", L"m", L"N"}), L"N^2 m"},
        {complexUnit({L"dol"}, {L"s", L"N", L"s"}), L"dol / (N s^2)"},
        {complexUnit({L"hr", L"mph"}), L"mph hr"},
        // The base units at both ends stand together once the composite has gone ahead.
        {complexUnit({L"dol"}, {L"s", L"s", L"s"}), L"dol / s^3"},
    };
    for (Row const & row : rows)
        EXPECT_EQ(row.units.reconstructString(1.0, UnitOnly, Settings::standard()), row.text);
}

// A unitless product shows no units in any mode.
TEST(UnitStringsTests, UnitlessListsShowTheValueAlone) {
    Settings const & standard = Settings::standard();
    for (ComplexUnit const & units :
         {complexUnit({}), complexUnit({L"cm"}, {L"in"}), complexUnit({L"mph"}, {L"mps"}),
          complexUnit({L"sr", L"sr"})}) {
        EXPECT_EQ(units.reconstructString(1.5, ValueAndUnit, standard), L"1.50");
        EXPECT_EQ(units.reconstructString(1.5, ValueOnly, standard), L"1.50");
        EXPECT_EQ(units.reconstructString(1.5, UnitOnly, standard), L"");
    }
    // A lone unit is written as itself, unitless or not.
    EXPECT_EQ(complexUnit({L"sr"}).reconstructString(1.5, ValueAndUnit, standard), L"1.50 sr");
}

TEST(UnitStringsTests, NamesAndSymbolsShowInLists) {
    ComplexUnit const units = complexUnit({L"dol"}, {L"in", L"deg"});
    EXPECT_EQ(units.reconstructString(0.0, UnitOnly, namesInFull()), L"dollar / (inch degree)");
    EXPECT_EQ(units.reconstructString(0.0, UnitOnly, withSymbols()), L"$ / (\" \u00B0)");
}

TEST(UnitStringsTests, LongListsAreWritten) {
    ComplexUnit units;
    for (int i = 0; i < 100'000; ++i) units.addToNumerator(UnitMeter::get(1.0));
    EXPECT_EQ(units.reconstructString(0.0, UnitOnly, Settings::standard()), L"m^100000");
    Settings plain = Settings::standard();
    plain.compressUnits(false);
    EXPECT_EQ(units.reconstructString(0.0, UnitOnly, plain).size(), 199'999U);
}

TEST(UnitStringsTests, RebuiltTextKeepsWhatWasTyped) {
    EXPECT_EQ(Expression(L"1 inch").rebuilt(), L"1 in");
    EXPECT_EQ(Expression(L"1\"").rebuilt(), L"1\"");
    EXPECT_EQ(Expression(L"1\"", UnitContext(UnitInch::get()))
                  .formatted(ValueAndUnit, Settings::standard(), UnitContext(UnitInch::get())),
              L"1.00 in");
}

TEST(UnitStringsTests, ValuesShowInTheUnitsOfTheirContext) {
    struct Row {
        wchar_t const * expression;
        wchar_t const * context;
        wchar_t const * shown;
    };
    Row const rows[] = {
        {L"20 $", L"dol", L"20.00 dol"},        {L"45", L"degree", L"45.0 deg"},
        {L"30 mph * 1 hr", L"mi", L"30.00 mi"}, {L"10 cm / (s s)", L"m / (s s)", L"0.10 m / s^2"},
        {L"3 / cm", L"/ cm", L"3.00 / cm"},
    };
    for (Row const & row : rows)
        EXPECT_EQ(shown(row.expression, UnitContext(std::wstring(row.context))), row.shown)
            << testing::PrintToString(row.expression);
}

// How the case of a typed unit counts.
TEST(UnitStringsTests, CaseOfTypedUnits) {
    for (wchar_t const * text : {L"1in", L"1inch", L"1IN", L"1INCH", L"1InCH"})
        EXPECT_NEAR(Expression(text).value().value_or(0.0), 2.54, 1e-8)
            << testing::PrintToString(text);
    EXPECT_NEAR(Expression(L"20c").value().value_or(0.0), 293.16, 1e-8);
    EXPECT_NEAR(Expression(L"68f").value().value_or(0.0), 293.16, 1e-8);
    EXPECT_FALSE(Expression(L"1CM"));
    EXPECT_FALSE(Expression(L"1M"));
    EXPECT_EQ(shown(L"20 kA", UnitContext()), L"20.00 kA");
    EXPECT_EQ(Expression(L"20 kA").rebuilt(), L"20 kA");
    EXPECT_EQ(Expression(L"20 kmole").rebuilt(), L"20 kmole");
    EXPECT_EQ(Expression(L"20 kcandela").rebuilt(), L"20 kcd");
}

} // namespace

} // namespace Vn::Units
