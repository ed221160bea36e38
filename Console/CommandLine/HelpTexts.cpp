#include "Console/CommandLine/HelpTexts.h"

#include "Console/Documents/Command.h"
#include "Console/Messages.h"
#include "Console/Options.h"
#include "Console/Terminal/Table.h"

namespace Vn::Console {

namespace {

constexpr wchar_t const * c_description =
    tr(LR"(Evaluates expressions with units, and keeps documents. Without a subcommand it
reads lines: from the terminal with editing, history and completion, from a file
or a pipe without.)");

constexpr char c_examples[] = R"(  vnconsole
  vnconsole eval '1 in + 1 cm' --unit cm
  vnconsole eval '60 mph to km/hr'
  vnconsole eval '1/3 in' --precision 6
  vnconsole eval --json '2 ft' '3 yd'
  vnconsole eval --unit cm -- '-5 + 2 in'
  vnconsole units pressure
  vnconsole command 'Units.List /Verbose'
  vnconsole batch expressions.jsonl > results.jsonl
  vnconsole document --new a.vnd make, add 0 3, tree
  vnconsole eval --document a.vnd --kind Length '2'
  vnconsole mass '10 cm' '20 cm' '30 cm' --density '7850 kg/m^3'
  vnconsole options set lengthDisplay fractional

)";

constexpr wchar_t const * c_evalFormat = tr(LR"(A text that begins with "-" goes after "--".
A value is converted by "100 mm to in" or "100 mm -> in", and "100 mm as ?" shows
it in all units of its kind. "ans" stands for the value of the text before.
)");

constexpr wchar_t const * c_batchFormat =
    tr(LR"(Each line of the input is an object with the members
  id        any value, given back with the answer
  text      the expression
  context   "?" expects nothing, "" a result without units, else a unit
  display   null, or the unit in which the value is formatted
  settings  an object with any of the display settings
Each is answered by one line, in order. A line that can't be understood is
answered by its id, or the number of the line where it has none, and an error; the
exit status is then 1.
)");

constexpr wchar_t const * c_documentPaths =
    tr(LR"(A path is 0/2, Groups/CmnData[0]/CmnData[2], or '#12' by the id of the entity;
"." is the root group. The document is saved after the last command; if one
fails, nothing is saved.
)");

} // namespace

std::string descriptionHelp() { return messageUtf8(c_description); }

std::string examplesHelp() {
    return messageUtf8(L"Examples:") + '\n' + c_examples +
           messageUtf8(L"Exit status: 0 good, 1 the input was not good, 2 the command line was not "
                       L"understood.") +
           '\n';
}

std::string evalHelp() { return messageUtf8(c_evalFormat); }

std::string batchHelp() { return messageUtf8(c_batchFormat); }

std::string documentHelp() { return documentCallsText() + messageUtf8(c_documentPaths); }

std::string optionsHelp() {
    Table table;
    for (OptionsJob const & job : optionsJobs())
        table.add({std::wstring(job.name) + L' ' + job.arguments, message(job.meaning)});
    return table.toUtf8("  ") +
           messageUtf8(
               L"ID is the name of a display setting, such as generalPrecision, or the id "
               L"that the file\n"
               L"has, in any case. VALUE is as the file has it, or a choice as it is shown: "
               L"ft, fractional.\n");
}

} // namespace Vn::Console
