#include "Console/Terminal/NumberedErrors.h"
#include "Console/Messages.h"

namespace Vn::Console {

NumberedErrors::NumberedErrors(std::ostream & err) : std::ostream(nullptr), m_buffer(err) {
    rdbuf(&m_buffer);
}

std::streambuf::int_type NumberedErrors::Buffer::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    tellLine();
    return err.put(traits_type::to_char_type(c)) ? c : traits_type::eof();
}

std::streamsize NumberedErrors::Buffer::xsputn(char const * text, std::streamsize size) {
    if (size <= 0) return 0;
    tellLine();
    return err.write(text, size) ? size : 0;
}

int NumberedErrors::Buffer::sync() { return err.flush() ? 0 : -1; }

void NumberedErrors::Buffer::tellLine() {
    if (line == 0) return;
    err << messageUtf8(L"line %1%: ", line);
    line = 0;
}

} // namespace Vn::Console
