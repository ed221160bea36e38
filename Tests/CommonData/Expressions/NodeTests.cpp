#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/TreeInternal.h"

#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>

#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::ComplexUnit;
using Units::SimpleUnit;
using Units::UnitContext;
using Units::UnitDisplaySettings;

// A tree that a test builds by hand.
class NodeTests : public testing::Test {
protected:
    ~NodeTests() override { Tree::destroy(m_tree); }

    template <class NodeClass, class... Arguments>
    NodeClass * make(Arguments &&... arguments) {
        return m_tree->make<NodeClass>(std::forward<Arguments>(arguments)...);
    }

    NumericNode * number(double value, ComplexUnit const * defaultUnits = nullptr) {
        return make<NumericNode>(defaultUnits, value);
    }
    // So many of `unit`.
    NumericNode * quantity(double value, SimpleUnit const * unit,
                           ComplexUnit const * defaultUnits = nullptr) {
        return make<NumericNode>(defaultUnits, unit->toInternal(value), &unit->asComplexUnit());
    }

    FunctionOpNode * function(FunctionId id, std::initializer_list<Node *> arguments,
                              ComplexUnit const * defaultUnits = nullptr) {
        FunctionOpNode * const node = make<FunctionOpNode>(defaultUnits, id);
        for (Node * const argument : arguments) node->append(argument);
        return node;
    }
    FunctionOpNode * function(FunctionId id, std::initializer_list<double> arguments) {
        FunctionOpNode * const node = make<FunctionOpNode>(nullptr, id);
        for (double const argument : arguments) node->append(number(argument));
        return node;
    }

    // The value, or NaN if there is none.
    static double valueOf(Node * node) {
        double value = 77.0;
        if (node->evaluate(value)) return value;
        EXPECT_EQ(value, 1.0);
        return c_none;
    }
    // The units in words, or a dash if they conflict.
    static std::wstring unitsOf(Node * node, UnitContext const & context = {}) {
        ComplexUnit units;
        return node->unitEvaluate(units, context) ? units.toString() : L"-";
    }
    static std::wstring rebuilt(Node * node) {
        return node->reconstructString(Units::ValueAndUnit, UnitDisplaySettings::standard(),
                                       nullptr);
    }

    static constexpr double c_none = -123456789.0;
    static constexpr double c_infinity = std::numeric_limits<double>::infinity();

    Tree * const m_tree = Tree::make();
    SimpleUnit const * const m_cm = Units::UnitMeter::get(0.01);
    SimpleUnit const * const m_inch = Units::UnitInch::get();
    SimpleUnit const * const m_kg = Units::UnitGram::get(1000.0);
    SimpleUnit const * const m_s = Units::UnitSecond::get(1.0);
    SimpleUnit const * const m_celsius = Units::UnitCelsius::get();
};

// ---- Numbers and constants ----------------------------------------------------------------------

TEST_F(NodeTests, NumberKeepsItsValueAndUnits) {
    NumericNode * const bare = number(2.5);
    EXPECT_EQ(valueOf(bare), 2.5);
    EXPECT_EQ(unitsOf(bare), L"(1) / (1)");
    EXPECT_TRUE(bare->ownUnits().isEmpty());
    EXPECT_FALSE(bare->hasDefaultUnits());
    EXPECT_FALSE(bare->unitOnly());
    NumericNode * const inches = quantity(2.0, m_inch);
    EXPECT_EQ(valueOf(inches), 5.08);
    EXPECT_EQ(unitsOf(inches), L"(inch) / (1)");
    EXPECT_EQ(&inches->tree(), m_tree);
}

TEST_F(NodeTests, NewValueDropsTheCache) {
    NumericNode * const node = number(2.0);
    EXPECT_EQ(valueOf(node), 2.0);
    node->value(3.0);
    EXPECT_EQ(node->value(), 3.0);
    EXPECT_EQ(valueOf(node), 3.0);
}

TEST_F(NodeTests, ValueThatIsNotFiniteDoesNotEvaluate) {
    EXPECT_EQ(valueOf(number(c_infinity)), c_none);
    EXPECT_EQ(valueOf(number(-c_infinity)), c_none);
    EXPECT_EQ(valueOf(number(std::numeric_limits<double>::quiet_NaN())), c_none);
    EXPECT_EQ(valueOf(number(std::numeric_limits<double>::max())),
              std::numeric_limits<double>::max());
}

TEST_F(NodeTests, ConstantTakesValueAndUnitsFromItsToken) {
    EXPECT_EQ(valueOf(make<ConstantNode>(nullptr, e_PI_CONSTANT)), 3.141592653589793);
    ConstantNode * const gravity = make<ConstantNode>(nullptr, e_GRAVITY_CONSTANT);
    EXPECT_EQ(valueOf(gravity), 980.665);
    EXPECT_EQ(unitsOf(gravity), L"(centimeter) / (second*second)");
    EXPECT_FALSE(gravity->hasAttachedUnits());
    ConstantNode * const attached = make<ConstantNode>(
        nullptr, e_GRAVITY_CONSTANT, &Units::UnitMeter::get(1000.0)->asComplexUnit());
    EXPECT_EQ(valueOf(attached), 98066500.0);
    EXPECT_EQ(unitsOf(attached), L"(centimeter*kilometer) / (second*second)");
    EXPECT_TRUE(attached->hasAttachedUnits());
    ConstantNode * const celsius =
        make<ConstantNode>(nullptr, e_PI_CONSTANT, &m_celsius->asComplexUnit());
    EXPECT_NEAR(valueOf(celsius), 276.3015926535898, 1e-12);
}

