// What to type instead of a text that is refused.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_CORRECTIONSINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_CORRECTIONSINTERNAL_H

#include <string>
#include <string_view>
#include <vector>

#include "Server/CommonData/Expressions/ParseResult.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

struct Corrections {
    // Whole texts that parse and have a value, the likeliest first.
    std::vector<std::wstring> texts;
    // What to write instead of the piece at fault alone; none where that isn't all there is to do.
    std::vector<std::wstring> words;
    // Whether a word was guessed by its spelling, rather than known.
    bool guessed = false;
    // A word that isn't a unit here, and the nearest unit; empty for none.
    std::wstring missing;
    std::wstring nearest;
    // The same for a word that a correction writes as so much of another unit.
    std::wstring scaled;
};

// What a unit is read after: it is one of it.
inline constexpr std::wstring_view c_one = L"1 ";

// What is asked of a correction beside that it has a value.
struct CorrectionDemands {
    // It can be shown in what this expects.
    Units::UnitContext const & display;
    // Which mark of decimals the person is used to.
    Units::UnitDisplaySettings const & settings;
    // It is c_one and a unit, of which the unit is given.
    bool isUnit = false;
};

// Finds the corrections of `text`, which parsing in `context` refused with `result`.  A long text
// has none.
Corrections findCorrections(std::wstring const & text, Units::UnitContext const & context,
                            ParseResult const & result, CorrectionDemands const & demands);

} // namespace Vn::Expressions

#endif
