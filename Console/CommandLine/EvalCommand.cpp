#include "Console/CommandLine/EvalCommand.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <istream>
#include <ostream>

#include "Console/Answer.h"
#include "Console/CommandLine/ExitStatus.h"
#include "Console/Conversion.h"
#include "Console/Equivalents.h"
#include "Console/Evaluation.h"
#include "Console/Messages.h"
#include "Console/SettingsTexts.h"
#include "Console/Terminal/LineReader.h"
#include "Console/Terminal/NumberedErrors.h"
#include "Console/Terminal/Terminal.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

// More than a double has.
constexpr int c_mostDecimals = 100;

bool isBadUsage(std::wstring const & why, std::ostream & err) {
    if (!why.empty()) err << "vnconsole: " << Text::toUtf8(why) << '\n';
    return !why.empty();
}

// Takes that many decimals for all numbers.  Returns an empty text, or what is wrong.
std::wstring setPrecision(std::wstring const & text, UnitDisplaySettings & settings) {
    std::string const utf8 = Text::toUtf8(text);
    char const * const last = utf8.data() + utf8.size();
    int decimals = 0;
    auto const [end, error] = std::from_chars(utf8.data(), last, decimals);
    if (error != std::errc() || end != last || decimals < 0 || decimals > c_mostDecimals) {
        return message(L"--precision takes a whole number from 0 to %1%, not %2%", c_mostDecimals,
                       inQuotes(text));
    }
    auto const count = static_cast<short>(decimals);
    settings.generalPrecision(count);
    settings.angularPrecision(count);
    settings.scientificPrecision(count);
    if (settings.minimumPrecision() > count) settings.minimumPrecision(count);
    return {};
}

// Takes a setting as "lengthDisplay=1".  As above.
std::wstring assign(std::wstring const & text, UnitDisplaySettings & settings) {
    std::size_t const equals = text.find(L'=');
    std::wstring const name(trimmed(std::wstring_view(text).substr(0, equals)));
    Units::UnitDisplaySettingsField const * const field = findSetting(name);
    std::wstring why;
    if (!field)
        why = noSuchSetting(name, tr(L"there is no setting %1%; \"set\" in a session lists them"));
    else if (equals == text.npos)
        why =
            message(L"a value is missing, as in %1%", name + L"=" + settingValue(*field, settings));
    else
        why = readSetting(*field, std::wstring(trimmed(std::wstring_view(text).substr(equals + 1))),
                          settings);
    return why.empty() ? why : message(L"%1%: %2%", L"--set", why);
}

std::string jsonOf(std::vector<Equivalent> const & equivalents) {
    std::string text = "[";
    for (Equivalent const & each : equivalents) {
        if (text.size() > 1) text += ',';
        text += "{\"unit\":" + jsonText(each.unit) + ",\"kind\":" + jsonText(each.kind) +
                ",\"value\":" + jsonNumber(each.value) +
                ",\"formatted\":" + jsonText(each.formatted) + '}';
    }
    return text + ']';
}

// Answers one text after the other.
class Evaluator {
public:
    Evaluator(EvalOptions const & options, UnitContext const & context, UnitContext const & display,
              UnitDisplaySettings const & settings, std::ostream & out, std::ostream & err)
        : m_rOptions(options), m_rContext(context), m_rDisplay(display), m_rSettings(settings),
          m_rOut(out), m_rErr(err) {}

    // `line` is the number of the line that the text came from; 0 for none.  False for a text that
    // isn't good.
    bool answer(std::wstring const & text, std::size_t line) {
        Request const request = readRequest(text, m_rContext, m_last);
        bool const good = m_rOptions.json ? answerAsJson(text, request, line) : show(text, request);
        if (!request.refusal)
            m_last.remember(request.expression, request.target ? &*request.target : nullptr);
        return good;
    }

    bool refuse(std::wstring const & why, std::size_t line) {
        m_rOut.flush();
        if (m_rOptions.json)
            m_rOut << "{\"error\":" << jsonText(why) << ",\"line\":" << line << "}\n";
        else
            m_rErr << Text::toUtf8(why) << '\n' << std::flush;
        return false;
    }

private:
    bool show(std::wstring const & text, Request const & request) {
        if (m_rOptions.texts.size() != 1) {
            if (!m_bFirst) m_rOut << '\n';
            m_rOut << Text::toUtf8(printable(text)) << '\n';
        }
        m_bFirst = false;
        return showEvaluation(request, m_rSettings, m_rDisplay, m_rOut, m_rErr);
    }

