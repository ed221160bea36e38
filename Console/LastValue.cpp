#include "Console/LastValue.h"

#include <charconv>

#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Console {

using Expressions::Expression;
using Units::ComplexUnit;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

// What is longer stands as a number: a text that holds the one before it grows with each line.
constexpr std::size_t c_longestText = 64;

bool isOfName(wchar_t c) {
    return Text::isDigit(static_cast<char32_t>(c)) ||
           !Expressions::Tokens::get()->invalidNameCharsInStr(std::wstring_view(&c, 1), true);
}

// Where "ans" stands as a name of its own, at or after `from`; npos if nowhere.
std::size_t findLastValue(std::wstring_view text, std::size_t from) {
    constexpr std::size_t c_length = LastValue::c_word.size();
    for (std::size_t at = from; (at = text.find(LastValue::c_word, at)) != text.npos; ++at) {
        bool const begins = at == 0 || !isOfName(text[at - 1]);
        bool const ends = at + c_length == text.size() || !isOfName(text[at + c_length]);
        if (begins && ends) return at;
    }
    return text.npos;
}

// Whether a text reads, where nothing is expected, to the value of an expression.
bool readsTo(Expression const & expression, std::wstring const & text) {
    Expression const again(text);
    if (!again || again.value() != expression.value()) return false;
    ComplexUnit const units = expression.units().value_or(ComplexUnit::none());
    return again.units().value_or(ComplexUnit::none()).isDimensionallyEquivalent(&units);
}

// "12.7 mm", in `digits` digits at most.
std::wstring numberText(double value, ComplexUnit const & units, int digits) {
    char buffer[64];
    char * const end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits)
            .ptr;
    std::wstring const unit = unitText(units, UnitDisplaySettings::standard());
    return std::wstring(buffer, end) + (unit.empty() ? L"" : L" ") + unit;
}

} // namespace

void LastValue::remember(Expression const & expression, UnitContext const * shown) {
    std::optional<double> const value = expression.value();
    if (!value) return;
    // A text that isn't exact would change the value.
    if (shown && shown->expectedUnits()) {
        ComplexUnit const & units = *shown->expectedUnits();
        // Converted numbers seldom end; those that a person reads may have fewer digits.
        for (int const digits : {15, 17}) {
            std::wstring const text = numberText(units.toThisUnit(*value), units, digits);
            if (!readsTo(expression, text)) continue;
            m_text = text;
            return;
        }
    }
    if (expression.text().size() <= c_longestText) {
        std::wstring const text = expression.textToStore();
        if (text.size() <= c_longestText && readsTo(expression, text)) {
            m_text = text;
            return;
        }
    }
    ComplexUnit internal;
    expression.units().value_or(ComplexUnit::none()).produceBaseRepresentation(internal);
    m_text = numberText(*value, internal, 17);
}

bool namesLastValue(std::wstring_view text) { return findLastValue(text, 0) != text.npos; }

std::wstring withLastValue(std::wstring_view text, std::wstring const & value) {
    std::wstring filled;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = findLastValue(text, done)) != text.npos;) {
        filled += text.substr(done, at - done);
        filled += L'(' + value + L')';
        done = at + LastValue::c_word.size();
    }
    filled += text.substr(done);
    return filled;
}

} // namespace Vn::Console
