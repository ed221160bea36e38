// What the console says, in the user's language.
//
// A message is named by its English text, in which %1% to %9% are the places of values.  Its
// translations stand in Translations/Console; `Tools/translations.sh` collects the English texts
// from the sources, where it knows them by the literals that `tr`, `message` and `messageUtf8` are
// given.

#ifndef VN_CONSOLE_MESSAGES_H
#define VN_CONSOLE_MESSAGES_H

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

#include "Platform/Base/Status.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

// Marks a message that is shown later, such as one of a table.
constexpr wchar_t const * tr(wchar_t const * english) noexcept { return english; }

// The text in the user's language, or as it is if there is no translation.
std::wstring message(wchar_t const * english);

// The same where one English text has several meanings: `context`, in ASCII, tells which one this
// is.
std::wstring messageIn(char const * context, wchar_t const * english);

// What goes into a place of a message: a text as it is, or a whole number in digits.
class MessageValue {
public:
    MessageValue(std::wstring_view text) : m_text(text) {}
    MessageValue(std::wstring const & text) : m_text(text) {}
    MessageValue(wchar_t const * text) : m_text(text) {}
    template <std::integral Number>
    MessageValue(Number number) : m_digits(std::to_wstring(number)), m_text(m_digits) {}
    MessageValue(MessageValue const &) = delete;
    MessageValue & operator=(MessageValue const &) = delete;

    // Valid as long as this is, and the text that it was made of.
    std::wstring_view text() const noexcept { return m_text; }

private:
    std::wstring m_digits;
    std::wstring_view m_text;
};

// The same with values in its places, at most nine.
template <class... Values>
requires(sizeof...(Values) > 0) std::wstring
    message(wchar_t const * english, Values const &... values) {
    return Text::filled(message(english), {MessageValue(values).text()...});
}

// The same in UTF-8, for streams.
template <class... Values>
std::string messageUtf8(wchar_t const * english, Values const &... values) {
    return Text::toUtf8(message(english, values...));
}

// One of two messages that `tr` marks, for the number 1 and for others.  The number is the first
// value of both.
template <class... Values>
std::wstring counted(std::size_t number, wchar_t const * one, wchar_t const * others,
                     Values const &... values) {
    return message(number == 1 ? one : others, number, values...);
}

// A status in the user's language: what couldn't be done, with what, and of which kind the failure
// is, and the cause as the status has it.  In English it is Status::toString.
std::wstring statusText(Status const & status);

} // namespace Vn::Console

#endif
