#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"

#include <string_view>

namespace Vn::Expressions {

using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

constexpr WorkedExpression c_expressions[] = {
#include "Server/CommonData/Expressions/WorkedExpressions.inc"
};

constexpr WorkedDisplay c_displays[] = {
#include "Server/CommonData/Expressions/WorkedDisplays.inc"
};

} // namespace

std::span<WorkedExpression const> workedExpressions() { return c_expressions; }

std::span<WorkedDisplay const> workedDisplays() { return c_displays; }

UnitContext workedContext(wchar_t const * context) {
    std::wstring_view const text = context;
    if (text == L"?") return UnitContext();
    if (text.empty()) return UnitContext(&Units::ComplexUnit::none());
    return UnitContext(std::wstring(text));
}

UnitDisplaySettings nonStandardSettings() {
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    settings.generalPrecision(4);
    settings.angularPrecision(2);
    settings.scientificNotation(true);
    settings.scientificPrecision(4);
    settings.displayAbbreviated(false);
    settings.compressUnits(false);
    settings.useCommaAsDecimalPoint();
    settings.lengthDisplay(Units::LengthFractional);
    settings.degreeDisplay(Units::DegreeDegMinSec);
    settings.hideTrailingZeroes(false);
    settings.useScientificNotationAboveThreshold(1000.0);
    settings.useScientificNotationBelowThreshold(0.0001);
    return settings;
}

bool applyControlRow(WorkedDisplay const & row, UnitDisplaySettings & settings) {
    std::wstring_view const name = row.expression;
    if (name == L"ARCHITECTURAL") {
        settings.lengthDisplay(Units::LengthArchitectural);
        settings.angularPrecision(5);
    } else if (name == L"HIDETRAILINGZEROES") {
        settings.hideTrailingZeroes(true);
        settings.minimumPrecision(0);
    } else if (name == L"NOHIDETRAILINGZEROESNOSCIENTIFIC") {
        settings.hideTrailingZeroes(false);
        settings.scientificNotation(false);
    } else {
        return false;
    }
    return true;
}

} // namespace Vn::Expressions
