#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/RespellingInternal.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Expressions {

namespace {

struct Row {
    ERespelling kind;
    wchar_t const * typed;
    wchar_t const * wanted;
    wchar_t const * factor;
};

constexpr Row c_rows[] = {
#define VN_RESPELLED(kind, typed, wanted, factor) {ERespelling::kind, typed, wanted, factor},
#include "Server/CommonData/Expressions/Respellings.inc"
};

constexpr std::size_t c_shortestInAnyCase = 3;

constexpr std::size_t c_longestTyped = [] {
    std::size_t longest = 0;
    for (Row const & row : c_rows) longest = std::max(longest, std::wstring_view(row.typed).size());
    return longest + 6; // a prefix
}();

wchar_t folded(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

std::wstring folded(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](wchar_t c) { return folded(c); });
    return result;
}

class Table {
public:
    static Table const & get() {
        static constinit Shared<Table> s_table;
        return s_table.get([] { return new Table; });
    }

    Row const * find(std::wstring_view typed) const {
        auto const found = m_exact.find(typed);
        return found == m_exact.end() ? nullptr : found->second;
    }

    Row const * findInAnyCase(std::wstring_view typed) const {
        if (typed.size() < c_shortestInAnyCase) return nullptr;
        auto const found = m_folded.find(folded(typed));
        return found == m_folded.end() ? nullptr : found->second;
    }

    // The row of `typed` after a prefix, which goes into `prefix` as the language has it.
    Row const * findMetric(std::wstring_view typed, std::wstring & prefix) const {
        std::size_t taken = 0;
        for (std::size_t length = 1; length < typed.size() && length <= c_longestPrefix; ++length) {
            std::wstring const spelled = prefixOf(typed.substr(0, length));
            if (spelled.empty()) continue;
            Row const * const row = find(typed.substr(length));
            if (row && row->kind == ERespelling::Metric) {
                prefix = spelled;
                taken = length;
            }
        }
        return taken > 0 ? find(typed.substr(taken)) : nullptr;
    }

    // The prefix of the language that `typed` stands for; empty for none.
    std::wstring prefixOf(std::wstring_view typed) const {
        Tokens const & tokens = *Tokens::get();
        if (typed == L"u" || typed == L"\u00B5" || typed == L"\u03BC")
            return tokens.getString(e_MICRO);
        if (tokens.getMagnitudeToken(typed) != e_NONE) return std::wstring(typed);
        auto const found = m_prefixes.find(typed);
        return found == m_prefixes.end() ? std::wstring() : tokens.getString(found->second);
    }

    // The function or constant whose English name `typed` is, exactly or else in any case; e_NONE
    // if none is.
    EToken findName(std::wstring_view typed) const {
        if (auto const found = m_names.find(typed); found != m_names.end()) return found->second;
        if (typed.size() < c_shortestInAnyCase) return e_NONE;
        auto const found = m_foldedNames.find(folded(typed));
        return found == m_foldedNames.end() ? e_NONE : found->second;
    }

private:
    static constexpr std::size_t c_longestPrefix = 5;

    Table() {
        for (Row const & row : c_rows) m_exact.emplace(row.typed, &row);
        for (Row const & row : c_rows)
            if (std::wstring_view(row.typed).size() >= c_shortestInAnyCase)
                m_folded.emplace(folded(row.typed), &row);
        for (EToken const token : c_functionTokens) addName(token);
        for (int token = e_PI_CONSTANT; token <= e_SPEED_OF_LIGHT_CONSTANT; ++token)
            addName(static_cast<EToken>(token));
        for (EToken const token : Tokens::fullMagnitudes())
            m_prefixes.emplace(Tokens::defaultString(token), token);
    }

    void addName(EToken token) {
        std::wstring_view const name = Tokens::defaultString(token);
        m_names.emplace(name, token);
        m_foldedNames.emplace(folded(name), token);
    }

    template <class Key, class Value>
    using Map = std::unordered_map<Key, Value, Text::Hash, std::equal_to<>>;

    Map<std::wstring_view, Row const *> m_exact;
    Map<std::wstring, Row const *> m_folded;
    // The words in English, which are those of the rows whatever the user's language is.
    Map<std::wstring_view, EToken> m_names;
    Map<std::wstring, EToken> m_foldedNames;
    Map<std::wstring_view, EToken> m_prefixes;
};

