#include "Console/CommandLine/CommandLine.h"

#include <algorithm>
#include <optional>
#include <ostream>

#include <CLI/CLI.hpp>

#include "Console/CommandLine/BatchCommand.h"
#include "Console/CommandLine/EvalCommand.h"
#include "Console/CommandLine/ExitStatus.h"
#include "Console/CommandLine/MassCommand.h"
#include "Console/CommandLine/SelfTestCommand.h"
#include "Console/CommandLine/UnitsCommand.h"
#include "Console/Documents/Command.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/TextCommands.h"
#include "Console/Options.h"
#include "Console/Session/Interactive.h"
#include "Console/Session/TextCommands.h"
#include "Console/Session/Tour.h"
#include "Console/Terminal/Table.h"
#include "Console/Terminal/Terminal.h"
#include "Console/Texts.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

namespace {

constexpr char c_description[] =
    R"(Evaluates expressions with units, and keeps documents. Without a subcommand it
reads lines: from the terminal with editing, history and completion, from a file
or a pipe without.)";

constexpr char c_examples[] = R"(Examples:
  vnconsole
  vnconsole eval '1 in + 1 cm' --unit cm
  vnconsole eval '60 mph' --display 'km / hr'
  vnconsole eval --json '2 ft' '3 yd'
  vnconsole eval --unit cm -- '-5 + 2 in'
  vnconsole units pressure
  vnconsole command 'Units.List /Verbose'
  vnconsole batch expressions.jsonl > results.jsonl
  vnconsole document --new a.vnd make, add 0 3, tree
  vnconsole eval --document a.vnd --kind Length '2'
  vnconsole mass '10 cm' '20 cm' '30 cm' --density '7850 kg/m^3'
  vnconsole options set lengthDisplay fractional

Exit status: 0 good, 1 the input was not good, 2 the command line was not understood.
)";

constexpr char c_batchFormat[] = R"(Each line of the input is an object with the members
  id        any value, given back with the answer
  text      the expression
  context   "?" expects nothing, "" a result without units, else a unit
  display   null, or the unit in which the value is formatted
  settings  an object with any of the display settings
Each is answered by one line, in order. A line that can't be understood is
answered by its id and an error; the exit status is then 1.
)";

constexpr char c_documentPaths[] =
    R"(A path is 0/2, Groups/CmnData[0]/CmnData[2], or '#12' by the id of the entity;
"." is the root group. The document is saved after the last command; if one
fails, nothing is saved.
)";

std::string optionsFooter() {
    Table table;
    for (OptionsJob const & job : optionsJobs())
        table.add({std::wstring(job.name) + L' ' + job.arguments, job.meaning});
    return table.toUtf8("  ") + "ID is the name of a display setting, such as generalPrecision, or "
                                "the id that the file\n"
                                "has, in any case. VALUE is as the file has it, or a choice as it "
                                "is shown: ft, fractional.\n";
}

// To the parser of the command line some texts are more than a text: one in square brackets is a
// list, and "++" ends a subcommand.  They pass it after this mark.
constexpr char c_mark = '\1';

std::string marked(std::string const & argument) {
    bool const special = !argument.empty() && (argument.front() == '[' || argument == "++");
    return special ? c_mark + argument : argument;
}

std::wstring wide(std::string_view argument) {
    if (!argument.empty() && argument.front() == c_mark) argument.remove_prefix(1);
    return Text::fromUtf8(argument);
}

// The command line as it is declared, and what was read.
class CommandLine {
public:
    CommandLine() : m_app(c_description, "vnconsole") {
        m_app.set_version_flag("--version", "vnconsole " VN_CONSOLE_VERSION);
        m_app.require_subcommand(0, 1);
        m_app.footer(c_examples);
        m_app.add_option("--language", m_language, "The language of the words, such as de")
            ->type_name("TAG");
        m_app
            .add_option("--options", m_optionsDirectory,
                        "The directory of the preferences, instead of the user's")
            ->type_name("DIR");
        m_app.add_flag("--standard", m_standard, "With the factory display settings");
        addEval();
        addUnits();
        addCommand();
        addBatch();
        addDocument();
        addMass();
        addOptions();
        addSelfTest();
        m_tour = addSubcommand("tour", "Shows a few expressions and what they evaluate to");
    }

