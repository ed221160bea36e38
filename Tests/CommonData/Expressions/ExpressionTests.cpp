#include "Server/CommonData/Expressions/Expression.h"

#include <type_traits>
#include <utility>

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::UnitContext;
using Units::UnitDisplaySettings;

TEST(ExpressionTests, MovesButDoesNotCopy) {
    static_assert(std::is_nothrow_move_constructible_v<Expression>);
    static_assert(std::is_nothrow_move_assignable_v<Expression>);
    static_assert(!std::is_copy_constructible_v<Expression>);
    static_assert(!std::is_copy_assignable_v<Expression>);
    Expression first(L"2 in", UnitContext(L"cm"));
    Expression second(std::move(first));
    EXPECT_EQ(second.rebuilt(), L"2 in");
    Expression third;
    third = std::move(second);
    EXPECT_TRUE(third);
    EXPECT_EQ(*third.value(), 5.08);
    EXPECT_EQ(third.text(), L"2 in");
    third = Expression(L"3 in"); // gives the first tree back
    EXPECT_EQ(third.rebuilt(), L"3 in");
}

TEST(ExpressionTests, WithoutATreeThereIsNothing) {
    Expression const expression;
    EXPECT_FALSE(expression);
    EXPECT_EQ(expression.result().toString(), L"Unknown Result");
    EXPECT_EQ(expression.text(), L"");
    EXPECT_FALSE(expression.value());
    EXPECT_FALSE(expression.units());
    EXPECT_EQ(expression.formatted(), L"");
    EXPECT_EQ(expression.rebuilt(), L"");
    EXPECT_FALSE(expression.rebuiltReadsBack());
    EXPECT_EQ(expression.textToStore(), L"");
}

TEST(ExpressionTests, FailureKeepsItsText) {
    Expression const expression(L"2 $$", UnitContext(L"cm"));
    EXPECT_FALSE(expression);
    EXPECT_EQ(expression.result().result(), EResult::failedToParse);
    EXPECT_EQ(expression.result().position(), 2U);
    EXPECT_EQ(expression.text(), L"2 $$");
    EXPECT_EQ(expression.textToStore(), L"2 $$");
    EXPECT_TRUE(expression.context().hasExpectedUnits());
}

TEST(ExpressionTests, TellsValueUnitsAndTexts) {
    Expression const length(L"2' 6 3/4\"", UnitContext(L"cm"));
    ASSERT_TRUE(length);
    EXPECT_EQ(length.result().result(), EResult::parsedOk);
    EXPECT_NEAR(*length.value(), 78.105, 1e-12);
    EXPECT_EQ(length.units()->toString(), L"(foot) / (1)");
    EXPECT_EQ(
        length.formatted(Units::ValueAndUnit, UnitDisplaySettings::standard(), length.context()),
        L"78.105 cm");
    EXPECT_EQ(
        length.formatted(Units::ValueAndUnit, UnitDisplaySettings::standard(), UnitContext(L"ft")),
        L"2.563 ft");
    EXPECT_EQ(length.rebuilt(), L"2'-6 3/4\"");
    EXPECT_EQ(length.rebuilt(Units::UnitOnly, UnitDisplaySettings::standard()), L"ft");
}

TEST(ExpressionTests, FormatsByTheSettingsOfTheUserUnlessToldOtherwise) {
    Expression const expression(L"2 in", UnitContext(L"cm"));
    UnitDisplaySettings & user = UnitDisplaySettings::userEditableSettings();
    UnitDisplaySettings const before = user;
    user.generalPrecision(1);
    user.minimumPrecision(0);
    std::wstring const formatted = expression.formatted();
    std::wstring const valueOnly = expression.formatted(Units::ValueOnly);
    user = before;
    EXPECT_EQ(formatted, L"5.1 cm");
    EXPECT_EQ(valueOnly, L"5.1");
}

TEST(ExpressionTests, WhatDoesNotEvaluateHasNoValue) {
    Expression const expression(L"11 cm/0", UnitContext(L"cm"));
    EXPECT_TRUE(expression);
    EXPECT_FALSE(expression.value());
    EXPECT_TRUE(expression.units());
    EXPECT_EQ(expression.formatted(), L"");
    EXPECT_EQ(expression.rebuilt(), L"11 cm / 0");
}

