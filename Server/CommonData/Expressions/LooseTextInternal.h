// A refused text taken apart as a person means it, rather than as the language reads it: other
// digits, signs and quotes than those of the language, and numbers with separators in them.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_LOOSETEXTINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_LOOSETEXTINTERNAL_H

#include <string>
#include <string_view>
#include <vector>

namespace Vn::Expressions {

// What a piece of such a text is.
enum class EPiece {
    Number, // digits, with the separators of thousands taken out; or a fraction that the language
            // reads as one number
    Word,   // letters and digits, or a sign of money or degrees
    Sign,   // anything else: one character, but "**" is "^"; feet and inches are ' and "
    Unit,   // the units of a number, as they are written
    Whole   // a piece that no rule looks into any more: a quantity, or a name
};

// A piece, spelled with the characters of the language.
struct Piece {
    EPiece kind;
    std::wstring text;
    bool blankBefore = false;
    std::wstring decimal{}; // the number as typed if its separator may be that of decimals
    bool raised = false;    // written as a superscript
    bool dot = false;       // "*" that was written as a dot in the middle
    bool quantity = false;  // a number with its units
    bool sum = false;       // a sum, which may need brackets

    bool is(EPiece wanted, std::wstring_view wantedText) const {
        return kind == wanted && text == wantedText;
    }
    bool isSign(std::wstring_view wantedText) const { return is(EPiece::Sign, wantedText); }
};

using Pieces = std::vector<Piece>;

// The pieces of a text.  The cost is linear.
Pieces takenApart(std::wstring_view text);

// The text that pieces make.
std::wstring putTogether(Pieces const & pieces);

// The character that a raised one stands for: L'2' for a superscript two; 0 for all others.
wchar_t raised(wchar_t c);

// Whether `text` is digits, at least one.
bool areDigits(std::wstring_view text);

} // namespace Vn::Expressions

#endif
