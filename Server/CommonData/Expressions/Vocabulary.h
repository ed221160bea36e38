// The words that an expression may hold, as they can be typed: functions, constants, and units with
// every prefix.  For suggestions and completion; looking a word up here makes no units.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_VOCABULARY_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_VOCABULARY_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Server/CommonData/Export.h"

namespace Vn::Expressions {

class VN_COMMONDATA_API Vocabulary {
public:
    // What a word is.
    enum class EKind { Function, Constant, Unit, PrefixedUnit };

    // A word of the language.
    struct Word {
        std::wstring text;      // as it is typed
        EKind kind;             // what it is
        double magnitude;       // of the prefix; 1 without one
        std::size_t prefix = 0; // how many characters the prefix has
    };

    // Where a name stands, which tells what it can be.
    enum class EPlace {
        Any,     // where an expression may begin, as after "+"
        Unit,    // after a number or a unit
        Function // in front of an opening bracket
    };

    // Made when first asked for in the present language.
    static Vocabulary const & get();

    // In the order functions, constants, units by the catalogue, and these with each prefix.
    std::vector<Word> const & words() const { return m_words; }

    // Whether an expression may hold `name` at all.
    static bool isKnown(std::wstring_view name);

    // The known spellings nearest to a name that isn't known, of what can stand at `place`, the
    // likeliest first, three at most.  None if nothing is so near that it is likelier than chance:
    // a short name must be right but for its case.  The cost doesn't grow with the length of a long
    // name.
    std::vector<std::wstring> nearest(std::wstring_view name, EPlace place = EPlace::Any) const;

private:
    Vocabulary();

    void add(std::wstring const & text, EKind kind, double magnitude = 1.0, std::size_t prefix = 0);
    void addUnits();
    std::vector<Word const *> completions(std::wstring_view name, EPlace place) const;

    std::vector<Word> m_words;
    std::size_t m_longest = 0;
};

} // namespace Vn::Expressions

#endif
