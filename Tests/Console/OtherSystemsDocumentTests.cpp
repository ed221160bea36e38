// A document goes from one system to another.  The files in the folder Written were made by these
// commands, each on the system that its name tells, when documents had neither settings nor views,
// and are never written again.

#include <filesystem>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

namespace fs = std::filesystem;

char const c_commands[] = "new, make, make 0, make, add 0/0 3, move 1 before 0, make /Custom";

class OtherSystemsDocumentTests : public DocumentFixture,
                                  public testing::WithParamInterface<char const *> {
protected:
    // The file that was written there is "theirs.vnd", the one of this system "ours.vnd".
    void SetUp() override {
        fs::copy_file(fs::path(VN_WRITTEN_DOCUMENTS) / (std::string(GetParam()) + ".vnd"),
                      directory() / "theirs.vnd");
        fs::permissions(directory() / "theirs.vnd", fs::perms::owner_write, fs::perm_options::add);
        Outcome const made = document(c_commands, "ours.vnd");
        ASSERT_EQ(made.status, 0) << made.err;
    }

    // The paths below the root group.  The ids differ, since a new document has more before them.
    static std::string paths(std::string const & tree) {
        std::istringstream lines(places(tree));
        std::string all;
        for (std::string line; std::getline(lines, line);)
            all += line.substr(0, line.find(" #")) + '\n';
        return all;
    }
    static std::string answer(std::string const & commands, std::string const & file) {
        Outcome const outcome = document(commands, file);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out;
    }
};

TEST_P(OtherSystemsDocumentTests, ReadsAsItsOwnDoes) {
    std::string const tree = answer("tree", "theirs.vnd");
    EXPECT_EQ(places(tree), "Groups #1\n"
                            "Groups/CmnData[0] #4\n"
                            "Groups/CmnData[1] #2\n"
                            "Groups/CmnData[1]/CmnData[0] #3\n"
                            "Groups/CmnData[1]/CmnData[0]/CmnData[0] #5\n"
                            "Groups/CmnData[1]/CmnData[0]/CmnData[1] #6\n"
                            "Groups/CmnData[1]/CmnData[0]/CmnData[2] #7\n"
                            "Groups/CmnData[2] #8\n");
    EXPECT_EQ(paths(tree), paths(answer("tree", "ours.vnd")));
    EXPECT_EQ(answer("check", "theirs.vnd"), "nothing is wrong with theirs.vnd\n");
}

TEST_P(OtherSystemsDocumentTests, IsChangedAndSavedAsItsOwnIs) {
    char const change[] = "delete 1/0, add 0 2, move 0/0 into 1, make 2";
    answer(change, "theirs.vnd");
    answer(change, "ours.vnd");
    std::string const tree = answer("tree", "theirs.vnd");
    EXPECT_NE(tree.find("Groups/CmnData[1]/CmnData[0]  #19"), std::string::npos) << tree;
    EXPECT_EQ(paths(tree), paths(answer("tree", "ours.vnd")));
}

INSTANTIATE_TEST_SUITE_P(From, OtherSystemsDocumentTests, testing::Values("linux", "windows"),
                         [](auto const & system) { return std::string(system.param); });

} // namespace

} // namespace Vn::Console::Tests
