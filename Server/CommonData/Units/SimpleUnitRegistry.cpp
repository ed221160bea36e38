#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cmath>
#include <locale>
#include <optional>

#include "Platform/Base/CreationLock.h"
#include "Platform/Base/ScopedLock.h"
#include "Platform/Base/Shared.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

namespace {

// A reader or writer lock that is taken only where the host wants locks at all.
class RegistryLock {
public:
    RegistryLock(tbb::spin_rw_mutex & mutex, bool write) : m_locks(0, 2) {
        if (m_locks.isLocking()) m_lock.emplace(mutex, write);
    }

    void upgrade() {
        if (m_lock) m_lock->upgrade_to_writer();
    }

private:
    ScopedLockBase m_locks;
    std::optional<tbb::spin_rw_mutex::scoped_lock> m_lock;
};

} // namespace

SimpleUnitRegistry & SimpleUnitRegistry::get() {
    static constinit Shared<SimpleUnitRegistry> s_registry;
    return s_registry.get([] { return new SimpleUnitRegistry; });
}

void SimpleUnitRegistry::addUnit(SimpleUnit const * unit) { m_pending.push_back(unit); }

void SimpleUnitRegistry::ensureRegistered() {
    if (m_registered.load(std::memory_order_acquire)) return;
    CreationLock const lock(m_registration);
    if (m_registered.load(std::memory_order_relaxed)) return;
    for (SimpleUnit const * const unit : m_pending) registerUnit(unit);
    m_registered.store(true, std::memory_order_release);
}

SimpleUnitRegistry::Spelling & SimpleUnitRegistry::spelling(std::wstring const & text) {
    m_longestSpelling = std::max(m_longestSpelling, text.size());
    return m_spellings[text];
}

void SimpleUnitRegistry::registerUnit(SimpleUnit const * unit) {
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    auto const keep = [unit](SimpleUnit const *& slot) {
        if (!slot) slot = unit;
    };
    m_units.emplace(Key(unit->identifier(), unit->magnitude()), unit);
    keep(spelling(unit->name(settings)).byName);
    keep(spelling(unit->abbreviation(settings)).byAbbreviation);
    if (unit->hasSymbol()) keep(spelling(unit->symbol(settings)).bySymbol);
}

SimpleUnit const * SimpleUnitRegistry::findOrClone(std::string const * identifier,
                                                   double magnitude) {
    if (std::isnan(magnitude)) return nullptr; // equal to nothing, so it could be found as anything
    ensureRegistered();
    RegistryLock lock(m_mutex, false);
    Key const key(identifier, magnitude);
    if (auto const found = m_units.find(key); found != m_units.end()) return found->second;
    lock.upgrade();
    // Another thread may have been first while the lock changed hands.
    if (auto const found = m_units.find(key); found != m_units.end()) return found->second;
    SimpleUnit const * const clone = m_units.at(Key(identifier, 1.0))->clone(magnitude);
    if (clone) registerUnit(clone);
    return clone;
}

void SimpleUnitRegistry::allUnits(std::vector<SimpleUnit const *> & out) {
    ensureRegistered();
    RegistryLock const lock(m_mutex, false);
    out.reserve(out.size() + m_units.size());
    for (auto const & entry : m_units) out.push_back(entry.second);
}

SimpleUnit const * SimpleUnitRegistry::findExact(std::wstring_view text,
                                                 std::wstring_view * prefixOut) {
    ensureRegistered();
    RegistryLock const lock(m_mutex, false);
    // A tail longer than every spelling can't be one.
    std::size_t start = text.size() > m_longestSpelling ? text.size() - m_longestSpelling : 0;
    for (; start < text.size(); ++start) {
        auto const found = m_spellings.find(text.substr(start));
        if (found == m_spellings.end()) continue;
        if (prefixOut) *prefixOut = text.substr(0, start);
        return found->second.first();
    }
    return nullptr;
}

SimpleUnit const * SimpleUnitRegistry::findCaseInsensitive(std::wstring_view text) {
    ensureRegistered();
    RegistryLock const lock(m_mutex, false);
    if (text.size() > m_longestSpelling) return nullptr;
    std::locale const locale;
    // Found once, and not for each letter.
    auto const & letters = std::use_facet<std::ctype<wchar_t>>(locale);
    auto const isSameLetter = [&letters](wchar_t a, wchar_t b) {
        return a == b || letters.toupper(a) == letters.toupper(b);
    };
    SimpleUnit const * name = nullptr;
    SimpleUnit const * other = nullptr;
    bool ambiguous = false;
    auto const match = [&ambiguous](SimpleUnit const *& found, SimpleUnit const * unit) {
        if (!unit) return;
        if (found && found != unit) ambiguous = true;
        found = unit;
    };
    for (auto const & [spelled, units] : m_spellings) {
        if (spelled.size() != text.size() || !boost::algorithm::equals(spelled, text, isSameLetter))
            continue;
        // Two names that differ in case alone are two matches, even of one unit.
        if (units.byName && name) ambiguous = true;
        match(name, units.byName);
        match(other, units.byAbbreviation);
        match(other, units.bySymbol);
    }
    if (ambiguous || (name && other && name != other)) return nullptr;
    SimpleUnit const * const found = name ? name : other;
    return found && !found->supportsMagnitude() ? found : nullptr;
}

SimpleUnit const * SimpleUnitRegistry::findEquivalentSimpleUnit(ComplexUnit const & units) {
    std::vector<SimpleUnit const *> all;
    allUnits(all);
    for (SimpleUnit const * const unit : all)
        if (unit->magnitude() == 1.0 && unit->asComplexUnit().isDimensionallyEquivalent(&units))
            return unit;
    return nullptr;
}

} // namespace Vn::Units
