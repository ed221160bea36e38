// The text commands of the subject area "Expressions".

#include <algorithm>

#include "Platform/Base/TextCommandService.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::UnitDisplaySettings;

TextCommandResult run(std::wstring_view name, std::vector<std::wstring> parameters,
                      std::vector<std::wstring> flags = {}) {
    TextCommand * const command = TextCommandService::get().find(L"Expressions", name);
    EXPECT_NE(command, nullptr);
    if (!command) return {};
    return command->run(TextCommandParameters(std::move(parameters), std::move(flags)));
}

constexpr wchar_t c_noExpression[] =
    L"You need to specify an expression as a parameter and may need to use quotes to get a single "
    L"string";

TEST(ExpressionTextCommandsTests, AreaAndCommandsRegisterThemselves) {
    auto const areas = TextCommandService::get().subjectAreas();
    auto const area = std::find_if(areas.begin(), areas.end(), [](auto const * each) {
        return each->name() == L"Expressions";
    });
    ASSERT_NE(area, areas.end());
    EXPECT_EQ((*area)->description(), L"Commands that operate on expression");
    EXPECT_FALSE((*area)->hidden());
    auto const commands = TextCommandService::get().commands(L"Expressions");
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0]->name(), L"Parse");
    EXPECT_EQ(commands[0]->description(),
              L"[/UnitOnly] [/ValueOnly] <Expression> [ExpectedUnit] [DisplayUnit] Parses and "
              L"evaluates the passed expression");
    EXPECT_EQ(commands[1]->name(), L"Tokenize");
    EXPECT_EQ(commands[1]->description(),
              L"<Expression> Parses the passed expressions into tokens - the first step on the "
              L"parsing process");
    for (TextCommand const * const command : commands) {
        EXPECT_TRUE(command->enabled());
        EXPECT_FALSE(command->hidden());
        EXPECT_EQ(command->alias(), "");
    }
}

TEST(ExpressionTextCommandsTests, ExpressionMustBeGiven) {
    for (wchar_t const * const name : {L"Parse", L"Tokenize"}) {
        TextCommandResult const result = run(name, {});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.text, c_noExpression);
    }
}

TEST(ExpressionTextCommandsTests, TokenizeJoinsTheTextsOfTheTokens) {
    struct Row {
        wchar_t const * text;
        wchar_t const * answer;
    };
    constexpr Row c_rows[] = {
        {L"1 + 2 cm", L"1 + 2 cm parsed as 1+2cm"},
        {L"1' 9\"", L"1' 9\" parsed as 1' 9foot"},
        {L"2 1/2\"", L"2 1/2\" parsed as 2 1/2\"inch"},
        {L"45 deg 31'", L"45 deg 31' parsed as 45 deg 31'degree"},
        {L"2 # s", L"2 # s parsed as 2# s"},
        {L"", L" parsed as "},
    };
    for (Row const & row : c_rows) {
        TextCommandResult const result = run(L"Tokenize", {row.text});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.text, row.answer);
    }
}

struct ParseRow {
    std::vector<std::wstring> parameters;
    std::vector<std::wstring> flags;
    int status;
    wchar_t const * answer;
};

