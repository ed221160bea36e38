#include "Server/CommonData/Expressions/ReadingNotes.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/RespellingInternal.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

using Text::filled;

namespace {

// Longer texts aren't typed by people.
constexpr std::size_t c_longestText = 1000;
constexpr std::size_t c_none = static_cast<std::size_t>(-1);

enum class EReadingText {
#define VN_READING_TEXT(name, text) name,
#include "Server/CommonData/Expressions/ReadingTexts.inc"
};

std::wstring readingText(EReadingText text) {
    switch (text) {
#define VN_READING_TEXT(name, english)                                                             \
    case EReadingText::name:                                                                       \
        return StringTable::getLocalizedString("VnCommonData", "Reading" #name, english);
#include "Server/CommonData/Expressions/ReadingTexts.inc"
    }
    return {};
}

bool areDigits(std::wstring_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](wchar_t c) {
        return Text::isDigit(static_cast<char32_t>(c));
    });
}

class Reader {
public:
    Reader(Expression const & expression, Units::UnitDisplaySettings const & settings)
        : m_expression(expression), m_text(expression.text()),
          m_bHasPoints(settings.isDecimalPointFullStop()) {
        TokenizerRegistry::get()->tokenize(m_text, m_list);
        for (Token const * token = m_list.first(); token; token = token->next)
            if (token->kind != TK_START && token->kind != TK_END) m_tokens.push_back(token);
    }

    std::vector<ReadingNote> run() {
        for (std::size_t i = 0; i < m_tokens.size(); ++i) {
            if (is(i, TK_NUMBER)) number(i);
            if (is(i, TK_NAME)) name(i);
        }
        powers();
        std::stable_sort(m_notes.begin(), m_notes.end(),
                         [](auto const & a, auto const & b) { return a.start < b.start; });
        return std::move(m_notes);
    }

private:
    bool is(std::size_t i, TokenKind kind) const {
        return i < m_tokens.size() && m_tokens[i]->kind == kind;
    }
    bool isSum(std::size_t i) const { return is(i, TK_PLUS) || is(i, TK_MINUS); }
    bool isOperator(std::size_t i) const {
        return isSum(i) || is(i, TK_MULTIPLY) || is(i, TK_DIVIDE) || is(i, TK_MODULO) ||
               is(i, TK_POWER);
    }
    // A "-" that negates.
    bool isSign(std::size_t i) const {
        return is(i, TK_MINUS) &&
               (i == 0 || isOperator(i - 1) || is(i - 1, TK_LEFT_PAREN) || is(i - 1, TK_SEMICOLON));
    }
    std::size_t begin(std::size_t i) const { return Text::indexAt16(m_text, m_tokens[i]->start); }
    std::size_t end(std::size_t i) const { return Text::indexAt16(m_text, m_tokens[i]->end); }
    bool areTight(std::size_t i) const { return end(i) == begin(i + 1); }
    std::wstring_view piece(std::size_t first, std::size_t last) const {
        return std::wstring_view(m_text).substr(begin(first), end(last) - begin(first));
    }

    bool isFractionToken(std::size_t i) const {
        return is(i, TK_NUMBER) && m_tokens[i]->text.find(L'/') != std::wstring_view::npos &&
               m_tokens[i]->format.lengthDisplay == Units::LengthFractional;
    }

    void add(EReading reading, std::size_t first, std::size_t last, EReadingText text,
             std::wstring const & second = {}, std::wstring const & third = {}) {
        bool const isThere = std::any_of(m_notes.begin(), m_notes.end(), [&](auto const & note) {
            return note.reading == reading;
        });
        if (isThere) return;
        std::wstring const typed = Text::printable(Text::clipped(piece(first, last)));
        m_notes.push_back({reading, m_tokens[first]->start, m_tokens[last]->end,
                           filled(readingText(text), {typed, second, third})});
    }

    // The whole text with a piece written anew, if that has another value or other units.
    std::optional<std::wstring> otherwise(std::size_t from, std::size_t to,
                                          std::wstring const & written) const {
        std::wstring text = m_text;
        text.replace(from, to - from, written);
        Expression const other(text, m_expression.context());
        std::optional<double> const value = other.value();
        if (!value) return {};
        std::optional<Units::ComplexUnit> const units = other.units();
        std::optional<Units::ComplexUnit> const present = m_expression.units();
        bool const areSame = units && present && units->isDimensionallyEquivalent(&*present);
        if (areSame && value == m_expression.value()) return {};
        constexpr std::size_t c_longestShown = 160;
        return Text::printable(text.size() <= c_longestShown ? text : written);
    }

