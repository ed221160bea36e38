#include "Server/CommonData/Expressions/ValueFormatter.h"

#include <cmath>
#include <limits>

#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Settings = Units::UnitDisplaySettings;

double const c_infinity = std::numeric_limits<double>::infinity();
double const c_nan = std::numeric_limits<double>::quiet_NaN();
double const c_denormal = std::numeric_limits<double>::denorm_min();
double const c_largest = std::numeric_limits<double>::max();

struct Row {
    double value;
    std::wstring text;
};

std::wstring decimal(double value, Change const & change = {}) {
    return valueFormatter::get()->formatDecimal(value, standardBut(change));
}
std::wstring fractional(double value) { return valueFormatter::get()->formatFractional(value); }
std::wstring architectural(double feet, Change const & change = {}) {
    return valueFormatter::get()->formatArchitectural(feet, standardBut(change));
}
std::wstring degMinSec(double degrees, Change const & change = {}) {
    return valueFormatter::get()->formatDegMinSec(degrees, standardBut(change));
}

void checkDecimal(Change const & change, std::vector<Row> const & rows) {
    for (Row const & row : rows) EXPECT_EQ(decimal(row.value, change), row.text) << row.value;
}

// So many decimals, all of them written, never with an exponent.
Change plain(short decimals) {
    return [decimals](Settings & settings) {
        settings.generalPrecision(decimals);
        settings.scientificNotation(false);
        settings.hideTrailingZeroes(false);
    };
}

// ---- Decimal and scientific ---------------------------------------------------------------------

TEST(FormatDecimalTests, FactorySettings) {
    checkDecimal({}, {{2.0, L"2.00"},
                      {2.05, L"2.05"},
                      {1.9999, L"2.00"},
                      {2.001, L"2.001"},
                      {0.002, L"0.002"},
                      {0.0002, L"2.000E-04"},
                      {20000.0, L"2.000E+04"},
                      {0.0, L"0.00"},
                      {-2.0, L"-2.00"},
                      {-0.5, L"-0.50"},
                      {2000.0, L"2000.00"},
                      {980.665, L"980.665"}});
}

TEST(FormatDecimalTests, ThresholdsThemselvesAreWrittenPlain) {
    checkDecimal({}, {{10000.0, L"10000.00"},
                      {std::nextafter(10000.0, 20000.0), L"1.000E+04"},
                      {-10000.0, L"-10000.00"},
                      {-10000.5, L"-1.000E+04"},
                      {0.001, L"0.001"},
                      {std::nextafter(0.001, 0.0), L"1.000E-03"},
                      {-0.001, L"-0.001"},
                      {-0.00099, L"-9.900E-04"}});
}

TEST(FormatDecimalTests, WhatIsZeroTightlyIsNeverScientific) {
    checkDecimal({}, {{1e-10, L"1.000E-10"},
                      {-1e-10, L"-1.000E-10"},
                      {9.9e-11, L"0.00"},
                      {-9.9e-11, L"0.00"},
                      {c_denormal, L"0.00"},
                      {-c_denormal, L"0.00"},
                      {-0.0, L"0.00"}});
}

TEST(FormatDecimalTests, NumberOfANodeIsScientificWhateverItsSize) {
    auto const byNode = [](Settings & settings) { settings.specifiedByNode(true); };
    checkDecimal(byNode, {{2.0, L"2.000E+00"},
                          {-22.5, L"-2.250E+01"},
                          {0.0, L"0.00"},
                          {9.9e-11, L"0.00"},
                          {1e-10, L"1.000E-10"}});
    auto const byNodePlain = [](Settings & settings) {
        settings.specifiedByNode(true);
        settings.scientificNotation(false);
    };
    checkDecimal(byNodePlain, {{2.0, L"2.00"}, {20000.0, L"20000.00"}, {1e-9, L"0.00"}});
}

TEST(FormatDecimalTests, WithoutScientificNotationOnlyTheRangeCounts) {
    checkDecimal(plain(3), {{20000.0, L"20000.000"},
                            {0.0002, L"0.000"},
                            {2147483645.0, L"2147483645.000"},
                            {-2147483645.5, L"-2147483645.500"},
                            {2147483645.9996, L"2147483646.000"}, // the carry still fits
                            {2147483646.0, L"2.147E+09"},
                            {-2147483646.0, L"-2.147E+09"},
                            {1e308, L"1.000E+308"},
                            {-1e308, L"-1.000E+308"},
                            {c_largest, L"1.798E+308"}});
}

