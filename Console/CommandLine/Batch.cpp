#include "Console/CommandLine/Batch.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <ostream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "Console/SettingsTexts.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokenizer.h"

namespace Vn::Console {

using Expressions::EResult;
using Expressions::Expression;
using nlohmann::json;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

// What a line says that can't be understood.
class LineError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string jsonText(std::wstring_view text) { return json(Text::toUtf8(text)).dump(); }

std::string number(double value) {
    char buffer[64];
    auto const end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 17).ptr;
    return std::string(buffer, end);
}

std::string inQuotesUtf8(std::wstring const & text) { return Text::toUtf8(inQuotes(text)); }

std::wstring textOf(json const & object, char const * key) {
    json const & value = object.at(key);
    if (!value.is_string()) throw LineError(std::string("\"") + key + "\" must be a text");
    return Text::fromUtf8(value.get_ref<std::string const &>());
}

UnitContext contextOf(std::wstring const & text, char const * key) {
    if (text == L"?") return UnitContext();
    std::optional<UnitContext> context = unitContext(text);
    if (!context)
        throw LineError(std::string("\"") + key + "\": " + inQuotesUtf8(text) + " isn't a unit");
    return *std::move(context);
}

UnitDisplaySettings settingsOf(json const & object) {
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    auto const given = object.find("settings");
    if (given == object.end() || given->is_null()) return settings;
    if (!given->is_object()) throw LineError("\"settings\" must be an object");
    for (auto const & [name, value] : given->items()) {
        Units::UnitDisplaySettingsField const * const field =
            Units::findUnitDisplaySettingsField(name);
        if (!field) throw LineError("\"settings\" has no " + inQuotesUtf8(Text::fromUtf8(name)));
        bool const flag = field->kind == Units::ESettingsField::Flag;
        if (flag ? !value.is_boolean() : !value.is_number())
            throw LineError("\"" + name + "\" must be " + (flag ? "true or false" : "a number"));
        std::string const wrong = setSetting(
            *field, settings, flag ? (value.get<bool>() ? 1.0 : 0.0) : value.get<double>());
        if (!wrong.empty()) throw LineError(wrong);
    }
    return settings;
}

std::string tokensOf(std::wstring const & text) {
    Expressions::TokenList tokens;
    Expressions::TokenizerRegistry::get()->tokenize(text, tokens);
    std::string answer = "[";
    for (Expressions::Token const * token = tokens.first(); token; token = token->next) {
        if (token != tokens.first()) answer += ',';
        answer += '[' + std::to_string(token->kind) + ',' + std::to_string(token->start) + ',' +
                  std::to_string(token->end) + ',' + jsonText(token->text) + ']';
    }
    return answer + ']';
}

std::string answerObject(json const & object) {
    if (!object.contains("text")) throw LineError("there is no \"text\"");
    std::wstring const text = textOf(object, "text");
    UnitContext const context =
        contextOf(object.contains("context") ? textOf(object, "context") : L"?", "context");
    UnitContext display = context;
    if (auto const given = object.find("display"); given != object.end() && !given->is_null())
        display = contextOf(textOf(object, "display"), "display");
    UnitDisplaySettings const settings = settingsOf(object);

    std::string answer = "\"tokens\":" + tokensOf(text);
    Expression const expression(text, context);
    auto const add = [&answer](char const * key, std::string const & value) {
        answer += std::string(",\"") + key + "\":" + value;
    };
    std::optional<double> const value = expression.value();
    std::optional<Units::ComplexUnit> const units = expression.units();
    add("parsed", expression ? "true" : "false");
    add("result", std::string("\"") + resultName(expression.result().result()) + '"');
    add("position", std::to_string(expression.result().position()));
    add("message", jsonText(expression.result().toString()));
    add("evaluated", value ? "true" : "false");
    add("value", value ? number(*value) : "null");
    add("units", jsonText(units ? units->toString() : L""));
    add("formatted", jsonText(expression.formatted(Units::ValueAndUnit, settings, display)));
    add("rebuilt", jsonText(expression.rebuilt(Units::ValueAndUnit, settings)));
    add("formattedValueOnly", jsonText(expression.formatted(Units::ValueOnly, settings, display)));
    add("formattedUnitOnly", jsonText(expression.formatted(Units::UnitOnly, settings, display)));
    add("rebuiltValueOnly", jsonText(expression.rebuilt(Units::ValueOnly, settings)));
    return answer;
}