    // Throws CLI::ParseError for a command line that can't be understood, and for a request for
    // help.
    void parse(std::vector<std::string> const & arguments) {
        std::vector<std::string> reversed;
        std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed), marked);
        m_app.parse(std::move(reversed));
    }

    int exit(CLI::ParseError const & error, std::ostream & out, std::ostream & err) const {
        return m_app.exit(error, out, err) == 0 ? ExitGood : ExitBadUsage;
    }

    std::string const & language() const { return m_language; }
    // Empty for the user's own.
    std::wstring optionsDirectory() const { return wide(m_optionsDirectory); }
    // Whether values are shown as the user prefers.  What others rely on isn't.
    bool usesPreferences() const { return !m_standard && !*m_batch && !*m_selfTest && !*m_tour; }

    int run(DocumentSession & document, std::istream & in, std::ostream & out,
            std::ostream & err) const {
        if (*m_eval) return runEval(evalOptions(), out, err);
        if (*m_units) return runUnits(wide(m_pattern), m_json, out, err);
        if (*m_command) return runTextCommand(texts(*m_words), out, err);
        if (*m_batch)
            return runBatchCommand(Text::toUtf8(wide(m_file)), errorIsTerminal(), in, out, err);
        if (*m_mass) return runMass(massOptions(), out, err);
        if (*m_document) return runDocument(documentOptions(), document, out, err);
        if (*m_options) return runOptions(texts(*m_optionsWords), m_json, out, err);
        if (*m_selfTest) return runSelfTest(Text::toUtf8(wide(m_group)), out, err);
        if (*m_tour) return runTour(out);
        return runInteractive(document, m_standard, in, out, err);
    }