// ---- Default units ------------------------------------------------------------------------------

TEST_F(NodeTests, DefaultUnitsCountOnlyWhenActive) {
    NumericNode * const node = number(2.0, &m_inch->asComplexUnit());
    EXPECT_TRUE(node->hasDefaultUnits());
    EXPECT_EQ(valueOf(node), 2.0);
    EXPECT_EQ(unitsOf(node), L"(1) / (1)");
    node->useDefaultUnits(true);
    EXPECT_EQ(valueOf(node), 5.08);
    EXPECT_EQ(unitsOf(node), L"(inch) / (1)");
    node->useDefaultUnits(false);
    EXPECT_EQ(valueOf(node), 2.0);
    EXPECT_EQ(unitsOf(node), L"(1) / (1)");
}

TEST_F(NodeTests, ValueBeyondTheRangeInItsDefaultUnitsDoesNotEvaluate) {
    NumericNode * const node = number(1e308, &Units::UnitMeter::get(1000.0)->asComplexUnit());
    EXPECT_EQ(valueOf(node), 1e308);
    node->useDefaultUnits(true);
    EXPECT_EQ(valueOf(node), c_none);
}

TEST_F(NodeTests, DefaultUnitsCanBeReplaced) {
    NumericNode * const node = number(2.0);
    EXPECT_TRUE(node->defaultUnits().isEmpty());
    {
        ComplexUnit speed(m_cm);
        speed.addToDenominator(m_s);
        node->setDefaultUnits(speed); // it needn't live as long as the tree
    }
    EXPECT_TRUE(node->hasDefaultUnits());
    node->useDefaultUnits(true);
    EXPECT_EQ(unitsOf(node), L"(centimeter) / (second)");
}

TEST_F(NodeTests, AdoptsItsOwnDefaultIfThatHasTheDimension) {
    NumericNode * const node = number(2.0, &m_inch->asComplexUnit());
    EXPECT_TRUE(node->adoptUnits(m_cm->asComplexUnit(), UnitContext()));
    EXPECT_EQ(unitsOf(node), L"(inch) / (1)");
    EXPECT_EQ(valueOf(node), 5.08);
}

TEST_F(NodeTests, AdoptsWhatTheContextHasForTheDimension) {
    NumericNode * const node = number(2.0);
    EXPECT_TRUE(node->adoptUnits(m_cm->asComplexUnit(), UnitContext(m_inch)));
    EXPECT_TRUE(node->hasDefaultUnits());
    EXPECT_EQ(unitsOf(node), L"(inch) / (1)");
    NumericNode * const other = number(2.0, &m_kg->asComplexUnit());
    EXPECT_TRUE(other->adoptUnits(m_cm->asComplexUnit(), UnitContext(m_inch)));
    EXPECT_EQ(unitsOf(other), L"(inch) / (1)");
}

TEST_F(NodeTests, AdoptsNothingIfThereIsNeither) {
    NumericNode * const node = number(2.0, &m_kg->asComplexUnit());
    EXPECT_FALSE(node->adoptUnits(m_cm->asComplexUnit(), UnitContext()));
    EXPECT_FALSE(node->adoptUnits(m_cm->asComplexUnit(), UnitContext(m_s)));
    EXPECT_EQ(node->defaultUnits().toString(), L"(kilogram) / (1)");
    EXPECT_EQ(valueOf(node), 2.0);
    EXPECT_EQ(unitsOf(node), L"(1) / (1)");
}

TEST_F(NodeTests, NewUnitsClearOnlyTheNodeItself) {
    NumericNode * const left = number(2.0, &m_inch->asComplexUnit());
    Node * const sum = make<PlusOpNode>(nullptr, left, number(1.0));
    EXPECT_EQ(valueOf(sum), 3.0);
    left->useDefaultUnits(true);
    EXPECT_EQ(valueOf(sum), 3.0);
    EXPECT_EQ(valueOf(left), 5.08);
}

// ---- Operators ----------------------------------------------------------------------------------

TEST_F(NodeTests, UnaryNodesPassValueAndUnits) {
    Node * const minus = make<UnaryMinusOpNode>(nullptr, quantity(2.0, m_inch));
    EXPECT_EQ(valueOf(minus), -5.08);
    EXPECT_EQ(unitsOf(minus), L"(inch) / (1)");
    Node * const paren = make<ParenOpNode>(nullptr, quantity(2.0, m_inch));
    EXPECT_EQ(valueOf(paren), 5.08);
    EXPECT_EQ(unitsOf(paren), L"(inch) / (1)");
    EXPECT_EQ(valueOf(make<ParenOpNode>(nullptr, number(c_infinity))), c_none);
}

