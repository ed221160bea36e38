#include "Console/Session/Session.h"

#include <charconv>
#include <cmath>
#include <ostream>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/CommandLine/UnitsCommand.h"
#include "Console/Evaluation.h"
#include "Console/Host/Language.h"
#include "Console/Options.h"
#include "Console/Session/TextCommands.h"
#include "Console/SettingsTexts.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"

namespace Vn::Console {

using Expressions::Expression;
using Units::UnitContext;
using Field = Units::UnitDisplaySettingsField;
using Units::ESettingsField;
using Units::UnitDisplaySettings;

namespace {

// The user's own, so that text commands show values in the same way.
UnitDisplaySettings & settings() { return UnitDisplaySettings::userEditableSettings(); }

// The word that a line begins with; the rest of the line, without blanks around it, stays in
// `line`.
std::wstring takeWord(std::wstring_view & line) {
    std::size_t end = 0;
    while (end < line.size() && !Text::isSpace(static_cast<char32_t>(line[end]))) ++end;
    std::wstring word(line.substr(0, end));
    line = trimmed(line.substr(end));
    return word;
}

std::wstring valueText(Field const & field) {
    double const value = field.get(settings());
    if (field.kind == ESettingsField::Flag) return value != 0.0 ? L"true" : L"false";
    return shortestNumber(value);
}

// The field by its name in any case.
Field const * findField(std::wstring const & name) {
    for (Field const & field : Units::unitDisplaySettingsFields())
        if (Text::foldedEqual(std::string_view(field.name), Text::toUtf8(name))) return &field;
    return nullptr;
}

std::wstring nearestField(std::wstring const & name) {
    auto const nameOf = [](Field const & field) { return Text::widen(field.name); };
    auto const nearest = Spelling::nearest(name, Units::unitDisplaySettingsFields(),
                                           Spelling::allowedMistakes(name.size()), nameOf);
    return nearest.empty() ? std::wstring() : nameOf(*nearest.front());
}

// NaN for what can't be read.
double readValue(Field const & field, std::wstring const & text) {
    if (field.kind == ESettingsField::Flag) {
        for (wchar_t const * const yes : {L"true", L"on", L"yes", L"1"})
            if (Text::foldedEqual(text, std::wstring_view(yes))) return 1.0;
        for (wchar_t const * const no : {L"false", L"off", L"no", L"0"})
            if (Text::foldedEqual(text, std::wstring_view(no))) return 0.0;
        return std::nan("");
    }
    std::string const utf8 = Text::toUtf8(text);
    double value = 0.0;
    auto const [end, error] = std::from_chars(utf8.data(), utf8.data() + utf8.size(), value);
    return error == std::errc() && end == utf8.data() + utf8.size() ? value : std::nan("");
}

} // namespace

std::span<Session::Command const> Session::commands() {
    static constexpr Command c_commands[] = {
        {L"help", L"[TOPIC]", L"what can be typed", &Session::help},
        {L"unit", L"[UNIT]", L"the unit of results: shows it, sets it; \"none\" expects nothing",
         &Session::unit},
        {L"display", L"[UNIT]", L"the unit in which values are shown; \"none\" for their own",
         &Session::display},
        {L"set", L"[FIELD [VALUE]]",
         L"the display settings: shows them, or changes one without saving it", &Session::set},
        {L"options", L"[JOB ...]", L"the preferences: list, get, set, reset, path",
         &Session::options},
        {L"standard", L"", L"back to the factory display settings", &Session::standard},
        {L"units", L"[PATTERN]", L"the units that expressions know", &Session::units},
        {L"language", L"[TAG]", L"the language of words and messages: shows it, or changes it",
         &Session::language},
        {L"quit", L"", L"ends the session; so does Ctrl-D", &Session::quit},
    };
    return c_commands;
}

Session::Session(std::ostream & out, std::ostream & err, bool standard) : m_rOut(out), m_rErr(err) {
    if (standard) setStandard();
}

std::wstring Session::prompt() const {
    UnitDisplaySettings const & standard = UnitDisplaySettings::standard();
    if (!m_context.hasExpectedUnits()) return L"> ";
    std::wstring const unit = clipped(unitText(*m_context.expectedUnits(), standard), 20);
    return (unit.empty() ? L"no unit" : unit) + L"> ";
}

Session::Result Session::execute(std::string const & utf8Line) {
    std::wstring decoded;
    if (!Text::fromUtf8(utf8Line, decoded)) return bad(L"the line isn't UTF-8");
    std::wstring_view rest = trimmed(decoded);
    if (rest.empty()) return Result::Good;
    std::wstring const line(rest);
    std::wstring const first = takeWord(rest);
    for (Command const & command : commands())
        if (first == command.name) return (this->*command.run)(std::wstring(rest));
    if (namesTextCommand(first))
        return runTextCommand({line}, m_rOut, m_rErr) == ExitGood ? Result::Good : Result::Bad;
    return evaluate(line);
}

Session::Result Session::evaluate(std::wstring const & text) {
    UnitContext const & display = m_display.hasExpectedUnits() ? m_display : m_context;
    bool const good = showBriefly(Expression(text, m_context), settings(), display, m_rOut, m_rErr);
    return good ? Result::Good : Result::Bad;
}

Session::Result Session::bad(std::wstring const & message) {
    m_rOut.flush();
    m_rErr << Text::toUtf8(message) << '\n' << std::flush;
    return Result::Bad;
}

bool Session::readUnit(std::wstring const & text, char const * what, UnitContext & context) {
    if (text == L"none") {
        context = UnitContext();
        return true;
    }
    return readUnitContext(text == L"\"\"" ? std::wstring() : text, what, context, m_rErr);
}

void Session::showUnit(char const * what, UnitContext const & context) {
    m_rOut << what << ": "
           << (context.hasExpectedUnits()
                   ? Text::toUtf8(namedUnits(*context.expectedUnits(), settings()))
                   : std::string("none"))
           << '\n';
}

Session::Result Session::unit(std::wstring const & text) {
    if (!text.empty() && !readUnit(text, "unit", m_context)) return Result::Bad;
    showUnit("expected unit", m_context);
    return Result::Good;
}

Session::Result Session::display(std::wstring const & text) {
    if (!text.empty() && !readUnit(text, "display", m_display)) return Result::Bad;
    showUnit("display unit", m_display);
    return Result::Good;
}

void Session::showSettings() {
    Table table;
    for (Field const & field : Units::unitDisplaySettingsFields())
        table.add({Text::widen(field.name), valueText(field), settingMeaning(field)});
    m_rOut << table.toUtf8();
}

Session::Result Session::set(std::wstring const & argument) {
    std::wstring_view rest = argument;
    std::wstring const name = takeWord(rest);
    if (name.empty()) {
        showSettings();
        return Result::Good;
    }
    Field const * const field = findField(name);
    // A setting has one value; with more words it is a member of an entity.
    std::wstring_view more = rest;
    if (!field && (takeWord(more), !more.empty()))
        return runTextCommand({L"Document.Set " + argument}, m_rOut, m_rErr) == ExitGood
                   ? Result::Good
                   : Result::Bad;
    if (!field) {
        std::wstring const nearest = nearestField(name);
        return bad(L"there is no setting " + inQuotes(name) +
                   (nearest.empty() ? L"; \"set\" alone lists them"
                                    : L"; did you mean " + nearest + L"?"));
    }
    if (!rest.empty()) {
        double const value = readValue(*field, std::wstring(rest));
        if (std::isnan(value)) {
            return bad(Text::widen(field->name) +
                       (field->kind == ESettingsField::Flag ? L" is true or false, not "
                                                            : L" is a number, not ") +
                       inQuotes(rest));
        }
        std::string const wrong = setSetting(*field, settings(), value);
        if (!wrong.empty()) return bad(Text::widen(wrong));
        m_set[field] = value;
    }
    m_rOut << field->name << ' ' << Text::toUtf8(valueText(*field)) << '\n';
    return Result::Good;
}

void Session::setStandard() {
    settings() = UnitDisplaySettings::standard();
    for (Field const & field : Units::unitDisplaySettingsFields())
        m_set[&field] = field.get(settings());
}

Session::Result Session::standard(std::wstring const &) {
    setStandard();
    m_rOut << "the display settings are the factory's again\n";
    return Result::Good;
}

Session::Result Session::options(std::wstring const & argument) {
    std::vector<std::wstring> words;
    bool json = false;
    for (std::wstring_view rest = argument; !rest.empty();) {
        std::wstring word = takeWord(rest);
        if (word == L"--json")
            json = true;
        else if (!word.empty())
            words.push_back(std::move(word));
    }
    int const status = runOptions(words, json, m_rOut, m_rErr, [this](OptionBase const & option) {
        m_set.erase(Units::findUnitDisplaySettingsField(
            Units::UnitDisplaySettingsOptionGroup::fieldName(option)));
    });
    // A change of one preference has written all of them into the record.
    for (auto const & [field, value] : m_set) field->set(settings(), value);
    return status == ExitGood ? Result::Good : Result::Bad;
}

Session::Result Session::units(std::wstring const & pattern) {
    return runUnits(pattern, false, m_rOut, m_rErr) == ExitGood ? Result::Good : Result::Bad;
}

Session::Result Session::language(std::wstring const & tag) {
    if (!tag.empty()) {
        std::string const chosen = Text::toUtf8(tag);
        if (std::wstring const why = whyNotLanguage(chosen); !why.empty()) return bad(why);
        StringTable::language(chosen);
    }
    m_rOut << "language: " << Text::toUtf8(Console::language()) << "; there are ";
    char const * separator = "";
    for (std::wstring const & each : languages()) {
        m_rOut << separator << Text::toUtf8(each);
        separator = ", ";
    }
    m_rOut << '\n';
    return Result::Good;
}

Session::Result Session::quit(std::wstring const &) { return Result::Quit; }

} // namespace Vn::Console