private:
    CLI::App * addSubcommand(char const * name, char const * description) {
        CLI::App * const command = m_app.add_subcommand(name, description);
        command->fallthrough();
        command->allow_windows_style_options(false);
        return command;
    }

    // As they were typed: the parser of the command line would convert "{}" to an empty list.
    static std::vector<std::wstring> texts(CLI::Option const & option) {
        std::vector<std::wstring> result;
        for (std::string const & text : option.results()) result.push_back(wide(text));
        return result;
    }

    void addEval() {
        m_eval = addSubcommand("eval", "Evaluates expressions");
        m_texts = m_eval->add_option("TEXT", m_converted, "The expressions");
        m_texts->type_name("")->required();
        m_unitOption = m_eval->add_option(
            "--unit,-u", m_unit, "The unit of the result; an empty one for a result without units");
        m_unitOption->type_name("UNIT");
        m_displayOption =
            m_eval->add_option("--display,-d", m_display, "The unit in which the value is shown");
        m_displayOption->type_name("UNIT");
        addUnitSystem(*m_eval);
        m_eval->add_option("--kind", m_kind, "The kind of quantity of the result")
            ->type_name("KIND");
        m_eval->add_option("--id", m_id, "A key of the system that goes before both")
            ->type_name("KEY");
        m_eval->add_flag("--standard", m_standard, "With the factory display settings");
        m_eval->add_flag("--json", m_json, "One JSON object a line for each text");
        m_eval->footer("A text that begins with \"-\" goes after \"--\".\n");
    }

    // The units of a document, for who doesn't change it.
    void addUnitSystem(CLI::App & command) {
        command.add_option("--document", m_unitsFile, "A document whose units are used")
            ->type_name("FILE");
        command.add_option("--system", m_system, "Which of its unit systems, if there are several")
            ->type_name("ID");
    }

    // The text of an option, if it was given.
    static std::optional<std::wstring> given(CLI::App const & command, char const * option,
                                             std::string const & text) {
        return command.count(option) > 0 ? std::optional(wide(text)) : std::nullopt;
    }

    DocumentUnits documentUnits(CLI::App const & command) const {
        DocumentUnits units;
        units.file = given(command, "--document", m_unitsFile);
        units.system = given(command, "--system", m_system);
        return units;
    }

    void addMass() {
        m_mass = addSubcommand("mass", "Shows the mass properties of a box");
        m_edges = m_mass->add_option("EDGE", m_converted, "The lengths of three edges");
        m_edges->type_name("")->required()->expected(3);
        m_mass->add_option("--density", m_density, "The density of its material")
            ->type_name("VALUE")
            ->required();
        m_materialOption = m_mass->add_option("--material", m_material, "The name of its material");
        m_materialOption->type_name("NAME");
        m_overrides = m_mass->add_option("--override", m_converted,
                                         "A value in place of the calculated one: volume, area, "
                                         "mass or density");
        m_overrides->type_name("QUANTITY=VALUE")->expected(1)->take_all();
        addUnitSystem(*m_mass);
        m_mass->add_flag("--json", m_json, "One JSON object");
    }

    MassOptions massOptions() const {
        MassOptions options;
        options.edges = texts(*m_edges);
        options.density = wide(m_density);
        if (m_materialOption->count() > 0) options.material = wide(m_material);
        options.overrides = texts(*m_overrides);
        options.units = documentUnits(*m_mass);
        options.json = m_json;
        return options;
    }

    void addUnits() {
        m_units = addSubcommand("units", "Lists the units that expressions know");
        m_units->add_option("PATTERN", m_pattern, "A part of a name, abbreviation, symbol or kind")
            ->type_name("");
        m_units->add_flag("--json", m_json, "One JSON object a line for each unit");
    }

    void addCommand() {
        m_command = addSubcommand("command", "Runs a text command; without one, lists them");
        m_words = m_command->add_option("COMMAND", m_converted,
                                        "The command with its parameters and flags");
        m_words->type_name("");
    }

    void addBatch() {
        m_batch = addSubcommand("batch", "Evaluates JSON Lines");
        m_batch->add_option("FILE", m_file, "The input; the standard input if it is missing or -")
            ->type_name("");
        m_batch->footer(c_batchFormat);
    }

    void addDocument() {
        m_document = addSubcommand("document", "Runs commands on a document, and saves it");
        m_document->add_option("FILE", m_file, "The document")->type_name("")->required();
        m_calls = m_document->add_option("COMMAND", m_converted,
                                         "Commands, with a comma or \"then\" between them");
        m_calls->type_name("");
        m_document->add_flag("--new", m_new, "Makes the file, which must not be there");
        m_document->add_flag("--json", m_json,
                             "The tree as one JSON object a line, and nothing else");
        m_document->footer([] { return documentCallsText() + c_documentPaths; });
    }

    void addOptions() {
        m_options = addSubcommand("options", "Shows and changes the preferences");
        m_optionsWords = m_options->add_option("JOB", m_converted,
                                               "What to do, with the words that belong to it");
        m_optionsWords->type_name("");
        m_options->add_flag("--json", m_json, "One JSON object a line");
        m_options->footer([] { return optionsFooter(); });
    }

    void addSelfTest() {
        m_selfTest = addSubcommand("self-test", "Runs the library's checks of itself");
        m_selfTest->add_option("GROUP", m_group, "One group of checks only")->type_name("");
    }

    EvalOptions evalOptions() const {
        EvalOptions options;
        options.texts = texts(*m_texts);
        if (m_unitOption->count() > 0) options.unit = wide(m_unit);
        if (m_displayOption->count() > 0) options.display = wide(m_display);
        options.units = documentUnits(*m_eval);
        options.units.kind = given(*m_eval, "--kind", m_kind);
        options.units.id = given(*m_eval, "--id", m_id);
        options.standard = m_standard;
        options.json = m_json;
        return options;
    }

    DocumentOptions documentOptions() const {
        DocumentOptions options;
        options.file = wide(m_file);
        options.words = texts(*m_calls);
        options.isNew = m_new;
        options.json = m_json;
        return options;
    }

    CLI::App m_app;
    CLI::App * m_eval = nullptr;
    CLI::App * m_units = nullptr;
    CLI::App * m_command = nullptr;
    CLI::App * m_batch = nullptr;
    CLI::App * m_document = nullptr;
    CLI::App * m_mass = nullptr;
    CLI::App * m_options = nullptr;
    CLI::App * m_selfTest = nullptr;
    CLI::App * m_tour = nullptr;
    CLI::Option * m_texts = nullptr;
    CLI::Option * m_words = nullptr;
    CLI::Option * m_calls = nullptr;
    CLI::Option * m_edges = nullptr;
    CLI::Option * m_overrides = nullptr;
    CLI::Option * m_materialOption = nullptr;
    CLI::Option * m_optionsWords = nullptr;
    CLI::Option * m_unitOption = nullptr;
    CLI::Option * m_displayOption = nullptr;
    std::vector<std::string> m_converted; // what the options want to write to, and nobody reads
    std::string m_language;
    std::string m_optionsDirectory;
    std::string m_unit;
    std::string m_display;
    std::string m_pattern;
    std::string m_file;
    std::string m_group;
    std::string m_unitsFile;
    std::string m_system;
    std::string m_kind;
    std::string m_id;
    std::string m_density;
    std::string m_material;
    bool m_standard = false;
    bool m_json = false;
    bool m_new = false;
};

