// The text commands of the subject area "Units".

#include <algorithm>
#include <cstring>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include "Platform/Base/TextCommandService.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Units {

namespace {

using UnitTables::c_catalogue;
using UnitTables::CatalogueRow;

TextCommandResult run(std::wstring const & line) { return TextCommandService::get().run(line); }

std::wstring answer(std::wstring const & line) {
    TextCommandResult const result = run(line);
    EXPECT_EQ(result.status, 0) << testing::PrintToString(line);
    return result.text;
}

TEST(UnitTextCommandsTests, SubjectAreaHasFourCommands) {
    struct Row {
        wchar_t const * name;
        wchar_t const * description;
    };
    Row const rows[] = {
        {L"List", L"[/Verbose] Lists all the simple units in Vantor"},
        {L"MakeForMagnitude", L"[MagnitudePower] Makes simple units for the specified magnitude"},
        {L"ShowComplexUnits",
         L"Makes and displays complex units for all the simple units in Vantor"},
        {L"DisplayInternalUnit",
         L"[/UnitOnly] [/ValueOnly] Displays the internal unit as a value for all the units"},
    };
    std::vector<TextCommand *> const commands = TextCommandService::get().commands(L"Units");
    ASSERT_EQ(commands.size(), std::size(rows));
    for (std::size_t i = 0; i < commands.size(); ++i) {
        EXPECT_EQ(commands[i]->subjectArea(), L"Units");
        EXPECT_EQ(commands[i]->name(), rows[i].name);
        EXPECT_EQ(commands[i]->description(), rows[i].description);
        EXPECT_EQ(commands[i]->alias(), "");
        EXPECT_FALSE(commands[i]->hidden());
        EXPECT_TRUE(commands[i]->enabled());
    }
    auto const areas = TextCommandService::get().subjectAreas();
    auto const units = std::ranges::find(areas, L"Units", &TextCommandSubjectArea::name);
    ASSERT_NE(units, areas.end());
    EXPECT_EQ((*units)->description(), L"Commands that operate on the Unit subsystem");
    EXPECT_FALSE((*units)->hidden());
}

// One line a unit: its name, its abbreviation and, if it has one, its symbol.  No clones.
void expectPlainList() {
    std::vector<std::wstring> const lines = linesOf(answer(L"Units.List"));
    ASSERT_EQ(lines.size(), std::size(c_catalogue));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        CatalogueRow const & row = c_catalogue[i];
        std::wstring line = std::wstring(row.name) + L" - " + row.abbreviation;
        if (row.symbol[0]) line += std::wstring(L" - ") + row.symbol;
        EXPECT_EQ(lines[i], line);
    }
    EXPECT_EQ(lines[0], L"radian - rad");
    EXPECT_EQ(lines[1], L"degree - deg - \u00B0");
    EXPECT_EQ(lines[7], L"inch - in - \"");
    EXPECT_EQ(lines[70], L"poise - poise");
}

TEST(UnitTextCommandsTests, ListLeavesClonesOut) {
    expectPlainList();
    UnitMeter::get(1000.0);
    UnitMeter::get(123.0);
    expectPlainList();
}

// A double as the lines for diagnostics print it.
std::wstring printed(double value) {
    std::wostringstream out;
    out.imbue(std::locale::classic());
    out << value;
    return out.str();
}

std::wstring widened(char const * text) { return std::wstring(text, text + std::strlen(text)); }

std::wstring verboseLine(CatalogueRow const & row) {
    double const toThisUnit = (1.0 - row.offset) / row.factor;
    double const toInternal = row.factor * 1.0 + row.offset;
    bool const isBase = row.kind <= UnitTypeCurrency;
    std::wstring line = isBase ? L"BaseUnit" : L"CompositeUnit";
    line += L" Id: " + widened(row.identifier) + L", Magnitude: 1, Name: " + row.name;
    line += L", Internal of 1.0 = " + printed(toThisUnit) + L" " + row.abbreviation;
    line += std::wstring(L", 1.0 ") + row.abbreviation + L" = " + printed(toInternal);
    line += L" Internal, ";
    if (isBase) {
        UnitTables::BaseKindRow const & kind = UnitTables::c_baseKindRows[row.kind];
        line += L"internalBaseType (" + widened(kind.identifier) + L" * " +
                printed(kind.magnitude) + L")";
    } else {
        line += std::wstring(L"internally represented ") +
                UnitTables::c_compositeKindRows[row.kind - UnitTypeSolidAngle].toString;
    }
    return line;
}

