// Products and quotients of units: the lists as written, and the base form that comparisons see.

#include "Server/CommonData/Units/ComplexUnit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Server/CommonData/Units/Utils.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"

namespace Vn::Units {

namespace {

using Utils::essentiallyEqual;

ComplexUnit baseOf(ComplexUnit const & units) {
    ComplexUnit base;
    units.produceBaseRepresentation(base);
    return base;
}

TEST(ComplexUnitTests, DefaultIsEmptyAndUnitless) {
    ComplexUnit const none;
    EXPECT_TRUE(none.isEmpty());
    EXPECT_TRUE(none.isUnitless());
    ComplexUnit const ratio = complexUnit({L"cm"}, {L"cm"});
    ComplexUnit const steradian = complexUnit({L"sr"});
    EXPECT_TRUE(none.isDimensionallyEquivalent(&ratio));
    EXPECT_TRUE(none.isDimensionallyEquivalent(&steradian));
    EXPECT_TRUE(ratio.isDimensionallyEquivalent(&none));
    EXPECT_EQ(none.toInternal(5.0), 5.0);
    EXPECT_EQ(none.toThisUnit(5.0), 5.0);
    EXPECT_EQ(none.unitType(), ComplexUnitKind);
    EXPECT_FALSE(none.isSimple());
    EXPECT_EQ(none.baseConversionFactor(), 1.0);
    EXPECT_TRUE(ComplexUnit::none().isEmpty());
    EXPECT_TRUE(ComplexUnit::none().isBaseValid());
}

TEST(ComplexUnitTests, EmptinessSpeaksOfTheLists) {
    EXPECT_FALSE(complexUnit({L"cm"}, {L"cm"}).isEmpty());
    EXPECT_TRUE(complexUnit({L"cm"}, {L"cm"}).isUnitless());
    EXPECT_FALSE(complexUnit({}, {L"s"}).isEmpty());
    EXPECT_TRUE(complexUnit({L"cm"}, {L"in"}).isUnitless());
    EXPECT_FALSE(complexUnit({L"cm"}).isUnitless());
}

TEST(ComplexUnitTests, UnitsAreAppendedInOrder) {
    ComplexUnit units(UnitSecond::get(1.0));
    units.addToNumerator(UnitInch::get());
    units.addToDenominator(UnitFoot::get());
    SimpleUnit const * const more[] = {UnitYard::get(), UnitMile::get()};
    units.addToNumerator(more);
    units.addToDenominator(more);
    EXPECT_EQ(abbreviations(units), L"s in yd mi / ft yd mi");
    EXPECT_EQ(units.factors(), 7U);
}

TEST(ComplexUnitTests, CopyTakesTheListsAndStartsItsBaseAfresh) {
    ComplexUnit const units = complexUnit({L"m"}, {L"s", L"s"});
    units.validateBaseIfNecessary();
    ComplexUnit const copy(units);
    EXPECT_TRUE(copy.isIdentical(&units));
    EXPECT_FALSE(copy.isBaseValid());
    ComplexUnit assigned = complexUnit({L"kg"});
    assigned.validateBaseIfNecessary();
    assigned = units;
    EXPECT_TRUE(assigned.isIdentical(&units));
    EXPECT_FALSE(assigned.isBaseValid());
    EXPECT_TRUE(assigned.isEquivalent(&units));
    ComplexUnit const & self = assigned;
    assigned = self;
    EXPECT_TRUE(assigned.isIdentical(&units));
}

// Whether code outside the class may make one on the heap by itself.
template <class Value>
concept IsMadeByNew = requires {
    new Value;
};

TEST(ComplexUnitTests, HeapObjectsAreMadeAndDestroyed) {
    static_assert(!IsMadeByNew<ComplexUnit>);
    ComplexUnit * const simple = ComplexUnit::make(UnitInch::get());
    ComplexUnit * const copy = ComplexUnit::make(*simple);
    EXPECT_NE(copy, simple);
    EXPECT_TRUE(copy->isIdentical(simple));
    ComplexUnit::destroy(simple);
    EXPECT_EQ(abbreviations(*copy), L"in");
    ComplexUnit::destroy(copy);
    ComplexUnit * const empty = ComplexUnit::make();
    EXPECT_TRUE(empty->isEmpty());
    ComplexUnit::destroy(empty);
    ComplexUnit::destroy(nullptr);
}

TEST(ComplexUnitTests, EveryChangeInvalidatesTheBase) {
    ComplexUnit const other = complexUnit({L"kg"}, {L"s"});
    SimpleUnit const * const list[] = {UnitInch::get()};
    struct Row {
        char const * name;
        void (*change)(ComplexUnit &, ComplexUnit const &, UnitSpan);
        wchar_t const * after;
    };
    using Units = ComplexUnit;
    Row const rows[] = {
        {"addToNumerator",
         [](Units & u, Units const &, UnitSpan) { u.addToNumerator(UnitMil::get()); },
         L"m mil / ft"},
        {"addToDenominator",
         [](Units & u, Units const &, UnitSpan) { u.addToDenominator(UnitMil::get()); },
         L"m / ft mil"},
        {"addToNumerator of a list",
         [](Units & u, Units const &, UnitSpan l) { u.addToNumerator(l); }, L"m in / ft"},
        {"addToDenominator of a list",
         [](Units & u, Units const &, UnitSpan l) { u.addToDenominator(l); }, L"m / ft in"},
        {"multiplyBy", [](Units & u, Units const & o, UnitSpan) { u.multiplyBy(&o); },
         L"m kg / ft s"},
        {"divideBy", [](Units & u, Units const & o, UnitSpan) { u.divideBy(&o); }, L"m s / ft kg"},
        {"invert", [](Units & u, Units const &, UnitSpan) { u.invert(); }, L"ft / m"},
        {"assign", [](Units & u, Units const &, UnitSpan) { u.assign(UnitMil::get()); }, L"mil"},
        {"clear", [](Units & u, Units const &, UnitSpan) { u.clear(); }, L""},
    };
    for (Row const & row : rows) {
        ComplexUnit units = complexUnit({L"m"}, {L"ft"});
        units.validateBaseIfNecessary();
        ASSERT_TRUE(units.isBaseValid());
        row.change(units, other, UnitSpan(list));
        EXPECT_FALSE(units.isBaseValid()) << row.name;
        EXPECT_EQ(abbreviations(units), row.after) << row.name;
    }
}

TEST(ComplexUnitTests, BaseIsWorkedOutWhenAskedFor) {
    ComplexUnit const units = complexUnit({L"in"});
    EXPECT_FALSE(units.isBaseValid());
    EXPECT_EQ(units.baseConversionFactor(), 2.54);
    EXPECT_TRUE(units.isBaseValid());
    units.invalidateBase();
    EXPECT_FALSE(units.isBaseValid());
    ComplexUnit const other = complexUnit({L"ft"});
    EXPECT_TRUE(units.isDimensionallyEquivalent(&other));
    EXPECT_TRUE(units.isBaseValid());
    EXPECT_TRUE(other.isBaseValid());
}

TEST(ComplexUnitTests, KnowsALoneUnit) {
    SimpleUnit const * simple = nullptr;
    BaseUnit const * base = nullptr;
    ComplexUnit const centimeter = complexUnit({L"cm"});
    EXPECT_TRUE(centimeter.isSimpleUnit(&simple));
    EXPECT_EQ(simple, UnitMeter::get(0.01));
    EXPECT_TRUE(centimeter.isBaseUnit(&base));
    EXPECT_EQ(base, UnitMeter::get(0.01));
    EXPECT_TRUE(centimeter.isSimpleUnit(nullptr));
    EXPECT_TRUE(centimeter.isBaseUnit(nullptr));

    ComplexUnit const newton = complexUnit({L"N"});
    EXPECT_TRUE(newton.isSimpleUnit(&simple));
    EXPECT_EQ(simple, UnitNewton::get(1.0));
    base = nullptr;
    EXPECT_FALSE(newton.isBaseUnit(&base));
    EXPECT_EQ(base, nullptr);

    simple = nullptr;
    for (ComplexUnit const & units : {complexUnit({}), complexUnit({L"cm", L"cm"}),
                                      complexUnit({L"cm"}, {L"s"}), complexUnit({}, {L"s"})}) {
        EXPECT_FALSE(units.isSimpleUnit(&simple));
        EXPECT_FALSE(units.isBaseUnit(&base));
        EXPECT_EQ(simple, nullptr);
        EXPECT_EQ(base, nullptr);
    }
}

TEST(ComplexUnitTests, ComparisonsSeeAsMuchAsTheySay) {
    struct Row {
        ComplexUnit a;
        ComplexUnit b;
        bool dimensionallyEquivalent;
        bool equivalent;
        bool identical;
    };
    Row const rows[] = {
        {complexUnit({L"cm"}), complexUnit({L"in"}), true, false, false},
        {complexUnit({L"cm"}), complexUnit({L"cm"}), true, true, true},
        {complexUnit({L"S"}), complexUnit({L"mho"}), true, true, false},
        {complexUnit({L"lm"}), complexUnit({L"cd"}), true, true, false},
        {complexUnit({L"rpm"}), complexUnit({L"Hz"}), false, false, false},
        {complexUnit({L"rpm"}), complexUnit({L"rad"}, {L"s"}), true, false, false},
        {complexUnit({L"Hz"}), complexUnit({}, {L"s"}), true, true, false},
        {complexUnit({L"m", L"s"}), complexUnit({L"s", L"m"}), true, true, false},
        {complexUnit({L"km"}, {L"m"}), complexUnit({L"m"}, {L"km"}), true, false, false},
        {complexUnit({L"N"}), complexUnit({L"kg", L"m"}, {L"s", L"s"}), true, true, false},
        {complexUnit({L"C"}), complexUnit({L"K"}), true, false, false},
        {complexUnit({L"cd"}, {L"sr"}), complexUnit({L"lm"}), true, true, false},
        {complexUnit({L"m"}), complexUnit({}, {L"m"}), false, false, false},
        {complexUnit({L"m"}), complexUnit({L"m", L"m"}), false, false, false},
        {complexUnit({L"m", L"m"}, {L"m"}), complexUnit({L"m"}), true, true, false},
        {complexUnit({L"m", L"m"}), complexUnit({L"m", L"m"}), true, true, true},
        {complexUnit({L"rad"}), complexUnit({}), false, false, false},
        {complexUnit({L"sr"}), complexUnit({}), true, true, false},
    };
    for (Row const & row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.a.toString()) + " and " +
                     testing::PrintToString(row.b.toString()));
        EXPECT_EQ(row.a.isDimensionallyEquivalent(&row.b), row.dimensionallyEquivalent);
        EXPECT_EQ(row.b.isDimensionallyEquivalent(&row.a), row.dimensionallyEquivalent);
        EXPECT_EQ(row.a.isEquivalent(&row.b), row.equivalent);
        EXPECT_EQ(row.b.isEquivalent(&row.a), row.equivalent);
        EXPECT_EQ(row.a.isIdentical(&row.b), row.identical);
        EXPECT_EQ(row.b.isIdentical(&row.a), row.identical);
        EXPECT_TRUE(row.a.isDimensionallyEquivalent(&row.a));
        EXPECT_TRUE(row.a.isEquivalent(&row.a));
        EXPECT_TRUE(row.a.isIdentical(&row.a));
    }
}

