#include "Console/DocumentCommand.h"

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "Console/DocumentPlace.h"
#include "Console/DocumentSession.h"
#include "Console/DocumentTree.h"
#include "Console/ExitStatus.h"
#include "Console/Spelling.h"
#include "Console/TextCommands.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"

namespace Vn::Console {

namespace {

constexpr wchar_t const * c_areas[] = {L"Document", L"Groups"};

// One command as it was typed.
struct Call {
    std::vector<std::wstring> words;
    TextCommand const * command = nullptr;

    bool is(std::wstring_view name) const { return command->name() == name; }
    bool hasFlags() const {
        return std::any_of(words.begin() + 1, words.end(),
                           [](std::wstring const & word) { return word.front() == L'/'; });
    }
};

// Takes an argument apart, which may hold several words, and commas.
void addWords(std::wstring_view argument, std::vector<Call> & calls) {
    while (!(argument = trimmed(argument)).empty()) {
        std::size_t end = 0;
        while (end < argument.size() && argument[end] != L',' &&
               !Text::isSpace(static_cast<char32_t>(argument[end]))) {
            ++end;
        }
        std::wstring const word(argument.substr(0, end));
        if (word == L"then") calls.emplace_back();
        else if (!word.empty()) calls.back().words.push_back(word);
        argument.remove_prefix(end);
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

// The command by its alias, or by its full name.
TextCommand const * findCommand(std::wstring const & word) {
    TextCommandService const & service = TextCommandService::get();
    std::size_t const stop = word.find(L'.');
    TextCommand const * const command =
        stop == word.npos ? service.find({}, word)
                          : service.find(std::wstring_view(word).substr(0, stop),
                                         std::wstring_view(word).substr(stop + 1));
    if (!command) return nullptr;
    bool const known = std::any_of(std::begin(c_areas), std::end(c_areas),
                                   [&](std::wstring_view a) { return command->subjectArea() == a; });
    return known ? command : nullptr;
}

bool belongsToSession(TextCommand const & command) {
    return command.name() == L"Open" || command.name() == L"Save" || command.name() == L"SaveAs";
}

int unknown(std::wstring const & word, std::ostream & err) {
    std::wstring all;
    std::wstring nearest;
    std::size_t least = allowedMistakes(word.size()) + 1;
    for (wchar_t const * const area : c_areas) {
        for (TextCommand const * const command : TextCommandService::get().commands(area)) {
            if (belongsToSession(*command)) continue;
            std::wstring const name = Text::widen(command->alias());
            all += (all.empty() ? L" " : L", ") + name;
            std::size_t const count =
                word.size() > 2 * name.size() ? least : mistakes(word, name);
            if (count >= least) continue;
            least = count;
            nearest = name;
        }
    }
    err << "vnconsole: there is no command " << Text::toUtf8(inQuotes(word)) << " on documents; "
        << Text::toUtf8(nearest.empty() ? L"the commands are" + all
                                        : L"did you mean " + nearest + L"?")
        << '\n';
    return ExitBadUsage;
}

int badUsage(std::string const & message, std::ostream & err) {
    err << "vnconsole: " << message << '\n';
    return ExitBadUsage;
}

// Finds the commands, and looks whether they go together; nothing is done yet.
int prepare(DocumentOptions const & options, std::vector<Call> & calls, std::ostream & err) {
    for (Call & call : calls) {
        call.command = findCommand(call.words.front());
        if (!call.command) return unknown(call.words.front(), err);
        if (belongsToSession(*call.command)) {
            return badUsage(Text::toUtf8(call.words.front()) +
                                " belongs to a session; here the file is opened first and saved "
                                "behind the last command",
                            err);
        }
        if (call.is(L"New") && &call != &calls.front()) {
            return badUsage("new stands in front of all other commands", err);
        }
        if (call.is(L"Check") && (calls.size() > 1 || call.words.size() > 1 || options.isNew)) {
            return badUsage("check stands alone, and looks at the file", err);
        }
    }
    bool const hasTree =
        std::any_of(calls.begin(), calls.end(), [](Call const & call) { return call.is(L"Tree"); });
    if (options.json && !hasTree) return badUsage("--json goes with the command tree", err);
    return ExitGood;
}

// Opens the file, or makes a document that is to become one.
int begin(DocumentOptions const & options, bool isNew, bool force, DocumentSession & session,
          std::ostream & out, std::ostream & err) {
    std::filesystem::path const file = pathOf(options.file);
    std::error_code ignored;
    bool const exists = std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
    if (isNew && exists && !force) {
        err << "cannot make a new document: " << Text::toUtf8(shown(file))
            << " is there already; the command new /Force replaces it\n";
        return ExitBadInput;
    }
    if (isNew) {
        session.makeNew();
        return ExitGood;
    }
    if (!exists) {
        err << "cannot open the document: there is no " << Text::toUtf8(shown(file))
            << "; --new makes it\n";
        return ExitBadInput;
    }
    static_cast<void>(out);
    if (Status const status = session.open(file); !status) {
        err << Text::toUtf8(printable(Text::fromUtf8(status.toString()))) << '\n';
        return ExitBadInput;
    }
    return ExitGood;
}

// Writes the tree as it goes, since it may be long.
int showTree(Call const & call, bool json, DocumentSession const & session, std::ostream & out,
             std::ostream & err) {
    if (call.words.size() < 2) {
        writeTree(session, json, out);
        return ExitGood;
    }
    DocumentPlace place;
    std::wstring const why = findPlace(session, call.words[1], place);
    if (why.empty()) {
        writeTree(place, json, out);
        return ExitGood;
    }
    out.flush();
    err << "cannot show the tree: " << Text::toUtf8(why) << '\n';
    return ExitBadInput;
}

int runCall(Call const & call, bool json, DocumentSession & session, std::ostream & out,
            std::ostream & err) {
    if (call.is(L"New")) return ExitGood;
    if (call.is(L"Tree") && call.words.size() <= 2 && !call.hasFlags()) {
        return showTree(call, json, session, out, err);
    }
    std::vector<std::wstring> words = call.words;
    words.front() = call.command->subjectArea() + L'.' + call.command->name();
    std::ostream nowhere(nullptr);
    out.flush();
    return runTextCommand(words, json && !call.is(L"Tree") ? nowhere : out, err);
}

int save(DocumentOptions const & options, bool isNew, DocumentSession & session, std::ostream & out,
         std::ostream & err) {
    if (!isNew && !session.hasUnsavedChanges()) return ExitGood;
    Status const status = isNew ? session.saveAs(pathOf(options.file)) : session.save();
    if (!status) {
        out.flush();
        err << Text::toUtf8(printable(Text::fromUtf8(status.toString()))) << '\n';
        return ExitBadInput;
    }
    if (!options.json) out << "saved " << Text::toUtf8(session.name()) << '\n';
    return ExitGood;
}

} // namespace

int runDocument(DocumentOptions const & options, DocumentSession & session, std::ostream & out,
                std::ostream & err) {
    std::vector<Call> calls = takeApart(options.words);
    if (calls.empty() && !options.isNew) calls.push_back({{L"tree"}, nullptr});
    if (int const status = prepare(options, calls, err); status != ExitGood) return status;
    if (options.file.empty()) return badUsage("the name of the file is empty", err);
    if (!calls.empty() && calls.front().is(L"Check")) {
        return runTextCommand({L"Document.Check", options.file}, out, err);
    }

    bool const starts = !calls.empty() && calls.front().is(L"New");
    bool const isNew = options.isNew || starts;
    if (starts) {
        // The flag is read as that of the text command would be, and anything else is wrong.
        std::vector<std::wstring> const & words = calls.front().words;
        bool const isForce =
            words.size() == 2 && Text::foldedEqual(std::wstring_view(words[1]), L"/Force");
        if (words.size() > 1 && !isForce) {
            return badUsage("new takes nothing but /Force, not " + Text::toUtf8(inQuotes(words[1])),
                            err);
        }
    }
    bool const force = starts && calls.front().words.size() > 1;
    if (int const status = begin(options, isNew, force, session, out, err); status != ExitGood) {
        return status;
    }
    for (Call const & call : calls) {
        int const status = runCall(call, options.json, session, out, err);
        if (status == ExitGood) continue;
        bool const lost = isNew || session.hasUnsavedChanges() || session.history().redoSteps() > 0;
        if (lost || calls.size() > 1) err << "nothing was saved\n";
        return status;
    }
    return save(options, isNew, session, out, err);
}

} // namespace Vn::Console
