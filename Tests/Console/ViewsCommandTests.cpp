// The named views of a document.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

using testing::HasSubstr;
using Names = std::vector<std::string>;

class ViewsCommandTests : public DocumentFixture {
protected:
    ViewsCommandTests() { answer("new"); }

    // The first line of what a command says that fails.
    static std::string refusal(std::string const & command) {
        Outcome const outcome = run(command);
        EXPECT_EQ(outcome.status, 1) << command << outcome.out;
        return outcome.err.substr(0, outcome.err.find('\n'));
    }
    static std::vector<nlohmann::json> views() {
        std::vector<nlohmann::json> all;
        std::istringstream lines(answer("views /Json"));
        for (std::string line; std::getline(lines, line);)
            all.push_back(nlohmann::json::parse(line));
        return all;
    }
    static Names names() {
        Names all;
        for (nlohmann::json const & view : views()) all.push_back(view["name"]);
        return all;
    }
    static nlohmann::json view(std::string const & name) {
        for (nlohmann::json const & each : views())
            if (each["name"] == name) return each;
        ADD_FAILURE() << name;
        return {};
    }
};

TEST_F(ViewsCommandTests, AViewMayBeCalledLikeAWordOfACommand) {
    EXPECT_EQ(answer("newview up"), "made the view \"up\"\nsaved a.vnd\n");
    EXPECT_EQ(answer("newview Y from up"), "made the view \"Y\"\nsaved a.vnd\n");
    EXPECT_EQ(refusal("newview Z from"),
              "cannot make a view: from is followed by the name of a view");
    EXPECT_EQ(refusal("newview Z up"), "cannot make a view: up is followed by three numbers");
}

TEST_F(ViewsCommandTests, CommandsOfTheTreeLeaveTheViewsToThese) {
    answer("make, add . 1");
    std::string const tree = answer("tree");
    std::string const why = "the group holds the named views, and Views.";
    for (auto const & [command, reason] :
         {std::pair("remove NamedViews/0", "cannot remove: " + why + "Delete is for these"),
          {"delete NamedViews/0", "cannot delete: " + why + "Delete is for these"},
          {"make NamedViews", "cannot make a group: " + why + "New is for these"},
          {"add NamedViews 3", "cannot add entities: " + why + "New is for these"},
          {"move 0 into NamedViews", "cannot move: " + why + "Move is for these"},
          {"move 0 before NamedViews/1", "cannot move: " + why + "Move is for these"},
          {"move NamedViews/1 after NamedViews/2", "cannot move: " + why + "Move is for these"},
          {"move NamedViews/1 into 0", "cannot move: " + why + "Move is for these"}})
        EXPECT_EQ(refusal(command), reason);
    EXPECT_EQ(answer("tree"), tree);
}

TEST_F(ViewsCommandTests, TheListTellsOfCamerasAndWhichViewsAreFixed) {
    EXPECT_THAT(answer("views"), HasSubstr("TOP    fixed  from (0.00 mm, 443.60 mm, 0.00 mm)"));
    nlohmann::json const top = view("TOP");
    EXPECT_EQ(top["fixed"], true);
    EXPECT_EQ(top["position"], (nlohmann::json{0, 44.36, 0}));
    EXPECT_EQ(top["target"], (nlohmann::json{0, 0, 0}));
    EXPECT_EQ(top["up"], (nlohmann::json{0, 0, -1}));
    EXPECT_EQ(top["extents"], (nlohmann::json{0.4, 0.4}));
}

TEST_F(ViewsCommandTests, ANewViewHasTheHomeCameraOrAnothersOrItsOwn) {
    EXPECT_EQ(answer("newview, newview Side from TOP, newview position (1 cm, 2 cm, 3 cm) target "
                     "(0, 0, 0) up (0, 1, 0), newview \"My view\" from \"TOP\" up (1, 0, 0)"),
              "made the view \"NamedView\"\n"
              "made the view \"Side\"\n"
              "made the view \"NamedView_1\"\n"
              "made the view \"My view\"\n"
              "saved a.vnd\n");
    EXPECT_EQ(view("NamedView")["position"], (nlohmann::json{11.75, -3.15, 6.75}));
    EXPECT_EQ(view("NamedView")["extents"], (nlohmann::json{0.6, 0.6}));
    EXPECT_EQ(view("NamedView")["fixed"], false);
    EXPECT_EQ(view("Side")["up"], view("TOP")["up"]);
    EXPECT_EQ(view("Side")["extents"], view("TOP")["extents"]);
    EXPECT_EQ(view("NamedView_1")["position"], (nlohmann::json{1, 2, 3}));
    EXPECT_EQ(view("NamedView_1")["up"], (nlohmann::json{0, 1, 0}));
    EXPECT_EQ(view("My view")["position"], view("TOP")["position"]);
    EXPECT_EQ(view("My view")["up"], (nlohmann::json{1, 0, 0}));
}

