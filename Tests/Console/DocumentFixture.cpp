#include "Tests/Console/DocumentFixture.h"

#include <fstream>
#include <sstream>
#include <vector>

#include "Tests/DataModel/DocumentSql.h"

namespace Vn::Console::Tests {

namespace fs = std::filesystem;

DocumentFixture::DocumentFixture() : m_before(fs::current_path()) { fs::current_path(directory()); }

DocumentFixture::~DocumentFixture() {
    std::error_code ignored;
    fs::current_path(m_before, ignored); // so that the other can go
}

Outcome DocumentFixture::document(std::string const & commands, std::string const & file) {
    std::vector<std::string> arguments{"document", file};
    std::istringstream words(commands);
    for (std::string word; words >> word;) arguments.push_back(word);
    return runConsole(arguments);
}

Outcome DocumentFixture::run(std::string const & commands) {
    return runConsole({"document", "a.vnd", commands});
}

std::string DocumentFixture::answer(std::string const & commands) {
    Outcome const outcome = run(commands);
    EXPECT_EQ(outcome.status, 0) << commands << ": " << outcome.err;
    return outcome.out;
}

std::string DocumentFixture::readFile(std::string const & name) const {
    std::ifstream file(directory() / name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    EXPECT_TRUE(file) << name;
    return text.str();
}

void DocumentFixture::execute(std::string const & name, char const * sql) const {
    Vn::Testing::Sql(directory() / name).run(sql);
}

std::string DocumentFixture::places(std::string const & tree) {
    std::istringstream lines(tree);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string path;
        std::string id;
        words >> path >> id;
        std::string const root = path.substr(0, path.find('/'));
        if (root == "AssetSettings" || root == "NamedViews" || root == "UnitSystems") continue;
        result += path + ' ' + id + '\n';
    }
    return result;
}

} // namespace Vn::Console::Tests
