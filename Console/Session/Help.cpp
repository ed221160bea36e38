// What `help` tells.

#include <ostream>

#include "Console/Documents/CommandTable.h"
#include "Console/Messages.h"
#include "Console/Options.h"
#include "Console/Session/Session.h"
#include "Console/Session/TextCommands.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Console {

using Expressions::EToken;
using Expressions::Tokens;

namespace {

struct Example {
    wchar_t const * text; // with %1% in the place of the word for the greatest of several
    wchar_t const * meaning;
};

constexpr Example c_operators[] = {
    {L"1 in + 1 cm", tr(L"sums and differences of one kind of quantity")},
    {L"5 kg * 2 m / s^2", tr(L"products and quotients; a power of a unit is a whole number")},
    {L"7 % 4", tr(L"the remainder")},
    {L"2 ^ 3", tr(L"a power")},
    {L"2 + 3 * (4 - 1)", tr(L"brackets; products and powers go before sums, from left to right")},
    {L"%1%(2 ft; 60 cm)", tr(L"functions; arguments are separated by semicolons")},
    {L"7 / (2.2)", tr(L"a divisor in brackets: 7/2.2 begins with the fraction 7/2")},
};

constexpr Example c_numbers[] = {
    {L"2.5 cm  2,5 cm", tr(L"decimals after a full stop or a comma")},
    {L"2.2E-6 m", tr(L"an exponent")},
    {L"1 3/4 in  3/4\"", tr(L"fractions with a divisor of 2, 4, 8, 16, 32, 64 or 128")},
    {L"2' 6 3/4\"", tr(L"feet and inches")},
    {L"45 deg 30' 15\"", tr(L"degrees, minutes and seconds")},
    {L"20 C", tr(L"temperatures have a zero of their own")},
    {L"cm", tr(L"a unit alone is one of it")},
};

constexpr Example c_conversions[] = {
    {L"100 mm to in", tr(L"a value in another unit of the same dimension")},
    {L"60 mph -> km/hr", tr(L"the same")},
    {L"5 in as ?", tr(L"in all units of its dimension")},
    {L"-> cm", tr(L"the last value in another unit")},
    {L"ans * 2", tr(L"the last value in an expression")},
    {L"5 mm as in", tr(L"a product with attoseconds: what the language reads isn't converted")},
};

template <std::size_t N>
void show(Example const (&examples)[N], std::ostream & out) {
    std::wstring const word = Tokens::get()->getString(Expressions::e_MAX);
    Table table;
    for (Example const & example : examples)
        table.add({Text::filled(example.text, {word}), message(example.meaning)});
    out << table.toUtf8("  ");
}

std::wstring functionText(EToken token) {
    std::wstring text = Tokens::get()->getString(token) + L'(';
    constexpr wchar_t const * c_arguments[] = {L"", L"a", L"a; b"};
    return text + c_arguments[Expressions::functionArity(*Expressions::functionOfToken(token))] +
           L')';
}

// A text command by its name, or all of a subject area.
void addTextCommands(std::wstring_view topic, Table & table) {
    TextCommandService const & service = TextCommandService::get();
    std::wstring_view const area = topic.substr(0, topic.find(L'.'));
    std::wstring_view const name = area.size() < topic.size() ? topic.substr(area.size() + 1) : L"";
    for (TextCommand const * const command : service.commands(area))
        if (!command->hidden() && (name.empty() || Text::foldedEqual(command->name(), name)))
            table.add({command->subjectArea() + L'.' + command->name(), descriptionOf(*command)});
}

} // namespace

std::span<Session::Topic const> Session::topics() {
    static constexpr Topic c_topics[] = {
        {L"expressions", tr(L"operators, brackets and functions"), &Session::helpOnExpressions},
        {L"numbers", tr(L"the forms in which numbers are typed"), &Session::helpOnNumbers},
        {L"conversions", tr(L"values in other units, and the last value"),
         &Session::helpOnConversions},
        {L"functions", tr(L"the functions and their arguments"), &Session::helpOnFunctions},
        {L"constants", tr(L"the constants and their values"), &Session::helpOnConstants},
        {L"prefixes", tr(L"the prefixes of units"), &Session::helpOnPrefixes},
        {L"preferences", tr(L"how values are written, from now on"), &Session::helpOnPreferences},
        {L"documents", tr(L"documents and their groups"), &Session::helpOnDocuments},
        {L"commands", tr(L"the text commands"), &Session::helpOnCommands},
    };
    return c_topics;
}