TEST(UnitTextCommandsTests, VerboseListOnAFreshSystem) {
    expectInFreshProcess([] {
        std::vector<std::wstring> const lines = linesOf(answer(L"Units.List /Verbose"));
        ASSERT_EQ(lines.size(), 72U);
        EXPECT_EQ(lines[0], L"There are 71 simple units");
        for (std::size_t i = 0; i < std::size(c_catalogue); ++i)
            EXPECT_EQ(lines[i + 1], verboseLine(c_catalogue[i]));
        EXPECT_EQ(lines[6], L"BaseUnit Id: UnitMeter, Magnitude: 1, Name: meter, Internal of 1.0 = "
                            L"0.01 m, 1.0 m = 100 Internal, internalBaseType (UnitMeter * 0.01)");
        // The lines named the internal centimetre and kilogram, so these exist now.
        std::vector<std::wstring> const again = linesOf(answer(L"Units.List /Verbose"));
        ASSERT_EQ(again.size(), 74U);
        EXPECT_EQ(again[0], L"There are 73 simple units");
        EXPECT_EQ(again[6], L"BaseUnit Id: UnitMeter, Magnitude: 0.01, Name: centimeter, Internal "
                            L"of 1.0 = 1 cm, 1.0 cm = 1 Internal, internalBaseType (UnitMeter * "
                            L"0.01)");
        EXPECT_EQ(again[7], lines[6]);
    });
}

TEST(UnitTextCommandsTests, VerboseFlagIsReadInAnyCase) {
    UnitMeter::get(0.01); // the listing itself would make the internal units
    UnitGram::get(1000.0);
    std::wstring const text = answer(L"Units.List /Verbose");
    EXPECT_EQ(answer(L"Units.List /verbose"), text);
    EXPECT_EQ(answer(L"Units.List /VERBOSE"), text);
}

TEST(UnitTextCommandsTests, VerboseListCountsItsLines) {
    UnitMeter::get(0.01);
    UnitGram::get(1000.0);
    std::vector<std::wstring> const lines = linesOf(answer(L"Units.List /Verbose"));
    std::size_t const count = allUnits().size();
    EXPECT_EQ(lines.size(), count + 1);
    EXPECT_EQ(lines[0], L"There are " + std::to_wstring(count) + L" simple units");
}

TEST(UnitTextCommandsTests, MakeForMagnitudeOnAFreshSystem) {
    expectInFreshProcess([] {
        EXPECT_EQ(answer(L"Units.MakeForMagnitude 3"),
                  L"There were 71 simple units and there now are 101");
        EXPECT_EQ(answer(L"Units.MakeForMagnitude 3"),
                  L"There were 101 simple units and there now are 101");
        EXPECT_EQ(answer(L"Units.MakeForMagnitude -2"),
                  L"There were 101 simple units and there now are 131");
        EXPECT_EQ(answer(L"Units.MakeForMagnitude 0"),
                  L"There were 131 simple units and there now are 131");
        expectPlainList();
    });
}

TEST(UnitTextCommandsTests, MagnitudeMadeBeforeAddsNothing) {
    answer(L"Units.MakeForMagnitude 3");
    std::wstring const count = std::to_wstring(allUnits().size());
    EXPECT_EQ(answer(L"Units.MakeForMagnitude 3"),
              L"There were " + count + L" simple units and there now are " + count);
}

TEST(UnitTextCommandsTests, MagnitudesMadeArePrefixes) {
    expectInFreshProcess([] {
        int const powers[] = {18, 15, 12, 9, 6, 3, 2, 1, -1, -2, -3, -6, -9, -12, -15, -18};
        static_assert(std::size(powers) == std::size(UnitTables::c_prefixes));
        for (std::size_t i = 0; i < std::size(powers); ++i) {
            std::size_t const before = allUnits().size();
            answer(L"Units.MakeForMagnitude " + std::to_wstring(powers[i]));
            EXPECT_EQ(allUnits().size(), before + 30);
            UnitMeter::get(UnitTables::c_prefixes[i].magnitude);
            EXPECT_EQ(allUnits().size(), before + 30) << powers[i];
            std::wstring const name = std::wstring(UnitTables::c_prefixes[i].name) + L"meter";
            EXPECT_EQ(unitOf(name), UnitMeter::get(UnitTables::c_prefixes[i].magnitude));
        }
    });
}

TEST(UnitTextCommandsTests, MagnitudeWithoutAPrefixIsListed) {
    expectInFreshProcess([] {
        EXPECT_EQ(answer(L"Units.MakeForMagnitude 5"),
                  L"There were 71 simple units and there now are 101");
        std::vector<std::wstring> const lines = linesOf(answer(L"Units.List /Verbose"));
        EXPECT_EQ(lines[0], L"There are 101 simple units");
        std::wstring const line =
            L"BaseUnit Id: UnitMeter, Magnitude: 100000, Name: meter, Internal of 1.0 = 1e-07 m, "
            L"1.0 m = 1e+07 Internal, internalBaseType (UnitMeter * 0.01)";
        EXPECT_EQ(std::ranges::count(lines, line), 1);
        EXPECT_EQ(unitOf(L"m"), UnitMeter::get(1.0));
    });
}

