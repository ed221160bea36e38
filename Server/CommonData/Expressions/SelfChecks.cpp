// The self-checks of the expression engine, which a host may run at any time.

#include <boost/format.hpp>

#include "Platform/Base/UnitTest.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"
#include "Server/CommonData/Units/Utils.h"

namespace Vn::Expressions {

using Units::UnitContext;
using Units::UnitDisplaySettings;
using Units::Utils::essentiallyEqual;

namespace {

// The assertions of one row; a failure names the row.
class RowCheck {
public:
    RowCheck(UnitTest & test, wchar_t const * expression, wchar_t const * context)
        : m_rTest(test), m_expression(expression), m_context(context) {}

    bool that(bool condition, wchar_t const * what) {
        return m_rTest.Assert(condition, condition ? std::wstring() : rowText(what));
    }

    bool value(double got, double wanted, wchar_t const * what) {
        bool const same = essentiallyEqual(got, wanted);
        return m_rTest.Assert(
            same,
            same ? std::wstring()
                 : (boost::wformat(L"%1%: %2%, not %3%") % rowText(what) % got % wanted).str());
    }

    // An empty text isn't pinned.
    bool text(std::wstring const & got, std::wstring const & wanted, wchar_t const * what) {
        bool const same = wanted.empty() || got == wanted;
        return m_rTest.Assert(same, same ? std::wstring()
                                         : rowText(what) + L": \"" + got + L"\", not \"" + wanted +
                                               L"\"");
    }

private:
    std::wstring rowText(wchar_t const * what) const {
        return L"\"" + m_expression + L"\" in \"" + m_context + L"\": " + what;
    }

    UnitTest & m_rTest;
    std::wstring const m_expression;
    std::wstring const m_context;
};

// A rebuilt text, read again in the same context, has the same value and rebuilds to itself.
void checkStable(RowCheck & check, std::wstring const & rebuilt, UnitContext const & context,
                 double value) {
    Expression const again(rebuilt, context);
    if (!check.that(static_cast<bool>(again), L"the rebuilt text parses")) return;
    std::optional<double> const valueAgain = again.value();
    if (!check.that(valueAgain.has_value(), L"the rebuilt text evaluates")) return;
    check.value(*valueAgain, value, L"value of the rebuilt text");
    check.text(again.rebuilt(), rebuilt, L"text rebuilt from the rebuilt text");
}

void checkRow(UnitTest & test, WorkedExpression const & row) {
    RowCheck check(test, row.expression, row.context);
    UnitContext const context = workedContext(row.context);
    std::wstring_view const contextText = row.context;
    check.that(context.hasExpectedUnits() == (contextText != L"?"), L"the context");
    Expression const expression(row.expression, context);
    if (!check.that(static_cast<bool>(expression) == row.parsed,
                    row.parsed ? L"parses" : L"doesn't parse") ||
        !expression)
        return;
    std::optional<double> const value = expression.value();
    if (!check.that(value.has_value() == row.evaluates,
                    row.evaluates ? L"evaluates" : L"doesn't evaluate") ||
        !value)
        return;
    check.value(*value, row.value, L"value");
    UnitContext const display =
        row.displayUnit[0] ? UnitContext(std::wstring(row.displayUnit)) : context;
    check.text(expression.formatted(Units::ValueAndUnit, UnitDisplaySettings::standard(), display),
               row.formattedResult, L"formatted");
    std::wstring const rebuilt = expression.rebuilt();
    check.text(rebuilt, row.rebuiltExpression, L"rebuilt");
    checkStable(check, rebuilt, context, *value);
}

void basicExpressionTests(UnitTest & test) {
    for (WorkedExpression const & row : workedExpressions()) checkRow(test, row);
    test.note(
        (boost::wformat(L"%1% rows, each rebuilt text read again") % workedExpressions().size())
            .str());
}

void unitDisplaySettingsTests(UnitTest & test) {
    UnitDisplaySettings const & standard = UnitDisplaySettings::standard();
    UnitDisplaySettings settings = nonStandardSettings();
    std::size_t controlRows = 0;
    for (WorkedDisplay const & row : workedDisplays()) {
        if (applyControlRow(row, settings)) {
            ++controlRows;
            continue;
        }
        RowCheck check(test, row.expression, row.context);
        UnitContext const context = workedContext(row.context);
        Expression const expression(row.expression, context);
        std::optional<double> const value = expression.value();
        if (!check.that(value.has_value(), L"parses and evaluates")) continue;
        check.value(*value, row.value, L"value");
        check.text(expression.formatted(Units::ValueAndUnit, standard, context),
                   row.formattedResultStandard, L"formatted, standard");
        check.text(expression.rebuilt(Units::ValueAndUnit, standard), row.rebuiltExpressionStandard,
                   L"rebuilt, standard");
        check.text(expression.formatted(Units::ValueAndUnit, settings, context),
                   row.formattedResultNonStandard, L"formatted, non-standard");
        check.text(expression.rebuilt(Units::ValueAndUnit, settings),
                   row.rebuiltExpressionNonStandard, L"rebuilt, non-standard");
    }
    test.note((boost::wformat(L"%1% rows and %2% control rows") %
               (workedDisplays().size() - controlRows) % controlRows)
                  .str());
}

UnitTest s_basicExpressionTests VN_LOAD_EXPRESSION_SELF_CHECKS("SmokeTest", "basicExpressionTests",
                                                               &basicExpressionTests);
UnitTest s_unitDisplaySettingsTests VN_LOAD_EXPRESSION_SELF_CHECKS("SmokeTest",
                                                                   "unitDisplaySettingsTests",
                                                                   &unitDisplaySettingsTests);

} // namespace

} // namespace Vn::Expressions
