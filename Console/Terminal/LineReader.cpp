#include "Console/Terminal/LineReader.h"

#include <istream>

namespace Vn::Console {

std::optional<std::string> StreamLineReader::read(std::wstring const &) {
    std::string line;
    if (!std::getline(m_rIn, line)) return std::nullopt;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

} // namespace Vn::Console
