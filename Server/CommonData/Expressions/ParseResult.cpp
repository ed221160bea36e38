#include "Server/CommonData/Expressions/ParseResult.h"

namespace Vn::Expressions {

std::wstring ParseResult::toString() const {
    switch (m_result) {
    case EResult::unknownResult:
        return L"Unknown Result";
    case EResult::parsedOk:
        return L"Success!";
    case EResult::expressionIsEmpty:
        return L"Empty Expression";
    case EResult::abruptTermination:
        return L"Abrupt Termination";
    case EResult::failedToParse:
        return L"Parse error at character " + std::to_wstring(m_position);
    case EResult::unitMismatch:
        return L"Units mismatch between expected " + m_expected.toString() + L" and evaluated " +
               m_evaluated.toString();
    case EResult::unitsDontEval:
        return L"Units don't Evaluate";
    case EResult::badUnitString:
        return L"Expected units specified incorrectly as a string";
    }
    return L"Unexpected result";
}

} // namespace Vn::Expressions
