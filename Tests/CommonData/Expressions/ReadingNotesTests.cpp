#include "Server/CommonData/Expressions/ReadingNotes.h"

#include <set>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/OptionBase.h"
#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;

struct Row {
    wchar_t const * text;
    wchar_t const * context; // "?" expects nothing
    EReading reading;
    std::size_t start;
    std::size_t end;
    wchar_t const * note;
    bool hasCommas = false; // in front of decimals, by the settings
};

Units::UnitDisplaySettings settingsOf(bool hasCommas) {
    return standardBut([=](auto & settings) { settings.decimalPointIsFullStop(!hasCommas); });
}

Row const c_rows[] = {
    {L"1,500 mm", L"?", EReading::decimalComma, 0, 5,
     L"\"1,500\" is 1.500, with a comma for decimals; for thousands write 1500"},
    {L"2 + 12,345", L"?", EReading::decimalComma, 4, 10,
     L"\"12,345\" is 12.345, with a comma for decimals; for thousands write 12345"},
    {L"1.500 mm", L"?", EReading::decimalPoint, 0, 5,
     L"\"1.500\" is 1,500, with a point for decimals; for thousands write 1500", true},
    {L"1,5 m + 12.345 mm", L"?", EReading::decimalPoint, 8, 14,
     L"\"12.345\" is 12,345, with a point for decimals; for thousands write 12345", true},
    {L"sin(30 Grad)", L"?", EReading::rareUnit, 7, 11,
     L"\"Grad\" was read as grad; did you mean deg?"},
    {L"1-1/2 in", L"cm", EReading::subtraction, 0, 8,
     L"\"1-1/2 in\" is a subtraction; for a number with a fraction write 1 1/2 in"},
    {L"1-1/2", L"?", EReading::subtraction, 0, 5,
     L"\"1-1/2\" is a subtraction; for a number with a fraction write 1 1/2"},
    {L"12 / 3 / 2", L"?", EReading::fractionOfOperator, 5, 10,
     L"\"3 / 2\" is one number, a fraction; to divide by each in turn write 12 / 3 / (2)"},
    {L"2^3/4", L"?", EReading::fractionOfOperator, 2, 5,
     L"\"3/4\" is one number, a fraction; to divide by each in turn write 2^3/(4)"},
    {L"2*3^2", L"?", EReading::powerOfAll, 0, 3,
     L"the power is that of all of \"2*3\"; to take the power first write 2*(3^2)"},
    {L"-10^2", L"?", EReading::powerOfAll, 0, 3,
     L"the power is that of all of \"-10\"; to take the power first write -(10^2)"},
    {L"2^3^2", L"?", EReading::powerOfAll, 0, 3,
     L"the power is that of all of \"2^3\"; to take the power first write 2^(3^2)"},
    {L"3/2^2", L"?", EReading::powerOfAll, 0, 3,
     L"the power is that of all of \"3/2\"; to take the power first write 3/(2^2)"},
    {L"1 + 2*PI^2", L"?", EReading::powerOfAll, 4, 8,
     L"the power is that of all of \"2*PI\"; to take the power first write 1 + 2*(PI^2)"},
    {L"max(2*sqrt(16)^2; 4)", L"?", EReading::powerOfAll, 4, 14,
     L"the power is that of all of \"2*sqrt(16)\"; to take the power first write "
     L"max(2*(sqrt(16)^2); 4)"},
    {L"20 J / (10 V)^2", L"?", EReading::powerOfAll, 0, 13,
     L"the power is that of all of \"20 J / (10 V)\"; to take the power first write "
     L"20 J / ((10 V)^2)"},
    {L"100 C - 20 C", L"?", EReading::temperaturePoints, 0, 12,
     L"\"100 C - 20 C\" computes with temperatures above absolute zero; a difference of "
     L"temperatures is written in K"},
    {L"2 * 20 C", L"?", EReading::temperaturePoints, 0, 8,
     L"\"2 * 20 C\" computes with temperatures above absolute zero; a difference of temperatures "
     L"is written in K"},
    {L"68 F / 2", L"?", EReading::temperaturePoints, 0, 8,
     L"\"68 F / 2\" computes with temperatures above absolute zero; a difference of temperatures "
     L"is written in K"},
    {L"20 deg C", L"?", EReading::angleAndTemperature, 3, 8,
     L"\"deg C\" is an angle times a temperature; for the temperature write C"},
    {L"5 kilos", L"?", EReading::rareUnit, 2, 7,
     L"\"kilos\" was read as kilosecond; did you mean kg?"},
    {L"5 amps", L"?", EReading::rareUnit, 2, 6,
     L"\"amps\" was read as attoMetersPerSecond; did you mean A?"},
    {L"5 ccm", L"?", EReading::rareUnit, 2, 5,
     L"\"ccm\" was read as centimeter; did you mean cm^3?"},
    {L"mm as in", L"?", EReading::rareUnit, 3, 5, L"\"as\" was read as attosecond"},
    {L"100 mm in cm", L"?", EReading::rareUnit, 7, 9, L"\"in\" was read as inch"},
    {L"1e400", L"?", EReading::largestNumber, 0, 5,
     L"\"1e400\" is too large and was read as the largest number there is"},
    {L"0E999", L"?", EReading::largestNumber, 0, 5,
     L"\"0E999\" is too large and was read as the largest number there is"},
    {L"cos(PI)", L"?", EReading::piInDegrees, 4, 6,
     L"\"PI\" was read in degrees; for radians write cos(PI rad)"},
    {L"2 * sin((2*PI)/3)", L"?", EReading::piInDegrees, 11, 13,
     L"\"PI\" was read in degrees; for radians write 2 * sin((2*PI rad)/3)"},
    {L"1/3 in", L"?", EReading::unitOfDivisor, 0, 6,
     L"\"1/3 in\" divides by the quantity; for a part of the unit write (1/3) * 1 in"},
    {L"2 * (5/6 in)", L"?", EReading::unitOfDivisor, 5, 11,
     L"\"5/6 in\" divides by the quantity; for a part of the unit write 2 * ((5/6) * 1 in)"},
    {L"1/60 s", L"?", EReading::unitOfDivisor, 0, 6,
     L"\"1/60 s\" divides by the quantity; for a part of the unit write (1/60) * 1 s"},
    {L"5 W/mK", L"?", EReading::rareUnit, 4, 6,
     L"\"mK\" was read as millikelvin; did you mean m K?"},
};

