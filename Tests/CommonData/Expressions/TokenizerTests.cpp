#include "Server/CommonData/Expressions/Tokenizer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "Server/CommonData/Expressions/Tokens.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;

enum class Form { None, Decimal, Fractional, Architectural, DegMinSec };

// A token as a test states it.
struct Seen {
    TokenKind kind;
    unsigned int start;
    unsigned int end;
    std::wstring text;
    double value = 0.0;
    int precision = -1; // -1: none was set
    Form form = Form::None;
    bool scientific = false;
    int exponent = 0;

    bool operator==(Seen const &) const = default;
};

void PrintTo(Seen const & token, std::ostream * out) {
    *out << '[' << int{token.kind} << ' ' << token.start << ' ' << token.end << ' '
         << shown(token.text) << ' ' << testing::PrintToString(token.value) << " p"
         << token.precision << " f" << static_cast<int>(token.form)
         << (token.scientific ? " E" : "") << token.exponent << ']';
}

Seen sign(TokenKind kind, unsigned int at) {
    static constexpr wchar_t c_signs[] = L"   +-*/();= %^";
    return {kind, at, at + 1, std::wstring(1, c_signs[kind])};
}
Seen name(unsigned int start, unsigned int end, std::wstring text) {
    return {TK_NAME, start, end, std::move(text)};
}
Seen unknown(unsigned int start, unsigned int end, std::wstring text) {
    return {TK_UNKNOWN, start, end, std::move(text)};
}
Seen end(unsigned int at) { return {TK_END, at, at, L""}; }

Seen decimal(unsigned int start, unsigned int end, std::wstring text, double value,
             int precision = 0) {
    return {TK_NUMBER, start, end, std::move(text), value, precision, Form::Decimal};
}
Seen scientific(unsigned int start, unsigned int end, std::wstring text, double value,
                int precision, int exponent) {
    return {TK_NUMBER, start,         end,  std::move(text), value,
            precision, Form::Decimal, true, exponent};
}
Seen fraction(unsigned int start, unsigned int end, std::wstring text, double value,
              int precision) {
    return {TK_NUMBER, start, end, std::move(text), value, precision, Form::Fractional};
}
Seen feet(unsigned int start, unsigned int end, std::wstring text, double value, int precision) {
    return {TK_NUMBER, start, end, std::move(text), value, precision, Form::Architectural};
}
Seen degrees(unsigned int start, unsigned int end, std::wstring text, double value, int precision) {
    return {TK_NUMBER, start, end, std::move(text), value, precision, Form::DegMinSec};
}

Form formOf(Token const & token) {
    if (token.kind != TK_NUMBER) return Form::None;
    if (token.format.degreeDisplay == Units::DegreeDegMinSec) return Form::DegMinSec;
    switch (token.format.lengthDisplay) {
    case Units::LengthDecimal:
        return Form::Decimal;
    case Units::LengthFractional:
        return Form::Fractional;
    case Units::LengthArchitectural:
        return Form::Architectural;
    }
    return Form::None;
}

// The tokens of `text` after TK_START.
std::vector<Seen> tokens(std::wstring_view text) {
    TokenList list;
    TokenizerRegistry::get()->tokenize(text, list);
    Token const * token = list.first();
    EXPECT_EQ(token->kind, TK_START);
    EXPECT_EQ(token->start, 0U);
    EXPECT_EQ(token->end, 0U);
    EXPECT_TRUE(token->text.empty());
    std::vector<Seen> seen;
    while ((token = token->next)) {
        EXPECT_TRUE(token->located);
        NumberFormat const & format = token->format;
        seen.push_back({token->kind, token->start, token->end, std::wstring(token->text),
                        token->value, format.hasPrecision ? format.precision : -1, formOf(*token),
                        format.scientific, format.exponent});
    }
    EXPECT_EQ(list.last()->next, nullptr);
    return seen;
}

struct Row {
    std::wstring text;
    std::vector<Seen> tokens;
};

void check(std::vector<Row> const & rows) {
    for (Row const & row : rows) EXPECT_EQ(tokens(row.text), row.tokens) << shown(row.text);
}

double const c_largest = std::numeric_limits<double>::max();

