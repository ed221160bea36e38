#include "Console/Answer.h"

#include <charconv>
#include <optional>

#include <nlohmann/json.hpp>

#include "Console/Evaluation.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Expressions/ReadingNotes.h"
#include "Server/CommonData/Expressions/Tokenizer.h"

namespace Vn::Console {

using Expressions::EResult;
using Expressions::Expression;
using Expressions::FailureExplanation;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

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

// Writes the members one after the other.  A tree of JSON values isn't made: to end one takes
// memory, and a program ends that has none.
class Members {
public:
    void raw(char const * key, std::string const & value) {
        if (!m_text.empty()) m_text += ',';
        m_text += '"';
        m_text += key;
        m_text += "\":";
        m_text += value;
    }
    void add(char const * key, std::wstring const & text) { raw(key, jsonText(text)); }
    void add(char const * key, char const * name) { raw(key, std::string("\"") + name + '"'); }
    void add(char const * key, bool flag) { raw(key, flag ? "true" : "false"); }
    void add(char const * key, std::size_t count) { raw(key, std::to_string(count)); }
    void add(char const * key, std::optional<double> value) {
        raw(key, value ? jsonNumber(*value) : "null");
    }
    void add(char const * key, std::vector<std::wstring> const & texts) {
        std::string all = "[";
        for (std::wstring const & text : texts) {
            if (all.size() > 1) all += ',';
            all += jsonText(text);
        }
        raw(key, all + ']');
    }

    std::string take() { return std::move(m_text); }

private:
    std::string m_text;
};

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

std::string notesOn(Expression const & expression, UnitDisplaySettings const & settings) {
    std::string all = "[";
    for (Expressions::ReadingNote const & note : Expressions::readingNotes(expression, settings)) {
        Members members;
        members.add("reading", Expressions::readingName(note.reading));
        members.add("start", note.start);
        members.add("end", note.end);
        members.add("text", note.text);
        if (all.size() > 1) all += ',';
        all += '{' + members.take() + '}';
    }
    return all + ']';
}

void addPlace(FailureExplanation const & failure, Members & members) {
    members.add("start", failure.start);
    members.add("end", failure.end);
}

void addHints(FailureExplanation const & failure, Members & members) {
    members.add("suggestions", failure.suggestions);
    members.add("hint", failure.hint);
    members.add("corrections", failure.corrections);
}

// Why there is no value.  What else is found out about a text that people may mean otherwise has
// its members here too.
void addExplanation(Expression const & expression, UnitDisplaySettings const & settings,
                    bool hasValue, FailureExplanation const & failure, Members & members) {
    members.add("reason", Expressions::failureName(failure.reason));
    addPlace(failure, members);
    members.add("explanation", failure.explanation);
    addHints(failure, members);
    members.raw("notes", hasValue ? notesOn(expression, settings) : "[]");
}

} // namespace

std::string jsonText(std::wstring_view text) { return nlohmann::json(Text::toUtf8(text)).dump(); }

std::string jsonNumber(double value) {
    char buffer[64];
    auto const end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 17).ptr;
    return std::string(buffer, end);
}

std::string answerMembers(Expression const & expression, UnitDisplaySettings const & settings,
                          UnitContext const & display, bool withTokens,
                          FailureExplanation const & failure) {
    Evaluation const e = expression ? evaluate(expression, settings, display) : Evaluation();
    std::optional<Units::ComplexUnit> const units = expression.units();
    Members members;
    if (withTokens) members.raw("tokens", tokensOf(expression.text()));
    members.add("parsed", static_cast<bool>(expression));
    members.add("result", resultName(expression.result().result()));
    members.add("position", std::size_t{expression.result().position()});
    members.add("message", expression.result().toString());
    members.add("evaluated", e.value.has_value());
    members.add("value", e.value);
    members.add("units", units ? units->toString() : std::wstring());
    members.add("formatted", e.formatted);
    members.add("rebuilt", e.rebuilt);
    members.add("formattedValueOnly", expression.formatted(Units::ValueOnly, settings, display));
    members.add("formattedUnitOnly", expression.formatted(Units::UnitOnly, settings, display));
    members.add("rebuiltValueOnly", expression.rebuilt(Units::ValueOnly, settings));
    members.add("readableUnits", e.units);
    members.add("internalUnits", e.internalUnits);
    members.add("rebuiltReadsBack", e.readsBack);
    members.add("textToStore", expression ? textToStore(e, expression) : std::wstring());
    addExplanation(expression, settings, e.value.has_value(), failure, members);
    return members.take();
}

std::string refusalMembers(FailureExplanation const & failure) {
    Members members;
    addPlace(failure, members);
    addHints(failure, members);
    return members.take();
}

} // namespace Vn::Console
