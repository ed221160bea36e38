#include "Server/CommonData/Expressions/ParseResult.h"

#include <boost/format.hpp>

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
        return (boost::wformat(L"Parse error at character %1%", std::locale::classic()) %
                m_position)
            .str();
    case EResult::unitMismatch:
        return (boost::wformat(L"Units mismatch between expected %1% and evaluated %2%",
                               std::locale::classic()) %
                m_expected.toString() % m_evaluated.toString())
            .str();
    case EResult::unitsDontEval:
        return L"Units don't Evaluate";
    case EResult::badUnitString:
        return L"Expected units specified incorrectly as a string";
    }
    return L"Unexpected result";
}

} // namespace Vn::Expressions
