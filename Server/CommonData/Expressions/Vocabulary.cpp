#include "Server/CommonData/Expressions/Vocabulary.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Platform/Base/PerLanguage.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Expressions {

using Units::SimpleUnit;
using Units::UnitDisplaySettings;

namespace {

constexpr std::size_t c_suggestions = 3;

// "mm2" for "mm^2".
std::wstring asPower(std::wstring_view name) {
    std::size_t end = name.size();
    while (end > 0 && Text::isDigit(static_cast<char32_t>(name[end - 1]))) --end;
    if (end == 0 || end == name.size() || name.size() - end > 2) return {};
    if (!Vocabulary::isKnown(name.substr(0, end))) return {};
    return std::wstring(name.substr(0, end)) + L'^' + std::wstring(name.substr(end));
}

} // namespace

Vocabulary const & Vocabulary::get() {
    static constinit PerLanguage<Vocabulary> s_vocabulary;
    return s_vocabulary.get([] { return new Vocabulary; });
}

Vocabulary::Vocabulary() {
    Tokens const & tokens = *Tokens::get();
    for (EToken const token : c_functionTokens) add(tokens.getString(token), EKind::Function);
    for (int token = e_PI_CONSTANT; token <= e_SPEED_OF_LIGHT_CONSTANT; ++token)
        add(tokens.getString(static_cast<EToken>(token)), EKind::Constant);
    addUnits();
    std::stable_sort(m_words.begin(), m_words.end(),
                     [](Word const & a, Word const & b) { return a.kind < b.kind; });
}

void Vocabulary::addUnits() {
    Tokens const & tokens = *Tokens::get();
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    for (SimpleUnit const * const unit : Units::listUnits()) {
        if (unit->magnitude() != 1.0) continue;
        std::wstring const name = unit->name(settings);
        std::wstring const abbreviation = unit->abbreviation(settings);
        add(name, EKind::Unit);
        if (abbreviation != name) add(abbreviation, EKind::Unit);
        if (unit->hasSymbol()) add(unit->symbol(settings), EKind::Unit);
        if (!unit->supportsMagnitude()) continue;
        // A long prefix is followed by its short one.
        for (int token = e_EXA; token <= e_ATTO; ++token) {
            auto const prefix = static_cast<EToken>(token);
            if (token == e_DECA_RESERVED) continue;
            std::wstring const & text = tokens.getString(prefix);
            bool const isLong =
                token < e_DECA_RESERVED ? (token - e_EXA) % 2 == 0 : (token - e_DECI) % 2 == 0;
            add(text + (isLong ? name : abbreviation), EKind::PrefixedUnit,
                tokens.getMagnitudeValue(prefix));
        }
    }
}

void Vocabulary::add(std::wstring const & text, EKind kind, double magnitude) {
    // A unit may have a spelling that no text can hold as one word.
    if (text.empty() || Tokens::get()->invalidNameCharsInStr(text, true)) return;
    m_words.push_back({text, kind, magnitude});
    m_longest = std::max(m_longest, text.size());
}

bool Vocabulary::isKnown(std::wstring_view name) {
    Tokens const & tokens = *Tokens::get();
    if (tokens.getFunctionToken(name) != e_NONE || tokens.getConstantToken(name) != e_NONE)
        return true;
    std::wstring_view prefix;
    SimpleUnit const * const unit = Units::findUnit(name, &prefix);
    if (unit && (prefix.empty() ||
                 (unit->supportsMagnitude() && tokens.getMagnitudeToken(prefix) != e_NONE)))
        return true;
    return Units::findUnitInAnyCase(name) != nullptr;
}

std::vector<std::wstring> Vocabulary::nearest(std::wstring_view name) const {
    std::size_t const allowed = Spelling::allowedMistakes(name.size());
    if (name.size() > m_longest + allowed) return {};
    if (std::wstring const power = asPower(name); !power.empty()) return {power};

    std::vector<Word const *> found = Spelling::nearest(name, m_words, allowed, &Word::text);
    if (found.empty() && name.size() >= 2) {
        // "lb" for "lbmass" and "lbforce".
        for (Word const & word : m_words)
            if (word.kind != EKind::PrefixedUnit && word.text.size() > name.size() &&
                Text::foldedEqual(std::wstring_view(word.text).substr(0, name.size()), name))
                found.push_back(&word);
    }
    // Of words that are equally near, one with a common prefix is likelier to be meant.
    std::stable_sort(found.begin(), found.end(), [](Word const * a, Word const * b) {
        return std::fabs(std::log10(a->magnitude)) < std::fabs(std::log10(b->magnitude));
    });
    std::vector<std::wstring> texts;
    for (Word const * const word : found) {
        if (texts.size() == c_suggestions) break;
        if (std::find(texts.begin(), texts.end(), word->text) == texts.end())
            texts.push_back(word->text);
    }
    return texts;
}

} // namespace Vn::Expressions
