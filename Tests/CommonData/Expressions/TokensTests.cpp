#include "Server/CommonData/Expressions/Tokens.h"

#include <cstdlib>
#include <iostream>
#include <set>

#include "Platform/Base/StringTable.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::ComplexUnit;
using Units::SimpleUnit;

struct TokenRow {
    EToken token;
    int number;
    char const * key; // null: not translatable
    wchar_t const * text;
};

constexpr TokenRow c_tokenRows[] = {
    {e_NONE, 0, nullptr, L""},
    {e_PLUS, 1, nullptr, L"+"},
    {e_MINUS, 2, nullptr, L"-"},
    {e_MODULO, 3, nullptr, L"%"},
    {e_MULTIPLY, 4, nullptr, L"*"},
    {e_DIVIDE, 5, nullptr, L"/"},
    {e_POWER, 6, nullptr, L"^"},
    {e_LEFT_PAREN, 7, nullptr, L"("},
    {e_RIGHT_PAREN, 8, nullptr, L")"},
    {e_SPACE, 9, nullptr, L" "},
    {e_APOSTROPHE, 10, nullptr, L"'"},
    {e_QUOTE, 11, nullptr, L"\""},
    {e_SEMICOLON, 12, nullptr, L";"},
    {e_PI_CONSTANT, 13, "e_PI_CONSTANT", L"PI"},
    {e_E_CONSTANT, 14, "e_E_CONSTANT", L"E"},
    {e_GRAVITY_CONSTANT, 15, "e_GRAVITY_CONSTANT", L"Gravity"},
    {e_SPEED_OF_LIGHT_CONSTANT, 16, "e_SPEED_OF_LIGHT_CONSTANT", L"SpeedOfLight"},
    {e_EXA, 17, "e_EXA", L"exa"},
    {e_EXA_ABBR, 18, "e_EXA_ABBR", L"E"},
    {e_PETA, 19, "e_PETA", L"peta"},
    {e_PETA_ABBR, 20, "e_PETA_ABBR", L"P"},
    {e_TERA, 21, "e_TERA", L"tera"},
    {e_TERA_ABBR, 22, "e_TERA_ABBR", L"T"},
    {e_GIGA, 23, "e_GIGA", L"giga"},
    {e_GIGA_ABBR, 24, "e_GIGA_ABBR", L"G"},
    {e_MEGA, 25, "e_MEGA", L"mega"},
    {e_MEGA_ABBR, 26, "e_MEGA_ABBR", L"M"},
    {e_KILO, 27, "e_KILO", L"kilo"},
    {e_KILO_ABBR, 28, "e_KILO_ABBR", L"k"},
    {e_HECTO, 29, "e_HECTO", L"hecto"},
    {e_HECTO_ABBR, 30, "e_HECTO_ABBR", L"h"},
    {e_DECA, 31, "e_DECA", L"deca"},
    {e_DECA_ABBR, 32, "e_DECA_ABBR", L"da"},
    {e_DECA_RESERVED, 33, nullptr, L""},
    {e_DECI, 34, "e_DECI", L"deci"},
    {e_DECI_ABBR, 35, "e_DECI_ABBR", L"d"},
    {e_CENTI, 36, "e_CENTI", L"centi"},
    {e_CENTI_ABBR, 37, "e_CENTI_ABBR", L"c"},
    {e_MILLI, 38, "e_MILLI", L"milli"},
    {e_MILLI_ABBR, 39, "e_MILLI_ABBR", L"m"},
    {e_MICRO, 40, "e_MICRO", L"micro"},
    {e_MICRO_ABBR, 41, "e_MICRO_ABBR", L"micro"},
    {e_NANO, 42, "e_NANO", L"nano"},
    {e_NANO_ABBR, 43, "e_NANO_ABBR", L"n"},
    {e_PICO, 44, "e_PICO", L"pico"},
    {e_PICO_ABBR, 45, "e_PICO_ABBR", L"p"},
    {e_FEMTO, 46, "e_FEMTO", L"femto"},
    {e_FEMTO_ABBR, 47, "e_FEMTO_ABBR", L"f"},
    {e_ATTO, 48, "e_ATTO", L"atto"},
    {e_ATTO_ABBR, 49, "e_ATTO_ABBR", L"a"},
    {e_COS, 50, "e_COS", L"cos"},
    {e_ACOS, 51, "e_ACOS", L"acos"},
    {e_COSH, 52, "e_COSH", L"cosh"},
    {e_SIN, 53, "e_SIN", L"sin"},
    {e_ASIN, 54, "e_ASIN", L"asin"},
    {e_SINH, 55, "e_SINH", L"sinh"},
    {e_TAN, 56, "e_TAN", L"tan"},
    {e_ATAN, 57, "e_ATAN", L"atan"},
    {e_TANH, 58, "e_TANH", L"tanh"},
    {e_SQRT, 59, "e_SQRT", L"sqrt"},
    {e_EXP, 60, "e_EXP", L"exp"},
    {e_POW, 61, "e_POW", L"pow"},
    {e_LN, 62, "e_LN", L"ln"},
    {e_LOG, 63, "e_LOG", L"log"},
    {e_FLOOR, 64, "e_FLOOR", L"floor"},
    {e_CEIL, 65, "e_CEIL", L"ceil"},
    {e_ROUND, 66, "e_ROUND", L"round"},
    {e_ABS, 67, "e_ABS", L"abs"},
    {e_SIGN, 68, "e_SIGN", L"sign"},
    {e_MAX, 69, "e_MAX", L"max"},
    {e_MIN, 70, "e_MIN", L"min"},
    {e_RANDOM, 71, "e_RANDOM", L"random"},
    {e_INCH, 72, "e_INCH", L"inch"},
    {e_INCH_ABBR, 73, "e_INCH_ABBR", L"in"},
    {e_FOOT, 74, "e_FOOT", L"foot"},
    {e_FOOT_ABBR, 75, "e_FOOT_ABBR", L"ft"},
    {e_DEGREE, 76, "e_DEGREE", L"degree"},
    {e_DEGREE_ABBR, 77, "e_DEGREE_ABBR", L"deg"},
    {e_DEGREE_SYM, 78, "e_DEGREE_SYM", L"\u00B0"},
    {e_DOLLAR_SYM, 79, "e_DOLLAR_SYM", L"$"},
};

