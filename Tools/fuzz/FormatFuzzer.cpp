// Writes any value under any settings in every form, and reads the texts back: each must give the
// value to within the resolution of its form.

#include <algorithm>
#include <charconv>
#include <cmath>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tools/fuzz/Input.h"

namespace Vn::Fuzz {

namespace {

using namespace Expressions;
using Units::UnitContext;
using Units::UnitDisplaySettings;

// What every form may add to a value before it rounds, so that a binary fraction just below a
// rounding point doesn't tip.
constexpr double c_bias = 1.1e-8;

// Rounding to the nearest 64th is done with a little favour for the upper one.
constexpr double c_half64th = (0.5 + 1.0 / 512) / 64;

double halfOfLastDecimal(int decimals) {
    return 0.5 * std::pow(10.0, -std::clamp(decimals, 0, 15));
}

bool near(double a, double b, double tolerance) {
    return std::abs(a - b) <= tolerance + 4e-15 * std::abs(a);
}

void checkDecimal(double value, UnitDisplaySettings const & settings) {
    valueFormatter const & formatter = *valueFormatter::get();
    std::wstring const text = formatter.formatDecimal(value, settings);
    std::wstring appended = L"x";
    formatter.appendDecimal(appended, value, settings);
    expect(appended == L"x" + text, "a number is appended as it is written");
    if (!std::isfinite(value)) {
        expect(text == L"INF" || text == L"-INF" || text == L"NAN", "what isn't finite has a name");
        return;
    }
    if (text.size() >= Limits::c_printedField) return; // cut off, perhaps in front of its exponent
    std::string ascii = Text::toUtf8(text);
    std::replace(ascii.begin(), ascii.end(), ',', '.');
    double read = 0.0;
    auto const [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), read);
    expect(end == ascii.data() + ascii.size(), "a number is written in digits", value, text);
    if (error == std::errc::result_out_of_range) {
        expect(std::abs(value) > 1e307 || std::abs(value) < 1e-307, "a text keeps its magnitude");
        return;
    }
    bool const scientific = ascii.find('E') != std::string::npos;
    double const tolerance =
        scientific ? halfOfLastDecimal(settings.scientificPrecision()) * std::abs(value)
                   : halfOfLastDecimal(settings.generalPrecision()) + c_bias;
    expect(near(value, read, tolerance), "a number reads back", value, text);
}

// Reads a text as an expression in a context.
double readBack(std::wstring const & text, UnitContext const & context) {
    Expression const expression(text, context);
    std::optional<double> const value = expression.value();
    expect(value.has_value(), "a formatted text is an expression", 0.0, text);
    return *value;
}

void checkFractional(double value) {
    std::wstring const text = valueFormatter::get()->formatFractional(value);
    if (!(std::abs(value) < 1e12)) return;
    expect(near(value, readBack(text, UnitContext()), c_half64th + c_bias), "a fraction reads back",
           value, text);
}

void checkArchitectural(double feet, UnitDisplaySettings const & settings) {
    static UnitContext const s_context(Units::UnitFoot::get());
    std::wstring const text = valueFormatter::get()->formatArchitectural(feet, settings);
    if (!(std::abs(feet) < 1e12)) return;
    double const read = readBack(text, s_context) / Units::UnitFoot::c_conversion;
    expect(near(feet, read, c_half64th / 12 + c_bias), "feet and inches read back", feet, text);
}

void checkDegMinSec(double degrees, UnitDisplaySettings const & settings) {
    static UnitContext const s_context(Units::UnitDegree::get());
    std::wstring const text = valueFormatter::get()->formatDegMinSec(degrees, settings);
    if (!(std::abs(degrees) < 1e12)) return;
    if (settings.angularPrecision() > 300) return; // more digits than a double can count
    double const read = readBack(text, s_context) / Units::UnitDegree::c_conversion;
    // Seconds are rounded before minutes are, and minutes before degrees.
    short const precision = settings.angularPrecision();
    double const second = 1.0 / 3600;
    double const tolerance = precision < 1    ? 0.5 + 30.5 * second
                             : precision == 1 ? 30.5 * second
                                              : halfOfLastDecimal(precision - 2) * second;
    expect(near(degrees, read, tolerance + c_bias), "degrees, minutes and seconds read back",
           degrees, text);
}

void checkUnit(std::wstring const & unit, double value, UnitDisplaySettings const & settings) {
    UnitContext const context(unit);
    Units::ComplexUnit const * const units = context.expectedUnits();
    if (!units) return;
    std::wstring const both = units->reconstructString(value, Units::ValueAndUnit, settings);
    std::wstring const number = units->reconstructString(value, Units::ValueOnly, settings);
    units->reconstructString(value, Units::UnitOnly, settings);
    expect(both.starts_with(number), "a quantity begins with its number", value, both);
}

void checkHelpers(double value, int exponent) {
    valueFormatter const & formatter = *valueFormatter::get();
    formatter.roundsToWhole(value);
    formatter.magnitudeString(value, exponent % 2 == 0);
    formatter.integerPower(value, exponent);
    formatter.formatExponent(static_cast<short>(exponent));
    std::wstring text;
    formatter.appendFraction(text, value);
}

} // namespace

} // namespace Vn::Fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    using namespace Vn;
    Fuzz::prepare();
    Fuzz::Input input(data, size);
    Units::UnitDisplaySettings const settings = input.settings();
    double const value = input.value();
    int const exponent = input.wholeNumber();
    Fuzz::checkDecimal(value, settings);
    Fuzz::checkFractional(value);
    Fuzz::checkArchitectural(value, settings);
    Fuzz::checkDegMinSec(value, settings);
    Fuzz::checkHelpers(value, exponent);
    for (wchar_t const * const unit : {L"cm", L"in", L"ft", L"deg", L"C", L"m/s^2", L""})
        Fuzz::checkUnit(unit, value, settings);
    Fuzz::checkUnit(input.text(), value, settings);
    return 0;
}
