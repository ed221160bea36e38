// The tree of an expression.
//
// A tree answers three questions: its value in internal units, its units, and the text that
// rebuilds it.  Value and units are worked out on separate paths.  A bare number has no units until
// a sibling, a function or the expected units of the context give it some; that change of mind
// clears the caches of the node that takes them.
//
//   Node
//     NumericNode            a number with its units
//       ConstantNode         a named constant
//     UnaryOpNode            UnaryMinusOpNode, ParenOpNode
//     BinaryOpNode           PlusOpNode, BinaryMinusOpNode, MultOpNode, DivOpNode, ModuloOpNode,
//                            PowerOpNode
//     VarLenOpNode           FunctionOpNode
//
// All nodes of a tree, and the units that they refer to, live in the memory of one Tree
// (TreeInternal.h) and end with it; nodes are made by Tree::make and have no destructors to run.
//
// Results are cached in the nodes, so one tree belongs to one thread at a time.
//
// Depth.  A sum or product is a chain of left operands as long as the text.  Evaluation goes down
// and up that chain in a loop; it recurses only into right operands, brackets, signs and arguments,
// which the parser limits (Limits::c_nestingLevels) and has evaluated already.  The text is written
// from a list of pieces, without recursion.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_NODEINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_NODEINTERNAL_H

#include <string>
#include <string_view>

#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/ParseFailure.h"
#include "Server/CommonData/Expressions/Token.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Units/ComplexUnit.h"

namespace Vn::Units {
class UnitContext;
}

namespace Vn::Expressions {

class BinaryOpNode;
class Reconstruction;
class Tree;

// The tree of a node, and what the node takes if it must have units.  One object serves all nodes
// of a tree that were given the same.
struct NodeDefaults {
    Tree & tree;
    Units::ComplexUnit const & units;
    bool given; // units were given, if only empty ones
    NodeDefaults * next;
};

class Node {
public:
    Node(Node const &) = delete;
    Node & operator=(Node const &) = delete;

    // The value in internal units.  False if it isn't finite, a divisor is nearly zero, or a domain
    // is left; `value` is 1.0 then.
    bool evaluate(double & value);

    // The units.  False, with `units` untouched, if they conflict.
    bool unitEvaluate(Units::ComplexUnit & units, Units::UnitContext const & context);

    // The same without a copy: null on conflict.  The units live as long as the tree.
    Units::ComplexUnit const * units(Units::UnitContext const & context);

    // Why units() is null, where it is.
    EParseFailure conflict(Units::UnitContext const & context) { return onConflict(context); }

    // What this subtree takes if it must have units.
    Units::ComplexUnit const & defaultUnits() const { return m_pDefaults->units; }
    void setDefaultUnits(Units::ComplexUnit const & units);
    bool hasDefaultUnits() const { return m_pDefaults->given; }

    // Reads the subtree in its default units from now on, or no longer.
    void useDefaultUnits(bool use);

    // Takes units from a sibling: its own default if that has their dimension, or what the context
    // has for it.  False, with nothing changed, if there is neither.
    bool adoptUnits(Units::ComplexUnit const & units, Units::UnitContext const & context);

    // The value for the user, in the units that the context or the node wants.  Empty if it doesn't
    // evaluate.
    std::wstring formattedValue(Units::EUnitDisplayMode mode,
                                Units::UnitDisplaySettings const & settings,
                                Units::UnitContext const & context);

    // The expression again, in standard spelling, with each number as it was typed and with the
    // units that it took.  `units`, which may be null, come from the node above.
    std::wstring reconstructString(Units::EUnitDisplayMode mode,
                                   Units::UnitDisplaySettings const & settings,
                                   Units::ComplexUnit const * units);

    Tree & tree() const { return m_pDefaults->tree; }

protected:
    // `defaultUnits` may be null; otherwise it must live as long as the tree.
    Node(Tree & tree, Units::ComplexUnit const * defaultUnits, bool isBinary = false);
    ~Node() = default;

    // What the caches held is dropped.
    void forget();

private:
    friend class BinaryOpNode;
    friend class Reconstruction;

