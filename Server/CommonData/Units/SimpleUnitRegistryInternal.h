// The one table of simple units: it collects the catalogue objects as they are constructed, makes
// and keeps every clone with a magnitude, finds a unit from a text, and lists all units in order.
//
// Invariants
//   (R1) One class and one magnitude are one object; units can be compared by pointer.
//   (R2) Nothing registered is ever replaced or removed: where a key is taken, the first stays.
//   (R3) Registration of the catalogue waits for the first lookup, since the keys of a unit come
//        from the language of the expressions and from the display settings.
//
// A lookup costs no more than the longest known spelling, however long the text is.  All
// operations may be called from any thread: lookups share a reader lock, and making a clone takes
// the same lock for writing.

#ifndef VN_SERVER_COMMONDATA_UNITS_SIMPLEUNITREGISTRYINTERNAL_H
#define VN_SERVER_COMMONDATA_UNITS_SIMPLEUNITREGISTRYINTERNAL_H

#include <atomic>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tbb/spin_rw_mutex.h>

#include "Platform/Base/SpinLock.h"
#include "Platform/Base/Text.h"

namespace Vn::Units {

class ComplexUnit;
class SimpleUnit;

class SimpleUnitRegistry {
public:
    // The one registry of the process.
    static SimpleUnitRegistry & get();

    // Called by the constructor of each catalogue object.
    void addUnit(SimpleUnit const * unit);

    // The unit of that class and magnitude, compared exactly.  Null for a magnitude other than 1.0
    // of a class that doesn't support magnitudes.
    SimpleUnit const * findOrClone(std::string const * identifier, double magnitude);

    // Appends every unit, clones included, ordered by class in catalogue order and by magnitude.
    void allUnits(std::vector<SimpleUnit const *> & out);

    // The unit whose name, abbreviation or symbol is the longest tail of `text`; `prefixOut`, if
    // given, receives what stands in front of it.  Null if no tail is a unit.
    SimpleUnit const * findExact(std::wstring_view text, std::wstring_view * prefixOut);

    // The only unit that `text` spells in any case, if it takes no prefixes; else null.
    SimpleUnit const * findCaseInsensitive(std::wstring_view text);

    // The first unit of the catalogue with the dimension of `units`; null if there is none.
    SimpleUnit const * findEquivalentSimpleUnit(ComplexUnit const & units);

private:
    // What one spelling stands for; a name goes before an abbreviation before a symbol.
    struct Spelling {
        SimpleUnit const * byName = nullptr;
        SimpleUnit const * byAbbreviation = nullptr;
        SimpleUnit const * bySymbol = nullptr;

        SimpleUnit const * first() const {
            return byName ? byName : byAbbreviation ? byAbbreviation : bySymbol;
        }
    };

    using Key = std::pair<std::string const *, double>;

    SimpleUnitRegistry() = default;

    void ensureRegistered();
    void registerUnit(SimpleUnit const * unit);
    Spelling & spelling(std::wstring const & text);

    std::map<Key, SimpleUnit const *> m_units;
    std::unordered_map<std::wstring, Spelling, Text::Hash, std::equal_to<>> m_spellings;
    std::size_t m_longestSpelling = 0;
    std::vector<SimpleUnit const *> m_pending;
    std::atomic<bool> m_registered = false;
    SpinLock m_registration;
    tbb::spin_rw_mutex m_mutex;
};

} // namespace Vn::Units

#endif
