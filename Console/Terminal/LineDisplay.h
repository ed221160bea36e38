// A line that is being typed, as it stands in a terminal that knows the usual sequences.

#ifndef VN_CONSOLE_TERMINAL_LINEDISPLAY_H
#define VN_CONSOLE_TERMINAL_LINEDISPLAY_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Console/Terminal/Keys.h"

namespace Vn::Console {

// Knows what it has drawn, and answers what has to be written so that the terminal shows the line
// as it is now.  A wide character takes two columns, and one without a width none: it belongs to
// the one before.  Of a line that has more rows than the terminal only those around the cursor are
// shown.
class LineDisplay {
public:
    // What brings the terminal from what it shows to a line after a prompt, with the cursor before
    // a character of the line.  In a terminal of another size than before all is drawn anew, from
    // where its first row has gone.  A "\n" in the line begins another row.
    std::string show(std::wstring_view prompt, std::wstring_view line, std::size_t cursor,
                     TerminalSize size);
    // What puts the cursor after all that is shown.
    std::string end();
    // From now on the terminal shows nothing of the line; the cursor is where the next one begins.
    void forget();

    // Where the character at a position ends, with those that belong to it; the size of the text at
    // its end.
    static std::size_t next(std::wstring_view text, std::size_t position);
    // Where the character before a position begins; 0 at the beginning.
    static std::size_t previous(std::wstring_view text, std::size_t position);

private:
    struct Place {
        std::size_t row = 0;
        std::size_t column = 0; // that of the width of the terminal after a full row
        bool operator==(Place const &) const = default;
    };
    // A character with those that belong to it.
    struct Glyph {
        std::wstring text;
        std::size_t width = 0;
        std::size_t begin = 0; // in the text that is shown
        Place place;
    };
    using Glyphs = std::vector<Glyph>;

    static Glyphs glyphsOf(std::wstring_view text);
    // Gives each its place.  Returns the place after the last.
    static Place lay(Glyphs & glyphs, std::size_t columns);
    // The rows of the line that are shown: where the first of them begins.
    std::size_t firstRow(Place cursor, Place end, std::size_t rows) const;
    std::string goTo(Place place);
    std::string write(Glyphs const & glyphs, std::size_t from);
    // To the first row, with nothing after it.
    std::string clear(std::size_t columns);

    TerminalSize m_size;
    Glyphs m_shown;
    std::size_t m_firstRow = 0; // of the line, that the terminal shows
    Place m_cursor;             // in the terminal, from the first row that it shows
    Place m_end;                // after all that it shows
    bool m_bDrawn = false;
};

} // namespace Vn::Console

#endif
