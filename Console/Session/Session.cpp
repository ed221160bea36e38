#include "Console/Session/Session.h"

#include <ostream>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/CommandLine/UnitsCommand.h"
#include "Console/Conversion.h"
#include "Console/Evaluation.h"
#include "Console/Host/Language.h"
#include "Console/Messages.h"
#include "Console/Options.h"
#include "Console/Session/TextCommands.h"
#include "Console/SettingsTexts.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"

namespace Vn::Console {

using Units::UnitContext;
using Field = Units::UnitDisplaySettingsField;
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

} // namespace

std::span<Session::Command const> Session::commands() {
    static constexpr Command c_commands[] = {
        {L"help", L"[TOPIC]", tr(L"what can be typed"), &Session::help},
        {L"unit", L"[UNIT]",
         tr(L"the unit of results: shows it, sets it; \"none\" expects nothing"), &Session::unit},
        {L"display", L"[UNIT]", tr(L"the unit in which values are shown; \"none\" for their own"),
         &Session::display},
        {L"set", L"[FIELD [VALUE]]",
         tr(L"the display settings: shows them, or changes one without saving it"), &Session::set},
        {L"options", L"[JOB ...]", tr(L"the preferences: list, get, set, reset, path"),
         &Session::options},
        {L"standard", L"", tr(L"back to the factory display settings"), &Session::standard},
        {L"units", L"[PATTERN]", tr(L"the units that expressions know"), &Session::units},
        {L"language", L"[TAG]", tr(L"the language of words and messages: shows it, or changes it"),
         &Session::language},
        {L"quit", L"", tr(L"ends the session; so does Ctrl-D"), &Session::quit},
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
    return (unit.empty() ? message(L"no unit") : unit) + L"> ";
}

Session::Result Session::execute(std::string const & utf8Line) {
    std::wstring decoded;
    if (!Text::fromUtf8(utf8Line, decoded)) return bad(message(L"the line isn't UTF-8"));
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
    Request const request = readRequest(text, m_context, m_last);
    bool const good = showBriefly(request, settings(), display, m_rOut, m_rErr);
    if (good) m_last.remember(request.expression, request.target ? &*request.target : nullptr);
    return good ? Result::Good : Result::Bad;
}

Session::Result Session::bad(std::wstring const & why) {
    m_rOut.flush();
    m_rErr << Text::toUtf8(why) << '\n' << std::flush;
    return Result::Bad;
}

bool Session::readUnit(std::wstring const & text, char const * what, UnitContext & context) {
    if (text == L"none") {
        context = UnitContext();
        return true;
    }
    return readUnitContext(text == L"\"\"" ? std::wstring() : text, what, context, m_rErr);
}

void Session::showUnit(wchar_t const * what, UnitContext const & context) {
    std::wstring const unit = context.hasExpectedUnits()
                                  ? namedUnits(*context.expectedUnits(), settings())
                                  : message(L"none");
    m_rOut << messageUtf8(what, unit) << '\n';
}

Session::Result Session::unit(std::wstring const & text) {
    if (!text.empty() && !readUnit(text, "unit", m_context)) return Result::Bad;
    showUnit(tr(L"expected unit: %1%"), m_context);
    return Result::Good;
}

Session::Result Session::display(std::wstring const & text) {
    if (!text.empty() && !readUnit(text, "display", m_display)) return Result::Bad;
    showUnit(tr(L"display unit: %1%"), m_display);
    return Result::Good;
}

void Session::showSettings() {
    Table table;
    for (Field const & field : Units::unitDisplaySettingsFields())
        table.add(
            {Text::widen(field.name), settingValue(field, settings()), settingMeaning(field)});
    m_rOut << table.toUtf8();
}

Session::Result Session::set(std::wstring const & argument) {
    std::wstring_view rest = argument;
    std::wstring const name = takeWord(rest);
    if (name.empty()) {
        showSettings();
        return Result::Good;
    }
    Field const * const field = findSetting(name);
    // A setting has one value; with more words it is a member of an entity.
    std::wstring_view more = rest;
    if (!field && (takeWord(more), !more.empty()))
        return runTextCommand({L"Document.Set " + argument}, m_rOut, m_rErr) == ExitGood
                   ? Result::Good
                   : Result::Bad;
    if (!field)
        return bad(noSuchSetting(name, tr(L"there is no setting %1%; \"set\" alone lists them")));
    if (!rest.empty()) {
        std::wstring const wrong = readSetting(*field, std::wstring(rest), settings());
        if (!wrong.empty()) return bad(wrong);
        m_set[field] = field->get(settings());
    }
    m_rOut << field->name << ' ' << Text::toUtf8(settingValue(*field, settings())) << '\n';
    return Result::Good;
}

void Session::setStandard() {
    settings() = UnitDisplaySettings::standard();
    for (Field const & field : Units::unitDisplaySettingsFields())
        m_set[&field] = field.get(settings());
}

Session::Result Session::standard(std::wstring const &) {
    setStandard();
    m_rOut << messageUtf8(L"the display settings are the factory's again") << '\n';
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
    std::wstring all;
    for (std::wstring const & each : languages()) all += (all.empty() ? L"" : L", ") + each;
    m_rOut << messageUtf8(L"language: %1%; there are %2%", Console::language(), all) << '\n';
    return Result::Good;
}

Session::Result Session::quit(std::wstring const &) { return Result::Quit; }

} // namespace Vn::Console
