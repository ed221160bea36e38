// The catalogue: every class and its values.

#include "Server/CommonData/Units/SimpleUnits.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Units {

namespace {

using UnitTables::c_catalogue;
using UnitTables::CatalogueRow;

// What the statics of one class say.
struct ClassStatics {
    std::string const * identifier;
    std::wstring const * name;
    std::wstring const * abbreviation;
    std::wstring const * symbol;
    double conversion;
    double offset;
    SimpleUnit const * object;
};

template <class ConcreteUnit>
concept TakesMagnitudes = requires {
    ConcreteUnit::get(1.0);
};

template <class ConcreteUnit>
concept StandsAlone = requires {
    ConcreteUnit::get();
};

template <class ConcreteUnit>
ClassStatics statics() {
    SimpleUnit const * object = nullptr;
    if constexpr (TakesMagnitudes<ConcreteUnit>)
        object = ConcreteUnit::get(1.0);
    else
        object = ConcreteUnit::get();
    return {ConcreteUnit::staticIdentifier(),
            &ConcreteUnit::c_name,
            &ConcreteUnit::c_abbreviation,
            &ConcreteUnit::c_symbol,
            ConcreteUnit::c_conversion,
            ConcreteUnit::c_offset,
            object};
}

// In catalogue order.
std::vector<ClassStatics> allStatics() {
    return {
        statics<UnitRadian>(),        statics<UnitDegree>(),
        statics<UnitGrad>(),          statics<UnitDollar>(),
        statics<UnitAmp>(),           statics<UnitMeter>(),
        statics<UnitMicron>(),        statics<UnitInch>(),
        statics<UnitFoot>(),          statics<UnitYard>(),
        statics<UnitMile>(),          statics<UnitNauticalMile>(),
        statics<UnitMil>(),           statics<UnitCandela>(),
        statics<UnitGram>(),          statics<UnitSlug>(),
        statics<UnitPoundMass>(),     statics<UnitOunceMass>(),
        statics<UnitTonMass>(),       statics<UnitMole>(),
        statics<UnitKelvin>(),        statics<UnitCelsius>(),
        statics<UnitFarenheit>(),     statics<UnitSecond>(),
        statics<UnitMinute>(),        statics<UnitHour>(),
        statics<UnitSteradian>(),     statics<UnitMetersPerSecond>(),
        statics<UnitFeetPerSecond>(), statics<UnitMilesPerHour>(),
        statics<UnitAcre>(),          statics<UnitCircularMil>(),
        statics<UnitLiter>(),         statics<UnitGallon>(),
        statics<UnitQuart>(),         statics<UnitPint>(),
        statics<UnitCup>(),           statics<UnitOunceVolume>(),
        statics<UnitPascal>(),        statics<UnitPSI>(),
        statics<UnitKSI>(),           statics<UnitBar>(),
        statics<UnitNewton>(),        statics<UnitDyne>(),
        statics<UnitLbForce>(),       statics<UnitOunceForce>(),
        statics<UnitTonForce>(),      statics<UnitWatt>(),
        statics<UnitHorsePower>(),    statics<UnitJoule>(),
        statics<UnitErg>(),           statics<UnitCalorie>(),
        statics<UnitBTU>(),           statics<UnitRpm>(),
        statics<UnitLumen>(),         statics<UnitLux>(),
        statics<UnitVolt>(),          statics<UnitOhm>(),
        statics<UnitCoulomb>(),       statics<UnitFarad>(),
        statics<UnitSiemens>(),       statics<UnitMho>(),
        statics<UnitWeber>(),         statics<UnitMaxwell>(),
        statics<UnitTesla>(),         statics<UnitGamma>(),
        statics<UnitGauss>(),         statics<UnitHenry>(),
        statics<UnitOersted>(),       statics<UnitHertz>(),
        statics<UnitPoise>(),
    };
}

std::uint64_t bits(double value) { return std::bit_cast<std::uint64_t>(value); }

TEST(SimpleUnitsTests, EachClassHasTheValuesOfItsRow) {
    std::vector<ClassStatics> const classes = allStatics();
    ASSERT_EQ(classes.size(), std::size(c_catalogue));
    for (std::size_t i = 0; i < classes.size(); ++i) {
        CatalogueRow const & row = c_catalogue[i];
        ClassStatics const & of = classes[i];
        SCOPED_TRACE(row.identifier);
        EXPECT_EQ(row.position, static_cast<int>(i) + 1);
        EXPECT_EQ(*of.identifier, row.identifier);
        EXPECT_EQ(*of.name, row.name);
        EXPECT_EQ(*of.abbreviation, row.abbreviation);
        EXPECT_EQ(*of.symbol, row.symbol);
        EXPECT_EQ(bits(of.conversion), bits(row.factor));
        EXPECT_EQ(bits(of.offset), bits(row.offset));
    }
}

TEST(SimpleUnitsTests, EachObjectAnswersItsRow) {
    UnitDisplaySettings const & settings = UnitDisplaySettings::standard();
    std::vector<ClassStatics> const classes = allStatics();
    ASSERT_EQ(classes.size(), std::size(c_catalogue));
    for (std::size_t i = 0; i < classes.size(); ++i) {
        CatalogueRow const & row = c_catalogue[i];
        SimpleUnit const & unit = *classes[i].object;
        SCOPED_TRACE(row.identifier);
        EXPECT_EQ(unit.identifier(), classes[i].identifier);
        EXPECT_EQ(unit.simpleUnitType(), row.kind);
        EXPECT_EQ(unit.magnitude(), 1.0);
        EXPECT_EQ(unit.name(settings), row.name);
        EXPECT_EQ(unit.abbreviation(settings), row.abbreviation);
        EXPECT_EQ(unit.symbol(settings), row.symbol);
        EXPECT_EQ(unit.hasSymbol(), row.symbol[0] != L'\0');
        EXPECT_EQ(bits(unit.internalConversionFactor()), bits(row.factor));
        EXPECT_EQ(bits(unit.internalConversionOffset()), bits(row.offset));
        EXPECT_EQ(unit.supportsMagnitude(), row.magnitudes);
        EXPECT_TRUE(unit.isSimple());
        EXPECT_EQ(unit.unitType(), row.kind <= UnitTypeCurrency ? BaseUnitKind : CompositeUnitKind);
    }
}

TEST(SimpleUnitsTests, ThirtyUnitsTakePrefixes) {
    EXPECT_EQ(std::ranges::count(c_catalogue, true, &CatalogueRow::magnitudes),
              UnitTables::c_unitsWithMagnitudes);
    static_assert(TakesMagnitudes<UnitMeter> && !StandsAlone<UnitMeter>);
    static_assert(!TakesMagnitudes<UnitInch> && StandsAlone<UnitInch>);
}

// Classes rank in catalogue order: the listing and the sort of base units rest on it.
TEST(SimpleUnitsTests, IdentifiersRiseInCatalogueOrder) {
    std::vector<ClassStatics> const classes = allStatics();
    EXPECT_TRUE(std::ranges::is_sorted(classes, std::less<>(), &ClassStatics::identifier));
    std::vector<SimpleUnit const *> const units = catalogueUnits();
    ASSERT_EQ(units.size(), classes.size());
    for (std::size_t i = 0; i < units.size(); ++i) EXPECT_EQ(units[i], classes[i].object);
}

TEST(SimpleUnitsTests, IdentifiersAreDistinct) {
    std::set<std::string const *> identifiers;
    std::set<std::string> texts;
    for (ClassStatics const & of : allStatics()) {
        identifiers.insert(of.identifier);
        texts.insert(*of.identifier);
    }
    EXPECT_EQ(identifiers.size(), 71U);
    EXPECT_EQ(texts.size(), 71U);
}

TEST(SimpleUnitsTests, FactorsAgreeWithTheirRulesToTheLastBit) {
    double const pi = 3.141592653589793;
    struct Row {
        char const * rule;
        double factor;
        double byRule;
    };
    Row const rows[] = {
        {"foot", UnitFoot::c_conversion, 12 * UnitInch::c_conversion},
        {"yard", UnitYard::c_conversion, 36 * UnitInch::c_conversion},
        {"mile", UnitMile::c_conversion, 63360 * UnitInch::c_conversion},
        {"mil", UnitMil::c_conversion, UnitInch::c_conversion / 1000},
        {"ounce mass", UnitOunceMass::c_conversion, UnitPoundMass::c_conversion / 16},
        {"ton mass", UnitTonMass::c_conversion, UnitPoundMass::c_conversion * 2000},
        {"ounce force", UnitOunceForce::c_conversion, UnitLbForce::c_conversion / 16},
        {"ton force", UnitTonForce::c_conversion, UnitLbForce::c_conversion * 2000},
        {"quart", UnitQuart::c_conversion, UnitGallon::c_conversion / 4},
        {"pint", UnitPint::c_conversion, UnitGallon::c_conversion / 8},
        {"cup", UnitCup::c_conversion, UnitGallon::c_conversion / 16},
        {"ounce volume", UnitOunceVolume::c_conversion, UnitGallon::c_conversion / 128},
        {"ksi", UnitKSI::c_conversion, UnitPSI::c_conversion * 1000},
        {"feet per second", UnitFeetPerSecond::c_conversion, UnitFoot::c_conversion},
        {"miles per hour", UnitMilesPerHour::c_conversion, UnitMile::c_conversion / 3600.0},
        {"degree", UnitDegree::c_conversion, pi / 180},
        {"grad", UnitGrad::c_conversion, pi / 200},
        {"rpm", UnitRpm::c_conversion, 2 * pi / 60},
        {"farenheit", UnitFarenheit::c_conversion, 5.0 / 9.0},
        {"offset of farenheit", UnitFarenheit::c_offset, 273.16 - 32 * 5.0 / 9.0},
    };
    for (Row const & row : rows) EXPECT_EQ(bits(row.factor), bits(row.byRule)) << row.rule;
}

// Text keys must not take each other's place: no two units share a name, an abbreviation or a
// symbol, with any prefix.
TEST(SimpleUnitsTests, NamesAreUniqueInEachTable) {
    std::set<std::wstring> names;
    std::set<std::wstring> abbreviations;
    std::set<std::wstring> symbols;
    std::size_t withSymbol = 0;
    std::size_t spelled = 0;
    std::size_t shortSpelled = 0;
    for (CatalogueRow const & row : c_catalogue) {
        names.insert(row.name);
        abbreviations.insert(row.abbreviation);
        ++spelled;
        ++shortSpelled;
        if (row.symbol[0]) {
            symbols.insert(row.symbol);
            ++withSymbol;
        }
        if (!row.magnitudes) continue;
        for (UnitTables::PrefixRow const & prefix : UnitTables::c_prefixes) {
            names.insert(std::wstring(prefix.name) + row.name);
            abbreviations.insert(std::wstring(prefix.abbreviation) + row.abbreviation);
            ++spelled;
            ++shortSpelled;
        }
    }
    EXPECT_EQ(names.size(), spelled);
    EXPECT_EQ(abbreviations.size(), shortSpelled);
    EXPECT_EQ(withSymbol, 4U);
    EXPECT_EQ(symbols.size(), 4U);
}

TEST(SimpleUnitsTests, StaticsAreThereBeforeAnyLookup) {
    expectInFreshProcess([] {
        EXPECT_EQ(UnitMeter::c_name, L"meter");
        EXPECT_EQ(UnitPoise::c_abbreviation, L"poise");
        EXPECT_EQ(UnitInch::c_symbol, L"\"");
        EXPECT_EQ(UnitMilesPerHour::c_conversion, 44.704);
        EXPECT_EQ(UnitInch::get()->toInternal(1.0), 2.54);
        EXPECT_EQ(*UnitHertz::staticIdentifier(), "UnitHertz");
    });
}

} // namespace

} // namespace Vn::Units