Session::Result Session::help(std::wstring const & topic) {
    for (Topic const & each : topics()) {
        if (topic != each.name) continue;
        (this->*each.show)();
        return Result::Good;
    }
    // A command of the session and one on documents may have the same name.
    Table named;
    for (Command const & command : commands())
        if (topic == command.name)
            named.add(
                {std::wstring(command.name) + L' ' + command.arguments, message(command.meaning)});
    if (DocumentCommand const * const command = findDocumentCommand(topic))
        named.add({Text::widen(command->alias) + L' ' + command->usage, message(command->meaning)});
    if (named.toUtf8("  ").empty()) addTextCommands(topic, named);
    if (std::string const text = named.toUtf8("  "); !text.empty()) {
        m_rOut << text;
        return Result::Good;
    }
    if (!topic.empty()) return bad(message(L"there is no help on %1%", inQuotes(topic)));

    m_rOut
        << messageUtf8(
               L"Type an expression, such as 1 in + 1 cm, to evaluate it; a text command, such as\n"
               L"Units.List, to run it; or one of these:")
        << "\n\n";
    Table table;
    for (Command const & command : commands())
        table.add(
            {std::wstring(command.name) + L' ' + command.arguments, message(command.meaning)});
    m_rOut << table.toUtf8("  ") << '\n'
           << messageUtf8(L"More is told by help with one of these topics:") << "\n\n";
    Table more;
    for (Topic const & each : topics()) more.add({each.name, message(each.meaning)});
    m_rOut
        << more.toUtf8("  ") << '\n'
        << messageUtf8(
               L"On a terminal the tab key completes words, and the arrow keys bring lines back.")
        << '\n';
    return Result::Good;
}

void Session::helpOnExpressions() { show(c_operators, m_rOut); }

void Session::helpOnNumbers() { show(c_numbers, m_rOut); }

void Session::helpOnConversions() { show(c_conversions, m_rOut); }

void Session::helpOnFunctions() {
    Table table;
    std::vector<std::wstring> row;
    for (EToken const token : Expressions::c_functionTokens) {
        row.push_back(functionText(token));
        if (row.size() < 6) continue;
        table.add(std::exchange(row, {}));
    }
    table.add(row);
    m_rOut << table.toUtf8("  ");
}

void Session::helpOnConstants() {
    Table table;
    for (EToken const token :
         {Expressions::e_PI_CONSTANT, Expressions::e_E_CONSTANT, Expressions::e_GRAVITY_CONSTANT,
          Expressions::e_SPEED_OF_LIGHT_CONSTANT}) {
        Tokens const & tokens = *Tokens::get();
        std::wstring const units =
            internalUnitText(tokens.constantUnits(token), Units::UnitDisplaySettings::standard());
        table.add({tokens.getString(token), shownNumber(tokens.getConstantValue(token)), units});
    }
    m_rOut << table.toUtf8("  ");
}

void Session::helpOnPrefixes() {
    Tokens const & tokens = *Tokens::get();
    Table table;
    for (int token = Expressions::e_EXA; token <= Expressions::e_ATTO; ++token) {
        if (token == Expressions::e_DECA_RESERVED) continue;
        auto const longForm = static_cast<EToken>(token);
        auto const shortForm = static_cast<EToken>(++token);
        table.add({tokens.getString(longForm), tokens.getString(shortForm),
                   shownNumber(tokens.getMagnitudeValue(longForm))});
    }
    m_rOut << table.toUtf8("  ");
}

void Session::helpOnPreferences() {
    Table table;
    for (OptionsJob const & job : optionsJobs())
        table.add(
            {std::wstring(L"options ") + job.name + L' ' + job.arguments, message(job.meaning)});
    m_rOut
        << table.toUtf8("  ")
        << messageUtf8(
               L"ID is a display setting, such as lengthDisplay; VALUE is a number, ON or OFF, or "
               L"a "
               L"choice as\n"
               L"it is shown: fractional. What set changes holds for the session, and goes before "
               L"these.")
        << '\n';
}

void Session::helpOnDocuments() {
    Table table;
    for (DocumentCommand const & command : documentCommands())
        for (DocumentExample const & example : command.examples)
            if (example.line) table.add({example.line, message(example.meaning)});
    m_rOut << table.toUtf8("  ")
           << messageUtf8(L"These are short for Document.New, Groups.Make and so on.") << '\n';
}

void Session::helpOnCommands() { runTextCommand({}, m_rOut, m_rErr); }

} // namespace Vn::Console
