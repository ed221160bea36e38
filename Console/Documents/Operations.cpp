#include "Console/Documents/Operations.h"

#include <algorithm>
#include <vector>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/Hosting.h"
#include "Console/Documents/Place.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/Tree.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/DocumentFile.h"

namespace Vn::Console {

namespace fs = std::filesystem;
using Parameters = TextCommandParameters;

namespace {

std::wstring textOf(Status const & status) { return printable(statusText(status)); }

TextCommandResult failure(Status const & status) {
    return {status.code() == StatusCancelled ? ExitInterrupted : ExitBadInput, textOf(status)};
}

// What can be done where the file isn't any more what the document came from, so that nobody has to
// choose between what two programs did without knowing it; empty for other reasons.
std::wstring waysOn(DocumentSession const & session, Status const & status) {
    std::wstring own = session.name(); // as a parameter
    for (std::size_t i = 0; (i = own.find(L'"', i)) != own.npos; i += 2) own.insert(i, 1, L'\\');
    own = L'"' + own + L'"';
    wchar_t const * const way = L"\n  %1%   %2%";
    std::wstring const other = L"Document.SaveAs OTHER.vnd";
    std::wstring const saveAs = L"Document.SaveAs " + own;
    if (status.code() == StatusNotFound) {
        return Text::filled(way, {other, message(L"saves this document under another name")}) +
               Text::filled(way, {saveAs, message(L"saves it under its own name again")});
    }
    if (status.code() != StatusChanged) return {};
    return Text::filled(
               way, {other, message(L"saves this document under another name, and keeps both")}) +
           Text::filled(way,
                        {L"Document.Open " + own + L" /Force",
                         message(L"takes the other's work, and drops what was changed here")}) +
           Text::filled(
               way, {saveAs + L" /Force", message(L"replaces the other's work by this document")});
}

// Why a document can't take the place of the one that is open.
std::wstring whyNotReplace(DocumentSession const & session, Parameters const & parameters) {
    if (!session.hasUnsavedChanges() || parameters.hasFlag(L"Force")) return {};
    return message(L"%1%; save the document, or lose them with /Force", session.unsavedChanges());
}

// Why a text can't be the name of a file.
std::wstring whyNoFile(std::wstring const & name) {
    if (name.empty()) return message(L"the name of the file is empty");
    if (name.find(L'\0') != name.npos) return message(L"%1% isn't a file name", inQuotes(name));
    return {};
}

std::wstring howItDiffers(DocumentSession const & session) {
    bool const hasFile = !session.asset().file().empty();
    if (!session.hasUnsavedChanges()) {
        return hasFile ? message(L"the document is as %1% has it", session.name())
                       : message(L"the document is new and empty, and has no file");
    }
    return hasFile ? message(L"the document differs from %1%", session.name())
                   : message(L"the document has changes and no file");
}

// Whether a document that can't be opened for a reason of that kind may be damaged.
bool mayBeDamage(EStatus code) {
    switch (code) {
    case StatusNewerFormat:
    case StatusUnsupported:
    case StatusOutOfMemory:
    case StatusBusy:
    case StatusCancelled:
        return false;
    default:
        return true;
    }
}

std::wstring listOf(std::vector<std::string> const & lines) {
    std::wstring text;
    for (std::string const & line : lines) text += L"\n  " + printable(Text::fromUtf8(line));
    return text;
}

} // namespace

TextCommandResult cannot(wchar_t const * refusal, std::wstring_view reason) {
    return {1, message(refusal, reason)};
}

TextCommandResult newDocument(DocumentSession & session, Parameters const & parameters) {
    if (std::wstring const why = whyNotReplace(session, parameters); !why.empty())
        return cannot(L"cannot make a new document: %1%", why);
    if (Status const status = session.makeNew(); !status) return failure(status);
    return {0, message(L"a new document with an empty group \"Groups\"")};
}

TextCommandResult openDocument(DocumentSession & session, Parameters const & parameters) {
    std::wstring const & name = parameters.parameter(0);
    std::wstring why = whyNoFile(name);
    if (why.empty()) why = whyNotReplace(session, parameters);
    if (!why.empty()) return cannot(L"cannot open the document: %1%", why);
    if (Status const status = session.open(pathOf(name)); !status) return failure(status);
    std::size_t const count = session.asset().entities();
    return {0, counted(count, tr(L"opened %2% with %1% entity"),
                       tr(L"opened %2% with %1% entities"), session.name())};
}

TextCommandResult saveDocument(DocumentSession & session, Parameters const &) {
    if (session.asset().file().empty())
        return cannot(L"cannot save: %1%",
                      message(L"the document has no file yet; Document.SaveAs FILE gives it one"));
    if (!session.hasUnsavedChanges()) return {0, message(L"%1% is up to date", session.name())};
    if (Status const status = session.save(); !status)
        return {1, textOf(status) + waysOn(session, status)};
    return {0, message(L"saved %1%", session.name())};
}

TextCommandResult saveDocumentAs(DocumentSession & session, Parameters const & parameters) {
    std::wstring const & name = parameters.parameter(0);
    if (std::wstring const why = whyNoFile(name); !why.empty())
        return cannot(L"cannot save: %1%", why);
    fs::path const file = pathOf(name);
    std::error_code ignored;
    if (!parameters.hasFlag(L"Force") && fs::exists(fs::symlink_status(file, ignored))) {
        bool const isOwn = !session.asset().file().empty() &&
                           fs::equivalent(file, session.asset().file(), ignored);
        if (isOwn) return saveDocument(session, parameters);
        return cannot(L"cannot save: %1%",
                      message(L"%1% is there already; /Force replaces it", shown(file)));
    }
    if (Status const status = session.saveAs(file); !status) return {1, textOf(status)};
    std::wstring const kept = session.whatWasKept();
    return {0, message(L"saved %1%", session.name()) + (kept.empty() ? L"" : L'\n' + kept)};
}

TextCommandResult showTree(DocumentSession const & session, Parameters const & parameters,
                           std::ostream & out) {
    ETreeForm form = parameters.hasFlag(L"Verbose") ? ETreeForm::Verbose : ETreeForm::Brief;
    if (parameters.hasFlag(L"Json")) form = ETreeForm::Json;
    std::vector<std::wstring> paths;
    for (unsigned i = 0; i < parameters.parameters(); ++i) {
        // As vnconsole itself has it.
        if (parameters.parameter(i) == L"--json")
            form = ETreeForm::Json;
        else if (parameters.parameter(i) == L"--verbose")
            form = form == ETreeForm::Json ? form : ETreeForm::Verbose;
        else
            paths.push_back(parameters.parameter(i));
    }
    if (paths.size() > 1) {
        return cannot(L"cannot show the tree: %1%",
                      message(L"%1% is too much: the tree is of one entity", inQuotes(paths[1])));
    }
    if (paths.empty()) {
        writeTree(session, form, out);
        return {};
    }
    DocumentPlace place;
    std::wstring const why = findPlace(session, paths.front(), place);
    if (!why.empty()) return cannot(L"cannot show the tree: %1%", why);
    writeTree(place, form, out);
    return {};
}

TextCommandResult undoChange(DocumentSession & session, Parameters const &) {
    ChangeHistory & history = session.history();
    if (history.undoSteps() == 0) {
        return cannot(L"cannot undo: %1%",
                      history.redoSteps() > 0
                          ? message(L"everything is undone already")
                          : message(L"nothing was changed since the document was opened; the "
                                    L"history isn't saved, and no earlier session can be undone"));
    }
    std::wstring const name = history.undoNames().front();
    if (Status const status = history.undo(); !status) return {1, textOf(status)};
    return {0, message(L"undone: %1%", name)};
}

TextCommandResult redoChange(DocumentSession & session, Parameters const &) {
    ChangeHistory & history = session.history();
    if (history.redoSteps() == 0)
        return cannot(L"cannot redo: %1%", message(L"nothing was undone last"));
    std::wstring const name = history.redoNames().front();
    if (Status const status = history.redo(); !status) return {1, textOf(status)};
    return {0, message(L"redone: %1%", name)};
}

TextCommandResult showHistory(DocumentSession & session, Parameters const &) {
    std::vector<std::wstring> const undone = session.history().redoNames();
    std::vector<std::wstring> names = session.history().undoNames();
    std::size_t const now = names.size();
    std::reverse(names.begin(), names.end());
    names.insert(names.begin(), message(L"where the history begins"));
    names.insert(names.end(), undone.begin(), undone.end());
    Table table;
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::wstring notes = i > now ? message(L"undone") : L"";
        if (session.savedStep() == i && !session.asset().file().empty())
            notes += (notes.empty() ? L"" : L", ") + message(L"saved");
        table.add({i == now ? L">" : L"", std::to_wstring(i), names[i], notes});
    }
    return {0, Text::fromUtf8(table.toUtf8()) + howItDiffers(session)};
}

