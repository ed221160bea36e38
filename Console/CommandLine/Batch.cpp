#include "Console/CommandLine/Batch.h"

#include <algorithm>
#include <istream>
#include <limits>
#include <map>
#include <new>
#include <ostream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "Console/Answer.h"
#include "Console/Evaluation.h"
#include "Console/Messages.h"
#include "Console/SettingsTexts.h"
#include "Console/Terminal/LineReader.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"

namespace Vn::Console {

using Expressions::Expression;
using nlohmann::json;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

// What a line says that can't be understood.
class LineError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Reads a line as it comes.  A tree of the values isn't made: to end one takes memory, and a
// program ends that has none.
class LineHandler final : public json::json_sax_t {
public:
    using Members = std::map<std::string, json>;

    // The members of the line, and of the object "settings" in it.  Of arrays and objects nothing
    // is kept but what they are; of several members of one name the last counts.
    Members members;
    Members settings;
    // The value of "id", as it is given back.
    std::string id = "null";

    bool null() override { return scalar(json(), "null"); }
    bool boolean(bool value) override { return scalar(value, value ? "true" : "false"); }
    bool number_integer(number_integer_t value) override {
        return scalar(value, std::to_string(value));
    }
    bool number_unsigned(number_unsigned_t value) override {
        return scalar(value, std::to_string(value));
    }
    bool number_float(number_float_t value, string_t const & written) override {
        return scalar(value, written);
    }
    bool string(string_t & value) override {
        json const text(value);
        return scalar(text, isInId() ? text.dump() : std::string());
    }
    bool binary(binary_t &) override { return false; } // there is none in a text
    bool start_object(std::size_t) override { return start(json::object(), '{'); }
    bool end_object() override { return end('}'); }
    bool start_array(std::size_t) override { return start(json::array(), '['); }
    bool end_array() override { return end(']'); }

    bool key(string_t & name) override {
        if (isInId()) write(json(name).dump() + ':');
        m_bFirst = true;
        if (m_depth == 1) {
            m_member = name;
            if (name == "id") id.clear();
            if (name == "settings") settings.clear();
        } else if (m_depth == 2) {
            m_setting = name;
        }
        return true;
    }

    bool parse_error(std::size_t, std::string const &, json::exception const & error) override {
        throw LineError(error.what());
    }

private:
    // Whether what comes next belongs to the id.
    bool isInId() const { return m_depth > 1 ? m_member == "id" : m_depth == 1 && id.empty(); }

    void keep(json const & value) {
        if (m_depth == 0 && !value.is_object())
            throw LineError(messageUtf8(L"a line must be an object"));
        if (m_depth == 1) members[m_member] = value;
        if (m_depth == 2 && m_member == "settings") settings[m_setting] = value;
    }

    void write(std::string_view text) {
        if (!m_bFirst) id += ',';
        id += text;
        m_bFirst = false;
    }

    bool scalar(json const & value, std::string const & written) {
        keep(value);
        if (isInId()) write(written);
        return true;
    }

    bool start(json const & value, char bracket) {
        keep(value);
        if (isInId()) write(std::string(1, bracket));
        m_bFirst = true;
        ++m_depth;
        return true;
    }

    bool end(char bracket) {
        if (isInId()) id += bracket;
        m_bFirst = false;
        --m_depth;
        return true;
    }

