#include "Console/Terminal/Terminal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "Platform/Base/OS.h"

namespace Vn::Console {

bool inputIsTerminal() { return OS::isTerminal(0); }
bool outputIsTerminal() { return OS::isTerminal(1); }
bool errorIsTerminal() { return OS::isTerminal(2); }

std::filesystem::path stateDirectory() {
    auto const variable = [](char const * name) {
        char const * const value = std::getenv(name);
        std::filesystem::path const path = value ? value : "";
        // A relative path would mean another place in every directory.
        return path.is_absolute() ? path : std::filesystem::path();
    };
    std::filesystem::path directory = variable("XDG_STATE_HOME");
    if (directory.empty()) {
        directory = variable("HOME");
        if (directory.empty()) return {};
        directory /= ".local/state";
    }
    directory /= "vnconsole";
    std::error_code ignored;
    std::filesystem::create_directories(directory, ignored);
    return directory;
}

StandardOutput::StandardOutput() { setp(m_buffer.data(), m_buffer.data() + m_buffer.size()); }

StandardOutput::int_type StandardOutput::overflow(int_type c) {
    if (!write()) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
}

int StandardOutput::sync() { return write() ? 0 : -1; }

bool StandardOutput::write() {
    if (m_error != 0) return false;
    auto const size = static_cast<std::size_t>(pptr() - pbase());
    setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
    errno = 0;
    if (std::fwrite(m_buffer.data(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return true;
    m_error = OS::writeError();
    return false;
}

} // namespace Vn::Console