// The tolerance of factors is absolute: it takes a nanometre for a picometre.
TEST(ComplexUnitTests, FactorsCompareAbsolutely) {
    ComplexUnit const small = complexUnit({L"nm"}, {L"m", L"s"});
    ComplexUnit const smaller = complexUnit({L"pm"}, {L"m", L"s"});
    EXPECT_TRUE(small.isEquivalent(&smaller));
    EXPECT_FALSE(small.isIdentical(&smaller));
}

TEST(ComplexUnitTests, WorkedBaseForms) {
    struct Row {
        ComplexUnit units;
        wchar_t const * base;
        double factor;
    };
    Row const rows[] = {
        {complexUnit({L"cm"}), L"cm", 1.0},
        {complexUnit({L"in"}), L"cm", 2.54},
        {complexUnit({L"kg", L"m"}, {L"s", L"s"}), L"cm kg / s s", 100.0},
        {complexUnit({L"N"}), L"cm kg / s s", 100.0},
        {complexUnit({L"cm"}, {L"in"}), L"", 1 / 2.54},
        {complexUnit({L"sr"}), L"", 1.0},
        {complexUnit({L"deg"}), L"rad", 0.017453292519943295},
        {complexUnit({L"km"}, {L"m"}), L"", 1000.0},
        {complexUnit({L"C"}), L"K", 274.16},
        {complexUnit({L"W"}, {L"C"}), L"cm cm kg / K s s s", 10000.0 / 274.16},
        {complexUnit({L"cm", L"cm", L"cm", L"cm"}, {L"cm"}), L"cm cm cm", 1.0},
        {complexUnit({}, {L"Hz"}), L"s", 1.0},
        {complexUnit({L"farad"}), L"A A s s s s / cm cm kg", 0.0001},
        // All nine base kinds, in catalogue order.
        {complexUnit({L"s", L"K", L"mole", L"g", L"cd", L"m", L"A", L"dol", L"deg"}),
         L"rad dol A cm cd kg mole K s", 0.017453292519943295 * 0.001 * 100},
    };
    for (Row const & row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.units.toString()));
        EXPECT_EQ(abbreviations(baseOf(row.units)), row.base);
        EXPECT_NEAR(row.units.baseConversionFactor(), row.factor, 1e-12 * std::fabs(row.factor));
        EXPECT_FALSE(baseOf(row.units).isBaseValid());
    }
}

