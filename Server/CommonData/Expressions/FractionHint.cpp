#include "Server/CommonData/Expressions/FractionHintInternal.h"

#include <algorithm>
#include <functional>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Expressions/FailureTextsInternal.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/Vocabulary.h"

namespace Vn::Expressions {

using Text::trimmed;

namespace {

// More than a divisor has, and few enough to be read again at each fraction of a long text.
constexpr std::size_t c_longestDivisor = 100;
constexpr std::size_t c_longestHint = 160;

bool isDigits(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](wchar_t c) { return Text::isDigit(static_cast<char32_t>(c)); });
}

// Writes a text again with every division in it that was read as a fraction in brackets.
class Rewriter {
public:
    explicit Rewriter(std::wstring_view text) : m_text(text) {}

    void run() {
        TokenList tokens;
        TokenizerRegistry::get()->tokenize(m_text, tokens);
        for (Token const * token = tokens.first()->next; token; token = token->next) {
            if (token->kind != TK_NUMBER || indexOf(*token) < m_done) continue;
            if (!rewriteFraction(*token)) rewriteMixed(*token);
        }
        m_result += m_text.substr(m_done);
    }

    std::wstring const & result() const { return m_result; }
    // The first piece written anew, and what it was; empty for what only looks like a fraction.
    std::wstring const & piece() const { return m_piece; }
    std::wstring_view fraction() const { return m_fraction; }

private:
    // A number lies in the text as it was typed.
    std::size_t indexOf(Token const & token) const {
        return static_cast<std::size_t>(token.text.data() - m_text.data());
    }
    std::size_t endOf(Token const & token) const { return indexOf(token) + token.text.size(); }
    bool isInText(Token const & token) const {
        std::less<wchar_t const *> const before;
        return !before(token.text.data(), m_text.data()) &&
               before(token.text.data(), m_text.data() + m_text.size());
    }

    // "7/2" in front of ".2".
    bool rewriteFraction(Token const & fraction) {
        Token const * const next = fraction.next;
        std::size_t const slash = fraction.text.find(L'/');
        if (fraction.format.lengthDisplay != Units::LengthFractional ||
            slash == fraction.text.npos || !next || !isInText(*next) ||
            indexOf(*next) != endOf(fraction))
            return false;
        std::wstring_view const typed = trimmed(fraction.text.substr(slash + 1));
        std::size_t const begin = endOf(fraction) - typed.size();
        std::wstring const divisor = numberAt(begin);
        if (typed.empty() || divisor.size() <= typed.size()) return false;

        std::wstring_view const front = trimmed(fraction.text.substr(0, slash));
        auto const blank = std::find_if(front.begin(), front.end(), [](wchar_t c) {
            return Text::isSpace(static_cast<char32_t>(c));
        });
        std::wstring const whole(front.begin(), blank == front.end() ? front.begin() : blank);
        std::wstring const quotient =
            std::wstring(trimmed(front.substr(whole.size()))) + L"/(" + divisor + L')';
        replace(fraction, whole.empty() ? quotient : L'(' + whole + L" + " + quotient + L')',
                begin + divisor.size(), trimmed(fraction.text));
        return true;
    }

    // "2 1/3", where 1/3 is none of the fractions that can be typed.
    void rewriteMixed(Token const & whole) {
        Token const * const numerator = whole.next;
        Token const * const slash = numerator ? numerator->next : nullptr;
        Token const * const divisor = slash ? slash->next : nullptr;
        if (!divisor || numerator->kind != TK_NUMBER || slash->kind != TK_DIVIDE ||
            divisor->kind != TK_NUMBER || !isDigits(whole.text) || !isDigits(numerator->text))
            return;
        std::wstring const fraction =
            std::wstring(numerator->text) + L'/' + std::wstring(trimmed(divisor->text));
        replace(whole, L'(' + std::wstring(whole.text) + L" + " + fraction + L')', endOf(*divisor),
                {});
    }

    // The number that begins there, read afresh.
    std::wstring numberAt(std::size_t index) const {
        std::wstring_view const text = m_text.substr(index, c_longestDivisor);
        TokenList tokens;
        TokenizerRegistry::get()->tokenize(text, tokens);
        Token const * const first = tokens.first()->next;
        bool const isNumber = first && first->kind == TK_NUMBER;
        return isNumber ? std::wstring(trimmed(first->text)) : std::wstring();
    }

    // Writes `text` instead of what stands from `first` up to `end`.
    void replace(Token const & first, std::wstring text, std::size_t end,
                 std::wstring_view fraction) {
        // Units stand after numbers only.
        Token const * unit = first.next;
        while (unit && (!isInText(*unit) || indexOf(*unit) < end)) unit = unit->next;
        if (unit && unit->kind == TK_NAME &&
            Tokens::get()->getFunctionToken(unit->text) == e_NONE &&
            Vocabulary::isKnown(unit->text)) {
            text = L'(' + text + L" * 1 " + std::wstring(unit->text) + L')';
            end = endOf(*unit);
        }
        if (m_piece.empty()) {
            m_piece = text;
            m_fraction = fraction;
        }
        std::size_t const begin = indexOf(first);
        m_result += m_text.substr(m_done, begin - m_done);
        m_result += text;
        m_done = end;
    }

    std::wstring_view const m_text;
    std::size_t m_done = 0; // as far as this the text stands in the result
    std::wstring m_result;
    std::wstring m_piece;
    std::wstring_view m_fraction;
};

} // namespace

std::wstring fractionHint(std::wstring const & text, Units::UnitContext const & context,
                          TextAround const & around, std::wstring & correction) {
    Rewriter rewriter(text);
    rewriter.run();
    if (rewriter.piece().empty()) return {};
    if (!Expression(rewriter.result(), context)) return {};
    correction = around.before + rewriter.result() + around.after;
    bool const isShort = correction.size() <= c_longestHint;
    std::wstring const typed = Text::printable(isShort ? correction : rewriter.piece());
    if (rewriter.fraction().empty())
        return Text::filled(failureText(EFailureText::HintDivisors), {typed});
    return Text::filled(failureText(EFailureText::HintFraction),
                        {Text::printable(Text::clipped(rewriter.fraction())), typed});
}

} // namespace Vn::Expressions