bool areUtf8(std::vector<std::string> const & arguments, std::ostream & err) {
    std::wstring text;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (Text::fromUtf8(arguments[i], text)) continue;
        err << "vnconsole: argument " << i + 1
            << " isn't UTF-8: " << Text::toUtf8(inQuotes(Text::fromUtf8(arguments[i]))) << '\n';
        return false;
    }
    return true;
}

// Whether an argument that was taken for an option was meant as a text.
bool looksLikeText(std::vector<std::string> const & arguments) {
    return std::any_of(arguments.begin(), arguments.end(), [](std::string const & argument) {
        return argument.size() > 1 && argument[0] == '-' && argument[1] != '-' &&
               (argument.size() > 2 || Text::isDigit(static_cast<unsigned char>(argument[1])));
    });
}

// Everything that depends on the language and on the preferences comes after this.
void prepareProcess(CommandLine const & commandLine, std::ostream & err) {
    std::filesystem::path const program = OS::executableDirectory();
    if (!program.empty()) {
        std::u8string const catalogues = (program.parent_path() / "share" / "locale").u8string();
        StringTable::catalogueDirectory(std::string(catalogues.begin(), catalogues.end()));
    }
    StringTable::language(commandLine.language());
    PathInfo::optionsDirectory(commandLine.optionsDirectory());
    Initializer::runAll();
    if (commandLine.usesPreferences())
        tellOfDamagedOptions(err);
    else
        Units::UnitDisplaySettings::userEditableSettings() = Units::UnitDisplaySettings::standard();
}

} // namespace

int runCommandLine(std::vector<std::string> const & arguments, std::istream & in,
                   std::ostream & out, std::ostream & err) {
    if (!areUtf8(arguments, err)) return ExitBadUsage;
    CommandLine commandLine;
    try {
        commandLine.parse(arguments);
    } catch (CLI::ParseError const & error) {
        int const status = commandLine.exit(error, out, err);
        if (status != ExitGood && looksLikeText(arguments))
            err << "A text that begins with \"-\" goes after \"--\": vnconsole eval -- '-PI'\n";
        return status;
    }
    prepareProcess(commandLine, err);
    DocumentSession document;
    DocumentTextCommands const documentCommands(document, &out);
    return commandLine.run(document, in, out, err);
}

} // namespace Vn::Console
