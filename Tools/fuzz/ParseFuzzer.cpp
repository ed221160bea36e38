// Parses and evaluates: whatever the text, the outcome tells the truth about the tree, and a tree
// has units that fit and at most one value.

#include <cmath>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Expressions/Interface.h"
#include "Tools/fuzz/Input.h"

namespace Vn::Fuzz {

namespace {

using namespace Expressions;
using Units::ComplexUnit;
using Units::UnitContext;

void checkFailure(std::wstring const & text, UnitContext const & context,
                  ParseResult const & result) {
    switch (result.result()) {
    case EResult::failedToParse:
        expect(result.position() < Text::length16(text), "a failure lies in the text");
        break;
    case EResult::unitMismatch:
        expect(context.hasExpectedUnits() &&
                   result.expected().isIdentical(context.expectedUnits()) &&
                   !result.evaluated().isDimensionallyEquivalent(&result.expected()),
               "a mismatch is one");
        break;
    case EResult::expressionIsEmpty:
        for (wchar_t const c : text)
            expect(Text::isSpace(static_cast<char32_t>(c)), "an empty expression is blank");
        break;
    case EResult::abruptTermination:
    case EResult::unitsDontEval:
        break;
    default:
        expect(false, "a parse without a tree fails for a reason");
    }
    expect(!result.toString().empty(), "every outcome has a text");
    expect(result.failure() != EParseFailure::none, "every failure has a reason");
    expect(result.failureStart() <= result.failureEnd() &&
               result.failureEnd() <= Text::length16(text),
           "the piece at fault lies in the text");
    FailureExplanation const failure = explainFailure(text, context, result);
    expect(!failure.explanation.empty(), "every failure has an explanation");
}

void checkTree(Node * node, UnitContext const & context) {
    Interface const & engine = *Interface::get();
    ComplexUnit units;
    expect(engine.unitEvaluate(node, units, context), "a tree has units");
    expect(!context.hasExpectedUnits() || units.isDimensionallyEquivalent(context.expectedUnits()),
           "a tree has the units that were expected");
    double value = 0.0;
    bool const evaluates = engine.evaluate(node, value);
    if (evaluates) {
        double again = 0.0;
        expect(std::isfinite(value), "a value is finite");
        expect(engine.evaluate(node, again) && again == value, "a tree keeps its value");
    }
    std::wstring const formatted = engine.formattedValue(
        node, Units::ValueAndUnit, Units::UnitDisplaySettings::standard(), context);
    expect(formatted.empty() == !evaluates, "a value is shown exactly if there is one");
}

} // namespace

} // namespace Vn::Fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    using namespace Vn;
    Fuzz::prepare();
    Fuzz::Input input(data, size);
    Units::UnitContext const context = input.context();
    std::wstring const text = input.text();
    Expressions::ParseResult result;
    Expressions::Node * const node = Expressions::Interface::get()->parse(text, context, result);
    Fuzz::expect((node != nullptr) == (result.result() == Expressions::EResult::parsedOk),
                 "there is a tree exactly if the parse went well");
    Fuzz::expect(!node || result.failure() == Expressions::EParseFailure::none,
                 "a good parse has no reason to fail");
    if (node)
        Fuzz::checkTree(node, context);
    else
        Fuzz::checkFailure(text, context, result);
    Expressions::Interface::get()->destroy(node);
    return 0;
}