TEST(FormatDecimalTests, ScientificFormKeepsItsFullStopAndItsZeroes) {
    auto const comma = [](Settings & settings) {
        settings.useCommaAsDecimalPoint();
        settings.scientificPrecision(4);
        settings.minimumPrecision(0);
    };
    checkDecimal(comma, {{2200000.0, L"2.2000E+06"}, {2.0, L"2"}, {2.5, L"2,5"}});
}

TEST(FormatDecimalTests, ExponentHasTwoDigitsAtLeast) {
    checkDecimal({}, {{2.2e6, L"2.200E+06"},
                      {2.2e10, L"2.200E+10"},
                      {2.2e100, L"2.200E+100"},
                      {9.9996e9, L"1.000E+10"},
                      {9.9994e9, L"9.999E+09"}});
}

TEST(FormatDecimalTests, ScientificPrecision) {
    for (auto const & [precision, text] : {std::pair<short, wchar_t const *>{0, L"3E+04"},
                                           {1, L"2.6E+04"},
                                           {6, L"2.550000E+04"},
                                           {-1, L"3E+04"},
                                           {-32768, L"3E+04"}}) {
        short const digits = precision;
        EXPECT_EQ(decimal(25500.000001, [=](Settings & s) { s.scientificPrecision(digits); }), text)
            << digits;
    }
}

TEST(FormatDecimalTests, CarryGoesToTheWholePart) {
    checkDecimal(plain(3), {{1.9996, L"2.000"},
                            {-1.9996, L"-2.000"},
                            {0.9996, L"1.000"},
                            {-0.9996, L"-1.000"},
                            {9.9996, L"10.000"},
                            {1.9994, L"1.999"}});
}

TEST(FormatDecimalTests, BiasLiftsWhatStandsJustBelowARoundingPoint) {
    // 1.0005 and 2.675 lie below their decimal value in binary.
    checkDecimal(plain(3), {{1.0005, L"1.001"}, {-1.0005, L"-1.001"}, {1.00049, L"1.000"}});
    checkDecimal(plain(2), {{2.675, L"2.68"}, {-2.675, L"-2.68"}});
    // It is a hundred-millionth up to five decimals.
    checkDecimal(plain(2), {{0.004999995, L"0.01"}, {0.00499998, L"0.00"}});
    checkDecimal(plain(5), {{0.000004995, L"0.00001"}, {0.00000498, L"0.00000"}});
    // After that, a thousandth of the last place.
    checkDecimal(plain(6), {{0.0000004995, L"0.000001"}, {0.0000004985, L"0.000000"}});
    checkDecimal(plain(9), {{0.0000000004995, L"0.000000001"}, {0.0000000004985, L"0.000000000"}});
    // None beyond nineteen decimals.
    checkDecimal(plain(19), {{0.1, L"0.1000000000000000056"}});
    checkDecimal(plain(20), {{0.1, L"0.10000000000000000555"}});
}

TEST(FormatDecimalTests, NoDecimalsIsTheWholeNumberAlone) {
    checkDecimal(plain(0), {{0.4, L"0"},
                            {-0.4, L"0"},
                            {0.5, L"1"}, // with the bias
                            {-0.5, L"-1"},
                            {0.499999995, L"1"},
                            {0.49999998, L"0"},
                            {1.5, L"2"},
                            {2.5, L"3"},
                            {-2.5, L"-3"},
                            {12.0, L"12"}});
}

TEST(FormatDecimalTests, NegativePrecisionPrintsLikeNone) {
    for (short const precision : {short{-1}, short{-5}, short{-32768}})
        checkDecimal(plain(precision), {{0.4, L"0"},
                                        {0.5, L"0"}, // without bias, halves go to the even digit
                                        {0.6, L"1"},
                                        {-0.6, L"-1"},
                                        {12.7, L"13"},
                                        {-12.0, L"-12"}});
}

TEST(FormatDecimalTests, RoundedAwayNegativeHasNoSign) {
    checkDecimal(plain(2), {{-0.004, L"0.00"}, {-0.006, L"-0.01"}, {-0.0, L"0.00"}});
    checkDecimal(plain(4), {{-0.00002, L"0.0000"}});
    auto const comma = [](Settings & settings) {
        plain(4)(settings);
        settings.useCommaAsDecimalPoint();
    };
    checkDecimal(comma, {{-0.00002, L"0,0000"}, {-0.00006, L"-0,0001"}});
}

