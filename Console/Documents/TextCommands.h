// The text commands of the subject areas "Document" and "Groups".

#ifndef VN_CONSOLE_DOCUMENTS_TEXTCOMMANDS_H
#define VN_CONSOLE_DOCUMENTS_TEXTCOMMANDS_H

#include <iosfwd>
#include <memory>
#include <vector>

#include "Platform/Base/TextCommand.h"

namespace Vn::Console {

class DocumentSession;

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
    std::vector<std::unique_ptr<TextCommandSubjectArea>> m_areas;
    std::vector<std::unique_ptr<TextCommand>> m_commands;
};

} // namespace Vn::Console

#endif
