// Every spelling of the expression language: operators, constants, prefixes, function names and
// the few unit words that the tokenizers know themselves.
//
// Words come from the string table "VnCommonData", so a translation of the table changes what the
// user types and reads.  They are read once for each language, when the object is first asked for
// in it; no thread may parse or show expressions while the language changes.  Lookups compare
// exactly: "pi" isn't a constant.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_TOKENS_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_TOKENS_H

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Export.h"

namespace Vn::Units {
class ComplexUnit;
class SimpleUnit;
} // namespace Vn::Units

namespace Vn::Expressions {

// The signs and words by their numbers.
enum EToken {
#define VN_TOKEN(number, name, text) e_##name = number,
#include "Server/CommonData/Expressions/Tokens.inc"
};

// How many numbers there are.
inline constexpr int c_tokens = [] {
    int greatest = 0;
#define VN_TOKEN(number, name, text) greatest = std::max(greatest, number);
#include "Server/CommonData/Expressions/Tokens.inc"
    return greatest + 1;
}();

class VN_COMMONDATA_API Tokens {
public:
    // The one vocabulary of the process in the present language.  References to that of an earlier
    // language stay valid.
    static Tokens * get();

    // The text of a token; empty for e_NONE and e_DECA_RESERVED, which have none.
    std::wstring const & getString(EToken token) const { return m_strings[token]; }

    // The text in the system's own language, English, whatever the user's is.
    static std::wstring_view defaultString(EToken token);

    // Whether `text` holds the token's text at `position`, whatever follows; stores the length of
    // the token's text in `length` if so.
    bool matchesToken(std::wstring_view text, std::size_t position, EToken token,
                      std::size_t & length) const;
    // The same for callers that count in 32 bits.
    bool matchesToken(std::wstring_view text, unsigned position, EToken token,
                      unsigned & length) const;

    // The token of that kind whose whole text is `text`; e_NONE if there is none.
    EToken getConstantToken(std::wstring_view text) const;
    EToken getFunctionToken(std::wstring_view text) const;
    EToken getMagnitudeToken(std::wstring_view text) const;

    // The value of a constant, in internal units.  The token must be a constant.
    double getConstantValue(EToken token) const;
    // Assigns the units of a constant.  The token must be a constant.
    void getConstantUnits(Units::ComplexUnit * units, EToken token) const;
    // The units of a constant: shared and complete.
    Units::ComplexUnit const & constantUnits(EToken token) const;
    // The multiplier of a prefix.  The token must be a prefix.
    double getMagnitudeValue(EToken token) const;
    // The prefixes in full, from exa to atto; and that of a multiplier, which must be exact, or
    // e_NONE.  The short form of each is the token behind it.
    static std::span<EToken const> fullMagnitudes();
    static EToken fullMagnitude(double magnitude);

    // The unit that a word names, with or without a prefix; null if none.  A unit that takes
    // prefixes must be written in its exact case; another is also found in any case.
    Units::SimpleUnit const * findMatchingUnit(std::wstring_view name) const;

    // Walks from `position` as far as a name reaches and leaves it there.  True if something in
    // the text ends the name, or no name starts here (the position is unmoved then), or the
    // position is at or after the end; false if the name reaches to the end of the text.  With
    // `allowSymbols` the symbols of degree, dollar and micron belong to names.
    bool invalidNameCharsInStr(std::wstring_view text, std::size_t & position,
                               bool allowSymbols) const;
    // The same from the beginning; and for callers that count in 32 bits, with the largest such
    // number for a position beyond.
    bool invalidNameCharsInStr(std::wstring_view text, bool allowSymbols) const;
    bool invalidNameCharsInStr(std::wstring_view text, unsigned & position,
                               bool allowSymbols) const;

    // Works out the units of the constants.  One of the module's initialisers.
    static void initializeConstantUnits();

private:
    Tokens();

    void initStrings();
    void initString(EToken token, std::wstring const & text);
    void buildReverseMap();
    EToken tokenFromString(std::wstring_view text, EToken low, EToken high) const;
    template <typename Condition>
    EToken tokenFromString(std::wstring_view text, Condition isWanted) const;
    void tokensFromString(std::wstring_view text, std::vector<EToken> & tokens) const;
    bool isNameBreak(wchar_t c, bool allowSymbols) const;

    std::array<std::wstring, c_tokens> m_strings;
    // Several tokens may share a text; each list rises.
    std::unordered_map<std::wstring, std::vector<EToken>, Text::Hash, std::equal_to<>> m_tokens;
    std::size_t m_longest = 0;
};

} // namespace Vn::Expressions

#endif