TEST_F(NodeTests, OperatorsCalculate) {
    EXPECT_EQ(valueOf(make<PlusOpNode>(nullptr, number(7.0), number(4.0))), 11.0);
    EXPECT_EQ(valueOf(make<BinaryMinusOpNode>(nullptr, number(7.0), number(4.0))), 3.0);
    EXPECT_EQ(valueOf(make<MultOpNode>(nullptr, number(7.0), number(4.0))), 28.0);
    EXPECT_EQ(valueOf(make<DivOpNode>(nullptr, number(7.0), number(4.0))), 1.75);
    EXPECT_EQ(valueOf(make<ModuloOpNode>(nullptr, number(7.0), number(4.0))), 3.0);
    EXPECT_EQ(valueOf(make<ModuloOpNode>(nullptr, number(-7.0), number(4.0))), -3.0);
    EXPECT_EQ(valueOf(make<PowerOpNode>(nullptr, number(7.0), number(2.0))), 49.0);
    EXPECT_EQ(valueOf(make<PowerOpNode>(nullptr, number(4.0), number(0.5))), 2.0);
}

TEST_F(NodeTests, OperandThatDoesNotEvaluateEndsTheEvaluation) {
    EXPECT_EQ(valueOf(make<PlusOpNode>(nullptr, number(c_infinity), number(1.0))), c_none);
    EXPECT_EQ(valueOf(make<MultOpNode>(nullptr, number(0.0), number(c_infinity))), c_none);
    Node * chain = number(c_infinity);
    for (int i = 0; i < 5; ++i) chain = make<BinaryMinusOpNode>(nullptr, chain, number(1.0));
    EXPECT_EQ(valueOf(chain), c_none);
}

TEST_F(NodeTests, ResultBeyondTheRangeDoesNotEvaluate) {
    EXPECT_EQ(valueOf(make<PlusOpNode>(nullptr, number(1.7e308), number(1.7e308))), c_none);
    EXPECT_EQ(valueOf(make<MultOpNode>(nullptr, number(1e200), number(1e200))), c_none);
    EXPECT_EQ(valueOf(make<PowerOpNode>(nullptr, number(-10.0), number(400.0))), c_none);
    EXPECT_EQ(valueOf(make<PowerOpNode>(nullptr, number(-10.0), number(0.5))), c_none);
    EXPECT_EQ(valueOf(make<ModuloOpNode>(nullptr, number(11.0), number(0.0))), c_none);
    // Also in the middle of a chain whose result would be finite again.
    Node * const square = make<MultOpNode>(nullptr, number(1e200), number(1e200));
    EXPECT_EQ(valueOf(make<DivOpNode>(nullptr, square, number(1e300))), c_none);
}

TEST_F(NodeTests, DivisorNearlyZeroFails) {
    struct Row {
        double divisor;
        double value;
    };
    constexpr Row c_rows[] = {
        {0.0, c_none}, {-0.0, c_none},  {1e-9, c_none}, {-9.999e-9, c_none},
        {1e-08, 1e08}, {-1e-08, -1e08}, {0.5, 2.0},
    };
    for (Row const & row : c_rows) {
        double const value = valueOf(make<DivOpNode>(nullptr, number(1.0), number(row.divisor)));
        EXPECT_NEAR(value, row.value, 1e-6) << row.divisor;
    }
}

TEST_F(NodeTests, ProductsAndQuotientsKeepTheirOperandsAsTheyAre) {
    Node * const product = make<MultOpNode>(nullptr, number(2.0), quantity(2.0, m_cm));
    EXPECT_EQ(unitsOf(product, UnitContext(m_inch)), L"(centimeter) / (1)");
    EXPECT_EQ(valueOf(product), 4.0);
    EXPECT_EQ(unitsOf(make<MultOpNode>(nullptr, quantity(1.0, m_cm), quantity(1.0, m_s))),
              L"(centimeter*second) / (1)");
    Node * const quotient = make<DivOpNode>(nullptr, quantity(1.0, m_cm), quantity(1.0, m_s));
    EXPECT_EQ(unitsOf(quotient), L"(centimeter) / (second)");
    EXPECT_EQ(unitsOf(make<DivOpNode>(nullptr, quantity(1.0, m_s), quotient)),
              L"(second*second) / (centimeter)");
    EXPECT_EQ(unitsOf(make<DivOpNode>(nullptr, number(1.0), quantity(1.0, m_s))),
              L"(1) / (second)");
    // What cancels stays in the lists.
    EXPECT_EQ(unitsOf(make<DivOpNode>(nullptr, quantity(1.0, m_cm), quantity(1.0, m_cm))),
              L"(centimeter) / (centimeter)");
}

TEST_F(NodeTests, RemainderDemandsOneDimension) {
    EXPECT_EQ(unitsOf(make<ModuloOpNode>(nullptr, quantity(5.0, m_inch), quantity(2.0, m_cm))),
              L"(inch) / (1)");
    EXPECT_EQ(unitsOf(make<ModuloOpNode>(nullptr, quantity(5.0, m_cm), number(2.0))), L"-");
    EXPECT_EQ(
        unitsOf(make<ModuloOpNode>(nullptr, number(5.0), quantity(2.0, m_cm)), UnitContext(m_cm)),
        L"-");
}

