// Messages about the lines of an input, each after the number of its line.

#ifndef VN_CONSOLE_TERMINAL_NUMBEREDERRORS_H
#define VN_CONSOLE_TERMINAL_NUMBEREDERRORS_H

#include <cstddef>
#include <ostream>
#include <streambuf>

namespace Vn::Console {

// Passes on what is written.  What is told first of a line has "line 3: " in front.
class NumberedErrors final : public std::ostream {
public:
    // `err` must live as long.
    explicit NumberedErrors(std::ostream & err);

    // What is written from now on is about that line; 0 for none, which is so at first.
    void begin(std::size_t line) { m_buffer.line = line; }

private:
    struct Buffer final : std::streambuf {
        explicit Buffer(std::ostream & out) : err(out) {}
        int_type overflow(int_type c) override;
        std::streamsize xsputn(char const * text, std::streamsize size) override;
        int sync() override;
        void tellLine();

        std::ostream & err;
        std::size_t line = 0; // whose number isn't told yet; 0 for none
    };

    Buffer m_buffer;
};

} // namespace Vn::Console

#endif
