#include "Console/CommandLine/ShellCompletion.h"

#include <algorithm>
#include <ostream>

#include <CLI/CLI.hpp>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/CommandTable.h"
#include "Console/Host/Language.h"
#include "Console/Options.h"
#include "Console/Session/TextCommands.h"
#include "Console/SettingsTexts.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/UnitTest.h"
#include "Server/CommonData/Expressions/Vocabulary.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Console {

namespace {

using Words = std::vector<std::string>;

constexpr char c_files[] = ":files";

Words unitNames() {
    Words words;
    using Expressions::Vocabulary;
    for (Vocabulary::Word const & word : Vocabulary::get().words())
        if (word.kind == Vocabulary::EKind::Unit || word.kind == Vocabulary::EKind::PrefixedUnit)
            words.push_back(Text::toUtf8(word.text));
    return words;
}

Words kinds() {
    Words words;
    for (Units::SimpleUnit const * const unit : Units::listUnits())
        words.push_back(Text::toUtf8(unit->simpleUnitTypeName()));
    return words;
}

// The values of a field, each after `front`; none for a name that no field has.
Words valuesOfSetting(std::string const & name, std::string const & front) {
    Words words;
    if (Units::UnitDisplaySettingsField const * const field = findSetting(Text::fromUtf8(name)))
        for (std::wstring const & word : settingWords(*field))
            words.push_back(front + Text::toUtf8(word));
    return words;
}

// Of "FIELD=VALUE", of which `begun` stands there.
Words settings(std::string const & begun) {
    std::size_t const equals = begun.find('=');
    if (equals != begun.npos)
        return valuesOfSetting(begun.substr(0, equals), begun.substr(0, equals + 1));
    Words words;
    for (Units::UnitDisplaySettingsField const & field : Units::unitDisplaySettingsFields())
        words.push_back(std::string(field.name) + '=');
    return words;
}

Words documentCommandNames() {
    Words words;
    for (DocumentCommand const & command : documentCommands())
        if (command.call != EDocumentCall::None) words.emplace_back(command.alias);
    return words;
}

Words textCommands() {
    Words words;
    for (std::wstring const & name : textCommandNames()) words.push_back(Text::toUtf8(name));
    return words;
}

Words groupsOfChecks() {
    Words words;
    for (UnitTest const * const test : UnitTest::all()) words.push_back(test->group());
    return words;
}

Words optionsWords(Words const & positionals) {
    if (positionals.size() == 2 && positionals[0] == "set")
        return valuesOfSetting(positionals[1], {});
    if (positionals.size() == 1 && positionals[0] != "list" && positionals[0] != "path")
        return preferenceNames();
    if (!positionals.empty()) return {};
    Words words;
    for (OptionsJob const & job : optionsJobs()) words.push_back(Text::toUtf8(job.name));
    return words;
}

Words languageTags() {
    Words words;
    for (std::wstring const & tag : languages()) words.push_back(Text::toUtf8(tag));
    return words;
}

// The values of an option by its long name, of which `begun` stands there.
Words valuesOf(std::string const & option, std::string const & begun) {
    if (option == "language") return languageTags();
    if (option == "options" || option == "document" || option == "output") return {c_files};
    if (option == "unit" || option == "display") return unitNames();
    if (option == "kind") return kinds();
    if (option == "set") return settings(begun);
    if (option == "override") return {"volume=", "area=", "mass=", "density="};
    return {};
}

// What stands after the options of a subcommand and the words before.
Words argumentsOf(std::string const & subcommand, Words const & before) {
    if (subcommand == "options") return optionsWords(before);
    if (subcommand == "document") return before.empty() ? Words{c_files} : documentCommandNames();
    if (!before.empty()) return {};
    if (subcommand == "batch" || subcommand == "scene") return {c_files};
    if (subcommand == "command") return textCommands();
    if (subcommand == "units") return kinds();
    if (subcommand == "self-test") return groupsOfChecks();
    return {};
}

std::string nameOf(CLI::Option const & option) {
    std::vector<std::string> const & names = option.get_lnames();
    return names.empty() ? std::string() : names.front();
}

// Reads the words before the last, and answers for that.
class Completer {
public:
    Completer(CLI::App const & app, Words const & words) : m_rApp(app), m_words(words) {
        if (m_words.empty()) m_words.emplace_back();
        for (std::size_t i = 0; i + 1 < m_words.size(); ++i) read(m_words[i]);
    }