TEST(TokenizerTests, KindsHaveTheirNumbers) {
    EXPECT_EQ(TK_UNKNOWN, 0);
    EXPECT_EQ(TK_START, 1);
    EXPECT_EQ(TK_END, 2);
    EXPECT_EQ(TK_PLUS, 3);
    EXPECT_EQ(TK_MINUS, 4);
    EXPECT_EQ(TK_MULTIPLY, 5);
    EXPECT_EQ(TK_DIVIDE, 6);
    EXPECT_EQ(TK_LEFT_PAREN, 7);
    EXPECT_EQ(TK_RIGHT_PAREN, 8);
    EXPECT_EQ(TK_SEMICOLON, 9);
    EXPECT_EQ(TK_EQUALS, 10);
    EXPECT_EQ(TK_NUMBER, 11);
    EXPECT_EQ(TK_MODULO, 12);
    EXPECT_EQ(TK_POWER, 13);
    EXPECT_EQ(TK_NAME, 14);
    EXPECT_EQ(TK_FUNCTION, 16);
    EXPECT_EQ(TK_UNIT, 17);
    EXPECT_EQ(TK_CONSTANT, 18);
}

TEST(TokenizerTests, NewTokenIsEmpty) {
    TokenList list;
    EXPECT_EQ(list.first(), nullptr);
    EXPECT_EQ(list.last(), nullptr);
    Token const & token = *list.append(TK_UNIT);
    EXPECT_EQ(list.first(), &token);
    EXPECT_EQ(list.last(), &token);
    EXPECT_EQ(token.kind, TK_UNIT);
    EXPECT_TRUE(token.text.empty());
    EXPECT_EQ(token.value, 0.0);
    EXPECT_EQ(token.start, 0U);
    EXPECT_EQ(token.end, 0U);
    EXPECT_EQ(token.next, nullptr);
    EXPECT_EQ(token.format.precision, 0);
    EXPECT_EQ(token.format.exponent, 0);
    EXPECT_EQ(token.format.lengthDisplay, Units::LengthDecimal);
    EXPECT_EQ(token.format.degreeDisplay, Units::DegreeDecimal);
    EXPECT_FALSE(token.format.hasPrecision);
    EXPECT_FALSE(token.format.scientific);
    EXPECT_FALSE(token.located);
}

TEST(TokenizerTests, NothingButBlanksIsTheEndAlone) {
    check({
        {L"", {end(0)}},
        {L"   ", {end(3)}},
        {L" \t\r\n\v\f", {end(6)}},
        {L"\u00A0\u2003\u3000\u0085", {end(4)}},
    });
}

TEST(TokenizerTests, SignsAreOneCharacterLong) {
    check({
        {L"%()*+-/;=^",
         {sign(TK_MODULO, 0), sign(TK_LEFT_PAREN, 1), sign(TK_RIGHT_PAREN, 2), sign(TK_MULTIPLY, 3),
          sign(TK_PLUS, 4), sign(TK_MINUS, 5), sign(TK_DIVIDE, 6), sign(TK_SEMICOLON, 7),
          sign(TK_EQUALS, 8), sign(TK_POWER, 9), end(10)}},
        {L"--", {sign(TK_MINUS, 0), sign(TK_MINUS, 1), end(2)}},
        {L" + ", {sign(TK_PLUS, 1), end(3)}},
    });
}

TEST(TokenizerTests, DecimalNumbers) {
    check({
        {L"2", {decimal(0, 1, L"2", 2.0), end(1)}},
        {L" 2 ", {decimal(1, 2, L"2", 2.0), end(3)}},
        {L"0", {decimal(0, 1, L"0", 0.0), end(1)}},
        {L"-2,05", {sign(TK_MINUS, 0), decimal(1, 5, L"2,05", 2.05, 2), end(5)}},
        {L"2.05", {decimal(0, 4, L"2.05", 2.05, 2), end(4)}},
        {L".2", {decimal(0, 2, L".2", 0.2, 1), end(2)}},
        {L",25", {decimal(0, 3, L",25", 0.25, 2), end(3)}},
        {L"02,1", {decimal(0, 4, L"02,1", 2.1, 1), end(4)}},
        {L"02,10000", {decimal(0, 8, L"02,10000", 2.1, 5), end(8)}},
        // The separator belongs to the number although nothing follows it.
        {L"2.", {decimal(0, 2, L"2.", 2.0), end(2)}},
        {L"2,", {decimal(0, 2, L"2,", 2.0), end(2)}},
        {L"2.cm", {decimal(0, 2, L"2.", 2.0), name(2, 4, L"cm"), end(4)}},
        {L"2. cm", {decimal(0, 2, L"2.", 2.0), name(3, 5, L"cm"), end(5)}},
        {L"1.2.3", {decimal(0, 3, L"1.2", 1.2, 1), decimal(3, 5, L".3", 0.3, 1), end(5)}},
        {L"1,2,3", {decimal(0, 3, L"1,2", 1.2, 1), decimal(3, 5, L",3", 0.3, 1), end(5)}},
        {L"1 2", {decimal(0, 1, L"1", 1.0), decimal(2, 3, L"2", 2.0), end(3)}},
        {L"123456789", {decimal(0, 9, L"123456789", 123456789.0), end(9)}},
    });
}