TEST(FormatDecimalTests, CommaStandsWhereTheFullStopWould) {
    auto const comma = [](Settings & settings) { settings.useCommaAsDecimalPoint(); };
    checkDecimal(comma, {{2.05, L"2,05"}, {-0.5, L"-0,50"}, {-1.5, L"-1,50"}, {2.0, L"2,00"}});
}

TEST(FormatDecimalTests, ZeroesAreHiddenDownToTheMinimum) {
    struct HideRow {
        short decimals;
        short minimum;
        double value;
        std::wstring text;
    };
    HideRow const rows[] = {
        {4, 0, 2.0, L"2"},
        {4, 0, 2.2, L"2.2"},
        {4, 0, 2.05, L"2.05"},
        {4, 0, 100.0, L"100"},
        {4, 0, 0.0, L"0"},
        {4, 0, -0.5, L"-0.5"},
        {4, 0, 10.0001, L"10.0001"},
        {4, 1, 2.0, L"2.0"},
        {4, 1, 2.25, L"2.25"},
        {4, 2, 2.0, L"2.00"},
        {4, 2, 2.5, L"2.50"},
        {4, 2, 2.123, L"2.123"},
        {4, 4, 2.0, L"2.0000"},
        {4, 5, 2.0, L"2.0000"}, // no more decimals than that: it is
                                // left
        {4, 32767, 2.0, L"2.0000"},
        {4, -1, 2.0, L"2"},
        {4, -32768, 2.5, L"2.5"},
        {1, 0, 2.0, L"2"},
        {0, 0, 200.0, L"200"},
        {0, 2, 200.0, L"200"},
        {-3, 0, 200.0, L"200"},
    };
    for (HideRow const & row : rows) {
        auto const hide = [&](Settings & settings) {
            settings.generalPrecision(row.decimals);
            settings.minimumPrecision(row.minimum);
            settings.scientificNotation(false);
        };
        EXPECT_EQ(decimal(row.value, hide), row.text) << row.decimals << ' ' << row.minimum;
        auto const comma = [&](Settings & settings) {
            hide(settings);
            settings.useCommaAsDecimalPoint();
        };
        std::wstring withComma = row.text;
        if (std::size_t const point = withComma.find(L'.'); point != std::wstring::npos)
            withComma[point] = L',';
        EXPECT_EQ(decimal(row.value, comma), withComma) << row.decimals << ' ' << row.minimum;
    }
}

TEST(FormatDecimalTests, OddThresholds) {
    struct ThresholdRow {
        double above;
        double below;
        double value;
        std::wstring text;
    };
    ThresholdRow const rows[] = {
        {c_nan, c_nan, 2e6, L"2000000.00"},
        {c_nan, c_nan, 2e-6, L"0.00"},
        {c_nan, 0.001, 2e-6, L"2.000E-06"},
        {10000.0, c_nan, 2e6, L"2.000E+06"},
        {c_nan, c_nan, 2147483646.0, L"2.147E+09"},
        {c_infinity, 0.0, 2e6, L"2000000.00"},
        {c_infinity, -c_infinity, 2e-6, L"0.00"},
        {-c_infinity, 0.0, 2.0, L"2.000E+00"},
        {0.0, 0.0, 2.0, L"2.000E+00"},
        {c_infinity, c_infinity, 2.0, L"2.000E+00"},
        {c_infinity, c_infinity, 0.0, L"0.00"},
        {1.0, 5.0, 3.0, L"3.000E+00"}, // between thresholds that cross
        {-5.0, 0.0, 3.0, L"3.000E+00"},
    };
    for (ThresholdRow const & row : rows) {
        auto const change = [&](Settings & settings) {
            settings.useScientificNotationAboveThreshold(row.above);
            settings.useScientificNotationBelowThreshold(row.below);
        };
        EXPECT_EQ(decimal(row.value, change), row.text) << row.above << ' ' << row.below;
    }
}

TEST(FormatDecimalTests, WhatIsNotFiniteHasAWord) {
    for (Change const & change : {Change(), plain(0), plain(-5), plain(600)}) {
        EXPECT_EQ(decimal(c_infinity, change), L"INF");
        EXPECT_EQ(decimal(-c_infinity, change), L"-INF");
        EXPECT_EQ(decimal(c_nan, change), L"NAN");
        EXPECT_EQ(decimal(-c_nan, change), L"NAN");
    }
}