TEST(TokensTests, EightyTokensHaveTheirNumbersAndDefaultTexts) {
    ASSERT_EQ(std::size(c_tokenRows), 80U);
    EXPECT_EQ(c_tokens, 80);
    for (int i = 0; i < c_tokens; ++i) {
        TokenRow const & row = c_tokenRows[i];
        EXPECT_EQ(row.number, i);
        EXPECT_EQ(static_cast<int>(row.token), i);
        EXPECT_EQ(Tokens::get()->getString(row.token), row.text) << i;
    }
}

TEST(TokensTests, ThereIsOneVocabulary) { EXPECT_EQ(Tokens::get(), Tokens::get()); }

TEST(TokensTests, ConstantsHaveTheirValues) {
    Tokens const & tokens = *Tokens::get();
    EXPECT_EQ(tokens.getConstantValue(e_PI_CONSTANT), 3.141592653589793);
    EXPECT_EQ(tokens.getConstantValue(e_E_CONSTANT), 2.718281828459045);
    EXPECT_EQ(tokens.getConstantValue(e_GRAVITY_CONSTANT), 980.665);
    EXPECT_EQ(tokens.getConstantValue(e_SPEED_OF_LIGHT_CONSTANT), 29979245800.0);
}

TEST(TokensTests, ConstantsHaveTheirUnits) {
    Tokens::initializeConstantUnits();
    Tokens const & tokens = *Tokens::get();
    SimpleUnit const * const centimeter = Units::UnitMeter::get(0.01);
    SimpleUnit const * const second = Units::UnitSecond::get(1.0);
    ComplexUnit gravity(centimeter);
    gravity.addToDenominator(second);
    gravity.addToDenominator(second);
    ComplexUnit speedOfLight(centimeter);
    speedOfLight.addToDenominator(second);

    ComplexUnit units(second);
    tokens.getConstantUnits(&units, e_PI_CONSTANT);
    EXPECT_TRUE(units.isEmpty());
    units.assign(second);
    tokens.getConstantUnits(&units, e_E_CONSTANT);
    EXPECT_TRUE(units.isEmpty());
    tokens.getConstantUnits(&units, e_GRAVITY_CONSTANT);
    EXPECT_TRUE(units.isIdentical(&gravity));
    tokens.getConstantUnits(&units, e_SPEED_OF_LIGHT_CONSTANT);
    EXPECT_TRUE(units.isIdentical(&speedOfLight));
}