    virtual bool onEvaluate(double & value) = 0;
    // Null if the units conflict.
    virtual Units::ComplexUnit const * onUnitEvaluate(Units::UnitContext const & context) = 0;
    // Why onUnitEvaluate gives null.
    virtual EParseFailure onConflict(Units::UnitContext const & context) = 0;
    // Gives `out` the pieces of the node's text, in order; `units`, which may be null, are those in
    // which it is to be written.
    virtual void onReconstruct(Reconstruction & out, Units::ComplexUnit const * units) = 0;
    // Whether the node passes units on or prints them, so that it needs no wrapper to show them.
    virtual bool onShowsUnitsItself() const { return false; }

    // The last steps of evaluate: the check of the result, the default units, the cache.
    bool keepValue(bool ok, double & value);
    Units::ComplexUnit const * keepUnits(Units::ComplexUnit const * units);

    // The units in which the subtree is written, given those from above.
    Units::ComplexUnit const * shownUnits(Units::ComplexUnit const * units) const {
        return m_bDefaultUnitsActive ? &m_pDefaults->units : units;
    }

    // A sum of a million terms has two million nodes, so they are kept small.
    NodeDefaults const * m_pDefaults;
    Units::ComplexUnit const * m_pCachedUnits = nullptr;
    double m_cachedValue = 0.0;
    bool m_bDefaultUnitsActive = false;
    bool m_bValueCached = false;
    bool m_bNoValue = false; // the evaluation failed, and would again
    bool const m_bIsBinary;
};

// A number as written, with its units.  The value is internal if the number has units of its own,
// else as typed.
class NumericNode : public Node {
public:
    // `ownUnits` may be null for none; otherwise it must live as long as the tree.
    NumericNode(Tree & tree, Units::ComplexUnit const * defaultUnits, double value,
                Units::ComplexUnit const * ownUnits = nullptr);

    double value() const { return m_value; }
    void value(double value);
    NumberFormat const & format() const { return m_format; }
    void format(NumberFormat const & format) { m_format = format; }
    // The text held only a unit, and the value 1 is implied.
    bool unitOnly() const { return m_bUnitOnly; }
    void unitOnly(bool unitOnly) { m_bUnitOnly = unitOnly; }
    Units::ComplexUnit const & ownUnits() const { return *m_pOwnUnits; }

private:
    bool onEvaluate(double & value) override;
    Units::ComplexUnit const * onUnitEvaluate(Units::UnitContext const & context) override;
    EParseFailure onConflict(Units::UnitContext const &) override {
        return EParseFailure::unitTooLong; // of a constant; nothing else conflicts alone
    }
    void onReconstruct(Reconstruction & out, Units::ComplexUnit const * units) override;
    bool onShowsUnitsItself() const override { return true; }

    bool m_bUnitOnly = false;
    NumberFormat m_format;
    double m_value;
    Units::ComplexUnit const * m_pOwnUnits;
};

// A named constant, with units written after it or without.
class ConstantNode : public NumericNode {
public:
    // Takes value and units from the token, which must be a constant.  `attachedUnits`, null for
    // none, are what was written after it: they multiply the units of the constant and convert its
    // value.
    ConstantNode(Tree & tree, Units::ComplexUnit const * defaultUnits, EToken constant,
                 Units::ComplexUnit const * attachedUnits = nullptr);

    bool hasAttachedUnits() const { return m_pAttachedUnits != nullptr; }

private:
    Units::ComplexUnit const * onUnitEvaluate(Units::UnitContext const & context) override;
    void onReconstruct(Reconstruction & out, Units::ComplexUnit const * units) override;

    EToken const m_constant; // its text is the name as typed
    Units::ComplexUnit const * const m_pAttachedUnits;
};

class UnaryOpNode : public Node {
protected:
    UnaryOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * operand);
    Node & operand() const { return m_rOperand; }

private:
    bool onEvaluate(double & value) final;
    Units::ComplexUnit const * onUnitEvaluate(Units::UnitContext const & context) final;
    EParseFailure onConflict(Units::UnitContext const & context) final {
        return m_rOperand.conflict(context);
    }
    bool onShowsUnitsItself() const override { return true; }
    virtual double onCalculate(double operand) const = 0;

