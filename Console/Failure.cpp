#include "Console/Failure.h"

#include "Console/Terminal/Excerpt.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

using Expressions::FailureExplanation;

namespace {

std::wstring line(std::wstring const & text) {
    return text.empty() ? std::wstring() : L"  " + text + L'\n';
}

} // namespace

std::wstring questionLine(FailureExplanation const & failure) { return line(failure.question); }

std::wstring hintLine(FailureExplanation const & failure) {
    return failure.hint.empty() ? questionLine(failure) : line(failure.hint);
}

std::string failureLines(Expressions::Expression const & expression) {
    return failureLines(expression, explainFailure(expression));
}

std::string failureLines(Expressions::Expression const & expression,
                         FailureExplanation const & failure) {
    Excerpt const excerpt =
        excerptAt(expression.text(), failure.position, failure.start, failure.end);
    std::wstring text = failure.message + L'\n' + line(excerpt.text);
    if (failure.hasPlace) text += line(excerpt.marks);
    return Text::toUtf8(text + hintLine(failure));
}

} // namespace Vn::Console
