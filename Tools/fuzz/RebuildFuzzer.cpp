// What parses and evaluates has a text to store that reads back, in the same context, to the same
// value and the same units; and a tree is rebuilt under any settings.

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Tools/fuzz/Input.h"

namespace Vn::Fuzz {

namespace {

using namespace Expressions;
using Units::UnitContext;

// The meaning of a rare word depends on which units with prefixes are in use, and a text may bring
// some of them into use.  Reading a text a few times settles what it means.
void settle(std::wstring const & text, UnitContext const & context) {
    for (int i = 0; i < 3; ++i) Expression(text, context).textToStore();
}

void checkTextToStore(std::wstring const & text, UnitContext const & context) {
    settle(text, context);
    Expression const typed(text, context);
    if (!typed) return;
    std::wstring const stored = typed.textToStore();
    Expression const read(stored, context);
    double const value = typed.value().value_or(0.0);
    expect(static_cast<bool>(read), "the text to store parses", value, stored);
    Units::ComplexUnit const units = *typed.units();
    expect(read.units()->isDimensionallyEquivalent(&units), "it has the same units", value, stored);
    // A number drawn anew is another one.
    if (text.find(Tokens::get()->getString(e_RANDOM)) != std::wstring::npos) return;
    expect(read.value() == typed.value(), "it has the same value", value, stored);
    expect(read.textToStore() == stored, "it is stored alike", value, stored);
}

} // namespace

} // namespace Vn::Fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    using namespace Vn;
    Fuzz::prepare();
    Fuzz::Input input(data, size);
    Units::UnitDisplaySettings const settings = input.settings();
    Units::UnitContext const context = input.context();
    std::wstring const text = input.text();
    Fuzz::checkTextToStore(text, context);
    Expressions::Expression const expression(text, context);
    for (auto const mode : {Units::ValueAndUnit, Units::ValueOnly, Units::UnitOnly}) {
        expression.rebuilt(mode, settings);
        expression.formatted(mode, settings, context);
    }
    return 0;
}