TEST(ExpressionTests, TreeCanBeTakenOver) {
    Expression expression(L"2 in");
    Node * const node = expression.release();
    ASSERT_NE(node, nullptr);
    EXPECT_FALSE(expression);
    EXPECT_EQ(expression.text(), L"2 in");
    double value = 0.0;
    EXPECT_TRUE(node->evaluate(value));
    EXPECT_EQ(value, 5.08);
    Interface::get()->destroy(node);
    EXPECT_EQ(expression.release(), nullptr);
}

// The rebuilt text is stored only if nothing is lost by it.
TEST(ExpressionTests, TextToStoreLosesNothing) {
    struct Row {
        wchar_t const * text;
        wchar_t const * context;
        wchar_t const * rebuilt;
        wchar_t const * stored;
    };
    constexpr Row c_rows[] = {
        {L"2*2", L"cm", L"( 2 * 2 ) * 1 cm", L"( 2 * 2 ) * 1 cm"},
        {L"02,10000", L"cm", L"2.10000 cm", L"2.10000 cm"},
        {L"2' 6 3/4\"", L"cm", L"2'-6 3/4\"", L"2'-6 3/4\""},
        {L"1 minute", L"?", L"1 min", L"1 min"},
        {L"-40C", L"C", L"-40 C", L"-40 C"},
        // Rounded in its form.
        {L"177e3", L"?", L"2E+05", L"177e3"},
        {L"1/128", L"cm", L"1/64 cm", L"1/128"},
        {L"1 + 2 cm/in", L"?", L"1 + 1", L"1 + 2 cm/in"},
        // Units that cancel aren't written, and what is shown would change with them.
        {L"5 m * 2 kg/g", L"?", L"5 m * 2000", L"5 m * 2 kg/g"},
        // Not read in the same way again.
        {L"cm/cm", L"?", L"", L"cm/cm"},
        {L"2 * cm/cm", L"?", L"2 * ", L"2 * cm/cm"},
        // Without a value there is none to compare.
        {L"2 $$", L"?", L"", L"2 $$"},
    };
    for (Row const & row : c_rows) {
        Expression const expression(row.text, contextOf(row.context));
        EXPECT_EQ(expression.rebuilt(), row.rebuilt) << shown(row.text);
        EXPECT_EQ(expression.textToStore(), row.stored) << shown(row.text);
        EXPECT_EQ(expression.rebuiltReadsBack(),
                  expression && std::wstring_view(row.rebuilt) == row.stored)
            << shown(row.text);
        EXPECT_EQ(expression.rebuiltReadsBack(expression.rebuilt()), expression.rebuiltReadsBack())
            << shown(row.text);
    }
}

TEST(ExpressionTests, AValueIsFormattedInUnitsOfItsDimensionOnly) {
    Expression const length(L"2 cm");
    auto const formatted = [&](Expression const & expression, UnitContext const & display) {
        return expression.formatted(Units::ValueAndUnit, UnitDisplaySettings::standard(), display);
    };
    EXPECT_EQ(formatted(length, UnitContext()), L"2.00 cm");
    EXPECT_EQ(formatted(length, UnitContext(L"m")), L"0.02 m");
    EXPECT_EQ(formatted(length, UnitContext(L"kg")), L"");
    EXPECT_EQ(formatted(length, UnitContext(L"cm^2")), L"");
    EXPECT_EQ(formatted(length, UnitContext(&Units::ComplexUnit::none())), L"");
    EXPECT_EQ(formatted(Expression(L"2"), UnitContext(L"cm")), L"");
    EXPECT_EQ(formatted(Expression(L"2", UnitContext(L"cm")), UnitContext(L"in")), L"0.787 in");
    EXPECT_EQ(formatted(Expression(L"20 C"), UnitContext(L"K")), L"293.16 K");
    // The tree itself knows no such bound.
    EXPECT_EQ(Interface::get()->formattedValue(length.node(), Units::ValueAndUnit,
                                               UnitDisplaySettings::standard(), UnitContext(L"kg")),
              L"2.00 kg");
    EXPECT_EQ(Expression().node(), nullptr);
}

TEST(ExpressionTests, StoredTextReadsBackWithItsUnits) {
    for (wchar_t const * const text :
         {L"2 cm/cm", L"3 / cm", L"1 1/3 + 1", L"11 cm / 0", L"PI C"}) {
        Expression const expression(text);
        Expression const again(expression.textToStore());
        EXPECT_EQ(static_cast<bool>(again), static_cast<bool>(expression)) << shown(text);
        EXPECT_EQ(again.value(), expression.value()) << shown(text);
        if (!expression) continue;
        std::optional<Units::ComplexUnit> const units = expression.units();
        EXPECT_TRUE(again.units()->isDimensionallyEquivalent(&*units)) << shown(text);
    }
}

