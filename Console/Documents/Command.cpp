#include "Console/Documents/Command.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/CommandTable.h"
#include "Console/Documents/Interruption.h"
#include "Console/Documents/OutputFile.h"
#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"

namespace Vn::Console {

namespace {

// One command: as it was typed, and as it is understood.
struct Call {
    std::vector<std::wstring> words;
    DocumentCommand const * command = nullptr; // null for a text command of another add-in
    std::vector<std::wstring> parameters = {};
    std::vector<std::wstring> flags = {};
    std::vector<std::size_t> quoted = {}; // which of the words stood in quotes

    TextCommand * other = nullptr; // which is this then

    bool is(EDocumentCall kind) const {
        return kind == (command ? command->call : EDocumentCall::Changes);
    }
    bool changes() const { return is(EDocumentCall::Changes) || is(EDocumentCall::Begins); }
};

bool endsWord(wchar_t c) noexcept { return c == L',' || Text::isSpace(static_cast<char32_t>(c)); }

// Reads a word in double quotes, as text commands have them: the quote that closes stands before a
// blank, a comma or the end, and \" is one that doesn't.  False, and nothing read, if none closes.
bool readQuoted(std::wstring_view & text, std::wstring & word) {
    if (!text.starts_with(L'"')) return false;
    word.clear();
    for (std::size_t i = 1; i < text.size(); ++i) {
        bool const isLast = i + 1 == text.size();
        if (text[i] == L'\\' && !isLast && text[i + 1] == L'"')
            word += text[++i];
        else if (text[i] == L'"' && (isLast || endsWord(text[i + 1]))) {
            text.remove_prefix(i + 1);
            return true;
        } else
            word += text[i];
    }
    return false;
}

// Reads up to a blank or a comma that stands outside of brackets, which are those of paths and
// lists and those of points.  A bracket that isn't closed encloses nothing.
std::wstring readPlain(std::wstring_view & text) {
    constexpr std::pair<wchar_t, wchar_t> c_kinds[] = {{L'[', L']'}, {L'(', L')'}};
    std::size_t depths[std::size(c_kinds)] = {};
    bool isClosed[std::size(c_kinds)] = {};
    for (std::size_t i = 0; i < std::size(c_kinds); ++i)
        isClosed[i] = std::count(text.begin(), text.end(), c_kinds[i].first) <=
                      std::count(text.begin(), text.end(), c_kinds[i].second);
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        if (depths[0] == 0 && depths[1] == 0 && endsWord(text[end])) break;
        for (std::size_t i = 0; i < std::size(c_kinds); ++i)
            if (text[end] == c_kinds[i].first && isClosed[i])
                ++depths[i];
            else if (text[end] == c_kinds[i].second && depths[i] > 0)
                --depths[i];
    }
    std::wstring word(text.substr(0, end));
    text.remove_prefix(end);
    return word;
}

// Takes an argument apart, which may hold several words, and commas.
void addWords(std::wstring_view argument, std::vector<Call> & calls) {
    while (!(argument = trimmed(argument)).empty()) {
        std::wstring word;
        if (readQuoted(argument, word)) {
            calls.back().quoted.push_back(calls.back().words.size());
            calls.back().words.push_back(word);
        } else if (word = readPlain(argument); word == L"then")
            calls.emplace_back();
        else if (!word.empty())
            calls.back().words.push_back(word);
        if (argument.starts_with(L',')) {
            calls.emplace_back();
            argument.remove_prefix(1);
        }
    }
}

std::vector<Call> takeApart(std::vector<std::wstring> const & words) {
    std::vector<Call> calls(1);
    for (std::wstring const & word : words) addWords(word, calls);
    std::erase_if(calls, [](Call const & call) { return call.words.empty(); });
    return calls;
}

// The aliases of the commands that a call may hold and that are `wanted`.
std::wstring aliases(bool (*wanted)(DocumentCommand const &)) {
    std::wstring all;
    for (DocumentCommand const & command : documentCommands())
        if (command.call != EDocumentCall::None && wanted(command))
            all += (all.empty() ? L"" : L", ") + Text::widen(command.alias);
    return all;
}

// "a, b or c" of "a, b, c".
std::wstring oneOf(std::wstring const & names) {
    std::size_t const last = names.rfind(L", ");
    if (last == names.npos) return names;
    return message(L"%1% or %2%", names.substr(0, last), names.substr(last + 2));
}

bool takesJson(DocumentCommand const & command) {
    return command.flag && std::wstring_view(command.flag) == L"Json";
}

bool takesVerbose(DocumentCommand const & command) {
    return command.otherFlag && std::wstring_view(command.otherFlag) == L"Verbose";
}

bool anyCall(std::vector<Call> const & calls, bool (*takes)(DocumentCommand const &)) {
    return std::any_of(calls.begin(), calls.end(),
                       [&](Call const & call) { return call.command && takes(*call.command); });
}

// A text command by its whole name, such as "Blocks.List"; null if there is none.
TextCommand * findOther(std::wstring_view word) {
    std::size_t const stop = word.find(L'.');
    if (stop == word.npos || stop == 0) return nullptr;
    return TextCommandService::get().find(word.substr(0, stop), word.substr(stop + 1));
}

int badUsage(std::wstring const & why, std::ostream & err) {
    told(why, err);
    return ExitBadUsage;
}

int unknown(std::wstring const & word, std::ostream & err) {
    std::vector<std::wstring> names;
    for (DocumentCommand const & command : documentCommands())
        if (command.call != EDocumentCall::None) names.push_back(Text::widen(command.alias));
    auto const nearest = Spelling::nearest(word, names, Spelling::allowedMistakes(word.size()));
    if (nearest.empty()) {
        return badUsage(message(L"there is no command %1% on documents; the commands are %2%",
                                inQuotes(word), aliases([](auto const &) { return true; })),
                        err);
    }
    return badUsage(message(L"there is no command %1% on documents; did you mean %2%?",
                            inQuotes(word), *nearest.front()),
                    err);
}

DocumentCallOption const * findOption(DocumentCommand const & command, std::wstring const & name) {
    for (DocumentCallOption const & option : command.callOptions)
        if (name == option.option) return &option;
    return nullptr;
}

// Gives the options of the call to the command that has them.
int placeOptions(DocumentOptions const & options, std::vector<Call> & calls, std::ostream & err) {
    for (auto const & [name, value] : options.callOptions) {
        Call * found = nullptr;
        DocumentCallOption const * option = nullptr;
        for (Call & call : calls) {
            DocumentCallOption const * const own =
                call.command ? findOption(*call.command, name) : nullptr;
            if (!own) continue;
            if (found)
                return badUsage(message(L"%1% is for one command, and there are several", name),
                                err);
            found = &call;
            option = own;
        }
        if (!found) {
            std::wstring names;
            for (DocumentCommand const & command : documentCommands())
                if (findOption(command, name))
                    names += (names.empty() ? L"" : L", ") + Text::widen(command.alias);
            return badUsage(message(L"%1% goes with the command %2%", name, oneOf(names)), err);
        }
        if (option->isFlag)
            found->flags.emplace_back(option->word);
        else if (!option->word)
            found->parameters.insert(found->parameters.begin(), value);
        else
            found->parameters.insert(found->parameters.end(), {option->word, value});
    }
    return ExitGood;
}

// What a command writes doesn't take the name of a document that isn't made yet.  Commands
// themselves know the file of one that is open.
int checkOutputs(DocumentOptions const & options, std::vector<Call> const & calls,
                 std::ostream & err) {
    if (!calls.front().is(EDocumentCall::Begins)) return ExitGood;
    for (Call const & call : calls) {
        if (!call.command || !findOption(*call.command, L"--output") || call.parameters.empty())
            continue;
        std::wstring const & file = call.parameters.front();
        bool const arePaths = !file.empty() && !options.file.empty() &&
                              file.find(L'\0') == file.npos &&
                              options.file.find(L'\0') == options.file.npos;
        if (arePaths && isSameFile(pathOf(file), pathOf(options.file)))
            return badUsage(message(call.command->refusal,
                                    message(L"%1% is the document itself", inQuotes(file))),
                            err);
    }
    return ExitGood;
}

// Finds the commands, and looks whether they go together; nothing is done yet.
int prepare(DocumentOptions const & options, std::vector<Call> & calls, std::ostream & err) {
    for (Call & call : calls) {
        call.command = findDocumentCommand(call.words.front());
        if (!call.command) call.other = findOther(call.words.front());
        if (!call.command && !call.other) return unknown(call.words.front(), err);
        if (call.is(EDocumentCall::None)) {
            return badUsage(
                message(L"%1% belongs to a session; here the file is opened first and saved "
                        L"after the last command",
                        call.words.front()),
                err);
        }
        for (std::size_t i = 1; i < call.words.size(); ++i) {
            std::wstring const & word = call.words[i];
            bool const isQuoted =
                std::find(call.quoted.begin(), call.quoted.end(), i) != call.quoted.end();
            if (!isQuoted && word.front() == L'/')
                call.flags.push_back(word.substr(1));
            else
                call.parameters.push_back(word);
        }
        if (call.other) continue;
        std::wstring const name = Text::widen(call.command->alias);
        if (call.is(EDocumentCall::Begins) && &call != &calls.front())
            return badUsage(message(L"%1% stands in front of all other commands", name), err);
        bool const isAlone = calls.size() == 1 && call.words.size() == 1 && !options.isNew;
        if (call.is(EDocumentCall::Alone) && !isAlone)
            return badUsage(message(L"%1% stands alone, and looks at the file", name), err);
    }
    if (options.json && !anyCall(calls, &takesJson)) {
        return badUsage(
            message(L"%1% goes with the command %2%", L"--json", oneOf(aliases(&takesJson))), err);
    }
    if (options.verbose && !anyCall(calls, &takesVerbose)) {
        return badUsage(
            message(L"%1% goes with the command %2%", L"--verbose", oneOf(aliases(&takesVerbose))),
            err);
    }
    if (int const status = placeOptions(options, calls, err); status != ExitGood) return status;
    return checkOutputs(options, calls, err);
}

// Whether there is something under the name, even if it leads nowhere.
bool isThere(std::filesystem::path const & file) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
}

