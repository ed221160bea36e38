#include <cmath>
#include <memory>
#include <optional>

#include <boost/container/small_vector.hpp>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/FractionHintInternal.h"
#include "Server/CommonData/Expressions/ParserInternal.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Expressions/Vocabulary.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitContext.h"

namespace Vn::Expressions {

using Units::ComplexUnit;
using Units::SimpleUnit;
using Units::UnitContext;

namespace {

bool isEnd(Token const * token) { return token && token->kind == TK_END; }
bool isKind(Token const * token, TokenKind kind) { return token && token->kind == kind; }

bool isOperator(TokenKind kind) {
    return kind == TK_PLUS || kind == TK_MINUS || kind == TK_MULTIPLY || kind == TK_DIVIDE ||
           kind == TK_MODULO || kind == TK_POWER;
}

// The length of a fraction without the blanks after it, which belong to the token.
unsigned int lengthOfFraction(Token const & token) {
    std::size_t length = token.text.size();
    while (length > 0 && Text::isSpace(static_cast<char32_t>(token.text[length - 1]))) --length;
    return static_cast<unsigned int>(length);
}

// How far "2E" reaches in a text that begins with it.
unsigned int lengthOfNumber(std::wstring_view text) {
    auto const at = [&](std::size_t i) { return i < text.size() ? text[i] : L'\0'; };
    auto const isDigit = [&](std::size_t i) { return Text::isDigit(static_cast<char32_t>(at(i))); };
    std::size_t length = 0;
    while (isDigit(length)) ++length;
    if (at(length) == L'.' || at(length) == L',') ++length;
    while (isDigit(length)) ++length;
    if (at(length) == L'e' || at(length) == L'E') ++length;
    if (at(length) == L'+' || at(length) == L'-') ++length;
    return static_cast<unsigned int>(length);
}

// Why a rule failed: the reason, the piece at fault, and how far the text was understood when that
// was noticed.  These are positions, not tokens, as tokens that are done with are used again.
struct Failure {
    EParseFailure reason = EParseFailure::none;
    unsigned int start = 0;
    unsigned int end = 0;
    unsigned int reached = 0;
    unsigned int argumentsGiven = 0;
};

struct TreeDeleter {
    void operator()(Tree * tree) const { Tree::destroy(tree); }
};

// The units after a number, while they are read.  A rule that fails gives back what it added.
class UnitList {
public:
    struct Mark {
        std::size_t numerator;
        std::size_t denominator;
    };

    Mark mark() const { return {m_numerator.size(), m_denominator.size()}; }
    std::size_t factors() const { return m_numerator.size() + m_denominator.size(); }
    std::size_t factorsSince(Mark mark) const {
        return factors() - mark.numerator - mark.denominator;
    }

    void clear() {
        m_numerator.clear();
        m_denominator.clear();
    }

    void add(SimpleUnit const * unit, bool inverted) {
        (inverted ? m_denominator : m_numerator).push_back(unit);
    }

    void giveBack(Mark mark) {
        m_numerator.resize(mark.numerator);
        m_denominator.resize(mark.denominator);
    }

    // What was added since `mark`, `times` times more.
    void repeat(Mark mark, std::size_t times) {
        repeat(m_numerator, mark.numerator, times);
        repeat(m_denominator, mark.denominator, times);
    }

    ComplexUnit const * keepIn(Tree & tree) const {
        return tree.keep({m_numerator.data(), m_numerator.size()},
                         {m_denominator.data(), m_denominator.size()});
    }

private:
    using List = boost::container::small_vector<SimpleUnit const *, 8>;

    static void repeat(List & list, std::size_t from, std::size_t times) {
        std::size_t const count = list.size() - from;
        list.reserve(list.size() + count * times);
        for (std::size_t i = 0; i < count * times; ++i) list.push_back(list[from + i]);
    }

    List m_numerator;
    List m_denominator;
};

// The rules, with the state of one parse.
class Rules {
public:
    Rules(Tree & tree, UnitContext const & context, TokenStream & tokens, Token * first)
        : m_rTree(tree), m_rContext(context), m_rTokens(tokens), m_pCurrent(first) {}

