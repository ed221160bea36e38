// Columns of text, each as wide as its widest cell is in a terminal.

#ifndef VN_CONSOLE_TERMINAL_TABLE_H
#define VN_CONSOLE_TERMINAL_TABLE_H

#include <string>
#include <vector>

namespace Vn::Console {

class Table {
public:
    // Rows may differ in length.  The last cell of a row isn't padded.
    void add(std::vector<std::wstring> row) { m_rows.push_back(std::move(row)); }

    // The rows as lines of UTF-8, each with its line end, with `indent` in front and two blanks
    // between the columns.
    std::string toUtf8(std::string const & indent = {}) const;

private:
    std::vector<std::vector<std::wstring>> m_rows;
};

} // namespace Vn::Console

#endif