    Node & m_rOperand;
};

class UnaryMinusOpNode final : public UnaryOpNode {
public:
    UnaryMinusOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * operand)
        : UnaryOpNode(tree, defaultUnits, operand) {}

private:
    double onCalculate(double operand) const override { return operand * -1.0; }
    void onReconstruct(Reconstruction & out, Units::ComplexUnit const * units) override;
};

class ParenOpNode final : public UnaryOpNode {
public:
    ParenOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * operand)
        : UnaryOpNode(tree, defaultUnits, operand) {}

private:
    double onCalculate(double operand) const override { return operand; }
    void onReconstruct(Reconstruction & out, Units::ComplexUnit const * units) override;
};

class BinaryOpNode : public Node {
protected:
    BinaryOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * left, Node * right);
    Node & left() const { return m_rLeft; }
    Node & right() const { return m_rRight; }

private:
    bool onEvaluate(double & value) final;
    Units::ComplexUnit const * onUnitEvaluate(Units::UnitContext const & context) final;
    EParseFailure onConflict(Units::UnitContext const & context) final;
    void onReconstruct(Reconstruction & out, Units::ComplexUnit const * units) final;

    // The result of the operator; sets `ok` to false where there is none.
    virtual double onCalculate(bool & ok, double left, double right) const = 0;
    // The units of the result, given those of the operands; null if they conflict.
    virtual Units::ComplexUnit const * onCalculateUnits(Units::ComplexUnit const & left,
                                                        Units::ComplexUnit const & right,
                                                        Units::UnitContext const & context) = 0;
    // Why onCalculateUnits gives null for them.
    virtual EParseFailure onCalculateConflict(Units::ComplexUnit const & left,
                                              Units::ComplexUnit const & right) = 0;
    virtual EToken onOperator() const = 0;

    // The left operand, if it is an operator whose value (or units) must yet be worked out.
    BinaryOpNode * leftWithoutValue() const;
    BinaryOpNode * leftWithoutUnits() const;
    bool evaluateStep(double & value);
    Units::ComplexUnit const * unitEvaluateStep(Units::UnitContext const & context);

    BinaryOpNode * leftOperator() const {
        return m_rLeft.m_bIsBinary ? static_cast<BinaryOpNode *>(&m_rLeft) : nullptr;
    }

    Node & m_rLeft;
    Node & m_rRight;
};

// The operators that demand one dimension of both sides and give it.
class SumOpNode : public BinaryOpNode {
protected:
    using BinaryOpNode::BinaryOpNode;

private:
    Units::ComplexUnit const * onCalculateUnits(Units::ComplexUnit const & left,
                                                Units::ComplexUnit const & right,
                                                Units::UnitContext const & context) final;
    EParseFailure onCalculateConflict(Units::ComplexUnit const &,
                                      Units::ComplexUnit const &) final {
        return EParseFailure::differentUnits;
    }
    bool onShowsUnitsItself() const final { return true; }
};

class PlusOpNode final : public SumOpNode {
public:
    PlusOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * left, Node * right)
        : SumOpNode(tree, defaultUnits, left, right) {}

private:
    double onCalculate(bool &, double left, double right) const override { return left + right; }
    EToken onOperator() const override { return e_PLUS; }
};

class BinaryMinusOpNode final : public SumOpNode {
public:
    BinaryMinusOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * left,
                      Node * right)
        : SumOpNode(tree, defaultUnits, left, right) {}

private:
    double onCalculate(bool &, double left, double right) const override { return left - right; }
    EToken onOperator() const override { return e_MINUS; }
};

class MultOpNode final : public BinaryOpNode {
public:
    MultOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * left, Node * right)
        : BinaryOpNode(tree, defaultUnits, left, right) {}