TEST(TokenizerTests, LoneSeparatorIsNoNumber) {
    check({
        {L".", {unknown(0, 1, L".")}},
        {L",", {unknown(0, 1, L",")}},
        {L". 5", {unknown(0, 3, L". 5")}},
        {L"1 .", {decimal(0, 1, L"1", 1.0), unknown(2, 3, L".")}},
        {L"1..2", {decimal(0, 2, L"1.", 1.0), decimal(2, 4, L".2", 0.2, 1), end(4)}},
        {L"1...2", {decimal(0, 2, L"1.", 1.0), unknown(2, 5, L"..2")}},
        {L".e5", {unknown(0, 3, L".e5")}},
    });
}

TEST(TokenizerTests, ScientificNumbers) {
    check({
        {L"2.2E0", {scientific(0, 5, L"2.2E0", 2.2, 1, 0), end(5)}},
        {L"2.2E1", {scientific(0, 5, L"2.2E1", 22.0, 1, 1), end(5)}},
        {L"2.2E-1", {scientific(0, 6, L"2.2E-1", 0.22000000000000003, 1, -1), end(6)}},
        {L"2,2e+6", {scientific(0, 6, L"2,2e+6", 2200000.0, 1, 6), end(6)}},
        {L".22E0", {scientific(0, 5, L".22E0", 0.22, 2, 0), end(5)}},
        {L"2.e3", {scientific(0, 4, L"2.e3", 2000.0, 0, 3), end(4)}},
        {L"2E00003", {scientific(0, 7, L"2E00003", 2000.0, 0, 3), end(7)}},
        {L"2E3cm", {scientific(0, 3, L"2E3", 2000.0, 0, 3), name(3, 5, L"cm"), end(5)}},
        {L"2E3.5", {scientific(0, 3, L"2E3", 2000.0, 0, 3), decimal(3, 5, L".5", 0.5, 1), end(5)}},
        {L"2E3E4", {scientific(0, 3, L"2E3", 2000.0, 0, 3), name(3, 5, L"E4"), end(5)}},
    });
}

TEST(TokenizerTests, ScientificNumberIsNormalisedForWritingBack) {
    // One more decimal for each digit that moves after the point, while the exponent is negative.
    check({
        {L"22E-2", {scientific(0, 5, L"22E-2", 0.22, 1, -2), end(5)}},
        {L"222E-2", {scientific(0, 6, L"222E-2", 2.22, 2, -2), end(6)}},
        {L"222E-1", {scientific(0, 6, L"222E-1", 22.200000000000003, 1, -1), end(6)}},
        {L"222.5E-9", {scientific(0, 8, L"222.5E-9", 222.5 * std::pow(10.0, -9.0), 3, -9), end(8)}},
        // Ten isn't greater than ten.
        {L"10E-1", {scientific(0, 5, L"10E-1", 1.0, 0, -1), end(5)}},
        {L"11E-1", {scientific(0, 5, L"11E-1", 1.1, 1, -1), end(5)}},
        {L"100E-2", {scientific(0, 6, L"100E-2", 1.0, 1, -2), end(6)}},
        {L"22E2", {scientific(0, 4, L"22E2", 2200.0, 0, 2), end(4)}},
    });
}

TEST(TokenizerTests, ExponentWithoutDigitsIsNoNumber) {
    check({
        {L"2e", {unknown(0, 2, L"2e")}},
        {L"2em", {unknown(0, 3, L"2em")}},
        {L"2 em", {decimal(0, 1, L"2", 2.0), name(2, 4, L"em"), end(4)}},
        {L"2e cm", {unknown(0, 5, L"2e cm")}},
        {L"2e+cm", {unknown(0, 5, L"2e+cm")}},
        {L"2e- 3", {unknown(0, 5, L"2e- 3")}},
        {L"2e*3", {unknown(0, 4, L"2e*3")}},
        {L"2e--3", {unknown(0, 5, L"2e--3")}},
        {L"1+2E", {decimal(0, 1, L"1", 1.0), sign(TK_PLUS, 1), unknown(2, 4, L"2E")}},
    });
}