TEST(UnitTextCommandsTests, MakeForMagnitudeNeedsAMagnitude) {
    for (wchar_t const * line : {L"Units.MakeForMagnitude", L"Units.MakeForMagnitude /Verbose"}) {
        TextCommandResult const result = run(line);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.text, L"Need to specify the magnitude to use");
    }
}

TEST(UnitTextCommandsTests, BadMagnitudeGoesUpAsAnException) {
    TextCommand * const command = TextCommandService::get().find(L"Units", L"MakeForMagnitude");
    ASSERT_NE(command, nullptr);
    std::size_t const before = allUnits().size();
    for (wchar_t const * text : {L"", L"x", L"3x", L"1.5", L"1e3", L" 3", L"3 ", L"99999999999",
                                 L"-99999999999", L"\u0663"}) {
        EXPECT_THROW(command->run(TextCommandParameters({text})), boost::bad_lexical_cast)
            << testing::PrintToString(text);
        TextCommandResult const result =
            run(L"Units.MakeForMagnitude \"" + std::wstring(text) + L"\"");
        EXPECT_EQ(result.status, 1) << testing::PrintToString(text);
        EXPECT_EQ(result.text, L"The magnitude is a power of ten, a whole number such as 3 or -6, "
                               L"which \"" +
                                   std::wstring(text) + L"\" isn't");
    }
    EXPECT_EQ(allUnits().size(), before);
}

// Powers beyond a double give infinite and zero magnitudes, which nothing trips over.
TEST(UnitTextCommandsTests, HugeMagnitudesAreSurvived) {
    expectInFreshProcess([] {
        for (wchar_t const * power :
             {L"400", L"-400", L"2147483647", L"-2147483648", L"308", L"-308"})
            answer(std::wstring(L"Units.MakeForMagnitude ") + power);
        // Infinite, zero, 1E+308 and 1E-308.
        EXPECT_EQ(allUnits().size(), 71U + 4 * 30);
        EXPECT_EQ(linesOf(answer(L"Units.List /Verbose")).size(), 72U + 4 * 30);
        EXPECT_EQ(linesOf(answer(L"Units.DisplayInternalUnit")).size(), 71U + 4 * 30 + 2);
        EXPECT_EQ(linesOf(answer(L"Units.ShowComplexUnits")).size(), 71U + 4 * 30 + 2);
        expectPlainList();
        EXPECT_EQ(unitOf(L"m"), UnitMeter::get(1.0));
        EXPECT_EQ(unitOf(L"km"), UnitMeter::get(1000.0));
    });
}

TEST(UnitTextCommandsTests, ShowComplexUnitsRunsToItsEnd) {
    expectInFreshProcess([] {
        std::vector<std::wstring> const lines = linesOf(answer(L"Units.ShowComplexUnits"));
        ASSERT_EQ(lines.size(), std::size(c_catalogue));
        for (std::size_t i = 0; i < lines.size(); ++i) {
            CatalogueRow const & row = c_catalogue[i];
            if (row.kind <= UnitTypeCurrency) {
                EXPECT_EQ(lines[i], std::wstring(L"(") + row.name + L") / (1)");
            } else {
                EXPECT_EQ(lines[i],
                          UnitTables::c_compositeKindRows[row.kind - UnitTypeSolidAngle].toString);
            }
        }
    });
}

TEST(UnitTextCommandsTests, ShowComplexUnitsShowsClonesToo) {
    UnitMeter::get(1000.0);
    std::size_t const count = allUnits().size();
    std::vector<std::wstring> const lines = linesOf(answer(L"Units.ShowComplexUnits"));
    // The exercise itself makes the centimetre.
    EXPECT_GE(lines.size(), count);
    EXPECT_EQ(std::ranges::count(lines, L"(kilometer) / (1)"), 1);
}

struct DisplayRow {
    wchar_t const * value;
    wchar_t const * unit;
};