// Whether the system doesn't tell, which opening the file then does.
bool isUnseen(std::filesystem::path const & file) {
    std::error_code ignored;
    return !std::filesystem::status_known(std::filesystem::symlink_status(file, ignored));
}

// Opens the file, or looks whether a new one may take its name.
int begin(std::filesystem::path const & file, Call const & first, DocumentSession & session,
          std::ostream & err) {
    if (first.is(EDocumentCall::Begins)) {
        if (!first.flags.empty() || !isThere(file)) return ExitGood;
        err << Text::toUtf8(message(L"cannot make a new document: %1% is there already; the "
                                    L"command new /Force replaces it",
                                    shown(file)))
            << '\n';
        return ExitBadInput;
    }
    if (!isThere(file) && !isUnseen(file)) {
        err << Text::toUtf8(message(L"cannot open the document: there is no %1%; --new makes it",
                                    shown(file)))
            << '\n';
        return ExitBadInput;
    }
    if (Status const status = session.open(file); !status) {
        err << Text::toUtf8(printable(statusText(status))) << '\n';
        return status.code() == StatusCancelled ? ExitInterrupted : ExitBadInput;
    }
    return ExitGood;
}

// What a command answers; of a good one if it `isWanted`.
void answer(TextCommandResult const & result, bool isWanted, std::ostream & out,
            std::ostream & err) {
    out.flush();
    if (result.status != 0)
        err << Text::toUtf8(result.text) << '\n';
    else if (!result.text.empty() && isWanted)
        out << Text::toUtf8(result.text) << '\n';
}