TextCommandResult checkDocument(DocumentSession & session, Parameters const & parameters) {
    if (parameters.parameters() == 0 && (!session.isOpen() || session.asset().file().empty()))
        return cannot(L"cannot check: %1%", message(L"there is no file; name one"));
    bool const isOwn = parameters.parameters() == 0;
    std::wstring const why = isOwn ? std::wstring() : whyNoFile(parameters.parameter(0));
    if (!why.empty()) return cannot(L"cannot check: %1%", why);
    fs::path const file = isOwn ? session.asset().file() : pathOf(parameters.parameter(0));
    std::wstring const name = isOwn ? session.name() : shown(file);
    std::vector<std::string> findings;
    std::vector<std::string> unknownTypes;
    if (Status const status = DocumentFile::check(file, findings, unknownTypes); !status)
        return failure(status);
    if (findings.empty() && unknownTypes.empty()) { // as far as can be told without the classes
        StrongRef<Asset> asset;
        Status status = readDocument(file, asset);
        if (!status && mayBeDamage(status.code()))
            findings.push_back(status.cause());
        else if (!status || !(status = equipDocument(asset)))
            return failure(status);
    }
    if (findings.empty() && unknownTypes.empty())
        return {0, message(L"nothing is wrong with %1%", name)};
    std::wstring text;
    if (!findings.empty()) text = message(L"%1% is damaged:", name) + listOf(findings) + L'\n';
    if (!unknownTypes.empty()) {
        text += (findings.empty()
                     ? message(L"nothing is damaged in %1%, but it has entities of types that this "
                               L"program doesn't know:",
                               name)
                     : message(L"it also has entities of types that this program doesn't know:")) +
                listOf(unknownTypes);
    } else
        text.pop_back();
    return {findings.empty() ? ExitUnknownTypes : ExitBadInput, text};
}

} // namespace Vn::Console
