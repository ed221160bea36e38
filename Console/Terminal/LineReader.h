// Where the lines of an interactive session come from.

#ifndef VN_CONSOLE_TERMINAL_LINEREADER_H
#define VN_CONSOLE_TERMINAL_LINEREADER_H

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vn::Console {

class LineReader {
public:
    virtual ~LineReader() = default;

    // The next line in UTF-8, without its end; none when there are no more.  The prompt is shown
    // only where a person types.
    virtual std::optional<std::string> read(std::wstring const & prompt) = 0;

    // Drops what was typed ahead, as far as the reader has it.
    virtual void forget() {}
};

// Takes the byte order mark of UTF-8 away from the first line of an input.  Returns an empty text,
// or what is wrong with an input whose mark tells another encoding.
std::wstring takeByteOrderMark(std::string & firstLine);

// Lines from a file or a pipe.
class StreamLineReader final : public LineReader {
public:
    // The stream must live as long as the reader.
    explicit StreamLineReader(std::istream & in) : m_rIn(in) {}

    std::optional<std::string> read(std::wstring const & prompt) override;

    // Why there are no lines, if the stream is in an encoding that isn't read; else empty.
    std::wstring const & refusal() const { return m_refusal; }

private:
    std::istream & m_rIn;
    std::wstring m_refusal;
    bool m_bFirst = true; // nothing was read yet
};

// What can stand where a word has been begun.
struct Completion {
    struct Candidate {
        std::wstring text;  // the whole word
        std::wstring after; // what follows it if it is the only one
    };

    std::size_t begun = 0; // how many characters in front of the cursor the candidates replace
    std::vector<Candidate> candidates;
};

using Completer = std::function<Completion(std::wstring_view lineUpToCursor)>;

// Lines from the terminal, with editing, completion on the tab key, and the lines typed before on
// the arrow keys.  These are kept for the next session where the console has a place for its state.
// On Windows the terminal itself edits lines and remembers them, and completes nothing.  Null if
// the program was built without line editing.
std::unique_ptr<LineReader> makeLineEditor(Completer completer);

} // namespace Vn::Console

#endif
