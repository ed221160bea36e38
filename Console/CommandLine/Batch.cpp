#include "Console/CommandLine/Batch.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <ostream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "Console/Evaluation.h"
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
    if (value) {
        std::wstring const why =
            whyNotShown(units.value_or(Units::ComplexUnit::none()), settings, display);
        if (!why.empty()) throw LineError(Text::toUtf8(why));
    }
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

// Whether arrays and objects stand in one another no deeper than that.
bool isShallow(json const & value, unsigned levels) {
    if (!value.is_structured()) return true;
    return levels > 0 && std::all_of(value.begin(), value.end(), [&](json const & member) {
               return isShallow(member, levels - 1);
           });
}

std::string idOf(json const & object) {
    auto const given = object.find("id");
    if (given == object.end()) return "null";
    // Writing it takes a piece of the stack for each level.
    if (!isShallow(*given, 1000)) throw LineError("\"id\" has more than 1000 levels");
    return given->dump();
}

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
        id = idOf(object);
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