TEST(TokensTests, SharedUnitsOfConstantsAreComplete) {
    for (EToken const token :
         {e_PI_CONSTANT, e_E_CONSTANT, e_GRAVITY_CONSTANT, e_SPEED_OF_LIGHT_CONSTANT})
        EXPECT_TRUE(Tokens::get()->constantUnits(token).isBaseValid()) << token;
}

TEST(TokensTests, MagnitudesOfWordAndAbbreviationAreTheSame) {
    struct Row {
        int word;
        int abbreviation;
        double value;
    };
    constexpr Row c_rows[] = {
        {17, 18, 1e18},  {19, 20, 1e15},  {21, 22, 1e12},  {23, 24, 1e9},
        {25, 26, 1e6},   {27, 28, 1e3},   {29, 30, 100.0}, {31, 32, 10.0},
        {34, 35, 0.1},   {36, 37, 0.01},  {38, 39, 0.001}, {40, 41, 1e-06},
        {42, 43, 1e-09}, {44, 45, 1e-12}, {46, 47, 1e-15}, {48, 49, 1e-18},
    };
    for (Row const & row : c_rows) {
        EXPECT_EQ(Tokens::get()->getMagnitudeValue(static_cast<EToken>(row.word)), row.value);
        EXPECT_EQ(Tokens::get()->getMagnitudeValue(static_cast<EToken>(row.abbreviation)),
                  row.value);
    }
}

TEST(TokensTests, ReservedPrefixIsTen) {
    EXPECT_EQ(Tokens::get()->getMagnitudeValue(static_cast<EToken>(33)), 10.0);
}

TEST(TokensTests, LookupsFindTheFirstTokenOfTheirRange) {
    Tokens const & tokens = *Tokens::get();
    // Several tokens share a text.
    EXPECT_EQ(tokens.getConstantToken(L"E"), 14);
    EXPECT_EQ(tokens.getMagnitudeToken(L"E"), 18);
    EXPECT_EQ(tokens.getMagnitudeToken(L"micro"), 40);
    for (TokenRow const & row : c_tokenRows) {
        if (!row.key || row.number == 41) continue;
        bool const constant = row.number >= 13 && row.number <= 16;
        bool const magnitude = row.number >= 17 && row.number <= 49;
        bool const function = row.number >= 50 && row.number <= 71;
        bool const isE = std::wstring_view(row.text) == L"E";
        EXPECT_EQ(tokens.getConstantToken(row.text), constant || isE ? (isE ? 14 : row.number) : 0);
        EXPECT_EQ(tokens.getMagnitudeToken(row.text),
                  magnitude || isE ? (isE ? 18 : row.number) : 0);
        EXPECT_EQ(tokens.getFunctionToken(row.text), function ? row.number : 0) << row.number;
    }
}

