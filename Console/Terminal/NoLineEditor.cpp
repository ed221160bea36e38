// For systems without the library of line editing.

#include "Console/Terminal/LineReader.h"

namespace Vn::Console {

std::unique_ptr<LineReader> makeLineEditor(Completer) { return nullptr; }

} // namespace Vn::Console
