// The worked expressions: inputs with the value, the formatted text and the rebuilt text that must
// come out.  They settle what the expression language means, and the self-checks
// "basicExpressionTests" and "unitDisplaySettingsTests" of the group "SmokeTest" hold the engine
// against them.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_WORKEDEXPRESSIONSINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_WORKEDEXPRESSIONSINTERNAL_H

#include <span>

#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

// A row for the standard display settings.
struct WorkedExpression {
    wchar_t const * expression;        // as typed
    wchar_t const * context;           // as workedContext reads it
    bool parsed;                       // there is a tree
    bool evaluates;                    // it has a value
    double value;                      // internal, to within 1e-08
    wchar_t const * formattedResult;   // empty: not pinned
    wchar_t const * rebuiltExpression; // empty: not pinned
    wchar_t const * displayUnit;       // empty: formatted in the context itself
};

// A row for the standard and the non-standard settings; or, with an empty context and a name in
// capitals as the expression, a change of the latter for all rows after it.
struct WorkedDisplay {
    wchar_t const * expression; // as typed
    wchar_t const * context;    // as workedContext reads it
    double value;               // internal, to within 1e-08
    // The texts that must come out.
    wchar_t const * formattedResultStandard;
    wchar_t const * rebuiltExpressionStandard;
    wchar_t const * formattedResultNonStandard;
    wchar_t const * rebuiltExpressionNonStandard;
};

// The two tables, which live as long as the module.
std::span<WorkedExpression const> workedExpressions();
std::span<WorkedDisplay const> workedDisplays();

// The context that a row means: "?" expects nothing, an empty text expects a unitless result, and
// any other text is a unit string.
Units::UnitContext workedContext(wchar_t const * context);

// The non-standard settings at the beginning of the table, and as the control rows change them.
Units::UnitDisplaySettings nonStandardSettings();
// Whether `row` is a control row; if so, it has been applied to `settings`.
bool applyControlRow(WorkedDisplay const & row, Units::UnitDisplaySettings & settings);

} // namespace Vn::Expressions

#endif
