#include "Console/Documents/TextCommands.h"

#include <algorithm>
#include <new>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "Console/Documents/Place.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/Tree.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/DocumentFile.h"

namespace Vn::Console {

namespace {

namespace fs = std::filesystem;
using Parameters = TextCommandParameters;
using Result = TextCommandResult;

std::wstring textOf(Status const & status) { return printable(Text::fromUtf8(status.toString())); }

// Why a document can't take the place of the one that is open.
std::wstring whyNotReplace(DocumentSession const & session, Parameters const & parameters) {
    if (!session.hasUnsavedChanges() || parameters.hasFlag(L"Force")) return {};
    return session.unsavedChanges() + L"; save the document, or lose them with /Force";
}

// Why a text can't be the name of a file.
std::wstring whyNoFile(std::wstring const & name) {
    if (name.empty()) return L"the name of the file is empty";
    if (name.find(L'\0') != name.npos) return inQuotes(name) + L" isn't a file name";
    return {};
}

Result newDocument(DocumentSession & session, Parameters const & parameters) {
    if (std::wstring const why = whyNotReplace(session, parameters); !why.empty())
        return cannot(L"make a new document", why);
    session.makeNew();
    return {0, L"a new document with an empty group \"Groups\""};
}

Result openDocument(DocumentSession & session, Parameters const & parameters) {
    std::wstring const & name = parameters.parameter(0);
    std::wstring why = whyNoFile(name);
    if (why.empty()) why = whyNotReplace(session, parameters);
    if (!why.empty()) return cannot(L"open the document", why);
    if (Status const status = session.open(pathOf(name)); !status) return {1, textOf(status)};
    std::size_t const count = session.asset().entities();
    return {0, L"opened " + session.name() + L" with " + std::to_wstring(count) +
                   (count == 1 ? L" entity" : L" entities")};
}

Result saveDocument(DocumentSession & session, Parameters const &) {
    if (session.asset().file().empty())
        return cannot(L"save", L"the document has no file yet; Document.SaveAs FILE gives it one");
    if (!session.hasUnsavedChanges()) return {0, session.name() + L" is up to date"};
    if (Status const status = session.save(); !status) return {1, textOf(status)};
    return {0, L"saved " + session.name()};
}

Result saveDocumentAs(DocumentSession & session, Parameters const & parameters) {
    std::wstring const & name = parameters.parameter(0);
    if (std::wstring const why = whyNoFile(name); !why.empty()) return cannot(L"save", why);
    fs::path const file = pathOf(name);
    std::error_code ignored;
    if (!parameters.hasFlag(L"Force") && fs::exists(fs::symlink_status(file, ignored))) {
        bool const isOwn = !session.asset().file().empty() &&
                           fs::equivalent(file, session.asset().file(), ignored);
        if (isOwn) return saveDocument(session, parameters);
        return cannot(L"save", shown(file) + L" is there already; /Force replaces it");
    }
    if (Status const status = session.saveAs(file); !status) return {1, textOf(status)};
    std::wstring const kept = session.whatWasKept();
    return {0, L"saved " + session.name() + (kept.empty() ? L"" : L'\n' + kept)};
}

Result showTree(DocumentSession const & session, Parameters const & parameters,
                std::ostream & out) {
    bool json = parameters.hasFlag(L"Json");
    std::vector<std::wstring> paths;
    for (unsigned i = 0; i < parameters.parameters(); ++i) {
        // As vnconsole itself has it.
        if (parameters.parameter(i) == L"--json")
            json = true;
        else
            paths.push_back(parameters.parameter(i));
    }
    if (paths.size() > 1) {
        return cannot(L"show the tree",
                      inQuotes(paths[1]) + L" is too much: the tree is of one entity");
    }
    if (paths.empty()) {
        writeTree(session, json, out);
        return {};
    }
    DocumentPlace place;
    std::wstring const why = findPlace(session, paths.front(), place);
    if (!why.empty()) return cannot(L"show the tree", why);
    writeTree(place, json, out);
    return {};
}

Result undo(DocumentSession & session, Parameters const &) {
    ChangeHistory & history = session.history();
    if (history.undoSteps() == 0) {
        return cannot(L"undo", history.redoSteps() > 0
                                   ? L"everything is undone already"
                                   : L"nothing was changed since the document was opened; the "
                                     L"history isn't saved, and no earlier session can be undone");
    }
    std::wstring const name = history.undoNames().front();
    if (Status const status = history.undo(); !status) return {1, textOf(status)};
    return {0, L"undone: " + name};
}

Result redo(DocumentSession & session, Parameters const &) {
    ChangeHistory & history = session.history();
    if (history.redoSteps() == 0) return cannot(L"redo", L"nothing was undone last");
    std::wstring const name = history.redoNames().front();
    if (Status const status = history.redo(); !status) return {1, textOf(status)};
    return {0, L"redone: " + name};
}

std::wstring howItDiffers(DocumentSession const & session) {
    bool const hasFile = !session.asset().file().empty();
    if (!session.hasUnsavedChanges()) {
        return hasFile ? L"the document is as " + session.name() + L" has it"
                       : L"the document is new and empty, and has no file";
    }
    return hasFile ? L"the document differs from " + session.name()
                   : L"the document has changes and no file";
}

Result showHistory(DocumentSession & session, Parameters const &) {
    std::vector<std::wstring> const undone = session.history().redoNames();
    std::vector<std::wstring> names = session.history().undoNames();
    std::size_t const now = names.size();
    std::reverse(names.begin(), names.end());
    names.insert(names.begin(), L"where the history begins");
    names.insert(names.end(), undone.begin(), undone.end());
    Table table;
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::wstring notes = i > now ? L"undone" : L"";
        if (session.savedStep() == i && !session.asset().file().empty())
            notes += notes.empty() ? L"saved" : L", saved";
        table.add({i == now ? L">" : L"", std::to_wstring(i), names[i], notes});
    }
    return {0, Text::fromUtf8(table.toUtf8()) + howItDiffers(session)};
}

Result checkDocument(DocumentSession & session, Parameters const & parameters) {
    if (parameters.parameters() == 0 && (!session.isOpen() || session.asset().file().empty()))
        return cannot(L"check", L"there is no file; name one");
    bool const isOwn = parameters.parameters() == 0;
    std::wstring const why = isOwn ? std::wstring() : whyNoFile(parameters.parameter(0));
    if (!why.empty()) return cannot(L"check", why);
    fs::path const file = isOwn ? session.asset().file() : pathOf(parameters.parameter(0));
    std::wstring const name = isOwn ? session.name() : shown(file);
    std::vector<std::string> findings;
    if (Status const status = DocumentFile::check(file, findings); !status)
        return {1, textOf(status)};
    if (findings.empty()) { // as far as can be told without the classes
        StrongRef<Asset> asset;
        if (Status const status = DocumentFile::load(file, nullptr, asset); !status)
            findings.push_back(status.cause());
    }
    if (findings.empty()) return {0, L"nothing is wrong with " + name};
    std::wstring text = name + L" is damaged:";
    for (std::string const & finding : findings)
        text += L"\n  " + printable(Text::fromUtf8(finding));
    return {1, text};
}

std::vector<DocumentTextCommand> documentTextCommands() {
    return {
        {L"New", "new", L"[/Force]", L"Makes a new document in place of the one that is open",
         L"make a new document", 0, 0, L"Force", false, &newDocument},
        {L"Open", "open", L"<File> [/Force]", L"Opens a document in place of the one that is open",
         L"open a document", 1, 1, L"Force", false, &openDocument},
        {L"Save", "save", L"", L"Saves the document to its file", L"save", 0, 0, nullptr, true,
         &saveDocument},
        {L"SaveAs", "saveas", L"<File> [/Force]",
         L"Saves the document to another file, which becomes its own", L"save", 1, 1, L"Force",
         true, &saveDocumentAs},
        {L"Tree", "tree", L"[Path] [/Json]", L"Lists the entities, or those at a path and below it",
         L"show the tree", 0, 2, L"Json", true, nullptr, &showTree},
        {L"Undo", "undo", L"", L"Takes the last change back", L"undo", 0, 0, nullptr, true, &undo},
        {L"Redo", "redo", L"", L"Makes the change again that was taken back last", L"redo", 0, 0,
         nullptr, true, &redo},
        {L"History", "history", L"", L"Lists the changes, with a mark where the document stands",
         L"show the history", 0, 0, nullptr, true, &showHistory},
        {L"Check", "check", L"[File]", L"Looks for damage in a file, without opening it", L"check",
         0, 1, nullptr, false, &checkDocument},
    };
}

class SubjectArea final : public TextCommandSubjectArea {
public:
    using TextCommandSubjectArea::TextCommandSubjectArea;
};

class Command final : public TextCommand {
public:
    Command(std::wstring area, DocumentTextCommand const & command, DocumentSession & session,
            std::ostream * out)
        : TextCommand(std::move(area), command.name,
                      (*command.usage ? command.usage + std::wstring(L" ") : std::wstring()) +
                          command.meaning,
                      command.alias),
          m_command(command), m_rSession(session), m_pOut(out) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        std::wstring const usage =
            subjectArea() + L'.' + name() + (*m_command.usage ? L" " : L"") + m_command.usage;
        if (parameters.parameters() < m_command.least)
            return cannot(m_command.purpose, L"more is needed: " + usage);
        if (parameters.parameters() > m_command.most) {
            std::wstring const & next = parameters.parameter(m_command.most);
            return cannot(m_command.purpose, inQuotes(next) + L" is too much: " + usage);
        }
        for (std::wstring const & flag : parameters.flags()) {
            if (m_command.flag &&
                Text::foldedEqual(std::wstring_view(flag), std::wstring_view(m_command.flag)))
                continue;
            return cannot(m_command.purpose,
                          inQuotes(L'/' + flag) +
                              L" isn't a flag of it, and a path goes in quotes: " + usage);
        }
        if (m_command.needsDocument && !m_rSession.isOpen()) {
            return cannot(m_command.purpose, L"no document is open; Document.New makes one, and "
                                             L"Document.Open FILE opens one");
        }
        // A change that throws was taken back.
        try {
            return m_command.write ? write(parameters) : m_command.run(m_rSession, parameters);
        } catch (std::bad_alloc const &) {
            return cannot(m_command.purpose, L"memory ran out; the document is as it was before");
        } catch (std::length_error const & error) {
            return cannot(m_command.purpose, Text::fromUtf8(error.what()));
        }
    }

