// What every simple unit does with its row: conversions, identity, names, the line for diagnostics.

#include "Server/CommonData/Units/SimpleUnit.h"

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "Platform/Base/StringTable.h"
#include "Server/CommonData/Units/Utils.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Units {

namespace {

using UnitTables::c_prefixes;
using UnitTables::PrefixRow;
using Utils::essentiallyEqual;

std::uint64_t bits(double value) { return std::bit_cast<std::uint64_t>(value); }

// The catalogue units and their clones of every prefix.
std::vector<SimpleUnit const *> unitsOfAllMagnitudes() {
    std::vector<SimpleUnit const *> units = catalogueUnits();
    std::size_t const catalogue = units.size();
    for (std::size_t i = 0; i < catalogue; ++i) {
        if (!units[i]->supportsMagnitude()) continue;
        for (PrefixRow const & prefix : c_prefixes)
            units.push_back(
                SimpleUnitRegistry::get().findOrClone(units[i]->identifier(), prefix.magnitude));
    }
    return units;
}

TEST(SimpleUnitTests, EnumerationsHaveTheirNumbers) {
    EXPECT_EQ(BaseUnitKind, 0);
    EXPECT_EQ(CompositeUnitKind, 1);
    EXPECT_EQ(ComplexUnitKind, 2);
    EXPECT_EQ(ValueAndUnit, 0);
    EXPECT_EQ(ValueOnly, 1);
    EXPECT_EQ(UnitOnly, 2);
}

TEST(SimpleUnitTests, OneClassAndOneMagnitudeAreOneObject) {
    SimpleUnit const * const meter = SimpleUnitRegistry::get().findExact(L"meter", nullptr);
    EXPECT_EQ(UnitMeter::get(1.0), meter);
    EXPECT_EQ(UnitMeter::get(0.01), UnitMeter::get(0.01));
    EXPECT_NE(UnitMeter::get(0.01), meter);
    EXPECT_EQ(UnitInch::get(), UnitInch::get());
    EXPECT_EQ(UnitMeter::get(0.01)->identifier(), meter->identifier());
    EXPECT_EQ(UnitMeter::get(0.01)->magnitude(), 0.01);
}

TEST(SimpleUnitTests, CloneIsTheSameUnitButForItsMagnitude) {
    SimpleUnit const & meter = *UnitMeter::get(1.0);
    SimpleUnit const & kilometer = *UnitMeter::get(1000.0);
    EXPECT_EQ(kilometer.internalConversionFactor(), meter.internalConversionFactor());
    EXPECT_EQ(kilometer.internalConversionOffset(), meter.internalConversionOffset());
    EXPECT_EQ(kilometer.simpleUnitType(), UnitTypeLength);
    EXPECT_EQ(kilometer.unitType(), BaseUnitKind);
    EXPECT_TRUE(kilometer.supportsMagnitude());
}

TEST(SimpleUnitTests, UnitWithoutMagnitudesHasNoClone) {
    EXPECT_FALSE(UnitInch::get()->supportsMagnitude());
    for (SimpleUnit const * const unit : catalogueUnits()) {
        if (unit->supportsMagnitude()) continue;
        EXPECT_EQ(SimpleUnitRegistry::get().findOrClone(unit->identifier(), 10.0), nullptr);
        EXPECT_EQ(SimpleUnitRegistry::get().findOrClone(unit->identifier(), 1.0), unit);
    }
}

TEST(SimpleUnitTests, ConvertsAsTheRowsSay) {
    struct Row {
        double value;
        SimpleUnit const * unit;
        double internal;
    };
    Row const rows[] = {
        {1, UnitMeter::get(1.0), 100.0},
        {1, UnitMicron::get(), 0.0001},
        {1, UnitInch::get(), 2.54},
        {1, UnitFoot::get(), 30.48},
        {1, UnitYard::get(), 91.44},
        {1, UnitMile::get(), 160934.4},
        {1, UnitNauticalMile::get(), 185200.0},
        {1, UnitMil::get(), 0.00254},
        {1, UnitGram::get(1.0), 0.001},
        {1, UnitSlug::get(), 14.5939},
        {1, UnitPoundMass::get(), 0.4535924},
        {1, UnitOunceMass::get(), 0.028349525},
        {1, UnitTonMass::get(), 907.1848},
        {1, UnitMinute::get(), 60.0},
        {1, UnitHour::get(), 3600.0},
        {20, UnitCelsius::get(), 293.16},
        {68, UnitFarenheit::get(), 293.16},
        {-40, UnitCelsius::get(), 233.16},
        {-40, UnitFarenheit::get(), 233.16},
        {1, UnitDegree::get(), 0.017453292519943295},
        {1, UnitGrad::get(), 0.015707963267948967},
        {20, UnitDollar::get(), 20.0},
        {30, UnitMilesPerHour::get(), 1341.12},
        {20, UnitAmp::get(1000.0), 20000.0},
        {1, UnitPascal::get(1.0), 0.01},
        {1, UnitNewton::get(1.0), 100.0},
        {6890, UnitPascal::get(1.0), 68.9},
        {1, UnitPSI::get(), 68.9},
        {1, UnitKSI::get(), 68900.0},
        {1, UnitMeter::get(0.01), 1.0},
        {1, UnitGram::get(1000.0), 1.0},
    };
    for (Row const & row : rows) {
        EXPECT_TRUE(essentiallyEqual(row.unit->toInternal(row.value), row.internal))
            << row.value << " " << *row.unit->identifier() << " is "
            << row.unit->toInternal(row.value) << ", not " << row.internal;
        EXPECT_TRUE(essentiallyEqual(row.unit->toThisUnit(row.internal), row.value))
            << *row.unit->identifier();
    }
}

// The order of the operations is part of it, since the doubles differ otherwise.
TEST(SimpleUnitTests, ConvertsByTheFormulasToTheLastBit) {
    for (SimpleUnit const * const unit : unitsOfAllMagnitudes()) {
        SCOPED_TRACE(testing::PrintToString(unit));
        double const f = unit->internalConversionFactor();
        double const o = unit->internalConversionOffset();
        double const m = unit->magnitude();
        for (double const v : {0.0, 1.0, -1.0, 0.1, 1.0 / 3.0, 123456.789, -40.0, 1e-300, 1e200}) {
            EXPECT_EQ(bits(unit->toInternal(v)), bits((m * f) * v + o));
            EXPECT_EQ(bits(unit->toThisUnit(v)), bits((v - o) / (f * m)));
            EXPECT_EQ(bits(unit->toInternalNoOffset(v)), bits((f * m) * v));
            EXPECT_EQ(bits(unit->toThisUnitNoOffset(v)), bits(v / (f * m)));
        }
    }
}

TEST(SimpleUnitTests, OffsetShiftsTheResult) {
    SimpleUnit const & celsius = *UnitCelsius::get();
    EXPECT_EQ(celsius.toInternalNoOffset(1.0), 1.0);
    EXPECT_DOUBLE_EQ(celsius.toInternal(1.0), 274.16);
    EXPECT_DOUBLE_EQ(celsius.toThisUnit(1.0), -272.16);
    EXPECT_EQ(celsius.toThisUnitNoOffset(1.0), 1.0);
    EXPECT_EQ(UnitFarenheit::get()->toInternalNoOffset(9.0), 5.0);
}

TEST(SimpleUnitTests, ConversionsComeBack) {
    double const epsilon = std::numeric_limits<double>::epsilon();
    for (SimpleUnit const * const unit : unitsOfAllMagnitudes()) {
        SCOPED_TRACE(testing::PrintToString(unit));
        double const shift = std::fabs(unit->internalConversionOffset() /
                                       (unit->internalConversionFactor() * unit->magnitude()));
        for (double const v :
             {0.0, 1.0, -1.0, 1e-12, 0.7, 2.0 / 3.0, 3.14, 1e6, -98765.4321, 1e15}) {
            double const allowed = 4.0 * epsilon * (std::fabs(v) + 2.0 * shift);
            EXPECT_NEAR(unit->toThisUnit(unit->toInternal(v)), v, allowed);
            EXPECT_NEAR(unit->toThisUnitNoOffset(unit->toInternalNoOffset(v)), v,
                        4.0 * epsilon * std::fabs(v));
        }
    }
}

TEST(SimpleUnitTests, AbsurdValuesConvertWithoutHarm) {
    double const infinity = std::numeric_limits<double>::infinity();
    for (SimpleUnit const * const unit : catalogueUnits()) {
        EXPECT_TRUE(std::isnan(unit->toInternal(std::nan(""))));
        EXPECT_TRUE(std::isnan(unit->toThisUnit(std::nan(""))));
        EXPECT_EQ(unit->toInternal(infinity), infinity);
        EXPECT_EQ(unit->toThisUnit(-infinity), -infinity);
    }
}

TEST(SimpleUnitTests, KindsHaveTheirNamesAndKeys) {
    for (UnitTables::KindRow const & row : UnitTables::c_kinds) {
        SCOPED_TRACE(row.key);
        GlobalizedString const name = SimpleUnit::globalizedSimpleUnitTypeName(row.type);
        EXPECT_TRUE(name.isGlobalized());
        EXPECT_EQ(name.module(), "VnCommonData");
        EXPECT_EQ(name.key(), row.key);
        EXPECT_EQ(name.defaultText(), row.text);
        EXPECT_EQ(name.value(), row.text);
    }
    for (SimpleUnit const * const unit : catalogueUnits()) {
        auto const kind = static_cast<std::size_t>(unit->simpleUnitType());
        ASSERT_LT(kind, std::size(UnitTables::c_kinds));
        EXPECT_EQ(unit->simpleUnitTypeName(), UnitTables::c_kinds[kind].text);
        EXPECT_EQ(unit->globalizedSimpleUnitTypeName().key(), UnitTables::c_kinds[kind].key);
    }
}

TEST(SimpleUnitTests, KindOutsideTheTableIsAnInvalidUnitType) {
    GlobalizedString const name =
        SimpleUnit::globalizedSimpleUnitTypeName(static_cast<ESimpleUnitType>(31));
    EXPECT_FALSE(name.isGlobalized());
    EXPECT_EQ(name.value(), L"Invalid Unit Type");
}

// The entry's unit is complete when it is handed out for the first time.
void expectOneEntryEach() {
    for (SimpleUnit const * const unit : unitsOfAllMagnitudes()) {
        ComplexUnit const & units = unit->asComplexUnit();
        SimpleUnit const * lone = nullptr;
        EXPECT_TRUE(units.isSimpleUnit(&lone));
        EXPECT_EQ(lone, unit);
        EXPECT_TRUE(units.isBaseValid());
        EXPECT_EQ(&unit->asComplexUnit(), &units);
    }
}

TEST(SimpleUnitTests, UnitStandsAsAComplexUnitOfOneEntry) {
    expectInFreshProcess(&expectOneEntryEach);
}

TEST(SimpleUnitTests, DiagnosticLineOfABaseUnit) {
    struct Row {
        SimpleUnit const * unit;
        wchar_t const * line;
    };
    Row const rows[] = {
        {UnitMeter::get(1.0), L"BaseUnit Id: UnitMeter, Magnitude: 1, Name: meter, Internal of 1.0 "
                              L"= 0.01 m, 1.0 m = 100 "
                              L"Internal, internalBaseType (UnitMeter * 0.01)"},
        {UnitMeter::get(0.01),
         L"BaseUnit Id: UnitMeter, Magnitude: 0.01, Name: centimeter, Internal of 1.0 = 1 cm, 1.0 "
         L"cm = 1 Internal, internalBaseType (UnitMeter * 0.01)"},
        {UnitMile::get(), L"BaseUnit Id: UnitMile, Magnitude: 1, Name: mile, Internal of 1.0 = "
                          L"6.21371e-06 mi, 1.0 mi "
                          L"= 160934 Internal, internalBaseType (UnitMeter * 0.01)"},
        {UnitGram::get(1.0), L"BaseUnit Id: UnitGram, Magnitude: 1, Name: gram, Internal of 1.0 = "
                             L"1000 g, 1.0 g = 0.001 "
                             L"Internal, internalBaseType (UnitGram * 1000)"},
        {UnitCelsius::get(), L"BaseUnit Id: UnitCelsius, Magnitude: 1, Name: celsius, Internal of "
                             L"1.0 = -272.16 C, 1.0 C "
                             L"= 274.16 Internal, internalBaseType (UnitKelvin * 1)"},
        {UnitDegree::get(),
         L"BaseUnit Id: UnitDegree, Magnitude: 1, Name: degree, Internal of 1.0 = 57.2958 deg, 1.0 "
         L"deg = 0.0174533 Internal, internalBaseType (UnitRadian * 1)"},
        {UnitMole::get(1e-6),
         L"BaseUnit Id: UnitMole, Magnitude: 1e-06, Name: microMole, Internal of 1.0 = 1e+06 "
         L"micromole, 1.0 micromole = 1e-06 Internal, internalBaseType (UnitMole * 1)"},
    };
    for (Row const & row : rows) EXPECT_EQ(row.unit->toString(), row.line);
}

TEST(SimpleUnitTests, DiagnosticLineOfACompositeUnit) {
    struct Row {
        SimpleUnit const * unit;
        wchar_t const * line;
    };
    Row const rows[] = {
        {UnitNewton::get(1.0),
         L"CompositeUnit Id: UnitNewton, Magnitude: 1, Name: newton, Internal of 1.0 = 0.01 N, 1.0 "
         L"N "
         L"= 100 Internal, internally represented (kilogram*centimeter) / (second*second)"},
        {UnitNewton::get(1000.0),
         L"CompositeUnit Id: UnitNewton, Magnitude: 1000, Name: kilonewton, Internal of 1.0 = "
         L"1e-05 "
         L"kN, 1.0 kN = 100000 Internal, internally represented (kilogram*centimeter) / "
         L"(second*second)"},
        {UnitSteradian::get(1.0),
         L"CompositeUnit Id: UnitSteradian, Magnitude: 1, Name: steradian, Internal of 1.0 = 1 sr, "
         L"1.0 sr = 1 Internal, internally represented (1) / (1)"},
        {UnitHertz::get(1.0), L"CompositeUnit Id: UnitHertz, Magnitude: 1, Name: hertz, Internal "
                              L"of 1.0 = 1 Hz, 1.0 Hz = "
                              L"1 Internal, internally represented (1) / (second)"},
        {UnitMilesPerHour::get(),
         L"CompositeUnit Id: UnitMilesPerHour, Magnitude: 1, Name: MilesPerHour, Internal of 1.0 = "
         L"0.0223694 mph, 1.0 mph = 44.704 Internal, internally represented (centimeter) / "
         L"(second)"},
        {UnitOunceVolume::get(),
         L"CompositeUnit Id: UnitOunceVolume, Magnitude: 1, Name: ouncevolume, Internal of 1.0 = "
         L"0.0338138 fl_oz, 1.0 fl_oz = 29.5737 Internal, internally represented "
         L"(centimeter*centimeter*centimeter) / (1)"},
    };
    for (Row const & row : rows) EXPECT_EQ(row.unit->toString(), row.line);
}

// A C++ locale with a decimal comma and grouping.
class Grouping : public std::numpunct<wchar_t> {
    wchar_t do_decimal_point() const override { return L','; }
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(SimpleUnitTests, DiagnosticLineDoesntDependOnTheLocale) {
    std::wstring const line = UnitMile::get()->toString();
    std::wstring const composite = UnitGallon::get()->toString();
    std::locale const before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    std::wstring const inGrouping = UnitMile::get()->toString();
    std::wstring const compositeInGrouping = UnitGallon::get()->toString();
    std::locale::global(before);
    EXPECT_EQ(inGrouping, line);
    EXPECT_EQ(compositeInGrouping, composite);
}

TEST(SimpleUnitTests, KindsAndPrefixesAreTranslated) {
    expectInFreshProcess([] {
        StringTable::catalogueDirectory(VN_TEST_CATALOGUES);
        StringTable::language("de");
        EXPECT_EQ(UnitMeter::get(1.0)->simpleUnitTypeName(), L"L\u00E4nge");
        EXPECT_EQ(UnitMeter::get(1.0)->globalizedSimpleUnitTypeName().defaultText(), L"Length");
        EXPECT_EQ(UnitGram::get(1.0)->simpleUnitTypeName(), L"Mass");
        EXPECT_EQ(UnitMeter::get(0.01)->name(UnitDisplaySettings::standard()), L"Zentimeter");
        EXPECT_EQ(unitOf(L"Zentimeter"), UnitMeter::get(0.01));
        EXPECT_EQ(unitOf(L"centimeter"), nullptr);
    });
}

} // namespace

} // namespace Vn::Units