TEST(TokenizerTests, SignAfterAnExponentAtTheEndIsATokenOfItsOwn) {
    check({
        {L"2e-", {scientific(0, 2, L"2e", 2.0, 0, 0), sign(TK_MINUS, 2), end(3)}},
        {L"2e+", {scientific(0, 2, L"2e", 2.0, 0, 0), sign(TK_PLUS, 2), end(3)}},
        {L"2.5E+", {scientific(0, 4, L"2.5E", 2.5, 1, 0), sign(TK_PLUS, 4), end(5)}},
    });
}

TEST(TokenizerTests, TypedExponentSaturates) {
    check({
        {L"1E32767", {scientific(0, 7, L"1E32767", c_largest, 0, 32767), end(7)}},
        {L"1E32768", {scientific(0, 7, L"1E32768", c_largest, 0, 32767), end(7)}},
        {L"1E-32768", {scientific(0, 8, L"1E-32768", 0.0, 0, -32768), end(8)}},
        {L"1E-32769", {scientific(0, 8, L"1E-32769", 0.0, 0, -32768), end(8)}},
        {L"1E99999999999", {scientific(0, 13, L"1E99999999999", c_largest, 0, 32767), end(13)}},
        {L"1E-99999999999", {scientific(0, 14, L"1E-99999999999", 0.0, 0, -32768), end(14)}},
    });
}

TEST(TokenizerTests, ValueThatIsNotFiniteIsTheLargestDouble) {
    check({
        {L"1E308", {scientific(0, 5, L"1E308", 1e308, 0, 308), end(5)}},
        {L"1E309", {scientific(0, 5, L"1E309", c_largest, 0, 309), end(5)}},
        // Zero times infinity isn't a number.
        {L"0E999", {scientific(0, 5, L"0E999", c_largest, 0, 999), end(5)}},
        {L"0E308", {scientific(0, 5, L"0E308", 0.0, 0, 308), end(5)}},
    });
    std::wstring const digits(400, L'9');
    check({{digits, {decimal(0, 400, digits, c_largest), end(400)}}});
    // As many ones after the point: infinity over infinity.
    std::wstring const decimals = L"0." + std::wstring(400, L'1');
    check({{decimals, {decimal(0, 402, decimals, c_largest, 400), end(402)}}});
}

TEST(TokenizerTests, PrecisionSaturates) {
    std::wstring const text = L"0." + std::wstring(40000, L'0');
    check({{text, {decimal(0, 40002, text, 0.0, 32767), end(40002)}}});
    std::wstring const exact = L"0." + std::wstring(32767, L'0');
    check({{exact, {decimal(0, 32769, exact, 0.0, 32767), end(32769)}}});
}

TEST(TokenizerTests, Fractions) {
    check({
        {L"1 1/2", {fraction(0, 5, L"1 1/2", 1.5, 1), end(5)}},
        {L"3/4", {fraction(0, 3, L"3/4", 0.75, 2), end(3)}},
        {L"5/8", {fraction(0, 3, L"5/8", 0.625, 3), end(3)}},
        {L"1/16", {fraction(0, 4, L"1/16", 0.0625, 4), end(4)}},
        {L"1/32", {fraction(0, 4, L"1/32", 0.03125, 5), end(4)}},
        {L"1 1/64", {fraction(0, 6, L"1 1/64", 1.015625, 6), end(6)}},
        {L"1/128", {fraction(0, 5, L"1/128", 0.0078125, 7), end(5)}},
        {L"0/2", {fraction(0, 3, L"0/2", 0.0, 1), end(3)}},
        {L"7/2", {fraction(0, 3, L"7/2", 3.5, 1), end(3)}},
        {L"2\t3  /\n4", {fraction(0, 8, L"2\t3  /\n4", 2.75, 2), end(8)}},
        {L"1/002", {fraction(0, 5, L"1/002", 0.5, 1), end(5)}},
        {L"-1/2", {sign(TK_MINUS, 0), fraction(1, 4, L"1/2", 0.5, 1), end(4)}},
        {L"1/2cm", {fraction(0, 3, L"1/2", 0.5, 1), name(3, 5, L"cm"), end(5)}},
    });
}

TEST(TokenizerTests, BlanksAfterAFractionBelongToIt) {
    check({
        {L"3 / 2 s", {fraction(0, 6, L"3 / 2 ", 1.5, 1), name(6, 7, L"s"), end(7)}},
        {L"1/2  ", {fraction(0, 5, L"1/2  ", 0.5, 1), end(5)}},
        {L"1/2 + 1",
         {fraction(0, 4, L"1/2 ", 0.5, 1), sign(TK_PLUS, 4), decimal(6, 7, L"1", 1.0), end(7)}},
    });
}