    // One line.
    bool answerAsJson(std::wstring const & text, Request const & request, std::size_t line) {
        Expressions::Expression const & expression = request.expression;
        UnitContext const & display = request.wantsEquivalents ? m_anything
                                      : request.target         ? *request.target
                                                               : m_rDisplay;
        std::wstring const error = request.refusal ? request.refusal->message
                                                   : whyNotShown(expression, m_rSettings, display);
        m_rOut << "{\"text\":" << jsonText(text);
        if (!error.empty()) {
            m_rOut << ",\"error\":" << jsonText(error);
            if (line > 0) m_rOut << ",\"line\":" << line;
            if (request.refusal) m_rOut << ',' << refusalMembers(request.refusal->explanation);
        } else {
            if (expression.text() != text)
                m_rOut << ",\"expression\":" << jsonText(expression.text());
            m_rOut << ','
                   << answerMembers(expression, m_rSettings, display, m_rOptions.withTokens,
                                    expression.value() ? Expressions::FailureExplanation()
                                                       : explainFailure(request, m_rSettings));
            if (request.wantsEquivalents)
                m_rOut << ",\"equivalents\":" << jsonOf(equivalentsOf(expression, m_rSettings));
        }
        m_rOut << "}\n";
        return error.empty() && expression.value();
    }

    UnitContext const m_anything;
    EvalOptions const & m_rOptions;
    UnitContext const & m_rContext;
    UnitContext const & m_rDisplay;
    UnitDisplaySettings const & m_rSettings;
    std::ostream & m_rOut;
    std::ostream & m_rErr;
    LastValue m_last;
    bool m_bFirst = true; // nothing was shown yet
};

// Answers the lines of `in`, which are numbered unless a person types them; false if one isn't good
// or can't be read.
bool answerLines(Evaluator & evaluator, std::istream & in, std::ostream & out,
                 NumberedErrors & err) {
    bool const isTyped = inputIsTerminal();
    if (isTyped && errorIsTerminal())
        err << messageUtf8(L"Type expressions, each on a line; the end of the input ends.") << '\n'
            << std::flush;
    bool good = true;
    StreamLineReader reader(in);
    for (std::size_t number = 1; out; ++number) {
        std::optional<std::string> const line = reader.read({});
        err.begin(isTyped ? 0 : number);
        if (!reader.refusal().empty()) good = evaluator.refuse(reader.refusal(), number);
        if (!line) break;
        std::wstring text;
        if (!Text::fromUtf8(*line, text)) {
            good &= evaluator.refuse(message(L"the line isn't UTF-8"), number);
        } else if (std::wstring_view const trim = trimmed(text); !trim.empty()) {
            good &= evaluator.answer(std::wstring(trim), number);
        }
        // A reader at the other end of a pipe waits for its answer.
        if (in.rdbuf()->in_avail() <= 0) out.flush();
    }
    err.begin(0);
    if (in.bad())
        told(message(L"can't read %1%: %2%", message(L"the standard input"),
                     Text::fromUtf8(std::strerror(EIO))),
             err);
    return good && !in.bad() && out.flush();
}

} // namespace

int runEval(EvalOptions const & options, std::istream & in, std::ostream & out,
            std::ostream & err) {
    OpenedUnits units;
    if (int const status = openUnits(options.units, units, err); status != ExitGood) return status;
    UnitContext context;
    if (int const status = makeDocumentContext(options.units, options.unit, units, context, err);
        status != ExitGood)
        return status;
    UnitContext display = context;
    if (options.display && !readUnitContext(*options.display, "vnconsole: --display", display, err))
        return ExitBadUsage;
    UnitDisplaySettings settings =
        options.standard ? UnitDisplaySettings::standard() : UnitDisplaySettings::get();
    if (options.precision && isBadUsage(setPrecision(*options.precision, settings), err))
        return ExitBadUsage;
    for (std::wstring const & setting : options.settings)
        if (isBadUsage(assign(setting, settings), err)) return ExitBadUsage;

    NumberedErrors numbered(err);
    Evaluator evaluator(options, context, display, settings, out, numbered);
    bool good = true;
    if (options.texts.empty()) good = answerLines(evaluator, in, out, numbered);
    for (std::wstring const & text : options.texts) good &= evaluator.answer(text, 0);
    return good ? ExitGood : ExitBadInput;
}

} // namespace Vn::Console
