// A session with a person who types, or with the lines of a file.

#ifndef VN_CONSOLE_SESSION_INTERACTIVE_H
#define VN_CONSOLE_SESSION_INTERACTIVE_H

#include <iosfwd>

namespace Vn::Console {

class DocumentSession;

// Reads lines and does what they say until there are no more.  On a terminal with editing, history
// and completion, and with a warning before unsaved changes of the document are lost; else without
// prompts, and the status tells whether all lines were good and nothing was lost.
//
// With `standard`, values are shown under the factory settings whatever the user prefers.
int runInteractive(DocumentSession const & document, bool standard, std::istream & in,
                   std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
