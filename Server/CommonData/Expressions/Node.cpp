// Evaluation: values and units.

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/TreeInternal.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <iterator>
#include <random>
#include <thread>

#include <boost/container/small_vector.hpp>

#include "Platform/Base/Numeric.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/Utils.h"

namespace Vn::Expressions {

using Units::ComplexUnit;
using Units::UnitContext;
using Units::Utils::essentiallyZero;

// ---- Node ---------------------------------------------------------------------------------------

Node::Node(Tree & tree, ComplexUnit const * defaultUnits, bool isBinary)
    : m_pDefaults(&tree.defaults(defaultUnits)), m_bIsBinary(isBinary) {}

bool Node::evaluate(double & value) {
    if (m_bValueCached) {
        value = m_cachedValue;
        return true;
    }
    return keepValue(!m_bNoValue && onEvaluate(value), value);
}

bool Node::keepValue(bool ok, double & value) {
    if (ok && Units::Utils::isFiniteNumber(value)) {
        if (!m_bDefaultUnitsActive) {
            m_cachedValue = value;
            return m_bValueCached = true;
        }
        value = m_pDefaults->units.toInternal(value);
        if (Units::Utils::isFiniteNumber(value)) {
            m_cachedValue = value;
            return m_bValueCached = true;
        }
    }
    value = 1.0;
    m_bNoValue = true;
    return false;
}

ComplexUnit const * Node::units(UnitContext const & context) {
    if (m_pCachedUnits) return m_pCachedUnits;
    return keepUnits(m_bDefaultUnitsActive ? &m_pDefaults->units : onUnitEvaluate(context));
}

ComplexUnit const * Node::keepUnits(ComplexUnit const * units) { return m_pCachedUnits = units; }

bool Node::unitEvaluate(ComplexUnit & units, UnitContext const & context) {
    ComplexUnit const * const found = this->units(context);
    if (!found) return false;
    units = *found;
    return true;
}

void Node::setDefaultUnits(ComplexUnit const & units) {
    m_pDefaults = &tree().ownDefaults(*tree().keep(units));
}

void Node::forget() {
    m_bValueCached = false;
    m_bNoValue = false;
    m_pCachedUnits = nullptr;
}

void Node::useDefaultUnits(bool use) {
    forget();
    m_bDefaultUnitsActive = use;
}

bool Node::adoptUnits(ComplexUnit const & units, UnitContext const & context) {
    if (!m_pDefaults->given || !m_pDefaults->units.isDimensionallyEquivalent(&units)) {
        ComplexUnit found;
        if (!context.findDefault(units, found)) return false;
        setDefaultUnits(found);
    }
    useDefaultUnits(true);
    return true;
}

// ---- Numbers ------------------------------------------------------------------------------------

NumericNode::NumericNode(Tree & tree, ComplexUnit const * defaultUnits, double value,
                         ComplexUnit const * ownUnits)
    : Node(tree, defaultUnits), m_value(value),
      m_pOwnUnits(ownUnits ? ownUnits : &ComplexUnit::none()) {}

void NumericNode::value(double value) {
    m_value = value;
    forget();
}

bool NumericNode::onEvaluate(double & value) {
    value = m_value;
    return true;
}

ComplexUnit const * NumericNode::onUnitEvaluate(UnitContext const &) { return m_pOwnUnits; }

namespace {

// Whether a unit of those two would be longer than a unit may be, or one too many for the tree.
bool tooLong(Tree & tree, ComplexUnit const & a, ComplexUnit const & b) {
    return a.factors() + b.factors() > Limits::c_unitFactors || tree.unitsExhausted();
}

// Null if the product would be too long.
ComplexUnit const * multiplied(Tree & tree, ComplexUnit const & a, ComplexUnit const & b) {
    if (tooLong(tree, a, b)) return nullptr;
    if (b.isEmpty()) return &a;
    if (a.isEmpty()) return &b;
    ComplexUnit product = a;
    product.multiplyBy(&b);
    return tree.keep(product);
}

ComplexUnit const * divided(Tree & tree, ComplexUnit const & a, ComplexUnit const & b) {
    if (tooLong(tree, a, b)) return nullptr;
    if (b.isEmpty()) return &a;
    ComplexUnit quotient = a;
    quotient.divideBy(&b);
    return tree.keep(quotient);
}

} // namespace

ConstantNode::ConstantNode(Tree & tree, ComplexUnit const * defaultUnits, EToken constant,
                           ComplexUnit const * attachedUnits)
    : NumericNode(
          tree, defaultUnits,
          attachedUnits ? attachedUnits->toInternal(Tokens::get()->getConstantValue(constant))
                        : Tokens::get()->getConstantValue(constant),
          attachedUnits ? multiplied(tree, Tokens::get()->constantUnits(constant), *attachedUnits)
                        : &Tokens::get()->constantUnits(constant)),
      m_constant(constant), m_pAttachedUnits(attachedUnits) {}

ComplexUnit const * ConstantNode::onUnitEvaluate(UnitContext const &) {
    // Too long a product leaves the constant without units of its own.
    return m_pAttachedUnits && ownUnits().isEmpty() && !m_pAttachedUnits->isEmpty() ? nullptr
                                                                                    : &ownUnits();
}

// ---- One operand --------------------------------------------------------------------------------

UnaryOpNode::UnaryOpNode(Tree & tree, ComplexUnit const * defaultUnits, Node * operand)
    : Node(tree, defaultUnits), m_rOperand(*operand) {}

bool UnaryOpNode::onEvaluate(double & value) {
    if (!m_rOperand.evaluate(value)) return false;
    value = onCalculate(value);
    return true;
}

ComplexUnit const * UnaryOpNode::onUnitEvaluate(UnitContext const & context) {
    return m_rOperand.units(context);
}

// ---- Two operands -------------------------------------------------------------------------------

BinaryOpNode::BinaryOpNode(Tree & tree, ComplexUnit const * defaultUnits, Node * left, Node * right)
    : Node(tree, defaultUnits, true), m_rLeft(*left), m_rRight(*right) {}

BinaryOpNode * BinaryOpNode::leftWithoutValue() const {
    BinaryOpNode * const op = leftOperator();
    return op && !op->m_bValueCached && !op->m_bNoValue ? op : nullptr;
}

BinaryOpNode * BinaryOpNode::leftWithoutUnits() const {
    BinaryOpNode * const op = leftOperator();
    return op && !op->m_pCachedUnits && !op->m_bDefaultUnitsActive ? op : nullptr;
}

bool BinaryOpNode::onEvaluate(double & value) {
    // From the bottom of the chain of left operands up, so that a step finds its left value there.
    boost::container::small_vector<BinaryOpNode *, 8> chain;
    for (BinaryOpNode * op = leftWithoutValue(); op; op = op->leftWithoutValue())
        chain.push_back(op);
    for (; !chain.empty(); chain.pop_back()) {
        BinaryOpNode & op = *chain.back();
        if (!op.keepValue(op.evaluateStep(value), value)) return false;
    }
    return evaluateStep(value);
}

bool BinaryOpNode::evaluateStep(double & value) {
    double left = 0.0;
    double right = 0.0;
    bool ok = m_rLeft.evaluate(left) && m_rRight.evaluate(right);
    if (ok) value = onCalculate(ok, left, right);
    return ok;
}

ComplexUnit const * BinaryOpNode::onUnitEvaluate(UnitContext const & context) {
    boost::container::small_vector<BinaryOpNode *, 8> chain;
    for (BinaryOpNode * op = leftWithoutUnits(); op; op = op->leftWithoutUnits())
        chain.push_back(op);
    for (; !chain.empty(); chain.pop_back()) {
        BinaryOpNode & op = *chain.back();
        if (!op.keepUnits(op.unitEvaluateStep(context))) return nullptr;
    }
    return unitEvaluateStep(context);
}

EParseFailure BinaryOpNode::onConflict(UnitContext const & context) {
    ComplexUnit const * const left = m_rLeft.units(context);
    if (!left) return m_rLeft.conflict(context);
    ComplexUnit const * const right = m_rRight.units(context);
    return right ? onCalculateConflict(*left, *right) : m_rRight.conflict(context);
}

ComplexUnit const * BinaryOpNode::unitEvaluateStep(UnitContext const & context) {
    ComplexUnit const * const left = m_rLeft.units(context);
    ComplexUnit const * const right = left ? m_rRight.units(context) : nullptr;
    return right ? onCalculateUnits(*left, *right, context) : nullptr;
}

namespace {

// Lets a bare side take units from the other, and tells whether the two then have one dimension.
// Returns the units of the left side, or null.
ComplexUnit const * negotiate(Node & leftNode, Node & rightNode, ComplexUnit const * left,
                              ComplexUnit const * right, UnitContext const & context) {
    if (left == right) return left;
    bool const leftBare = left->isUnitless();
    bool const rightBare = right->isUnitless();
    if (leftBare && !rightBare) {
        leftNode.adoptUnits(*right, context);
        left = leftNode.units(context);
    } else if (rightBare && !leftBare) {
        rightNode.adoptUnits(*left, context);
        right = rightNode.units(context);
    }
    return left && right && left->isDimensionallyEquivalent(right) ? left : nullptr;
}

// `base` to a whole power; null if the unit would grow beyond the limit.
ComplexUnit const * raised(Tree & tree, ComplexUnit const & base, double exponent) {
    if (exponent == 0.0) return &ComplexUnit::none();
    if (exponent == 1.0) return &base;
    double const times = std::fabs(exponent);
    if (!(static_cast<double>(base.factors()) * times <=
          static_cast<double>(Limits::c_unitFactors)))
        return nullptr;
    if (tree.unitsExhausted()) return nullptr;
    ComplexUnit power;
    for (int i = Numeric::saturate<int>(times); i > 0; --i) power.multiplyBy(&base);
    if (exponent < 0.0) power.invert();
    return tree.keep(power);
}

ComplexUnit const * powerUnits(Tree & tree, Node & exponentNode, ComplexUnit const & base,
                               ComplexUnit const & exponentUnits) {
    if (!exponentUnits.isUnitless()) return nullptr;
    if (base.isUnitless()) return &base;
    double exponent = 0.0;
    if (!exponentNode.evaluate(exponent) || exponent != std::floor(exponent)) return nullptr;
    return raised(tree, base, exponent);
}

// Why powerUnits gives null for them.
EParseFailure powerConflict(Node & exponentNode, ComplexUnit const & exponentUnits) {
    double exponent = 0.0;
    bool const fits = exponentUnits.isUnitless() && exponentNode.evaluate(exponent) &&
                      exponent == std::floor(exponent);
    return fits ? EParseFailure::unitTooLong : EParseFailure::unitsOfPower;
}

} // namespace

ComplexUnit const * SumOpNode::onCalculateUnits(ComplexUnit const & left, ComplexUnit const & right,
                                                UnitContext const & context) {
    return negotiate(this->left(), this->right(), &left, &right, context);
}

ComplexUnit const * MultOpNode::onCalculateUnits(ComplexUnit const & left,
                                                 ComplexUnit const & right, UnitContext const &) {
    return multiplied(tree(), left, right);
}

double DivOpNode::onCalculate(bool & ok, double left, double right) const {
    ok = !essentiallyZero(right);
    return ok ? left / right : 1.0;
}

ComplexUnit const * DivOpNode::onCalculateUnits(ComplexUnit const & left, ComplexUnit const & right,
                                                UnitContext const &) {
    return divided(tree(), left, right);
}

double ModuloOpNode::onCalculate(bool &, double left, double right) const {
    return std::fmod(left, right);
}

ComplexUnit const * ModuloOpNode::onCalculateUnits(ComplexUnit const & left,
                                                   ComplexUnit const & right, UnitContext const &) {
    return left.isDimensionallyEquivalent(&right) ? &left : nullptr;
}

double PowerOpNode::onCalculate(bool &, double left, double right) const {
    return Numeric::power(left, right);
}

ComplexUnit const * PowerOpNode::onCalculateUnits(ComplexUnit const & left,
                                                  ComplexUnit const & right, UnitContext const &) {
    return powerUnits(tree(), this->right(), left, right);
}

EParseFailure PowerOpNode::onCalculateConflict(ComplexUnit const &, ComplexUnit const & right) {
    return powerConflict(this->right(), right);
}

// ---- Functions ----------------------------------------------------------------------------------

VarLenOpNode::VarLenOpNode(Tree & tree, ComplexUnit const * defaultUnits)
    : Node(tree, defaultUnits) {}

void VarLenOpNode::append(Node * operand) {
    auto * const entry = tree().makePlain<Operand>();
    entry->node = operand;
    entry->next = nullptr;
    (m_pLast ? m_pLast->next : m_pFirst) = entry;
    m_pLast = entry;
    ++m_count;
}

Node & VarLenOpNode::operand(unsigned int index) const {
    Operand const * entry = m_pFirst;
    while (index-- > 0) entry = entry->next;
    return *entry->node;
}

namespace {

// A whole number from 0 to 32767, over 32767.
double randomValue() {
    thread_local std::minstd_rand s_generator = [] {
        auto const now = std::chrono::system_clock::now().time_since_epoch().count();
        std::seed_seq seed{static_cast<std::size_t>(now),
                           std::hash<std::thread::id>()(std::this_thread::get_id()),
                           static_cast<std::size_t>(std::random_device()())};
        return std::minstd_rand(seed);
    }();
    return std::uniform_int_distribution<int>(0, 32767)(s_generator) / 32767.0;
}

// Halves go away from zero; the result is limited to 32 bits.
double rounded(double x) {
    double const t = Numeric::saturate<int>(x);
    double const f = x - t;
    return std::fabs(f) < 0.5 ? t : Numeric::saturate<int>(t + 2.0 * f);
}

// A value this near to a whole number is that number to floor and ceil.
constexpr double c_slack = 2.220446049250313e-15;

// What an argument must be, and where bare numbers in it get their unit from.
enum class Argument : unsigned char { Angle, None, Inherits };

// What units the result has.
enum class Result : unsigned char { Radian, None, Inherits, Power };

struct FunctionRow {
    unsigned char arity;
    Argument first;
    Argument second;
    Result result;
    double (*value)(double x, double y);

