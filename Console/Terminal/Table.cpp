#include "Console/Terminal/Table.h"

#include <algorithm>

#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

std::size_t width(std::wstring const & cell) {
    return static_cast<std::size_t>(std::max(0, Text::displayWidth(cell)));
}

} // namespace

std::string Table::toUtf8(std::string const & indent) const {
    std::vector<std::size_t> widths;
    for (std::vector<std::wstring> const & row : m_rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], width(row[i]));
    }
    std::string lines;
    for (std::vector<std::wstring> const & row : m_rows) {
        std::string line = indent;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += Text::toUtf8(row[i]);
            if (i + 1 < row.size()) line.append(widths[i] - width(row[i]) + 2, ' ');
        }
        // The last cells of a row may be empty.
        line.erase(line.find_last_not_of(' ') + 1);
        lines += line + '\n';
    }
    return lines;
}

} // namespace Vn::Console
