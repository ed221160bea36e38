#include "Server/CommonData/Expressions/Interface.h"

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/ParserInternal.h"
#include "Server/CommonData/Expressions/TreeInternal.h"

namespace Vn::Expressions {

Interface * Interface::get() {
    static constinit Interface s_interface;
    return &s_interface;
}

Node * Interface::parse(std::wstring const & text, Units::UnitContext const & context,
                        ParseResult & result) const {
    return Parser::get()->parse(text, context, context.expectedUnits(), result);
}

bool Interface::evaluate(Node * node, double & value) const { return node->evaluate(value); }

bool Interface::unitEvaluate(Node * node, Units::ComplexUnit & units,
                             Units::UnitContext const & context) const {
    return node->unitEvaluate(units, context);
}

std::wstring Interface::formattedValue(Node * node, Units::EUnitDisplayMode mode,
                                       Units::UnitDisplaySettings const & settings,
                                       Units::UnitContext const & context) const {
    return node->formattedValue(mode, settings, context);
}

std::wstring Interface::reconstructString(Node * node, Units::EUnitDisplayMode mode,
                                          Units::UnitDisplaySettings const & settings) const {
    return node->reconstructString(mode, settings, nullptr);
}

void Interface::destroy(Node * node) const {
    if (node) Tree::destroy(&node->tree());
}

} // namespace Vn::Expressions
