// show and set: the members of an entity, by the console.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

class DocumentMemberTests : public DocumentFixture {
protected:
    void SetUp() override {
        Outcome const made = document("new, make . /Custom, add 0");
        ASSERT_EQ(made.status, 0) << made.err;
    }
    static std::string value(std::string const & member) {
        return document("show 0 " + member).out;
    }
    static void expectRefused(std::string const & commands, std::string const & why) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, why + "\nnothing was saved\n");
    }
};

TEST_F(DocumentMemberTests, TheMembersOfAnEntityAreListedWithTheirKindsAndValues) {
    Outcome const shown = document("show 0");
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.out, "rParent        PassiveRef           #1\n"
                         "children       Vector of StrongRef  [30]\n"
                         "rClientObject  PassiveRef           null\n"
                         "highWaterMark  unsigned int         0\n");
}

TEST_F(DocumentMemberTests, AMemberIsSetUndoneRedoneAndSaved) {
    Outcome const outcome = document("set 0 highWaterMark 12, show 0 highWaterMark, undo, "
                                     "show 0 highWaterMark, redo");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "set highWaterMark of Groups/CmnData[0] from \"0\" to \"12\"\n"
                           "12\n"
                           "undone: set highWaterMark of Groups/CmnData[0]\n"
                           "0\n"
                           "redone: set highWaterMark of Groups/CmnData[0]\n"
                           "saved a.vnd\n");
    EXPECT_EQ(value("highWaterMark"), "12\n");
    EXPECT_EQ(value("ManagedGroupEntity.children"), "[30]\n");
}

TEST_F(DocumentMemberTests, TheValueThatIsThereIsNoChange) {
    Outcome const outcome = document("set 0 highWaterMark 0");
    EXPECT_EQ(outcome.out, "highWaterMark of Groups/CmnData[0] is \"0\" already\n");
}

TEST_F(DocumentMemberTests, WhatCantBeSetIsRefusedWithTheReason) {
    std::string const cannot = "cannot set highWaterMark of Groups/CmnData[0] to ";
    expectRefused("set 0 highWaterMark 1.5",
                  cannot + "\"1.5\": it isn't a whole number of that kind");
    expectRefused("set 0 highWaterMark -1",
                  cannot + "\"-1\": it isn't a whole number of that kind");
    expectRefused("set 0 highWaterMark 1000000001", cannot + "\"1000000001\": it is 1,000,000,000 "
                                                             "at most");
    expectRefused("set 0 highWaterMark 5, set 0 highWaterMark 4",
                  cannot + "\"4\": numbers are never given twice, so it only goes up");
    expectRefused("set 0 rParent #1", "cannot set rParent of Groups/CmnData[0] to \"#1\": it is a "
                                      "reference to an entity");
    expectRefused("set 0 children [1,2]", "cannot set children of Groups/CmnData[0] to \"[1,2]\": "
                                          "it holds references to entities");
    expectRefused("set 0 highWatermark 5",
                  "cannot set the member: Groups/CmnData[0] has no member \"highWatermark\"; did "
                  "you mean highWaterMark?");
    EXPECT_EQ(value("highWaterMark"), "0\n");
}

TEST_F(DocumentMemberTests, AMemberThatIsNotThereIsToldWithThoseThatAre) {
    Outcome const outcome = document("show 0 weight");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "cannot show the member: Groups/CmnData[0] has no member \"weight\"; "
                           "its members are rParent, children, rClientObject, highWaterMark\n");
    EXPECT_EQ(document("show 7").err,
              "cannot show the members: Groups has no child 7: it has only 0\n");
}

// Where "set" alone is about the display settings.
TEST_F(DocumentMemberTests, ASessionTellsAMemberFromASetting) {
    Outcome const outcome = runConsole({}, "open a.vnd\nset 0 highWaterMark 7\nundo\n"
                                           "show 0 highWaterMark\nDocument.Set 0 highWaterMark 8\n"
                                           "set generalPrecision 4\nset nothing 4\n");
    EXPECT_EQ(outcome.out, "opened a.vnd with 30 entities\n"
                           "set highWaterMark of Groups/CmnData[0] from \"0\" to \"7\"\n"
                           "undone: set highWaterMark of Groups/CmnData[0]\n"
                           "0\n"
                           "set highWaterMark of Groups/CmnData[0] from \"0\" to \"8\"\n"
                           "generalPrecision 4\n");
    EXPECT_TRUE(outcome.err.starts_with("line 7: there is no setting \"nothing\""));
}

TEST_F(DocumentMemberTests, JsonHasALineForEachMember) {
    std::istringstream lines(document("show 0 /Json").out);
    std::string line;
    nlohmann::json last;
    int count = 0;
    for (; std::getline(lines, line); ++count) last = nlohmann::json::parse(line);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(last["name"], "highWaterMark");
    EXPECT_EQ(last["class"], "CustomGroups");
    EXPECT_EQ(last["kind"], "unsigned int");
    EXPECT_EQ(last["value"], "0");
    EXPECT_EQ(last["readOnly"], nullptr);
    EXPECT_EQ(document("show 0 highWaterMark /Json").out, "\"0\"\n");
}

TEST_F(DocumentMemberTests, AValueMayStandInQuotesAndAListInBrackets) {
    EXPECT_EQ(document("set 0 highWaterMark \"3\"").status, 0);
    EXPECT_EQ(value("highWaterMark"), "3\n");
    expectRefused("set 0 highWaterMark \"\"", "cannot set highWaterMark of Groups/CmnData[0] to "
                                              "\"\": it isn't a whole number of that kind");
    expectRefused("set 0 highWaterMark \"/Force\"",
                  "cannot set highWaterMark of Groups/CmnData[0] to \"/Force\": it isn't a whole "
                  "number of that kind");
}

} // namespace

} // namespace Vn::Console::Tests