    void number(std::size_t i) {
        // A fraction reaches to what follows it.
        std::wstring const text(Text::trimmed(m_tokens[i]->text));
        if (m_tokens[i]->value >= std::numeric_limits<double>::max())
            add(EReading::largestNumber, i, i, EReadingText::LargestNumber);
        decimals(i, text);
        if (isFractionToken(i) && i > 0) {
            if (is(i - 1, TK_MINUS) && i > 1) subtraction(i, text);
            if (is(i - 1, TK_DIVIDE) || is(i - 1, TK_MODULO) || is(i - 1, TK_POWER))
                fractionOfOperator(i, text);
        }
        temperature(i);
        part(i);
    }

    // "1/3 in", where another divisor makes a fraction of an inch.
    void part(std::size_t i) {
        bool const isFirst = i == 0 || isSum(i - 1) || is(i - 1, TK_LEFT_PAREN);
        bool const isQuotient = isFirst && is(i + 1, TK_DIVIDE) && is(i + 2, TK_NUMBER) &&
                                areTight(i) && areTight(i + 1) && unitAt(i + 3) && isAlone(i + 3);
        if (!isQuotient || !areDigits(m_tokens[i]->text) || !areDigits(m_tokens[i + 2]->text) ||
            m_tokens[i]->value >= m_tokens[i + 2]->value)
            return;
        std::wstring const written =
            L'(' + std::wstring(piece(i, i + 2)) + L") * 1 " + std::wstring(m_tokens[i + 3]->text);
        if (auto const instead = otherwise(begin(i), end(i + 3), written))
            add(EReading::unitOfDivisor, i, i + 3, EReadingText::UnitOfDivisor, *instead);
    }

    // What separates thousands for the user is always that of decimals: "1,500", or "1.500".
    void decimals(std::size_t i, std::wstring const & text) {
        std::size_t const separator = text.find(m_bHasPoints ? L',' : L'.');
        constexpr std::size_t c_group = 3;
        if (separator == text.npos || separator == 0 || separator > c_group || text.front() == L'0')
            return;
        std::wstring const whole = text.substr(0, separator);
        std::wstring const rest = text.substr(separator + 1);
        if (!areDigits(whole) || !areDigits(rest) || rest.size() != c_group) return;
        if (m_bHasPoints)
            add(EReading::decimalComma, i, i, EReadingText::DecimalComma, whole + L'.' + rest,
                whole + rest);
        else
            add(EReading::decimalPoint, i, i, EReadingText::DecimalPoint, whole + L',' + rest,
                whole + rest);
    }

    // "1-1/2" and "1-1/2 in".
    void subtraction(std::size_t i, std::wstring const & text) {
        // The word for inches belongs to the number.
        std::size_t const end = text.find_last_of(L"0123456789") + 1;
        bool const isMixed = is(i - 2, TK_NUMBER) && areDigits(m_tokens[i - 2]->text) &&
                             areTight(i - 2) && areTight(i - 1) &&
                             std::wstring_view(text).substr(0, end).find(L' ') == text.npos;
        if (!isMixed) return;
        add(EReading::subtraction, i - 2, i, EReadingText::Subtraction,
            std::wstring(m_tokens[i - 2]->text) + L' ' + std::wstring(piece(i, i)));
    }

    // "12 / 3 / 2".
    void fractionOfOperator(std::size_t i, std::wstring const & text) {
        std::size_t const divisor = text.find_first_of(L"0123456789", text.find(L'/'));
        if (divisor == text.npos || !areDigits(std::wstring_view(text).substr(divisor))) return;
        std::wstring const written = text.substr(0, divisor) + L'(' + text.substr(divisor) + L')';
        if (auto const instead = otherwise(begin(i), begin(i) + text.size(), written))
            add(EReading::fractionOfOperator, i, i, EReadingText::FractionOfOperator, *instead);
    }

    Units::SimpleUnit const * unitAt(std::size_t i) const {
        if (!is(i, TK_NAME)) return nullptr;
        return Tokens::get()->findMatchingUnit(m_tokens[i]->text);
    }
    bool isTemperature(std::size_t i) const {
        Units::SimpleUnit const * const unit = unitAt(i);
        return unit && unit->internalConversionOffset() != 0.0;
    }
    bool isAngle(std::size_t i) const {
        Units::SimpleUnit const * const unit = unitAt(i);
        return unit && unit->identifier() == Units::UnitDegree::staticIdentifier();
    }
    // Whether the word at `i` is the only unit of the number in front of it.
    bool isAlone(std::size_t i) const {
        return !is(i + 1, TK_NAME) && !is(i + 1, TK_POWER) &&
               !((is(i + 1, TK_MULTIPLY) || is(i + 1, TK_DIVIDE)) && unitAt(i + 2));
    }

