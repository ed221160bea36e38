// The value that "ans" stands for.

#ifndef VN_CONSOLE_LASTVALUE_H
#define VN_CONSOLE_LASTVALUE_H

#include <optional>
#include <string>
#include <string_view>

#include "Server/CommonData/Expressions/Expression.h"

namespace Vn::Console {

class LastValue {
public:
    // The word, in this case only.
    static constexpr std::wstring_view c_word = L"ans";

    // Keeps the value of an expression; one without a value leaves the one before.  `shown` is the
    // unit that it was converted to; null if it was not.
    void remember(Expressions::Expression const & expression,
                  Units::UnitContext const * shown = nullptr);

    // A short text that reads, in a context that expects nothing, to the value: the one to store
    // if that is short and needs no context, else a number and a unit.  None if there is no value.
    std::optional<std::wstring> const & text() const { return m_text; }

private:
    std::optional<std::wstring> m_text;
};

// Whether the word "ans" stands in a text, as a name of its own.
bool namesLastValue(std::wstring_view text);

// The text with `value` in brackets for each "ans".
std::wstring withLastValue(std::wstring_view text, std::wstring const & value);

} // namespace Vn::Console

#endif
