// What the tests of the expression engine share.

#ifndef VN_TESTS_COMMONDATA_EXPRESSIONS_EXPRESSIONSTESTING_H
#define VN_TESTS_COMMONDATA_EXPRESSIONS_EXPRESSIONSTESTING_H

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Expressions::Testing {

// "?" expects nothing, an empty text expects a unitless result, any other text is a unit string.
inline Units::UnitContext contextOf(std::wstring_view context) {
    if (context == L"?") return Units::UnitContext();
    return Units::UnitContext(std::wstring(context));
}

// The outcome of a parse in words; it holds the position of a failure.
inline std::wstring outcome(std::wstring_view text, std::wstring_view context = L"?") {
    return Expression(std::wstring(text), contextOf(context)).result().toString();
}

// A change of the factory settings.
using Change = std::function<void(Units::UnitDisplaySettings & settings)>;

inline Units::UnitDisplaySettings standardBut(Change const & change) {
    Units::UnitDisplaySettings settings = Units::UnitDisplaySettings::standard();
    if (change) change(settings);
    return settings;
}

// A text for the message of a failed test; long ones are cut.
inline std::string shown(std::wstring_view text) {
    constexpr std::size_t c_most = 200;
    std::string const utf8 = Text::toUtf8(text.substr(0, c_most));
    return '"' + utf8 + (text.size() > c_most ? "\"..." : "\"");
}

inline std::wstring repeated(std::wstring_view piece, std::size_t times) {
    std::wstring text;
    text.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i) text += piece;
    return text;
}

using Vn::Testing::onSmallStack;

} // namespace Vn::Expressions::Testing

#endif
