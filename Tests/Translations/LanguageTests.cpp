// What a person types in a language is read, and comes back in the same words.

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Tests/Translations/PoFile.h"
#include "Tests/Translations/TranslationsTesting.h"

namespace Vn::Translations {

namespace {

using namespace Expressions;
using Units::UnitContext;
using Units::UnitDisplaySettings;

class LanguageTests : public LanguageTest {};

INSTANTIATE_TEST_SUITE_P(Languages, LanguageTests, testing::ValuesIn(c_languages),
                         [](auto const & language) { return language.param; });

UnitContext contextOf(std::wstring_view context) {
    return context == L"?" ? UnitContext() : UnitContext(std::wstring(context));
}

struct Row {
    char const * language;
    wchar_t const * text;
    wchar_t const * context; // "?" expects nothing
    double value;
    wchar_t const * formatted;
    wchar_t const * rebuilt;
};

constexpr double c_pi = 3.141592653589793;

constexpr Row c_rows[] = {
    {"de", L"wurzel(16)", L"", 4.0, L"4.00", L"wurzel(16)"},
    {"de", L"wurzel( 16 ) * 1 cm", L"cm", 4.0, L"4.00 cm", L"wurzel(16) * 1 cm"},
    {"de", L"2 kilometer + 50 zentimeter", L"m", 200050.0, L"2000.50 m", L"2 km + 50 cm"},
    {"de", L"3 mikrometer", L"cm", 0.0003, L"3.000E-04 cm", L"3 mikrom"},
    {"de", L"3 mikrom", L"cm", 0.0003, L"3.000E-04 cm", L"3 mikrom"},
    {"de", L"2 hektopascal / 1 dekapascal", L"", 20.0, L"20.00", L"2 hPa / 1 daPa"},
    {"de", L"Erdbeschleunigung * 2 s", L"m/s", 1961.33, L"19.613 m / s",
     L"Erdbeschleunigung * 2 s"},
    {"de", L"Lichtgeschwindigkeit", L"km/s", 29979245800.0, L"2.998E+05 km / s",
     L"Lichtgeschwindigkeit"},
    {"de", L"abrunden(2.7) + aufrunden(2.2) + runden(2.6)", L"", 8.0, L"8.00",
     L"abrunden(2.7) + aufrunden(2.2) + runden(2.6)"},
    {"de", L"potenz(2; 3) * vorzeichen(5)", L"", 8.0, L"8.00", L"potenz(2; 3) * vorzeichen(5)"},
    {"de", L"arcsin(0.5) * 180 / PI", L"?", 30.0, L"30.00 rad", L"arcsin(0.5) * 180 / PI"},
    {"de", L"ln(E) + max(1; 2)", L"", 3.0, L"3.00", L"ln(E) + max(1; 2)"},
    {"de", L"2' 6 3/4\"", L"cm", 78.105, L"78.105 cm", L"2'-6 3/4\""},

    {"fr", L"racine(16)", L"", 4.0, L"4.00", L"racine(16)"},
    {"fr", L"2 kilometer + 5 d\u00E9cimeter", L"m", 200050.0, L"2000.50 m", L"2 km + 5 dm"},
    {"fr", L"3 m\u00E9gapascal", L"MPa", 30000.0, L"3.00 MPa", L"3 MPa"},
    {"fr", L"Pesanteur * 2 s", L"m/s", 1961.33, L"19.613 m / s", L"Pesanteur * 2 s"},
    {"fr", L"VitesseLumi\u00E8re", L"km/s", 29979245800.0, L"2.998E+05 km / s",
     L"VitesseLumi\u00E8re"},
    {"fr", L"plancher(2.7) + plafond(2.2) + arrondi(2.6)", L"", 8.0, L"8.00",
     L"plancher(2.7) + plafond(2.2) + arrondi(2.6)"},
    {"fr", L"puissance(2; 3) * signe(5)", L"", 8.0, L"8.00", L"puissance(2; 3) * signe(5)"},
    {"fr", L"arctan(1) * 4", L"?", c_pi, L"3.142 rad", L"arctan(1) * 4"},
    {"fr", L"2' 6 3/4\"", L"cm", 78.105, L"78.105 cm", L"2'-6 3/4\""},

    {"ja", L"\u5E73\u65B9\u6839(16)", L"", 4.0, L"4.00", L"\u5E73\u65B9\u6839(16)"},
    {"ja", L"2 kilometer + 50 cm", L"m", 200050.0, L"2000.50 m", L"2 km + 50 cm"},
    {"ja", L"\u91CD\u529B\u52A0\u901F\u5EA6 * 2 s", L"m/s", 1961.33, L"19.613 m / s",
     L"\u91CD\u529B\u52A0\u901F\u5EA6 * 2 s"},
    {"ja", L"\u5149\u901F", L"km/s", 29979245800.0, L"2.998E+05 km / s", L"\u5149\u901F"},
    {"ja",
     L"\u5207\u308A\u6368\u3066(2.7) + \u5207\u308A\u4E0A\u3052(2.2) + "
     L"\u56DB\u6368\u4E94\u5165(2.6)",
     L"", 8.0, L"8.00",
     L"\u5207\u308A\u6368\u3066(2.7) + \u5207\u308A\u4E0A\u3052(2.2) + "
     L"\u56DB\u6368\u4E94\u5165(2.6)"},
    {"ja", L"\u3079\u304D\u4E57(2; 3) * \u7B26\u53F7(5)", L"", 8.0, L"8.00",
     L"\u3079\u304D\u4E57(2; 3) * \u7B26\u53F7(5)"},
    {"ja", L"\u6700\u5927(2 in; 3 cm) - \u6700\u5C0F(2 in; 3 cm)", L"cm", 2.08, L"2.08 cm",
     L"\u6700\u5927(2 in; 3 cm) - \u6700\u5C0F(2 in; 3 cm)"},
    {"ja", L"\u7D76\u5BFE\u5024(-2 min)", L"s", 120.0, L"120.00 s", L"\u7D76\u5BFE\u5024(-2 min)"},
    {"ja", L"2' 6 3/4\"", L"cm", 78.105, L"78.105 cm", L"2'-6 3/4\""},
};

TEST_P(LanguageTests, TextsAreReadAndComeBackInTheirWords) {
    inLanguage([] {
        UnitDisplaySettings const & standard = UnitDisplaySettings::standard();
        int rows = 0;
        for (Row const & row : c_rows) {
            if (row.language != language()) continue;
            ++rows;
            UnitContext const context = contextOf(row.context);
            Expression const expression(row.text, context);
            EXPECT_TRUE(expression) << shown(row.text) << shown(expression.result().toString());
            std::optional<double> const value = expression.value();
            EXPECT_TRUE(value) << shown(row.text);
            EXPECT_NEAR(value.value_or(NAN), row.value, 1e-8 * std::fabs(row.value))
                << shown(row.text);
            EXPECT_EQ(shown(expression.formatted(Units::ValueAndUnit, standard, context)),
                      shown(row.formatted));
            EXPECT_EQ(shown(expression.rebuilt()), shown(row.rebuilt));
            Expression const again(expression.rebuilt(), context);
            EXPECT_NEAR(again.value().value_or(NAN), row.value, 1e-8 * std::fabs(row.value))
                << shown(row.rebuilt);
            EXPECT_EQ(shown(again.rebuilt()), shown(row.rebuilt));
        }
        EXPECT_GE(rows, 9);
    });
}

struct FunctionRow {
    EToken function;
    wchar_t const * english;
    wchar_t const * arguments;
    double value;
};

FunctionRow const c_functions[] = {
    {e_COS, L"cos", L"(0.5 rad)", std::cos(0.5)},
    {e_ACOS, L"acos", L"(0.5)", std::acos(0.5)},
    {e_COSH, L"cosh", L"(0.5 rad)", std::cosh(0.5)},
    {e_SIN, L"sin", L"(0.5 rad)", std::sin(0.5)},
    {e_ASIN, L"asin", L"(0.5)", std::asin(0.5)},
    {e_SINH, L"sinh", L"(0.5 rad)", std::sinh(0.5)},
    {e_TAN, L"tan", L"(0.5 rad)", std::tan(0.5)},
    {e_ATAN, L"atan", L"(0.5)", std::atan(0.5)},
    {e_TANH, L"tanh", L"(0.5 rad)", std::tanh(0.5)},
    {e_SQRT, L"sqrt", L"(0.25)", 0.5},
    {e_EXP, L"exp", L"(0.5)", std::exp(0.5)},
    {e_POW, L"pow", L"(0.5; 3)", 0.125},
    {e_LN, L"ln", L"(0.5)", std::log(0.5)},
    {e_LOG, L"log", L"(0.5)", std::log10(0.5)},
    {e_FLOOR, L"floor", L"(1.5)", 1.0},
    {e_CEIL, L"ceil", L"(1.2)", 2.0},
    {e_ROUND, L"round", L"(1.7)", 2.0},
    {e_ABS, L"abs", L"(-1.5)", 1.5},
    {e_SIGN, L"sign", L"(1.5)", 1.0},
    {e_MAX, L"max", L"(1.5; 2.5)", 2.5},
    {e_MIN, L"min", L"(1.5; 2.5)", 1.5},
};

TEST_P(LanguageTests, EveryFunctionIsReadUnderItsWord) {
    inLanguage([] {
        for (FunctionRow const & row : c_functions) {
            std::wstring const text = Tokens::get()->getString(row.function) + row.arguments;
            Expression const expression(text);
            EXPECT_TRUE(expression.value()) << shown(text);
            EXPECT_NEAR(expression.value().value_or(NAN), row.value, 1e-12) << shown(text);
            EXPECT_EQ(shown(expression.rebuilt()), shown(text));
        }
        std::wstring const random = Tokens::get()->getString(e_RANDOM) + L"()";
        Expression const expression(random);
        EXPECT_TRUE(expression.value()) << shown(random);
        EXPECT_EQ(shown(expression.rebuilt()), shown(random));
    });
}

TEST_P(LanguageTests, EnglishWordThatWasTranslatedIsNoFunction) {
    inLanguage([] {
        int translated = 0;
        for (FunctionRow const & row : c_functions) {
            if (Tokens::get()->getString(row.function) == row.english) continue;
            ++translated;
            EXPECT_EQ(Tokens::get()->getFunctionToken(row.english), e_NONE);
            EXPECT_FALSE(Expression(std::wstring(row.english) + row.arguments))
                << shown(row.english);
        }
        EXPECT_GE(translated, 8);
        for (wchar_t const * const constant : {L"Gravity", L"SpeedOfLight"}) {
            EXPECT_EQ(Tokens::get()->getConstantToken(constant), e_NONE);
            EXPECT_FALSE(Expression(constant)) << shown(constant);
        }
    });
}

// The corrections of a text that is refused; the first is what is told.
std::vector<std::wstring> correctionsOf(std::wstring const & text) {
    return explainFailure(Expression(text)).corrections;
}

void expectCorrection(std::wstring const & typed, std::wstring const & wanted) {
    std::vector<std::wstring> const corrections = correctionsOf(typed);
    EXPECT_EQ(shown(corrections.empty() ? L"" : corrections.front()), shown(wanted))
        << shown(typed);
}

TEST_P(LanguageTests, EnglishWordIsAnsweredWithThatOfTheLanguage) {
    inLanguage([] {
        Tokens const & tokens = *Tokens::get();
        for (FunctionRow const & row : c_functions) {
            std::wstring const & name = tokens.getString(row.function);
            if (name == row.english) continue;
            expectCorrection(std::wstring(row.english) + row.arguments, name + row.arguments);
            // Also where more has to be corrected.
            expectCorrection(L"2 Nm * " + std::wstring(row.english) + row.arguments,
                             L"2 N m * " + name + row.arguments);
        }
        expectCorrection(L"SQRT(16)", tokens.getString(e_SQRT) + L"(16)");
        expectCorrection(L"sqrt 16", tokens.getString(e_SQRT) + L"(16)");
        expectCorrection(L"\u221A16", tokens.getString(e_SQRT) + L"(16)");
        expectCorrection(L"arcsine(1)", tokens.getString(e_ASIN) + L"(1)");
        for (EToken const constant : {e_GRAVITY_CONSTANT, e_SPEED_OF_LIGHT_CONSTANT})
            expectCorrection(std::wstring(Tokens::defaultString(constant)) + L" * 2 hours",
                             tokens.getString(constant) + L" * 2 hour");
        expectCorrection(L"g0 * 2 s", tokens.getString(e_GRAVITY_CONSTANT) + L" * 2 s");
    });
}

TEST_P(LanguageTests, EnglishPrefixIsAnsweredWithThatOfTheLanguage) {
    inLanguage([] {
        Tokens const & tokens = *Tokens::get();
        for (EToken const prefix : Tokens::fullMagnitudes()) {
            std::wstring const wanted = L"5 " + tokens.getString(prefix) + L"meter";
            std::wstring const english = L"5 " + std::wstring(Tokens::defaultString(prefix));
            if (wanted != english + L"meter") expectCorrection(english + L"meter", wanted);
            expectCorrection(english + L"meters", wanted);
            expectCorrection(english + L"metres", wanted);
        }
    });
}

TEST_P(LanguageTests, WordOfAnyLanguageIsAnsweredWithThatOfTheLanguage) {
    inLanguage([] {
        Tokens const & tokens = *Tokens::get();
        std::size_t words = 0;
        for (char const * const other : c_languages) {
            for (PoEntry const & entry : readPoFile(std::string(other) + ".po")) {
                std::wstring const word = Text::fromUtf8(entry.text);
                for (FunctionRow const & row : c_functions) {
                    if (entry.id != Text::toUtf8(row.english) || !isKeyOfFunction(entry.context) ||
                        tokens.getFunctionToken(word) != e_NONE)
                        continue;
                    ++words;
                    expectCorrection(word + row.arguments,
                                     tokens.getString(row.function) + row.arguments);
                }
            }
        }
        EXPECT_GE(words, 12u);
    });
}

TEST_P(LanguageTests, UnitsAreShownInFullWithThePrefixOfTheLanguage) {
    inLanguage([] {
        UnitDisplaySettings settings = UnitDisplaySettings::standard();
        settings.displayAbbreviated(false);
        UnitContext const context(L"Mm");
        std::wstring const wanted = L"2.00 " + Tokens::get()->getString(e_MEGA) + L"meter";
        Expression const expression(L"2 Mm", context);
        std::wstring const formatted = expression.formatted(Units::ValueAndUnit, settings, context);
        EXPECT_EQ(shown(formatted), shown(wanted));
        EXPECT_EQ(Expression(formatted, context).value(), expression.value());
    });
}

} // namespace

} // namespace Vn::Translations