private:
    double onCalculate(bool &, double left, double right) const override { return left * right; }
    Units::ComplexUnit const * onCalculateUnits(Units::ComplexUnit const & left,
                                                Units::ComplexUnit const & right,
                                                Units::UnitContext const & context) override;
    EParseFailure onCalculateConflict(Units::ComplexUnit const &,
                                      Units::ComplexUnit const &) override {
        return EParseFailure::unitTooLong;
    }
    EToken onOperator() const override { return e_MULTIPLY; }
};

class DivOpNode final : public BinaryOpNode {
public:
    DivOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * left, Node * right)
        : BinaryOpNode(tree, defaultUnits, left, right) {}

private:
    double onCalculate(bool & ok, double left, double right) const override;
    Units::ComplexUnit const * onCalculateUnits(Units::ComplexUnit const & left,
                                                Units::ComplexUnit const & right,
                                                Units::UnitContext const & context) override;
    EParseFailure onCalculateConflict(Units::ComplexUnit const &,
                                      Units::ComplexUnit const &) override {
        return EParseFailure::unitTooLong;
    }
    EToken onOperator() const override { return e_DIVIDE; }
};

class ModuloOpNode final : public BinaryOpNode {
public:
    ModuloOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * left, Node * right)
        : BinaryOpNode(tree, defaultUnits, left, right) {}

private:
    double onCalculate(bool & ok, double left, double right) const override;
    Units::ComplexUnit const * onCalculateUnits(Units::ComplexUnit const & left,
                                                Units::ComplexUnit const & right,
                                                Units::UnitContext const & context) override;
    EParseFailure onCalculateConflict(Units::ComplexUnit const &,
                                      Units::ComplexUnit const &) override {
        return EParseFailure::differentUnits;
    }
    EToken onOperator() const override { return e_MODULO; }
};

class PowerOpNode final : public BinaryOpNode {
public:
    PowerOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, Node * left, Node * right)
        : BinaryOpNode(tree, defaultUnits, left, right) {}

private:
    double onCalculate(bool & ok, double left, double right) const override;
    Units::ComplexUnit const * onCalculateUnits(Units::ComplexUnit const & left,
                                                Units::ComplexUnit const & right,
                                                Units::UnitContext const & context) override;
    EParseFailure onCalculateConflict(Units::ComplexUnit const & left,
                                      Units::ComplexUnit const & right) override;
    EToken onOperator() const override { return e_POWER; }
};

// An operation over any number of operands.
class VarLenOpNode : public Node {
public:
    // Adds `operand`, of the same tree, after the others.
    void append(Node * operand);
    unsigned int operands() const { return m_count; }

protected:
    struct Operand {
        Node * node;
        Operand * next;
    };

    VarLenOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits);
    // The operand of that index, which must exist.
    Node & operand(unsigned int index) const;
    void reconstructOperands(Reconstruction & out);

private:
    Operand * m_pFirst = nullptr;
    Operand * m_pLast = nullptr;
    unsigned int m_count = 0;
};

// Whether bare numbers in an argument take the function's own unit rather than what is expected
// outside; stores that unit, which may be an empty one, in `units`.
bool functionArgumentTakesDefaultUnit(FunctionId function, unsigned int argument,
                                      Units::UnitContext const & context,
                                      Units::ComplexUnit const *& units);
// Whether the result has a unit of its own; stores it, which may be an empty one, in `units`.
bool functionHasFixedResultUnit(FunctionId function, Units::ComplexUnit const *& units);

class FunctionOpNode final : public VarLenOpNode {
public:
    FunctionOpNode(Tree & tree, Units::ComplexUnit const * defaultUnits, FunctionId function);

    FunctionId function() const { return m_function; }

private:
    bool onEvaluate(double & value) override;
    Units::ComplexUnit const * onUnitEvaluate(Units::UnitContext const & context) override;
    EParseFailure onConflict(Units::UnitContext const & context) override;
    void onReconstruct(Reconstruction & out, Units::ComplexUnit const * units) override;

    // The units of the operand of that index, which must exist; null if the function can't take
    // them.
    Units::ComplexUnit const * argumentUnits(unsigned int index,
                                             Units::UnitContext const & context);

    FunctionId const m_function;
};

} // namespace Vn::Expressions

#endif