TEST(ComplexUnitTests, BaseRepresentationMayGoIntoTheUnitItself) {
    ComplexUnit units = complexUnit({L"N"}, {L"lbforce", L"ft"});
    units.produceBaseRepresentation(units);
    EXPECT_EQ(abbreviations(units), L" / cm");
}

TEST(ComplexUnitTests, MagnitudesDissolveIntoTheFactor) {
    ComplexUnit units = complexUnit({L"km"}, {L"m"});
    EXPECT_EQ(abbreviations(units), L"km / m");
    EXPECT_TRUE(units.isUnitless());
    EXPECT_DOUBLE_EQ(units.baseConversionFactor(), 1000.0);
}

TEST(ComplexUnitTests, InvertedRatioStaysUnitless) {
    ComplexUnit units = complexUnit({L"cm"}, {L"in"});
    EXPECT_DOUBLE_EQ(units.baseConversionFactor(), 1 / 2.54);
    units.invert();
    EXPECT_TRUE(units.isUnitless());
    EXPECT_DOUBLE_EQ(units.baseConversionFactor(), 2.54);
}

TEST(ComplexUnitTests, DividingIsMultiplyingByTheInverse) {
    ComplexUnit const force = complexUnit({L"N"});
    ComplexUnit inverse = complexUnit({L"m"}, {L"s"});
    ComplexUnit divided = force;
    divided.divideBy(&inverse);
    inverse.invert();
    ComplexUnit multiplied = force;
    multiplied.multiplyBy(&inverse);
    EXPECT_TRUE(divided.isIdentical(&multiplied));
}

