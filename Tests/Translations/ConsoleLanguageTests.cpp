// The console in another language, with the catalogues that it finds beside itself.

#include <regex>

#include "Tests/Support/Process.h"
#include "Tests/Translations/TranslationsTesting.h"

namespace Vn::Translations {

namespace {

using Console::Tests::Outcome;
using Console::Tests::runConsole;

struct Row {
    char const * language; // as given to the console
    char const * text;     // read in this language
    char const * english;  // the same in English
    char const * kind;     // of a meter
};

constexpr Row c_rows[] = {
    {"de", "wurzel(16) * 1 m", "sqrt(16) * 1 m", "L\u00E4nge"},
    {"de_AT", "wurzel(16) * 1 m", "sqrt(16) * 1 m", "L\u00E4nge"},
    {"de-CH", "wurzel(16) * 1 m", "sqrt(16) * 1 m", "L\u00E4nge"},
    {"fr", "racine(16) * 1 m", "sqrt(16) * 1 m", "Longueur"},
    {"fr_FR.UTF-8", "racine(16) * 1 m", "sqrt(16) * 1 m", "Longueur"},
    {"ja", "\u5E73\u65B9\u6839(16) * 1 m", "sqrt(16) * 1 m", "\u9577\u3055"},
};

TEST(ConsoleLanguageTests, LanguageIsChosen) {
    for (Row const & row : c_rows) {
        Outcome const good =
            runConsole({"--language", row.language, "eval", "--unit", "cm", row.text});
        EXPECT_EQ(good.status, 0) << row.language << ' ' << good.err;
        EXPECT_NE(good.out.find("400.00 cm"), std::string::npos) << row.language << good.out;
        EXPECT_NE(good.out.find(row.text), std::string::npos) << row.language << good.out;
        EXPECT_EQ(runConsole({"--language", row.language, "eval", row.english}).status, 1)
            << row.language;
        Outcome const units = runConsole({"--language", row.language, "units", "meter"});
        EXPECT_NE(units.out.find(row.kind), std::string::npos) << row.language << units.out;
    }
}

// The examples of the help are typed as they stand in every language.
TEST(ConsoleLanguageTests, KindsAreFoundByTheirEnglishNamesToo) {
    for (Row const & row : c_rows) {
        Outcome const english = runConsole({"--language", row.language, "units", "length"});
        EXPECT_EQ(english.status, 0) << row.language << english.err;
        EXPECT_EQ(english.out, runConsole({"--language", row.language, "units", row.kind}).out);
    }
}

TEST(ConsoleLanguageTests, EnglishHasMoreThanOneName) {
    for (char const * const language : {"C", "POSIX", "en", "en_GB.UTF-8", "EN"}) {
        EXPECT_EQ(runConsole({"--language", language, "eval", "sqrt(16)"}).status, 0) << language;
        EXPECT_EQ(runConsole({"--language", language, "eval", "wurzel(16)"}).status, 1) << language;
    }
}

TEST(ConsoleLanguageTests, AnEmptyTagIsRefused) {
    for (Outcome const & outcome : {runConsole({"--language", "", "eval", "1"}),
                                    runConsole({"eval", "1", "--language", ""})}) {
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err,
                  "vnconsole: the language after --language is empty; there are en, de, fr, ja\n");
    }
}

// What the libraries tell, and texts of others marked as such.
TEST(ConsoleLanguageTests, CausesAreToldInTheLanguage) {
    struct Told {
        char const * language;
        std::vector<std::string> arguments;
        char const * err;
    };
    Told const rows[] = {
        {"de", {"document", "."}, "Fehler beim \u00D6ffnen des Dokuments"},
        {"de", {"document", "."}, ": es ist ein Verzeichnis\n"},
        {"fr", {"document", "."}, "\u00A0: c\u2019est un r\u00E9pertoire\n"},
        {"ja", {"document", "."}, "\uFF1A\u30C7\u30A3\u30EC\u30AF\u30C8\u30EA\u3067\u3059\n"},
        {"de", {"command", "Unit.List"}, "Es gibt keinen Themenbereich \u201EUnit\u201C. "},
        {"de",
         {"command", "Units.MakeForMagnitude", "x"},
         "Die Gr\u00F6\u00DFenordnung ist eine Zehnerpotenz, eine ganze Zahl wie 3 oder -6, und "
         "\u201Ex\u201C ist keine\n"},
        {"fr", {"command", "Units.Lst"}, " Vouliez-vous dire Units.List\u00A0? "},
        {"ja", {"command", "Units"}, "\u300CUnits\u300D"},
    };
    for (Told const & row : rows) {
        std::vector<std::string> arguments{"--language", row.language};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        Outcome const outcome = runConsole(arguments);
        EXPECT_EQ(outcome.status, 1) << row.err;
        EXPECT_NE(outcome.err.find(row.err), std::string::npos) << outcome.err << row.err;
    }
}

// Values that the console quotes stand in its texts as words of the language do.
TEST(ConsoleLanguageTests, JapaneseQuotesHaveNoBlanksBesideThem) {
    std::vector<std::vector<std::string>> const calls{{"units", "parsec"},
                                                      {"document", "no.vnd", "foo"},
                                                      {"eval", "1", "--set", "x=1"},
                                                      {"eval", "1", "--unit", ";"},
                                                      {"command", "Units.Lst"}};
    for (std::vector<std::string> arguments : calls) {
        arguments.insert(arguments.begin(), {"--language", "ja"});
        std::string const told = runConsole(arguments).err;
        EXPECT_NE(told.find("\u300C"), std::string::npos) << told;
        // What stands in front of a message ends with a colon.
        EXPECT_FALSE(std::regex_search(told, std::regex("[^:] \u300C|\u300D "))) << told;
    }
}

TEST(ConsoleLanguageTests, BatchTellsOfBadJsonInTheLanguage) {
    Outcome const english = runConsole({"batch"}, "\n\n\n{\"id\":1,x\n");
    EXPECT_EQ(english.out,
              "{\"id\":null,\"error\":\"not JSON at character 8: syntax error while parsing object "
              "key - invalid literal; last read: '1,x'; expected string literal\",\"line\":4}\n");
    Outcome const german = runConsole({"--language", "de", "batch"}, "{\"id\":1,x\n");
    EXPECT_NE(german.out.find("\"error\":\"kein JSON bei Zeichen 8; die Bibliothek f\u00FCr JSON "
                              "meldet: syntax error"),
              std::string::npos)
        << german.out;
}

#ifndef _WIN32 // which has no such shell
TEST(ConsoleLanguageTests, EnvironmentNamesTheLanguage) {
    using Console::Tests::runShell;
    std::string const german = "LC_ALL= LANG=de_DE.UTF-8 \"$VNCONSOLE\" ";
    EXPECT_EQ(runShell(german + "eval 'wurzel(16)'").status, 0);
    EXPECT_EQ(runShell(german + "eval 'sqrt(16)'").status, 1);
    EXPECT_EQ(runShell(german + "--language en eval 'sqrt(16)'").status, 0);
    EXPECT_EQ(runShell(german + "--language fr eval 'racine(16)'").status, 0);
    // What programs read is the same everywhere, unless they ask.
    EXPECT_EQ(runShell(german + "eval --json 'sqrt(16)'").status, 0);
    std::string const batch = "batch --no-tokens";
    std::string const line = "{\"id\":1,\"text\":\"sqrt(16) * 1 cm\",\"context\":\"centimeter\"}\n";
    EXPECT_EQ(runShell(german + batch, line).out, runShell("\"$VNCONSOLE\" " + batch, line).out);
    EXPECT_EQ(runShell(german + "--language de eval --json 'sqrt(16)'").status, 1);
    // A language that there is no catalogue of is nobody's mistake there.
    Outcome const unknown = runShell("LC_ALL= LANG=eo \"$VNCONSOLE\" eval 'sqrt(16)'");
    EXPECT_EQ(unknown.status, 0);
    EXPECT_EQ(unknown.err, "");
}
#endif

struct Failure {
    char const * language;
    std::vector<std::string> arguments; // of "eval"
    char const * err;
};

Failure const c_failures[] = {
    {"de",
     {"2 + metr 5"},
     "Syntaxfehler bei Zeichen 2: „metr“ ist weder eine Einheit noch eine Funktion noch eine "
     "Konstante\n"
     "  2 + metr 5\n"
     "    ^ ~~~~\n"
     "  meinten Sie meter?\n"},
    {"de",
     {"7/2.2"},
     "Syntaxfehler bei Zeichen 3: auf den Bruch „7/2“ kann keine Zahl folgen\n"
     "  7/2.2\n"
     "  ~~~^\n"
     "  „7/2“ wurde als Bruch gelesen; setzen Sie den Divisor in Klammern: 7/(2.2)\n"},
    {"de",
     {"potenz(2)"},
     "Syntaxfehler bei Zeichen 8: „potenz“ hat 2 Argumente, angegeben: 1\n"
     "  potenz(2)\n"
     "  ~~~~~~  ^\n"},
    {"de",
     {"("},
     "Vorzeitiges Ende: eine Klammer wird nicht geschlossen\n"
     "  (\n"
     "  ^\n"},
    {"de",
     {"1kg + 1cm"},
     "Die Einheiten lassen sich nicht auswerten: die Einheiten links und rechts von „+“ passen "
     "nicht zusammen\n"
     "  1kg + 1cm\n"
     "      ^\n"},
    {"de",
     {"2kg", "--unit", "cm"},
     "Erwartete Einheit (zentimeter) / (1) und berechnete Einheit (kilogram) / (1) passen nicht "
     "zusammen: erwartet wird ein Ergebnis in cm (Länge), dieses ist aber in kg (Masse)\n"
     "  2kg\n"},
    {"de",
     {"1/0"},
     "vnconsole: kein Wert: ein Divisor ist nahezu null, eine Zahl ist zu groß, oder eine Funktion "
     "ist für ihr Argument nicht definiert\n"},

    {"ja",
     {"2 MM"},
     "構文エラー（位置 2）：「MM」は単位、関数、定数のいずれでもありません\n"
     "  2 MM\n"
     "    ^\n"
     "  mm または Mm のことですか？\n"},
    {"ja",
     {"7/2.2"},
     "構文エラー（位置 3）：分数「7/2」のすぐ後に数値は置けません\n"
     "  7/2.2\n"
     "  ~~~^\n"
     "  「7/2」は分数として読み取られました。除数を括弧で囲んでください：7/(2.2)\n"},
    {"ja",
     {"最大(2;3;4)"},
     "構文エラー（位置 8）：「最大」の引数は 2 個ですが、3 個指定されています\n"
     "  最大(2;3;4)\n"
     "  ~~~~      ^\n"},
    {"ja",
     {"2 *"},
     "構文エラー（位置 2）：「*」の後に使えるものがありません\n"
     "  2 *\n"
     "    ^\n"},
    {"ja",
     {"2 & 3"},
     "構文エラー（位置 2）：「&」は式では使えません\n"
     "  2 & 3\n"
     "    ^\n"},
    {"ja",
     {"2 cm", "--unit", ""},
     "単位の不一致（期待 (1) / (1)、結果 (centimeter) / (1)）：結果に単位は付かないはずですが、"
     "cm（長さ） です\n"
     "  2 cm\n"},

    {"fr",
     {"2CM"},
     "Erreur de syntaxe au caractère 1\u00A0: «\u00A0CM\u00A0» n’est ni une unité, ni une "
     "fonction, ni une constante\n"
     "  2CM\n"
     "   ^\n"
     "  vouliez-vous dire cm\u00A0?\n"},
    {"fr",
     {"racine(16 cm)"},
     "Les unités ne peuvent pas être évaluées\u00A0: l’argument de «\u00A0racine\u00A0» doit "
     "être sans unité\n"
     "  racine(16 cm)\n"
     "  ^\n"},
};

TEST(ConsoleLanguageTests, FailuresAreToldInTheLanguage) {
    for (Failure const & row : c_failures) {
        std::vector<std::string> arguments{"--language", row.language, "eval"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        Outcome const outcome = runConsole(arguments);
        EXPECT_EQ(outcome.status, 1) << row.arguments.front();
        EXPECT_EQ(outcome.err, row.err);
    }
}

TEST(ConsoleLanguageTests, ASessionTellsFailuresInTheLanguage) {
    Outcome const outcome = runConsole({"--language", "de"}, "3 5\n");
    EXPECT_NE((outcome.out + outcome.err)
                  .find("Syntaxfehler bei Zeichen 2: vor der Zahl fehlt ein Operator\n"),
              std::string::npos)
        << outcome.out << outcome.err;
}

} // namespace

} // namespace Vn::Translations