    std::size_t m_depth = 0;
    std::string m_member;  // of the line, that is read
    std::string m_setting; // of "settings"
    bool m_bFirst = true;  // no comma stands before what comes next
};

using Members = LineHandler::Members;

std::wstring textOf(Members const & members, char const * key) {
    json const & value = members.at(key);
    if (!value.is_string())
        throw LineError(messageUtf8(L"\"%1%\" must be a text", Text::widen(key)));
    return Text::fromUtf8(value.get_ref<std::string const &>());
}

UnitContext contextOf(std::wstring const & text, char const * key) {
    if (text == L"?") return UnitContext();
    std::optional<UnitContext> context = unitContext(text);
    if (!context)
        throw LineError(
            messageUtf8(L"\"%1%\": %2% isn't a unit", Text::widen(key), inQuotes(text)));
    return *std::move(context);
}

UnitDisplaySettings settingsOf(LineHandler const & line) {
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    auto const given = line.members.find("settings");
    if (given == line.members.end() || given->second.is_null()) return settings;
    if (!given->second.is_object())
        throw LineError(messageUtf8(L"\"%1%\" must be an object", L"settings"));
    for (auto const & [name, value] : line.settings) {
        Units::UnitDisplaySettingsField const * const field =
            Units::findUnitDisplaySettingsField(name);
        if (!field)
            throw LineError(
                messageUtf8(L"\"settings\" has no %1%", inQuotes(Text::fromUtf8(name))));
        bool const flag = field->kind == Units::ESettingsField::Flag;
        if (flag ? !value.is_boolean() : !value.is_number())
            throw LineError(messageUtf8(flag ? tr(L"\"%1%\" must be true or false")
                                             : tr(L"\"%1%\" must be a number"),
                                        Text::fromUtf8(name)));
        std::wstring const wrong = setSetting(
            *field, settings, flag ? (value.get<bool>() ? 1.0 : 0.0) : value.get<double>());
        if (!wrong.empty()) throw LineError(Text::toUtf8(wrong));
    }
    return settings;
}

std::string answerTo(LineHandler const & line, bool withTokens) {
    Members const & members = line.members;
    if (!members.contains("text")) throw LineError(messageUtf8(L"there is no \"%1%\"", L"text"));
    std::wstring const text = textOf(members, "text");
    UnitContext const context =
        contextOf(members.contains("context") ? textOf(members, "context") : L"?", "context");
    UnitContext display = context;
    if (auto const given = members.find("display");
        given != members.end() && !given->second.is_null())
        display = contextOf(textOf(members, "display"), "display");
    UnitDisplaySettings const settings = settingsOf(line);
    Expression const expression(text, context);
    if (std::wstring const why = whyNotShown(expression, settings, display); !why.empty())
        throw LineError(Text::toUtf8(why));
    return answerMembers(expression, settings, display, withTokens,
                         expression.value() ? Expressions::FailureExplanation()
                                            : explainFailure(expression, {{}, {}, {}, &settings}));
}

// Without an id the line tells what is answered.
BatchAnswer errorAnswer(std::string const & id, std::size_t number, std::string_view what) {
    constexpr std::size_t c_longestMessage = 300;
    // The JSON library begins its messages with a number in square brackets.
    if (what.starts_with('[')) what.remove_prefix(what.find(' ') + 1);
    // What it couldn't read needn't be UTF-8, nor short.
    std::wstring const message = clipped(Text::fromUtf8(what), c_longestMessage);
    std::string const line = id == "null" ? ",\"line\":" + std::to_string(number) : std::string();
    return {"{\"id\":" + id + ",\"error\":" + jsonText(message) + line + '}', false};
}

BatchAnswer outOfMemory(std::string const & id, std::size_t number) {
    constexpr std::string_view c_what = "memory ran out"; // there is none for a translation
    try {
        return errorAnswer(id, number, c_what);
    } catch (std::bad_alloc const &) {
        return errorAnswer("null", number, c_what); // an id may be long
    }
}

enum class ERead { Line, TooLong, End };

// Reads a line; of one that memory doesn't hold nothing is left.
ERead readLine(std::istream & in, std::string & line) {
    std::ios::iostate const before = in.exceptions();
    ERead read = ERead::End;
    try {
        in.exceptions(std::ios::badbit); // else the stream keeps to itself what went wrong
        if (std::getline(in, line)) read = ERead::Line;
    } catch (std::bad_alloc const &) {
        std::string().swap(line);
        in.exceptions(std::ios::goodbit);
        in.clear();
        in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        read = ERead::TooLong;
    } catch (std::ios::failure const &) {
        // The stream is bad.
    }
    in.exceptions(before);
    return read;
}

} // namespace

BatchAnswer answerBatchLine(std::string const & line, std::size_t number, bool withTokens) {
    std::string id = "null"; // as long as the line isn't read to its end
    try {
        try {
            LineHandler handler;
            json::sax_parse(line, &handler);
            id = std::move(handler.id);
            return {"{\"id\":" + id + ',' + answerTo(handler, withTokens) + '}', true};
        } catch (LineError const & error) {
            return errorAnswer(id, number, error.what());
        }
    } catch (std::bad_alloc const &) {
        return outOfMemory(id, number);
    }
}

BatchOutcome runBatch(std::istream & in, std::ostream & out, BatchOptions const & options) {
    constexpr std::size_t c_linesBetweenReports = 1000;
    BatchOutcome outcome;
    std::string line;
    while (out) {
        ERead const read = readLine(in, line);
        if (read == ERead::End) break;
        ++outcome.lines;
        if (options.progress && outcome.lines % c_linesBetweenReports == 0)
            options.progress(outcome.lines);
        bool const isRead = read == ERead::Line;
        if (isRead && outcome.lines == 1) {
            if (std::wstring const why = takeByteOrderMark(line); !why.empty()) {
                out << errorAnswer("null", 1, Text::toUtf8(why)).text << '\n';
                ++outcome.badLines;
                break;
            }
        }
        if (isRead && line.find_first_not_of(" \t\r") == std::string::npos) continue;
        BatchAnswer const answer = isRead ? answerBatchLine(line, outcome.lines, options.withTokens)
                                          : outOfMemory("null", outcome.lines);
        if (!answer.understood) ++outcome.badLines;
        out << answer.text << '\n';
        // A reader at the other end of a pipe waits for its answer.
        if (in.rdbuf()->in_avail() <= 0) out.flush();
    }
    if (options.progress) options.progress(outcome.lines);
    outcome.inputFailed = in.bad();
    outcome.outputFailed = !out.flush();
    return outcome;
}

} // namespace Vn::Console