    [[gnu::noinline]] Node * parseExpression(Token * lookahead, ComplexUnit const * defaults);

    // The last token consumed; the first of the list before anything was.
    Token * current() const { return m_pCurrent; }
    // The token at which nesting went too deep, if it did.
    Token * tooDeep() const { return m_pTooDeep; }
    // Whether units conflict in what was parsed, and why.
    bool conflict() const { return m_conflict.reason != EParseFailure::none; }
    Failure const & conflictFailure() const { return m_conflict; }

    // Why the text wasn't consumed to its end, or held nothing that is complete.
    [[gnu::cold]] Failure syntaxFailure(bool hasRoot);

private:
    // Each level of brackets, functions or signs is entered and left.  Entering fails beyond the
    // limit, and the token that would have entered is remembered.
    bool enter(Token * token);
    void leave() { --m_level; }

    // The rules call one another down to the limit of nesting, so none of those on the way may have
    // big locals, or take in a rule that has.
    [[gnu::noinline]] Node * parseTerm(Token * lookahead, ComplexUnit const * defaults);
    [[gnu::noinline]] Node * parseFactor(Token * lookahead, ComplexUnit const * defaults);
    [[gnu::noinline]] Node * parseMinus(Token * minus, ComplexUnit const * defaults);
    [[gnu::noinline]] Node * parseParen(Token * bracket, ComplexUnit const * defaults);
    [[gnu::noinline]] Node * parseNumber(Token * number, ComplexUnit const * defaults);
    [[gnu::noinline]] Node * parseName(Token * name, ComplexUnit const * defaults);
    [[gnu::noinline]] Node * parseFunction(Token * name, FunctionId function,
                                           ComplexUnit const * defaults);

    // Works out the units and the value of a new node and returns it.  What is settled here would
    // be settled to the same end later; but so a long sum is gone through once instead of three
    // times, and no later evaluation goes deep.  Once units conflict, which ends the parse anyway,
    // nothing more is tried; that is the fault of the token `at`.
    [[gnu::noinline]] Node * settled(Node * node, Token const & at);

    // Rules note why they fail, and go back to another rule that may do better.  What is noted is
    // the failure that lies farthest on in the text, and of several there the last, which knows
    // most.  It counts if it lies no nearer than where the parse stops in the end.
    [[gnu::cold]] void note(EParseFailure reason, Token const & reached, unsigned int start,
                            unsigned int end, unsigned int argumentsGiven = 0);
    [[gnu::cold]] void note(EParseFailure reason, Token const & reached, Token const & piece) {
        note(reason, reached, piece.start, piece.end);
    }
    // `token` stands where an operand belongs.
    [[gnu::cold]] void noteNoOperand(Token const & token);
    // `token` stands after `before`, with which something complete ended.
    [[gnu::cold]] void noteStop(Token const & token, Token const & before);
    [[gnu::cold]] void noteStopAtName(Token const & name, Token const & before);
    // No text can hold `token`.
    [[gnu::cold]] void noteUnusable(Token const & token);
    // Where ")" belongs stands the next token.
    [[gnu::cold]] void noteNotClosed(Token const & bracket);
    // The arguments of a function end at the next token.  `complete` tells whether the last of them
    // could be read; otherwise it would have begun after `opening`.
    [[gnu::cold]] void noteArguments(Token const & name, FunctionOpNode const & function,
                                     bool complete, Token const * opening);
    [[gnu::cold]] void noteUnitPower(Token const & power, Token const * exponent, bool tooLong);
    [[gnu::cold]] void noteUnitBracket(Token const & bracket, Token const & before);
    [[gnu::cold]] void noteConflict(Node & node, Token const & at);

    [[gnu::noinline]] Node * parseCall(Token * name, FunctionId function,
                                       ComplexUnit const * defaults);

