#include "Server/CommonData/Expressions/Interface.h"

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/TreeInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::UnitContext;
using Units::UnitDisplaySettings;

Interface const & engine() { return *Interface::get(); }

TEST(InterfaceTests, ThereIsOneEngine) { EXPECT_EQ(Interface::get(), Interface::get()); }

TEST(InterfaceTests, DestroyIgnoresNull) { engine().destroy(nullptr); }

TEST(InterfaceTests, FailuresLeaveNoTree) {
    struct Row {
        wchar_t const * text;
        wchar_t const * context;
        EResult result;
        unsigned int position;
    };
    constexpr Row c_rows[] = {
        {L"", L"?", EResult::expressionIsEmpty, 0},
        {L"   ", L"?", EResult::expressionIsEmpty, 0},
        {L"(", L"?", EResult::abruptTermination, 0},
        {L"2 $$", L"?", EResult::failedToParse, 2}, // where the name begins
        {L"1CM", L"?", EResult::failedToParse, 1},
        {L"()", L"?", EResult::failedToParse, 1},
        {L"1kg+1cm", L"?", EResult::unitsDontEval, 0},
        {L"2kg", L"cm", EResult::unitMismatch, 0},
    };
    for (Row const & row : c_rows) {
        ParseResult result;
        EXPECT_EQ(engine().parse(row.text, contextOf(row.context), result), nullptr);
        EXPECT_EQ(result.result(), row.result) << shown(row.text);
        EXPECT_EQ(result.position(), row.position) << shown(row.text);
    }
}

TEST(InterfaceTests, EachParseLeavesOneOutcome) {
    ParseResult result;
    UnitContext const centimeters(L"cm");
    EXPECT_EQ(engine().parse(L"2 $$", centimeters, result), nullptr);
    EXPECT_EQ(engine().parse(L"2 kg", centimeters, result), nullptr);
    EXPECT_EQ(result.result(), EResult::unitMismatch);
    EXPECT_EQ(result.position(), 2U); // of the failure before
    EXPECT_EQ(result.expected().toString(), L"(centimeter) / (1)");
    EXPECT_EQ(result.evaluated().toString(), L"(kilogram) / (1)");
    Node * const node = engine().parse(L"2", centimeters, result);
    EXPECT_EQ(result.result(), EResult::parsedOk);
    engine().destroy(node);
}

TEST(InterfaceTests, TreeAnswersInAnyOrder) {
    UnitContext const inches(L"in");
    UnitDisplaySettings const & standard = UnitDisplaySettings::standard();
    auto const rebuilt = [&](Node * node) {
        EXPECT_EQ(engine().reconstructString(node, Units::ValueAndUnit, standard),
                  L"1 in + 1.0 cm");
    };
    auto const formatted = [&](Node * node) {
        EXPECT_EQ(engine().formattedValue(node, Units::ValueAndUnit, standard, inches),
                  L"1.394 in");
    };
    auto const value = [&](Node * node) {
        double evaluated = 0.0;
        EXPECT_TRUE(engine().evaluate(node, evaluated));
        EXPECT_NEAR(evaluated, 3.54, 1e-12);
    };
    auto const units = [&](Node * node) {
        Units::ComplexUnit evaluated;
        EXPECT_TRUE(engine().unitEvaluate(node, evaluated, inches));
        EXPECT_EQ(evaluated.toString(), L"(inch) / (1)");
    };
    std::function<void(Node *)> const questions[] = {rebuilt, formatted, value, units};
    for (auto const & first : questions) {
        for (auto const & second : questions) {
            ParseResult result;
            Node * const node = engine().parse(L"1+1.0cm", inches, result);
            ASSERT_NE(node, nullptr);
            first(node);
            second(node);
            first(node);
            engine().destroy(node);
        }
    }
}

TEST(InterfaceTests, SecondEvaluationGivesTheSame) {
    ParseResult result;
    Node * const node = engine().parse(L"random() + random() * 3", UnitContext(), result);
    ASSERT_NE(node, nullptr);
    double first = -1.0;
    double second = -2.0;
    EXPECT_TRUE(engine().evaluate(node, first));
    EXPECT_TRUE(engine().evaluate(node, second));
    EXPECT_EQ(first, second);
    engine().destroy(node);
}

TEST(InterfaceTests, FormattedValueUsesTheUnitsOfTheDisplay) {
    struct Row {
        wchar_t const * text;
        wchar_t const * context;
        wchar_t const * display;
        wchar_t const * formatted;
    };
    constexpr Row c_rows[] = {
        {L"1", L"cm", L"in", L"0.394 in"},
        {L"1 cm", L"cm", L"in", L"0.394 in"},
        {L"1 in", L"cm", L"in", L"1.00 in"},
        {L"1", L"watt", L"hp", L"0.001 hp"},
        // Without expected units there, those of the parse; without these, its own.
        {L"1 in", L"cm", L"?", L"2.54 cm"},
        {L"1 in", L"?", L"?", L"1.00 in"},
        {L"acos(1)", L"?", L"?", L"0.00 rad"},
        {L"1 in", L"?", L"", L"2.54"}, // a unitless display shows the internal value
    };
    for (Row const & row : c_rows) {
        ParseResult result;
        Node * const node = engine().parse(row.text, contextOf(row.context), result);
        ASSERT_NE(node, nullptr) << shown(row.text);
        EXPECT_EQ(engine().formattedValue(node, Units::ValueAndUnit,
                                          UnitDisplaySettings::standard(), contextOf(row.display)),
                  row.formatted)
            << shown(row.text);
        engine().destroy(node);
    }
}

TEST(InterfaceTests, ValueThatDoesNotEvaluateHasNoText) {
    for (wchar_t const * const text :
         {L"11 cm/0", L"11 cm % 0 cm", L"1E200*1E200cm", L"pow(10;400)", L"-10^400", L"-10^0.5"}) {
        ParseResult result;
        UnitContext const centimeters(L"cm");
        Node * const node = engine().parse(text, centimeters, result);
        ASSERT_NE(node, nullptr) << shown(text);
        double value = 77.0;
        EXPECT_FALSE(engine().evaluate(node, value)) << shown(text);
        EXPECT_EQ(value, 1.0) << shown(text);
        EXPECT_EQ(engine().formattedValue(node, Units::ValueAndUnit,
                                          UnitDisplaySettings::standard(), centimeters),
                  L"")
            << shown(text);
        engine().destroy(node);
    }
}

TEST(InterfaceTests, ConflictingUnitsLeaveTheAnswerUntouched) {
    Tree * const tree = Tree::make();
    Node * const kilogram =
        tree->make<NumericNode>(nullptr, 1.0, &Units::UnitGram::get(1000.0)->asComplexUnit());
    Node * const second =
        tree->make<NumericNode>(nullptr, 1.0, &Units::UnitSecond::get(1.0)->asComplexUnit());
    Node * const sum = tree->make<PlusOpNode>(nullptr, kilogram, second);
    Units::ComplexUnit units(Units::UnitInch::get());
    EXPECT_FALSE(engine().unitEvaluate(sum, units, UnitContext()));
    EXPECT_EQ(units.toString(), L"(inch) / (1)");
    engine().destroy(sum);
}

} // namespace

} // namespace Vn::Expressions
