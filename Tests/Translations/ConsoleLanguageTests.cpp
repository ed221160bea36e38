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

TEST(ConsoleLanguageTests, UnknownLanguageIsEnglish) {
    for (char const * const language : {"eo", "C", "en", ""}) {
        EXPECT_EQ(runConsole({"--language", language, "eval", "sqrt(16)"}).status, 0) << language;
        EXPECT_EQ(runConsole({"--language", language, "eval", "wurzel(16)"}).status, 1) << language;
    }
}

} // namespace

} // namespace Vn::Translations
