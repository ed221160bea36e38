#include "Server/CommonData/Units/UnitSystemChoice.h"

#include "Server/CommonData/Expressions/Interface.h"

namespace Vn::Units {

bool UnitSystemChoice::parse(std::wstring const & text, ComplexUnit & out) {
    Expressions::Interface const & engine = *Expressions::Interface::get();
    UnitContext const context;
    Expressions::ParseResult result;
    Expressions::Node * const node = engine.parse(L"1 " + text, context, result);
    if (!node) return false;
    engine.unitEvaluate(node, out, context);
    engine.destroy(node);
    return true;
}

} // namespace Vn::Units