TEST(TokenizerTests, DenominatorIsAPowerOfTwoFrom2To128) {
    check({
        {L"1/1", {decimal(0, 1, L"1", 1.0), sign(TK_DIVIDE, 1), decimal(2, 3, L"1", 1.0), end(3)}},
        {L"1/3", {decimal(0, 1, L"1", 1.0), sign(TK_DIVIDE, 1), decimal(2, 3, L"3", 3.0), end(3)}},
        {L"1/0", {decimal(0, 1, L"1", 1.0), sign(TK_DIVIDE, 1), decimal(2, 3, L"0", 0.0), end(3)}},
        {L"1/", {decimal(0, 1, L"1", 1.0), sign(TK_DIVIDE, 1), end(2)}},
        {L"1/ ", {decimal(0, 1, L"1", 1.0), sign(TK_DIVIDE, 1), end(3)}},
        {L"1 1/256",
         {decimal(0, 1, L"1", 1.0), decimal(2, 3, L"1", 1.0), sign(TK_DIVIDE, 3),
          decimal(4, 7, L"256", 256.0), end(7)}},
        {L"2 1/3",
         {decimal(0, 1, L"2", 2.0), decimal(2, 3, L"1", 1.0), sign(TK_DIVIDE, 3),
          decimal(4, 5, L"3", 3.0), end(5)}},
        {L"1/(2)",
         {decimal(0, 1, L"1", 1.0), sign(TK_DIVIDE, 1), sign(TK_LEFT_PAREN, 2),
          decimal(3, 4, L"2", 2.0), sign(TK_RIGHT_PAREN, 4), end(5)}},
        // A fraction is taken first, whatever follows it.
        {L"7/2.2", {fraction(0, 3, L"7/2", 3.5, 1), decimal(3, 5, L".2", 0.2, 1), end(5)}},
        {L"1/2E3", {fraction(0, 3, L"1/2", 0.5, 1), name(3, 5, L"E3"), end(5)}},
        {L"1/4/2",
         {fraction(0, 3, L"1/4", 0.25, 2), sign(TK_DIVIDE, 3), decimal(4, 5, L"2", 2.0), end(5)}},
        {L"1.5/2",
         {decimal(0, 3, L"1.5", 1.5, 1), sign(TK_DIVIDE, 3), decimal(4, 5, L"2", 2.0), end(5)}},
        {L"1 .5/2",
         {decimal(0, 1, L"1", 1.0), decimal(2, 4, L".5", 0.5, 1), sign(TK_DIVIDE, 4),
          decimal(5, 6, L"2", 2.0), end(6)}},
        // Three numbers: the first stands alone.
        {L"1 2 3/4", {decimal(0, 1, L"1", 1.0), fraction(2, 7, L"2 3/4", 2.75, 2), end(7)}},
    });
}

TEST(TokenizerTests, FractionWithAnInchMark) {
    // The made-up name lies on the last character, and the number keeps its own.
    check({
        {L"2 1/2\"", {fraction(0, 6, L"2 1/2\"", 2.5, 1), name(5, 6, L"inch"), end(6)}},
        {L"2 1/2 \"", {fraction(0, 7, L"2 1/2 \"", 2.5, 1), name(6, 7, L"inch"), end(7)}},
        {L"1/2in", {fraction(0, 5, L"1/2in", 0.5, 1), name(4, 5, L"inch"), end(5)}},
        {L"1/2 inch", {fraction(0, 8, L"1/2 inch", 0.5, 1), name(7, 8, L"inch"), end(8)}},
        // Whatever follows the mark.
        {L"1/2 inches",
         {fraction(0, 8, L"1/2 inch", 0.5, 1), name(7, 8, L"inch"), name(8, 10, L"es"), end(10)}},
        {L"1/2 int",
         {fraction(0, 6, L"1/2 in", 0.5, 1), name(5, 6, L"inch"), name(6, 7, L"t"), end(7)}},
        {L"1/2 IN", {fraction(0, 4, L"1/2 ", 0.5, 1), name(4, 6, L"IN"), end(6)}},
        {L"1/2'", {fraction(0, 3, L"1/2", 0.5, 1), unknown(3, 4, L"'")}},
    });
}

