// The kinds of units and the internal unit of each.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Units {

namespace {

using UnitTables::c_baseKindRows;
using UnitTables::c_compositeKindRows;
using UnitTables::CompositeKindRow;

TEST(UnitKindsTests, KindsHaveTheirNumbers) {
    ASSERT_EQ(std::size(UnitTables::c_kinds), 31U);
    for (UnitTables::KindRow const & row : UnitTables::c_kinds)
        EXPECT_EQ(static_cast<int>(row.type), row.number) << row.key;
}

TEST(UnitKindsTests, EachBaseKindHasItsInternalUnit) {
    BaseUnit const * const units[] = {
        LengthUnit::staticInternalBaseUnit(),     MassUnit::staticInternalBaseUnit(),
        TimeUnit::staticInternalBaseUnit(),       TemperatureUnit::staticInternalBaseUnit(),
        CurrentUnit::staticInternalBaseUnit(),    SubstanceUnit::staticInternalBaseUnit(),
        LuminosityUnit::staticInternalBaseUnit(), AngleUnit::staticInternalBaseUnit(),
        CurrencyUnit::staticInternalBaseUnit(),
    };
    ASSERT_EQ(std::size(units), std::size(c_baseKindRows));
    for (std::size_t i = 0; i < std::size(units); ++i) {
        EXPECT_EQ(units[i]->simpleUnitType(), c_baseKindRows[i].type);
        EXPECT_EQ(*units[i]->identifier(), c_baseKindRows[i].identifier);
        EXPECT_EQ(units[i]->magnitude(), c_baseKindRows[i].magnitude);
        EXPECT_EQ(units[i]->toInternal(1.0), 1.0);
    }
    EXPECT_EQ(units[0], UnitMeter::get(0.01));
    EXPECT_EQ(units[1], UnitGram::get(1000.0));
    EXPECT_EQ(units[2], UnitSecond::get(1.0));
    EXPECT_EQ(units[3], UnitKelvin::get(1.0));
    EXPECT_EQ(units[4], UnitAmp::get(1.0));
    EXPECT_EQ(units[5], UnitMole::get(1.0));
    EXPECT_EQ(units[6], UnitCandela::get(1.0));
    EXPECT_EQ(units[7], UnitRadian::get());
    EXPECT_EQ(units[8], UnitDollar::get());
}

TEST(UnitKindsTests, EachBaseUnitNamesTheInternalUnitOfItsKind) {
    for (SimpleUnit const * const unit : catalogueUnits()) {
        if (unit->unitType() != BaseUnitKind) continue;
        auto const & row = c_baseKindRows[unit->simpleUnitType()];
        BaseUnit const * const internal = static_cast<BaseUnit const *>(unit)->internalBaseUnit();
        EXPECT_EQ(*internal->identifier(), row.identifier);
        EXPECT_EQ(internal->magnitude(), row.magnitude);
        EXPECT_EQ(internal->internalBaseUnit(), internal);
    }
}

std::vector<ComplexUnit const *> internalComplexUnits() {
    return {
        SolidAngleUnit::staticInternalComplexUnit(),
        SpeedUnit::staticInternalComplexUnit(),
        AreaUnit::staticInternalComplexUnit(),
        VolumeUnit::staticInternalComplexUnit(),
        PressureUnit::staticInternalComplexUnit(),
        ForceUnit::staticInternalComplexUnit(),
        PowerUnit::staticInternalComplexUnit(),
        EnergyUnit::staticInternalComplexUnit(),
        AngularVelocityUnit::staticInternalComplexUnit(),
        LuminousFluxUnit::staticInternalComplexUnit(),
        IlluminanceUnit::staticInternalComplexUnit(),
        ElectromotiveForceUnit::staticInternalComplexUnit(),
        ResistanceUnit::staticInternalComplexUnit(),
        ChargeUnit::staticInternalComplexUnit(),
        CapacitanceUnit::staticInternalComplexUnit(),
        ConductanceUnit::staticInternalComplexUnit(),
        MagneticFluxUnit::staticInternalComplexUnit(),
        MagneticFieldUnit::staticInternalComplexUnit(),
        InductanceUnit::staticInternalComplexUnit(),
        MagnetizingFieldUnit::staticInternalComplexUnit(),
        FrequencyUnit::staticInternalComplexUnit(),
        ViscosityUnit::staticInternalComplexUnit(),
    };
}

// The order within a list shows in the text.
TEST(UnitKindsTests, EachCompositeKindHasItsInternalProduct) {
    std::vector<ComplexUnit const *> const products = internalComplexUnits();
    ASSERT_EQ(products.size(), std::size(c_compositeKindRows));
    for (std::size_t i = 0; i < products.size(); ++i) {
        CompositeKindRow const & row = c_compositeKindRows[i];
        SCOPED_TRACE(static_cast<int>(row.type));
        EXPECT_EQ(static_cast<int>(row.type), static_cast<int>(i) + 9);
        EXPECT_EQ(abbreviations(products[i]->numerator()), row.numerator);
        EXPECT_EQ(abbreviations(products[i]->denominator()), row.denominator);
        EXPECT_EQ(products[i]->toString(), row.toString);
        EXPECT_DOUBLE_EQ(products[i]->baseConversionFactor(), 1.0);
        for (UnitSpan const list : {products[i]->numerator(), products[i]->denominator()})
            for (SimpleUnit const * const unit : list) EXPECT_EQ(unit->unitType(), BaseUnitKind);
    }
}

TEST(UnitKindsTests, EachCompositeUnitStandsForTheProductOfItsKind) {
    std::vector<ComplexUnit const *> const products = internalComplexUnits();
    std::size_t composites = 0;
    for (SimpleUnit const * const unit : catalogueUnits()) {
        if (unit->unitType() != CompositeUnitKind) continue;
        ++composites;
        ComplexUnit const * const product =
            static_cast<CompositeUnit const *>(unit)->internalComplexUnit();
        EXPECT_EQ(product, products[static_cast<std::size_t>(unit->simpleUnitType()) - 9]);
        EXPECT_TRUE(unit->asComplexUnit().isDimensionallyEquivalent(product));
        EXPECT_EQ(unit->internalConversionOffset(), 0.0);
        // One of it is its factor in products of internal units.
        EXPECT_DOUBLE_EQ(unit->asComplexUnit().baseConversionFactor(),
                         unit->internalConversionFactor());
    }
    EXPECT_EQ(composites, 45U);
}

// Shared objects are complete before anyone sees them, so that readers never write.
TEST(UnitKindsTests, InternalProductsAreCompleteWhenShared) {
    expectInFreshProcess([] {
        for (ComplexUnit const * const product : internalComplexUnits())
            EXPECT_TRUE(product->isBaseValid());
    });
    EXPECT_EQ(internalComplexUnits(), internalComplexUnits());
}

TEST(UnitKindsTests, SolidAngleIsAnEmptyUnit) {
    EXPECT_TRUE(SolidAngleUnit::staticInternalComplexUnit()->isEmpty());
    EXPECT_TRUE(complexUnit({L"sr"}).isUnitless());
    EXPECT_FALSE(complexUnit({L"sr"}).isEmpty());
}

// Values in composite units, from text to text.
TEST(UnitKindsTests, CompositeUnitsInExpressions) {
    struct Row {
        wchar_t const * expression;
        wchar_t const * context;
        wchar_t const * shown;
    };
    Row const rows[] = {
        {L"1 lumen + 1 candela / steradian", L"lumen", L"2.00 lm"},
        {L"1 lux m^2", L"lumen", L"1.00 lm"},
        {L"1 watt / ampere + 1 volt", L"V", L"2.00 V"},
        {L"10 weber / 2 ampere", L"henry", L"5.00 H"},
        {L"2coulomb/10V + 20 J / ((10 V)^2)", L"farad", L"0.40 farad"},
        {L"10 kampere / 10 cm", L"oersted", L"1256.637 oersted"},
        {L"10 Pa s", L"poise", L"100.00 poise"},
        {L"3 / s", L"Hz", L"3.00 Hz"},
        {L"2 rpm + 6 deg / s + 6.283 rad / min", L"rpm", L"4.00 rpm"},
        {L"5 * 2 kg m / s s", L"N", L"10.00 N"},
        {L"10V*2 min + 1E11 maxwell", L"weber", L"2200.00 Wb"},
        {L"5A/10V + 0.5 siemens", L"mho", L"1.00 mho"},
        {L"2 newton + 2E5 dyne", L"newton", L"4.00 N"},
        {L"1 J + 1E7 erg + 1 watt s", L"J", L"3.00 J"},
    };
    for (Row const & row : rows)
        EXPECT_EQ(shown(row.expression, UnitContext(std::wstring(row.context))), row.shown)
            << testing::PrintToString(row.expression);
}

// Nothing promotes a product to a composite unit by itself.
TEST(UnitKindsTests, ProductsStayAsTheyAreWritten) {
    struct Row {
        wchar_t const * expression;
        wchar_t const * shown;
    };
    Row const rows[] = {
        {L"1.2e-6 / K", L"1.200E-06 / K"},
        {L"30 mph * 1 hr", L"30.00 mph hr"},
        {L"10W/C", L"10.00 W / C"},
        {L"1 kg m / s s", L"1.00 kg m / s^2"},
    };
    for (Row const & row : rows)
        EXPECT_EQ(shown(row.expression, UnitContext()), row.shown)
            << testing::PrintToString(row.expression);
}

TEST(UnitKindsTests, SumsOfOneKindHaveTheirInternalValue) {
    struct Row {
        wchar_t const * expression;
        double internal;
    };
    Row const rows[] = {
        {L"2 newton + 2E5 dyne", 400.0},
        {L"1 J + 1E7 erg + 1 watt s", 30000.0},
        {L"1 lumen + 1 candela / steradian", 2.0},
        {L"10 W / C", 100000.0},
        {L"10 W / K", 100000.0},
        {L"10 W / F", 180000.0},
        {L"8 cm cm cm cm / cm", 8.0},
        {L"20C", 293.16},
        {L"68F", 293.16},
    };
    for (Row const & row : rows)
        EXPECT_NEAR(Expressions::Expression(row.expression).value().value_or(-1.0), row.internal,
                    1e-8)
            << testing::PrintToString(row.expression);
}

} // namespace

} // namespace Vn::Units
