// What a word that people type for a unit, a function or a constant means.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_RESPELLINGINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_RESPELLINGINTERNAL_H

#include <string>
#include <string_view>
#include <vector>

namespace Vn::Expressions {

// What a word may be.
enum class ERespelling { Unit, Metric, Odd, Missing, Function, Constant };

// A reading of a word.
struct Respelling {
    ERespelling kind;
    // The spellings that work, the likeliest first: units such as "kW hr", a function or a
    // constant.  Of what is missing the nearest that there is; none if there is nothing.
    std::vector<std::wstring> wanted;
    // How many of the wanted unit the typed one is; empty for one.
    std::wstring factor;
};

// Whether `word` is the spelling of a unit, with or without a prefix.
bool isUnitWord(std::wstring_view word);

// Whether `word` is of the language but is seldom meant as the language reads it.
bool isOddWord(std::wstring_view word);

// What `typed` means: a word that isn't of the language, or words with a sign or a blank between
// them.  False if that isn't known.  The cost doesn't grow with the length of a long word.
bool findRespelling(std::wstring_view typed, Respelling & respelling);

// How many words the longest row has.
inline constexpr std::size_t c_respelledWords = 2;

} // namespace Vn::Expressions

#endif