TEST(TokensTests, LookupsTakeWholeTextsInTheirExactCase) {
    Tokens const & tokens = *Tokens::get();
    for (wchar_t const * const text :
         {L"", L" ", L"pi", L"Pi", L"PI ", L"PIE", L"e", L"gravity", L"+", L"(", L"K",
          L"speedOfLight", L"Kilo", L"Cos", L"COS", L"cos(", L"co", L"MAX", L"random()"}) {
        EXPECT_EQ(tokens.getConstantToken(text), e_NONE) << shown(text);
        EXPECT_EQ(tokens.getMagnitudeToken(text), e_NONE) << shown(text);
        EXPECT_EQ(tokens.getFunctionToken(text), e_NONE) << shown(text);
    }
    EXPECT_EQ(tokens.getFunctionToken(std::wstring(L"cos\0", 4)), e_NONE);
    EXPECT_EQ(tokens.getConstantToken(std::wstring(1'000'000, L'E')), e_NONE);
}

TEST(TokensTests, MatchesTokenAtItsPosition) {
    struct Row {
        wchar_t const * text;
        std::size_t position;
        EToken token;
        std::size_t length; // 0: no match
    };
    constexpr Row c_rows[] = {
        {L"inch", 0, e_INCH, 4},
        {L"inches", 0, e_INCH, 4}, // whatever follows
        {L"inches", 0, e_INCH_ABBR, 2},
        {L"1 in", 2, e_INCH_ABBR, 2},
        {L"1 in", 2, e_INCH, 0},
        {L"1 in", 0, e_INCH_ABBR, 0},
        {L"1 in", 3, e_INCH_ABBR, 0},
        {L"1 in", 4, e_INCH_ABBR, 0},
        {L"1 in", 5, e_INCH_ABBR, 0},
        {L"1 in", static_cast<std::size_t>(-1), e_INCH_ABBR, 0},
        {L"INCH", 0, e_INCH, 0}, // the case counts
        {L"degree", 0, e_DEGREE_ABBR, 3},
        {L"45\u00B0", 2, e_DEGREE_SYM, 1},
        {L"", 0, e_PLUS, 0},
        {L"+", 0, e_PLUS, 1},
    };
    for (Row const & row : c_rows) {
        std::size_t length = 77;
        EXPECT_EQ(Tokens::get()->matchesToken(row.text, row.position, row.token, length),
                  row.length > 0)
            << shown(row.text) << row.position;
        EXPECT_EQ(length, row.length > 0 ? row.length : 77) << shown(row.text) << row.position;
    }
}

TEST(TokensTests, NamesEndWhereTheyEnd) {
    struct Row {
        wchar_t const * text;
        std::size_t position;
        bool allowSymbols;
        bool invalid;
        std::size_t end;
    };
    constexpr Row c_rows[] = {
        {L"cm2", 0, true, false, 3},
        {L"cm*2", 0, true, true, 2},
        {L"2cm", 0, true, true, 0},
        {L"2cm", 1, true, false, 3},
        {L"c2m 3", 0, true, true, 3},
        {L" cm", 0, true, true, 0},
        {L"cm\tkm", 0, true, true, 2},
        {L"cm\u00A0km", 0, true, true, 2},
        {L"cm\u3000km", 0, true, true, 2},
        {L"a_b", 0, true, true, 1}, // an underscore is punctuation
        {L"_a", 0, true, true, 0},
        {L"a#", 0, true, true, 1},
        {L"$", 0, true, false, 1},
        {L"$", 0, false, true, 0},
        {L"\u00B5m", 0, true, false, 2},
        {L"\u00B5m", 0, false, true, 0},
        {L"\u00B0", 0, true, false, 1},
        {L"\u00B0", 0, false, true, 0},
        {L"a$b", 0, true, false, 3},
        {L"a$b", 0, false, true, 1},
        {L"\u00A3", 0, true, true, 0},    // a pound isn't one of the symbols
        {L"\u03BCm", 0, false, false, 2}, // a Greek mu is a letter
        {L"\u00E4\u00DF", 0, false, false, 2},
        {L"\u4E2D\u6587+", 0, true, true, 2},
        {L"\u0661", 0, true, false, 1}, // an Arabic digit isn't a digit here
        {L"\U0001D11E", 0, true, false, std::wstring_view(L"\U0001D11E").size()},
        // At or after the end: true, and the position stays.
        {L"", 0, true, true, 0},
        {L"cm", 2, true, true, 2},
        {L"cm", 7, true, true, 7},
    };
    for (Row const & row : c_rows) {
        std::size_t position = row.position;
        EXPECT_EQ(Tokens::get()->invalidNameCharsInStr(row.text, position, row.allowSymbols),
                  row.invalid)
            << shown(row.text) << row.position << row.allowSymbols;
        EXPECT_EQ(position, row.end) << shown(row.text) << row.position << row.allowSymbols;
        if (row.position != 0) continue;
        EXPECT_EQ(Tokens::get()->invalidNameCharsInStr(row.text, row.allowSymbols), row.invalid)
            << shown(row.text);
    }
}

