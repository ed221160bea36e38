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

// One letter may be meant for anything.
constexpr std::size_t c_shortestName = 2;
// The shortest name that can be mistyped and still be recognised, and the shortest that can be the
// beginning of another.
constexpr std::size_t c_shortestMistyped = 4;
constexpr std::size_t c_shortestFunction = 3;
constexpr std::size_t c_shortestBeginning = 4;

bool isPossible(Vocabulary::EKind kind, Vocabulary::EPlace place) {
    bool const isUnit = kind == Vocabulary::EKind::Unit || kind == Vocabulary::EKind::PrefixedUnit;
    switch (place) {
    case Vocabulary::EPlace::Any:
        return kind != Vocabulary::EKind::Function;
    case Vocabulary::EPlace::Unit:
        return isUnit;
    case Vocabulary::EPlace::Function:
        return kind == Vocabulary::EKind::Function;
    }
    return false;
}

// Whether the first letters are alike: people seldom mistype the first, and then swap two.
bool beginAlike(std::wstring_view a, std::wstring_view b) {
    if (Text::foldedEqual(a.substr(0, 1), b.substr(0, 1))) return true;
    return a.size() > 1 && b.size() > 1 && Text::foldedEqual(a.substr(0, 1), b.substr(1, 1)) &&
           Text::foldedEqual(a.substr(1, 1), b.substr(0, 1));
}

// How many mistakes `name` may have if it was meant to be `word`.  A prefix that is right says
// nothing of the rest.
std::size_t allowedFor(std::wstring_view name, Vocabulary::Word const & word) {
    std::size_t const shortest =
        word.kind == Vocabulary::EKind::Function ? c_shortestFunction : c_shortestMistyped;
    if (name.size() < shortest || word.text.size() < shortest + word.prefix ||
        !beginAlike(name, word.text))
        return 0;
    std::size_t const length = std::min(name.size(), word.text.size() - word.prefix);
    return Spelling::allowedMistakes(std::max(length, c_shortestMistyped));
}

bool hasDigit(std::wstring_view name) {
    return std::any_of(name.begin(), name.end(),
                       [](wchar_t c) { return Text::isDigit(static_cast<char32_t>(c)); });
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
                tokens.getMagnitudeValue(prefix), text.size());
        }
    }
}

void Vocabulary::add(std::wstring const & text, EKind kind, double magnitude, std::size_t prefix) {
    // A unit may have a spelling that no text can hold as one word.
    if (text.empty() || Tokens::get()->invalidNameCharsInStr(text, true)) return;
    m_words.push_back({text, kind, magnitude, prefix});
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

std::vector<Vocabulary::Word const *> Vocabulary::completions(std::wstring_view name,
                                                              EPlace place) const {
    std::vector<Word const *> found;
    if (name.size() < c_shortestBeginning) return found;
    for (Word const & word : m_words)
        if (word.kind != EKind::PrefixedUnit && word.text.size() > name.size() &&
            isPossible(word.kind, place) &&
            Text::foldedEqual(std::wstring_view(word.text).substr(0, name.size()), name))
            found.push_back(&word);
    return found;
}

std::vector<std::wstring> Vocabulary::nearest(std::wstring_view name, EPlace place) const {
    if (name.size() < c_shortestName || hasDigit(name) ||
        name.size() > m_longest + Spelling::allowedMistakes(name.size()))
        return {};
    std::vector<Word const *> found;
    std::size_t least = name.size();
    for (Word const & word : m_words) {
        if (!isPossible(word.kind, place)) continue;
        std::size_t const allowed = std::min(least, allowedFor(name, word));
        auto const [shorter, longer] = std::minmax({name.size(), word.text.size()});
        if (longer - shorter > allowed) continue;
        if (allowed == 0) {
            if (!Text::foldedEqual(name, word.text)) continue;
            if (least > 0) found.clear();
            least = 0;
            found.push_back(&word);
            continue;
        }
        std::size_t const count = Spelling::mistakes(name, word.text);
        if (count > allowed) continue;
        if (count < least) found.clear();
        least = count;
        found.push_back(&word);
    }
    if (found.empty()) found = completions(name, place);
    // Of words that are equally near, one with a common prefix is likelier to be meant.
    std::stable_sort(found.begin(), found.end(), [](Word const * a, Word const * b) {
        return std::fabs(std::log10(a->magnitude)) < std::fabs(std::log10(b->magnitude));
    });
    std::vector<std::wstring> texts;
    for (Word const * const word : found)
        if (std::find(texts.begin(), texts.end(), word->text) == texts.end())
            texts.push_back(word->text);
    // Among many that are equally near, one is no better than another.
    if (texts.size() > c_suggestions) texts.clear();
    return texts;
}

} // namespace Vn::Expressions
