// Pictures of documents.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Console/DocumentFixture.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char c_nothingToShow[] = "note: the document has nothing to show\n";

class PictureCommandTests : public DocumentFixture {
protected:
    PictureCommandTests() { answer("new"); }

    // The first line of what a command says that fails.
    static std::string refusal(std::string const & command, int status = 1) {
        Outcome const outcome = run(command);
        EXPECT_EQ(outcome.status, status) << command << outcome.out;
        return outcome.err.substr(0, outcome.err.find('\n'));
    }
    // The same of a call of its own, which may have options.
    static std::string callRefusal(std::string const & words, int status) {
        Outcome const outcome = document(words);
        EXPECT_EQ(outcome.status, status) << words << outcome.out;
        return outcome.err.substr(0, outcome.err.find('\n'));
    }
    bool isThere(char const * name) const { return std::filesystem::exists(directory() / name); }
    // As it stands in the head of a PNG file.
    unsigned size(std::string const & name, std::size_t place) const {
        std::string const bytes = readFile(name);
        unsigned number = 0;
        for (std::size_t i = 16 + 4 * place; i < 20 + 4 * place; ++i)
            number = (number << 8) | static_cast<unsigned char>(bytes.at(i));
        return number;
    }
};

#ifdef _WIN32

TEST_F(PictureCommandTests, ThereIsNoLibraryThatDraws) {
    EXPECT_EQ(refusal("picture a.png"),
              "cannot draw the picture: there is no library for drawing on this system");
    EXPECT_FALSE(isThere("a.png"));
}

#else

TEST_F(PictureCommandTests, AViewIsDrawn) {
    EXPECT_EQ(answer("picture a.png"),
              std::string("drew a.png, 1024 x 768 pixels, from the view \"HOME\"\n") +
                  c_nothingToShow);
    EXPECT_EQ(size("a.png", 0), 1024U);
    EXPECT_EQ(size("a.png", 1), 768U);
    EXPECT_EQ(answer("picture b.png size 30x20 view TOP"),
              std::string("drew b.png, 30 x 20 pixels, from the view \"TOP\"\n") + c_nothingToShow);
    EXPECT_EQ(size("b.png", 0), 30U);
    EXPECT_EQ(size("b.png", 1), 20U);
    EXPECT_EQ(answer("picture c.png from (1, 1, -1) size 1X1 /NoBackground"),
              std::string("drew c.png, 1 x 1 pixels\n") + c_nothingToShow);
}

TEST_F(PictureCommandTests, OptionsOfACallStandForWords) {
    ASSERT_EQ(answer("picture a.png view FRONT size 40x30 /NoBackground").substr(0, 10),
              "drew a.png");
    Outcome const outcome = document("picture --view FRONT --size=40x30 --no-background -o b.png");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(readFile("b.png"), readFile("a.png"));
    EXPECT_EQ(document("picture --from -1,2,0.5 --output c.png --size 40x30").status, 0);
    ASSERT_EQ(answer("picture d.png from (-1, 2, 0.5) size 40x30").substr(0, 10), "drew d.png");
    EXPECT_EQ(readFile("c.png"), readFile("d.png"));

    EXPECT_EQ(callRefusal("tree --view TOP", 2), "vnconsole: --view goes with the command picture");
    EXPECT_EQ(callRefusal("picture a.png then picture b.png --view TOP", 2),
              "vnconsole: --view is for one command, and there are several");
    EXPECT_EQ(document("picture a.png size 9x9 then picture b.png size 9x9").status, 0);
}

TEST_F(PictureCommandTests, TheSameDocumentGivesTheSameBytesAndStaysAsItIs) {
    std::string const before = readFile("a.vnd");
    answer("picture a.png size 64x48");
    answer("picture b.png size 64x48");
    EXPECT_EQ(readFile("a.png"), readFile("b.png"));
    EXPECT_EQ(readFile("a.vnd"), before);
}

TEST_F(PictureCommandTests, WhatCantBeDrawnIsToldAndMakesNoFile) {
    auto const why = [](std::string const & words) { return refusal("picture x.png " + words); };
    EXPECT_EQ(why("size 0x5"), "cannot draw the picture: invalid argument: it has no pixels");
    EXPECT_EQ(why("size 100000x100000"),
              "cannot draw the picture: invalid argument: its sides have more than 8192 pixels");
    EXPECT_EQ(why("size 99999999999999999999x1"),
              "cannot draw the picture: size: \"99999999999999999999x1\" isn't a size in pixels, "
              "such as 1024x768");
    EXPECT_EQ(why("size 5"),
              "cannot draw the picture: size: \"5\" isn't a size in pixels, such as 1024x768");
    EXPECT_EQ(why("from (0, 0, 0)"),
              "cannot draw the picture: from: \"(0, 0, 0)\" is no direction");
    EXPECT_THAT(why("from up"), StartsWith("cannot draw the picture: from: "));
    EXPECT_EQ(why("view Side"),
              "cannot draw the picture: there is no view \"Side\"; there are TOP, FRONT, RIGHT, "
              "HOME");
    EXPECT_EQ(why("view"), "cannot draw the picture: more is needed after view");
    EXPECT_EQ(why("TOP"), "cannot draw the picture: \"TOP\" isn't one of view VIEW, from DIRECTION "
                          "and size WIDTHxHEIGHT");
    EXPECT_EQ(why("view TOP from (1, 0, 0)"),
              "cannot draw the picture: a picture has a view or a direction, not both");
    EXPECT_FALSE(isThere("x.png"));
    EXPECT_EQ(refusal("picture a.vnd"), "cannot draw the picture: \"a.vnd\" doesn't end with .png");
    EXPECT_THAT(refusal("picture none/x.png"), HasSubstr("none/x.png"));
}

TEST_F(PictureCommandTests, AFailureLeavesTheOldFile) {
    answer("picture a.png size 10x10");
    std::string const before = readFile("a.png");
    refusal("picture a.png size 0x0");
    EXPECT_EQ(readFile("a.png"), before);
    std::filesystem::create_directory("b.png");
    EXPECT_THAT(refusal("picture b.png size 10x10"), HasSubstr("b.png"));
}

TEST_F(PictureCommandTests, WithoutItsViewTheHomeCameraOfTheSettingsCounts) {
    answer("synchronize");
    answer("picture a.png size 20x20");
    answer("deleteview HOME /Force");
    answer("picture b.png size 20x20");
    EXPECT_EQ(readFile("a.png"), readFile("b.png"));
    EXPECT_THAT(refusal("picture c.png view home"), HasSubstr("there is no view \"home\""));
}

#endif

} // namespace

} // namespace Vn::Console::Tests