    // The units that begin at `lookahead`; null, with nothing consumed, if there are none.
    [[gnu::noinline]] ComplexUnit const * parseUnits(Token * lookahead);
    [[gnu::noinline]] unsigned int parseUnitExpression(Token * lookahead, bool inverted);
    [[gnu::noinline]] unsigned int parseUnitTerm(Token * lookahead, bool inverted);
    [[gnu::noinline]] unsigned int parseUnitPower(Token * lookahead, bool inverted);
    [[gnu::noinline]] unsigned int parseUnitAtom(Token * lookahead, bool inverted);
    [[gnu::noinline]] unsigned int parseUnitBracket(Token * bracket, bool inverted);

    [[gnu::noinline]] Node * makeUnary(Token const & op, ComplexUnit const * defaults,
                                       Node * operand);
    [[gnu::noinline]] Node * makeBinary(Token const & op, ComplexUnit const * defaults, Node * left,
                                        Node * right);
    [[gnu::noinline]] FunctionOpNode * makeFunction(ComplexUnit const * defaults,
                                                    FunctionId function);

    // Forty degrees below the zero of a scale, not below absolute zero: mirrors a number with such
    // a unit, if `factor`, whose first token is of that kind, is one.
    [[gnu::noinline]] bool negatedInPlace(Node & factor, TokenKind first);

    // What bare numbers in the next argument of `function` take.
    [[gnu::noinline]] ComplexUnit const * argumentDefaults(FunctionOpNode const & function,
                                                           ComplexUnit const * inherited) const;

    // After a bracket that wasn't closed: makes `bracket` the current token and, unless the list
    // ends there, the token after it unusable.
    void rejectAfter(Token * token);

    Token * after(Token * token) const { return m_rTokens.after(token); }
    Token * after() const { return after(m_pCurrent); }