TEST_F(NodeTests, BareSideOfASumTakesUnits) {
    UnitContext const inches(m_inch);
    // From the context.
    Node * const left = number(1.0);
    Node * const sum = make<PlusOpNode>(nullptr, left, quantity(1.0, m_cm));
    EXPECT_EQ(unitsOf(sum, inches), L"(inch) / (1)");
    EXPECT_EQ(valueOf(sum), 3.54);
    EXPECT_EQ(unitsOf(left), L"(inch) / (1)");
    // From its own default.
    Node * const difference = make<BinaryMinusOpNode>(nullptr, quantity(1.0, m_cm),
                                                      number(1.0, &m_inch->asComplexUnit()));
    EXPECT_EQ(unitsOf(difference), L"(centimeter) / (1)");
    EXPECT_EQ(valueOf(difference), -1.54);
    // From neither.
    EXPECT_EQ(unitsOf(make<PlusOpNode>(nullptr, number(1.0), quantity(1.0, m_cm))), L"-");
    EXPECT_EQ(unitsOf(make<PlusOpNode>(nullptr, quantity(1.0, m_kg), quantity(1.0, m_cm)), inches),
              L"-");
}

TEST_F(NodeTests, SumHasTheUnitsOfItsLeftSide) {
    EXPECT_EQ(unitsOf(make<PlusOpNode>(nullptr, quantity(1.0, m_inch), quantity(1.0, m_cm))),
              L"(inch) / (1)");
    EXPECT_EQ(unitsOf(make<PlusOpNode>(nullptr, number(1.0), number(2.0))), L"(1) / (1)");
    Node * chain = quantity(1.0, m_cm);
    for (int i = 0; i < 5; ++i) chain = make<PlusOpNode>(nullptr, chain, quantity(1.0, m_inch));
    EXPECT_EQ(unitsOf(chain), L"(centimeter) / (1)");
    EXPECT_NEAR(valueOf(chain), 1.0 + 5 * 2.54, 1e-12);
}

TEST_F(NodeTests, ConflictDeepInAChainIsAConflict) {
    Node * chain = make<PlusOpNode>(nullptr, quantity(1.0, m_cm), quantity(1.0, m_kg));
    for (int i = 0; i < 5; ++i) chain = make<PlusOpNode>(nullptr, chain, quantity(1.0, m_cm));
    EXPECT_EQ(unitsOf(chain), L"-");
    EXPECT_EQ(unitsOf(chain), L"-");         // a conflict isn't cached as a success
    EXPECT_NEAR(valueOf(chain), 7.0, 1e-12); // the value doesn't ask for units
}

TEST_F(NodeTests, PowerOfAUnit) {
    auto const power = [this](Node * base, Node * exponent) {
        return unitsOf(make<PowerOpNode>(nullptr, base, exponent));
    };
    EXPECT_EQ(power(quantity(2.0, m_cm), number(3.0)), L"(centimeter*centimeter*centimeter) / (1)");
    EXPECT_EQ(power(quantity(2.0, m_cm), number(1.0)), L"(centimeter) / (1)");
    EXPECT_EQ(power(quantity(2.0, m_cm), number(0.0)), L"(1) / (1)");
    EXPECT_EQ(power(quantity(2.0, m_cm), number(-2.0)), L"(1) / (centimeter*centimeter)");
    EXPECT_EQ(power(quantity(2.0, m_cm), number(0.5)), L"-");
    EXPECT_EQ(power(quantity(2.0, m_cm), quantity(1.0, m_s)), L"-");
    EXPECT_EQ(power(quantity(2.0, m_cm), number(c_infinity)), L"-");
    // A base without units has no demands but that of a pure exponent.
    EXPECT_EQ(power(number(2.0), number(0.5)), L"(1) / (1)");
    EXPECT_EQ(power(number(2.0), number(c_infinity)), L"(1) / (1)");
    EXPECT_EQ(power(number(2.0), quantity(1.0, m_s)), L"-");
    // The value path demands nothing of the exponent.
    EXPECT_EQ(valueOf(make<PowerOpNode>(nullptr, quantity(4.0, m_cm), number(0.5))), 2.0);
}

TEST_F(NodeTests, UnitOfMoreThan4096FactorsIsRefused) {
    auto const power = [this](double exponent) {
        return make<PowerOpNode>(nullptr, quantity(1.0, m_cm), number(exponent));
    };
    EXPECT_NE(unitsOf(power(4096.0)), L"-");
    EXPECT_NE(unitsOf(power(-4096.0)), L"-");
    EXPECT_EQ(unitsOf(power(4097.0)), L"-");
    EXPECT_EQ(unitsOf(power(-4097.0)), L"-");
    EXPECT_EQ(unitsOf(power(1e9)), L"-");
    EXPECT_EQ(unitsOf(power(1e300)), L"-");
    EXPECT_EQ(unitsOf(make<PowerOpNode>(nullptr, number(1.0), number(1e300))), L"(1) / (1)");

    EXPECT_NE(unitsOf(make<MultOpNode>(nullptr, power(2048.0), power(2048.0))), L"-");
    EXPECT_EQ(unitsOf(make<MultOpNode>(nullptr, power(2048.0), power(2049.0))), L"-");
    EXPECT_NE(unitsOf(make<DivOpNode>(nullptr, power(2048.0), power(2048.0))), L"-");
    EXPECT_EQ(unitsOf(make<DivOpNode>(nullptr, power(2048.0), power(2049.0))), L"-");
    // A factor of a product that is itself one of two.
    Node * const square = make<PowerOpNode>(nullptr, power(2.0), number(2048.0));
    EXPECT_NE(unitsOf(square), L"-");
    EXPECT_EQ(unitsOf(make<PowerOpNode>(nullptr, power(2.0), number(2049.0))), L"-");
}

