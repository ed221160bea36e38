#include "Server/CommonData/Expressions/ValueFormatter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "Platform/Base/Numeric.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/Utils.h"

namespace Vn::Expressions {

using Units::UnitDisplaySettings;
using Units::Utils::essentiallyZero;

namespace {

// One printed number: narrow characters, cut off at the limit of a field.
class Field {
public:
    // As "%.*f" and "%.*E" print it.  A double has no more than 1,074 digits after the point; all
    // that follow are zeroes, and far after the end of a field.
    void fixed(double value, int decimals) { print(value, decimals, std::chars_format::fixed); }

    void scientific(double value, int decimals) {
        print(value, decimals, std::chars_format::scientific);
        std::replace(m_text, m_text + m_size, 'e', 'E');
    }

    void integer(long value) {
        m_size =
            static_cast<std::size_t>(std::to_chars(m_text, m_text + capacity, value).ptr - m_text);
    }

    void append(char c) {
        if (m_size < Limits::c_printedField) m_text[m_size++] = c;
    }

    void append(char const * text, std::size_t size) {
        size = std::min(size, Limits::c_printedField - m_size);
        std::memcpy(m_text + m_size, text, size);
        m_size += size;
    }

    void shorten(std::size_t size) { m_size = size; }

    char const * data() const { return m_text; }
    std::size_t size() const { return m_size; }
    char operator[](std::size_t i) const { return m_text[i]; }

    void appendTo(std::wstring & text) const { text.append(m_text, m_text + m_size); }

private:
    static constexpr int c_mostDecimals = 1100;
    static constexpr std::size_t capacity = 1536; // 309 digits, a point and c_mostDecimals

    void print(double value, int decimals, std::chars_format format) {
        decimals = std::clamp(decimals, 0, c_mostDecimals);
        auto const end = std::to_chars(m_text, m_text + capacity, value, format, decimals).ptr;
        m_size = std::min(static_cast<std::size_t>(end - m_text), Limits::c_printedField);
    }

