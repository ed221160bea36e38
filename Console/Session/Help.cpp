// What `help` tells.

#include <ostream>

#include "Console/Documents/CommandTable.h"
#include "Console/Options.h"
#include "Console/Session/Session.h"
#include "Console/Session/TextCommands.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Console {

using Expressions::EToken;
using Expressions::Tokens;

namespace {

struct Example {
    wchar_t const * text;
    wchar_t const * meaning;
};

constexpr Example c_operators[] = {
    {L"1 in + 1 cm", L"sums and differences of one kind of quantity"},
    {L"5 kg * 2 m / s^2", L"products and quotients; a power of a unit is a whole number"},
    {L"7 % 4", L"the remainder"},
    {L"2 ^ 3", L"a power"},
    {L"2 + 3 * (4 - 1)", L"brackets; products and powers go before sums, from left to right"},
    {L"max(2 ft; 60 cm)", L"functions; arguments are separated by semicolons"},
    {L"7 / (2.2)", L"a divisor in brackets: 7/2.2 begins with the fraction 7/2"},
};

constexpr Example c_numbers[] = {
    {L"2.5 cm  2,5 cm", L"decimals after a full stop or a comma"},
    {L"2.2E-6 m", L"an exponent"},
    {L"1 3/4 in  3/4\"", L"fractions with a divisor of 2, 4, 8, 16, 32, 64 or 128"},
    {L"2' 6 3/4\"", L"feet and inches"},
    {L"45 deg 30' 15\"", L"degrees, minutes and seconds"},
    {L"20 C", L"temperatures have a zero of their own"},
    {L"cm", L"a unit alone is one of it"},
};

constexpr Example c_conversions[] = {
    {L"100 mm to in", L"a value in another unit of the same dimension"},
    {L"60 mph -> km/hr", L"the same"},
    {L"5 in as ?", L"in all units of its dimension"},
    {L"-> cm", L"the last value in another unit"},
    {L"ans * 2", L"the last value in an expression"},
    {L"5 mm as in", L"a product with attoseconds: what the language reads isn't converted"},
};

template <std::size_t N>
void show(Example const (&examples)[N], std::ostream & out) {
    Table table;
    for (Example const & example : examples) table.add({example.text, example.meaning});
    out << table.toUtf8("  ");
}

std::wstring functionText(EToken token) {
    std::wstring text = Tokens::get()->getString(token) + L'(';
    constexpr wchar_t const * c_arguments[] = {L"", L"a", L"a; b"};
    return text + c_arguments[Expressions::functionArity(*Expressions::functionOfToken(token))] +
           L')';
}

} // namespace

std::span<Session::Topic const> Session::topics() {
    static constexpr Topic c_topics[] = {
        {L"expressions", L"operators, brackets and functions", &Session::helpOnExpressions},
        {L"numbers", L"the forms in which numbers are typed", &Session::helpOnNumbers},
        {L"conversions", L"values in other units, and the last value", &Session::helpOnConversions},
        {L"functions", L"the functions and their arguments", &Session::helpOnFunctions},
        {L"constants", L"the constants and their values", &Session::helpOnConstants},
        {L"prefixes", L"the prefixes of units", &Session::helpOnPrefixes},
        {L"preferences", L"how values are written, from now on", &Session::helpOnPreferences},
        {L"documents", L"documents and their groups", &Session::helpOnDocuments},
        {L"commands", L"the text commands", &Session::helpOnCommands},
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
            named.add({std::wstring(command.name) + L' ' + command.arguments, command.meaning});
    if (DocumentCommand const * const command = findDocumentCommand(topic))
        named.add({Text::widen(command->alias) + L' ' + command->usage, command->meaning});
    if (std::string const text = named.toUtf8("  "); !text.empty()) {
        m_rOut << text;
        return Result::Good;
    }
    if (!topic.empty()) return bad(L"there is no help on " + inQuotes(topic));

    m_rOut << "Type an expression, such as 1 in + 1 cm, to evaluate it; a text command, such as\n"
              "Units.List, to run it; or one of these:\n\n";
    Table table;
    for (Command const & command : commands())
        table.add({std::wstring(command.name) + L' ' + command.arguments, command.meaning});
    m_rOut << table.toUtf8("  ") << "\nMore is told by help with one of these topics:\n\n";
    Table more;
    for (Topic const & each : topics()) more.add({each.name, each.meaning});
    m_rOut << more.toUtf8("  ")
           << "\nOn a terminal the tab key completes words, and the arrow keys bring lines back.\n";
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
        table.add({tokens.getString(token), shortestNumber(tokens.getConstantValue(token)), units});
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
                   shortestNumber(tokens.getMagnitudeValue(longForm))});
    }
    m_rOut << table.toUtf8("  ");
}

void Session::helpOnPreferences() {
    Table table;
    for (OptionsJob const & job : optionsJobs())
        table.add({std::wstring(L"options ") + job.name + L' ' + job.arguments, job.meaning});
    m_rOut << table.toUtf8("  ")
           << "ID is a display setting, such as lengthDisplay; VALUE is a number, ON or OFF, or a "
              "choice as\n"
              "it is shown: fractional. What set changes holds for the session, and goes before "
              "these.\n";
}

void Session::helpOnDocuments() {
    Table table;
    for (DocumentCommand const & command : documentCommands())
        for (DocumentExample const & example : command.examples)
            if (example.line) table.add({example.line, example.meaning});
    m_rOut << table.toUtf8("  ") << "These are short for Document.New, Groups.Make and so on.\n";
}

void Session::helpOnCommands() { runTextCommand({}, m_rOut, m_rErr); }

} // namespace Vn::Console