    TextCommandResult write(TextCommandParameters const & parameters) {
        if (m_pOut) return m_command.write(m_rSession, parameters, *m_pOut);
        std::ostringstream text;
        TextCommandResult result = m_command.write(m_rSession, parameters, text);
        if (result.status == 0) result.text = Text::fromUtf8(text.str());
        return result;
    }

    DocumentTextCommand const m_command;
    DocumentSession & m_rSession;
    std::ostream * const m_pOut;
};

} // namespace

TextCommandResult cannot(std::wstring const & what, std::wstring const & reason) {
    return {1, L"cannot " + what + L": " + reason};
}

DocumentTextCommands::DocumentTextCommands(DocumentSession & session, std::ostream * out) {
    add(L"Document", L"Commands that keep a document: its file, its tree and its history",
        documentTextCommands(), session, out);
    add(L"Groups", L"Commands that change the groups of the document", groupTextCommands(), session,
        out);
}

// The areas go last, so that no command is without one.
DocumentTextCommands::~DocumentTextCommands() { m_commands.clear(); }

void DocumentTextCommands::add(wchar_t const * area, wchar_t const * description,
                               std::vector<DocumentTextCommand> const & commands,
                               DocumentSession & session, std::ostream * out) {
    m_areas.push_back(std::make_unique<SubjectArea>(area, description));
    for (DocumentTextCommand const & command : commands)
        m_commands.push_back(std::make_unique<Command>(area, command, session, out));
}

} // namespace Vn::Console