// One internal unit in each unit of the catalogue.
// clang-format off
DisplayRow const c_displayed[] = {
    {L"1.00", L"rad"},
    {L"57.3", L"deg"},
    {L"63.662", L"grad"},
    {L"1.00", L"dol"},
    {L"1.00", L"A"},
    {L"0.01", L"m"},
    {L"10000.00", L"micron"},
    {L"0.394", L"in"},
    {L"0.033", L"ft"},
    {L"0.011", L"yd"},
    {L"6.214E-06", L"mi"},
    {L"5.400E-06", L"nauticalMile"},
    {L"393.701", L"mil"},
    {L"1.00", L"cd"},
    {L"1000.00", L"g"},
    {L"0.069", L"slug"},
    {L"2.205", L"lbmass"},
    {L"35.274", L"ouncemass"},
    {L"0.001", L"tonmass"},
    {L"1.00", L"mole"},
    {L"1.00", L"K"},
    {L"-272.16", L"C"},
    {L"-457.888", L"F"},
    {L"1.00", L"s"},
    {L"0.017", L"min"},
    {L"2.778E-04", L"hr"},
    {L"1.00", L"sr"},
    {L"0.01", L"mps"},
    {L"0.033", L"fps"},
    {L"0.022", L"mph"},
    {L"2.471E-08", L"acre"},
    {L"1.974E+05", L"circular_mil"},
    {L"0.001", L"l"},
    {L"2.642E-04", L"gal"},
    {L"0.001", L"qt"},
    {L"0.002", L"pt"},
    {L"0.004", L"cup"},
    {L"0.034", L"fl_oz"},
    {L"100.00", L"Pa"},
    {L"0.015", L"psi"},
    {L"1.451E-05", L"ksi"},
    {L"0.001", L"bar"},
    {L"0.01", L"N"},
    {L"1000.00", L"dyne"},
    {L"0.002", L"lbforce"},
    {L"0.036", L"ounceforce"},
    {L"1.124E-06", L"tonforce"},
    {L"1.000E-04", L"W"},
    {L"1.341E-07", L"hp"},
    {L"1.000E-04", L"J"},
    {L"1000.00", L"erg"},
    {L"2.390E-05", L"calorie"},
    {L"9.482E-08", L"Btu"},
    {L"9.549", L"rpm"},
    {L"1.00", L"lm"},
    {L"10000.00", L"lx"},
    {L"1.000E-04", L"V"},
    {L"1.000E-04", L"ohm"},
    {L"1.00", L"coulomb"},
    {L"10000.00", L"farad"},
    {L"10000.00", L"S"},
    {L"10000.00", L"mho"},
    {L"1.000E-04", L"Wb"},
    {L"10000.00", L"maxwell"},
    {L"1.00", L"T"},
    {L"1.000E+09", L"gamma"},
    {L"10000.00", L"gauss"},
    {L"1.000E-04", L"H"},
    {L"1.257", L"oersted"},
    {L"1.00", L"Hz"},
    {L"1000.00", L"poise"},
};
// clang-format on

TEST(UnitTextCommandsTests, DisplayInternalUnitHasThreeModes) {
    expectInFreshProcess([] {
        struct Row {
            wchar_t const * command;
            bool value;
            bool unit;
        };
        Row const rows[] = {
            {L"Units.DisplayInternalUnit", true, true},
            {L"Units.DisplayInternalUnit /ValueOnly", true, false},
            {L"Units.DisplayInternalUnit /UnitOnly", false, true},
            {L"Units.DisplayInternalUnit /UnitOnly /ValueOnly", true, false},
            {L"Units.DisplayInternalUnit /ValueOnly /UnitOnly", true, false},
            {L"Units.DisplayInternalUnit /valueonly", true, false},
            {L"Units.DisplayInternalUnit /UNITONLY", false, true},
        };
        for (Row const & row : rows) {
            SCOPED_TRACE(testing::PrintToString(row.command));
            std::vector<std::wstring> const lines = linesOf(answer(row.command));
            ASSERT_EQ(lines.size(), std::size(c_displayed));
            for (std::size_t i = 0; i < lines.size(); ++i) {
                std::wstring line = L"Internal of 1.0 displays as ";
                if (row.value) line += c_displayed[i].value;
                if (row.value && row.unit) line += L" ";
                if (row.unit) line += c_displayed[i].unit;
                EXPECT_EQ(lines[i], line);
            }
        }
    });
}

TEST(UnitTextCommandsTests, DisplayInternalUnitShowsOneKelvinInCelsius) {
    std::vector<std::wstring> const lines =
        linesOf(answer(L"Units.DisplayInternalUnit /ValueOnly"));
    std::vector<SimpleUnit const *> const units = allUnits();
    ASSERT_EQ(lines.size(), units.size());
    auto const celsius = std::ranges::find(units, UnitCelsius::get()) - units.begin();
    EXPECT_EQ(lines[static_cast<std::size_t>(celsius)], L"Internal of 1.0 displays as -272.16");
}

// The commands show values under the user's settings.
TEST(UnitTextCommandsTests, DisplayFollowsTheUsersSettings) {
    UnitDisplaySettings & user = UnitDisplaySettings::userEditableSettings();
    UnitDisplaySettings const before = user;
    user.useCommaAsDecimalPoint();
    user.displayAbbreviated(false);
    std::vector<std::wstring> const lines = linesOf(answer(L"Units.DisplayInternalUnit"));
    user = before;
    EXPECT_EQ(std::ranges::count(lines, L"Internal of 1.0 displays as -272,16 celsius"), 1);
}

} // namespace

} // namespace Vn::Units
