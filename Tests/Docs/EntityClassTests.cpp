// The guide to entity classes of one's own is a program, in two versions.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Docs/Examples.h"
#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Docs::Tests {

namespace {

TEST(EntityClassTests, BothProgramsOfTheGuidePrintWhatItSays) {
    std::vector<std::string> expected;
    for (Block const & block : readDocument("Docs/entity-class.md").blocks) {
        if (block.language != "output") continue;
        expected.emplace_back();
        for (std::string const & line : block.lines) expected.back() += line + '\n';
    }
    ASSERT_EQ(expected.size(), 2U);
    Testing::TemporaryFile const file;
    std::size_t step = 0;
    for (char const * const program : {VN_ENTITY_CLASS_FIRST, VN_ENTITY_CLASS_SECOND}) {
        Console::Tests::Outcome outcome = Console::Tests::runProgram(program, {file.text()});
        std::erase(outcome.out, '\r'); // some systems end lines with it
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.out, expected[step++]);
    }
}

} // namespace

} // namespace Vn::Docs::Tests
