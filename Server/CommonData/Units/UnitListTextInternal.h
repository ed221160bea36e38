// The text of a product and quotient of units, whatever each unit is called in it.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITLISTTEXTINTERNAL_H
#define VN_SERVER_COMMONDATA_UNITS_UNITLISTTEXTINTERNAL_H

#include <algorithm>
#include <cstddef>
#include <string>

#include <boost/container/small_vector.hpp>

#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnit.h"

namespace Vn::Units::UnitListText {

// Appends the units, composites before base units and otherwise in their order, separated by
// blanks, with a run of one unit written as a power if `compress` says so.  `appendName(text,
// unit)` writes one unit.  Returns the count of groups written.
template <class AppendName>
std::size_t appendList(std::wstring & text, UnitSpan units, bool compress,
                       AppendName && appendName) {
    boost::container::small_vector<SimpleUnit const *, 8> ordered(units.begin(), units.end());
    std::stable_partition(ordered.begin(), ordered.end(),
                          [](SimpleUnit const * unit) { return unit->unitType() != BaseUnitKind; });
    std::size_t groups = 0;
    for (std::size_t i = 0; i < ordered.size();) {
        std::size_t run = 1;
        if (compress)
            while (i + run < ordered.size() && ordered[i + run] == ordered[i]) ++run;
        if (groups > 0) text += Expressions::Tokens::get()->getString(Expressions::e_SPACE);
        appendName(text, *ordered[i]);
        if (run > 1) Expressions::valueFormatter::get()->appendExponent(text, run);
        ++groups;
        i += run;
    }
    return groups;
}

// Appends both lists: "kg m / s^2", "/ (m s)".
template <class AppendName>
void append(std::wstring & text, ComplexUnit const & units, bool compress,
            AppendName && appendName) {
    Expressions::Tokens const & tokens = *Expressions::Tokens::get();
    std::wstring const & space = tokens.getString(Expressions::e_SPACE);
    bool const wroteAny = appendList(text, units.numerator(), compress, appendName) > 0;
    if (units.denominator().empty()) return;
    if (wroteAny) text += space;
    text += tokens.getString(Expressions::e_DIVIDE);
    text += space;
    std::size_t const start = text.size();
    if (appendList(text, units.denominator(), compress, appendName) > 1) {
        text.insert(start, tokens.getString(Expressions::e_LEFT_PAREN));
        text += tokens.getString(Expressions::e_RIGHT_PAREN);
    }
}

} // namespace Vn::Units::UnitListText

#endif
