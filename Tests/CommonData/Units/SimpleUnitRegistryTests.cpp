// The registry: one object for one class and magnitude, and units found by text.

#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <locale>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/ScopedLock.h"
#include "Platform/Base/StringTable.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"
#include "Tests/Support/FreshProcess.h"
#include "Tests/Support/StartLine.h"

namespace Vn::Units {

namespace {

using UnitTables::c_catalogue;
using UnitTables::c_prefixes;
using UnitTables::PrefixRow;

SimpleUnitRegistry & registry() { return SimpleUnitRegistry::get(); }

TEST(SimpleUnitRegistryTests, IsOneObject) { EXPECT_EQ(&registry(), &registry()); }

TEST(SimpleUnitRegistryTests, ListsTheCatalogueInOrderBeforeAnyClone) {
    expectInFreshProcess([] {
        std::vector<SimpleUnit const *> const units = allUnits();
        ASSERT_EQ(units.size(), 71U);
        for (std::size_t i = 0; i < units.size(); ++i) {
            EXPECT_EQ(*units[i]->identifier(), c_catalogue[i].identifier);
            EXPECT_EQ(units[i]->magnitude(), 1.0);
        }
    });
}

TEST(SimpleUnitRegistryTests, ListAppendsToWhatIsThere) {
    std::vector<SimpleUnit const *> units{nullptr};
    registry().allUnits(units);
    EXPECT_EQ(units.front(), nullptr);
    EXPECT_EQ(units[1], UnitRadian::get());
}

TEST(SimpleUnitRegistryTests, ListsByClassAndThenByMagnitude) {
    SimpleUnit const * const centimeter = UnitMeter::get(0.01);
    SimpleUnit const * const kilometer = UnitMeter::get(1000.0);
    std::vector<SimpleUnit const *> const units = allUnits();
    auto const at = [&units](SimpleUnit const * unit) {
        return std::ranges::find(units, unit) - units.begin();
    };
    EXPECT_LT(at(UnitAmp::get(1.0)), at(centimeter));
    EXPECT_LT(at(centimeter), at(UnitMeter::get(1.0)));
    EXPECT_LT(at(UnitMeter::get(1.0)), at(kilometer));
    EXPECT_LT(at(kilometer), at(UnitMicron::get()));
    for (std::size_t i = 1; i < units.size(); ++i) {
        bool const sameClass = units[i - 1]->identifier() == units[i]->identifier();
        EXPECT_TRUE(sameClass ? units[i - 1]->magnitude() < units[i]->magnitude()
                              : std::less<>()(units[i - 1]->identifier(), units[i]->identifier()));
    }
}

TEST(SimpleUnitRegistryTests, FindsOrClonesOnce) {
    SimpleUnit const * const clone = registry().findOrClone(UnitMeter::staticIdentifier(), 7.25);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->magnitude(), 7.25);
    EXPECT_EQ(clone->identifier(), UnitMeter::staticIdentifier());
    EXPECT_EQ(registry().findOrClone(UnitMeter::staticIdentifier(), 7.25), clone);
    EXPECT_EQ(UnitMeter::get(7.25), clone);
    EXPECT_EQ(std::ranges::count(allUnits(), clone), 1);
    EXPECT_EQ(registry().findOrClone(UnitInch::staticIdentifier(), 1.0), UnitInch::get());
}

TEST(SimpleUnitRegistryTests, MagnitudesCompareExactly) {
    double const next = std::nextafter(0.01, 1.0);
    SimpleUnit const * const near = UnitMeter::get(next);
    EXPECT_NE(near, UnitMeter::get(0.01));
    EXPECT_EQ(near->magnitude(), next);
    EXPECT_EQ(UnitMeter::get(next), near);
}

TEST(SimpleUnitRegistryTests, OddMagnitudesAreUnitsOfTheirOwn) {
    double const infinity = std::numeric_limits<double>::infinity();
    for (double const magnitude : {0.0, -1.0, infinity, -infinity, 5e-324}) {
        SimpleUnit const * const unit = UnitSecond::get(magnitude);
        EXPECT_EQ(unit->magnitude(), magnitude);
        EXPECT_EQ(UnitSecond::get(magnitude), unit);
    }
}

// No number compares equal to a NaN, so none of the known units is one of that magnitude.
TEST(SimpleUnitRegistryTests, NanIsNoMagnitudeOfAnotherUnit) {
    UnitSecond::get(0.001);
    SimpleUnit const * const unit = UnitSecond::get(std::nan(""));
    EXPECT_TRUE(unit == nullptr || std::isnan(unit->magnitude())) << unit->magnitude();
    EXPECT_EQ(UnitSecond::get(1.0)->magnitude(), 1.0);
}

// A magnitude without a prefix gives the plain names of the class, which are taken.
TEST(SimpleUnitRegistryTests, CloneNeverReplacesAName) {
    SimpleUnit const * const clone = UnitMeter::get(1e5);
    UnitDisplaySettings const & settings = UnitDisplaySettings::standard();
    EXPECT_EQ(clone->name(settings), L"meter");
    EXPECT_EQ(clone->abbreviation(settings), L"m");
    EXPECT_EQ(clone->displayString(settings), L"m");
    EXPECT_EQ(registry().findExact(L"meter", nullptr), UnitMeter::get(1.0));
    EXPECT_EQ(registry().findExact(L"m", nullptr), UnitMeter::get(1.0));
    std::vector<SimpleUnit const *> const units = allUnits();
    EXPECT_NE(std::ranges::find(units, clone), units.end());
}

TEST(SimpleUnitRegistryTests, EmptyTextIsNoUnit) {
    std::wstring_view prefix = L"untouched";
    EXPECT_EQ(registry().findExact(L"", &prefix), nullptr);
    EXPECT_EQ(registry().findExact(L"", nullptr), nullptr);
    EXPECT_EQ(prefix, L"untouched");
    EXPECT_EQ(registry().findCaseInsensitive(L""), nullptr);
    EXPECT_EQ(unitOf(L""), nullptr);
}

TEST(SimpleUnitRegistryTests, PrefixIsWhatStandsInFrontOfTheUnit) {
    expectInFreshProcess([] {
        std::wstring_view prefix;
        EXPECT_EQ(registry().findExact(L"mm", &prefix), UnitMeter::get(1.0));
        EXPECT_EQ(prefix, L"m");
        SimpleUnit const * const millimeter = UnitMeter::get(0.001);
        EXPECT_EQ(registry().findExact(L"mm", &prefix), millimeter);
        EXPECT_EQ(prefix, L"");
        EXPECT_EQ(registry().findExact(L"millimeter", &prefix), millimeter);
        EXPECT_EQ(prefix, L"");
        EXPECT_EQ(registry().findExact(L"xmm", &prefix), millimeter);
        EXPECT_EQ(prefix, L"x");
    });
}

TEST(SimpleUnitRegistryTests, PrefixIsNotJudged) {
    std::wstring_view prefix;
    EXPECT_EQ(registry().findExact(L"xm", &prefix), UnitMeter::get(1.0));
    EXPECT_EQ(prefix, L"x");
    EXPECT_EQ(registry().findExact(L"x y$", &prefix), UnitDollar::get());
    EXPECT_EQ(prefix, L"x y");
    EXPECT_EQ(registry().findExact(L"xm", nullptr), UnitMeter::get(1.0));
    EXPECT_EQ(registry().findExact(L"xq", &prefix), nullptr);
    EXPECT_EQ(prefix, L"x y");
}

TEST(SimpleUnitRegistryTests, WholeTextBeatsAPrefix) {
    struct Row {
        wchar_t const * text;
        SimpleUnit const * unit;
    };
    Row const rows[] = {
        {L"min", UnitMinute::get()},        {L"cd", UnitCandela::get(1.0)},
        {L"pt", UnitPint::get()},           {L"mil", UnitMil::get()},
        {L"mi", UnitMile::get()},           {L"hp", UnitHorsePower::get()},
        {L"Pa", UnitPascal::get(1.0)},      {L"ft", UnitFoot::get()},
        {L"yd", UnitYard::get()},           {L"mps", UnitMetersPerSecond::get(1.0)},
        {L"fps", UnitFeetPerSecond::get()}, {L"grad", UnitGrad::get()},
        {L"\u00B0", UnitDegree::get()},     {L"\u00B5", UnitMicron::get()},
        {L"\"", UnitInch::get()},           {L"$", UnitDollar::get()},
    };
    for (Row const & row : rows) {
        std::wstring_view prefix = L"?";
        EXPECT_EQ(registry().findExact(row.text, &prefix), row.unit)
            << testing::PrintToString(row.text);
        EXPECT_EQ(prefix, L"");
    }
}

TEST(SimpleUnitRegistryTests, LongestTailWins) {
    std::wstring_view prefix;
    EXPECT_EQ(registry().findExact(L"xmin", &prefix), UnitMinute::get());
    EXPECT_EQ(prefix, L"x");
    EXPECT_EQ(registry().findExact(L"inch$", &prefix), UnitDollar::get());
    EXPECT_EQ(prefix, L"inch");
    EXPECT_EQ(registry().findExact(L"kilonewton", &prefix)->identifier(),
              UnitNewton::staticIdentifier());
}

TEST(SimpleUnitRegistryTests, EveryNameAbbreviationAndSymbolFindsItsUnit) {
    std::vector<SimpleUnit const *> const units = catalogueUnits();
    ASSERT_EQ(units.size(), std::size(c_catalogue));
    for (std::size_t i = 0; i < units.size(); ++i) {
        UnitTables::CatalogueRow const & row = c_catalogue[i];
        EXPECT_EQ(registry().findExact(row.name, nullptr), units[i]) << row.identifier;
        EXPECT_EQ(registry().findExact(row.abbreviation, nullptr), units[i]) << row.identifier;
        if (row.symbol[0]) {
            EXPECT_EQ(registry().findExact(row.symbol, nullptr), units[i]) << row.identifier;
        }
    }
}

// With all clones there, each of their spellings is a whole text.
TEST(SimpleUnitRegistryTests, EveryPrefixedSpellingFindsItsClone) {
    for (UnitTables::CatalogueRow const & row : c_catalogue) {
        if (!row.magnitudes) continue;
        SimpleUnit const * const unit = registry().findExact(row.name, nullptr);
        for (PrefixRow const & prefix : c_prefixes) {
            SimpleUnit const * const clone =
                registry().findOrClone(unit->identifier(), prefix.magnitude);
            std::wstring const name = std::wstring(prefix.name) + row.name;
            std::wstring const abbreviation = std::wstring(prefix.abbreviation) + row.abbreviation;
            EXPECT_EQ(registry().findExact(name, nullptr), clone) << testing::PrintToString(name);
            EXPECT_EQ(registry().findExact(abbreviation, nullptr), clone)
                << testing::PrintToString(abbreviation);
            EXPECT_EQ(unitOf(name), clone);
            EXPECT_EQ(unitOf(abbreviation), clone);
        }
    }
}

TEST(SimpleUnitRegistryTests, PrefixesAreReadInFullAndInShort) {
    expectInFreshProcess([] {
        SimpleUnit const * const kilometer = unitOf(L"km");
        ASSERT_NE(kilometer, nullptr);
        EXPECT_EQ(kilometer->magnitude(), 1000.0);
        EXPECT_EQ(kilometer, UnitMeter::get(1000.0));
        for (wchar_t const * text : {L"kilometer", L"kmeter", L"kilom", L"km"})
            EXPECT_EQ(unitOf(text), kilometer) << testing::PrintToString(text);
        EXPECT_EQ(unitOf(L"kA"), UnitAmp::get(1000.0));
        EXPECT_EQ(unitOf(L"kmole"), UnitMole::get(1000.0));
        EXPECT_EQ(unitOf(L"kMole"), UnitMole::get(1000.0));
        EXPECT_EQ(unitOf(L"kcandela"), UnitCandela::get(1000.0));
        EXPECT_EQ(unitOf(L"micros"), UnitSecond::get(1e-6));
        EXPECT_EQ(unitOf(L"dal"), UnitLiter::get(10.0));
        for (wchar_t const * text : {L"1", L"KM", L"xm", L"kin", L"kinch", L"k", L"kilo",
                                     L"kilo meter", L"uns", L" m", L"m "})
            EXPECT_EQ(unitOf(text), nullptr) << testing::PrintToString(text);
    });
}

// The magnitude of the unit after the prefix is dropped.
TEST(SimpleUnitRegistryTests, PrefixOfAPrefixedUnitTakesItsPlace) {
    expectInFreshProcess([] {
        // "kc" isn't a prefix as long as "cm" isn't a unit of its own.
        EXPECT_EQ(unitOf(L"kcm"), nullptr);
        ASSERT_EQ(unitOf(L"cm"), UnitMeter::get(0.01));
        EXPECT_EQ(unitOf(L"kcm"), UnitMeter::get(1000.0));
        EXPECT_EQ(unitOf(L"kkm"), UnitMeter::get(1000.0));
    });
}

// What a rare word means depends on which prefixed units exist.
TEST(SimpleUnitRegistryTests, RareWordChangesWithThePrefixedUnits) {
    expectInFreshProcess([] {
        EXPECT_EQ(unitOf(L"Gal"), UnitGallon::get());
        EXPECT_EQ(unitOf(L"al"), UnitLiter::get(1e-18));
        EXPECT_EQ(unitOf(L"Gal"), UnitLiter::get(1e9));
        EXPECT_EQ(unitOf(L"gal"), UnitGallon::get());
    });
}

TEST(SimpleUnitRegistryTests, CaseIsFreeWhereNoPrefixIsTaken) {
    struct Row {
        wchar_t const * text;
        SimpleUnit const * unit;
    };
    Row const rows[] = {
        {L"IN", UnitInch::get()},
        {L"in", UnitInch::get()},
        {L"INCH", UnitInch::get()},
        {L"InCH", UnitInch::get()},
        {L"c", UnitCelsius::get()},
        {L"f", UnitFarenheit::get()},
        {L"F", UnitFarenheit::get()},
        {L"GRAD", UnitGrad::get()},
        {L"DOLLAR", UnitDollar::get()},
        {L"milesperhour", UnitMilesPerHour::get()},
        {L"MPH", UnitMilesPerHour::get()},
        {L"NAUTICALMILE", UnitNauticalMile::get()},
        {L"btu", UnitBTU::get()},
        {L"\u00B0", UnitDegree::get()},
        {L"FL_OZ", UnitOunceVolume::get()},
        // Units that take prefixes must be written in their exact case.
        {L"M", nullptr},
        {L"m", nullptr},
        {L"METER", nullptr},
        {L"meter", nullptr},
        {L"PA", nullptr},
        {L"mole", nullptr},
        // Second and siemens.
        {L"s", nullptr},
        {L"S", nullptr},
        {L"inc", nullptr},
        {L"inche", nullptr},
        {L"inches", nullptr},
        {L"kin", nullptr},
    };
    for (Row const & row : rows)
        EXPECT_EQ(registry().findCaseInsensitive(row.text), row.unit)
            << testing::PrintToString(row.text);
}

TEST(SimpleUnitRegistryTests, TypedWordsFollowTheRulesOfCase) {
    struct Row {
        wchar_t const * text;
        SimpleUnit const * unit;
    };
    Row const rows[] = {
        {L"in", UnitInch::get()},     {L"inch", UnitInch::get()}, {L"IN", UnitInch::get()},
        {L"INCH", UnitInch::get()},   {L"InCH", UnitInch::get()}, {L"c", UnitCelsius::get()},
        {L"f", UnitFarenheit::get()}, {L"CM", nullptr},           {L"M", nullptr},
        {L"METER", nullptr},          {L"Meter", nullptr},
    };
    for (Row const & row : rows)
        EXPECT_EQ(unitOf(row.text), row.unit) << testing::PrintToString(row.text);
}

// A locale in which the dotted capital I is the capital of i, as in Turkish texts.
class DottedCapital : public std::ctype<wchar_t> {
    using std::ctype<wchar_t>::do_toupper;
    wchar_t do_toupper(wchar_t c) const override {
        return c == L'\u0130' ? L'I' : std::ctype<wchar_t>::do_toupper(c);
    }
};

TEST(SimpleUnitRegistryTests, CaseIsFoldedByTheGlobalLocale) {
    EXPECT_EQ(registry().findCaseInsensitive(L"\u0130N"), nullptr);
    std::locale const before =
        std::locale::global(std::locale(std::locale::classic(), new DottedCapital));
    SimpleUnit const * const found = registry().findCaseInsensitive(L"\u0130N");
    std::locale::global(before);
    EXPECT_EQ(found, UnitInch::get());
}

// Two units that match make the lookup null; one unit that matches twice doesn't ("grad").
TEST(SimpleUnitRegistryTests, AmbiguousCaseIsNoUnit) {
    expectInFreshProcess([] {
        EXPECT_EQ(registry().findCaseInsensitive(L"Pt"), UnitPint::get());
        // A petatesla is "PT".
        EXPECT_EQ(unitOf(L"PT"), UnitTesla::get(1e15));
        EXPECT_EQ(registry().findCaseInsensitive(L"Pt"), nullptr);
        EXPECT_EQ(registry().findCaseInsensitive(L"pt"), nullptr);
        EXPECT_EQ(unitOf(L"pt"), UnitPint::get());
        EXPECT_EQ(registry().findCaseInsensitive(L"grad"), UnitGrad::get());
    });
}

TEST(SimpleUnitRegistryTests, NameAndAbbreviationOfTwoUnitsAreAmbiguousToo) {
    expectInFreshProcess([] {
        StringTable::catalogueDirectory(VN_TEST_CATALOGUES);
        StringTable::language("eo");
        EXPECT_EQ(registry().findCaseInsensitive(L"FOOT"), UnitFoot::get());
        // In this language "FOO" is the short kilo, and a kilotesla is abbreviated "FOOT".
        SimpleUnit const * const kilotesla = UnitTesla::get(1000.0);
        EXPECT_EQ(kilotesla->abbreviation(UnitDisplaySettings::standard()), L"FOOT");
        EXPECT_EQ(registry().findCaseInsensitive(L"FOOT"), nullptr);
        EXPECT_EQ(unitOf(L"FOOT"), kilotesla);
        EXPECT_EQ(unitOf(L"foot"), UnitFoot::get());
        EXPECT_EQ(unitOf(L"Foot"), nullptr);
    });
}

TEST(SimpleUnitRegistryTests, EarliestRowOfADimensionIsItsSimpleUnit) {
    struct Row {
        ComplexUnit units;
        SimpleUnit const * simple;
    };
    Row const rows[] = {
        {complexUnit({L"cm"}), UnitMeter::get(1.0)},
        {complexUnit({L"mile"}), UnitMeter::get(1.0)},
        {complexUnit({L"kg"}, {L"cm", L"s", L"s"}), UnitPascal::get(1.0)},
        {complexUnit({L"mho"}), UnitSiemens::get(1.0)},
        {complexUnit({L"A"}, {L"V"}), UnitSiemens::get(1.0)},
        {complexUnit({}), UnitSteradian::get(1.0)},
        {complexUnit({L"cm"}, {L"in"}), UnitSteradian::get(1.0)},
        {complexUnit({L"deg"}), UnitRadian::get()},
        {complexUnit({L"lm"}), UnitCandela::get(1.0)},
        {complexUnit({L"m"}, {L"s"}), UnitMetersPerSecond::get(1.0)},
        {complexUnit({L"in", L"in"}), UnitAcre::get()},
        {complexUnit({L"gal"}), UnitLiter::get(1.0)},
        {complexUnit({L"kg", L"m"}, {L"s", L"s"}), UnitNewton::get(1.0)},
        {complexUnit({L"C"}), UnitKelvin::get(1.0)},
        {complexUnit({}, {L"s"}), UnitHertz::get(1.0)},
        {complexUnit({L"rad"}, {L"s"}), UnitRpm::get(1.0)},
        {complexUnit({L"s"}, {L"m"}), nullptr},
        {complexUnit({L"m", L"m", L"m", L"m"}), nullptr},
        {complexUnit({L"dol"}, {L"hr"}), nullptr},
    };
    for (Row const & row : rows)
        EXPECT_EQ(registry().findEquivalentSimpleUnit(row.units), row.simple)
            << testing::PrintToString(row.units.toString());
}

// A clone that stands before the catalogue unit in the list isn't taken.
TEST(SimpleUnitRegistryTests, SimpleUnitOfADimensionHasNoMagnitude) {
    UnitMeter::get(0.001);
    EXPECT_EQ(registry().findEquivalentSimpleUnit(complexUnit({L"mm"})), UnitMeter::get(1.0));
}

// A lookup looks no further than the longest spelling.
TEST(SimpleUnitRegistryTests, LongTextsAreLookedUp) {
    std::wstring text(10'000'000, L'x');
    std::wstring_view prefix;
    EXPECT_EQ(registry().findExact(text, &prefix), nullptr);
    EXPECT_EQ(registry().findCaseInsensitive(text), nullptr);
    EXPECT_EQ(unitOf(text), nullptr);
    text += L"meter";
    EXPECT_EQ(registry().findExact(text, &prefix), UnitMeter::get(1.0));
    EXPECT_EQ(prefix.size(), 10'000'000U);
    EXPECT_EQ(unitOf(text), nullptr);
    EXPECT_EQ(unitOf(std::wstring(10'000'000, L'k')), nullptr);
    // As many lookups as a long list of words would make.
    for (int i = 0; i < 10'000; ++i) EXPECT_EQ(registry().findCaseInsensitive(text), nullptr);
    for (int i = 0; i < 10'000; ++i) EXPECT_EQ(unitOf(text), nullptr);
}

TEST(SimpleUnitRegistryTests, OddCharactersAreNoUnits) {
    for (std::wstring const & text :
         {std::wstring(1, L'\0'), std::wstring(L"m\0", 2), std::wstring(L"\uFFFF"),
          std::wstring(L"\U0001D7D8"), std::wstring(L"\u2103"), std::wstring(L"\u03BC")})
        EXPECT_EQ(unitOf(text), nullptr) << testing::PrintToString(text);
}

TEST(SimpleUnitRegistryTests, WorksWithLockingSwitchedOff) {
    ScopedLockBase::lockingEnabled(false);
    SimpleUnit const * const clone = UnitMeter::get(77.5);
    SimpleUnit const * const again = UnitMeter::get(77.5);
    SimpleUnit const * const found = registry().findExact(L"inch", nullptr);
    ScopedLockBase::lockingEnabled(true);
    EXPECT_EQ(clone, again);
    EXPECT_EQ(clone->magnitude(), 77.5);
    EXPECT_EQ(found, UnitInch::get());
}

// Runs `work` on eight threads at once and hands each its number.
template <class Work>
void onEightThreads(Work const & work) {
    StartLine start(8);
    std::vector<std::jthread> threads;
    for (std::size_t number = 0; number < 8; ++number)
        threads.emplace_back([&start, &work, number] {
            start.arriveAndWait();
            work(number);
        });
}

// Everything that a thread finds, in an order that doesn't depend on the thread.
struct Found {
    std::vector<SimpleUnit const *> units;
    std::vector<ComplexUnit const *> complexUnits;

    bool operator==(Found const &) const = default;
};

// Looks up every prefix before every unit, by text and by magnitude, beginning somewhere else in
// each thread.
Found findEverything(std::size_t thread) {
    std::size_t const rows = std::size(c_catalogue);
    std::size_t const prefixes = std::size(c_prefixes);
    std::size_t const cells = rows * prefixes;
    Found found;
    found.units.resize(4 * cells);
    found.complexUnits.resize(2 * cells);
    for (std::size_t step = 0; step < cells; ++step) {
        std::size_t const cell = (step + thread * cells / 8) % cells;
        UnitTables::CatalogueRow const & row = c_catalogue[cell % rows];
        PrefixRow const & prefix = c_prefixes[cell / rows];
        SimpleUnit const * const unit = unitOf(row.name);
        found.units[4 * cell] = unit;
        found.complexUnits[2 * cell] = &unit->asComplexUnit();
        if (!row.magnitudes) continue;
        // "exabar" isn't read while there is an "abar" but no "exabar": where the name is also
        // the abbreviation, the clone is made by its magnitude.
        bool const byMagnitude =
            (thread + step) % 2 == 0 || std::wstring_view(row.name) == row.abbreviation;
        SimpleUnit const * clone =
            byMagnitude ? registry().findOrClone(unit->identifier(), prefix.magnitude)
                        : unitOf(std::wstring(prefix.name) + row.name);
        found.units[4 * cell + 1] = clone;
        found.units[4 * cell + 2] = unitOf(std::wstring(prefix.name) + row.name);
        found.units[4 * cell + 3] = registry().findOrClone(unit->identifier(), prefix.magnitude);
        found.complexUnits[2 * cell + 1] = &clone->asComplexUnit();
        if (step % 97 == 0) {
            allUnits();
            registry().findCaseInsensitive(L"InCH");
            registry().findEquivalentSimpleUnit(unit->asComplexUnit());
        }
    }
    return found;
}

void expectThreadsToAgree() {
    std::vector<Found> found(8);
    onEightThreads([&found](std::size_t thread) { found[thread] = findEverything(thread); });
    for (Found const & others : found) EXPECT_TRUE(others == found.front());
    std::size_t const rows = std::size(c_catalogue);
    for (std::size_t cell = 0; cell < rows * std::size(c_prefixes); ++cell) {
        UnitTables::CatalogueRow const & row = c_catalogue[cell % rows];
        ASSERT_NE(found.front().units[4 * cell], nullptr);
        EXPECT_EQ(*found.front().units[4 * cell]->identifier(), row.identifier);
        if (!row.magnitudes) continue;
        for (std::size_t i = 1; i < 4; ++i) {
            SimpleUnit const * const clone = found.front().units[4 * cell + i];
            ASSERT_NE(clone, nullptr);
            EXPECT_EQ(*clone->identifier(), row.identifier);
            EXPECT_EQ(clone->magnitude(), c_prefixes[cell / rows].magnitude);
        }
    }
    for (ComplexUnit const * const units : found.front().complexUnits)
        if (units) {
            EXPECT_TRUE(units->isBaseValid());
        }
}

TEST(SimpleUnitRegistryTests, ThreadsGetTheSameUnits) { expectThreadsToAgree(); }

// The first lookups, which index the catalogue, come from all threads at once.
TEST(SimpleUnitRegistryTests, FirstLookupsMayRace) { expectInFreshProcess(&expectThreadsToAgree); }

TEST(SimpleUnitRegistryTests, ThreadsRaceForOneClone) {
    // Magnitudes that no other test uses.
    static std::atomic<int> s_next{1};
    for (int round = 0; round < 200; ++round) {
        double const magnitude = 3e40 * s_next++;
        std::vector<SimpleUnit const *> clones(8);
        std::vector<ComplexUnit const *> complexUnits(8);
        onEightThreads([&](std::size_t thread) {
            clones[thread] = UnitMeter::get(magnitude);
            complexUnits[thread] = &clones[thread]->asComplexUnit();
        });
        ASSERT_NE(clones.front(), nullptr);
        EXPECT_EQ(clones, std::vector<SimpleUnit const *>(8, clones.front()));
        EXPECT_EQ(complexUnits, std::vector<ComplexUnit const *>(8, complexUnits.front()));
        EXPECT_EQ(clones.front()->magnitude(), magnitude);
    }
}

} // namespace

} // namespace Vn::Units