TEST_F(NodeTests, TemperaturesCalculateWithAbsoluteValues) {
    Node * const difference = make<BinaryMinusOpNode>(nullptr, quantity(21.0, m_celsius),
                                                      quantity(68.0, Units::UnitFarenheit::get()));
    EXPECT_NEAR(valueOf(difference), 1.0, 1e-9);
    EXPECT_EQ(unitsOf(difference), L"(celsius) / (1)");
}

// ---- Functions ----------------------------------------------------------------------------------

enum class Defaults { Angle, None, Inherits };
enum class Fixed { None, Radian, Inherits };

struct FunctionRow {
    int number;
    FunctionId id;
    EToken token;
    wchar_t const * name;
    unsigned int arity;
    Defaults first;
    Defaults second;
    Fixed result;
};

constexpr Defaults c_angle = Defaults::Angle;
constexpr Defaults c_pure = Defaults::None;
constexpr Defaults c_inherits = Defaults::Inherits;

constexpr FunctionRow c_functionRows[] = {
    {0, FunctionCos, e_COS, L"cos", 1, c_angle, c_pure, Fixed::None},
    {1, FunctionAcos, e_ACOS, L"acos", 1, c_pure, c_pure, Fixed::Radian},
    {2, FunctionCosh, e_COSH, L"cosh", 1, c_angle, c_pure, Fixed::None},
    {3, FunctionSin, e_SIN, L"sin", 1, c_angle, c_pure, Fixed::None},
    {4, FunctionAsin, e_ASIN, L"asin", 1, c_pure, c_pure, Fixed::Radian},
    {5, FunctionSinh, e_SINH, L"sinh", 1, c_angle, c_pure, Fixed::None},
    {6, FunctionTan, e_TAN, L"tan", 1, c_angle, c_pure, Fixed::None},
    {7, FunctionAtan, e_ATAN, L"atan", 1, c_pure, c_pure, Fixed::Radian},
    {8, FunctionTanh, e_TANH, L"tanh", 1, c_angle, c_pure, Fixed::None},
    {9, FunctionSqrt, e_SQRT, L"sqrt", 1, c_pure, c_pure, Fixed::None},
    {10, FunctionExp, e_EXP, L"exp", 1, c_pure, c_pure, Fixed::None},
    {11, FunctionPow, e_POW, L"pow", 2, c_inherits, c_pure, Fixed::Inherits},
    {12, FunctionLn, e_LN, L"ln", 1, c_pure, c_pure, Fixed::None},
    {13, FunctionLog, e_LOG, L"log", 1, c_pure, c_pure, Fixed::None},
    {14, FunctionFloor, e_FLOOR, L"floor", 1, c_inherits, c_inherits, Fixed::Inherits},
    {15, FunctionCeil, e_CEIL, L"ceil", 1, c_inherits, c_inherits, Fixed::Inherits},
    {16, FunctionRound, e_ROUND, L"round", 1, c_inherits, c_inherits, Fixed::Inherits},
    {17, FunctionAbs, e_ABS, L"abs", 1, c_inherits, c_inherits, Fixed::Inherits},
    {18, FunctionSign, e_SIGN, L"sign", 1, c_inherits, c_inherits, Fixed::None},
    {19, FunctionMax, e_MAX, L"max", 2, c_inherits, c_inherits, Fixed::Inherits},
    {20, FunctionMin, e_MIN, L"min", 2, c_inherits, c_inherits, Fixed::Inherits},
    {21, FunctionRandom, e_RANDOM, L"random", 0, c_inherits, c_inherits, Fixed::None},
};

TEST_F(NodeTests, TwentyTwoFunctionsHaveTheirNumbersAndArities) {
    ASSERT_EQ(std::size(c_functionRows), 22U);
    for (FunctionRow const & row : c_functionRows) {
        EXPECT_EQ(static_cast<int>(row.id), row.number);
        EXPECT_EQ(static_cast<int>(row.token), row.number + 50);
        EXPECT_EQ(functionArity(row.id), row.arity) << shown(row.name);
        EXPECT_EQ(Tokens::get()->getString(row.token), row.name);
    }
}

