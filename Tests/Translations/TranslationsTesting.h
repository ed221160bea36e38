// What the tests of the translations share.

#ifndef VN_TESTS_TRANSLATIONS_TRANSLATIONSTESTING_H
#define VN_TESTS_TRANSLATIONS_TRANSLATIONSTESTING_H

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Translations {

// The languages that the product has beside English.
inline constexpr char const * c_languages[] = {"de", "fr", "ja"};

// A text that a translation changes, as the program has it.
struct Source {
    std::string key;
    std::string text;
};

// Every one of them: the words of the expression language, the kinds of units, and what is told of
// failures.
std::vector<Source> const & sources();

// Whether the key is that of a token from `low` to `high`.
bool isKeyBetween(std::string_view key, Expressions::EToken low, Expressions::EToken high);

// Whether the key is that of a function.
bool isKeyOfFunction(std::string_view key);

// A test that is run once for each language.  The language of a process can't change after the
// first use, so what needs the language is checked in a process of its own.
class LanguageTest : public testing::TestWithParam<char const *> {
protected:
    void SetUp() override;

    // Runs `check` in a new process, with the language chosen there.  To be called once in a test.
    static void inLanguage(void (*check)());

    // The language of the test that runs.
    static std::string const & language();
};

inline std::string shown(std::wstring_view text) { return '"' + Text::toUtf8(text) + '"'; }

} // namespace Vn::Translations

#endif
