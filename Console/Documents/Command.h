// vnconsole document: commands on a file.

#ifndef VN_CONSOLE_DOCUMENTS_COMMAND_H
#define VN_CONSOLE_DOCUMENTS_COMMAND_H

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace Vn::Console {

class DocumentSession;

struct DocumentOptions {
    std::wstring file;
    // The commands with their parameters.  Each ends with a comma, by itself or after a word, or
    // with the word "then".
    std::vector<std::wstring> words;
    bool isNew = false;   // the file is made by this call
    bool json = false;    // the tree is written as JSON, and nothing else is
    bool verbose = false; // the tree has what the system itself says of each entity
    // Options that belong to some of the commands, by their long names, with their values.
    std::vector<std::pair<std::wstring, std::wstring>> callOptions;
};

// The commands that a call may hold, a line for each.
std::string documentCallsText();

// Runs text commands of the areas "Document" and "Groups" on a file, which is saved after the last
// if all were good and the document changed.  If one fails, those after it aren't run and nothing
// is saved.  The commands must be there, and work on `session`.
int runDocument(DocumentOptions const & options, DocumentSession & session, std::ostream & out,
                std::ostream & err);

} // namespace Vn::Console

#endif
