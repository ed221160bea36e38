#include "Server/CommonData/Units/UnitContext.h"

#include <algorithm>
#include <cmath>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Units {

namespace {

// What a system, if there is one, has for a kind or for a unit in place of `units`.
template <class What>
void apply(StrongRef<UnitSystem> const & system, What const & what, ComplexUnit & units) {
    if (!system) return;
    ComplexUnit made;
    if (StrongRef<UnitSystemChoice> const choice = system->find(what))
        units = choice->units();
    else if (system->make(what, made))
        units = made;
}

// Whether a text is digits alone: "2/2" is one number too.
bool areDigits(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](wchar_t c) { return Text::isDigit(static_cast<char32_t>(c)); });
}

// Whether a text consists of names, "*" and "/" between them, brackets, and numbers as powers.
bool looksLikeUnits(std::wstring_view text) {
    using namespace Expressions;
    TokenList tokens;
    TokenStream stream(text, tokens);
    TokenKind before = TK_START;
    for (Token * token = stream.after(tokens.first()); token; token = stream.after(token)) {
        stream.discardBefore(token);
        switch (token->kind) {
        case TK_NUMBER:
            if (before != TK_POWER || !areDigits(Text::trimmed(token->text))) return false;
            break;
        case TK_POWER:
            if (before != TK_NAME && before != TK_RIGHT_PAREN) return false;
            break;
        case TK_MULTIPLY:
            if (before == TK_START) return false;
            break;
        case TK_NAME:
        case TK_DIVIDE:
        case TK_LEFT_PAREN:
        case TK_RIGHT_PAREN:
        case TK_END:
            break;
        default:
            return false;
        }
        before = token->kind;
    }
    return before == TK_END;
}

} // namespace

UnitContext::UnitContext() = default;

UnitContext::UnitContext(UnitContext const & other)
    : m_rActiveUnitSystem(other.m_rActiveUnitSystem), m_expectedUnits(other.m_expectedUnits),
      m_bHasExpectedUnits(other.m_bHasExpectedUnits) {
    complete();
}

UnitContext & UnitContext::operator=(UnitContext const & other) {
    m_rActiveUnitSystem = other.m_rActiveUnitSystem;
    m_expectedUnits = other.m_expectedUnits;
    m_bHasExpectedUnits = other.m_bHasExpectedUnits;
    complete();
    return *this;
}

UnitContext::~UnitContext() = default;

// The expected units are complete before other threads can see the context: a copy of units starts
// without its base form.  Units that aren't expected may have a null entry, and are never read.
void UnitContext::complete() {
    if (m_bHasExpectedUnits) m_expectedUnits.validateBase();
}

UnitContext::UnitContext(SimpleUnit const * units)
    : m_expectedUnits(units), m_bHasExpectedUnits(true) {
    complete();
}

UnitContext::UnitContext(ComplexUnit const * units)
    : m_expectedUnits(*units), m_bHasExpectedUnits(true) {
    complete();
}

UnitContext::UnitContext(std::wstring const & text)
    : m_bHasExpectedUnits(UnitSystemChoice::parse(text, m_expectedUnits)) {
    complete();
}

UnitContext::UnitContext(std::string_view utf8) {
    std::wstring text;
    m_bHasExpectedUnits =
        Text::fromUtf8(utf8, text) && UnitSystemChoice::parse(text, m_expectedUnits);
    complete();
}

std::optional<ComplexUnit> UnitContext::parse(std::wstring_view text) {
    if (!looksLikeUnits(text)) return std::nullopt;
    Expressions::Expression const one(L"1 " + std::wstring(text));
    std::optional<double> const value = one.value();
    std::optional<ComplexUnit> units = value ? one.units() : std::nullopt;
    if (!units) return std::nullopt;
    // A constant among the names shows in the value of one of it.
    double const expected = units->toInternal(1.0);
    if (!(std::fabs(*value - expected) <= 1e-9 * std::fabs(expected))) return std::nullopt;
    return units;
}