TEST_F(ViewsCommandTests, ATakenNameGetsANumberAndThatIsTold) {
    EXPECT_EQ(answer("newview NamedView, newview NamedView, newview NamedView_1, newview TOP, "
                     "newview A, renameview A NamedView, renameview NamedView_2 NamedView_2"),
              "made the view \"NamedView\"\n"
              "made the view \"NamedView_1\", since there is a view \"NamedView\" already\n"
              "made the view \"NamedView_1_1\", since there is a view \"NamedView_1\" already\n"
              "made the view \"TOP_1\", since there is a view \"TOP\" already\n"
              "made the view \"A\"\n"
              "renamed the view \"A\" to \"NamedView_2\", since there is a view \"NamedView\" "
              "already\n"
              "the view is called \"NamedView_2\" already\n"
              "saved a.vnd\n");
}

TEST_F(ViewsCommandTests, AFixedViewKeepsItsNameAndCamera) {
    EXPECT_EQ(refusal("renameview TOP A"),
              "cannot rename the view: \"TOP\" is built in and keeps its name");
    EXPECT_EQ(refusal("updateview TOP from HOME"),
              "cannot update the view: \"TOP\" is built in and keeps its camera; "
              "Views.Synchronize has it follow the settings");
    EXPECT_EQ(refusal("deleteview TOP"), "cannot delete the view: \"TOP\" is built in; /Force "
                                         "deletes it, and Views.Restore brings it back");
}

TEST_F(ViewsCommandTests, AnUnknownNameSaysWhichIsNearest) {
    EXPECT_EQ(refusal("renameview home A"),
              "cannot rename the view: there is no view \"home\"; did you mean HOME?");
    EXPECT_EQ(refusal("newview A from Xyz"), "cannot make a view: there is no view \"Xyz\"; there "
                                             "are TOP, FRONT, RIGHT, HOME");
    EXPECT_EQ(refusal("moveview A before TOP"),
              "cannot move the views: there is no view \"A\"; there are TOP, FRONT, RIGHT, HOME");
    EXPECT_EQ(refusal("restoreview TOPP"),
              "cannot restore the view: \"TOPP\" isn't built in; did you mean TOP?");
    EXPECT_EQ(refusal("newview A of TOP"),
              "cannot make a view: \"of\" isn't one of from VIEW, position P, target P and up V");
}

TEST_F(ViewsCommandTests, EachChangeIsOneStepOfTheNameThatTheLibraryGives) {
    std::string const text = answer("newview A, renameview A B, moveview B before TOP, "
                                    "updateview B up (0, 1, 0), deleteview B, synchronize, "
                                    "deleteview TOP /Force, restoreview, history");
    EXPECT_THAT(text, HasSubstr("   1  New View\n"
                                "   2  Rename View\n"
                                "   3  Move Views\n"
                                "   4  update the view \"B\"\n"
                                "   5  Delete View\n"
                                "   6  synchronize the views\n"
                                "   7  Delete View\n"
                                ">  8  restore the views\n"));
}

TEST_F(ViewsCommandTests, UpdatingTakesWhatIsNamedAndLeavesTheRest) {
    answer("newview A, updateview A position (1 m, 0, 0)");
    EXPECT_EQ(view("A")["position"], (nlohmann::json{100, 0, 0}));
    EXPECT_EQ(view("A")["target"], (nlohmann::json{-1.5, 5.45, 2.0}));
    EXPECT_EQ(answer("updateview A position (1 m, 0, 0)"), "the view \"A\" is so already\n");
    EXPECT_EQ(refusal("updateview A"),
              "cannot update the view: from VIEW, position P, target P or up V is needed");
    EXPECT_THAT(refusal("updateview A up (0, 0, 1 cm)"),
                HasSubstr("cannot update the view: up: z"));
    EXPECT_THAT(refusal("updateview A target 5"), HasSubstr("target: \"5\" isn't a point"));
}

TEST_F(ViewsCommandTests, SeveralViewsMoveOneByOneNextToTheSameOne) {
    answer("newview A, newview B, moveview A B after TOP");
    EXPECT_EQ(names(), (Names{"TOP", "B", "A", "FRONT", "RIGHT", "HOME"}));
    answer("moveview A B before TOP");
    EXPECT_EQ(names(), (Names{"A", "B", "TOP", "FRONT", "RIGHT", "HOME"}));
    EXPECT_EQ(answer("moveview A before B"), "\"A\" stands before \"B\" already\n");
    EXPECT_EQ(refusal("moveview A A after A"),
              "cannot move the views: a view has no place beside itself");
    EXPECT_EQ(refusal("moveview A into B"),
              "cannot move the views: views go before or after another, not \"into\"");
}

TEST_F(ViewsCommandTests, ADeletedBuiltInIsRestored) {
    EXPECT_EQ(answer("deleteview HOME /Force, synchronize, restoreview home, restoreview"),
              "deleted the view \"HOME\"\n"
              "the built-in views follow the settings; missing: HOME, which Views.Restore makes\n"
              "restored HOME\n"
              "no built-in view is missing\n"
              "saved a.vnd\n");
    EXPECT_EQ(view("HOME")["fixed"], true);
    EXPECT_EQ(view("HOME")["position"], (nlohmann::json{25.61, 25.61, 25.61}));
    EXPECT_EQ(answer("deleteview TOP /Force, newview TOP, undo, newview TOP").find("_1"),
              std::string::npos);
    EXPECT_EQ(refusal("restoreview TOP"),
              "cannot restore the view: a view of the user's is called TOP");
}