TEST(FormatDecimalTests, FieldHas511CharactersAtMost) {
    // The decimals are one printed field, with the zero before them; the whole text is another.
    EXPECT_EQ(decimal(0.5, plain(509)), L"0.5" + std::wstring(508, L'0'));
    EXPECT_EQ(decimal(0.5, plain(510)), L"0.5" + std::wstring(508, L'0'));
    EXPECT_EQ(decimal(12.5, plain(507)), L"12.5" + std::wstring(506, L'0'));
    EXPECT_EQ(decimal(12.5, plain(508)), L"12.5" + std::wstring(507, L'0'));
    EXPECT_EQ(decimal(12.5, plain(600)), L"12.5" + std::wstring(507, L'0'));
    EXPECT_EQ(decimal(-12.5, plain(600)), L"-12.5" + std::wstring(506, L'0'));
    EXPECT_EQ(decimal(12.5, plain(32767)), L"12.5" + std::wstring(507, L'0'));
    EXPECT_EQ(decimal(12.5,
                      [](Settings & settings) {
                          settings.generalPrecision(32767);
                          settings.minimumPrecision(0);
                      }),
              L"12.5");
    EXPECT_EQ(decimal(20000.0, [](Settings & settings) { settings.scientificPrecision(505); }),
              L"2." + std::wstring(505, L'0') + L"E+04");
    // The exponent is cut off with the rest.
    EXPECT_EQ(decimal(20000.0, [](Settings & settings) { settings.scientificPrecision(32767); }),
              L"2." + std::wstring(509, L'0'));
}

// ---- Fractions ----------------------------------------------------------------------------------

TEST(FormatFractionalTests, SixtyFourthsInLowestTerms) {
    Row const rows[] = {
        {0.0, L"0"},
        {-0.0, L"0"},
        {2.0, L"2"},
        {-2.0, L"-2"},
        {0.5, L"1/2"},
        {0.25, L"1/4"},
        {0.75, L"3/4"},
        {0.625, L"5/8"},
        {0.5625, L"9/16"},
        {0.53125, L"17/32"},
        {0.515625, L"33/64"},
        {0.015625, L"1/64"},
        {0.984375, L"63/64"},
        {1.5, L"1 1/2"},
        {2.75, L"2 3/4"},
        {1.015625, L"1 1/64"},
        {0.3, L"19/64"},
        {1.0 / 3.0, L"21/64"},
        {1000000000.5, L"1000000000 1/2"},
    };
    for (Row const & row : rows) EXPECT_EQ(fractional(row.value), row.text) << row.value;
}

TEST(FormatFractionalTests, SignStandsBeforeTheSpaceOfAFraction) {
    EXPECT_EQ(fractional(-0.5), L"- 1/2");
    EXPECT_EQ(fractional(-1.5), L"-1 1/2");
}

TEST(FormatFractionalTests, HalfASixtyFourthAndALittleLessRoundsUp) {
    EXPECT_EQ(fractional(0.0078125), L"1/64"); // 1/128
    EXPECT_EQ(fractional(0.007782), L"1/64");
    EXPECT_EQ(fractional(0.0077819), L"0");
    EXPECT_EQ(fractional(3.0077819), L"3");
    EXPECT_EQ(fractional(1e-9), L"0");
    EXPECT_EQ(fractional(-0.001), L"-0");
}

TEST(FormatFractionalTests, FractionThatRoundsToOneCarries) {
    EXPECT_EQ(fractional(0.9999), L"1");
    EXPECT_EQ(fractional(1.9999), L"2");
    EXPECT_EQ(fractional(-0.9999), L"-1");
    EXPECT_EQ(fractional(0.9921875), L"1"); // 63 1/2 of 64
    EXPECT_EQ(fractional(0.992), L"63/64");
}

TEST(FormatFractionalTests, WholeNumbersAreWrittenInFull) {
    EXPECT_EQ(fractional(3000000000.0), L"3000000000");
    EXPECT_EQ(fractional(-3000000000.5), L"-3000000000 1/2");
    EXPECT_EQ(fractional(1e22), L"10000000000000000000000");
    EXPECT_EQ(fractional(std::ldexp(1.0, 100)), L"1267650600228229401496703205376");
    std::wstring const largest = fractional(1e308);
    EXPECT_EQ(largest.size(), 309U);
    EXPECT_EQ(largest.substr(0, 35), L"10000000000000000109790636294404554");
    EXPECT_EQ(fractional(-1e308), L"-" + largest);
}