TEST(ComplexUnitTests, OffsetCountsOnlyWhereTheUnitStandsAlone) {
    ComplexUnit const alone = complexUnit({L"C"});
    EXPECT_DOUBLE_EQ(alone.toInternal(20.0), 293.16);
    EXPECT_DOUBLE_EQ(alone.toThisUnit(293.16), 20.0);
    ComplexUnit const squared = complexUnit({L"C", L"C"});
    EXPECT_EQ(squared.toInternal(20.0), 20.0);
    EXPECT_EQ(squared.toThisUnit(20.0), 20.0);
    EXPECT_EQ(complexUnit({}, {L"C"}).toInternal(2.0), 2.0);
    EXPECT_NEAR(complexUnit({L"W"}, {L"C"}).toInternal(10.0), 100000.0, 1e-8);
    EXPECT_NEAR(complexUnit({L"W"}, {L"K"}).toInternal(10.0), 100000.0, 1e-8);
    EXPECT_NEAR(complexUnit({L"W"}, {L"F"}).toInternal(10.0), 180000.0, 1e-8);
}

TEST(ComplexUnitTests, PowersAreRepeatedEntries) {
    ComplexUnit const units = complexUnit({L"cm", L"cm", L"cm", L"cm"}, {L"cm"});
    EXPECT_EQ(units.numerator().size(), 4U);
    EXPECT_EQ(units.denominator().size(), 1U);
    EXPECT_EQ(units.toInternal(8.0), 8.0);
    std::optional<ComplexUnit> const parsed =
        Expressions::Expression(L"8 cm cm cm cm / cm").units();
    ASSERT_TRUE(parsed.has_value());
    EXPECT_TRUE(parsed->isIdentical(&units));
}