    // "100 C - 20 C", "2 * 20 C", "20 C / 2".
    void temperature(std::size_t i) {
        if (!isTemperature(i + 1) || !isAlone(i + 1)) return;
        std::size_t const next = i + 2;
        bool const isOfTwo =
            isSum(next) && is(next + 1, TK_NUMBER) && isTemperature(next + 2) && isAlone(next + 2);
        bool const isMultiplied = (is(next, TK_MULTIPLY) || is(next, TK_DIVIDE)) &&
                                  is(next + 1, TK_NUMBER) && !is(next + 2, TK_NAME);
        if (isOfTwo) {
            add(EReading::temperaturePoints, i, next + 2, EReadingText::TemperaturePoints);
        } else if (isMultiplied) {
            add(EReading::temperaturePoints, i, next + 1, EReadingText::TemperaturePoints);
        } else if (i > 1 && is(i - 1, TK_MULTIPLY) && is(i - 2, TK_NUMBER)) {
            add(EReading::temperaturePoints, i - 2, i + 1, EReadingText::TemperaturePoints);
        }
    }

    void name(std::size_t i) {
        Tokens const & tokens = *Tokens::get();
        std::wstring const word(m_tokens[i]->text);
        bool const isAfterOperand = i > 0 && (is(i - 1, TK_NUMBER) || is(i - 1, TK_NAME));
        if (tokens.getConstantToken(word) == e_PI_CONSTANT && !isAfterOperand) piInDegrees(i);
        Units::SimpleUnit const * const unit = unitAt(i);
        if (!unit || (!isAfterOperand && tokens.getFunctionToken(word) != e_NONE)) return;
        if (isAngle(i) && isTemperature(i + 1) && isAlone(i + 1))
            add(EReading::angleAndTemperature, i, i + 1, EReadingText::AngleAndTemperature,
                std::wstring(m_tokens[i + 1]->text));
        rareUnit(i, word, *unit);
    }

    void rareUnit(std::size_t i, std::wstring const & word, Units::SimpleUnit const & unit) {
        std::wstring const read = unit.name(Units::UnitDisplaySettings::standard());
        // "100 mm in cm".
        bool const isIn = unit.identifier() == Units::UnitInch::staticIdentifier() && i > 0 &&
                          is(i - 1, TK_NAME) && is(i + 1, TK_NAME);
        Respelling respelling;
        // "W/mK".
        std::wstring const below =
            i > 0 && is(i - 1, TK_DIVIDE) && areTight(i - 1) ? L'/' + word : std::wstring();
        std::wstring const & typed = isOddWord(below) ? below : word;
        if (isOddWord(typed) && findRespelling(typed, respelling) && !respelling.wanted.empty()) {
            std::wstring const factor =
                respelling.factor.empty() ? std::wstring() : respelling.factor + L' ';
            add(EReading::rareUnit, i, i, EReadingText::RareUnitInstead, read,
                factor + respelling.wanted.front());
        } else if (isIn || isOddWord(word)) {
            add(EReading::rareUnit, i, i, EReadingText::RareUnit, read);
        }
    }

    // "cos(PI)", "sin(2 * PI)".
    void piInDegrees(std::size_t i) {
        if (is(i + 1, TK_NAME)) return;
        Units::SimpleUnit const * const angle =
            m_expression.context().findDefault(Units::UnitTypeAngle);
        if (angle && angle->identifier() == Units::UnitRadian::staticIdentifier()) return;
        int depth = 0;
        for (std::size_t k = i; k-- > 0;) {
            if (is(k, TK_NAME) && unitAt(k) && depth == 0) return;
            if (is(k, TK_RIGHT_PAREN)) ++depth;
            if (!is(k, TK_LEFT_PAREN) || --depth >= 0) continue;
            depth = 0;
            if (k == 0 || !is(k - 1, TK_NAME)) continue;
            std::optional<FunctionId> const called =
                functionOfToken(Tokens::get()->getFunctionToken(m_tokens[k - 1]->text));
            if (!called || !functionTakesAngle(*called)) return;
            std::wstring const written = std::wstring(m_tokens[i]->text) + L" rad";
            if (auto const instead = otherwise(begin(i), end(i), written))
                add(EReading::piInDegrees, i, i, EReadingText::PiInDegrees, *instead);
            return;
        }
    }