TEST(FormatFractionalTests, WhatIsNotFiniteHasAWord) {
    EXPECT_EQ(fractional(c_infinity), L"INF");
    EXPECT_EQ(fractional(-c_infinity), L"-INF");
    EXPECT_EQ(fractional(c_nan), L"NAN");
    EXPECT_EQ(fractional(-c_nan), L"NAN");
}

TEST(AppendFractionTests, SpaceIsAddedWheneverTheTextIsNotEmpty) {
    struct AppendRow {
        wchar_t const * before;
        double fraction;
        wchar_t const * after;
    };
    constexpr AppendRow c_rows[] = {
        {L"", 0.5, L"1/2"},         {L"1", 0.5, L"1 1/2"}, {L"-", 0.5, L"- 1/2"},
        {L"1'-", 0.75, L"1'- 3/4"}, {L"1", 0.0, L"1"},     {L"", 0.001, L""},
        {L"1", -0.5, L"1 1/2"}, // of the absolute value
        {L"1", 1.0, L"1 2/2"},  // no more than five halvings
    };
    for (AppendRow const & row : c_rows) {
        std::wstring text = row.before;
        valueFormatter::get()->appendFraction(text, row.fraction);
        EXPECT_EQ(text, row.after) << row.fraction;
    }
}

TEST(RoundsToWholeTests, FromSixtyThreeAndAHalfSixtyFourths) {
    struct WholeRow {
        double fraction;
        bool whole;
    };
    constexpr WholeRow c_rows[] = {
        {0.0, false},    {1e-9, false},     {0.5, false},   {0.984375, false},
        {0.992, false},  {0.9921875, true}, {0.9999, true}, {1.0, true},
        {-0.9999, true}, {-0.5, false},     {2.0, false},
    };
    for (WholeRow const & row : c_rows)
        EXPECT_EQ(valueFormatter::get()->roundsToWhole(row.fraction), row.whole) << row.fraction;
}

// ---- Feet and inches ----------------------------------------------------------------------------

void showZeroes(Settings & settings) { settings.hideTrailingZeroes(false); }

TEST(FormatArchitecturalTests, FeetAndInches) {
    struct FeetRow {
        double feet;
        wchar_t const * hidden;
        wchar_t const * full;
    };
    constexpr FeetRow c_rows[] = {
        {1.75, L"1'-9\"", L"1'-9\""},
        {-1.75, L"-1'-9\"", L"-1'-9\""},
        {0.5625, L"0'-6 3/4\"", L"0'-6 3/4\""},
        {2.5625, L"2'-6 3/4\"", L"2'-6 3/4\""},
        {2.5 + 1.0 / 768.0, L"2'-6 1/64\"", L"2'-6 1/64\""},
        // Zeroes are hidden.
        {1.0, L"1'", L"1'-0\""},
        {0.0, L"0'", L"0'-0\""},
        {-0.0, L"0'", L"0'-0\""},
        {-3.0, L"-3'", L"-3'-0\""},
        // A fraction of an inch without whole inches.
        {0.0625, L"0'- 3/4\"", L"0'- 3/4\""},
        {-0.0625, L"-0'- 3/4\"", L"-0'- 3/4\""},
        {1.03125, L"1'- 3/8\"", L"1'- 3/8\""},
        // What is less than half a 64th isn't a fraction.
        {1.0 + 0.001 / 12.0, L"1'", L"1'-0\""},
        {1.25 + 0.001 / 12.0, L"1'-3\"", L"1'-3\""},
        // A fraction that rounds to an inch; and the twelfth inch is a foot.
        {1.49999, L"1'-6\"", L"1'-6\""},
        {0.08333, L"0'-1\"", L"0'-1\""},
        {1.9999, L"2'", L"2'-0\""},
        {-1.9999, L"-2'", L"-2'-0\""},
        {11.5 / 12.0, L"0'-11 1/2\"", L"0'-11 1/2\""},
        {9999999.9999, L"10000000'", L"10000000'-0\""},
    };
    for (FeetRow const & row : c_rows) {
        EXPECT_EQ(architectural(row.feet), row.hidden) << row.feet;
        EXPECT_EQ(architectural(row.feet, showZeroes), row.full) << row.feet;
    }
}

TEST(FormatArchitecturalTests, WholeNumbersAreWrittenInFull) {
    EXPECT_EQ(architectural(1e10), L"10000000000'");
    EXPECT_EQ(architectural(1e22), L"10000000000000000000000'");
    EXPECT_EQ(architectural(-3000000000.5, showZeroes), L"-3000000000'-6\"");
}

