#include "Server/CommonData/Expressions/Tokens.h"

#include <algorithm>
#include <limits>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/PerLanguage.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"

namespace Vn::Expressions {

namespace {

// The standard acceleration of gravity (3rd CGPM, 1901) in cm/s^2 and the speed of light in vacuum
// (17th CGPM, 1983) in cm/s.
constexpr double c_constants[] = {3.141592653589793, 2.718281828459045, 980.665, 29979245800.0};

constexpr double c_magnitudes[] = {
    1e18,  1e18,  1e15,  1e15,  1e12,  1e12,  1e9,   1e9,   1e6,   1e6,   1e3,   // exa to kilo
    1e3,   100,   100,   10,    10,    10,    0.1,   0.1,   0.01,  0.01,  0.001, // kilo to milli
    0.001, 1e-06, 1e-06, 1e-09, 1e-09, 1e-12, 1e-12, 1e-15, 1e-15, 1e-18, 1e-18};
static_assert(std::size(c_magnitudes) == e_ATTO_ABBR - e_EXA + 1);

constexpr std::wstring_view c_defaultStrings[] = {
#define VN_TOKEN(number, name, text) text,
#include "Server/CommonData/Expressions/Tokens.inc"
};
static_assert(std::size(c_defaultStrings) == c_tokens);

constexpr EToken c_fullMagnitudes[] = {e_EXA,   e_PETA, e_TERA,  e_GIGA,  e_MEGA,  e_KILO,
                                       e_HECTO, e_DECA, e_DECI,  e_CENTI, e_MILLI, e_MICRO,
                                       e_NANO,  e_PICO, e_FEMTO, e_ATTO};

// The units of the four constants, filled by an initialiser of the module.
struct ConstantUnits {
    std::array<Units::ComplexUnit, 4> units;

