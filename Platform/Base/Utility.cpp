#include "Platform/Base/Utility.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "Platform/Base/Text.h"

namespace Vn::Utility {

namespace {

// The characters of a number as ASCII, with a full stop as the decimal mark and without a plus in
// front; empty if one can't be in a number.
std::string asciiNumber(std::wstring_view text, std::wstring_view others) {
    if (!text.empty() && text.front() == L'+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == L'-') return {};
    }
    std::string ascii;
    ascii.reserve(text.size());
    for (wchar_t const c : text) {
        if (!Text::isDigit(static_cast<char32_t>(c)) && others.find(c) == others.npos) return {};
        ascii += c == L',' ? '.' : static_cast<char>(c);
    }
    return ascii;
}

template <class Number>
bool readWhole(std::string const & ascii, Number & value) {
    Number number{};
    char const * const end = ascii.data() + ascii.size();
    auto const [after, error] = std::from_chars(ascii.data(), end, number);
    if (ascii.empty() || error != std::errc() || after != end) return false;
    value = number;
    return true;
}

} // namespace

bool localeTolerantLexicalCast(std::wstring_view text, double & value) {
    return readWhole(asciiNumber(text, L"+-.,eE"), value);
}

bool wholeNumberLexicalCast(std::wstring_view text, int & value) {
    return readWhole(asciiNumber(text, L"-"), value);
}

std::wstring decimalText(double value) {
    // A sign, 17 digits, a full stop, and an exponent.
    char buffer[32];
    char const * const end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific).ptr;
    std::string_view const text(buffer, static_cast<std::size_t>(end - buffer));
    std::size_t const mark = text.find('e');
    if (!std::isfinite(value) || mark == text.npos) return Text::widen(text);
    int exponent = 0;
    std::string_view power = text.substr(mark + 1);
    if (power.front() == '+') power.remove_prefix(1);
    std::from_chars(power.data(), power.data() + power.size(), exponent);
    std::string digits(text.substr(0, mark));
    bool const isNegative = digits.front() == '-';
    std::erase_if(digits, [](char c) { return c < '0' || c > '9'; });

    // How many of the digits stand before the full stop; fewer than one are zeroes after it.
    int const whole = exponent + 1;
    auto const count = static_cast<int>(digits.size());
    if (whole <= 0)
        digits.insert(0, "0." + std::string(static_cast<std::size_t>(-whole), '0'));
    else if (whole < count)
        digits.insert(static_cast<std::size_t>(whole), 1, '.');
    else
        digits.append(static_cast<std::size_t>(whole - count), '0');
    return Text::widen((isNegative ? "-" : "") + digits);
}

} // namespace Vn::Utility