TEST(FormatArchitecturalTests, WhatIsNotFiniteHasAWord) {
    EXPECT_EQ(architectural(c_infinity), L"INF");
    EXPECT_EQ(architectural(-c_infinity), L"-INF");
    EXPECT_EQ(architectural(c_nan), L"NAN");
}

// ---- Degrees, minutes, seconds ------------------------------------------------------------------

TEST(FormatDegMinSecTests, EachPrecisionRoundsWhereItEnds) {
    struct DegreeRow {
        double degrees;
        std::wstring texts[7]; // with precision 0 to 6
    };
    DegreeRow const rows[] = {
        {45.0,
         {L"45deg", L"45deg 0'", L"45deg 0' 0\"", L"45deg 0' 0.0\"", L"45deg 0' 0.00\"",
          L"45deg 0' 0.000\"", L"45deg 0' 0.0000\""}},
        {45.0 + 30.0 / 60.0 + 30.0 / 3600.0,
         {L"46deg", L"45deg 31'", L"45deg 30' 30\"", L"45deg 30' 30.0\"", L"45deg 30' 30.00\"",
          L"45deg 30' 30.000\"", L"45deg 30' 30.0000\""}},
        {45.5,
         {L"46deg", L"45deg 30'", L"45deg 30' 0\"", L"45deg 30' 0.0\"", L"45deg 30' 0.00\"",
          L"45deg 30' 0.000\"", L"45deg 30' 0.0000\""}},
        {45.0 + 29.0 / 60.0 + 29.0 / 3600.0,
         {L"45deg", L"45deg 29'", L"45deg 29' 29\"", L"45deg 29' 29.0\"", L"45deg 29' 29.00\"",
          L"45deg 29' 29.000\"", L"45deg 29' 29.0000\""}},
        // 59' 59.64"
        {10.9999,
         {L"11deg", L"11deg 0'", L"11deg 0' 0\"", L"10deg 59' 59.6\"", L"10deg 59' 59.64\"",
          L"10deg 59' 59.640\"", L"10deg 59' 59.6400\""}},
        // 59' 59.964"
        {10.99999,
         {L"11deg", L"11deg 0'", L"11deg 0' 0\"", L"11deg 0' 0.0\"", L"10deg 59' 59.96\"",
          L"10deg 59' 59.964\"", L"10deg 59' 59.9640\""}},
        // 59' 45": the minutes carry
        {10.0 + 59.0 / 60.0 + 45.0 / 3600.0,
         {L"11deg", L"11deg 0'", L"10deg 59' 45\"", L"10deg 59' 45.0\"", L"10deg 59' 45.00\"",
          L"10deg 59' 45.000\"", L"10deg 59' 45.0000\""}},
        // 15' 59.7": the seconds carry into the minutes
        {10.0 + 15.0 / 60.0 + 59.7 / 3600.0,
         {L"10deg", L"10deg 16'", L"10deg 16' 0\"", L"10deg 15' 59.7\"", L"10deg 15' 59.70\"",
          L"10deg 15' 59.700\"", L"10deg 15' 59.7000\""}},
        {-45.5,
         {L"-46deg", L"-45deg 30'", L"-45deg 30' 0\"", L"-45deg 30' 0.0\"", L"-45deg 30' 0.00\"",
          L"-45deg 30' 0.000\"", L"-45deg 30' 0.0000\""}},
        {0.0,
         {L"0deg", L"0deg 0'", L"0deg 0' 0\"", L"0deg 0' 0.0\"", L"0deg 0' 0.00\"",
          L"0deg 0' 0.000\"", L"0deg 0' 0.0000\""}},
    };
    for (DegreeRow const & row : rows) {
        for (short precision = 0; precision <= 6; ++precision) {
            auto const change = [precision](Settings & settings) {
                settings.angularPrecision(precision);
                settings.hideTrailingZeroes(false);
            };
            EXPECT_EQ(degMinSec(row.degrees, change), row.texts[precision])
                << row.degrees << ' ' << precision;
        }
    }
}

Change angular(short precision) {
    return [precision](Settings & settings) { settings.angularPrecision(precision); };
}

