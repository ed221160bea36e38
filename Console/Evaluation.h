// What there is to tell of an expression, and two ways to tell it.

#ifndef VN_CONSOLE_EVALUATION_H
#define VN_CONSOLE_EVALUATION_H

#include <iosfwd>
#include <optional>
#include <string>

#include "Server/CommonData/Expressions/Expression.h"

namespace Vn::Console {

struct Request;

struct Evaluation {
    std::optional<double> value;
    std::wstring formatted;
    std::wstring units;         // empty for none
    std::wstring internalUnits; // of the value
    std::wstring rebuilt;
    bool readsBack = false;             // the rebuilt text, to the same value
    std::optional<std::wstring> stored; // the text to store, if it had to be found out
    std::wstring error;                 // why there is no value to show; empty if there is
};

// The expression must have a tree.
Evaluation evaluate(Expressions::Expression const & expression,
                    Units::UnitDisplaySettings const & settings,
                    Units::UnitContext const & display);

// Why a value in `units` can't be shown in the units that `display` expects; empty if it can.
std::wstring whyNotShown(Units::ComplexUnit const & units,
                         Units::UnitDisplaySettings const & settings,
                         Units::UnitContext const & display);

// The same for an expression, which can be shown if it has no value.
std::wstring whyNotShown(Expressions::Expression const & expression,
                         Units::UnitDisplaySettings const & settings,
                         Units::UnitContext const & display);

// The text to store for an expression that was evaluated so.
std::wstring textToStore(Evaluation const & evaluation, Expressions::Expression const & expression);

// Shows what was asked for as a table, or why there is no answer on `err`.  `display` holds where
// the text itself names no unit.  False if it isn't good.  What was read otherwise than it may be
// meant is noted on `err` too.
bool showEvaluation(Request const & request, Units::UnitDisplaySettings const & settings,
                    Units::UnitContext const & display, std::ostream & out, std::ostream & err);

// The same as the value and a line below it.
bool showBriefly(Request const & request, Units::UnitDisplaySettings const & settings,
                 Units::UnitContext const & display, std::ostream & out, std::ostream & err);

// Makes `context` the one that expects the unit `text`; an empty text stands for a result without
// units.  False if it isn't a unit, which is told on `err` after `what` it was for.
bool readUnitContext(std::wstring const & text, std::string const & what,
                     Units::UnitContext & context, std::ostream & err);

} // namespace Vn::Console

#endif
