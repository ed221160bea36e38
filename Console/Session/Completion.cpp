#include "Console/Session/Completion.h"

#include <algorithm>
#include <optional>

#include "Console/Documents/CommandTable.h"
#include "Console/Documents/DocumentSettings.h"
#include "Console/Documents/Operations.h"
#include "Console/Host/Language.h"
#include "Console/LastValue.h"
#include "Console/Options.h"
#include "Console/Session/FileNames.h"
#include "Console/Session/Session.h"
#include "Console/Session/TextCommands.h"
#include "Console/SettingsTexts.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/Vocabulary.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"

namespace Vn::Console {

namespace {

using Candidates = std::vector<Completion::Candidate>;

bool isSpace(wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); }

// After the last blank.
std::wstring_view lastWord(std::wstring_view line) {
    std::size_t begin = line.size();
    while (begin > 0 && !isSpace(line[begin - 1])) --begin;
    return line.substr(begin);
}

// The name that the line ends with, as an expression would read it: "kilom" of "2kilom".
std::wstring_view lastName(std::wstring_view line) {
    Expressions::Tokens const & tokens = *Expressions::Tokens::get();
    std::size_t begin = line.size();
    while (begin > 0 && !isSpace(line[begin - 1]) &&
           (Text::isDigit(static_cast<char32_t>(line[begin - 1])) ||
            !tokens.invalidNameCharsInStr(line.substr(begin - 1, 1), true)))
        --begin;
    while (begin < line.size() && Text::isDigit(static_cast<char32_t>(line[begin]))) ++begin;
    return line.substr(begin);
}

bool begins(std::wstring_view text, std::wstring_view begun, bool folded) {
    std::wstring_view const front = text.substr(0, begun.size());
    return folded ? Text::foldedEqual(front, begun) : front == begun;
}

Completion choose(Candidates const & all, std::wstring_view begun) {
    Completion completion;
    completion.begun = begun.size();
    for (bool const folded : {false, true}) {
        for (Completion::Candidate const & candidate : all) {
            bool const known = std::any_of(
                completion.candidates.begin(), completion.candidates.end(),
                [&](Completion::Candidate const & c) { return c.text == candidate.text; });
            if (!known && begins(candidate.text, begun, folded))
                completion.candidates.push_back(candidate);
        }
        if (!completion.candidates.empty()) break;
    }
    return completion;
}

Candidates preferences() {
    Candidates all;
    for (std::string const & name : preferenceNames()) all.push_back({Text::widen(name), L" "});
    return all;
}

// The values of the setting whose name ends `front`.
Candidates valuesOfSetting(std::wstring_view front) {
    Candidates all;
    if (Units::UnitDisplaySettingsField const * const field =
            findSetting(std::wstring(lastWord(front))))
        for (std::wstring const & word : settingWords(*field)) all.push_back({word, L""});
    return all;
}

Candidates languageTags() {
    Candidates all;
    for (std::wstring const & tag : languages()) all.push_back({tag, L""});
    return all;
}

Candidates settings() {
    Candidates all;
    for (Units::UnitDisplaySettingsField const & field : Units::unitDisplaySettingsFields())
        all.push_back({Text::widen(field.name), L" "});
    return all;
}

Candidates documentSettingNames() {
    Candidates all;
    for (DocumentSetting const & setting : documentSettings())
        all.push_back({Text::widen(setting.accessor), L" "});
    return all;
}

// Whether what stands in front of a word is a command that takes the name of a setting of the
// document.
bool takesDocumentSetting(std::wstring_view front) {
    DocumentCommand const * const command = findDocumentCommand(front);
    auto const runs = [&](decltype(DocumentCommand::run) what) { return command->run == what; };
    return command && (runs(&setSetting) || runs(&resetSettings));
}

// How many words a line has; 0 if one of them is quoted and hasn't ended.
std::size_t closedWords(std::wstring_view line) {
    std::size_t words = 0;
    for (std::size_t i = 0; i < line.size(); ++words) {
        bool const isQuoted = line[i] == L'"';
        bool isOpen = isQuoted;
        for (++i; i < line.size() && (isOpen || !isSpace(line[i])); ++i)
            if (isQuoted && line[i] == L'"' && line[i - 1] != L'\\') isOpen = false;
        if (isOpen) return 0;
        while (i < line.size() && isSpace(line[i])) ++i;
    }
    return words;
}

bool takesFile(DocumentCommand const & command) {
    return std::wstring_view(command.usage).substr(1, 4) == L"File";
}

// The flags that the command in front of a word takes.
Candidates flagsOf(std::wstring_view front) {
    Candidates all;
    std::wstring_view const first = front.substr(0, front.find_first_of(L" \t"));
    if (first == L"options") all.push_back({L"--json", L""});
    DocumentCommand const * const command = findDocumentCommand(first);
    // What begins with a "/" may be a file too.
    if (!command || closedWords(front) < (takesFile(*command) ? 2u : 1u)) return all;
    for (wchar_t const * const flag : {command->flag, command->otherFlag})
        if (flag) all.push_back({std::wstring(L"/") + flag, L""});
    return all;
}

// What stands of the file that a command on documents takes first; none if the line begins with
// another.
std::optional<std::wstring_view> begunFile(std::wstring_view line) {
    std::size_t end = 0;
    while (end < line.size() && !isSpace(line[end])) ++end;
    if (end == line.size()) return std::nullopt;
    DocumentCommand const * const command = findDocumentCommand(line.substr(0, end));
    if (!command || !takesFile(*command)) return std::nullopt;
    while (end < line.size() && isSpace(line[end])) ++end;
    return line.substr(end);
}

Candidates optionsJobNames() {
    Candidates all;
    for (OptionsJob const & job : optionsJobs())
        all.push_back({job.name, *job.arguments ? L" " : L""});
    return all;
}

Candidates topics() {
    Candidates all;
    for (Session::Topic const & topic : Session::topics()) all.push_back({topic.name, L""});
    for (Session::Command const & command : Session::commands()) all.push_back({command.name, L""});
    for (DocumentCommand const & command : documentCommands())
        all.push_back({Text::widen(command.alias), L""});
    return all;
}

Candidates commands() {
    Candidates all;
    for (Session::Command const & command : Session::commands())
        all.push_back({command.name, *command.arguments ? L" " : L""});
    for (std::wstring const & name : textCommandNames()) all.push_back({name, L" "});
    return all;
}

Candidates words() {
    Candidates all;
    using Expressions::Vocabulary;
    for (Vocabulary::Word const & word : Vocabulary::get().words())
        all.push_back({word.text, word.kind == Vocabulary::EKind::Function ? L"(" : L""});
    all.push_back({std::wstring(LastValue::c_word), L""});
    return all;
}

} // namespace