// A command of another add-in, which changes what it likes.
int runOther(Call const & call, DocumentOptions const & options, std::ostream & out,
             std::ostream & err) {
    TextCommandResult const result =
        TextCommandService::run(*call.other, TextCommandParameters(call.parameters, call.flags));
    answer(result, !options.json, out, err);
    return result.status == 0 ? int{ExitGood} : int{ExitBadInput};
}

// A long answer was written already.
int run(Call const & call, DocumentOptions const & options, std::ostream & out,
        std::ostream & err) {
    if (call.other) return runOther(call, options, out, err);
    DocumentCommand const & row = *call.command;
    bool const json = options.json;
    std::vector<std::wstring> flags = call.flags;
    if (json && takesJson(row)) flags.emplace_back(row.flag);
    if (options.verbose && takesVerbose(row)) flags.emplace_back(row.otherFlag);
    TextCommand * const command = TextCommandService::get().find(row.area, row.name);
    TextCommandResult const result = command->run(TextCommandParameters(call.parameters, flags));
    answer(result, !json || takesJson(row), out, err);
    return result.status;
}

// What became of the changes, and how they can be made all the same.
std::wstring whatIsThere(Status const & status, bool isNew) {
    if (isNew && status.code() == StatusNotFound) return message(L"nothing was saved");
    switch (status.code()) {
    case StatusChanged:
        return message(L"nothing was saved; the same call again makes the changes in the document "
                       L"that is there now");
    case StatusNotFound:
        return message(L"nothing was saved; with --new the same call begins a new document");
    case StatusIO: // when is not known
        return message(L"either everything was saved or nothing; the command check looks at the "
                       L"file");
    default:
        return message(L"nothing was saved");
    }
}

