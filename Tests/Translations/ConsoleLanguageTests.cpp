// The console in another language, with the catalogues that it finds beside itself.

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

TEST(ConsoleLanguageTests, EnglishHasMoreThanOneName) {
    for (char const * const language : {"C", "POSIX", "en", "en_GB.UTF-8", ""}) {
        EXPECT_EQ(runConsole({"--language", language, "eval", "sqrt(16)"}).status, 0) << language;
        EXPECT_EQ(runConsole({"--language", language, "eval", "wurzel(16)"}).status, 1) << language;
    }
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