TEST(ReadingNotesTests, EachReadingHasItsPlaceAndItsNote) {
    for (Row const & row : c_rows) {
        Expression const expression(row.text, contextOf(row.context));
        ASSERT_TRUE(expression) << shown(row.text);
        std::vector<ReadingNote> const notes = readingNotes(expression, settingsOf(row.hasCommas));
        ASSERT_EQ(notes.size(), 1U) << shown(row.text);
        EXPECT_STREQ(readingName(notes[0].reading), readingName(row.reading)) << shown(row.text);
        EXPECT_EQ(notes[0].start, row.start) << shown(row.text);
        EXPECT_EQ(notes[0].end, row.end) << shown(row.text);
        EXPECT_EQ(shown(notes[0].text), shown(row.note));
    }
}

TEST(ReadingNotesTests, EveryReadingIsInTheTable) {
    std::set<EReading> readings;
    for (Row const & row : c_rows) readings.insert(row.reading);
    std::size_t count = 0;
    while (*readingName(static_cast<EReading>(count))) ++count;
    EXPECT_EQ(readings.size(), count);
}

TEST(ReadingNotesTests, WhatIsMeantAsItIsReadHasNoNote) {
    for (wchar_t const * const text : {L"2 cm",         L"1,5 mm",       L"0,500",
                                       L"1500,250",     L"1,5000",       L"1.500",
                                       L"1 1/2 in",     L"1 - 1/2",      L"3 - 1/2",
                                       L"12 / 3 / 1",   L"12 / 3",       L"12/(3/2)",
                                       L"1/2/3",        L"2*(3^2)",      L"(2*3)^2",
                                       L"2*3^1",        L"1*3^2",        L"-10^3",
                                       L"1/2^3",        L"1 + 3^2",      L"5 cm^2",
                                       L"2 * 5 cm^2",   L"5 m/s^2",      L"20 J / ((10 V)^2)",
                                       L"(2 cm)^2",     L"sqrt(16)^2",   L"20 C",
                                       L"20 C + 5 K",   L"10 W/C * 2",   L"2 * 10 W/C",
                                       L"45 deg",       L"2 in",         L"2 ft in",
                                       L"5 min",        L"5 kg",         L"1E308",
                                       L"1e-400",       L"cos(PI rad)",  L"2 * PI",
                                       L"asin(PI / 4)", L"cos(60)",      L"cos(60 deg) * PI",
                                       L"1 / 3 in",     L"3/4 in",       L"3000/60 s",
                                       L"5 mK",         L"(1/3) * 1 in", L"5 W / mK"}) {
        Expression const expression(text);
        ASSERT_TRUE(expression) << shown(text);
        for (ReadingNote const & note : readingNotes(expression))
            ADD_FAILURE() << shown(text) << ' ' << shown(note.text);
    }
    for (wchar_t const * const text : {L"1,500 mm", L"1.5", L"0.500", L"1500.250", L"1.5000"})
        EXPECT_TRUE(readingNotes(Expression(text), settingsOf(true)).empty()) << shown(text);
    // Where bare numbers are radians.
    EXPECT_TRUE(readingNotes(Expression(L"cos(PI) * 1 rad", contextOf(L"rad"))).empty());
}

TEST(ReadingNotesTests, OneExpressionMayHaveSeveral) {
    std::vector<ReadingNote> const notes = readingNotes(Expression(L"2*1,500^2 + 12/3/2 + 2*3^2"));
    ASSERT_EQ(notes.size(), 3U);
    EXPECT_EQ(notes[0].reading, EReading::powerOfAll);
    EXPECT_EQ(notes[1].reading, EReading::decimalComma);
    EXPECT_EQ(notes[2].reading, EReading::fractionOfOperator);
    EXPECT_EQ(notes[2].start, 15U);
}

TEST(ReadingNotesTests, ThereAreNoneWithoutATreeNorOnLongTexts) {
    EXPECT_TRUE(readingNotes(Expression()).empty());
    EXPECT_TRUE(readingNotes(Expression(L"2*3^2 2")).empty());
    std::wstring const sum = L"2*3^2" + repeated(L" + 1", 240);
    EXPECT_EQ(readingNotes(Expression(sum)).size(), 1U);
    EXPECT_TRUE(readingNotes(Expression(sum + repeated(L" + 1", 20))).empty());
}

void expectNoNoteOnCommas() {
    Initializer::runAll();
    OptionBase * const point =
        Units::UnitDisplaySettingsOptionGroup::get()->findOption("UnitDecimalPointIsFullStopId");
    ASSERT_NE(point, nullptr);
    point->setValueFromString(L"OFF");
    EXPECT_TRUE(readingNotes(Expression(L"1,500 mm")).empty());
}

TEST(ReadingNotesTests, ACommaIsAsExpectedWhereItIsTheDecimalMark) {
    Units::expectInFreshProcess(expectNoNoteOnCommas);
}

} // namespace

} // namespace Vn::Expressions
