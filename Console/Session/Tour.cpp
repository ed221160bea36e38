#include "Console/Session/Tour.h"

#include <ostream>
#include <string>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Failure.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Console {

using Expressions::Expression;
using Units::UnitContext;
using Units::UnitDisplaySettings;

namespace {

struct Stop {
    wchar_t const * text; // with %1% in the place of a word of the language
    wchar_t const * unit; // expected; null for none
    wchar_t const * says; // what there is to see
    Expressions::EToken word = Expressions::e_NONE;
};

constexpr Stop c_stops[] = {
    {L"1 in + 1 cm", L"cm", tr(L"lengths of any unit add up")},
    {L"2cm*2 + 3cm/2 - 2^3 + 4%3", L"cm", tr(L"bare numbers take the unit that is expected")},
    {L"2' 6 3/4\"", L"cm", tr(L"feet, inches and fractions as on a drawing")},
    {L"45 deg 30'", L"deg", tr(L"degrees and minutes")},
    {L"5 kg * 2 m / s^2", L"N", tr(L"units are worked out, not only carried along")},
    {L"%1% * 3 s", L"mph", tr(L"constants have units too"), Expressions::e_GRAVITY_CONSTANT},
    {L"%1%(60 deg) * 3 m", L"m", tr(L"functions take and give units"), Expressions::e_COS},
    {L"%1%(2 ft; 60 cm)", L"cm", tr(L"arguments are separated by semicolons"), Expressions::e_MAX},
    {L"20 C", L"F", tr(L"temperatures have a zero of their own")},
    {L"7 / (2.2)", nullptr, tr(L"a divisor that isn't a power of two goes in brackets")},
};

// Not good, to show what happens then.
constexpr wchar_t c_mistake[] = L"2 in + 3 CM";

std::wstring textOf(Stop const & stop) {
    if (stop.word == Expressions::e_NONE) return stop.text;
    return Text::filled(stop.text, {Expressions::Tokens::get()->getString(stop.word)});
}

std::wstring answerTo(Stop const & stop) {
    UnitContext const context = stop.unit ? UnitContext(std::wstring(stop.unit)) : UnitContext();
    Expression const expression(textOf(stop), context);
    if (!expression) return expression.result().toString();
    return expression.formatted(Units::ValueAndUnit, UnitDisplaySettings::standard(), context);
}

} // namespace

int runTour(std::ostream & out) {
    out << messageUtf8(L"vnconsole evaluates expressions with units. A few of them:") << "\n\n";
    Table table;
    table.add({message(L"expression"), message(L"expects"), message(L"result"), L""});
    for (Stop const & stop : c_stops)
        table.add({textOf(stop), stop.unit ? stop.unit : L"", answerTo(stop), message(stop.says)});
    out << table.toUtf8("  ");
    out << '\n' << messageUtf8(L"A mistake is shown where it is:") << "\n\n";
    std::string const failure = failureLines(Expression(c_mistake));
    for (std::size_t begin = 0; begin < failure.size();) {
        std::size_t const end = failure.find('\n', begin) + 1;
        out << "  " << failure.substr(begin, end - begin);
        begin = end;
    }
    out << '\n'
        << messageUtf8(L"Try one yourself:")
        << "\n\n"
           "  vnconsole eval '1/2 in + 3 mm' --unit mm\n"
           "  vnconsole units length\n"
           "  vnconsole --help\n";
    return ExitGood;
}

} // namespace Vn::Console