TEST(FormatDegMinSecTests, ZeroesOfSecondsAreHidden) {
    EXPECT_EQ(degMinSec(45.0, angular(5)), L"45deg 0' 0\"");
    EXPECT_EQ(degMinSec(45.0 + 30.0 / 60.0 + 30.0 / 3600.0, angular(5)), L"45deg 30' 30\"");
    EXPECT_EQ(degMinSec(45.0 + 30.25 / 3600.0, angular(5)), L"45deg 0' 30.25\"");
    EXPECT_EQ(degMinSec(45.0 + 20.5 / 3600.0, angular(4)), L"45deg 0' 20.5\"");
}

TEST(FormatDegMinSecTests, UnitAndSeparatorAreThoseOfTheSettings) {
    auto const german = [](Settings & settings) {
        settings.angularPrecision(5);
        settings.useCommaAsDecimalPoint();
        settings.displayAbbreviated(false);
        settings.hideTrailingZeroes(false);
    };
    EXPECT_EQ(degMinSec(45.0, german), L"45degree 0' 0,000\"");
    EXPECT_EQ(degMinSec(45.0 + 30.25 / 3600.0, german), L"45degree 0' 30,250\"");
    auto const symbol = [](Settings & settings) { settings.displaySymbol(true); };
    EXPECT_EQ(degMinSec(45.5, symbol), L"45\u00B0 30'");
}

TEST(FormatDegMinSecTests, BiasMayTakeTheSignAway) {
    EXPECT_EQ(degMinSec(-1e-9), L"0deg 0'");
    EXPECT_EQ(degMinSec(-1e-7), L"-0deg 0'");
}

TEST(FormatDegMinSecTests, NegativePrecisionPrintsLikeNone) {
    for (short const precision : {short{-1}, short{-5}, short{-32768}}) {
        EXPECT_EQ(degMinSec(45.25, angular(precision)), L"45deg") << precision;
        EXPECT_EQ(degMinSec(45.5, angular(precision)), L"46deg") << precision;
    }
}

TEST(FormatDegMinSecTests, SecondsFieldHas511CharactersAtMost) {
    auto const change = [](Settings & settings) {
        settings.angularPrecision(32767);
        settings.hideTrailingZeroes(false);
    };
    std::wstring const text = degMinSec(0.0, change);
    EXPECT_EQ(text, L"0deg 0' 0." + std::wstring(509, L'0') + L"\"");
    EXPECT_EQ(degMinSec(0.0, angular(32767)), L"0deg 0' 0\"");
}

TEST(FormatDegMinSecTests, WholeNumbersAreWrittenInFull) {
    EXPECT_EQ(degMinSec(3000000000.5), L"3000000000deg 30'");
    EXPECT_EQ(degMinSec(1e22), L"10000000000000000000000deg 0'");
}

TEST(FormatDegMinSecTests, WhatIsNotFiniteHasAWord) {
    EXPECT_EQ(degMinSec(c_infinity), L"INF");
    EXPECT_EQ(degMinSec(-c_infinity), L"-INF");
    EXPECT_EQ(degMinSec(c_nan), L"NAN");
}

// ---- The rest -----------------------------------------------------------------------------------

TEST(ValueFormatterTests, AppendingLeavesWhatStandsThere) {
    valueFormatter const & formatter = *valueFormatter::get();
    Settings const & settings = Settings::standard();
    std::wstring text = L"x";
    formatter.appendDecimal(text, -0.5, settings);
    formatter.appendFractional(text, -0.5);
    formatter.appendFractional(text, 0.5);
    formatter.appendArchitectural(text, 0.0625, settings);
    formatter.appendDegMinSec(text, 45.5, settings);
    formatter.appendExponent(text, 4096);
    EXPECT_EQ(text, L"x-0.50- 1/21/20'- 3/4\"45deg 30'^4096");
}

TEST(ValueFormatterTests, Exponents) {
    EXPECT_EQ(valueFormatter::get()->formatExponent(3), L"^3");
    EXPECT_EQ(valueFormatter::get()->formatExponent(0), L"^0");
    EXPECT_EQ(valueFormatter::get()->formatExponent(-2), L"^-2");
    EXPECT_EQ(valueFormatter::get()->formatExponent(32767), L"^32767");
    EXPECT_EQ(valueFormatter::get()->formatExponent(-32768), L"^-32768");
}

