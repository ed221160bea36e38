// The console window of Windows has an encoding of its own.  What a program writes to a file or a
// pipe is UTF-8 whatever that is, and the window has its own encoding again afterwards.

#include <gtest/gtest.h>
#include <windows.h>

#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

class CodePageTests : public DocumentFixture, public testing::WithParamInterface<unsigned> {
protected:
    CodePageTests() : m_input(GetConsoleCP()), m_output(GetConsoleOutputCP()) {}
    ~CodePageTests() override {
        SetConsoleCP(m_input);
        SetConsoleOutputCP(m_output);
    }

    void SetUp() override {
        ASSERT_TRUE(SetConsoleCP(GetParam())) << "is there a window?";
        ASSERT_TRUE(SetConsoleOutputCP(GetParam()));
    }
    void TearDown() override {
        EXPECT_EQ(GetConsoleCP(), GetParam());
        EXPECT_EQ(GetConsoleOutputCP(), GetParam());
    }

private:
    UINT const m_input;
    UINT const m_output;
};

TEST_P(CodePageTests, ErrorsQuoteWhatWasTyped) {
    Outcome const outcome = runConsole({"eval", "2 \xC3\xBC\xE6\x97\xA5"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("\"\xC3\xBC\xE6\x97\xA5\""), std::string::npos) << outcome.err;
}

TEST_P(CodePageTests, LinesOfInputAreUtf8) {
    Outcome const outcome = runConsole({}, "90\xC2\xB0 30'\r\n5 \xC3\xBC\r\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "90.5 deg\n"
                           "  internal 1.5795229730548683 rad, units deg, rebuilt 90deg 30'\n");
    EXPECT_NE(outcome.err.find("\"\xC3\xBC\""), std::string::npos) << outcome.err;
}

TEST_P(CodePageTests, FilesAreMadeByTheirNames) {
    Outcome const outcome = document("new, make", "gr\xC3\xBC\xC3\x9F\x65-\xE6\x97\xA5.vnd");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("saved gr\xC3\xBC\xC3\x9F\x65-\xE6\x97\xA5.vnd\n"),
              std::string::npos)
        << outcome.out;
    EXPECT_TRUE(std::filesystem::exists(directory() / L"gr\u00FC\u00DFe-\u65E5.vnd"));
}

INSTANTIATE_TEST_SUITE_P(Windows, CodePageTests, testing::Values(850U, 932U, 1252U, 65001U),
                         testing::PrintToStringParamName());

} // namespace

} // namespace Vn::Console::Tests