    Tree & m_rTree;
    UnitContext const & m_rContext;
    TokenStream & m_rTokens;
    Token * m_pCurrent;
    Token * m_pTooDeep = nullptr;
    unsigned int m_level = 0;
    Failure m_conflict; // of units, somewhere
    Failure m_failure;  // of the text
    UnitList m_units;
};

Node * Rules::parseExpression(Token * lookahead, ComplexUnit const * defaults) {
    Node * left = parseTerm(lookahead, defaults);
    if (!left) return nullptr;
    for (;;) {
        Token * const op = after();
        if (!isKind(op, TK_PLUS) && !isKind(op, TK_MINUS)) return left;
        Token * const before = m_pCurrent;
        Node * const right = parseTerm(after(op), defaults);
        if (!right) {
            m_pCurrent = before; // so that the end check reports the operator
            return left;
        }
        left = makeBinary(*op, defaults, left, right);
        // At the outermost level no rule comes back to what lies after.
        if (m_level == 0) m_rTokens.discardBefore(m_pCurrent);
    }
}

Node * Rules::parseTerm(Token * lookahead, ComplexUnit const * defaults) {
    Node * left = parseFactor(lookahead, defaults);
    if (!left) return nullptr;
    for (;;) {
        Token * const op = after();
        TokenKind const kind = op ? op->kind : TK_END;
        if (kind != TK_MULTIPLY && kind != TK_DIVIDE && kind != TK_MODULO && kind != TK_POWER)
            return left;
        // Bare numbers in an exponent are always pure.
        Token * const before = m_pCurrent;
        Node * const right =
            parseFactor(after(op), kind == TK_POWER ? &ComplexUnit::none() : defaults);
        if (!right) {
            m_pCurrent = before;
            return left;
        }
        left = makeBinary(*op, defaults, left, right);
    }
}

Node * Rules::makeBinary(Token const & op, ComplexUnit const * defaults, Node * left,
                         Node * right) {
    switch (op.kind) {
    case TK_PLUS:
        return settled(m_rTree.make<PlusOpNode>(defaults, left, right), op);
    case TK_MINUS:
        return settled(m_rTree.make<BinaryMinusOpNode>(defaults, left, right), op);
    case TK_MULTIPLY:
        return settled(m_rTree.make<MultOpNode>(defaults, left, right), op);
    case TK_DIVIDE:
        return settled(m_rTree.make<DivOpNode>(defaults, left, right), op);
    case TK_MODULO:
        return settled(m_rTree.make<ModuloOpNode>(defaults, left, right), op);
    default:
        return settled(m_rTree.make<PowerOpNode>(defaults, left, right), op);
    }
}

Node * Rules::makeUnary(Token const & op, ComplexUnit const * defaults, Node * operand) {
    if (op.kind == TK_MINUS) return settled(m_rTree.make<UnaryMinusOpNode>(defaults, operand), op);
    return settled(m_rTree.make<ParenOpNode>(defaults, operand), op);
}

Node * Rules::parseFactor(Token * lookahead, ComplexUnit const * defaults) {
    if (!lookahead || m_pTooDeep) return nullptr;
    switch (lookahead->kind) {
    case TK_NUMBER:
        return parseNumber(lookahead, defaults);
    case TK_NAME:
        return parseName(lookahead, defaults);
    case TK_LEFT_PAREN:
        return parseParen(lookahead, defaults);
    case TK_MINUS:
        return parseMinus(lookahead, defaults);
    default:
        noteNoOperand(*lookahead);
        return nullptr;
    }
}

bool Rules::enter(Token * token) {
    if (m_level == Limits::c_nestingLevels && !m_pTooDeep) m_pTooDeep = token;
    if (m_pTooDeep) return false;
    ++m_level;
    return true;
}

Node * Rules::settled(Node * node, Token const & at) {
    if (conflict()) return node;
    double value = 0.0;
    if (node->units(m_rContext))
        node->evaluate(value);
    else
        noteConflict(*node, at);
    return node;
}

Node * Rules::parseMinus(Token * minus, ComplexUnit const * defaults) {
    if (!enter(minus)) return nullptr;
    m_pCurrent = minus;
    Node * const factor = parseFactor(after(minus), defaults);
    leave();
    if (!factor || negatedInPlace(*factor, after(minus)->kind)) return factor;
    return makeUnary(*minus, defaults, factor);
}

bool Rules::negatedInPlace(Node & factor, TokenKind first) {
    // This holds for a number written with digits, which may have got signs already.
    NumericNode * const number = first == TK_NUMBER  ? static_cast<NumericNode *>(&factor)
                                 : first == TK_MINUS ? dynamic_cast<NumericNode *>(&factor)
                                                     : nullptr;
    SimpleUnit const * unit = nullptr;
    if (!number || !number->ownUnits().isSimpleUnit(&unit)) return false;
    double const offset = unit->internalConversionOffset();
    if (offset == 0.0) return false;
    number->value(2.0 * offset - number->value());
    return true;
}

void Rules::rejectAfter(Token * token) {
    m_pCurrent = token;
    if (isEnd(token)) return;
    if (Token * const next = after(token); next && !isEnd(next)) next->kind = TK_UNKNOWN;
}

Node * Rules::parseParen(Token * bracket, ComplexUnit const * defaults) {
    if (!enter(bracket)) return nullptr;
    m_pCurrent = bracket;
    Node * const inner = parseExpression(after(bracket), defaults);
    leave();
    if (!inner) {
        if (isKind(after(bracket), TK_SEMICOLON)) noteStop(*after(bracket), *bracket);
        return nullptr;
    }
    if (isKind(after(), TK_RIGHT_PAREN)) {
        m_pCurrent = after();
        return makeUnary(*bracket, defaults, inner);
    }
    noteNotClosed(*bracket);
    rejectAfter(bracket);
    return nullptr;
}

Node * Rules::parseNumber(Token * number, ComplexUnit const * defaults) {
    m_pCurrent = number;
    ComplexUnit const * const units = parseUnits(after(number));
    NumericNode * const node = m_rTree.make<NumericNode>(
        defaults, units ? units->toInternal(number->value) : number->value, units);
    node->format(number->format);
    return node;
}

Node * Rules::parseName(Token * name, ComplexUnit const * defaults) {
    Tokens const & tokens = *Tokens::get();
    if (std::optional const function = functionOfToken(tokens.getFunctionToken(name->text)))
        return parseFunction(name, *function, defaults);
    if (EToken const constant = tokens.getConstantToken(name->text); constant != e_NONE) {
        name->kind = TK_CONSTANT;
        m_pCurrent = name;
        return m_rTree.make<ConstantNode>(defaults, constant, parseUnits(after(name)));
    }
    ComplexUnit const * const units = parseUnits(name);
    if (!units) {
        note(EParseFailure::unknownName, *name, *name);
        return nullptr;
    }
    NumericNode * const node = m_rTree.make<NumericNode>(defaults, units->toInternal(1.0), units);
    node->unitOnly(true);
    return node;
}

ComplexUnit const * Rules::argumentDefaults(FunctionOpNode const & function,
                                            ComplexUnit const * inherited) const {
    functionArgumentTakesDefaultUnit(function.function(), function.operands(), m_rContext,
                                     inherited);
    return inherited;
}

Node * Rules::parseFunction(Token * name, FunctionId function, ComplexUnit const * defaults) {
    if (!enter(name)) return nullptr;
    Node * const node = parseCall(name, function, defaults);
    leave();
    return node;
}

FunctionOpNode * Rules::makeFunction(ComplexUnit const * defaults, FunctionId function) {
    return m_rTree.make<FunctionOpNode>(defaults, function);
}

Node * Rules::parseCall(Token * name, FunctionId function, ComplexUnit const * defaults) {
    name->kind = TK_FUNCTION;
    FunctionOpNode * const node = makeFunction(defaults, function);
    Token * const bracket = after(name);
    if (!isKind(bracket, TK_LEFT_PAREN)) {
        note(EParseFailure::functionWithoutBrackets, bracket ? *bracket : *name, *name);
        return nullptr;
    }
    if (isEnd(after(bracket))) {
        if (functionArity(function) > 0)
            note(EParseFailure::wrongArgumentCount, *after(bracket), *name);
        else
            note(EParseFailure::bracketNotClosed, *after(bracket), *bracket);
        return nullptr;
    }
    m_pCurrent = bracket;
    Node * argument = nullptr;
    Token * opening = bracket;
    for (;;) {
        argument = parseExpression(after(), argumentDefaults(*node, defaults));
        if (!argument) break;
        node->append(argument);
        if (!isKind(after(), TK_SEMICOLON)) break;
        m_pCurrent = opening = after();
    }
    if (node->operands() != functionArity(function)) {
        noteArguments(*name, *node, argument != nullptr, opening);
        return nullptr;
    }
    // A missing bracket at the end of the text is accepted.
    if (isKind(after(), TK_RIGHT_PAREN)) m_pCurrent = after();
    return settled(node, *name);
}

ComplexUnit const * Rules::parseUnits(Token * lookahead) {
    // Most numbers have nothing after them that could be a unit.
    if (!isKind(lookahead, TK_NAME) && !isKind(lookahead, TK_UNIT) &&
        !isKind(lookahead, TK_LEFT_PAREN))
        return nullptr;
    m_units.clear();
    if (parseUnitExpression(lookahead, false) == 0) return nullptr;
    // Once units conflict the tree is lost, and what it would have held isn't needed.
    if (!conflict() && m_rTree.unitsExhausted())
        m_conflict = {EParseFailure::unitTooLong, lookahead->start, m_pCurrent->end};
    return conflict() ? &ComplexUnit::none() : m_units.keepIn(m_rTree);
}

unsigned int Rules::parseUnitExpression(Token * lookahead, bool inverted) {
    unsigned int count = parseUnitTerm(lookahead, inverted);
    if (count == 0) return 0;
    for (;;) {
        Token * const op = after();
        bool const divide = isKind(op, TK_DIVIDE);
        if (!divide && !isKind(op, TK_MULTIPLY)) return count;
        unsigned int const taken = parseUnitTerm(after(op), inverted != divide);
        if (taken == 0) return count; // the operator is for the enclosing expression
        count += taken + 1;
    }
}

unsigned int Rules::parseUnitTerm(Token * lookahead, bool inverted) {
    unsigned int count = 0;
    while (unsigned int const taken = parseUnitPower(lookahead, inverted)) {
        count += taken;
        lookahead = after();
    }
    return count;
}

unsigned int Rules::parseUnitPower(Token * lookahead, bool inverted) {
    UnitList::Mark const mark = m_units.mark();
    unsigned int const count = parseUnitAtom(lookahead, inverted);
    if (count == 0 || !isKind(after(), TK_POWER)) return count;
    Token * const power = after();
    Token * const number = after(power);
    double const exponent = isKind(number, TK_NUMBER) ? number->value : 0.0;
    double const more = static_cast<double>(m_units.factorsSince(mark)) * (exponent - 1.0);
    bool const isWhole = exponent > 0.0 && exponent == std::floor(exponent);
    if (isWhole && static_cast<double>(m_units.factors()) + more <=
                       static_cast<double>(Limits::c_unitFactors)) {
        m_units.repeat(mark, static_cast<std::size_t>(exponent) - 1);
        m_pCurrent = number;
        return count + 2;
    }
    noteUnitPower(*power, number, isWhole);
    power->kind = TK_UNKNOWN;
    return count;
}

unsigned int Rules::parseUnitAtom(Token * lookahead, bool inverted) {
    if (!lookahead || m_pTooDeep) return 0;
    if (lookahead->kind == TK_NAME || lookahead->kind == TK_UNIT) {
        SimpleUnit const * const unit = Tokens::get()->findMatchingUnit(lookahead->text);
        if (!unit) return 0;
        if (m_units.factors() >= Limits::c_unitFactors) {
            note(EParseFailure::unitTooLong, *lookahead, *lookahead);
            return 0;
        }
        lookahead->kind = TK_UNIT;
        m_units.add(unit, inverted);
        m_pCurrent = lookahead;
        return 1;
    }
    if (lookahead->kind != TK_LEFT_PAREN) return 0;
    if (!enter(lookahead)) return 0;
    unsigned int const count = parseUnitBracket(lookahead, inverted);
    leave();
    return count;
}

unsigned int Rules::parseUnitBracket(Token * bracket, bool inverted) {
    Token * const before = m_pCurrent;
    UnitList::Mark const mark = m_units.mark();
    unsigned int const count = parseUnitExpression(after(bracket), inverted);
    if (count == 0) return 0;
    if (isKind(after(), TK_RIGHT_PAREN)) {
        m_pCurrent = after();
        return count + 2;
    }
    noteUnitBracket(*bracket, *before);
    m_units.giveBack(mark);
    rejectAfter(before);
    return 0;
}

// ---- Why rules fail -----------------------------------------------------------------------------

void Rules::note(EParseFailure reason, Token const & reached, unsigned int start, unsigned int end,
                 unsigned int argumentsGiven) {
    if (m_failure.reason != EParseFailure::none && reached.start < m_failure.reached) return;
    m_failure = {reason, start, end, reached.start, argumentsGiven};
}

void Rules::noteUnusable(Token const & token) {
    bool const isNumber = Text::isDigit(static_cast<char32_t>(token.text.front()));
    unsigned int const length =
        isNumber ? lengthOfNumber(token.text)
                 : static_cast<unsigned int>(
                       Text::length16(token.text.substr(0, Text::characterLength(token.text, 0))));
    note(isNumber ? EParseFailure::numberIncomplete : EParseFailure::unusableCharacter, token,
         token.start, token.start + length);
}

void Rules::noteNoOperand(Token const & token) {
    if (token.kind == TK_UNKNOWN || token.kind == TK_EQUALS) {
        noteUnusable(token);
        return;
    }
    // An operator comes after the current token, a sign or a bracket is it.
    Token const * const before = m_pCurrent == &token         ? nullptr
                                 : m_pCurrent->next == &token ? m_pCurrent
                                                              : m_pCurrent->next;
    TokenKind const kind = before ? before->kind : TK_START;
    if (isOperator(kind)) {
        if (before == m_pCurrent && token.kind == TK_END)
            note(EParseFailure::textEndsTooSoon, token, token);
        else
            note(EParseFailure::operandMissing, token, *before);
    } else if (token.kind == TK_RIGHT_PAREN && kind == TK_LEFT_PAREN) {
        note(EParseFailure::emptyBrackets, token, before->start, token.end);
    } else if (token.kind == TK_RIGHT_PAREN && !before) {
        note(EParseFailure::bracketClosesNone, token, token);
    } else if (token.kind == TK_SEMICOLON && !before) {
        note(EParseFailure::semicolonOutsideFunction, token, token);
    } else if (token.kind == TK_SEMICOLON || isOperator(token.kind)) {
        note(EParseFailure::leftOperandMissing, token, token);
    } else if (token.kind == TK_END && kind == TK_LEFT_PAREN) {
        note(EParseFailure::bracketNotClosed, token, *before);
    } else if (kind == TK_SEMICOLON) {
        note(EParseFailure::operandMissing, token, *before);
    } else {
        note(EParseFailure::textEndsTooSoon, token, token);
    }
}

void Rules::noteStop(Token const & token, Token const & before) {
    switch (token.kind) {
    case TK_NUMBER:
        if (isFraction(before)) {
            note(EParseFailure::numberAfterFraction, token, before.start,
                 before.start + lengthOfFraction(before));
            return;
        }
        [[fallthrough]];
    case TK_LEFT_PAREN:
        note(EParseFailure::operatorMissing, token, token);
        return;
    case TK_NAME:
    case TK_FUNCTION:
    case TK_UNIT:
    case TK_CONSTANT:
        noteStopAtName(token, before);
        return;
    case TK_RIGHT_PAREN:
        note(EParseFailure::bracketClosesNone, token, token);
        return;
    case TK_SEMICOLON:
        note(EParseFailure::semicolonOutsideFunction, token, token);
        return;
    case TK_UNKNOWN:
    case TK_EQUALS:
        noteUnusable(token);
        return;
    case TK_PLUS:
    case TK_MINUS:
    case TK_MULTIPLY:
    case TK_DIVIDE:
    case TK_MODULO:
    case TK_POWER:
        note(EParseFailure::operandMissing, token, token);
        return;
    case TK_START:
    case TK_END:
        note(EParseFailure::textEndsTooSoon, token, token);
        return;
    }
}

void Rules::noteStopAtName(Token const & name, Token const & before) {
    Tokens const & tokens = *Tokens::get();
    bool const isUnit = tokens.getFunctionToken(name.text) == e_NONE &&
                        tokens.getConstantToken(name.text) == e_NONE;
    if (!Vocabulary::isKnown(name.text))
        note(EParseFailure::unknownName, name, name);
    else if (isUnit && before.kind == TK_RIGHT_PAREN)
        note(EParseFailure::unitAfterBracket, name, name);
    else
        note(EParseFailure::operatorMissing, name, name);
}

void Rules::noteNotClosed(Token const & bracket) {
    Token const & next = *after();
    if (isEnd(&next))
        note(EParseFailure::bracketNotClosed, next, bracket);
    else
        noteStop(next, *m_pCurrent);
}

void Rules::noteArguments(Token const & name, FunctionOpNode const & function, bool complete,
                          Token const * opening) {
    Token const & next = *after();
    bool const atEnd = isEnd(&next) || isKind(&next, TK_RIGHT_PAREN);
    if (atEnd && (complete || m_pCurrent == opening)) {
        note(EParseFailure::wrongArgumentCount, next, name.start, name.end, function.operands());
    } else if (complete) {
        noteStop(next, *m_pCurrent);
    }
}

void Rules::noteUnitPower(Token const & power, Token const * exponent, bool tooLong) {
    if (isKind(exponent, TK_UNKNOWN)) {
        noteUnusable(*exponent);
        return;
    }
    bool const isThere = exponent && !isEnd(exponent);
    note(tooLong ? EParseFailure::unitTooLong : EParseFailure::exponentOfUnit,
         exponent ? *exponent : power, power.start, isThere ? exponent->end : power.end);
}

void Rules::noteUnitBracket(Token const & bracket, Token const & before) {
    Token const & next = *after();
    if (isEnd(&next))
        note(EParseFailure::bracketNotClosed, next, bracket);
    else if (before.next == &bracket)
        note(EParseFailure::operatorMissing, next, bracket);
    else
        note(EParseFailure::otherThanUnitsInBrackets, next, next);
}

void Rules::noteConflict(Node & node, Token const & at) {
    m_conflict = {node.conflict(m_rContext), at.start, at.end};
}

Failure Rules::syntaxFailure(bool hasRoot) {
    Token const * const next = after();
    Token const & stop = next ? *next : *m_pCurrent;
    bool const isNoted = m_failure.reason != EParseFailure::none;
    if (!isNoted || (hasRoot && m_failure.reached < stop.start)) {
        m_failure.reason = EParseFailure::none;
        noteStop(stop, *m_pCurrent);
    }
    return m_failure;
}

void tell(Failure const & failure, ParseResult & result) {
    result.failure(failure.reason, failure.start, failure.end, failure.argumentsGiven);
}

// The end check: whether the text was consumed to its end; otherwise says what happened.
bool consumedAll(Node const * root, Token const * current, Token const * after,
                 ParseResult & result) {
    if (current->kind == TK_END || !after) {
        result.abruptTermination();
        return false;
    }
    if (!isEnd(after)) {
        result.failedToParse(after->start);
        return false;
    }
    if (!root) result.abruptTermination();
    return root != nullptr;
}

// Works out the units and holds them against what is expected.  Returns whether the tree is good.
// `start` and `end` are those of the expression.
bool settleUnits(Node & root, UnitContext const & context, ComplexUnit const * expected,
                 unsigned int start, unsigned int end, ParseResult & result) {
    ComplexUnit const * units = root.units(context);
    if (expected && units && !units->isDimensionallyEquivalent(expected) &&
        !expected->isUnitless() && units->isUnitless()) {
        // A bare expression takes the expected units as a whole.
        if (root.defaultUnits().isUnitless()) root.setDefaultUnits(*expected);
        root.useDefaultUnits(true);
        units = root.units(context);
    }
    if (!units) {
        result.unitsDontEval();
        result.failure(root.conflict(context), start, end);
        return false;
    }
    if (!expected) {
        result.parsedOk();
        return true;
    }
    if (!units->isDimensionallyEquivalent(expected)) {
        result.unitMismatch(*expected, *units);
        result.failure(EParseFailure::otherThanExpectedUnits, start, end);
        return false;
    }
    if (context.hasExpectedUnits() && !root.defaultUnits().isIdentical(expected))
        root.setDefaultUnits(*expected);
    result.parsedOk();
    return true;
}

} // namespace

Parser const * Parser::get() {
    static constexpr Parser s_parser;
    return &s_parser;
}

Node * Parser::parse(std::wstring_view text, UnitContext const & context,
                     ComplexUnit const * expected, ParseResult & result) const {
    TokenList list;
    TokenStream tokens(text, list);
    Token * const first = tokens.after(list.first());
    if (isEnd(first)) {
        result.expressionIsEmpty();
        result.failure(EParseFailure::emptyText, 0, 0);
        return nullptr;
    }
    std::unique_ptr<Tree, TreeDeleter> tree(Tree::make());
    // The context may end before the tree does.
    if (expected) expected = tree->keep(*expected);
    unsigned int const start = first->start;
    Rules rules(*tree, context, tokens, first);
    Node * const root = rules.parseExpression(first, expected);
    if (Token const * const token = rules.tooDeep()) {
        result.failedToParse(token->start);
        result.failure(EParseFailure::nestedTooDeep, token->start, token->end);
        return nullptr;
    }
    if (!consumedAll(root, rules.current(), tokens.after(rules.current()), result)) {
        tell(rules.syntaxFailure(root != nullptr), result);
        return nullptr;
    }
    if (rules.conflict()) {
        result.unitsDontEval();
        tell(rules.conflictFailure(), result);
        return nullptr;
    }
    if (!settleUnits(*root, context, expected, start, rules.current()->end, result)) return nullptr;
    static_cast<void>(tree.release());
    return root;
}

} // namespace Vn::Expressions