    // Whether its arguments must agree in their units.
    constexpr bool haveOneDimension() const {
        return arity > 1 && first == Argument::Inherits && second == Argument::Inherits;
    }
};

constexpr FunctionRow c_functions[] = {
#define VN_FUNCTION(number, word, name, text, arguments, first, second, result, value)             \
    {arguments, Argument::first, Argument::second, Result::result,                                 \
     []([[maybe_unused]] double x, [[maybe_unused]] double y) { return value; }},
#include "Server/CommonData/Expressions/Functions.inc"
};
static_assert(std::all_of(std::begin(c_functions), std::end(c_functions),
                          [](FunctionRow const & row) { return row.arity <= 2; }));

} // namespace

unsigned int functionArity(FunctionId function) { return c_functions[function].arity; }

bool functionTakesAngle(FunctionId function) {
    return c_functions[function].first == Argument::Angle;
}

bool functionArgumentTakesDefaultUnit(FunctionId function, unsigned int argument,
                                      UnitContext const & context, ComplexUnit const *& units) {
    FunctionRow const & row = c_functions[function];
    switch (argument == 0 ? row.first : row.second) {
    case Argument::Angle: {
        Units::SimpleUnit const * const radian = Units::UnitRadian::get();
        bool const prefersRadian = context.findDefault(Units::UnitTypeAngle) == radian;
        units = &(prefersRadian ? radian : Units::UnitDegree::get())->asComplexUnit();
        return true;
    }
    case Argument::None:
        units = &ComplexUnit::none();
        return true;
    case Argument::Inherits:
        break;
    }
    return false;
}

bool functionHasFixedResultUnit(FunctionId function, ComplexUnit const *& units) {
    switch (c_functions[function].result) {
    case Result::Radian:
        units = &Units::UnitRadian::get()->asComplexUnit();
        return true;
    case Result::None:
        units = &ComplexUnit::none();
        return true;
    case Result::Inherits:
    case Result::Power:
        break;
    }
    return false;
}

namespace {

ComplexUnit const * resultUnits(FunctionId function, ComplexUnit const * inherited) {
    ComplexUnit const * fixed = nullptr;
    return functionHasFixedResultUnit(function, fixed) ? fixed : inherited;
}

} // namespace

FunctionOpNode::FunctionOpNode(Tree & tree, ComplexUnit const * defaultUnits, FunctionId function)
    : VarLenOpNode(tree, resultUnits(function, defaultUnits)), m_function(function) {}

bool FunctionOpNode::onEvaluate(double & value) {
    FunctionRow const & row = c_functions[m_function];
    double x = 0.0;
    double y = 0.0;
    if (row.arity > 0) {
        if (operands() == 0 || !operand(0).evaluate(x)) return false;
        if (row.arity > operands()) {
            value = x;
            return true;
        }
        if (row.arity > 1 && !operand(1).evaluate(y)) return false;
    }
    value = row.value(x, y);
    return true;
}

ComplexUnit const * FunctionOpNode::argumentUnits(unsigned int index, UnitContext const & context) {
    Node & argument = operand(index);
    ComplexUnit const * units = argument.units(context);
    FunctionRow const & row = c_functions[m_function];
    switch (index == 0 ? row.first : row.second) {
    case Argument::Angle:
        if (units && units->isUnitless()) {
            argument.useDefaultUnits(true);
            units = argument.units(context);
        }
        return units && units->isDimensionallyEquivalent(
                            &Units::AngleUnit::staticInternalBaseUnit()->asComplexUnit())
                   ? units
                   : nullptr;
    case Argument::None:
        return units && units->isUnitless() ? units : nullptr;
    case Argument::Inherits:
        break;
    }
    return units;
}

ComplexUnit const * FunctionOpNode::onUnitEvaluate(UnitContext const & context) {
    FunctionRow const & row = c_functions[m_function];
    ComplexUnit const * units = &ComplexUnit::none();
    if (row.arity > 0) {
        if (operands() == 0) return nullptr;
        units = argumentUnits(0, context);
    }
    if (units && row.arity > 1 && operands() > 1) {
        ComplexUnit const * const second = argumentUnits(1, context);
        if (!second) return nullptr;
        if (row.result == Result::Power)
            units = powerUnits(tree(), operand(1), *units, *second);
        else if (row.haveOneDimension())
            units = negotiate(operand(0), operand(1), units, second, context);
    }
    return units ? resultUnits(m_function, units) : nullptr;
}

EParseFailure FunctionOpNode::onConflict(UnitContext const & context) {
    for (unsigned int i = 0; i < operands(); ++i)
        if (!operand(i).units(context)) return operand(i).conflict(context);
    FunctionRow const & row = c_functions[m_function];
    if (row.result == Result::Power) return powerConflict(operand(1), *operand(1).units(context));
    return row.haveOneDimension() ? EParseFailure::differentUnits : EParseFailure::unitsOfArgument;
}

} // namespace Vn::Expressions
