#include "Tests/Docs/Examples.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace Vn::Docs::Tests {

namespace {

std::string trimmed(std::string const & text) {
    std::size_t const first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The code of a cell that is code, or its text.
std::string plain(std::string const & cell) {
    std::string const text = trimmed(cell);
    bool const code = text.size() >= 2 && text.front() == '`' && text.back() == '`';
    return code ? text.substr(1, text.size() - 2) : text;
}

// The cells of a line "| a | b |"; none if it isn't a row.  A "|" within code separates nothing.
std::vector<std::string> cellsOf(std::string const & line) {
    std::vector<std::string> cells;
    if (line.empty() || line.front() != '|') return cells;
    std::string cell;
    bool code = false;
    for (char const c : line.substr(1)) {
        if (c == '`') code = !code;
        if (c == '|' && !code) {
            cells.push_back(plain(cell));
            cell.clear();
        } else {
            cell += c;
        }
    }
    return cells;
}

std::vector<Session> sessionsOf(Block const & block) {
    std::vector<Session> sessions;
    for (std::size_t i = 0; i < block.lines.size(); ++i) {
        std::string const & line = block.lines[i];
        if (line.starts_with("$ ")) {
            sessions.push_back(
                {{block.place.document, block.place.line + 1 + i}, line.substr(2), {}});
        } else if (sessions.empty()) {
            throw std::runtime_error(block.place.document + ": a console block begins with \"$ \"");
        } else {
            sessions.back().output += line + '\n';
        }
    }
    return sessions;
}

void addSentences(std::string const & line, Place const & place, std::vector<Row> & rows) {
    static std::regex const s_gives("`([^`]+)` gives `([^`]*)`");
    static std::regex const s_fails("`([^`]+)` fails at ([0-9]+)");
    for (std::sregex_iterator it(line.begin(), line.end(), s_gives), end; it != end; ++it)
        rows.push_back({place, {{"Expression", (*it)[1]}, {"Shown", (*it)[2]}}});
    for (std::sregex_iterator it(line.begin(), line.end(), s_fails), end; it != end; ++it) {
        rows.push_back({place,
                        {{"Expression", (*it)[1]},
                         {"Outcome", "Parse error at character " + (*it)[2].str()}}});
    }
}

} // namespace

std::string readFile(std::string const & name) {
    std::ifstream file(std::filesystem::path(VN_SOURCE_DIRECTORY) / name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    if (!file) throw std::runtime_error("can't read " + name);
    return text.str();
}

Document readDocument(std::string const & name) {
    Document document{name, readFile(name), {}, {}, {}};
    std::istringstream lines(document.text);
    std::vector<std::string> heads;
    std::string sentence; // a paragraph so far: a sentence may go over several lines
    Place sentencePlace;
    Block * block = nullptr;
    auto const endSentence = [&] {
        addSentences(sentence, sentencePlace, document.rows);
        sentence.clear();
    };
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        Place const place{name, ++number};
        if (line.starts_with("```")) {
            endSentence();
            if (block)
                block = nullptr;
            else
                block = &document.blocks.emplace_back(Block{place, line.substr(3), {}});
            continue;
        }
        if (block) {
            block->lines.push_back(line);
            continue;
        }
        std::vector<std::string> const cells = cellsOf(line);
        if (!cells.empty()) {
            endSentence();
            if (heads.empty()) {
                heads = cells;
            } else if (!cells.front().starts_with("---") &&
                       std::find(heads.begin(), heads.end(), "Expression") != heads.end()) {
                if (cells.size() != heads.size()) {
                    throw std::runtime_error(name + ":" + std::to_string(number) +
                                             ": a row has as many cells as its heading");
                }
                Row row{place, {}};
                for (std::size_t i = 0; i < cells.size(); ++i) row.cells[heads[i]] = cells[i];
                document.rows.push_back(std::move(row));
            }
            continue;
        }
        heads.clear();
        if (line.empty()) endSentence();
        if (sentence.empty()) sentencePlace = place;
        sentence += line + ' ';
    }
    endSentence();
    for (Block const & each : document.blocks) {
        if (each.language != "console") continue;
        for (Session & session : sessionsOf(each)) document.sessions.push_back(std::move(session));
    }
    return document;
}

std::vector<Document> readDocuments() {
    std::vector<std::string> names{"README.md"};
    std::filesystem::path const root(VN_SOURCE_DIRECTORY);
    for (auto const & entry : std::filesystem::directory_iterator(root / "Docs")) {
        if (entry.path().extension() != ".md") continue;
        names.push_back("Docs/" + entry.path().filename().string());
    }
    std::sort(names.begin() + 1, names.end());
    std::vector<Document> documents;
    std::transform(names.begin(), names.end(), std::back_inserter(documents), readDocument);
    return documents;
}

} // namespace Vn::Docs::Tests
