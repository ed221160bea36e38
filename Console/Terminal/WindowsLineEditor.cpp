// Lines from the terminal of Windows, which edits them and remembers them itself.

#include "Console/Terminal/LineReader.h"

#include <cstdio>

#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

class WindowsLineEditor final : public LineReader {
public:
    std::optional<std::string> read(std::wstring const & prompt) override {
        std::string const utf8 = Text::toUtf8(prompt);
        std::fwrite(utf8.data(), 1, utf8.size(), stdout);
        std::fflush(stdout);
        std::optional<std::wstring> const line = OS::readTerminalLine();
        if (!line) return std::nullopt;
        return Text::toUtf8(*line);
    }
};

} // namespace

std::unique_ptr<LineReader> makeLineEditor(Completer) {
    return std::make_unique<WindowsLineEditor>();
}

} // namespace Vn::Console