std::optional<ComplexUnit> UnitContext::parse(std::string_view utf8) {
    std::wstring text;
    return Text::fromUtf8(utf8, text) ? parse(text) : std::nullopt;
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system) : m_rActiveUnitSystem(system) {}

// Expects what the system has for an identifier; false if it has nothing.
bool UnitContext::takeChoice(std::string const & id) {
    if (!m_rActiveUnitSystem) return false;
    StrongRef<UnitSystemChoice> const choice = m_rActiveUnitSystem->find(id);
    if (!choice) return false;
    m_expectedUnits = choice->units();
    m_bHasExpectedUnits = true;
    return true;
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system, SimpleUnit const * units)
    : m_rActiveUnitSystem(system), m_expectedUnits(units), m_bHasExpectedUnits(true) {
    apply(system, units->simpleUnitType(), m_expectedUnits);
    complete();
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system, ComplexUnit const * units)
    : m_rActiveUnitSystem(system), m_expectedUnits(*units), m_bHasExpectedUnits(true) {
    apply(system, &m_expectedUnits, m_expectedUnits);
    complete();
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system, std::wstring const & text)
    : m_rActiveUnitSystem(system),
      m_bHasExpectedUnits(UnitSystemChoice::parse(text, m_expectedUnits)) {
    if (m_bHasExpectedUnits) apply(system, &m_expectedUnits, m_expectedUnits);
    complete();
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system, std::string const & id,
                         SimpleUnit const * units)
    : m_rActiveUnitSystem(system), m_expectedUnits(units) {
    if (!takeChoice(id) && units) {
        m_bHasExpectedUnits = true;
        apply(system, units->simpleUnitType(), m_expectedUnits);
    }
    complete();
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system, std::string const & id,
                         ComplexUnit const * units)
    : m_rActiveUnitSystem(system), m_expectedUnits(*units) {
    if (!takeChoice(id)) {
        m_bHasExpectedUnits = true;
        apply(system, &m_expectedUnits, m_expectedUnits);
    }
    complete();
}

UnitContext::UnitContext(StrongRef<UnitSystem> const & system, std::string const & id,
                         std::wstring const & text)
    : m_rActiveUnitSystem(system) {
    if (!takeChoice(id)) {
        m_bHasExpectedUnits = UnitSystemChoice::parse(text, m_expectedUnits);
        if (m_bHasExpectedUnits) apply(system, &m_expectedUnits, m_expectedUnits);
    }
    complete();
}

ComplexUnit * UnitContext::cloneExpectedUnits() const { return ComplexUnit::make(m_expectedUnits); }

SimpleUnit const * UnitContext::findSimpleExpectedUnits() const {
    SimpleUnit const * unit = nullptr;
    return m_expectedUnits.isSimpleUnit(&unit) ? unit : nullptr;
}

StrongRef<UnitSystem> UnitContext::activeUnitSystem() const { return m_rActiveUnitSystem; }

bool UnitContext::findDefault(ComplexUnit const & units, ComplexUnit & out) const {
    if (m_bHasExpectedUnits && m_expectedUnits.isDimensionallyEquivalent(&units)) {
        out = m_expectedUnits;
        return true;
    }
    if (!m_rActiveUnitSystem) return false;
    if (StrongRef<UnitSystemChoice> const choice = m_rActiveUnitSystem->find(&units)) {
        out = choice->units();
        return true;
    }
    return m_rActiveUnitSystem->make(&units, out);
}

SimpleUnit const * UnitContext::findDefault(ESimpleUnitType type) const {
    if (m_bHasExpectedUnits) {
        SimpleUnit const * const unit = findSimpleExpectedUnits();
        if (unit && unit->simpleUnitType() == type) return unit;
    }
    SimpleUnit const * unit = nullptr;
    if (m_rActiveUnitSystem)
        if (StrongRef<UnitSystemChoice> const choice = m_rActiveUnitSystem->find(type);
            choice && choice->units().isSimpleUnit(&unit))
            return unit;
    return nullptr;
}

} // namespace Vn::Units