TEST(TokenizerTests, Inches) {
    check({
        {L"1\"", {{TK_NUMBER, 0, 1, L"1", 1.0, 8, Form::Fractional}, name(1, 2, L"inch"), end(2)}},
        {L"12 \"",
         {{TK_NUMBER, 0, 3, L"12 ", 12.0, 8, Form::Fractional}, name(3, 4, L"inch"), end(4)}},
        // Computed in feet, and back.
        {L"49\"",
         {{TK_NUMBER, 0, 2, L"49", 49.0 / 12.0 * 12.0, 8, Form::Fractional},
          name(2, 3, L"inch"),
          end(3)}},
        {L"1.5\"", {decimal(0, 3, L"1.5", 1.5, 1), unknown(3, 4, L"\"")}},
        {L"1\"2",
         {{TK_NUMBER, 0, 1, L"1", 1.0, 8, Form::Fractional},
          name(1, 2, L"inch"),
          decimal(2, 3, L"2", 2.0),
          end(3)}},
        {L"\"", {unknown(0, 1, L"\"")}},
    });
}

TEST(TokenizerTests, FeetAndInches) {
    // The number leaves out the last character, on which the made-up name lies.
    check({
        {L"2'", {feet(0, 1, L"2", 2.0, 8), name(1, 2, L"foot"), end(2)}},
        {L"2 '", {feet(0, 2, L"2 ", 2.0, 8), name(2, 3, L"foot"), end(3)}},
        {L"1' 9\"", {feet(0, 4, L"1' 9", 1.75, 8), name(4, 5, L"foot"), end(5)}},
        {L"1'9\"", {feet(0, 3, L"1'9", 1.75, 8), name(3, 4, L"foot"), end(4)}},
        {L"1'-9\"", {feet(0, 4, L"1'-9", 1.75, 8), name(4, 5, L"foot"), end(5)}},
        {L"1' - 9 \"", {feet(0, 7, L"1' - 9 ", 1.75, 8), name(7, 8, L"foot"), end(8)}},
        {L"2' 6 3/4\"", {feet(0, 8, L"2' 6 3/4", 2.5625, 2), name(8, 9, L"foot"), end(9)}},
        {L"2'-6 3/4\"", {feet(0, 8, L"2'-6 3/4", 2.5625, 2), name(8, 9, L"foot"), end(9)}},
        {L"0'- 3/4\"", {feet(0, 7, L"0'- 3/4", 0.0625, 2), name(7, 8, L"foot"), end(8)}},
        {L"2' 3/4\"", {feet(0, 6, L"2' 3/4", 2.0625, 2), name(6, 7, L"foot"), end(7)}},
        {L"1' 36\"", {feet(0, 5, L"1' 36", 4.0, 8), name(5, 6, L"foot"), end(6)}},
    });
}

TEST(TokenizerTests, FeetAloneEndAfterTheirMark) {
    check({
        {L"2' 6",
         {feet(0, 1, L"2", 2.0, 8), name(1, 2, L"foot"), decimal(3, 4, L"6", 6.0), end(4)}},
        {L"2'-6",
         {feet(0, 1, L"2", 2.0, 8), name(1, 2, L"foot"), sign(TK_MINUS, 2),
          decimal(3, 4, L"6", 6.0), end(4)}},
        {L"2'-", {feet(0, 1, L"2", 2.0, 8), name(1, 2, L"foot"), sign(TK_MINUS, 2), end(3)}},
        {L"2' 6 3/4",
         {feet(0, 1, L"2", 2.0, 8), name(1, 2, L"foot"), fraction(3, 8, L"6 3/4", 6.75, 2),
          end(8)}},
        {L"2' 6 1/3\"",
         {feet(0, 1, L"2", 2.0, 8),
          name(1, 2, L"foot"),
          decimal(3, 4, L"6", 6.0),
          decimal(5, 6, L"1", 1.0),
          sign(TK_DIVIDE, 6),
          {TK_NUMBER, 7, 8, L"3", 3.0, 8, Form::Fractional},
          name(8, 9, L"inch"),
          end(9)}},
        {L"2' x", {feet(0, 1, L"2", 2.0, 8), name(1, 2, L"foot"), name(3, 4, L"x"), end(4)}},
        {L"2'--6\"",
         {feet(0, 1, L"2", 2.0, 8),
          name(1, 2, L"foot"),
          sign(TK_MINUS, 2),
          sign(TK_MINUS, 3),
          {TK_NUMBER, 4, 5, L"6", 6.0, 8, Form::Fractional},
          name(5, 6, L"inch"),
          end(6)}},
        {L"'", {unknown(0, 1, L"'")}},
    });
}

TEST(TokenizerTests, EarlierFormWinsATie) {
    // Both the fraction and the inches take all of it; and both forms are needed.
    Token const * token = nullptr;
    TokenList list;
    TokenizerRegistry::get()->tokenize(L"2 1/2\"", list);
    token = list.first()->next;
    EXPECT_EQ(token->format.lengthDisplay, Units::LengthFractional);
    EXPECT_EQ(token->end, 6U); // inches would have left out the last character
}