// The preferences of the user are those of the factory here.
TEST(ExpressionTextCommandsTests, ParseTellsEverything) {
    UnitDisplaySettings & user = UnitDisplaySettings::userEditableSettings();
    UnitDisplaySettings const before = user;
    user = UnitDisplaySettings::standard();
    ParseRow const rows[] = {
        {{L"2*2", L"cm"},
         {},
         0,
         L"2*2 gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 4\r\n"
         L"Unit Evaluation succeeded with a result of (centimeter) / (1)\r\n"
         L"Formatted value -> 4.00 cm\r\n"
         L"String reconstruction produced -> ( 2 * 2 ) * 1 cm\r\n"},
        {{L"1 in"},
         {},
         0,
         L"1 in gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 2.54\r\n"
         L"Unit Evaluation succeeded with a result of (inch) / (1)\r\n"
         L"Formatted value -> 1.00 in\r\n"
         L"String reconstruction produced -> 1 in\r\n"},
        // The flag for the value wins.
        {{L"1 in"},
         {L"ValueOnly", L"UnitOnly"},
         0,
         L"1 in gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 2.54\r\n"
         L"Unit Evaluation succeeded with a result of (inch) / (1)\r\n"
         L"Formatted value -> 1.00\r\n"
         L"String reconstruction produced -> 1\r\n"},
        {{L"1 in"},
         {L"unitonly"},
         0,
         L"1 in gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 2.54\r\n"
         L"Unit Evaluation succeeded with a result of (inch) / (1)\r\n"
         L"Formatted value -> in\r\n"
         L"String reconstruction produced -> in\r\n"},
        // A display unit; a unit string as the context.
        {{L"1", L"m / (s s)", L"cm / (s s)"},
         {},
         0,
         L"1 gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 100\r\n"
         L"Unit Evaluation succeeded with a result of (meter) / (second*second)\r\n"
         L"Formatted value -> 100.00 cm / s^2\r\n"
         L"String reconstruction produced -> 1 m / s^2\r\n"},
        {{L"1 in", L"cm", L"ft"},
         {},
         0,
         L"1 in gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 2.54\r\n"
         L"Unit Evaluation succeeded with a result of (inch) / (1)\r\n"
         L"Formatted value -> 0.083 ft\r\n"
         L"String reconstruction produced -> 1 in\r\n"},
        // A word is first taken as the name of a unit: this one couldn't be typed in a unit string.
        {{L"1", L"circular_mil"},
         {},
         0,
         L"1 gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 5.06708e-06\r\n"
         L"Unit Evaluation succeeded with a result of (circular_mil) / (1)\r\n"
         L"Formatted value -> 1.00 circular_mil\r\n"
         L"String reconstruction produced -> 1 circular_mil\r\n"},
        {{L"11 cm/0", L"cm"},
         {},
         0,
         L"11 cm/0 gave a parse result Success!\r\n"
         L"Evaluation failed\r\n"
         L"Unit Evaluation succeeded with a result of (centimeter) / (1)\r\n"
         L"Formatted value -> \r\n"
         L"String reconstruction produced -> 11 cm / 0\r\n"},
        // No tree, nothing more.
        {{L"2 $$"}, {}, 0, L"2 $$ gave a parse result Parse error at character 2\r\n"},
        {{L"2 kg", L"cm"},
         {},
         0,
         L"2 kg gave a parse result Units mismatch between expected (centimeter) / (1) and "
         L"evaluated (kilogram) / (1)\r\n"},
        {{L" "}, {}, 0, L"  gave a parse result Empty Expression\r\n"},
        // Contexts that don't parse.
        {{L"1", L"nonsense"},
         {},
         1,
         L"The second parameter doesn't parse as expected units - do you need to use quotes?"},
        {{L"1", L"2 cm"},
         {},
         1,
         L"The second parameter doesn't parse as expected units - do you need to use quotes?"},
        {{L"1", L"cm", L"cm^0.5"},
         {},
         1,
         L"The third parameter doesn't parse as display units - do you need to use quotes?"},
        // The third is looked at although there is no tree.
        {{L"1 $$", L"cm", L"nonsense"},
         {},
         1,
         L"The third parameter doesn't parse as display units - do you need to use quotes?"},
        // More parameters than there are.
        {{L"1", L"cm", L"cm", L"+", L"2"},
         {},
         0,
         L"1 gave a parse result Success!\r\n"
         L"Evaluation succeeded with a result of 1\r\n"
         L"Unit Evaluation succeeded with a result of (centimeter) / (1)\r\n"
         L"Formatted value -> 1.00 cm\r\n"
         L"String reconstruction produced -> 1 cm\r\n"
         L"\r\nDid you need to use quotes so the expression came across as a single string??"},
        {{L"2 $$", L"cm", L"cm", L"+"},
         {},
         0,
         L"2 $$ gave a parse result Parse error at character 2\r\n"
         L"\r\nDid you need to use quotes so the expression came across as a single string??"},
    };
    for (ParseRow const & row : rows) {
        TextCommandResult const result = run(L"Parse", row.parameters, row.flags);
        EXPECT_EQ(result.status, row.status) << shown(row.parameters[0]);
        EXPECT_EQ(result.text, row.answer) << shown(row.parameters[0]);
    }
    user = before;
}

TEST(ExpressionTextCommandsTests, CommandsRunFromALine) {
    TextCommandService & service = TextCommandService::get();
    EXPECT_EQ(service.run(L"Expressions.Tokenize \"1 + 2 cm\"").text, L"1 + 2 cm parsed as 1+2cm");
    EXPECT_EQ(service.run(L"Expressions.Tokenize \"2' 6 3/4\"\"").text,
              L"2' 6 3/4\" parsed as 2' 6 3/4foot");
    EXPECT_EQ(service.run(L"expressions.parse \"2 $$\"").text,
              L"2 $$ gave a parse result Parse error at character 2\r\n");
}

} // namespace

} // namespace Vn::Expressions
