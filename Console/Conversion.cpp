#include "Console/Conversion.h"

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
using Expressions::Expression;
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
        : m_text(std::move(text)), m_rContext(context), m_rLast(last) {}

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
        if (!expression) return found(std::move(expression));
        std::wstring const target(trimmed(std::wstring_view(m_text).substr(place.end)));
        Request request = found(std::move(expression));
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
        Request answer =
            refused(message(L"%1% isn't a unit", inQuotes(target)), m_text.find(target, place.end));
        answer.refusal->question = unitQuestion(target);
        return answer;
    }

    Request noLastValue(std::size_t index) const {
        return refused(message(L"there is no last value yet"), index);
    }

    Request refused(std::wstring const & why, std::size_t index) const {
        Request request;
        request.refusal =
            Refusal{why, {}, m_text, Text::length16(std::wstring_view(m_text).substr(0, index))};
        return request;
    }

    std::wstring m_text;
    UnitContext const & m_rContext;
    LastValue const & m_rLast;
};

} // namespace

Request readRequest(std::wstring const & text, UnitContext const & context,
                    LastValue const & last) {
    return Reader(text, context, last).read();
}

std::string refusalLines(Refusal const & refusal) {
    Excerpt const excerpt = excerptAt(refusal.text, refusal.position);
    return Text::toUtf8(refusal.message + L"\n  " + excerpt.text + L"\n  " + excerpt.marks + L'\n' +
                        refusal.question);
}

} // namespace Vn::Console