TEST(TokensTests, WordsNameUnits) {
    struct Row {
        wchar_t const * word;
        SimpleUnit const * unit;
    };
    Units::UnitMeter::get(0.01); // a centimetre exists
    Row const rows[] = {
        {L"m", Units::UnitMeter::get(1.0)},
        {L"meter", Units::UnitMeter::get(1.0)},
        {L"km", Units::UnitMeter::get(1000.0)},
        {L"kilometer", Units::UnitMeter::get(1000.0)},
        {L"kmeter", Units::UnitMeter::get(1000.0)},
        {L"kilom", Units::UnitMeter::get(1000.0)},
        {L"kcm", Units::UnitMeter::get(1000.0)}, // the magnitude of the cm is dropped
        {L"kcentimeter", Units::UnitMeter::get(1000.0)},
        {L"dam", Units::UnitMeter::get(10.0)},
        {L"Em", Units::UnitMeter::get(1e18)},
        {L"micrometer", Units::UnitMeter::get(1e-06)},
        {L"microm", Units::UnitMeter::get(1e-06)},
        {L"am", Units::UnitMeter::get(1e-18)},
        {L"kMole", Units::UnitMole::get(1000.0)},
        {L"kcandela", Units::UnitCandela::get(1000.0)},
        // A unit without prefixes is found in any case.
        {L"in", Units::UnitInch::get()},
        {L"IN", Units::UnitInch::get()},
        {L"InCH", Units::UnitInch::get()},
        {L"\"", Units::UnitInch::get()},
        {L"c", Units::UnitCelsius::get()},
        {L"F", Units::UnitFarenheit::get()},
        {L"f", Units::UnitFarenheit::get()},
        {L"BTU", Units::UnitBTU::get()},
        {L"NAUTICALMILE", Units::UnitNauticalMile::get()},
        {L"min", Units::UnitMinute::get()},
        {L"$", Units::UnitDollar::get()},
        {L"\u00B0", Units::UnitDegree::get()},
        {L"\u00B5", Units::UnitMicron::get()},
        {L"circular_mil", Units::UnitCircularMil::get()},
        {L"fl_oz", Units::UnitOunceVolume::get()},
        // No units.
        {L"", nullptr},
        {L"1", nullptr},
        {L" m", nullptr},
        {L"m ", nullptr},
        {L"KM", nullptr},
        {L"CM", nullptr},
        {L"M", nullptr},
        {L"KILOMETER", nullptr},
        {L"kin", nullptr},
        {L"xm", nullptr},
        {L"Km", nullptr},
        {L"\u212A", nullptr}, // a Kelvin sign isn't a k
        {L"cos", nullptr},
    };
    for (Row const & row : rows)
        EXPECT_EQ(Tokens::get()->findMatchingUnit(row.word), row.unit) << shown(row.word);
}

