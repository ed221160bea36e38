#include "Server/CommonData/Expressions/ParseResult.h"

#include <gtest/gtest.h>

#include "Server/CommonData/Units/SimpleUnits.h"

namespace {

using Vn::Expressions::EResult;
using Vn::Expressions::ParseResult;
using Vn::Units::ComplexUnit;
using Vn::Units::UnitGram;
using Vn::Units::UnitMeter;

ComplexUnit kilogram() { return ComplexUnit(UnitGram::get(1000.0)); }
ComplexUnit centimeter() { return ComplexUnit(UnitMeter::get(0.01)); }

TEST(ParseResultTests, OutcomesHaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(EResult::unknownResult), 0);
    EXPECT_EQ(static_cast<int>(EResult::parsedOk), 1);
    EXPECT_EQ(static_cast<int>(EResult::expressionIsEmpty), 2);
    EXPECT_EQ(static_cast<int>(EResult::abruptTermination), 3);
    EXPECT_EQ(static_cast<int>(EResult::failedToParse), 4);
    EXPECT_EQ(static_cast<int>(EResult::unitMismatch), 5);
    EXPECT_EQ(static_cast<int>(EResult::unitsDontEval), 6);
    EXPECT_EQ(static_cast<int>(EResult::badUnitString), 7);
    static_assert(sizeof(EResult) == 4);
}

TEST(ParseResultTests, StartsUnknownAndEmpty) {
    ParseResult const result;
    EXPECT_EQ(result.result(), EResult::unknownResult);
    EXPECT_EQ(result.position(), 0U);
    EXPECT_TRUE(result.expected().isEmpty());
    EXPECT_TRUE(result.evaluated().isEmpty());
    EXPECT_EQ(result.toString(), L"Unknown Result");
}

TEST(ParseResultTests, EverySetterHasItsWords) {
    struct Row {
        void (*set)(ParseResult & result);
        EResult result;
        wchar_t const * text;
    };
    Row const rows[] = {
        {[](ParseResult & r) { r.parsedOk(); }, EResult::parsedOk, L"Success!"},
        {[](ParseResult & r) { r.expressionIsEmpty(); }, EResult::expressionIsEmpty,
         L"Empty Expression"},
        {[](ParseResult & r) { r.abruptTermination(); }, EResult::abruptTermination,
         L"Abrupt Termination"},
        {[](ParseResult & r) { r.failedToParse(17); }, EResult::failedToParse,
         L"Parse error at character 17"},
        {[](ParseResult & r) { r.unitMismatch(kilogram(), centimeter()); }, EResult::unitMismatch,
         L"Units mismatch between expected (kilogram) / (1) and evaluated (centimeter) / (1)"},
        {[](ParseResult & r) { r.unitsDontEval(); }, EResult::unitsDontEval,
         L"Units don't Evaluate"},
        {[](ParseResult & r) { r.badUnitString(); }, EResult::badUnitString,
         L"Expected units specified incorrectly as a string"},
    };
    for (Row const & row : rows) {
        ParseResult result;
        row.set(result);
        EXPECT_EQ(result.result(), row.result);
        EXPECT_EQ(result.toString(), row.text);
    }
}

TEST(ParseResultTests, FailureAtTheFirstCharacterSaysZero) {
    ParseResult result;
    result.failedToParse(0);
    EXPECT_EQ(result.toString(), L"Parse error at character 0");
}

TEST(ParseResultTests, PositionsAreWrittenWithoutGrouping) {
    ParseResult result;
    result.failedToParse(1234567890);
    EXPECT_EQ(result.toString(), L"Parse error at character 1234567890");
    result.failedToParse(4294967295U);
    EXPECT_EQ(result.toString(), L"Parse error at character 4294967295");
}

TEST(ParseResultTests, OtherNumbersAreUnexpected) {
    for (int const number : {8, 9, 2147483647, -1}) {
        ParseResult result;
        result.result(static_cast<EResult>(number));
        EXPECT_EQ(result.toString(), L"Unexpected result") << number;
    }
}

TEST(ParseResultTests, MismatchNamesTheExpectedUnitFirst) {
    ParseResult result;
    result.unitMismatch(kilogram(), centimeter());
    EXPECT_TRUE(result.expected().isIdentical(&UnitGram::get(1000.0)->asComplexUnit()));
    EXPECT_TRUE(result.evaluated().isIdentical(&UnitMeter::get(0.01)->asComplexUnit()));
    std::wstring const text = result.toString();
    EXPECT_LT(text.find(L"kilogram"), text.find(L"centimeter"));
}

TEST(ParseResultTests, StaleFieldsStayUntilOverwritten) {
    ParseResult result;
    result.failedToParse(5);
    result.unitMismatch(kilogram(), centimeter());
    EXPECT_EQ(result.position(), 5U);
    result.parsedOk();
    EXPECT_EQ(result.result(), EResult::parsedOk);
    EXPECT_EQ(result.position(), 5U);
    EXPECT_FALSE(result.expected().isEmpty());
    EXPECT_FALSE(result.evaluated().isEmpty());
    result.failedToParse(2);
    EXPECT_EQ(result.position(), 2U);
    EXPECT_FALSE(result.expected().isEmpty());
}

TEST(ParseResultTests, CopiesKeepEverything) {
    ParseResult result;
    result.failedToParse(5);
    result.unitMismatch(kilogram(), centimeter());
    ParseResult const copy(result);
    ParseResult assigned;
    assigned = result;
    result.failedToParse(9);
    for (ParseResult const * const same : {&copy, static_cast<ParseResult const *>(&assigned)}) {
        EXPECT_EQ(same->result(), EResult::unitMismatch);
        EXPECT_EQ(same->position(), 5U);
        EXPECT_TRUE(same->expected().isIdentical(&UnitGram::get(1000.0)->asComplexUnit()));
        EXPECT_TRUE(same->evaluated().isIdentical(&UnitMeter::get(0.01)->asComplexUnit()));
    }
}

} // namespace
