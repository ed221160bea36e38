#include "Console/Interactive.h"

#include <ostream>

#include "Console/ExitStatus.h"
#include "Console/LineReader.h"
#include "Console/Session.h"
#include "Console/SessionCompletion.h"
#include "Console/Terminal.h"

namespace Vn::Console {

namespace {

std::unique_ptr<LineReader> makeEditor() {
    if (!inputIsTerminal() || !outputIsTerminal()) return nullptr;
    return makeLineEditor(&completeSessionLine);
}

} // namespace

int runInteractive(std::istream & in, std::ostream & out, std::ostream & err) {
    std::unique_ptr<LineReader> reader = makeEditor();
    bool const somebodyTypes = reader != nullptr;
    if (somebodyTypes) {
        out << "Type an expression, such as 1 in + 1 cm; help tells more, quit ends.\n";
    } else {
        reader = std::make_unique<StreamLineReader>(in);
    }
    Session session(out, err);
    bool good = true;
    bool quit = false;
    while (!quit && out.flush()) {
        std::optional<std::string> const line = reader->read(session.prompt());
        if (!line) {
            // The prompt is left standing by the end of the input.
            if (somebodyTypes) out << '\n';
            break;
        }
        Session::Result const result = session.execute(*line);
        good &= result != Session::Result::Bad;
        quit = result == Session::Result::Quit;
    }
    return good || somebodyTypes ? ExitGood : ExitBadInput;
}

} // namespace Vn::Console
