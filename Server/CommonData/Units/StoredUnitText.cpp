#include "Server/CommonData/Units/StoredUnitTextInternal.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitListTextInternal.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Units::StoredUnitText {

namespace {

using Expressions::Tokens;

// The units of the catalogue by their full names, without prefixes.
class Names {
public:
    static Names const & get() {
        static constinit Shared<Names const> s_names;
        return s_names.get([] { return new Names; });
    }

    // The unit that is written like this, with or without a prefix; null if none is.
    SimpleUnit const * find(std::wstring_view text) const {
        if (text.size() > m_longest) return nullptr;
        if (auto const found = m_units.find(text); found != m_units.end()) return found->second;
        for (Expressions::EToken const prefix : Tokens::fullMagnitudes()) {
            std::wstring_view const word = Tokens::defaultString(prefix);
            if (!text.starts_with(word)) continue;
            auto const found = m_units.find(text.substr(word.size()));
            if (found == m_units.end() || !found->second->supportsMagnitude()) continue;
            return SimpleUnitRegistry::get().findOrClone(found->second->identifier(),
                                                         Tokens::get()->getMagnitudeValue(prefix));
        }
        return nullptr;
    }

private:
    Names() {
        for (SimpleUnit const * const unit : listUnits()) {
            if (unit->magnitude() != 1.0) continue;
            std::wstring name = unit->defaultName();
            m_longest = std::max(m_longest, name.size());
            m_units.emplace(std::move(name), unit);
        }
        std::size_t longestPrefix = 0;
        for (Expressions::EToken const prefix : Tokens::fullMagnitudes())
            longestPrefix = std::max(longestPrefix, Tokens::defaultString(prefix).size());
        m_longest += longestPrefix;
    }

    std::unordered_map<std::wstring, SimpleUnit const *, Text::Hash, std::equal_to<>> m_units;
    std::size_t m_longest = 0;
};

// Takes units from the front of a text.
class Reader {
public:
    explicit Reader(std::wstring_view text) : m_rest(text) {}

    bool read(ComplexUnit & out) {
        if (!m_rest.starts_with(L'/')) {
            if (!readList(out, false)) return false;
            if (m_rest.empty()) return true;
            if (!take(L' ')) return false;
        }
        if (!take(L'/') || !take(L' ')) return false;
        if (!take(L'(')) return readUnit(out, true) && m_rest.empty();
        return readList(out, true) && take(L')') && m_rest.empty();
    }

private:
    bool take(wchar_t c) {
        if (!m_rest.starts_with(c)) return false;
        m_rest.remove_prefix(1);
        return true;
    }

    // Units with single blanks between them, to the end or to what can't follow in the list.
    bool readList(ComplexUnit & out, bool inDenominator) {
        do {
            if (!readUnit(out, inDenominator)) return false;
        } while (m_rest.size() > 1 && m_rest[0] == L' ' && m_rest[1] != L'/' && take(L' '));
        return true;
    }

    bool readUnit(ComplexUnit & out, bool inDenominator) {
        std::size_t const length = std::min(m_rest.find_first_of(L" ^/()"), m_rest.size());
        SimpleUnit const * const unit = Names::get().find(m_rest.substr(0, length));
        if (!unit) return false;
        m_rest.remove_prefix(length);
        std::size_t power = 1;
        if (take(L'^') && !readPower(power)) return false;
        if (power > Limits::c_unitFactors - out.factors()) return false;
        for (std::size_t i = 0; i < power; ++i)
            inDenominator ? out.addToDenominator(unit) : out.addToNumerator(unit);
        return true;
    }

    bool readPower(std::size_t & power) {
        std::size_t digits = 0;
        power = 0;
        for (; digits < m_rest.size() && m_rest[digits] >= L'0' && m_rest[digits] <= L'9'; ++digits)
            power = std::min(power * 10 + static_cast<std::size_t>(m_rest[digits] - L'0'),
                             Limits::c_unitFactors + 1);
        bool const written = digits > 0 && m_rest[0] != L'0' && power > 1;
        m_rest.remove_prefix(digits);
        return written;
    }

    std::wstring_view m_rest;
};

} // namespace

std::wstring write(ComplexUnit const & units) {
    SimpleUnit const * lone = nullptr;
    if (units.isSimpleUnit(&lone)) return lone->defaultName();
    std::wstring text;
    if (!units.isUnitless())
        UnitListText::append(
            text, units, UnitDisplaySettings::get().compressUnits(),
            [](std::wstring & to, SimpleUnit const & unit) { to += unit.defaultName(); });
    return text;
}

bool read(std::wstring_view text, ComplexUnit & out) {
    ComplexUnit units;
    if (!text.empty() && !Reader(text).read(units)) return false;
    out = units;
    return true;
}

} // namespace Vn::Units::StoredUnitText