TEST(TokenizerTests, DegreesMinutesSeconds) {
    check({
        {L"45 deg 31'",
         {degrees(0, 10, L"45 deg 31'", 45.0 + 31.0 / 60.0, 1), name(9, 10, L"degree"), end(10)}},
        {L"45 deg 30' 30\"",
         {degrees(0, 14, L"45 deg 30' 30\"", 45.0 + 30.0 / 60.0 + 30.0 / 3600.0, 2),
          name(13, 14, L"degree"), end(14)}},
        {L"45deg30'30\"",
         {degrees(0, 11, L"45deg30'30\"", 45.0 + 30.0 / 60.0 + 30.0 / 3600.0, 2),
          name(10, 11, L"degree"), end(11)}},
        {L"45degree 0' 0,000\"",
         {degrees(0, 18, L"45degree 0' 0,000\"", 45.0, 5), name(17, 18, L"degree"), end(18)}},
        {L"45\u00B0 0' 1.5\"",
         {degrees(0, 11, L"45\u00B0 0' 1.5\"", 45.0 + 0.0 + 1.5 / 3600.0, 3),
          name(10, 11, L"degree"), end(11)}},
        {L"1 deg 2' .5\"",
         {degrees(0, 12, L"1 deg 2' .5\"", 1.0 + 2.0 / 60.0 + 0.5 / 3600.0, 3),
          name(11, 12, L"degree"), end(12)}},
        {L"1 deg 2' 7.\"",
         {degrees(0, 12, L"1 deg 2' 7.\"", 1.0 + 2.0 / 60.0 + 7.0 / 3600.0, 2),
          name(11, 12, L"degree"), end(12)}},
    });
}

TEST(TokenizerTests, MarkOfSecondsIsTakenInWithoutSeconds) {
    check({
        {L"45 deg 30' \"",
         {degrees(0, 12, L"45 deg 30' \"", 45.5, 1), name(11, 12, L"degree"), end(12)}},
        // A lone separator doesn't make seconds.
        {L"45 deg 30' .\"",
         {degrees(0, 10, L"45 deg 30'", 45.5, 1), name(9, 10, L"degree"), unknown(11, 13, L".\"")}},
    });
}

TEST(TokenizerTests, SecondsWithoutTheirMarkAreTheNextToken) {
    check({
        {L"45 deg 30' 30",
         {degrees(0, 10, L"45 deg 30'", 45.5, 1), name(9, 10, L"degree"),
          decimal(11, 13, L"30", 30.0), end(13)}},
        {L"45 deg 30' ", {degrees(0, 10, L"45 deg 30'", 45.5, 1), name(9, 10, L"degree"), end(11)}},
        {L"45 deg 30' cm",
         {degrees(0, 10, L"45 deg 30'", 45.5, 1), name(9, 10, L"degree"), name(11, 13, L"cm"),
          end(13)}},
    });
}

TEST(TokenizerTests, DegreesWithoutMinutesAreADecimalNumber) {
    check({
        {L"45 deg", {decimal(0, 2, L"45", 45.0), name(3, 6, L"deg"), end(6)}},
        {L"45deg 30",
         {decimal(0, 2, L"45", 45.0), name(2, 5, L"deg"), decimal(6, 8, L"30", 30.0), end(8)}},
        {L"45.5 deg 30'",
         {decimal(0, 4, L"45.5", 45.5, 1), name(5, 8, L"deg"), feet(9, 11, L"30", 30.0, 8),
          name(11, 12, L"foot"), end(12)}},
        {L"45 deg '", {decimal(0, 2, L"45", 45.0), name(3, 6, L"deg"), unknown(7, 8, L"'")}},
    });
}

TEST(TokenizerTests, Names) {
    check({
        {L"cm2", {name(0, 3, L"cm2"), end(3)}},
        {L"2cm", {decimal(0, 1, L"2", 2.0), name(1, 3, L"cm"), end(3)}},
        {L"\u00B5m", {name(0, 2, L"\u00B5m"), end(2)}},
        {L"$", {name(0, 1, L"$"), end(1)}},
        {L"20 $", {decimal(0, 2, L"20", 20.0), name(3, 4, L"$"), end(4)}},
        {L"\u00B0", {name(0, 1, L"\u00B0"), end(1)}},
        {L"cos(PI)",
         {name(0, 3, L"cos"), sign(TK_LEFT_PAREN, 3), name(4, 6, L"PI"), sign(TK_RIGHT_PAREN, 6),
          end(7)}},
        {L"cm*2", {name(0, 2, L"cm"), sign(TK_MULTIPLY, 2), decimal(3, 4, L"2", 2.0), end(4)}},
        {L"e5", {name(0, 2, L"e5"), end(2)}},
    });
}