TEST(TokensTests, EveryPrefixMakesItsMagnitude) {
    for (int number = 17; number <= 49; ++number) {
        if (number == 33) continue;
        auto const token = static_cast<EToken>(number);
        // After every other unit a spelling could be read in two ways: "dam" is no "d" of "am".
        std::wstring const word = Tokens::get()->getString(token) + L"hertz";
        SimpleUnit const * const unit = Tokens::get()->findMatchingUnit(word);
        ASSERT_NE(unit, nullptr) << shown(word);
        EXPECT_EQ(unit->magnitude(), Tokens::get()->getMagnitudeValue(token)) << shown(word);
        EXPECT_EQ(unit->identifier(), Units::UnitHertz::staticIdentifier()) << shown(word);
    }
}

// ---- What only a fresh process shows ------------------------------------------------------------

// Runs `check` in a process of its own, in which nothing has been looked up yet.  `check` names on
// the standard error stream what isn't so, and tells whether all is well.
void inFreshProcess(bool (*check)()) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(check() ? 42 : 1), testing::ExitedWithCode(42), "");
}

bool holds(bool condition, char const * what) {
    if (!condition) std::cerr << "not so: " << what << '\n';
    return condition;
}

TEST(TokensFreshProcessTests, RareWordDependsOnTheUnitsThatExist) {
    inFreshProcess([] {
        Tokens const & tokens = *Tokens::get();
        bool good = holds(tokens.findMatchingUnit(L"Gal") == Units::UnitGallon::get(), "Gal");
        good &= holds(tokens.findMatchingUnit(L"al") == Units::UnitLiter::get(1e-18), "al");
        good &= holds(tokens.findMatchingUnit(L"Gal") == Units::UnitLiter::get(1e9), "Gal again");
        return good;
    });
}

TEST(TokensFreshProcessTests, PrefixBeforeAPrefixNeedsTheUnitThere) {
    inFreshProcess([] {
        Tokens const & tokens = *Tokens::get();
        bool good = holds(tokens.findMatchingUnit(L"kmW") == nullptr, "kmW");
        good &= holds(tokens.findMatchingUnit(L"mW") == Units::UnitWatt::get(0.001), "mW");
        good &= holds(tokens.findMatchingUnit(L"kmW") == Units::UnitWatt::get(1000.0), "kmW again");
        return good;
    });
}

// The test language has "t" and the key without its underscores in front of every word.
TEST(TokensFreshProcessTests, WordsComeFromTheStringTable) {
    inFreshProcess([] {
        StringTable::catalogueDirectory(VN_TEST_CATALOGUES);
        StringTable::language("de");
        Tokens const & tokens = *Tokens::get();
        bool good = true;
        for (TokenRow const & row : c_tokenRows) {
            std::wstring wanted = row.text;
            if (row.key) {
                wanted = L"t";
                for (char const c : std::string(row.key + 2))
                    if (c != '_') wanted += static_cast<wchar_t>(c);
            }
            // A translation may give two tokens one text.
            if (row.token == e_PICO_ABBR) wanted = L"tPETAABBR";
            good &= holds(tokens.getString(row.token) == wanted, row.key ? row.key : "a sign");
        }
        good &= holds(tokens.getFunctionToken(L"tSQRT") == e_SQRT, "a function");
        good &= holds(tokens.getFunctionToken(L"sqrt") == e_NONE, "an English function");
        good &= holds(tokens.getConstantToken(L"E") == e_NONE, "an English constant");
        good &= holds(tokens.getMagnitudeToken(L"tPETAABBR") == e_PETA_ABBR, "a shared text");
        Expression const expression(L"tSQRT(16) * 3 tKILOABBRm * tPICONSTANT");
        good &= holds(expression.rebuilt() == L"tSQRT(16) * 3 tKILOABBRm * tPICONSTANT",
                      "a rebuilt text");
        good &= holds(!Expression(L"sqrt(16)"), "an English text");
        // The sign of a degree is a word, and a name may hold what it is now.
        std::size_t position = 0;
        good &= holds(tokens.invalidNameCharsInStr(L"a\u00B0", position, true) && position == 1,
                      "the English degree sign");
        return good;
    });
}

} // namespace

} // namespace Vn::Expressions
