#include "Console/CommandLine/BatchCommand.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "Console/CommandLine/Batch.h"
#include "Console/CommandLine/ExitStatus.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

int cannotRead(std::wstring const & name, char const * reason, std::ostream & err) {
    return told(message(L"can't read %1%: %2%", name, Text::fromUtf8(reason)), err);
}

int statusOf(BatchOutcome const & outcome, std::wstring const & name, std::ostream & err) {
    if (outcome.inputFailed) return cannotRead(name, std::strerror(EIO), err);
    return outcome.outputFailed || outcome.badLines > 0 ? ExitBadInput : ExitGood;
}

} // namespace

int runBatchCommand(std::string const & path, bool withTokens, bool progress, std::istream & in,
                    std::ostream & out, std::ostream & err) {
    BatchOptions options;
    options.withTokens = withTokens;
    if (path.empty() || path == "-")
        return statusOf(runBatch(in, out, options), message(L"the standard input"), err);
    std::wstring const name = printable(Text::fromUtf8(path));
    std::filesystem::path const file(std::u8string(path.begin(), path.end()));
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored))
        return cannotRead(name, std::strerror(EISDIR), err);
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return cannotRead(name, std::strerror(errno != 0 ? errno : EIO), err);
    if (!progress) return statusOf(runBatch(stream, out, options), name, err);

    std::size_t lines = 0;
    options.progress = [&](std::size_t count) {
        lines = count;
        // The cursor goes back, so that what comes next takes the place of the line.
        err << messageUtf8(L"%1% lines", count) << '\r' << std::flush;
    };
    BatchOutcome const outcome = runBatch(stream, out, options);
    err << messageUtf8(L"%1% lines", lines) << '\n';
    return statusOf(outcome, name, err);
}

} // namespace Vn::Console
