#include "Tests/Translations/PoFile.h"

#include <fstream>
#include <stdexcept>
#include <string_view>

namespace Vn::Translations {

namespace {

// A text in quotes, of which the escapes \" \\ and \n are known.
std::string unquoted(std::string_view quoted) {
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"')
        throw std::runtime_error("no text in quotes: " + std::string(quoted));
    std::string text;
    quoted = quoted.substr(1, quoted.size() - 2);
    for (std::size_t i = 0; i < quoted.size(); ++i) {
        if (quoted[i] == '\\' && i + 1 < quoted.size()) {
            ++i;
            text += quoted[i] == 'n' ? '\n' : quoted[i];
        } else {
            text += quoted[i];
        }
    }
    return text;
}

} // namespace

std::vector<PoEntry> readPoFile(std::string const & name) {
    std::ifstream file(VN_TRANSLATIONS "/" + name);
    if (!file) throw std::runtime_error("can't read " + name);
    std::vector<PoEntry> entries;
    PoEntry entry;
    std::string * last = nullptr;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '"') {
            if (!last) throw std::runtime_error("a text belongs to nothing: " + line);
            *last += unquoted(line);
            continue;
        }
        std::size_t const blank = line.find(' ');
        std::string_view const keyword = std::string_view(line).substr(0, blank);
        if (keyword == "msgctxt" || (keyword == "msgid" && last != &entry.context)) {
            if (!entry.id.empty()) entries.push_back(entry);
            entry = PoEntry();
        }
        if (keyword == "msgctxt")
            last = &entry.context;
        else if (keyword == "msgid")
            last = &entry.id;
        else if (keyword == "msgstr")
            last = &entry.text;
        else
            throw std::runtime_error("an unknown line: " + line);
        *last = unquoted(std::string_view(line).substr(blank + 1));
    }
    if (!entry.id.empty()) entries.push_back(entry);
    return entries;
}

} // namespace Vn::Translations