int save(std::filesystem::path const & file, bool isNew, bool json, DocumentSession & session,
         std::ostream & out, std::ostream & err) {
    if (!isNew && !session.hasUnsavedChanges()) return ExitGood;
    Status const status = isNew ? session.saveAs(file) : session.save();
    if (!status) {
        out.flush();
        err << Text::toUtf8(printable(statusText(status))) << '\n'
            << Text::toUtf8(whatIsThere(status, isNew)) << '\n';
        return ExitBadInput;
    }
    if (std::wstring const kept = session.whatWasKept(); !kept.empty()) {
        out.flush();
        err << Text::toUtf8(message(L"note: %1%", kept)) << '\n';
    }
    if (!json) out << Text::toUtf8(message(L"saved %1%", session.name())) << '\n' << std::flush;
    // What was asked for is done all the same; who can't read the output is told so.
    if (!out) err << Text::toUtf8(message(L"saved %1%", session.name())) << '\n';
    return out ? ExitGood : ExitBadInput;
}

} // namespace

std::string documentCallsText() {
    Table table;
    for (DocumentCommand const & command : documentCommands()) {
        if (command.call == EDocumentCall::None) continue;
        std::wstring const usage =
            *command.callUsage ? L' ' + std::wstring(command.callUsage) : L"";
        table.add({Text::widen(command.alias) + usage, message(command.callMeaning)});
    }
    return Text::toUtf8(message(L"Commands:")) + '\n' + table.toUtf8("  ");
}

int runDocument(DocumentOptions const & options, DocumentSession & session, std::ostream & out,
                std::ostream & err) {
    OS::NotedInterruptions const noted; // a save comes to its end
    std::vector<Call> calls = takeApart(options.words);
    if (calls.empty() && !options.isNew) calls.push_back({{L"tree"}});
    bool const saysNew = !calls.empty() && findDocumentCommand(calls.front().words.front()) ==
                                               findDocumentCommand(L"new");
    if (options.isNew && !saysNew) calls.insert(calls.begin(), {{L"new"}});
    if (int const status = prepare(options, calls, err); status != ExitGood) return status;
    if (options.file.empty()) return badUsage(message(L"the name of the file is empty"), err);

    Call const & first = calls.front();
    std::filesystem::path const file = pathOf(options.file);
    if (first.is(EDocumentCall::Alone))
        return run({first.words, first.command, {options.file}}, {}, out, err);
    if (int const status = begin(file, first, session, err); status != ExitGood) return status;
    for (Call const & call : calls) {
        int const status = run(call, options, out, err);
        if (status == ExitGood) continue;
        if (std::any_of(calls.begin(), calls.end(), [](Call const & c) { return c.changes(); }))
            err << Text::toUtf8(message(L"nothing was saved")) << '\n';
        return status;
    }
    if (OS::wasInterrupted()) {
        err << Text::toUtf8(message(L"interrupted: nothing was saved")) << '\n';
        return ExitInterrupted;
    }
    return save(file, first.is(EDocumentCall::Begins), options.json, session, out, err);
}

} // namespace Vn::Console