TEST(ValueFormatterTests, PrefixesOfMagnitudes) {
    struct MagnitudeRow {
        double magnitude;
        wchar_t const * word;
        wchar_t const * abbreviation;
    };
    constexpr MagnitudeRow c_rows[] = {
        {1e18, L"exa", L"E"},
        {1e15, L"peta", L"P"},
        {1e12, L"tera", L"T"},
        {1e9, L"giga", L"G"},
        {1e6, L"mega", L"M"},
        {1e3, L"kilo", L"k"},
        {1e2, L"hecto", L"h"},
        {1e1, L"deca", L"da"},
        {0.1, L"deci", L"d"},
        {0.01, L"centi", L"c"},
        {0.001, L"milli", L"m"},
        {1e-6, L"micro", L"micro"},
        {1e-9, L"nano", L"n"},
        {1e-12, L"pico", L"p"},
        {1e-15, L"femto", L"f"},
        {1e-18, L"atto", L"a"},
        // Exactly, and only these.
        {1.0, L"", L""},
        {0.0, L"", L""},
        {-1000.0, L"", L""},
        {1e5, L"", L""},
        {1000.0000000000002, L"", L""},
        {1e-5, L"", L""},
    };
    for (MagnitudeRow const & row : c_rows) {
        EXPECT_EQ(valueFormatter::get()->magnitudeString(row.magnitude, false), row.word);
        EXPECT_EQ(valueFormatter::get()->magnitudeString(row.magnitude, true), row.abbreviation);
    }
    EXPECT_EQ(valueFormatter::get()->magnitudeString(c_nan, false), L"");
    EXPECT_EQ(valueFormatter::get()->magnitudeString(c_infinity, true), L"");
}

TEST(ValueFormatterTests, IntegerPowers) {
    valueFormatter const & formatter = *valueFormatter::get();
    EXPECT_EQ(formatter.integerPower(2.0, 0), 1.0);
    EXPECT_EQ(formatter.integerPower(2.0, 10), 1024.0);
    EXPECT_EQ(formatter.integerPower(2.0, -2), 0.25);
    EXPECT_EQ(formatter.integerPower(-2.0, 3), -8.0);
    EXPECT_EQ(formatter.integerPower(10.0, 19), 1e19);
    EXPECT_EQ(formatter.integerPower(0.0, 0), 1.0);
    EXPECT_EQ(formatter.integerPower(0.0, -1), c_infinity);
    EXPECT_EQ(formatter.integerPower(1.0, std::numeric_limits<int>::min()), 1.0);
    EXPECT_EQ(formatter.integerPower(2.0, std::numeric_limits<int>::min()), 0.0);
    EXPECT_EQ(formatter.integerPower(2.0, std::numeric_limits<int>::max()), c_infinity);
}

TEST(ValueFormatterTests, LengthsAndAnglesComeInTheFormOfTheSettings) {
    struct UnitRow {
        Units::Unit const * unit;
        double internal;
        Change change;
        wchar_t const * text;
    };
    auto const fractions = [](Settings & s) { s.lengthDisplay(Units::LengthFractional); };
    auto const feet = [](Settings & s) { s.lengthDisplay(Units::LengthArchitectural); };
    auto const minutes = [](Settings & s) { s.degreeDisplay(Units::DegreeDegMinSec); };
    UnitRow const rows[] = {
        {Units::UnitInch::get(), 6.35, {}, L"2.50 in"},
        {Units::UnitInch::get(), 6.35, fractions, L"2 1/2\""},
        {Units::UnitFoot::get(), 22.86, fractions, L"9\""},
        {Units::UnitMeter::get(0.01), 6.35, fractions, L"6.35 cm"},
        {Units::UnitInch::get(), 17.145, feet, L"0'-6 3/4\""},
        {Units::UnitFoot::get(), 53.34, feet, L"1'-9\""},
        {Units::UnitMeter::get(0.01), 53.34, feet, L"53.34 cm"},
        {Units::UnitInch::get(), 7620000000.0, fractions, L"3000000000\""},
        {Units::UnitDegree::get(), 0.7853981633974483, {}, L"45.0 deg"},
        {Units::UnitDegree::get(), 0.7853981633974483, minutes, L"45deg 0'"},
        {Units::UnitRadian::get(), 1.0, minutes, L"1.00 rad"},
        {Units::UnitInch::get(), c_infinity, fractions, L"INF\""},
        {Units::UnitInch::get(), c_infinity, feet, L"INF"},
        {Units::UnitMeter::get(0.01), c_infinity, {}, L"INF cm"},
    };
    for (UnitRow const & row : rows)
        EXPECT_EQ(
            row.unit->reconstructString(row.internal, Units::ValueAndUnit, standardBut(row.change)),
            row.text);
}

} // namespace

} // namespace Vn::Expressions