// A walk through a line that is known to be sound JSON.
class RawObject {
public:
    explicit RawObject(std::string_view line) : m_line(line) {}

    // The value of a member of the object, as it is written; empty if there is none.  Of several
    // the last counts.
    std::string_view member(std::string_view wanted) {
        std::string_view found;
        m_at = m_line.find('{') + 1;
        while (next() == '"') {
            std::string_view const key = takeString();
            next(); // the colon
            ++m_at;
            next();
            std::string_view const value = takeValue();
            if (isKey(key, wanted)) found = value;
            if (next() == ',') ++m_at;
        }
        return found;
    }

private:
    static bool isKey(std::string_view typed, std::string_view wanted) {
        if (typed.find('\\') == typed.npos) return typed.substr(1, typed.size() - 2) == wanted;
        return json::parse(typed).get_ref<std::string const &>() == wanted;
    }

    // The next character that isn't blank.
    char next() {
        m_at = m_line.find_first_not_of(" \t\r\n", m_at);
        return m_at < m_line.size() ? m_line[m_at] : '\0';
    }

    // A text with its quotes.
    std::string_view takeString() {
        std::size_t const start = m_at;
        for (++m_at; m_line[m_at] != '"'; ++m_at)
            if (m_line[m_at] == '\\') ++m_at;
        ++m_at;
        return m_line.substr(start, m_at - start);
    }

    std::string_view takeValue() {
        std::size_t const start = m_at;
        std::size_t depth = 0;
        do {
            switch (m_line[m_at]) {
            case '"':
                takeString();
                continue;
            case '{':
            case '[':
                ++depth;
                break;
            case '}':
            case ']':
                --depth;
                break;
            default:
                if (depth > 0) break;
                m_at = std::min(m_line.find_first_of(",}] \t\r\n", m_at), m_line.size());
                continue;
            }
            ++m_at;
        } while (depth > 0);
        return m_line.substr(start, m_at - start);
    }

    std::string_view const m_line;
    std::size_t m_at = 0;
};

BatchAnswer errorAnswer(std::string const & id, std::string_view what) {
    constexpr std::size_t c_longestMessage = 300;
    // The JSON library begins its messages with a number in square brackets.
    if (what.starts_with('[')) what.remove_prefix(what.find(' ') + 1);
    // What it couldn't read needn't be UTF-8, nor short.
    std::wstring const message = clipped(Text::fromUtf8(what), c_longestMessage);
    return {"{\"id\":" + id + ",\"error\":" + jsonText(message) + '}', false};
}

} // namespace

char const * resultName(EResult result) {
    switch (result) {
    case EResult::unknownResult:
        return "unknownResult";
    case EResult::parsedOk:
        return "parsedOk";
    case EResult::expressionIsEmpty:
        return "expressionIsEmpty";
    case EResult::abruptTermination:
        return "abruptTermination";
    case EResult::failedToParse:
        return "failedToParse";
    case EResult::unitMismatch:
        return "unitMismatch";
    case EResult::unitsDontEval:
        return "unitsDontEval";
    case EResult::badUnitString:
        return "badUnitString";
    }
    return "";
}

BatchAnswer answerBatchLine(std::string const & line) {
    std::string id = "null";
    try {
        json const object = json::parse(line);
        if (!object.is_object()) throw LineError("a line must be an object");
        if (std::string_view const given = RawObject(line).member("id"); !given.empty()) id = given;
        return {"{\"id\":" + id + ',' + answerObject(object) + '}', true};
    } catch (json::exception const & error) {
        return errorAnswer(id, error.what());
    } catch (LineError const & error) {
        return errorAnswer(id, error.what());
    }
}

BatchOutcome runBatch(std::istream & in, std::ostream & out,
                      std::function<void(std::size_t)> const & progress) {
    constexpr std::size_t c_linesBetweenReports = 1000;
    BatchOutcome outcome;
    std::string line;
    while (out && std::getline(in, line)) {
        ++outcome.lines;
        if (progress && outcome.lines % c_linesBetweenReports == 0) progress(outcome.lines);
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        BatchAnswer const answer = answerBatchLine(line);
        if (!answer.understood) ++outcome.badLines;
        out << answer.text << '\n';
        // A reader at the other end of a pipe waits for its answer.
        if (in.rdbuf()->in_avail() <= 0) out.flush();
    }
    if (progress) progress(outcome.lines);
    outcome.inputFailed = in.bad();
    outcome.outputFailed = !out.flush();
    return outcome;
}

} // namespace Vn::Console