TEST_F(NodeTests, ArgumentsOfFunctionsHaveTheirDefaults) {
    UnitContext const nothing;
    UnitContext const radians(Units::UnitRadian::get());
    UnitContext const centimeters(m_cm);
    for (FunctionRow const & row : c_functionRows) {
        for (unsigned int argument = 0; argument < row.arity; ++argument) {
            Defaults const wanted = argument == 0 ? row.first : row.second;
            for (UnitContext const * const context : {&nothing, &radians, &centimeters}) {
                ComplexUnit const * units = nullptr;
                bool const own =
                    functionArgumentTakesDefaultUnit(row.id, argument, *context, units);
                EXPECT_EQ(own, wanted != Defaults::Inherits) << shown(row.name);
                if (!own) continue;
                std::wstring const unit = wanted == Defaults::None ? L"(1) / (1)"
                                          : context == &radians    ? L"(radian) / (1)"
                                                                   : L"(degree) / (1)";
                EXPECT_EQ(units->toString(), unit) << shown(row.name);
            }
        }
    }
}

TEST_F(NodeTests, ResultsOfFunctionsHaveTheirDefaults) {
    for (FunctionRow const & row : c_functionRows) {
        ComplexUnit const * units = nullptr;
        EXPECT_EQ(functionHasFixedResultUnit(row.id, units), row.result != Fixed::Inherits)
            << shown(row.name);
        std::wstring const wanted = row.result == Fixed::Radian ? L"(radian) / (1)"
                                    : row.result == Fixed::None ? L"(1) / (1)"
                                                                : L"(inch) / (1)";
        // The constructor stores it, whatever is passed.
        FunctionOpNode * const node = make<FunctionOpNode>(&m_inch->asComplexUnit(), row.id);
        EXPECT_EQ(node->function(), row.id);
        EXPECT_EQ(node->operands(), 0U);
        EXPECT_TRUE(node->hasDefaultUnits()) << shown(row.name);
        EXPECT_EQ(node->defaultUnits().toString(), wanted) << shown(row.name);
        EXPECT_EQ(make<FunctionOpNode>(nullptr, row.id)->hasDefaultUnits(),
                  row.result != Fixed::Inherits)
            << shown(row.name);
    }
}

TEST_F(NodeTests, FunctionsCalculate) {
    struct Row {
        FunctionId id;
        double argument;
        double value;
    };
    Row const rows[] = {
        {FunctionCos, 1.0, 0.5403023058681398},
        {FunctionSin, 1.0, 0.8414709848078965},
        {FunctionTan, 1.0, 1.5574077246549023},
        {FunctionCosh, 1.0, 1.5430806348152437},
        {FunctionSinh, 1.0, 1.1752011936438014},
        {FunctionTanh, 1.0, 0.7615941559557649},
        {FunctionAtan, 1.0, 0.7853981633974483},
        {FunctionAcos, 0.5, 1.0471975511965979},
        {FunctionAsin, 0.5, 0.5235987755982989},
        {FunctionAcos, -1.0, 3.141592653589793},
        {FunctionAsin, 1.0, 1.5707963267948966},
        {FunctionAcos, 1.0000000000000002, c_none},
        {FunctionAsin, -1.0000000000000002, c_none},
        {FunctionSqrt, 16.0, 4.0},
        {FunctionSqrt, -1.0, c_none},
        {FunctionExp, 2.0, 7.38905609893065},
        {FunctionExp, 1000.0, c_none},
        {FunctionExp, -1000.0, 0.0},
        {FunctionLn, 7.38905609893065, 2.0},
        {FunctionLn, 0.0, c_none},
        {FunctionLn, -1.0, c_none},
        {FunctionLog, 100.0, 2.0},
        {FunctionLog, 0.0, c_none},
        {FunctionFloor, 2.2, 2.0},
        {FunctionFloor, -2.2, -3.0},
        {FunctionFloor, 3.0 - 1e-15, 3.0}, // nearly three
        {FunctionFloor, 3.0 - 1e-14, 2.0},
        {FunctionCeil, 2.2, 3.0},
        {FunctionCeil, -2.2, -2.0},
        {FunctionCeil, 3.0 + 1e-15, 3.0},
        {FunctionCeil, 3.0 + 1e-14, 4.0},
        {FunctionRound, 2.2, 2.0},
        {FunctionRound, 2.8, 3.0},
        {FunctionRound, -2.2, -2.0},
        {FunctionRound, 2.5, 3.0}, // halves go away from zero
        {FunctionRound, -2.5, -3.0},
        {FunctionRound, 0.49999999999999994, 0.0},
        {FunctionRound, 3e9, 2147483647.0}, // 32 bits
        {FunctionRound, -3e9, -2147483648.0},
        {FunctionRound, 1e308, 2147483647.0},
        {FunctionRound, 2147483646.5, 2147483647.0},
        {FunctionAbs, -2.2, 2.2},
        {FunctionAbs, 2.2, 2.2},
        {FunctionSign, 1.0, 1.0},
        {FunctionSign, 1e-300, 1.0},
        {FunctionSign, 0.0, 0.0},
        {FunctionSign, -1.0, 0.0}, // deliberately no -1
    };
    for (Row const & row : rows) {
        double const value = valueOf(function(row.id, {row.argument}));
        EXPECT_NEAR(value, row.value, 1e-14) << shown(c_functionRows[row.id].name) << row.argument;
    }
}

