// The commands on documents, listed once.  From this list come the text commands of the subject
// areas "Document", "Groups", "UnitSystems", "Settings" and "Views", what `vnconsole document`
// takes and tells of, and the help of a session.  A further command is a further row.

#ifndef VN_CONSOLE_DOCUMENTS_COMMANDTABLE_H
#define VN_CONSOLE_DOCUMENTS_COMMANDTABLE_H

#include <iosfwd>
#include <span>
#include <string_view>

#include "Platform/Base/TextCommand.h"

namespace Vn::Console {

class DocumentSession;

// What a command may do among those of a call of `vnconsole document`.
enum class EDocumentCall {
    Looks,   // stands anywhere, and changes nothing
    Changes, // stands anywhere
    Begins,  // stands in front of all others, and makes the document
    Alone,   // stands without others, and takes the file without opening it
    None     // belongs to a session
};

// A line that can be typed, and what it does.  The examples of all commands, in their order, make
// a session.
struct DocumentExample {
    wchar_t const * line = nullptr;
    wchar_t const * meaning = nullptr;
};

// An option of a call, and what it stands for among the words of the command.
struct DocumentCallOption {
    wchar_t const * option; // "--view"
    wchar_t const * word; // "view", in front of its value, or a flag; null for the first parameter
    bool isFlag = false;
};

// How a command is called, and what it does.  The texts but for usages are messages.
struct DocumentCommand {
    wchar_t const * area = nullptr;
    wchar_t const * name = nullptr;
    char const * alias = nullptr;      // which is enough where a line begins
    wchar_t const * usage = L"";       // what stands after the name
    wchar_t const * meaning = nullptr; // in the list of text commands
    wchar_t const * refusal = nullptr; // "cannot ...: %1%", with a place for the reason
    unsigned least = 0;                // the number of parameters
    unsigned most = 0;
    wchar_t const * flag = nullptr;      // one that it knows; null if it knows none
    wchar_t const * otherFlag = nullptr; // another
    bool needsDocument = true;
    EDocumentCall call = EDocumentCall::Changes;
    wchar_t const * callUsage = L"";   // what stands after the alias in a call of the console
    wchar_t const * callMeaning = L""; // what it does there
    // The options of such a call that belong to this command, each as the console has it.
    std::span<DocumentCallOption const> callOptions = {};
    DocumentExample examples[2] = {};
    // What it does; or in its place `write`, for a text that may be long: writes it, unless it
    // answers why it can't.
    TextCommandResult (*run)(DocumentSession & session,
                             TextCommandParameters const & parameters) = nullptr;
    TextCommandResult (*write)(DocumentSession const & session,
                               TextCommandParameters const & parameters,
                               std::ostream & out) = nullptr;
};

// In the order in which the subject areas list them.
std::span<DocumentCommand const> documentCommands();

// The command by its alias, or by area and name with a full stop between them, in any case; null if
// there is none.
DocumentCommand const * findDocumentCommand(std::wstring_view word);

} // namespace Vn::Console

#endif
