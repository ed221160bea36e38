#include "Console/Session/Interactive.h"

#include <optional>
#include <ostream>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Session/Completion.h"
#include "Console/Session/Session.h"
#include "Console/Terminal/LineReader.h"
#include "Console/Terminal/NumberedErrors.h"
#include "Console/Terminal/Terminal.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

std::unique_ptr<LineReader> makeEditor() {
    if (!inputIsTerminal() || !outputIsTerminal()) return nullptr;
    return makeLineEditor(&completeSessionLine);
}

} // namespace

int runInteractive(DocumentSession const & document, bool standard, std::istream & in,
                   std::ostream & out, std::ostream & plainErr) {
    NumberedErrors err(plainErr);
    std::unique_ptr<LineReader> reader = makeEditor();
    bool const isTyped = reader != nullptr;
    StreamLineReader piped(in);
    if (isTyped)
        out << messageUtf8(L"Type an expression, such as 1 in + 1 cm; help tells more, quit ends.")
            << '\n';
    Session session(out, err, standard);
    bool good = true;
    int status = ExitBadInput; // unless all was good
    std::size_t lines = 0;     // read, unless they are typed
    bool warned = false;       // of what would be lost, by the line before
    // Where lines are typed, Ctrl-C never ends the session.
    std::optional<OS::NotedInterruptions> noted;
    if (isTyped) noted.emplace();
    while (out.flush()) {
        OS::forgetInterruption(); // what comes from now on is meant for the next line
        std::optional<std::string> const line = (reader ? *reader : piped).read(session.prompt());
        // The prompt is left standing by the end of the input.
        if (!line && isTyped) out << '\n' << std::flush;
        // Who types sees the line.
        if (line && !isTyped) err.begin(++lines);
        bool interrupted = false;
        Session::Result result = Session::Result::Quit;
        if (line) {
            OS::NotedInterruptions const during;
            result = session.execute(*line);
            interrupted = OS::wasInterrupted();
            if (interrupted && reader) reader->forget();
        }
        // Elsewhere it ends the command, and the lines after it aren't read.
        if (interrupted && !isTyped) {
            out.flush();
            err.begin(0);
            err << messageUtf8(L"interrupted: the lines that follow aren't run") << '\n'
                << std::flush;
            status = ExitInterrupted;
            good = false;
            result = Session::Result::Quit;
        }
        good &= result != Session::Result::Bad;
        if (!piped.refusal().empty()) {
            err.begin(1);
            err << Text::toUtf8(piped.refusal()) << '\n' << std::flush;
            good = false;
        }
        if (result != Session::Result::Quit) {
            warned = false;
            continue;
        }
        if (!document.hasUnsavedChanges() || warned) break;
        err.begin(0);
        wchar_t const * const what =
            isTyped ? tr(L"%1%; Document.Save keeps it, quitting once more doesn't")
                    : tr(L"%1%; what isn't saved is lost");
        err << messageUtf8(what, document.unsavedChanges()) << '\n' << std::flush;
        warned = true;
        if (!isTyped) {
            good = false;
            break;
        }
    }
    return good || isTyped ? ExitGood : status;
}

} // namespace Vn::Console