void takeName(EToken token, Respelling & respelling) {
    bool const isFunction = functionOfToken(token).has_value();
    respelling.kind = isFunction ? ERespelling::Function : ERespelling::Constant;
    respelling.factor.clear();
    respelling.wanted = {Tokens::get()->getString(token)};
}

void take(Row const & row, std::wstring const & prefix, Respelling & respelling) {
    if (EToken const name = Table::get().findName(row.wanted);
        name != e_NONE &&
        (row.kind == ERespelling::Function || row.kind == ERespelling::Constant)) {
        takeName(name, respelling);
        return;
    }
    respelling.kind = row.kind;
    respelling.factor = row.factor;
    respelling.wanted.clear();
    std::wstring_view wanted(row.wanted);
    while (!wanted.empty()) {
        std::size_t const end = std::min(wanted.find(L'|'), wanted.size());
        respelling.wanted.push_back(prefix + std::wstring(wanted.substr(0, end)));
        wanted.remove_prefix(std::min(end + 1, wanted.size()));
    }
}

void takeUnit(std::wstring text, Respelling & respelling) {
    respelling.kind = ERespelling::Unit;
    respelling.factor.clear();
    respelling.wanted = {std::move(text)};
}

// "ugram" and the like, and "centimeter" where the language has another word for "centi".
bool findPrefixed(std::wstring_view typed, Respelling & respelling) {
    std::wstring_view prefix;
    Units::SimpleUnit const * const unit = Units::findUnit(typed, &prefix);
    if (!unit || !unit->supportsMagnitude() || unit->magnitude() != 1.0) return false;
    std::wstring const spelled = Table::get().prefixOf(prefix);
    if (spelled.empty() || spelled == prefix) return false;
    takeUnit(spelled + unit->name(Units::UnitDisplaySettings::standard()), respelling);
    return true;
}

// "kilometers".
bool findPlural(std::wstring_view typed, Respelling & respelling) {
    constexpr std::size_t c_shortest = 4;
    if (typed.size() < c_shortest || folded(typed.back()) != L's') return false;
    std::wstring_view const singular = typed.substr(0, typed.size() - 1);
    if (isUnitWord(singular)) {
        takeUnit(std::wstring(singular), respelling);
        return true;
    }
    // Only the first letters of names are ever typed in another case.
    std::wstring small = folded(singular);
    if (!isUnitWord(small)) return findPrefixed(small, respelling);
    takeUnit(std::move(small), respelling);
    return true;
}

} // namespace

bool isUnitWord(std::wstring_view word) {
    if (word.find(L'_') != word.npos) return false; // it can be shown but not typed
    Tokens const & tokens = *Tokens::get();
    std::wstring_view prefix;
    Units::SimpleUnit const * const unit = Units::findUnit(word, &prefix);
    if (unit && (prefix.empty() ||
                 (unit->supportsMagnitude() && tokens.getMagnitudeToken(prefix) != e_NONE)))
        return true;
    return Units::findUnitInAnyCase(word) != nullptr;
}

bool isOddWord(std::wstring_view word) {
    Row const * const row = word.size() > c_longestTyped ? nullptr : Table::get().find(word);
    return row && row->kind == ERespelling::Odd;
}

bool findRespelling(std::wstring_view typed, Respelling & respelling) {
    if (typed.empty() || typed.size() > c_longestTyped) return false;
    Table const & table = Table::get();
    if (Row const * const row = table.find(typed)) {
        take(*row, {}, respelling);
        return true;
    }
    std::wstring prefix;
    if (Row const * const row = table.findMetric(typed, prefix)) {
        take(*row, prefix, respelling);
        return true;
    }
    if (findPrefixed(typed, respelling)) return true;
    if (Row const * const row = table.findInAnyCase(typed)) {
        take(*row, {}, respelling);
        return true;
    }
    // A name of the language itself needs no other spelling.
    EToken const name = table.findName(typed);
    if (name != e_NONE && Tokens::get()->getString(name) != Tokens::defaultString(name)) {
        takeName(name, respelling);
        return true;
    }
    return findPlural(typed, respelling);
}

} // namespace Vn::Expressions
