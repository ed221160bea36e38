#include "Console/Conversion.h"

#include <algorithm>
#include <vector>

#include "Console/Evaluation.h"
#include "Console/Failure.h"
#include "Console/Messages.h"
#include "Console/Terminal/Excerpt.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

using Expressions::EResult;
using Expressions::explainFailure;
using Expressions::explainUnit;
using Expressions::Expression;
using Expressions::FailureExplanation;
using Expressions::TextAround;
using Units::UnitContext;

namespace {

// No text that a person means has more, and each may cost a parse.
constexpr std::size_t c_mostPlaces = 8;

// A word that divides a text.
struct Place {
    std::size_t begin = 0;
    std::size_t end = 0;
};

bool isBlank(wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); }

// Whether the language can make nothing of it, whatever its units.
bool isUnreadable(Expression const & expression) {
    EResult const result = expression.result().result();
    return result == EResult::failedToParse || result == EResult::abruptTermination;
}

std::size_t lengthOfArrow(std::wstring_view text, std::size_t at) {
    if (text[at] == L'\u2192') return 1;
    return text.substr(at, 2) == L"->" ? 2 : 0;
}

// The places in order; none if there are more than a person would write.
std::vector<Place> findPlaces(std::wstring_view text) {
    std::vector<Place> places;
    for (std::size_t at = 0; at < text.size() && places.size() <= c_mostPlaces; ++at) {
        if (std::size_t const length = lengthOfArrow(text, at); length > 0) {
            places.push_back({at, at + length});
            continue;
        }
        if (at > 0 && !isBlank(text[at - 1])) continue;
        std::wstring_view const word = text.substr(at, 2);
        bool const ends = at + 2 >= text.size() || isBlank(text[at + 2]);
        if (ends && (word == L"to" || word == L"as")) places.push_back({at, at + 2});
    }
    if (places.size() > c_mostPlaces) places.clear();
    return places;
}

// Reads one text.
class Reader {
public:
    Reader(std::wstring text, UnitContext const & context, LastValue const & last)
        : m_typed(std::move(text)), m_text(m_typed), m_rContext(context), m_rLast(last) {}

    Request read() {
        Expression whole(m_text, m_rContext);
        if (!isUnreadable(whole)) return found(std::move(whole));
        if (namesLastValue(m_text)) {
            if (!m_rLast.text()) return noLastValue(m_text.find(LastValue::c_word));
            m_text = withLastValue(m_text, *m_rLast.text());
            whole = Expression(m_text, m_rContext);
            if (!isUnreadable(whole)) return found(std::move(whole));
        }
        std::vector<Place> const places = findPlaces(m_text);
        if (places.empty()) return found(std::move(whole));
        return convert(places);
    }

private:
    static Request found(Expression expression) {
        Request request;
        request.expression = std::move(expression);
        return request;
    }

    // The text in front of a place.
    std::wstring frontOf(Place const & place) const {
        std::wstring_view front = m_text;
        front = front.substr(0, place.begin);
        while (!front.empty() && isBlank(front.back())) front.remove_suffix(1);
        return std::wstring(front);
    }

    Request convert(std::vector<Place> const & places) const {
        for (auto place = places.rbegin(); place != places.rend(); ++place) {
            std::wstring const front = frontOf(*place);
            if (trimmed(front).empty()) {
                if (!m_rLast.text()) return noLastValue(place->begin);
                return convert(Expression(*m_rLast.text()), places, *place);
            }
            Expression expression(front, m_rContext);
            // What fails in front of the first place fails in front of all.
            if (!isUnreadable(expression) || place->begin == places.front().begin)
                return convert(std::move(expression), places, *place);
        }
        return {};
    }