// Factor by factor, in the order of the lists: the doubles differ otherwise.
TEST(ComplexUnitTests, ConvertsFactorByFactor) {
    struct Row {
        ComplexUnit units;
        double toInternal;
        double toThisUnit;
    };
    double const in = 2.54;
    double const lb = 0.4535924;
    double const mi = 160934.4;
    double const hr = 3600.0;
    Row const rows[] = {
        {complexUnit({L"in", L"lbmass", L"mi"}, {L"hr", L"in"}),
         ((((1.0 * in) * lb) * mi) / hr) / in * 7.0,
         ((((1.0 * (1.0 / in)) * (1.0 / lb)) * (1.0 / mi)) / (1.0 / hr)) / (1.0 / in) * 7.0},
        {complexUnit({}, {L"mi", L"lbmass"}), ((1.0 / mi) / lb) * 7.0,
         ((1.0 / (1.0 / mi)) / (1.0 / lb)) * 7.0},
        {complexUnit({L"mi", L"mi"}), (mi * mi) * 7.0, ((1.0 / mi) * (1.0 / mi)) * 7.0},
    };
    for (Row const & row : rows) {
        EXPECT_EQ(row.units.toInternal(7.0), row.toInternal);
        EXPECT_EQ(row.units.toThisUnit(7.0), row.toThisUnit);
    }
}

TEST(ComplexUnitTests, ConversionsComeBack) {
    std::vector<SimpleUnit const *> const units = catalogueUnits();
    for (std::size_t i = 0; i < units.size(); ++i) {
        ComplexUnit product(units[i]);
        product.addToNumerator(units[(i * 7 + 3) % units.size()]);
        product.addToDenominator(units[(i * 5 + 1) % units.size()]);
        for (double const v : {1.0, -2.5, 1e6}) {
            EXPECT_NEAR(product.toThisUnit(product.toInternal(v)), v, 1e-12 * std::fabs(v))
                << testing::PrintToString(product.toString());
        }
    }
}

// A relation of equivalence over all units: reflexive, symmetric, and whatever is equivalent to one
// member of a class is so to all.
TEST(ComplexUnitTests, DimensionalEquivalenceSortsAllUnitsIntoClasses) {
    std::vector<SimpleUnit const *> const units = catalogueUnits();
    std::vector<std::size_t> classOf(units.size());
    auto const equivalent = [&units](std::size_t a, std::size_t b) {
        return units[a]->asComplexUnit().isDimensionallyEquivalent(&units[b]->asComplexUnit());
    };
    std::size_t classes = 0;
    for (std::size_t i = 0; i < units.size(); ++i) {
        classOf[i] = i;
        for (std::size_t j = 0; j < i; ++j)
            if (equivalent(i, j)) {
                classOf[i] = classOf[j];
                break;
            }
        if (classOf[i] == i) ++classes;
    }
    for (std::size_t i = 0; i < units.size(); ++i)
        for (std::size_t j = 0; j < units.size(); ++j)
            EXPECT_EQ(equivalent(i, j), classOf[i] == classOf[j])
                << *units[i]->identifier() << " and " << *units[j]->identifier();
    // The 31 kinds, where a lumen has the dimension of a candela.
    EXPECT_EQ(classes, 30U);
    for (std::size_t i = 0; i < units.size(); ++i) {
        ESimpleUnitType const kind = units[i]->simpleUnitType();
        for (std::size_t j = 0; j < units.size(); ++j)
            if (units[j]->simpleUnitType() == kind) {
                EXPECT_EQ(classOf[i], classOf[j]);
            }
    }
}