TEST(TokenizerTests, WhatNothingRecognisesReachesToTheEnd) {
    check({
        {L"#", {unknown(0, 1, L"#")}},
        {L"2 # s", {decimal(0, 1, L"2", 2.0), unknown(2, 5, L"# s")}},
        {L"2 $$", {decimal(0, 1, L"2", 2.0), name(2, 4, L"$$"), end(4)}},
        {L"1&2", {decimal(0, 1, L"1", 1.0), unknown(1, 3, L"&2")}},
        {L"_a", {unknown(0, 2, L"_a")}},
        {L"a_b", {name(0, 1, L"a"), unknown(1, 3, L"_b")}},
        {L"fl_oz", {name(0, 2, L"fl"), unknown(2, 5, L"_oz")}},
        {L"[1]", {unknown(0, 3, L"[1]")}},
    });
}

TEST(TokenizerTests, PositionsCountSixteenBitCharacters) {
    // A musical clef takes two, isn't punctuation, no blank and no digit.
    check({
        {L"\U0001D11E", {name(0, 2, L"\U0001D11E"), end(2)}},
        {L"\U0001D11E+1",
         {name(0, 2, L"\U0001D11E"), sign(TK_PLUS, 2), decimal(3, 4, L"1", 1.0), end(4)}},
        {L"2 \U0001D11E\U0001D11E #",
         {decimal(0, 1, L"2", 2.0), name(2, 6, L"\U0001D11E\U0001D11E"), unknown(7, 8, L"#")}},
        {L"#\U0001D11E", {unknown(0, 3, L"#\U0001D11E")}},
        {L"\U00010000 1' 9\"",
         {name(0, 2, L"\U00010000"), feet(3, 7, L"1' 9", 1.75, 8), name(7, 8, L"foot"), end(8)}},
        {L"\U0010FFFF 2 1/2\"",
         {name(0, 2, L"\U0010FFFF"), fraction(3, 9, L"2 1/2\"", 2.5, 1), name(8, 9, L"inch"),
          end(9)}},
    });
}

TEST(TokenizerTests, ZeroCharacterIsPartOfTheText) {
    std::wstring const text(L"1\0+", 3);
    check({{text,
            {decimal(0, 1, L"1", 1.0), name(1, 2, std::wstring(1, L'\0')), sign(TK_PLUS, 2),
             end(3)}}});
}

// ---- The registry -------------------------------------------------------------------------------

// Takes every run of the character "!", which no other form knows, as a name.
class TokenizerExclamation : public Tokenizer {
public:
    TokenizerExclamation() : Tokenizer(FirstOther) {}

private:
    Reading onRead(std::wstring_view text, std::size_t position) const override {
        std::size_t last = position;
        while (last < text.size() && text[last] == L'!') ++last;
        Reading reading;
        reading.kind = TK_NAME;
        reading.length = last - position;
        return reading;
    }
};

TEST(TokenizerRegistryTests, TokenizerJoinsAndLeaves) {
    check({{L"1!!", {decimal(0, 1, L"1", 1.0), unknown(1, 3, L"!!")}}});
    {
        TokenizerExclamation const exclamation;
        check({{L"1!!", {decimal(0, 1, L"1", 1.0), name(1, 3, L"!!"), end(3)}}});
    }
    check({{L"1!!", {decimal(0, 1, L"1", 1.0), unknown(1, 3, L"!!")}}});
}

// Takes as a name so many characters as it is told to, from a digit on.
class TokenizerGreedy : public Tokenizer {
public:
    explicit TokenizerGreedy(std::size_t length) : Tokenizer(FirstDigit), m_length(length) {}

private:
    Reading onRead(std::wstring_view text, std::size_t position) const override {
        Reading reading;
        reading.kind = TK_NAME;
        reading.length = std::min(m_length, text.size() - position);
        return reading;
    }

    std::size_t const m_length;
};

TEST(TokenizerRegistryTests, LongestReadingWinsAndALaterOneOnlyIfLonger) {
    {
        TokenizerGreedy const same(2);
        check({{L"12", {decimal(0, 2, L"12", 12.0), end(2)}}});
    }
    {
        TokenizerGreedy const longer(3);
        check({{L"12+", {name(0, 3, L"12+"), end(3)}}});
        // Signs are never asked for.
        check({{L"+1", {sign(TK_PLUS, 0), decimal(1, 2, L"1", 1.0), end(2)}}});
    }
}

} // namespace

} // namespace Vn::Expressions