TEST_F(ViewsCommandTests, SynchronizingFollowsTheAxesOfTheSettings) {
    answer("setting sceneUp (0, 0, 2), setting sceneFront (0, -3, 0), synchronize");
    EXPECT_EQ(view("TOP")["target"], (nlohmann::json{0, 0, -1}));
    EXPECT_EQ(view("TOP")["up"], (nlohmann::json{0, -3, 0}));
    EXPECT_EQ(view("FRONT")["target"], (nlohmann::json{0, -3, 0}));
    EXPECT_EQ(view("RIGHT")["target"], (nlohmann::json{6, 0, 0}));
    EXPECT_EQ(view("HOME")["position"], (nlohmann::json{11.75, -3.15, 6.75}));
    EXPECT_EQ(answer("synchronize"), "the built-in views are so already\n");
}

// What people do with views, from a new document to another process.
TEST_F(ViewsCommandTests, TheTranscript) {
    Outcome const outcome = runConsole({}, "new\n"
                                           "setting sceneUp (0, 1, 0)\n"
                                           "setting sceneFront (0, 0, 1)\n"
                                           "synchronize\n"
                                           "newview\n"
                                           "newview Side from RIGHT\n"
                                           "renameview Side NamedView\n"
                                           "moveview NamedView_1 after TOP\n"
                                           "deleteview NamedView\n"
                                           "views /Json\n"
                                           "undo\nundo\nundo\nundo\nundo\nundo\nundo\nundo\n"
                                           "views /Json\n"
                                           "redo\nredo\nredo\nredo\nredo\nredo\nredo\nredo\n"
                                           "views /Json\n"
                                           "saveas b.vnd\n");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    // The lists are the lines in braces.
    std::vector<std::string> lists(1);
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with('{'))
            lists.back() += line + '\n';
        else if (!lists.back().empty())
            lists.emplace_back();
    ASSERT_GE(lists.size(), 3u);
    EXPECT_THAT(lists[0], HasSubstr("\"index\":1,\"name\":\"NamedView_1\",\"fixed\":false"));
    EXPECT_THAT(outcome.out, HasSubstr("renamed the view \"Side\" to \"NamedView_1\", since there "
                                       "is a view \"NamedView\" already\n"));
    EXPECT_THAT(lists[1], HasSubstr("\"index\":1,\"name\":\"FRONT\""));
    EXPECT_EQ(std::count(lists[1].begin(), lists[1].end(), '\n'), 4);
    EXPECT_NE(lists[0], lists[1]);
    EXPECT_EQ(lists[2], lists[0]) << "all of it is done again";
    EXPECT_EQ(runConsole({"document", "b.vnd", "views /Json"}).out, lists[0]);
    EXPECT_EQ(runConsole({"document", "b.vnd", "check"}).out, "nothing is wrong with b.vnd\n");
}

TEST_F(ViewsCommandTests, OddNamesAreKept) {
    Outcome const outcome = runConsole(
        {}, "open a.vnd\nnewview %1%_%2%\nnewview %1%_%2%\nnewview a/b[2]\nnewview \"\"\n"
            "renameview \"\" \"\"\nrenameview \"\" from\nmoveview from a/b[2] after %1%_%2%\n"
            "updateview from from TOP\nsave\n");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(names(),
              (Names{"TOP", "FRONT", "RIGHT", "HOME", "%1%_%2%", "a/b[2]", "from", "%1%_%2%_1"}));
}

TEST_F(ViewsCommandTests, ANameOfTenMillionCharactersIsAName) {
    std::string const huge(10'000'000, 'a');
    Outcome const outcome =
        runConsole({}, "new\nnewview " + huge + "\nnewview " + huge + "\nrenameview " + huge +
                           "b c\nviews\ndeleteview " + huge + "\nviews\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("there is no view \"aaa"));
    EXPECT_LT(outcome.out.size(), 10'000u);
    EXPECT_LT(outcome.err.size(), 10'000u);
}

TEST_F(ViewsCommandTests, AViewWithoutACameraIsListedAndRefused) {
    answer("newview A, newview B");
    execute("a.vnd", "UPDATE NamedView SET \"NamedView.m_rCamera\" = NULL "
                     "WHERE \"NamedView.m_name\" = 'A'");
    EXPECT_THAT(answer("views"), HasSubstr("A             no camera\n"));
    EXPECT_EQ(view("A")["position"], nullptr);
    EXPECT_EQ(refusal("updateview A from TOP"),
              "cannot update the view: the view \"A\" has no camera");
    EXPECT_EQ(refusal("newview C from A"), "cannot make a view: the view \"A\" has no camera");
}

} // namespace

} // namespace Vn::Console::Tests
