// The text commands of the subject areas "Document" and "Groups".

#ifndef VN_CONSOLE_DOCUMENTS_TEXTCOMMANDS_H
#define VN_CONSOLE_DOCUMENTS_TEXTCOMMANDS_H

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Base/TextCommand.h"

namespace Vn::Console {

class DocumentSession;

// How a text command on documents is called, and what it does.
struct DocumentTextCommand {
    wchar_t const * name;
    char const * alias;
    wchar_t const * usage; // what stands after the name
    wchar_t const * meaning;
    wchar_t const * purpose; // after "cannot"
    unsigned least;          // the number of parameters
    unsigned most;
    wchar_t const * flag; // the one that it knows; null if it knows none
    bool needsDocument;
    TextCommandResult (*run)(DocumentSession & session, TextCommandParameters const & parameters);
    // In place of `run`, for a text that may be long: writes it, unless it answers why it can't.
    TextCommandResult (*write)(DocumentSession const & session,
                               TextCommandParameters const & parameters,
                               std::ostream & out) = nullptr;
};

// "cannot ...: ...".
TextCommandResult cannot(std::wstring const & what, std::wstring const & reason);

// The commands of the area "Groups".
std::vector<DocumentTextCommand> groupTextCommands();

// The commands, which are there as long as this object is and work on the document of `session`,
// which must live as long.
class DocumentTextCommands {
public:
    // A text that may be long is written to `out` while it is made, and the command then answers
    // nothing; with null it is the answer.
    explicit DocumentTextCommands(DocumentSession & session, std::ostream * out = nullptr);
    ~DocumentTextCommands();
    DocumentTextCommands(DocumentTextCommands const &) = delete;
    DocumentTextCommands & operator=(DocumentTextCommands const &) = delete;

private:
    void add(wchar_t const * area, wchar_t const * description,
             std::vector<DocumentTextCommand> const & commands, DocumentSession & session,
             std::ostream * out);

    std::vector<std::unique_ptr<TextCommandSubjectArea>> m_areas;
    std::vector<std::unique_ptr<TextCommand>> m_commands;
};

} // namespace Vn::Console

#endif