TEST(ComplexUnitTests, BaseFormSettlesDimension) {
    for (SimpleUnit const * const unit : catalogueUnits()) {
        ComplexUnit const base = baseOf(unit->asComplexUnit());
        EXPECT_TRUE(base.isDimensionallyEquivalent(&unit->asComplexUnit()));
        EXPECT_TRUE(baseOf(base).isIdentical(&base));
        EXPECT_DOUBLE_EQ(base.baseConversionFactor(), 1.0);
    }
}

TEST(ComplexUnitTests, DiagnosticTextJoinsTheNames) {
    struct Row {
        ComplexUnit units;
        wchar_t const * text;
    };
    Row const rows[] = {
        {complexUnit({}), L"(1) / (1)"},
        {complexUnit({L"cm"}), L"(centimeter) / (1)"},
        {complexUnit({L"kg", L"m"}, {L"s", L"s"}), L"(kilogram*meter) / (second*second)"},
        {complexUnit({}, {L"m"}), L"(1) / (meter)"},
        {complexUnit({L"micron", L"N"}, {L"\""}), L"(micron*newton) / (inch)"},
    };
    for (Row const & row : rows) EXPECT_EQ(row.units.toString(), row.text);
}

TEST(ComplexUnitTests, LongListsCompareAndCancel) {
    ComplexUnit units;
    for (int i = 0; i < 100'000; ++i) {
        units.addToNumerator(UnitNewton::get(1.0));
        units.addToDenominator(UnitNewton::get(1.0));
    }
    EXPECT_TRUE(units.isUnitless());
    units.addToNumerator(UnitInch::get());
    ComplexUnit const length = complexUnit({L"cm"});
    EXPECT_TRUE(units.isDimensionallyEquivalent(&length));
    EXPECT_EQ(abbreviations(baseOf(units)), L"cm");
}

TEST(ComplexUnitTests, TolerancesAreAbsolute) {
    EXPECT_TRUE(essentiallyEqual(1.0, 1.000000009));
    EXPECT_FALSE(essentiallyEqual(1.0, 1.00000002));
    EXPECT_FALSE(essentiallyEqual(1e15, 1e15 + 1.0));
    EXPECT_TRUE(essentiallyEqual(-1e-9, 1e-9));
    EXPECT_TRUE(Utils::essentiallyZero(9.9e-9));
    EXPECT_TRUE(Utils::essentiallyZero(-9.9e-9));
    EXPECT_FALSE(Utils::essentiallyZero(1e-8));
    EXPECT_FALSE(Utils::essentiallyZero(-1.1e-8));
    EXPECT_TRUE(Utils::preciselyZero(9.9e-11));
    EXPECT_FALSE(Utils::preciselyZero(1e-10));
    EXPECT_FALSE(Utils::preciselyZero(-1e-9));
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(Utils::isFiniteNumber(0.0));
    EXPECT_TRUE(Utils::isFiniteNumber(std::numeric_limits<double>::max()));
    EXPECT_FALSE(Utils::isFiniteNumber(infinity));
    EXPECT_FALSE(Utils::isFiniteNumber(-infinity));
    EXPECT_FALSE(Utils::isFiniteNumber(std::nan("")));
    EXPECT_FALSE(Utils::essentiallyZero(std::nan("")));
    EXPECT_FALSE(essentiallyEqual(infinity, infinity));
}

// Shared units are complete when they are published, so that all threads may compare them.
TEST(ComplexUnitTests, SharedUnitsAreReadFromManyThreads) {
    std::vector<SimpleUnit const *> const units = catalogueUnits();
    std::vector<std::size_t> counts(8);
    std::vector<std::jthread> threads;
    for (std::size_t & count : counts)
        threads.emplace_back([&units, &count] {
            for (SimpleUnit const * const a : units)
                for (SimpleUnit const * const b : units)
                    if (a->asComplexUnit().isDimensionallyEquivalent(&b->asComplexUnit())) ++count;
            for (SimpleUnit const * const a : units)
                if (a->unitType() == CompositeUnitKind &&
                    static_cast<CompositeUnit const *>(a)->internalComplexUnit()->isUnitless())
                    ++count;
            if (ComplexUnit::none().isUnitless()) ++count;
        });
    threads.clear();
    EXPECT_EQ(counts, std::vector<std::size_t>(8, counts.front()));
}

} // namespace

} // namespace Vn::Units