TEST_F(NodeTests, FunctionsOfTwoArgumentsCalculate) {
    EXPECT_EQ(valueOf(function(FunctionPow, {2.0, 3.0})), 8.0);
    EXPECT_EQ(valueOf(function(FunctionPow, {10.0, 400.0})), c_none);
    EXPECT_EQ(valueOf(function(FunctionMax, {2.0, 3.0})), 3.0);
    EXPECT_EQ(valueOf(function(FunctionMax, {3.0, 2.0})), 3.0);
    EXPECT_EQ(valueOf(function(FunctionMin, {2.0, 3.0})), 2.0);
    EXPECT_EQ(valueOf(function(FunctionMin, {3.0, 2.0})), 2.0);
    // Of two equals the first.
    EXPECT_TRUE(std::signbit(valueOf(function(FunctionMax, {-0.0, 0.0}))));
    EXPECT_FALSE(std::signbit(valueOf(function(FunctionMin, {0.0, -0.0}))));
    EXPECT_EQ(valueOf(function(FunctionMax, {2.0, c_infinity})), c_none);
    EXPECT_EQ(valueOf(function(FunctionMin, {c_infinity, 2.0})), c_none);
}

TEST_F(NodeTests, OneArgumentOfTwoIsTheResult) {
    EXPECT_EQ(valueOf(function(FunctionPow, {2.0})), 2.0);
    EXPECT_EQ(valueOf(function(FunctionMax, {2.0})), 2.0);
    EXPECT_EQ(valueOf(function(FunctionMin, {2.0})), 2.0);
}

TEST_F(NodeTests, FunctionWithoutItsArgumentDoesNotEvaluate) {
    for (FunctionRow const & row : c_functionRows) {
        if (row.id == FunctionRandom) continue;
        FunctionOpNode * const node = make<FunctionOpNode>(nullptr, row.id);
        EXPECT_EQ(valueOf(node), c_none) << shown(row.name);
        EXPECT_EQ(unitsOf(node), L"-") << shown(row.name);
    }
}

TEST_F(NodeTests, RandomLiesBetweenZeroAndOneOnItsScale) {
    double smallest = 2.0;
    double greatest = -1.0;
    for (int i = 0; i < 10000; ++i) {
        double const value = valueOf(make<FunctionOpNode>(nullptr, FunctionRandom));
        smallest = std::min(smallest, value);
        greatest = std::max(greatest, value);
        double const steps = value * 32767.0;
        ASSERT_NEAR(steps, std::round(steps), 1e-9);
    }
    EXPECT_GE(smallest, 0.0);
    EXPECT_LE(greatest, 1.0);
    // Ten thousand draws out of 32,768 that all lie in one half would be no generator.
    EXPECT_LT(smallest, 0.1);
    EXPECT_GT(greatest, 0.9);
}

TEST_F(NodeTests, RandomIsDrawnOnceForANode) {
    Node * const random = make<FunctionOpNode>(nullptr, FunctionRandom);
    double const first = valueOf(random);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(valueOf(random), first);
    EXPECT_EQ(unitsOf(random), L"(1) / (1)");
}

TEST_F(NodeTests, AnglesOfFunctions) {
    for (FunctionId const id :
         {FunctionCos, FunctionSin, FunctionTan, FunctionCosh, FunctionSinh, FunctionTanh}) {
        EXPECT_EQ(unitsOf(function(id, {quantity(1.0, Units::UnitRadian::get())})), L"(1) / (1)");
        EXPECT_EQ(unitsOf(function(id, {quantity(1.0, Units::UnitDegree::get())})), L"(1) / (1)");
        EXPECT_EQ(unitsOf(function(id, {quantity(1.0, m_cm)})), L"-");
        // A bare argument takes its default units, and isn't an angle without them.
        EXPECT_EQ(unitsOf(function(id, {number(1.0)})), L"-");
        NumericNode * const bare = number(60.0, &Units::UnitDegree::get()->asComplexUnit());
        FunctionOpNode * const node = function(id, {bare});
        EXPECT_EQ(unitsOf(node), L"(1) / (1)");
        EXPECT_NEAR(valueOf(bare), 1.0471975511965976, 1e-15);
    }
}

TEST_F(NodeTests, UnitsOfFunctions) {
    struct Row {
        FunctionId id;
        wchar_t const * ofNumber;
        wchar_t const * ofInches;
    };
    constexpr Row c_rows[] = {
        {FunctionAcos, L"(radian) / (1)", L"-"},
        {FunctionAsin, L"(radian) / (1)", L"-"},
        {FunctionAtan, L"(radian) / (1)", L"-"},
        {FunctionSqrt, L"(1) / (1)", L"-"},
        {FunctionExp, L"(1) / (1)", L"-"},
        {FunctionLn, L"(1) / (1)", L"-"},
        {FunctionLog, L"(1) / (1)", L"-"},
        {FunctionFloor, L"(1) / (1)", L"(inch) / (1)"},
        {FunctionCeil, L"(1) / (1)", L"(inch) / (1)"},
        {FunctionRound, L"(1) / (1)", L"(inch) / (1)"},
        {FunctionAbs, L"(1) / (1)", L"(inch) / (1)"},
        {FunctionSign, L"(1) / (1)", L"(1) / (1)"},
    };
    for (Row const & row : c_rows) {
        EXPECT_EQ(unitsOf(function(row.id, {number(0.5)})), row.ofNumber) << row.id;
        EXPECT_EQ(unitsOf(function(row.id, {quantity(0.5, m_inch)})), row.ofInches) << row.id;
        Node * const conflict = make<PlusOpNode>(nullptr, quantity(1.0, m_kg), quantity(1.0, m_cm));
        EXPECT_EQ(unitsOf(function(row.id, {conflict})), L"-") << row.id;
    }
}

