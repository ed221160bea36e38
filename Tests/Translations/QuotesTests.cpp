// The quotes, apostrophes and marks of every translation are those of its language.

#include <map>
#include <regex>

#include "Tests/Translations/PoFile.h"
#include "Tests/Translations/TranslationsTesting.h"

namespace Vn::Translations {

namespace {

struct Quotes {
    std::wstring open;
    std::wstring close;
};
std::map<std::string, Quotes> const c_quotes{{"de", {L"\u201E", L"\u201C"}},
                                             {"fr", {L"\u00AB\u00A0", L"\u00A0\u00BB"}},
                                             {"ja", {L"\u300C", L"\u300D"}}};

// What stands in straight quotes is typed as it is: feet and inches, minutes and seconds, texts of
// JSON, and a word for a shell.
std::wstring withoutWhatIsTyped(std::wstring text) {
    static std::wregex const s_typed(
        L"[0-9]['\"]|\"[a-zA-Z]*\"(?=[:,} ])|\"\\?\"|\"\"|'#12'|\\{\".*\\}");
    return std::regex_replace(text, s_typed, L"");
}

class QuotesTests : public LanguageTest {
protected:
    // Of all catalogues, as far as the language has the say.
    static std::vector<PoEntry> entries() {
        std::vector<PoEntry> all;
        for (char const * const directory : {"", "Console/", "Libraries/"})
            for (PoEntry & entry : readPoFile(directory + language() + ".po"))
                all.push_back(std::move(entry));
        // The signs of feet, inches and the like are words of the expression language.
        std::erase_if(all, [](PoEntry const & entry) { return entry.context.starts_with("e_"); });
        return all;
    }
    static std::wstring written(PoEntry const & entry) {
        return withoutWhatIsTyped(Text::fromUtf8(entry.text));
    }
    static Quotes const & quotes() { return c_quotes.at(language()); }
};

INSTANTIATE_TEST_SUITE_P(Languages, QuotesTests, testing::ValuesIn(c_languages),
                         [](auto const & language) { return language.param; });

TEST_P(QuotesTests, NoneIsStraight) {
    for (PoEntry const & entry : entries())
        EXPECT_EQ(written(entry).find_first_of(L"\"'"), std::wstring::npos) << entry.text;
}

TEST_P(QuotesTests, NoneIsOfAnotherLanguage) {
    std::wstring others;
    for (auto const & [language, pair] : c_quotes)
        if (language != QuotesTests::language()) (others += pair.open.front()) += pair.close.back();
    // In French this is the apostrophe.
    others += language() == "fr" ? L"\u2018\u201A\u201D" : L"\u2018\u2019\u201A\u201D";
    for (PoEntry const & entry : entries())
        EXPECT_EQ(written(entry).find_first_of(others), std::wstring::npos) << entry.text;
}

TEST_P(QuotesTests, EachThatOpensIsClosed) {
    std::size_t pairs = 0;
    for (PoEntry const & entry : entries()) {
        std::wstring const text = written(entry);
        bool isOpen = false;
        for (wchar_t const c : text) {
            if (c == quotes().open.front()) {
                EXPECT_FALSE(isOpen) << entry.text;
                isOpen = true;
                ++pairs;
            } else if (c == quotes().close.back()) {
                EXPECT_TRUE(isOpen) << entry.text;
                isOpen = false;
            }
        }
        EXPECT_FALSE(isOpen) << entry.text;
    }
    EXPECT_GE(pairs, 40U);
}

TEST_P(QuotesTests, WhatIsQuotedInEnglishIsQuoted) {
    static std::wregex const s_quoted(L"\"[^\"]+\"|(^|[ (])'[^']+'");
    std::size_t quoted = 0;
    for (PoEntry const & entry : entries()) {
        if (!std::regex_search(withoutWhatIsTyped(Text::fromUtf8(entry.id)), s_quoted)) continue;
        EXPECT_NE(written(entry).find(quotes().open), std::wstring::npos) << entry.text;
        ++quoted;
    }
    EXPECT_GE(quoted, 40U);
}

// A French blank within quotes and before a mark doesn't break, and a Japanese quote has none.
TEST_P(QuotesTests, BlanksBesideThemAreThoseOfTheLanguage) {
    std::map<std::string, wchar_t const *> const wrong{
        {"de", L"\u201E |\u201E\u00A0| \u201C"},
        {"fr", L"\u00AB[^\u00A0]|[^\u00A0]\u00BB| [:;?!]|[a-z\u00E9%][;?!]"},
        {"ja", L" \u300C|\u300C | \u300D|\u300D "}};
    std::wregex const expression(wrong.at(language()));
    for (PoEntry const & entry : entries())
        EXPECT_FALSE(std::regex_search(written(entry), expression)) << entry.text;
}

} // namespace

} // namespace Vn::Translations
