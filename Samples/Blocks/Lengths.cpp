#include "Samples/Blocks/Lengths.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/Utility.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/Segment.h"
#include "Samples/Blocks/Texts.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Blocks {

using Expressions::Expression;
using Units::UnitContext;

namespace {

// Whether a text means a length in documents of any units: read in two of them, it is the same but
// for the rounding of their arithmetic.
bool meansEverywhere(std::wstring const & text, double value) {
    constexpr double c_rounding = 1e-12;
    for (wchar_t const * const unit : {L"cm", L"in"}) {
        std::optional<double> const read = Expression(text, UnitContext(unit)).value();
        if (!read || std::abs(*read - value) > c_rounding * std::abs(value)) return false;
    }
    return true;
}

// The expression in standard spelling, in which a bare number has got its unit.  Where rounding
// makes that another length, it is what was typed, and as a last resort the number.
std::wstring textToKeep(Expression const & expression, double value) {
    std::wstring text = expression.rebuilt();
    if (meansEverywhere(text, value)) return text;
    if (meansEverywhere(expression.text(), value)) return expression.text();
    return Utility::decimalText(value) + L" cm";
}

// Why a value can't be a length of that kind; empty if it can.
std::wstring whyNot(double value, ELength kind) {
    if (!std::isfinite(value)) return tr(L"it has no finite value");
    if (std::abs(value) > c_longest) return tr(L"it is longer than 100 km");
    if (kind == ELength::Size && value == 0) return tr(L"it is zero, and a size is above zero");
    if (kind == ELength::Size && value < 0) return tr(L"it is negative, and a size is above zero");
    return {};
}

} // namespace

std::wstring Fault::excerpt() const {
    constexpr std::size_t c_before = 60; // characters that are shown in front of the place
    std::size_t const place = Text::indexAt16(text, position);
    std::size_t const begin = place > c_before ? place - c_before : 0;
    std::wstring const shown = Text::printable(text.substr(begin, 2 * c_before));
    int const columns = Text::displayWidth(std::wstring_view(shown).substr(0, place - begin));
    return shown + L'\n' + std::wstring(static_cast<std::size_t>(columns), L' ') + L'^';
}

StrongRef<Units::UnitSystem> unitSystemOf(Asset const & asset) {
    Segment const * const design = asset.segment(SegmentType::DesignSegment);
    StrongRef<Entity> const root = design->rootEntity(AssetSettings::segmentRootId());
    auto const * const settings = query<CommonData::CommonDataAssetSettings>(root.get());
    return settings ? settings->activeUnitSystem() : nullptr;
}

UnitContext lengthContext(Asset const & asset) {
    UnitContext context(unitSystemOf(asset), Units::UnitSystemChoiceById::modelingLengthId(),
                        std::wstring(L"cm"));
    // Any unit may stand under an identifier.
    Units::ComplexUnit const length(Units::UnitMeter::get(0.01));
    bool const isLength =
        context.expectedUnits() && context.expectedUnits()->isDimensionallyEquivalent(&length);
    return isLength ? context : UnitContext(L"cm");
}

std::wstring shownLength(double value, UnitContext const & context) {
    return context.expectedUnits()->reconstructString(value, Units::ValueAndUnit,
                                                      Units::UnitDisplaySettings::get());
}

Status readLength(std::wstring const & typed, ELength kind, UnitContext const & context,
                  Length & length, Fault * fault) {
    Expression const expression(typed, context);
    std::optional<double> const value = expression.value();
    Fault found{typed, 0, {}};
    if (value) {
        found.reason = whyNot(*value, kind);
    } else {
        Expressions::FailureExplanation const why = Expressions::explainFailure(expression);
        if (why.hasPlace) found.position = why.start;
        found.reason = why.message;
    }
    if (found.reason.empty()) {
        length = {*value, textToKeep(expression, *value)};
        return Status::success();
    }
    Status const status = Status::invalidArgument(
        "read a length", Text::toUtf8(Text::clipped(typed)), Text::toUtf8(found.reason));
    if (fault) *fault = std::move(found);
    return status;
}

} // namespace Vn::Blocks