    Words take() const {
        std::string const & begun = m_words.back();
        if (m_pOpen) return beginning(begun, {}, valuesOf(nameOf(*m_pOpen), begun));
        if (!m_bTextsOnly && begun.starts_with('-')) return optionsOrValues(begun);
        if (!m_pSubcommand && !m_bTextsOnly) return beginning(begun, {}, subcommands());
        if (!m_pSubcommand) return {};
        return beginning(begun, {}, argumentsOf(m_pSubcommand->get_name(), m_positionals));
    }

private:
    void read(std::string const & word) {
        if (m_pOpen) {
            m_pOpen = nullptr; // its value
        } else if (m_bTextsOnly || !word.starts_with('-') || word == "-") {
            CLI::App const * const found = m_pSubcommand ? nullptr : subcommand(word);
            if (found)
                m_pSubcommand = found;
            else
                m_positionals.push_back(word);
        } else if (word == "--") {
            m_bTextsOnly = true;
        } else if (CLI::Option const * const option = find(word);
                   option && takesValue(*option) && word.find('=') == word.npos) {
            m_pOpen = option;
        }
    }

    static bool takesValue(CLI::Option const & option) {
        return option.get_items_expected_max() > 0;
    }

    CLI::App const * subcommand(std::string const & name) const {
        for (CLI::App const * const each : declared())
            if (each->get_name() == name) return each;
        return nullptr;
    }

    std::vector<CLI::App const *> declared() const {
        return m_rApp.get_subcommands([](CLI::App const *) { return true; });
    }

    Words subcommands() const {
        Words words;
        // What has no group isn't for people.
        for (CLI::App const * const each : declared())
            if (!each->get_group().empty()) words.push_back(each->get_name());
        return words;
    }

    // Those of the subcommand, and those that stand anywhere.
    std::vector<CLI::Option const *> options() const {
        std::vector<CLI::Option const *> all = m_rApp.get_options();
        if (!m_pSubcommand) return all;
        std::vector<CLI::Option const *> const more = m_pSubcommand->get_options();
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    CLI::Option const * find(std::string const & word) const {
        std::string const name = word.substr(0, word.find('='));
        for (CLI::Option const * const option : options())
            if (option->check_name(name)) return option;
        return nullptr;
    }

    Words optionsOrValues(std::string const & begun) const {
        std::size_t const equals = begun.find('=');
        if (equals != begun.npos) {
            CLI::Option const * const option = find(begun);
            if (!option || !takesValue(*option)) return {};
            return beginning(begun, begun.substr(0, equals + 1),
                             valuesOf(nameOf(*option), begun.substr(equals + 1)));
        }
        Words words;
        for (CLI::Option const * const option : options())
            for (std::string const & name : option->get_lnames()) words.push_back("--" + name);
        return beginning(begun, {}, words);
    }

    // Those that begin so, in order, each once.
    static Words beginning(std::string const & begun, std::string const & front,
                           Words const & all) {
        if (all == Words{c_files}) return all;
        Words words;
        for (std::string const & word : all)
            if ((front + word).starts_with(begun)) words.push_back(front + word);
        std::sort(words.begin(), words.end());
        words.erase(std::unique(words.begin(), words.end()), words.end());
        return words;
    }

    CLI::App const & m_rApp;
    Words m_words;
    Words m_positionals; // after the subcommand
    CLI::App const * m_pSubcommand = nullptr;
    CLI::Option const * m_pOpen = nullptr; // whose value comes next
    bool m_bTextsOnly = false;             // after "--"
};

} // namespace

std::vector<std::string> completeShellWords(CLI::App const & app,
                                            std::vector<std::string> const & words) {
    return Completer(app, words).take();
}

int runShellCompletion(CLI::App const & app, std::vector<std::string> const & words,
                       std::ostream & out) {
    for (std::string const & word : completeShellWords(app, words)) out << word << '\n';
    return ExitGood;
}

} // namespace Vn::Console
