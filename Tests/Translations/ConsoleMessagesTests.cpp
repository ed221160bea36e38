// What the console says in another language, as whoever types sees it.

#include <regex>
#include <set>

#include "Tests/Support/Process.h"
#include "Tests/Translations/TranslationsTesting.h"

namespace Vn::Translations {

namespace {

using Console::Tests::Outcome;
using Console::Tests::runConsole;

struct Call {
    char const * language;
    std::vector<std::string> arguments;
    int status;
    char const * out;
    char const * err;
};

Outcome run(char const * language, std::vector<std::string> arguments,
            std::string const & input = {}) {
    arguments.insert(arguments.begin(), {"--language", language});
    return runConsole(arguments, input);
}

Call const c_calls[] = {
    {"de",
     {"eval", "1 in", "--unit", "cm"},
     0,
     "formatiert    2.54 cm\n"
     "intern        2.54 cm\n"
     "Einheiten     in\n"
     "neu gebildet  1 in\n",
     ""},
    {"de",
     {"eval", "1 in", "--display", "kg"},
     1,
     "intern        2.54 cm\n"
     "Einheiten     in\n"
     "neu gebildet  1 in\n",
     "vnconsole: der Wert ist in in (L\u00E4nge) und kann nicht in kg (Masse) angezeigt werden\n"},
    {"de",
     {"eval", "1 in", "--set", "lengthDisplay=9"},
     2,
     "",
     "vnconsole: --set: lengthDisplay verlangt eine ganze Zahl von 0 bis 2\n"},
    {"de", {"units", "flow"}, 1, "", "vnconsole: keine Einheit passt zu \u201Eflow\u201C\n"},
    {"de",
     {"document", "there-is-none.vnd"},
     1,
     "",
     "das Dokument kann nicht ge\u00F6ffnet werden: there-is-none.vnd gibt es nicht; --new legt "
     "die "
     "Datei an\n"},
    {"fr",
     {"eval", "--precisoin", "--forth"},
     2,
     "",
     "Les arguments suivants n\u2019\u00E9taient pas attendus\u00A0: --forth --precisoin\n"
     "Plus d\u2019informations avec --help.\n"},
    {"fr",
     {"mass", "1 cm", "2 cm", "-3 cm", "--density", "1"},
     1,
     "",
     "vnconsole: la troisi\u00E8me ar\u00EAte\u00A0: \u00AB\u00A0-3 cm\u00A0\u00BB n\u2019est pas "
     "sup\u00E9rieur \u00E0 z\u00E9ro\n"},
    {"fr",
     {"document", "a.vnd", "remve"},
     2,
     "",
     "vnconsole: il n\u2019y a pas de commande \u00AB\u00A0remve\u00A0\u00BB pour les "
     "documents\u00A0; "
     "vouliez-vous dire remove\u00A0?\n"},
    {"ja",
     {"eval", "--unit"},
     2,
     "",
     "--unit\uFF1AUNIT \u304C 1 \u500B\u4E0D\u8DB3\u3057\u3066\u3044\u307E\u3059\n"
     "\u8A73\u3057\u304F\u306F --help "
     "\u3092\u4ED8\u3051\u3066\u5B9F\u884C\u3057\u3066\u304F\u3060\u3055\u3044\u3002\n"},
    {"ja",
     {"mass", "1 cm", "2 cm", "0 cm", "--density", "1"},
     1,
     "",
     "vnconsole: 3 \u756A\u76EE\u306E\u8FBA\uFF1A\u300C0 cm\u300D \u306F 0 "
     "\u3088\u308A\u5927\u304D\u304F\u3042\u308A\u307E\u305B\u3093\n"},
};

TEST(ConsoleMessagesTests, CallsAreAnsweredInTheLanguage) {
    for (Call const & call : c_calls) {
        Outcome const outcome = run(call.language, call.arguments);
        EXPECT_EQ(outcome.status, call.status) << call.err;
        EXPECT_EQ(outcome.out, call.out);
        EXPECT_EQ(outcome.err, call.err);
    }
}

TEST(ConsoleMessagesTests, ASessionFollowsTheLanguageThatItSwitchesTo) {
    Outcome const outcome = runConsole({}, "unit\n"
                                           "language de\n"
                                           "unit\n"
                                           "language ja\n"
                                           "unit\n"
                                           "language en\n"
                                           "unit\n");
    EXPECT_EQ(outcome.out, "expected unit: none\n"
                           "Sprache: de; es gibt en, de, fr, ja\n"
                           "erwartete Einheit: keine\n"
                           "\u8A00\u8A9E\uFF1Aja\uFF08en, de, fr, ja "
                           "\u304C\u3042\u308A\u307E\u3059\uFF09\n"
                           "\u671F\u5F85\u3059\u308B\u5358\u4F4D\uFF1A\u306A\u3057\n"
                           "language: en; there are en, de, fr, ja\n"
                           "expected unit: none\n");
}

TEST(ConsoleMessagesTests, ADocumentIsToldOfInTheLanguage) {
    Outcome const outcome = run("de", {}, "new\nadd . 2\ntree\nundo\nhistory\n");
    EXPECT_NE(outcome.out.find("2 Entit\u00E4ten hinzugef\u00FCgt: Groups/CmnData[0] bis "
                               "Groups/CmnData[1]\n"
                               "Groups  #1  Gruppe  2 Entit\u00E4ten\n"),
              std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("r\u00FCckg\u00E4ngig gemacht: 2 Entit\u00E4ten zu Groups "
                               "hinzuf\u00FCgen\n"
                               ">  0  Beginn des Verlaufs\n"
                               "   1  2 Entit\u00E4ten zu Groups hinzuf\u00FCgen  "
                               "r\u00FCckg\u00E4ngig gemacht\n"),
              std::string::npos)
        << outcome.out;
}

// A column of wide characters is as wide as it looks.
TEST(ConsoleMessagesTests, ColumnsLineUpInJapanese) {
    Outcome const outcome = run("ja", {"units", "inch"});
    std::size_t const end = outcome.out.find('\n');
    ASSERT_NE(end, std::string::npos);
    std::wstring const head = Text::fromUtf8(outcome.out.substr(0, end));
    std::wstring const row = Text::fromUtf8(outcome.out.substr(end + 1));
    std::size_t const one = row.find(L"2.54 cm");
    std::size_t const title = head.find(L"1 \u5358\u4F4D");
    ASSERT_NE(one, row.npos) << outcome.out;
    ASSERT_NE(title, head.npos) << outcome.out;
    EXPECT_EQ(Text::displayWidth(row.substr(0, one)), Text::displayWidth(head.substr(0, title)));
}

std::multiset<std::string> words(std::string const & text, char const * pattern) {
    std::regex const expression(pattern);
    std::multiset<std::string> all;
    for (std::sregex_iterator i(text.begin(), text.end(), expression), end; i != end; ++i)
        all.insert(i->str());
    return all;
}

// Each has its one heading, and the options and commands of the English one.
TEST(ConsoleMessagesTests, HelpOfEveryCommandIsWhole) {
    for (char const * const command : {"", "eval", "units", "command", "batch", "document", "mass",
                                       "scene", "options", "add-ins", "self-test", "tour"}) {
        std::vector<std::string> arguments{"--help"};
        if (*command) arguments.insert(arguments.begin(), command);
        std::string const english = run("en", arguments).out;
        char const * const c_options = "\n  -[-,a-z]*";
        ASSERT_GE(words(english, c_options).size(), 1U) << command;
        for (char const * const language : c_languages) {
            Outcome const outcome = run(language, arguments);
            EXPECT_EQ(outcome.status, 0);
            EXPECT_EQ(words(outcome.out, c_options), words(english, c_options)) << language;
            for (char const * const heading :
                 {"\nOptions:", "\nSubcommands:", "\nUsage:", "Usage:", "Print this", "Commands:"})
                EXPECT_EQ(outcome.out.find(heading), std::string::npos) << language << outcome.out;
        }
    }
}

// Its expressions have the words of the language.
TEST(ConsoleMessagesTests, TheTourWorksInEveryLanguage) {
    for (char const * const language : c_languages) {
        std::string const tour = run(language, {"tour"}).out;
        for (char const * const value : {"65.811 mph", "1.50 m ", "60.96 cm"})
            EXPECT_NE(tour.find(value), std::string::npos) << language << tour;
        EXPECT_EQ(tour.find("Parse error"), std::string::npos) << language << tour;
    }
}

TEST(ConsoleMessagesTests, HelpHasTheWordsOfTheLanguage) {
    Outcome const help = run("ja", {}, "help expressions\n");
    EXPECT_NE(help.out.find("  \u6700\u5927(2 ft; 60 cm)"), std::string::npos) << help.out;
}

TEST(ConsoleMessagesTests, TheSelfTestPassesInEveryLanguage) {
    for (char const * const language : c_languages)
        EXPECT_EQ(run(language, {"self-test"}).status, 0) << language;
}

TEST(ConsoleMessagesTests, WhatProgramsReadStaysEnglish) {
    for (char const * const language : c_languages) {
        EXPECT_EQ(run(language, {"add-ins", "--json"}).out, run("en", {"add-ins", "--json"}).out);
        std::string const answer = run(language, {"eval", "--json", "1 in +"}).out;
        EXPECT_NE(answer.find("\"result\":\"failedToParse\""), std::string::npos) << answer;
    }
}

// The mark of decimals is a preference; what programs read has a full stop.
TEST(ConsoleMessagesTests, NumbersForPeopleFollowThePreferences) {
    std::string const comma = "decimalPointIsFullStop=false";
    Outcome const shown = runConsole({"eval", "1 in", "--unit", "cm", "--set", comma});
    EXPECT_EQ(shown.out, "formatted  2,54 cm\n"
                         "internal   2,54 cm\n"
                         "units      in\n"
                         "rebuilt    1 in\n");
    Outcome const json = runConsole({"eval", "--json", "1 in", "--unit", "cm", "--set", comma});
    EXPECT_NE(json.out.find("\"value\":2.54"), std::string::npos) << json.out;
    Outcome const session = runConsole({}, "set decimalPointIsFullStop off\n"
                                           "help constants\n"
                                           "units inch\n"
                                           "1 in\n");
    for (char const * const text : {"980,665", "2,54 cm", "internal 2,54 cm"}) {
        EXPECT_NE(session.out.find(text), std::string::npos) << text << '\n' << session.out;
    }
    EXPECT_EQ(session.out.find("2.54"), std::string::npos) << session.out;
}

} // namespace

} // namespace Vn::Translations
