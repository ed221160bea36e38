// Numbers with units.

#include "Server/CommonData/Units/Quantity.h"

#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Limits.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"

namespace Vn::Units {

namespace {

constexpr double c_infinity = std::numeric_limits<double>::infinity();
constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();

TEST(QuantityTests, HasANumberAndAUnit) {
    Quantity const length(2.5, "m");
    EXPECT_EQ(length.value(), 2.5);
    EXPECT_EQ(abbreviations(length.unit()), L"m");
    EXPECT_EQ(length.internal(), 250.0);
    EXPECT_EQ(Quantity(2.5, L"m"), length);
    EXPECT_EQ(Quantity(2.5, UnitMeter::get(1.0)), length);
    EXPECT_EQ(Quantity(2.5, complexUnit({L"m"})), length);
    EXPECT_EQ(Quantity::ofInternal(250.0, length.unit()), length);
    EXPECT_EQ(Quantity().value(), 0.0);
    EXPECT_TRUE(Quantity(3).unit().isEmpty());
    static_assert(std::is_nothrow_move_constructible_v<Quantity>);
    static_assert(sizeof(Quantity) <= sizeof(double) + 2 * sizeof(void *));
}

TEST(QuantityTests, AUnitThatIsNoneIsRefused) {
    for (char const * const text : {"metre", "2 m", "m +", "m (", "PI", "5", "\xFF"})
        EXPECT_THROW(Quantity(1, text), std::invalid_argument) << text;
    EXPECT_THROW(Quantity(1, L"metre"), std::invalid_argument);
}

TEST(QuantityTests, ConvertsWhereTheDimensionIsTheSame) {
    Quantity const speed = Quantity(10, "m") / Quantity(2, "s");
    EXPECT_EQ(speed.value(), 5.0);
    EXPECT_DOUBLE_EQ(*speed.value("km / hr"), 18.0);
    EXPECT_DOUBLE_EQ(*speed.value(L"km / hr"), 18.0);
    EXPECT_EQ(speed.in("km / hr")->toString(0), "18 km / hr");
    EXPECT_EQ(speed.in("m / s")->value(), 5.0);
    EXPECT_FALSE(speed.value("m"));
    EXPECT_FALSE(speed.in("kg"));
    EXPECT_FALSE(speed.value("not a unit"));
    EXPECT_FALSE(Quantity(1).in("m"));
    EXPECT_EQ(Quantity(1, "in").value(""), std::nullopt);
}

TEST(QuantityTests, SumsAreInTheUnitOfTheLeft) {
    EXPECT_EQ((Quantity(1, "m") + Quantity(50, "cm")).toString(), "1.5 m");
    EXPECT_EQ((Quantity(50, "cm") + Quantity(1, "m")).toString(), "150 cm");
    EXPECT_EQ((Quantity(1, "in") - Quantity(1, "in")).toString(), "0 in");
    EXPECT_EQ((Quantity(2) + Quantity(3)).toString(), "5");
    Quantity sum(0.1, "kg m / s^2");
    sum += Quantity(1, "N");
    EXPECT_DOUBLE_EQ(sum.value(), 1.1);
    EXPECT_EQ((Quantity(1) + Quantity(1, "m") / Quantity(1, "cm")).toString(), "101");
}

TEST(QuantityTests, DifferentDimensionsAreNotAdded) {
    Quantity length(1, "m");
    EXPECT_FALSE(length.isCompatible(Quantity(1, "kg")));
    EXPECT_THROW(length += Quantity(1, "kg"), std::invalid_argument);
    EXPECT_THROW(length -= Quantity(1), std::invalid_argument);
    EXPECT_THROW(length += Quantity(1, "m") * Quantity(1, "m"), std::invalid_argument);
    EXPECT_EQ(length, Quantity(1, "m"));
}

TEST(QuantityTests, ProductsKeepTheUnitsOfBothSides) {
    EXPECT_EQ((Quantity(2, "m") * Quantity(3, "cm")).toString(), "6 m cm");
    EXPECT_EQ((Quantity(6, "m") / Quantity(3, "m")).toString(), "2");
    EXPECT_TRUE((Quantity(6, "m") / Quantity(3, "m")).unit().isEmpty());
    EXPECT_EQ((Quantity(6, "m") / Quantity(3, "cm")).toString(), "200");
    EXPECT_EQ((Quantity(3, "N") * Quantity(2, "m") / Quantity(2, "N")).toString(), "3 m");
    EXPECT_EQ((Quantity(8, "kg m / s^2") * Quantity(2, "s") / Quantity(4, "m s")).toString(),
              "4 kg / s^2");
    EXPECT_EQ((2 * Quantity(3, "m")).toString(), "6 m");
    EXPECT_EQ((Quantity(3, "m") * Quantity(2)).toString(), "6 m");
    EXPECT_EQ((Quantity(3) * Quantity(2, "m")).toString(), "6 m");
    EXPECT_EQ((1 / Quantity(4, "s")).toString(), "0.25 / s");
    EXPECT_EQ((Quantity(3, "m") / 2).toString(), "1.5 m");
    EXPECT_EQ((-Quantity(3, "m")).toString(), "-3 m");
}

TEST(QuantityTests, PowersAreWhole) {
    EXPECT_EQ(Quantity(2, "m").power(3).toString(), "8 m^3");
    EXPECT_EQ(Quantity(2, "s").power(-2).toString(), "0.25 / s^2");
    EXPECT_EQ(Quantity(2, "m / s").power(-1).toString(), "0.5 s / m");
    EXPECT_EQ(Quantity(2, "m").power(0).toString(), "1");
    EXPECT_EQ(Quantity(2).power(10).toString(), "1024");
    EXPECT_EQ(Quantity(1).power(std::numeric_limits<int>::min()).toString(), "1");
}

TEST(QuantityTests, AUnitHasALimitOfFactors) {
    Quantity product(1, "m");
    for (std::size_t factors = 1; factors < Limits::c_unitFactors; factors *= 2) product *= product;
    EXPECT_EQ(product.unit().factors(), Limits::c_unitFactors);
    EXPECT_THROW(product *= Quantity(1, "m"), std::length_error);
    EXPECT_EQ(product.unit().factors(), Limits::c_unitFactors);
    EXPECT_EQ((product / product).toString(), "1");
    EXPECT_THROW(Quantity(1, "m / s").power(std::numeric_limits<int>::max()), std::length_error);
    EXPECT_THROW(Quantity(1, "m").power(std::numeric_limits<int>::min()), std::length_error);
}

TEST(QuantityTests, TemperaturesArePlacesOnAScale) {
    Quantity const room(20, "C");
    EXPECT_DOUBLE_EQ(*room.value("F"), 68.0);
    EXPECT_EQ(*room.value("C"), 20.0);
    EXPECT_EQ((room + Quantity(5, "K")).toString(), "25 C");
    EXPECT_EQ((room - Quantity(15, "C")).toString(), "5 K");
    EXPECT_EQ((Quantity(68, "F") - Quantity(50, "F")).in("K")->toString(6), "10.000000 K");
    EXPECT_DOUBLE_EQ((room - Quantity(50, "F")).value(), 10.0);
    EXPECT_EQ((room - Quantity(50, "F")).unitText(), "K");
    EXPECT_DOUBLE_EQ((Quantity(300, "K") - room).value(), 300.0 - 293.16);
    EXPECT_DOUBLE_EQ((Quantity(5, "K") + room).value(), 298.16);
    EXPECT_EQ((2 * room).toString(), "586.32 K");
    EXPECT_EQ((-room).toString(), "-293.16 K");
    EXPECT_EQ((room * Quantity(2, "J / K")).unitText(), "J");
    EXPECT_LT(room, Quantity(70, "F"));
    EXPECT_GT(room, Quantity(290, "K"));
}

TEST(QuantityTests, ComparesByInternalValues) {
    EXPECT_EQ(Quantity(1, "in"), Quantity(2.54, "cm"));
    EXPECT_EQ(Quantity(1, "m") / Quantity(1, "cm"), Quantity(100));
    EXPECT_LT(Quantity(1, "in"), Quantity(1, "ft"));
    EXPECT_GE(Quantity(1, "ft"), Quantity(12, "in"));
    EXPECT_NE(Quantity(1, "m"), Quantity(1, "kg"));
    EXPECT_NE(Quantity(1, "m"), Quantity(100));
    EXPECT_EQ(Quantity(1, "m") <=> Quantity(1, "kg"), std::partial_ordering::unordered);
    EXPECT_FALSE(Quantity(1, "m") < Quantity(2, "kg"));
    EXPECT_FALSE(Quantity(1, "m") >= Quantity(2, "kg"));
    EXPECT_NE(3 * Quantity(0.1, "m"), Quantity(0.3, "m"));
    EXPECT_TRUE((3 * Quantity(0.1, "m")).isNear(Quantity(0.3, "m")));
    EXPECT_FALSE(Quantity(1, "m").isNear(Quantity(1.001, "m")));
    EXPECT_TRUE(Quantity(1, "m").isNear(Quantity(1.001, "m"), 0.01));
    EXPECT_FALSE(Quantity(1, "m").isNear(Quantity(1, "kg")));
}

TEST(QuantityTests, WhatIsNotFiniteIsAsWithNumbers) {
    Quantity const most(c_infinity, "m");
    Quantity const none(c_nan, "m");
    EXPECT_EQ(most, Quantity(c_infinity, "cm"));
    EXPECT_TRUE(most.isNear(most));
    EXPECT_FALSE(most.isNear(Quantity(1, "m")));
    EXPECT_NE(none, none);
    EXPECT_FALSE(none.isNear(none));
    EXPECT_EQ(none <=> Quantity(1, "m"), std::partial_ordering::unordered);
    EXPECT_GT(most, Quantity(1e300, "m"));
    EXPECT_EQ((Quantity(1, "m") / Quantity(0, "s")).toString(), "INF m / s");
    EXPECT_EQ((-most).toString(), "-INF m");
    EXPECT_EQ((most - most).toString(2), "NAN m");
}

TEST(QuantityTests, EqualOnesHaveEqualHashes) {
    std::vector<Quantity> const quantities{Quantity(1, "in"),
                                           Quantity(2.54, "cm"),
                                           Quantity(0.0, "m"),
                                           Quantity(-0.0, "cm"),
                                           Quantity(100),
                                           Quantity(1, "m") / Quantity(1, "cm"),
                                           Quantity(1, "N"),
                                           Quantity(1, "kg m / s^2"),
                                           Quantity(1, "m kg / s^2"),
                                           Quantity(0, "kg"),
                                           Quantity(20, "C"),
                                           Quantity(293.16, "K"),
                                           Quantity(c_nan, "m"),
                                           Quantity(c_infinity, "m")};
    std::size_t equal = 0;
    for (Quantity const & a : quantities)
        for (Quantity const & b : quantities)
            if (a == b) {
                EXPECT_EQ(a.hash(), b.hash()) << a << ' ' << b;
                equal += &a != &b;
            }
    EXPECT_GE(equal, 12U);
    EXPECT_NE(Quantity(1, "m").hash(), Quantity(100, "kg").hash());
    EXPECT_NE(Quantity(1, "m").hash(), (1 / Quantity(1, "m")).hash());
    std::unordered_map<Quantity, int> counts;
    for (Quantity const & quantity : {Quantity(1, "ft"), Quantity(12, "in"), Quantity(1, "m")})
        ++counts[quantity];
    EXPECT_EQ(counts.size(), 2U);
}

TEST(QuantityTests, IsWrittenAsItIsRead) {
    struct Row {
        double value;
        char const * unit;
        char const * text;
    };
    Row const rows[] = {
        {2.54, "cm", "2.54 cm"},
        {1.0 / 3.0, "ft", "0.3333333333333333 ft"},
        {-5, "kg m / s^2", "-5 kg m / s^2"},
        {45, "deg", "45 deg"},
        {1e-7, "m", "1e-07 m"},
        {1e300, "m", "1e+300 m"},
        {1.5, "/ s", "1.5 / s"},
        {3, "", "3"},
        {20, "C", "20 C"},
        {5, "W / (m K)", "5 W / (m K)"},
        {2.5, "ouncevolume", "2.5 ouncevolume"}, // "fl_oz" isn't a word
        {2, "ouncevolume / s", "2 ouncevolume / second"},
        {1, "m^154", "1 m^154"},
        {2, "s^4096", "2 s^4096"},
    };
    for (Row const & row : rows) {
        Quantity const quantity(row.value, row.unit);
        EXPECT_EQ(quantity.toString(), row.text);
        std::optional<Quantity> const again = Quantity::parse(quantity.toString());
        ASSERT_TRUE(again) << row.text;
        EXPECT_TRUE(again->isNear(quantity, 1e-14)) << row.text << ' ' << again->toString();
    }
    EXPECT_EQ(Quantity(2.0 / 3.0, "in").toString(3), "0.667 in");
    EXPECT_EQ(Quantity(2, "in").toString(-1), "2 in");
    EXPECT_EQ(Quantity(1e308, "in").toString(1000).size(), 309U + 1 + 100 + 3);
    std::ostringstream out;
    out << Quantity(2, "in") << ", " << Quantity(3);
    EXPECT_EQ(out.str(), "2 in, 3");
}

TEST(QuantityTests, ParsesExpressions) {
    EXPECT_EQ(Quantity::parse("2 ft + 3 in")->in("in")->toString(), "27 in");
    EXPECT_EQ(Quantity::parse(L"6 * 7")->toString(), "42");
    EXPECT_FALSE(Quantity::parse("2 ft + 3 kg"));
    EXPECT_FALSE(Quantity::parse("1 / 0"));
    EXPECT_FALSE(Quantity::parse("2 \xFF"));
    EXPECT_FALSE(Quantity::parse(""));
}

TEST(QuantityTests, IsFormattedForTheUser) {
    EXPECT_EQ(Quantity(2, "in").formatted(ValueAndUnit, UnitDisplaySettings::standard()),
              L"2.00 in");
    EXPECT_EQ(Quantity(2, "in").formatted(UnitOnly, UnitDisplaySettings::standard()), L"in");
    UnitDisplaySettings german = UnitDisplaySettings::standard();
    german.useCommaAsDecimalPoint();
    EXPECT_EQ(Quantity(2.5, "kg").formatted(ValueAndUnit, german), L"2,50 kg");
}

TEST(QuantityTests, EveryUnitIsWrittenAsItIsRead) {
    std::size_t typed = 0;
    for (SimpleUnit const * const unit : catalogueUnits()) {
        Quantity const quantity(2.5, unit);
        std::optional<Quantity> const again = Quantity::parse(quantity.toString());
        ++typed;
        ASSERT_TRUE(again) << quantity;
        EXPECT_TRUE(again->isNear(quantity)) << quantity << ' ' << *again;
    }
    EXPECT_EQ(typed, 71U);
    // What has no name that is a word is in internal units.
    Quantity const area(2, UnitCircularMil::get());
    EXPECT_EQ(area.toString(), "1.01341508e-05 cm^2");
    EXPECT_EQ(area.toString(7), "0.0000101 cm^2");
    EXPECT_EQ(area.unitText(), "cm^2");
    EXPECT_EQ((area / Quantity(1, "s")).toString(), "1.01341508e-05 cm^2 / s");
}

// The language computes in internal units.
TEST(QuantityTests, WhatIsInfiniteInInternalUnitsIsWrittenButNotRead) {
    for (Quantity const & quantity : {Quantity(1e307, "km"), Quantity(1, "m").power(155)}) {
        EXPECT_TRUE(std::isinf(quantity.internal())) << quantity;
        EXPECT_FALSE(Quantity::parse(quantity.toString())) << quantity;
    }
    EXPECT_EQ(Quantity(1e307, "km").toString(), "1e+307 km");
    EXPECT_TRUE(Quantity::parse(Quantity(1e302, "km").toString()));
}

} // namespace

} // namespace Vn::Units
