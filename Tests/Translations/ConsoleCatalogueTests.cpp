// The rules for every translation of what the console says, and of what the libraries tell.

#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "Platform/Base/StringTable.h"
#include "Tests/Translations/PoFile.h"
#include "Tests/Translations/TranslationsTesting.h"

namespace Vn::Translations {

namespace {

// Both are collected from the sources.
struct Collected {
    std::string directory;
    std::string domain;
    std::size_t leastMessages;
};
Collected const c_console{"Console", "VnConsole", 700};
Collected const c_libraries{"Libraries", "VnLibraries", 200};

std::vector<PoEntry> templateOf(Collected const & catalogue) {
    return readPoFile(catalogue.directory + '/' + catalogue.domain + ".pot");
}

class ConsoleCatalogueTests : public LanguageTest {
protected:
    static std::string file(Collected const & catalogue) {
        return catalogue.directory + '/' + language() + ".po";
    }
    static std::vector<PoEntry> entriesOf(Collected const & catalogue) {
        return readPoFile(file(catalogue));
    }
    // Of both.
    static std::vector<PoEntry> entries() {
        std::vector<PoEntry> all = entriesOf(c_console);
        for (PoEntry & entry : entriesOf(c_libraries)) all.push_back(std::move(entry));
        return all;
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, ConsoleCatalogueTests, testing::ValuesIn(c_languages),
                         [](auto const & language) { return language.param; });

// What a pattern finds in a text, each as often as it is there.
std::multiset<std::string> found(std::string const & text, char const * pattern) {
    std::regex const expression(pattern);
    std::multiset<std::string> all;
    for (std::sregex_iterator i(text.begin(), text.end(), expression), end; i != end; ++i)
        all.insert(i->str());
    return all;
}

// What is typed as it is in every language: options, text commands, flags, the words in capitals
// that stand for arguments, paths, and commands named by the program.
constexpr char c_typed[] = "--[a-z][a-z-]*|\\b[A-Z][A-Za-z]+\\.[A-Z][A-Za-z]+|/[A-Z][a-z]+\\b|"
                           "\\b[A-Z][A-Z_]+\\b|CmnData\\[[0-9]\\]|#[0-9]+|vnconsole|\\bnew /";

std::multiset<std::string> placesOf(std::string const & text) { return found(text, "%[0-9]%"); }

std::set<std::string> typedIn(std::string const & text) {
    std::multiset<std::string> const all = found(text, c_typed);
    std::set<std::string> typed(all.begin(), all.end());
    for (char const * const word : {"FAILED", "REQUIRED"}) typed.erase(word); // which are told
    return typed;
}

std::string blanksBefore(std::string const & text) {
    return text.substr(0, text.find_first_not_of(" \n"));
}

std::string blanksAfter(std::string const & text) {
    return text.substr(text.find_last_not_of(" \n") + 1);
}

std::size_t lineEnds(std::string const & text) { return found(text, "\n").size(); }

TEST(ConsoleCatalogueTemplateTests, HasMessagesWithoutTranslations) {
    for (Collected const & catalogue : {c_console, c_libraries}) {
        std::vector<PoEntry> const entries = templateOf(catalogue);
        EXPECT_GE(entries.size(), catalogue.leastMessages);
        std::set<std::string> ids;
        for (PoEntry const & entry : entries) {
            EXPECT_EQ(entry.text, "") << entry.id;
            EXPECT_TRUE(ids.insert(entry.context + '\4' + entry.id).second) << entry.id;
        }
    }
}

TEST_P(ConsoleCatalogueTests, TranslatesEveryMessage) {
    for (Collected const & catalogue : {c_console, c_libraries}) {
        std::vector<PoEntry> const wanted = templateOf(catalogue);
        std::vector<PoEntry> const all = entriesOf(catalogue);
        ASSERT_EQ(all.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            EXPECT_EQ(all[i].id, wanted[i].id);
            EXPECT_EQ(all[i].context, wanted[i].context) << all[i].id;
            EXPECT_NE(all[i].text, "") << all[i].id;
        }
    }
}

TEST_P(ConsoleCatalogueTests, NoTranslationIsAGuess) {
    for (Collected const & catalogue : {c_console, c_libraries}) {
        std::ifstream lines(VN_TRANSLATIONS "/" + file(catalogue));
        ASSERT_TRUE(lines);
        for (std::string line; std::getline(lines, line);)
            EXPECT_FALSE(line.starts_with("#,") && line.find("fuzzy") != line.npos) << line;
    }
}

TEST_P(ConsoleCatalogueTests, ValuesHaveTheirPlaces) {
    std::size_t places = 0;
    for (PoEntry const & entry : entries()) {
        EXPECT_EQ(placesOf(entry.text), placesOf(entry.id)) << entry.id;
        places += placesOf(entry.id).size();
    }
    EXPECT_GE(places, 400U);
}

TEST_P(ConsoleCatalogueTests, BlanksAndLinesStay) {
    for (PoEntry const & entry : entries()) {
        EXPECT_EQ(blanksBefore(entry.text), blanksBefore(entry.id)) << entry.id;
        EXPECT_EQ(blanksAfter(entry.text), blanksAfter(entry.id)) << entry.id;
        EXPECT_EQ(lineEnds(entry.text), lineEnds(entry.id)) << entry.id;
    }
}

TEST_P(ConsoleCatalogueTests, WhatIsTypedStays) {
    std::size_t typed = 0;
    for (PoEntry const & entry : entries()) {
        for (std::string const & word : typedIn(entry.id)) {
            EXPECT_NE(entry.text.find(word), std::string::npos) << word << " of " << entry.id;
            ++typed;
        }
    }
    EXPECT_GE(typed, 80U);
}

TEST_P(ConsoleCatalogueTests, ProgramReadsTheTranslations) {
    inLanguage([] {
        for (Collected const & catalogue : {c_console, c_libraries}) {
            for (PoEntry const & entry : entriesOf(catalogue)) {
                EXPECT_EQ(Text::toUtf8(StringTable::getLocalizedString(
                              catalogue.domain, entry.context, Text::fromUtf8(entry.id))),
                          entry.text);
            }
        }
    });
}

} // namespace

} // namespace Vn::Translations
