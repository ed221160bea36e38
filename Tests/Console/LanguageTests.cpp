// The language that the environment asks for.

#include <gtest/gtest.h>
#include <map>

#include "Console/Host/Language.h"
#include "Platform/Base/StringTable.h"

namespace Vn::Console::Tests {

namespace {

class LanguageTests : public testing::Test {
protected:
    static void SetUpTestSuite() { StringTable::catalogueDirectory(VN_CATALOGUES); }
    ~LanguageTests() override { StringTable::language(""); }
};

TEST_F(LanguageTests, EnvironmentIsUnderstoodAsElsewhere) {
    struct Row {
        std::map<std::string, std::string> environment;
        char const * language;
    };
    Row const rows[] = {
        {{}, ""},
        {{{"LANG", "de_DE.UTF-8"}}, "de_DE.UTF-8"},
        {{{"LANG", "C"}}, ""},
        {{{"LANG", "C.UTF-8"}}, ""},
        {{{"LANG", "en_US.UTF-8"}}, "en_US.UTF-8"},
        {{{"LANG", "de"}, {"LC_MESSAGES", "fr"}}, "fr"},
        {{{"LANG", "de"}, {"LC_MESSAGES", "fr"}, {"LC_ALL", "ja_JP"}}, "ja_JP"},
        {{{"LANG", "de"}, {"LC_ALL", "C"}}, ""},
        {{{"LANG", "de"}, {"LC_ALL", ""}}, "de"},
        {{{"LANG", "de"}, {"LANGUAGE", "fr"}}, "fr"},
        {{{"LANG", "de"}, {"LANGUAGE", "eo:nl::ja:fr"}}, "ja"},
        {{{"LANG", "de"}, {"LANGUAGE", "eo"}}, "de"},
        {{{"LANG", "eo"}, {"LANGUAGE", "nl"}}, ""},
        {{{"LANG", "eo"}, {"LANGUAGE", "en:de"}}, "en"},
        {{{"LANG", "C"}, {"LANGUAGE", "de"}}, ""},
        {{{"LANG", "../de"}}, ""},
        {{{"LANG", "de\xFF"}}, ""},
        {{{"LANG", ":::"}}, ""},
    };
    for (Row const & row : rows) {
        std::string shown;
        for (auto const & [name, value] : row.environment) shown += name + '=' + value + ' ';
        EXPECT_EQ(preferredLanguage([&](char const * name) {
                      auto const found = row.environment.find(name);
                      return found == row.environment.end() ? std::string() : found->second;
                  }),
                  row.language)
            << shown;
    }
}

TEST_F(LanguageTests, UnknownOneIsTold) {
    for (char const * const tag :
         {"", "en", "en-GB", "C", "POSIX", "de", "de_AT", "de-CH@old", "ja"})
        EXPECT_EQ(whyNotLanguage(tag), L"") << tag;
    EXPECT_EQ(whyNotLanguage("nl"), L"there is no language \"nl\"; there are en, de, fr, ja");
    EXPECT_EQ(whyNotLanguage("de/.."), L"there is no language \"de/..\"; there are en, de, fr, ja");
    EXPECT_EQ(whyNotLanguage("\n"), L"there is no language \"\u240A\"; there are en, de, fr, ja");
}

} // namespace

} // namespace Vn::Console::Tests
