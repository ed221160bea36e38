// The units after a number as people write them, rewritten as the language reads them.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_UNITGROUPINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_UNITGROUPINTERNAL_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "Server/CommonData/Expressions/LooseTextInternal.h"

namespace Vn::Expressions {

// What rewriting needs to know, and what it finds out.
struct RevisionNotes {
    // Which of several readings of a word is taken, from 0; the last if it has fewer.
    std::size_t alternative = 0;
    // What stands in front of decimals, and whether it does in "1,500" too if it is the other one,
    // so that this is one and a half rather than fifteen hundred.
    wchar_t decimalMark = L'.';
    bool areDecimals = false;
    // What to take for words that nothing is known of.
    std::map<std::wstring, std::wstring, std::less<>> guesses;

    // A word that no unit here has the meaning of, and the nearest; empty if there is none.
    std::wstring missing;
    std::wstring nearest;
    // A word that isn't a unit here but has one with a factor; empty if there is none.
    std::wstring scaled;
    // Words that nothing is known of.
    std::vector<std::wstring> unknown;
    std::vector<std::wstring> unknownFunctions;
    // Whether some word had more readings than the one that was taken.
    bool hasAlternatives = false;
    // Whether areDecimals makes a difference.
    bool hasGroups = false;
};

// Units that were read from pieces.
struct UnitGroup {
    std::size_t end = 0;  // the piece after the last
    std::wstring text;    // the units without those that have a factor below the line
    std::wstring factor;  // in front of them; empty for none
    std::wstring divisor; // a quantity to divide by; empty for none
    bool changed = false; // else the pieces are good as they stand
    bool good = false;    // whether all words are units
    bool tooLong = false; // more words than a person writes
};

// Reads the units that begin at `begin`; its end is `begin` if none do.
UnitGroup readUnits(Pieces const & pieces, std::size_t begin, RevisionNotes & notes);

} // namespace Vn::Expressions

#endif