TEST_F(NodeTests, UnitsOfMaximumAndMinimum) {
    for (FunctionId const id : {FunctionMax, FunctionMin}) {
        EXPECT_EQ(unitsOf(function(id, {quantity(1.0, m_inch), quantity(1.0, m_cm)})),
                  L"(inch) / (1)");
        EXPECT_EQ(unitsOf(function(id, {quantity(1.0, m_inch), quantity(1.0, m_kg)})), L"-");
        EXPECT_EQ(unitsOf(function(id, {quantity(1.0, m_inch), number(1.0)})), L"-");
        EXPECT_EQ(unitsOf(function(id, {quantity(1.0, m_inch), number(1.0)}), UnitContext(m_cm)),
                  L"(inch) / (1)");
        EXPECT_EQ(unitsOf(function(id, {number(1.0), quantity(1.0, m_inch)}), UnitContext(m_cm)),
                  L"(centimeter) / (1)");
    }
}

TEST_F(NodeTests, UnitsOfPow) {
    EXPECT_EQ(unitsOf(function(FunctionPow, {quantity(0.5, m_s), number(-1.0)})),
              L"(1) / (second)");
    EXPECT_EQ(unitsOf(function(FunctionPow, {quantity(16.0, m_cm), number(0.5)})), L"-");
    EXPECT_EQ(unitsOf(function(FunctionPow, {quantity(2.0, m_cm), quantity(1.0, m_cm)})), L"-");
    EXPECT_EQ(unitsOf(function(FunctionPow, {quantity(2.0, m_cm), number(4097.0)})), L"-");
    EXPECT_EQ(unitsOf(function(FunctionPow, {number(2.0), number(0.5)})), L"(1) / (1)");
}

TEST_F(NodeTests, OperandsKeepTheirOrder) {
    FunctionOpNode * const node = function(FunctionMax, {number(1.0), number(2.0), number(3.0)});
    EXPECT_EQ(node->operands(), 3U);
    EXPECT_EQ(rebuilt(node), L"max(1.00; 2.00; 3.00)");
}

// ---- The tree -----------------------------------------------------------------------------------

TEST_F(NodeTests, DestroyIgnoresNull) { Tree::destroy(nullptr); }

TEST_F(NodeTests, TreeKeepsUnitsOfItsOwn) {
    ComplexUnit speed(m_cm);
    speed.addToDenominator(m_s);
    ComplexUnit const * const kept = m_tree->keep(speed);
    speed.clear();
    EXPECT_EQ(kept->toString(), L"(centimeter) / (second)");
    // One simple unit and none are shared.
    EXPECT_EQ(m_tree->keep(m_cm->asComplexUnit()), &m_cm->asComplexUnit());
    EXPECT_EQ(m_tree->keep(ComplexUnit()), &ComplexUnit::none());
}

// A number that counts how often it is asked.
class CountingNode : public NumericNode {
public:
    static inline int s_values = 0;
    static inline int s_units = 0;

    CountingNode(Tree & tree, ComplexUnit const * defaultUnits, double value,
                 ComplexUnit const * ownUnits)
        : NumericNode(tree, defaultUnits, value, ownUnits) {}

private:
    bool onEvaluate(double & value) override {
        ++s_values;
        value = this->value();
        return true;
    }
    ComplexUnit const * onUnitEvaluate(UnitContext const &) override {
        ++s_units;
        return &ownUnits();
    }
};

TEST_F(NodeTests, EachOperandIsAskedOnce) {
    constexpr int c_count = 1000;
    auto const leaf = [this] { return make<CountingNode>(nullptr, 1.0, &m_cm->asComplexUnit()); };
    Node * left = leaf();
    for (int i = 1; i < c_count; ++i) left = make<PlusOpNode>(nullptr, left, leaf());
    Node * right = leaf();
    for (int i = 1; i < c_count; ++i)
        right = make<BinaryMinusOpNode>(nullptr, leaf(), make<ParenOpNode>(nullptr, right));
    for (Node * const node : {left, right}) {
        CountingNode::s_values = CountingNode::s_units = 0;
        for (int i = 0; i < 3; ++i) {
            EXPECT_NE(valueOf(node), c_none);
            EXPECT_EQ(unitsOf(node), L"(centimeter) / (1)");
        }
        EXPECT_EQ(CountingNode::s_values, c_count);
        EXPECT_EQ(CountingNode::s_units, c_count);
    }
}

TEST_F(NodeTests, ManyNodesLiveInOneTree) {
    Node * chain = number(1.0);
    for (int i = 0; i < 100000; ++i) chain = make<PlusOpNode>(nullptr, chain, number(1.0));
    EXPECT_EQ(valueOf(chain), 100001.0);
}

} // namespace

} // namespace Vn::Expressions