    Request convert(Expression expression, std::vector<Place> const & places,
                    Place const & place) const {
        std::wstring const target(trimmed(std::wstring_view(m_text).substr(place.end)));
        Request request = found(std::move(expression));
        if (!request.expression) {
            request.conversion = m_text.substr(frontOf(place).size());
            return request;
        }
        if (target == L"?") {
            request.wantsEquivalents = true;
            return request;
        }
        std::wstring const word = m_text.substr(place.begin, place.end - place.begin);
        if (target.empty())
            return refused(
                message(L"a unit, or \"?\" for all of them, is missing after %1%", inQuotes(word)),
                m_text.size());
        request.target = unitContext(target);
        if (request.target) return request;
        if (place.begin != places.back().begin)
            return refused(message(L"a value is converted once, and to one unit"),
                           places.back().begin);
        std::size_t const index = m_text.find(target, place.end);
        std::wstring const why = message(L"%1% isn't a unit", inQuotes(target));
        if (!m_typed.ends_with(std::wstring_view(m_text).substr(index))) return refused(why, index);
        std::wstring const before = m_typed.substr(0, indexTyped(index));
        return refused(why, explainUnit(target, {before, {}, shownIn(request)}));
    }

    Request noLastValue(std::size_t index) const {
        return refused(message(L"there is no last value yet"), index);
    }

    // What can show the value of an expression.
    static UnitContext shownIn(Request const & request) {
        std::optional<Units::ComplexUnit> const units = request.expression.units();
        return units ? UnitContext(&*units) : UnitContext();
    }

    Request refused(std::wstring const & why, std::size_t index) const {
        FailureExplanation explanation;
        explanation.position = Text::length16(m_typed.substr(0, indexTyped(index)));
        explanation.start = explanation.end = explanation.position;
        return refused(why, std::move(explanation));
    }

    Request refused(std::wstring const & why, FailureExplanation explanation) const {
        Request request;
        request.refusal = Refusal{why, m_typed, std::move(explanation)};
        return request;
    }

    // Where the rest of the text from `index` stands in the line as it was typed; the first "ans"
    // if that is in the rest.
    std::size_t indexTyped(std::size_t index) const {
        std::wstring_view const rest = std::wstring_view(m_text).substr(index);
        if (m_typed.ends_with(rest)) return m_typed.size() - rest.size();
        return std::min(m_typed.find(LastValue::c_word), m_typed.size());
    }

    std::wstring const m_typed;
    std::wstring m_text; // with the last value in it
    UnitContext const & m_rContext;
    LastValue const & m_rLast;
};

} // namespace

Request readRequest(std::wstring const & text, UnitContext const & context,
                    LastValue const & last) {
    return Reader(text, context, last).read();
}

FailureExplanation explainFailure(Request const & request,
                                  Units::UnitDisplaySettings const & settings) {
    std::wstring_view const conversion = request.conversion;
    TextAround around{{}, request.conversion, {}, &settings};
    if (conversion.empty()) return explainFailure(request.expression, around);
    Place const place = findPlaces(conversion).front();
    std::wstring const target(trimmed(conversion.substr(place.end)));
    if (target != L"?") {
        std::optional<UnitContext> unit = unitContext(target);
        if (!unit) {
            // The unit may have to be corrected too.
            std::vector<std::wstring> const units = explainUnit(target).corrections;
            if (!units.empty()) unit = unitContext(units.front());
            if (unit)
                around.after.replace(around.after.rfind(target), target.size(), units.front());
        }
        if (!unit) {
            // No correction of the expression makes the line good.
            FailureExplanation failure = explainFailure(request.expression);
            failure.hint.clear();
            failure.corrections.clear();
            return failure;
        }
        around.display = *unit;
    }
    return explainFailure(request.expression, around);
}

std::string refusalLines(Refusal const & refusal) {
    FailureExplanation const & failure = refusal.explanation;
    Excerpt const excerpt = excerptAt(refusal.text, failure.start, failure.start, failure.end);
    return Text::toUtf8(refusal.message + L"\n  " + excerpt.text + L"\n  " + excerpt.marks + L'\n' +
                        hintLine(failure));
}

} // namespace Vn::Console
