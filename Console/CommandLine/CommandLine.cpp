#include "Console/CommandLine/CommandLine.h"

#include <algorithm>
#include <optional>
#include <ostream>

#include <CLI/CLI.hpp>

#include "Console/CommandLine/BatchCommand.h"
#include "Console/CommandLine/EvalCommand.h"
#include "Console/CommandLine/ExitStatus.h"
#include "Console/CommandLine/HelpTexts.h"
#include "Console/CommandLine/MassCommand.h"
#include "Console/CommandLine/ParserTexts.h"
#include "Console/CommandLine/SceneCommand.h"
#include "Console/CommandLine/SelfTestCommand.h"
#include "Console/CommandLine/ShellCompletion.h"
#include "Console/CommandLine/UnitsCommand.h"
#include "Console/Documents/Command.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/TextCommands.h"
#include "Console/Host/AddInsCommand.h"
#include "Console/Host/EarlyOptions.h"
#include "Console/Messages.h"
#include "Console/Options.h"
#include "Console/Session/Interactive.h"
#include "Console/Session/TextCommands.h"
#include "Console/Session/Tour.h"
#include "Console/Terminal/Terminal.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

namespace {

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
    CommandLine() : m_app(descriptionHelp(), "vnconsole") {
        translateParser(m_app);
        m_app.set_version_flag("--version", "vnconsole " VN_CONSOLE_VERSION,
                               messageUtf8(L"Display program version information and exit"));
        m_app.require_subcommand(0, 1);
        m_app.footer(examplesHelp());
        // As everywhere, what begins with a "/" is a text or a path.
        m_app.allow_windows_style_options(false);
        add(m_app, EValueOption::Language, m_language, "TAG",
            messageUtf8(L"The language of words and messages, such as de, instead of the one that "
                        L"LANG names"));
        add(m_app, EValueOption::Options, m_optionsDirectory, "DIR",
            messageUtf8(L"The directory of the preferences, instead of the user's"));
        m_app.add_flag("--standard", m_standard, messageUtf8(L"With the factory display settings"));
        addEval();
        addUnits();
        addCommand();
        addBatch();
        addDocument();
        addMass();
        addScene();
        addOptions();
        addAddIns();
        addSelfTest();
        m_tour = addSubcommand("tour",
                               messageUtf8(L"Shows a few expressions and what they evaluate to"));
        addShellCompletion();
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

    // What the program has settled before, as it is understood here.
    EarlyOptions earlyOptions() const {
        std::vector<CLI::App *> const subcommands = m_app.get_subcommands();
        return {Text::toUtf8(wide(m_language)), Text::toUtf8(wide(m_optionsDirectory)),
                subcommands.empty() ? std::string() : subcommands.front()->get_name()};
    }
    // Whether values are shown as the user prefers.  What others rely on isn't.
    bool usesPreferences() const { return !m_standard && !*m_batch && !*m_selfTest && !*m_tour; }

    int run(DocumentSession & document, std::istream & in, std::ostream & out,
            std::ostream & err) const {
        if (*m_eval) return runEval(evalOptions(), in, out, err);
        if (*m_units) return runUnits(wide(m_pattern), m_json, out, err);
        if (*m_command) return runTextCommand(texts(*m_words), out, err);
        if (*m_batch)
            return runBatchCommand(Text::toUtf8(wide(m_file)), !m_noTokens, errorIsTerminal(), in,
                                   out, err);
        if (*m_mass) return runMass(massOptions(), out, err);
        if (*m_scene) return runScene(wide(m_file), m_json, out, err);
        if (*m_document) return runDocument(documentOptions(), document, out, err);
        if (*m_options) return runOptions(texts(*m_optionsWords), m_json, out, err);
        if (*m_addIns) return runAddIns(m_json, out);
        if (*m_selfTest) return runSelfTest(Text::toUtf8(wide(m_group)), out, err);
        if (*m_tour) return runTour(out);
        if (*m_shellCompletion) return runShellCompletion(m_app, utf8(*m_shellWords), out);
        return runInteractive(document, m_standard, in, out, err);
    }

private:
    CLI::App * addSubcommand(char const * name, std::string const & description) {
        CLI::App * const command = m_app.add_subcommand(name, description);
        translateParser(*command);
        command->fallthrough();
        return command;
    }

    // Declares an option with a value, which may be any text.
    template <class Target>
    static CLI::Option * add(CLI::App & command, EValueOption option, Target & target,
                             char const * typeName, std::string const & description) {
        ValueOptionName const & name = valueOptionName(option);
        std::string names = name.name;
        if (name.shortName) names += std::string(",") + name.shortName;
        return command.add_option(names, target, description)->type_name(typeName);
    }

    // As they were typed: the parser of the command line would convert "{}" to an empty list.
    static std::vector<std::wstring> texts(CLI::Option const & option) {
        std::vector<std::wstring> result;
        for (std::string const & text : option.results()) result.push_back(wide(text));
        return result;
    }

    static std::vector<std::string> utf8(CLI::Option const & option) {
        std::vector<std::string> result;
        for (std::wstring const & text : texts(option)) result.push_back(Text::toUtf8(text));
        return result;
    }

    void addEval() {
        m_eval = addSubcommand("eval", messageUtf8(L"Evaluates expressions"));
        m_texts = m_eval->add_option(
            "TEXT", m_converted,
            messageUtf8(L"The expressions; without one, the lines of the standard input"));
        m_texts->type_name("");
        m_unitOption =
            add(*m_eval, EValueOption::Unit, m_unit, "UNIT",
                messageUtf8(L"The unit of the result; an empty one for a result without units"));
        m_displayOption = add(*m_eval, EValueOption::Display, m_display, "UNIT",
                              messageUtf8(L"The unit in which the value is shown"));
        m_precisionOption = add(*m_eval, EValueOption::Precision, m_precision, "N",
                                messageUtf8(L"How many decimals are shown, at most"));
        m_sets = add(*m_eval, EValueOption::Set, m_converted, "FIELD=VALUE",
                     messageUtf8(L"A display setting for this call, such as lengthDisplay=1"));
        m_sets->expected(1)->take_all()->allow_extra_args(false);
        addUnitSystem(*m_eval);
        add(*m_eval, EValueOption::Kind, m_kind, "KIND",
            messageUtf8(L"The kind of quantity of the result"));
        add(*m_eval, EValueOption::Id, m_id, "KEY",
            messageUtf8(L"A key of the system that goes before both"));
        m_eval->add_flag("--standard", m_standard,
                         messageUtf8(L"With the factory display settings"));
        m_eval->add_flag("--json", m_json, messageUtf8(L"One JSON object a line for each text"));
        addNoTokens(*m_eval);
        m_eval->footer(evalHelp());
    }

    void addNoTokens(CLI::App & command) {
        command.add_flag("--no-tokens", m_noTokens, messageUtf8(L"Without the tokens in JSON"));
    }

    // The units of a document, for who doesn't change it.
    void addUnitSystem(CLI::App & command) {
        add(command, EValueOption::Document, m_unitsFile, "FILE",
            messageUtf8(L"A document whose units are used"));
        add(command, EValueOption::System, m_system, "ID",
            messageUtf8(L"Which of its unit systems, if there are several"));
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
        m_mass = addSubcommand("mass", messageUtf8(L"Shows the mass properties of a box"));
        m_edges =
            m_mass->add_option("EDGE", m_converted, messageUtf8(L"The lengths of three edges"));
        m_edges->type_name("")->required()->expected(3);
        add(*m_mass, EValueOption::Density, m_density, "VALUE",
            messageUtf8(L"The density of its material"))
            ->required();
        m_materialOption = add(*m_mass, EValueOption::Material, m_material, "NAME",
                               messageUtf8(L"The name of its material"));
        m_overrides = add(
            *m_mass, EValueOption::Override, m_converted, "QUANTITY=VALUE",
            messageUtf8(L"A value in place of the calculated one: volume, area, mass or density"));
        m_overrides->expected(1)->take_all()->allow_extra_args(false);
        addUnitSystem(*m_mass);
        m_mass->add_flag("--json", m_json, messageUtf8(L"One JSON object"));
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

    void addScene() {
        m_scene = addSubcommand("scene", messageUtf8(L"Shows the render graph of a document"));
        m_scene->add_option("FILE", m_file, messageUtf8(L"The document"))
            ->type_name("")
            ->required();
        m_scene->add_flag("--json", m_json, messageUtf8(L"One JSON object a line for each node"));
    }

    void addUnits() {
        m_units = addSubcommand("units", messageUtf8(L"Lists the units that expressions know"));
        m_units
            ->add_option("PATTERN", m_pattern,
                         messageUtf8(L"A part of a name, abbreviation, symbol or kind"))
            ->type_name("");
        m_units->add_flag("--json", m_json, messageUtf8(L"One JSON object a line for each unit"));
    }

    void addCommand() {
        m_command =
            addSubcommand("command", messageUtf8(L"Runs a text command; without one, lists them"));
        m_words = m_command->add_option("COMMAND", m_converted,
                                        messageUtf8(L"The command with its parameters and flags"));
        m_words->type_name("");
    }

    void addBatch() {
        m_batch = addSubcommand("batch", messageUtf8(L"Evaluates JSON Lines"));
        m_batch
            ->add_option("FILE", m_file,
                         messageUtf8(L"The input; the standard input if it is missing or -"))
            ->type_name("");
        addNoTokens(*m_batch);
        m_batch->footer(batchHelp());
    }

    void addDocument() {
        m_document =
            addSubcommand("document", messageUtf8(L"Runs commands on a document, and saves it"));
        m_document->add_option("FILE", m_file, messageUtf8(L"The document"))
            ->type_name("")
            ->required();
        m_calls =
            m_document->add_option("COMMAND", m_converted,
                                   messageUtf8(L"Commands, with a comma or \"then\" between them"));
        m_calls->type_name("");
        m_document->add_flag("--new", m_new,
                             messageUtf8(L"Makes the file, which must not be there"));
        m_document->add_flag("--json", m_json,
                             messageUtf8(L"The tree as one JSON object a line, and nothing else"));
        m_document->add_flag(
            "--verbose", m_verbose,
            messageUtf8(L"The tree with what the system itself says of each entity"));
        addCallOption(EValueOption::Output, "FILE", messageUtf8(L"The file that picture makes"));
        addCallOption(EValueOption::View, "VIEW",
                      messageUtf8(L"The named view that picture draws, instead of HOME"));
        addCallOption(EValueOption::From, "X,Y,Z",
                      messageUtf8(L"The direction from which picture draws, instead of a view"));
        addCallOption(EValueOption::Size, "WxH",
                      messageUtf8(L"The size of the picture in pixels, instead of 1024x768"));
        addCallFlag("--no-background",
                    messageUtf8(L"The picture without the background of the document"));
        m_document->footer([] { return documentHelp(); });
    }

    // Options that belong to some of the commands on a document.
    void addCallOption(EValueOption option, char const * typeName,
                       std::string const & description) {
        CLI::Option * const added = add(*m_document, option, m_converted, typeName, description);
        added->expected(1)->take_last();
        m_callOptions.push_back(added);
    }
    void addCallFlag(char const * name, std::string const & description) {
        m_callOptions.push_back(m_document->add_flag(name, description));
    }

    void addOptions() {
        m_options = addSubcommand("options", messageUtf8(L"Shows and changes the preferences"));
        m_optionsWords = m_options->add_option(
            "JOB", m_converted, messageUtf8(L"What to do, with the words that belong to it"));
        m_optionsWords->type_name("");
        m_options->add_flag("--json", m_json, messageUtf8(L"One JSON object a line"));
        m_options->footer([] { return optionsHelp(); });
    }

    void addAddIns() {
        m_addIns =
            addSubcommand("add-ins", messageUtf8(L"Lists the add-ins, and why one isn't loaded"));
        m_addIns->add_flag("--json", m_json,
                           messageUtf8(L"One JSON object a line for each add-in"));
    }

    void addSelfTest() {
        m_selfTest =
            addSubcommand("self-test", messageUtf8(L"Runs the library's checks of itself"));
        m_selfTest->add_option("GROUP", m_group, messageUtf8(L"One group of checks only"))
            ->type_name("");
    }

    // For the scripts of the shells, and in no list.
    void addShellCompletion() {
        m_shellCompletion =
            addSubcommand("shell-completion", messageUtf8(L"Completes the words of a call"));
        m_shellWords =
            m_shellCompletion->add_option("WORD", m_converted, messageUtf8(L"The words"));
        m_shellWords->type_name("");
        m_shellCompletion->group("");
    }

    EvalOptions evalOptions() const {
        EvalOptions options;
        options.texts = texts(*m_texts);
        if (m_unitOption->count() > 0) options.unit = wide(m_unit);
        if (m_displayOption->count() > 0) options.display = wide(m_display);
        if (m_precisionOption->count() > 0) options.precision = wide(m_precision);
        options.settings = texts(*m_sets);
        options.units = documentUnits(*m_eval);
        options.units.kind = given(*m_eval, "--kind", m_kind);
        options.units.id = given(*m_eval, "--id", m_id);
        options.standard = m_standard;
        options.json = m_json;
        options.withTokens = !m_noTokens;
        return options;
    }

    DocumentOptions documentOptions() const {
        DocumentOptions options;
        options.file = wide(m_file);
        options.words = texts(*m_calls);
        for (CLI::Option const * const option : m_callOptions)
            if (option->count() > 0)
                options.callOptions.emplace_back(
                    Text::fromUtf8("--" + option->get_lnames().front()), texts(*option).back());
        options.isNew = m_new;
        options.verbose = m_verbose;
        options.json = m_json;
        return options;
    }

    CLI::App m_app;
    std::vector<CLI::Option const *> m_callOptions;
    CLI::App * m_eval = nullptr;
    CLI::App * m_units = nullptr;
    CLI::App * m_command = nullptr;
    CLI::App * m_batch = nullptr;
    CLI::App * m_document = nullptr;
    CLI::App * m_mass = nullptr;
    CLI::App * m_options = nullptr;
    CLI::App * m_scene = nullptr;
    CLI::App * m_addIns = nullptr;
    CLI::App * m_selfTest = nullptr;
    CLI::App * m_tour = nullptr;
    CLI::App * m_shellCompletion = nullptr;
    CLI::Option * m_texts = nullptr;
    CLI::Option * m_words = nullptr;
    CLI::Option * m_calls = nullptr;
    CLI::Option * m_edges = nullptr;
    CLI::Option * m_overrides = nullptr;
    CLI::Option * m_materialOption = nullptr;
    CLI::Option * m_optionsWords = nullptr;
    CLI::Option * m_shellWords = nullptr;
    CLI::Option * m_unitOption = nullptr;
    CLI::Option * m_displayOption = nullptr;
    CLI::Option * m_precisionOption = nullptr;
    CLI::Option * m_sets = nullptr;
    std::vector<std::string> m_converted; // what the options want to write to, and nobody reads
    std::string m_language;
    std::string m_optionsDirectory;
    std::string m_unit;
    std::string m_display;
    std::string m_precision;
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
    bool m_noTokens = false;
    bool m_new = false;
    bool m_verbose = false;
};

bool areUtf8(std::vector<std::string> const & arguments, std::ostream & err) {
    std::wstring text;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (Text::fromUtf8(arguments[i], text)) continue;
        told(message(L"argument %1% isn't UTF-8: %2%", i + 1,
                     inQuotes(Text::fromUtf8(arguments[i]))),
             err);
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

// Whether the program has settled the language and the preferences as they are understood here.
bool isSettled(std::vector<std::string> const & arguments, CommandLine const & commandLine,
               std::ostream & err) {
    EarlyOptions const wanted = commandLine.earlyOptions();
    EarlyOptions const settled = readEarlyOptions(arguments);
    if (wanted.language == settled.language && wanted.optionsDirectory == settled.optionsDirectory)
        return true;
    told(message(L"--language and --options can't stand after \"--\""), err);
    return false;
}

} // namespace

std::optional<EarlyOptions> understoodOptions(std::vector<std::string> const & arguments) {
    CommandLine commandLine;
    try {
        commandLine.parse(arguments);
    } catch (CLI::ParseError const &) {
        return std::nullopt;
    }
    return commandLine.earlyOptions();
}

int runCommandLine(std::vector<std::string> const & arguments, std::istream & in,
                   std::ostream & out, std::ostream & err) {
    if (!areUtf8(arguments, err)) return ExitBadUsage;
    CommandLine commandLine;
    try {
        commandLine.parse(arguments);
    } catch (CLI::ParseError const & error) {
        int const status = commandLine.exit(error, out, err);
        if (status != ExitGood && looksLikeText(arguments))
            err << messageUtf8(L"A text that begins with \"-\" goes after \"--\": %1%",
                               L"vnconsole eval -- '-PI'")
                << '\n';
        return status;
    }
    if (!isSettled(arguments, commandLine, err)) return ExitBadUsage;
    if (commandLine.usesPreferences())
        tellOfDamagedOptions(err);
    else
        Units::UnitDisplaySettings::userEditableSettings() = Units::UnitDisplaySettings::standard();
    DocumentSession document;
    DocumentTextCommands const documentCommands(document, &out);
    return commandLine.run(document, in, out, err);
}

} // namespace Vn::Console