    // A pair of brackets, or what stands in none.
    struct Level {
        std::size_t open = c_none;    // the token that opens it, or the function in front of that
        std::size_t term = 0;         // where its last term begins
        std::size_t operand = c_none; // where its last operand begins
        bool hasOperator = false;     // whether the term has an operator or a sign
    };

    void powers() {
        std::vector<Level> levels(1);
        for (std::size_t i = 0; i < m_tokens.size(); ++i) {
            Level & level = levels.back();
            if (is(i, TK_LEFT_PAREN)) {
                Level inner;
                inner.open = i > 0 && is(i - 1, TK_NAME) && !isOperator(i - 1) ? i - 1 : i;
                inner.term = i + 1;
                levels.push_back(inner);
            } else if (is(i, TK_RIGHT_PAREN) && levels.size() > 1) {
                std::size_t const open = level.open;
                levels.pop_back();
                levels.back().operand = open;
            } else if (is(i, TK_SEMICOLON) || (isSum(i) && !isSign(i))) {
                level.term = i + 1;
                level.hasOperator = false;
            } else if (is(i, TK_NUMBER) || (is(i, TK_NAME) && (i == 0 || isOperator(i - 1)))) {
                level.operand = i;
            } else if (is(i, TK_POWER)) {
                bool const isOfUnit =
                    i > 0 && is(i - 1, TK_NAME) && (level.operand != i - 1 || unitAt(i - 1));
                if (!isOfUnit) power(i, level);
                level.hasOperator |= !isOfUnit;
            } else if (isOperator(i)) {
                level.hasOperator = true;
            }
        }
    }

    // The last token of the exponent after the "^" at `i`.
    std::size_t lastOfExponent(std::size_t i) const {
        std::size_t k = i + 1;
        while (is(k, TK_MINUS)) ++k;
        if (is(k, TK_NAME) && is(k + 1, TK_LEFT_PAREN)) ++k;
        if (!is(k, TK_LEFT_PAREN)) return k;
        int depth = 0;
        for (; k < m_tokens.size(); ++k) {
            if (is(k, TK_LEFT_PAREN)) ++depth;
            if (is(k, TK_RIGHT_PAREN) && --depth == 0) return k;
        }
        return m_tokens.size();
    }

    void power(std::size_t i, Level const & level) {
        std::size_t const last = lastOfExponent(i);
        if (level.operand == c_none || level.operand >= i || last >= m_tokens.size()) return;
        std::size_t from = begin(level.operand);
        bool const isFraction = level.operand == i - 1 && isFractionToken(i - 1) &&
                                m_tokens[i - 1]->text.find(L' ') == std::wstring_view::npos;
        if (isFraction) from += m_tokens[i - 1]->text.find(L'/') + 1;
        if (!level.hasOperator && !isFraction) return;
        std::wstring const written = L'(' + m_text.substr(from, end(last) - from) + L')';
        if (auto const instead = otherwise(from, end(last), written))
            add(EReading::powerOfAll, level.term, i - 1, EReadingText::PowerOfAll, *instead);
    }

    Expression const & m_expression;
    std::wstring const & m_text;
    bool const m_bHasPoints; // in front of decimals, as the user writes them
    TokenList m_list;
    std::vector<Token const *> m_tokens;
    std::vector<ReadingNote> m_notes;
};

} // namespace

std::vector<ReadingNote> readingNotes(Expression const & expression,
                                      Units::UnitDisplaySettings const & settings) {
    if (!expression || expression.text().size() > c_longestText) return {};
    return Reader(expression, settings).run();
}

char const * readingName(EReading reading) {
    switch (reading) {
#define VN_READING(name)                                                                           \
    case EReading::name:                                                                           \
        return #name;
        VN_READING(decimalComma)
        VN_READING(subtraction)
        VN_READING(fractionOfOperator)
        VN_READING(powerOfAll)
        VN_READING(temperaturePoints)
        VN_READING(angleAndTemperature)
        VN_READING(rareUnit)
        VN_READING(largestNumber)
        VN_READING(piInDegrees)
        VN_READING(decimalPoint)
        VN_READING(unitOfDivisor)
#undef VN_READING
    }
    return "";
}

} // namespace Vn::Expressions
