#include "Console/Terminal/LineReader.h"

#include <istream>

#include "Console/Messages.h"

namespace Vn::Console {

using namespace std::string_view_literals;

std::wstring takeByteOrderMark(std::string & firstLine) {
    // That of UTF-32 begins as that of UTF-16 does.
    for (std::string_view const mark : {"\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv})
        if (firstLine.starts_with(mark))
            return message(L"the input is in %1%; only UTF-8 is read", L"UTF-32");
    for (std::string_view const mark : {"\xFF\xFE"sv, "\xFE\xFF"sv})
        if (firstLine.starts_with(mark))
            return message(L"the input is in %1%; only UTF-8 is read", L"UTF-16");
    if (constexpr std::string_view c_utf8 = "\xEF\xBB\xBF"; firstLine.starts_with(c_utf8))
        firstLine.erase(0, c_utf8.size());
    return {};
}

std::optional<std::string> StreamLineReader::read(std::wstring const &) {
    std::string line;
    if (!m_refusal.empty() || !std::getline(m_rIn, line)) return std::nullopt;
    if (m_bFirst) m_refusal = takeByteOrderMark(line);
    m_bFirst = false;
    if (!m_refusal.empty()) return std::nullopt;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

} // namespace Vn::Console