TEST(ExpressionTests, TakesUtf8) {
    Expression const angle("45\xC2\xB0", UnitContext("deg"));
    ASSERT_TRUE(angle);
    EXPECT_EQ(angle.text(), L"45\u00B0");
    EXPECT_EQ(*angle.value("deg"), 45.0);
    EXPECT_FALSE(angle.brokenByte());
    EXPECT_EQ(Expression(std::string("2 in")).value(), Expression(L"2 in").value());
    EXPECT_EQ(Expression("").result().result(), EResult::expressionIsEmpty);
}

TEST(ExpressionTests, TellsPositionsInBytes) {
    std::string const text = "45\xC2\xB0 + \xF0\x9F\x93\x8F + x"; // two words that aren't known
    Expression const expression(text);
    ASSERT_FALSE(expression);
    EXPECT_EQ(expression.result().failureStart(), 6U);
    EXPECT_EQ(expression.byteAt(expression.result().failureStart()), 7U);
    EXPECT_EQ(expression.byteAt(8), 11U); // after a character of two 16-bit ones and four bytes
    EXPECT_EQ(expression.byteAt(1000), text.size());
    EXPECT_EQ(Expression().byteAt(3), 0U);
}

TEST(ExpressionTests, BrokenUtf8IsRefusedAtTheByte) {
    struct Row {
        char const * text;
        std::size_t byte;
        unsigned int position;
    };
    Row const rows[] = {
        {"\xFF", 0, 0},
        {"2 cm\xC2", 4, 4},
        {"45\xC2\xB0 \xE2\x82 + 1", 5, 4},
        {"\xF0\x9F\x93\x8F\xED\xA0\x80", 4, 2},
        {"\xC0\x80 2 cm \xFF", 0, 0},
    };
    for (Row const & row : rows) {
        Expression const expression(row.text);
        EXPECT_FALSE(expression);
        EXPECT_EQ(expression.brokenByte(), row.byte);
        EXPECT_EQ(expression.result().result(), EResult::failedToParse);
        EXPECT_EQ(expression.result().failure(), EParseFailure::unusableCharacter);
        EXPECT_EQ(expression.result().position(), row.position);
        EXPECT_EQ(expression.byteAt(row.position), row.byte);
    }
    std::string large(10'000'000, '1');
    large += '\xFF';
    EXPECT_EQ(Expression(large).brokenByte(), 10'000'000U);
}

TEST(ExpressionTests, GivesItsValueInAUnit) {
    Expression const width("2 ft + 3 in");
    EXPECT_DOUBLE_EQ(*width.value("m"), 0.6858);
    EXPECT_DOUBLE_EQ(*width.value(L"in"), 27.0);
    EXPECT_DOUBLE_EQ(*width.value(*Units::UnitContext::parse("ft")), 2.25);
    EXPECT_FALSE(width.value("kg"));
    EXPECT_FALSE(width.value("metre"));
    EXPECT_FALSE(width.value(""));
    EXPECT_DOUBLE_EQ(*Expression("20 C").value("F"), 68.0);
    EXPECT_EQ(*Expression("6 * 7").value(""), 42.0);
    EXPECT_FALSE(Expression("1 cm / 0").value("m"));
    EXPECT_FALSE(Expression("2 in +").value("m"));
}

TEST(ExpressionTests, GivesItsQuantity) {
    EXPECT_EQ(Expression("2 ft + 3 in").quantity()->unitText(), "ft");
    EXPECT_DOUBLE_EQ(Expression("2 ft + 3 in").quantity()->value(), 2.25);
    EXPECT_DOUBLE_EQ(Expression("2 ft", UnitContext("m")).quantity()->value(), 0.6096);
    EXPECT_EQ(Expression("5", UnitContext("m")).quantity()->toString(), "5 m");
    EXPECT_EQ(Expression("5").quantity()->toString(), "5");
    EXPECT_FALSE(Expression("1 / 0").quantity());
    EXPECT_FALSE(Expression("cm + kg").quantity());
}

} // namespace

} // namespace Vn::Expressions
