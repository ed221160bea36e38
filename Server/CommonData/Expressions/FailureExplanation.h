// Why a text isn't an expression, or has no value, in words for the person who typed it.
//
//   Expression const length(text, context);
//   if (!length.value()) tell(explainFailure(length).message);
//
// All texts are in the user's language.  Pieces of what was typed are clipped where they are long,
// and what a terminal wouldn't show or would act on is replaced in them.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_FAILUREEXPLANATION_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_FAILUREEXPLANATION_H

#include <cstddef>
#include <string>
#include <vector>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/ParseFailure.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

// What there is to tell of a failure.
struct FailureExplanation {
    // Why; none where only the outcome is known, and for an expression that has no value.
    EParseFailure reason = EParseFailure::none;
    // Where the parse stopped, in 16-bit characters from 0, of the whole line: the position of the
    // result if that has one, else where the piece begins.
    std::size_t position = 0;
    // Where the piece at fault begins and ends, likewise; equal if it is empty or isn't known.
    std::size_t start = 0;
    std::size_t end = 0;
    // Whether the place means something: it doesn't for an empty text, for units of the whole
    // expression, or for a value.
    bool hasPlace = false;
    // The outcome: "Parse error at character 1".
    std::wstring outcome;
    // The reason: "\"CM\" isn't a unit, a function or a constant".  Empty if it isn't known.
    std::wstring explanation;
    // Both of them in one line.
    std::wstring message;
    // What to write instead of the piece at fault, the likeliest first, three at most: the spelling
    // that is known for it, or the nearest ones to a name that isn't known.
    std::vector<std::wstring> suggestions;
    // The same as a question: "did you mean mm or Mm?".  Empty if there are none.
    std::wstring question;
    // What to type instead: "write 5 N m".  It says why where a division was read as a fraction,
    // and where a word isn't a unit here.  Empty if there is nothing to tell, or only the question.
    std::wstring hint;
    // Whole lines to type instead, the likeliest first, three at most: the text in each parses in
    // the same context and has a value.  None if nobody can tell what was meant, and for a text of
    // more than 1,000 characters.
    std::vector<std::wstring> corrections;
};

// What stands around a text in the line that was typed: "-> in" after "5 cm".
struct TextAround {
    std::wstring before{}; // what the line begins with; empty for nothing
    std::wstring after{};  // what it ends with
    // A correction whose value can't be shown in what this expects is none.
    Units::UnitContext display{};
    // By whose mark of decimals "1,500" or "1.500" in a text that is corrected may be fifteen
    // hundred; null for the settings that all values are shown by.
    Units::UnitDisplaySettings const * settings = nullptr;
};

// Explains `result`, which parsing `text` in `context` gave.  If there is a tree, the failure is
// that it has no value.  A result of another text gets some explanation.
VN_COMMONDATA_API FailureExplanation explainFailure(std::wstring const & text,
                                                    Units::UnitContext const & context,
                                                    ParseResult const & result,
                                                    TextAround const & around = {});
// The same for an expression.
VN_COMMONDATA_API FailureExplanation explainFailure(Expression const & expression,
                                                    TextAround const & around = {});

// Explains why `unit` isn't a unit, as UnitContext::parse reads them.  Corrections are lines with a
// unit of the dimension of `around.display`, if that expects one.  The outcome, the message and the
// position are those of "1 " and the text, in the place of `unit`.
VN_COMMONDATA_API FailureExplanation explainUnit(std::wstring const & unit,
                                                 TextAround const & around = {});

// The name of a reason, as the enumeration has it; empty for a number that isn't one.
VN_COMMONDATA_API char const * failureName(EParseFailure reason);

} // namespace Vn::Expressions

#endif