    char m_text[capacity];
    std::size_t m_size = 0;
};

void appendInteger(std::wstring & text, long value) {
    Field field;
    field.integer(value);
    field.appendTo(text);
}

// A whole number of any size, in full.
void appendWhole(std::wstring & text, double value) {
    Field field;
    field.fixed(value, 0);
    field.appendTo(text);
}

void appendNotFinite(std::wstring & text, double value) {
    text += std::isnan(value) ? L"NAN" : value < 0.0 ? L"-INF" : L"INF";
}

// What is added to a value before it is cut to `decimals`, so that the last bit of a binary
// fraction doesn't tip a value that stands just below a rounding point.
double roundingBias(int decimals) {
    if (decimals == 0) return 1e-08;
    if (decimals < 0 || decimals > 19) return 0.0;
    double bias = 1.0 / (valueFormatter::get()->integerPower(10.0, decimals) * 1000.0);
    if (bias > 2.220446049250313e-16) bias += 2.220446049250313e-16;
    return std::min(bias, 1e-08);
}

bool wantsScientific(double value, UnitDisplaySettings const & settings) {
    double const a = std::fabs(value);
    // Beyond this the integer part doesn't fit the other form.
    if (a >= 2147483646.0) return true;
    return settings.scientificNotation() && !Units::Utils::preciselyZero(value) &&
           (a > settings.useScientificNotationAboveThreshold() ||
            a < settings.useScientificNotationBelowThreshold() || settings.specifiedByNode());
}

// Removes zeroes at the end after the separator, down to `minimum` decimals; with a minimum of
// none, also a separator that nothing follows.
void hideTrailingZeroes(Field & field, char separator, int minimum) {
    std::size_t point = field.size();
    while (point > 0 && field[point - 1] != separator) --point;
    if (point == 0) return; // the separator itself was cut off
    std::size_t const least = point + static_cast<std::size_t>(std::max(minimum, 0));
    std::size_t size = field.size();
    while (size > least && field[size - 1] == '0') --size;
    if (size == point && minimum <= 0) --size;
    field.shorten(size);
}

// The count of 64ths nearest to a fraction.
long sixtyFourths(double fraction) {
    double const exact = 64.0 * std::fabs(fraction);
    double const whole = std::floor(exact);
    bool const up = (exact - whole) * 2.0 + 1.0 / 256.0 >= 1.0;
    return Numeric::saturate<long>(whole) + (up ? 1 : 0);
}

// Appends the fraction after what was written from `start` on.
void appendFractionFrom(std::wstring & text, std::size_t start, double fraction) {
    long numerator = sixtyFourths(fraction);
    if (numerator <= 0) return;
    long denominator = 64;
    for (int halvings = 0; halvings < 5 && numerator % 2 == 0; ++halvings) {
        numerator /= 2;
        denominator /= 2;
    }
    if (text.size() > start) text += L' ';
    appendInteger(text, numerator);
    text += L'/';
    appendInteger(text, denominator);
}

} // namespace

valueFormatter const * valueFormatter::get() {
    static constexpr valueFormatter s_formatter;
    return &s_formatter;
}

void valueFormatter::appendDecimal(std::wstring & text, double value,
                                   UnitDisplaySettings const & settings) const {
    if (!std::isfinite(value)) {
        appendNotFinite(text, value);
        return;
    }
    Field printed;
    if (wantsScientific(value, settings)) {
        printed.scientific(value, settings.scientificPrecision());
        printed.appendTo(text);
        return;
    }

    int const decimals = std::max<int>(settings.generalPrecision(), 0);
    int n = Numeric::saturate<int>(value);
    printed.fixed(roundingBias(settings.generalPrecision()) + std::fabs(value - n), decimals);
    if (printed[0] != '0') n += value < 0.0 ? -1 : 1; // rounding carried
    if (decimals == 0) {
        appendInteger(text, n);
        return;
    }

    // After "0." or "1.".
    char const * const digits = printed.data() + 2;
    std::size_t const count = printed.size() - 2;
    bool const allZero = std::all_of(digits, digits + count, [](char c) { return c == '0'; });
    char const separator = settings.isDecimalPointFullStop() ? '.' : ',';
    Field result;
    // A whole part of zero can't carry the sign, and a value rounded to zero has none.
    if (n == 0 && value < 0.0 && !allZero) {
        result.append('-');
        result.append('0');
    } else {
        result.integer(n);
    }
    result.append(separator);
    result.append(digits, count);
    if (settings.hideTrailingZeroes())
        hideTrailingZeroes(result, separator, settings.minimumPrecision());
    result.appendTo(text);
}

bool valueFormatter::roundsToWhole(double fraction) const {
    return !essentiallyZero(fraction) && sixtyFourths(fraction) == 64;
}

void valueFormatter::appendFraction(std::wstring & text, double fraction) const {
    appendFractionFrom(text, 0, fraction);
}

void valueFormatter::appendFractional(std::wstring & text, double value) const {
    if (!std::isfinite(value)) {
        appendNotFinite(text, value);
        return;
    }
    std::size_t const start = text.size();
    if (value < 0.0) text += L'-';
    double const whole = std::floor(std::fabs(value));
    double const fraction = std::fabs(value) - whole;
    if (roundsToWhole(fraction)) {
        appendWhole(text, whole + 1.0);
        return;
    }
    if (whole > 0.0) appendWhole(text, whole);
    if (!essentiallyZero(fraction)) {
        std::size_t const before = text.size();
        appendFractionFrom(text, start, fraction);
        if (text.size() > before) return;
    }
    if (whole == 0.0) text += L'0';
}

void valueFormatter::appendArchitectural(std::wstring & text, double value,
                                         UnitDisplaySettings const & settings) const {
    if (!std::isfinite(value)) {
        appendNotFinite(text, value);
        return;
    }
    if (value < 0.0) text += L'-';
    double const feet = std::floor(std::fabs(value));
    double const rest = std::fabs(value) - feet;
    double const inches = std::floor(rest * 12.0);
    double const fraction = (rest - inches / 12.0) * 12.0;
    bool const hide = settings.hideTrailingZeroes();
    bool const whole = roundsToWhole(fraction);
    bool const hasFraction = !essentiallyZero(fraction) && (whole || sixtyFourths(fraction) > 0);

    if (inches == 11.0 && whole) {
        appendWhole(text, feet + 1.0);
        text += hide ? L"'" : L"'-0\"";
        return;
    }
    appendWhole(text, feet);
    text += L'\'';
    if (hide && !hasFraction && essentiallyZero(inches)) return;
    text += L'-';
    if (whole) {
        appendWhole(text, inches + 1.0);
    } else {
        if (inches >= 1.0 || !(hide || hasFraction)) appendWhole(text, inches);
        if (hasFraction) appendFractionFrom(text, 0, fraction);
    }
    text += L'"';
}

void valueFormatter::appendDegMinSec(std::wstring & text, double value,
                                     UnitDisplaySettings const & settings) const {
    if (!std::isfinite(value)) {
        appendNotFinite(text, value);
        return;
    }
    int const precision = std::max<int>(settings.angularPrecision(), 0);
    double angle = value + roundingBias(settings.angularPrecision());
    if (angle < 0.0) {
        text += L'-';
        angle = -angle;
    }
    double degrees = std::floor(angle);
    double const rest = angle - degrees;
    int minutes = Numeric::saturate<int>(std::floor(rest * 60.0));
    double const exactSeconds = (rest - minutes / 60.0) * 3600.0;
    int seconds = Numeric::saturate<int>(std::floor(exactSeconds));
    double const secondsRest = exactSeconds - std::floor(exactSeconds);

    Field decimals;
    if (precision < 3) {
        if (secondsRest >= 0.5) ++seconds;
    } else {
        decimals.fixed(secondsRest, precision - 2);
        if (decimals[0] != '0') ++seconds;
    }
    if (seconds > 59) {
        seconds -= 60;
        ++minutes;
    }
    if (minutes > 59) {
        minutes -= 60;
        degrees += 1.0;
    }
    if (precision < 2 && seconds > 29 && ++minutes > 59) {
        minutes -= 60;
        degrees += 1.0;
    }
    if (precision < 1 && minutes > 29) degrees += 1.0;

    appendWhole(text, degrees);
    Units::UnitDegree::get()->appendDisplayString(text, settings);
    if (precision < 1) return;
    text += L' ';
    appendInteger(text, minutes);
    text += L'\'';
    if (precision < 2) return;
    text += L' ';
    appendInteger(text, seconds);
    if (precision > 2) {
        text += settings.isDecimalPointFullStop() ? L'.' : L',';
        text.append(decimals.data() + 2, decimals.data() + decimals.size());
        if (settings.hideTrailingZeroes()) {
            while (text.back() == L'0') text.pop_back();
            if (text.back() == L'.' || text.back() == L',') text.pop_back();
        }
    }
    text += L'"';
}

void valueFormatter::appendExponent(std::wstring & text, std::size_t exponent) const {
    text += Tokens::get()->getString(e_POWER);
    appendInteger(text, static_cast<long>(exponent));
}

std::wstring valueFormatter::formatDecimal(double value,
                                           UnitDisplaySettings const & settings) const {
    std::wstring text;
    appendDecimal(text, value, settings);
    return text;
}

std::wstring valueFormatter::formatFractional(double value) const {
    std::wstring text;
    appendFractional(text, value);
    return text;
}

std::wstring valueFormatter::formatArchitectural(double feet,
                                                 UnitDisplaySettings const & settings) const {
    std::wstring text;
    appendArchitectural(text, feet, settings);
    return text;
}

std::wstring valueFormatter::formatDegMinSec(double degrees,
                                             UnitDisplaySettings const & settings) const {
    std::wstring text;
    appendDegMinSec(text, degrees, settings);
    return text;
}

std::wstring valueFormatter::formatExponent(short exponent) const {
    std::wstring text = Tokens::get()->getString(e_POWER);
    appendInteger(text, exponent);
    return text;
}

std::wstring const & valueFormatter::magnitudeString(double magnitude, bool abbreviated) const {
    Tokens const & tokens = *Tokens::get();
    EToken const token = magnitude == 1.0 ? e_NONE : Tokens::fullMagnitude(magnitude);
    bool const isShort = abbreviated && token != e_NONE;
    return tokens.getString(isShort ? static_cast<EToken>(token + 1) : token);
}

double valueFormatter::integerPower(double base, int exponent) const {
    double result = 1.0;
    for (unsigned int rest = exponent < 0 ? 0u - static_cast<unsigned int>(exponent)
                                          : static_cast<unsigned int>(exponent);
         rest > 0; rest /= 2) {
        if (rest % 2 == 1) result *= base;
        base *= base;
    }
    return exponent < 0 ? 1.0 / result : result;
}

} // namespace Vn::Expressions