Completion completeSessionLine(std::wstring_view line) {
    while (!line.empty() && isSpace(line.front())) line.remove_prefix(1);
    std::wstring_view const word = lastWord(line);
    std::wstring_view const front = trimmed(line.substr(0, line.size() - word.size()));
    if (word.starts_with(L'/') || word.starts_with(L'-')) {
        Completion const flags = choose(flagsOf(front), word);
        if (!flags.candidates.empty()) return flags;
    }
    if (front == L"set") return choose(settings(), word);
    if (front == L"options") return choose(optionsJobNames(), word);
    if (front == L"options get" || front == L"options set" || front == L"options reset")
        return choose(preferences(), word);
    if (front.starts_with(L"set ") || front.starts_with(L"options set ")) {
        Completion const values = choose(valuesOfSetting(front), word);
        if (!values.candidates.empty()) return values;
    }
    if (front == L"language") return choose(languageTags(), word);
    if (std::optional<std::wstring_view> const file = begunFile(line))
        return completeFileName(*file);
    if (takesDocumentSetting(front)) return choose(documentSettingNames(), word);
    if (front == L"help") return choose(topics(), word);
    Candidates all;
    for (std::wstring const & text : TextCommandService::get().completions(front))
        all.push_back({text, L" "});
    if (!all.empty()) return choose(all, word);

    if (front.empty()) all = commands();
    if (front.empty() && word.find(L'.') != word.npos && !choose(all, word).candidates.empty())
        return choose(all, word);
    std::wstring_view const name = lastName(line);
    // With nothing begun everything fits, which helps nobody; only a whole line has few beginnings.
    if (name.empty() && !front.empty()) return {};
    if (name.size() < word.size()) all.clear();
    if (!name.empty()) {
        Candidates const known = words();
        all.insert(all.end(), known.begin(), known.end());
    }
    if (name.empty() && !word.empty()) return {};
    return choose(all, name);
}

} // namespace Vn::Console