    ConstantUnits() {
        Units::BaseUnit const * const length = Units::LengthUnit::staticInternalBaseUnit();
        Units::BaseUnit const * const time = Units::TimeUnit::staticInternalBaseUnit();
        Units::ComplexUnit & gravity = units[e_GRAVITY_CONSTANT - e_PI_CONSTANT];
        gravity.assign(length);
        gravity.addToDenominator(time);
        gravity.addToDenominator(time);
        Units::ComplexUnit & speedOfLight = units[e_SPEED_OF_LIGHT_CONSTANT - e_PI_CONSTANT];
        speedOfLight.assign(length);
        speedOfLight.addToDenominator(time);
        for (Units::ComplexUnit const & each : units) each.validateBaseIfNecessary();
    }
};

constinit Shared<ConstantUnits> s_constantUnits;

ConstantUnits const & allConstantUnits() {
    return s_constantUnits.get([] { return new ConstantUnits; });
}

Initializer const
    s_initializeConstantUnits VN_LOAD_CONSTANT_UNITS(&Tokens::initializeConstantUnits);

} // namespace

Tokens * Tokens::get() {
    static constinit PerLanguage<Tokens> s_tokens;
    return &s_tokens.get([] { return new Tokens; });
}

Tokens::Tokens() { initStrings(); }

void Tokens::initStrings() {
#define VN_NO_TEXT(number, name, text)
#define VN_SIGN(number, name, text) initString(e_##name, text);
#define VN_WORD(number, name, text)                                                                \
    initString(e_##name, StringTable::getLocalizedString("VnCommonData", "e_" #name, text));
#include "Server/CommonData/Expressions/Tokens.inc"
    buildReverseMap();
}

void Tokens::initString(EToken token, std::wstring const & text) { m_strings[token] = text; }

void Tokens::buildReverseMap() {
    for (int token = 0; token < c_tokens; ++token) {
        std::wstring const & text = m_strings[static_cast<std::size_t>(token)];
        if (text.empty()) continue;
        m_tokens[text].push_back(static_cast<EToken>(token));
        m_longest = std::max(m_longest, text.size());
    }
}

void Tokens::tokensFromString(std::wstring_view text, std::vector<EToken> & tokens) const {
    if (auto const found = m_tokens.find(text); found != m_tokens.end())
        tokens.insert(tokens.end(), found->second.begin(), found->second.end());
}

template <typename Condition>
EToken Tokens::tokenFromString(std::wstring_view text, Condition isWanted) const {
    if (text.size() > m_longest) return e_NONE;
    auto const found = m_tokens.find(text);
    if (found == m_tokens.end()) return e_NONE;
    for (EToken const token : found->second)
        if (isWanted(token)) return token;
    return e_NONE;
}

EToken Tokens::tokenFromString(std::wstring_view text, EToken low, EToken high) const {
    return tokenFromString(text, [=](EToken token) { return token >= low && token <= high; });
}

EToken Tokens::getConstantToken(std::wstring_view text) const {
    return tokenFromString(text, e_PI_CONSTANT, e_SPEED_OF_LIGHT_CONSTANT);
}

EToken Tokens::getFunctionToken(std::wstring_view text) const {
    return tokenFromString(text, [](EToken token) { return functionOfToken(token).has_value(); });
}

EToken Tokens::getMagnitudeToken(std::wstring_view text) const {
    return tokenFromString(text, e_EXA, e_ATTO_ABBR);
}

double Tokens::getConstantValue(EToken token) const { return c_constants[token - e_PI_CONSTANT]; }

double Tokens::getMagnitudeValue(EToken token) const { return c_magnitudes[token - e_EXA]; }

Units::ComplexUnit const & Tokens::constantUnits(EToken token) const {
    return allConstantUnits().units[static_cast<std::size_t>(token - e_PI_CONSTANT)];
}

void Tokens::getConstantUnits(Units::ComplexUnit * units, EToken token) const {
    *units = constantUnits(token);
}

void Tokens::initializeConstantUnits() { allConstantUnits(); }

std::wstring_view Tokens::defaultString(EToken token) { return c_defaultStrings[token]; }

std::span<EToken const> Tokens::fullMagnitudes() { return c_fullMagnitudes; }

EToken Tokens::fullMagnitude(double magnitude) {
    for (EToken const token : c_fullMagnitudes)
        if (magnitude == c_magnitudes[token - e_EXA]) return token;
    return e_NONE;
}

bool Tokens::matchesToken(std::wstring_view text, std::size_t position, EToken token,
                          std::size_t & length) const {
    std::wstring const & wanted = m_strings[token];
    if (position > text.size() || wanted.size() > text.size() - position) return false;
    if (text.compare(position, wanted.size(), wanted) != 0) return false;
    length = wanted.size();
    return true;
}

bool Tokens::matchesToken(std::wstring_view text, unsigned position, EToken token,
                          unsigned & length) const {
    std::size_t matched = 0;
    if (!matchesToken(text, std::size_t{position}, token, matched)) return false;
    length = static_cast<unsigned>(matched);
    return true;
}

Units::SimpleUnit const * Tokens::findMatchingUnit(std::wstring_view name) const {
    Units::SimpleUnitRegistry & registry = Units::SimpleUnitRegistry::get();
    std::wstring_view prefix;
    Units::SimpleUnit const * const unit = registry.findExact(name, &prefix);
    if (unit && prefix.empty()) return unit;
    if (unit && unit->supportsMagnitude()) {
        // The magnitude of the unit that was found is dropped: "kcm" is a kilometre.
        if (EToken const magnitude = getMagnitudeToken(prefix); magnitude != e_NONE)
            return registry.findOrClone(unit->identifier(), getMagnitudeValue(magnitude));
    }
    return registry.findCaseInsensitive(name);
}

bool Tokens::isNameBreak(wchar_t c, bool allowSymbols) const {
    if (!Text::isPunctuation(static_cast<char32_t>(c))) return false;
    if (!allowSymbols) return true;
    return c != L'\u00B5' && m_strings[e_DEGREE_SYM].find(c) == std::wstring::npos &&
           m_strings[e_DOLLAR_SYM].find(c) == std::wstring::npos;
}

bool Tokens::invalidNameCharsInStr(std::wstring_view text, std::size_t & position,
                                   bool allowSymbols) const {
    if (position >= text.size()) return true;
    auto const ends = [this, allowSymbols](wchar_t c) {
        return isNameBreak(c, allowSymbols) || Text::isSpace(static_cast<char32_t>(c));
    };
    if (ends(text[position]) || Text::isDigit(static_cast<char32_t>(text[position]))) return true;
    while (++position < text.size())
        if (ends(text[position])) return true;
    return false;
}

bool Tokens::invalidNameCharsInStr(std::wstring_view text, bool allowSymbols) const {
    std::size_t position = 0;
    return invalidNameCharsInStr(text, position, allowSymbols);
}

bool Tokens::invalidNameCharsInStr(std::wstring_view text, unsigned & position,
                                   bool allowSymbols) const {
    std::size_t reached = position;
    bool const invalid = invalidNameCharsInStr(text, reached, allowSymbols);
    position =
        static_cast<unsigned>(std::min<std::size_t>(reached, std::numeric_limits<unsigned>::max()));
    return invalid;
}

} // namespace Vn::Expressions
