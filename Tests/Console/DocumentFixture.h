// A directory for the documents of a test, which is the current one as long as the test runs.

#ifndef VN_TESTS_CONSOLE_DOCUMENTFIXTURE_H
#define VN_TESTS_CONSOLE_DOCUMENTFIXTURE_H

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

class DocumentFixture : public testing::Test {
protected:
    DocumentFixture();
    ~DocumentFixture() override;

    std::filesystem::path const & directory() const { return m_directory.path(); }
    // Runs commands on the file "a.vnd", or another.  Blanks separate arguments.
    static Outcome document(std::string const & commands, std::string const & file = "a.vnd");

    // Runs commands on "a.vnd", with commas between them, as one argument.
    static Outcome run(std::string const & commands);
    // What commands say that succeed.
    static std::string answer(std::string const & commands);

    // The bytes of a file there.
    std::string readFile(std::string const & name) const;
    // Runs a statement on the database in a file there.
    void execute(std::string const & name, char const * sql) const;

    // The first two columns of the tree, without what every new document has beside its root group:
    // "Groups/CmnData[0] #29".
    static std::string places(std::string const & tree);

private:
    std::filesystem::path const m_before;
    Testing::TemporaryDirectory const m_directory;
};

} // namespace Vn::Console::Tests

#endif
