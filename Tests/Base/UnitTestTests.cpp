#include "Platform/Base/UnitTest.h"

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Vn::UnitTest;

TEST(UnitTestTests, ReportsAssertionsAndNotes) {
    UnitTest test("UnitTestTests", "mixed", [](UnitTest & t) {
        EXPECT_TRUE(t.Assert(true, L"holds"));
        EXPECT_FALSE(t.Assert(false, L"fails first"));
        EXPECT_FALSE(t.Assert(false, L"fails second"));
        t.note(L"3 rows");
    });
    // A second run starts afresh.
    for (int i = 0; i < 2; ++i) {
        UnitTest::Report const report = UnitTest::run(test);
        EXPECT_EQ(report.group, "UnitTestTests");
        EXPECT_EQ(report.name, "mixed");
        EXPECT_EQ(report.assertions, 3U);
        EXPECT_EQ(report.failures, (std::vector<std::wstring>{L"fails first", L"fails second"}));
        EXPECT_EQ(report.notes, (std::vector<std::wstring>{L"3 rows"}));
        EXPECT_FALSE(report.passed());
    }
}

TEST(UnitTestTests, ExceptionIsAFailure) {
    UnitTest known("UnitTestTests", "known", [](UnitTest & t) {
        t.Assert(true, L"holds");
        throw std::runtime_error("broken \xC3\xA4");
    });
    UnitTest::Report const report = UnitTest::run(known);
    EXPECT_EQ(report.assertions, 2U);
    EXPECT_EQ(report.failures, (std::vector<std::wstring>{L"exception: broken \u00E4"}));
    UnitTest unknown("UnitTestTests", "unknown", [](UnitTest &) { throw 1; });
    EXPECT_EQ(UnitTest::run(unknown).failures.size(), 1U);
}

TEST(UnitTestTests, GroupsRunInOrderOfConstruction) {
    auto const nothing = [](UnitTest &) {};
    UnitTest const b("UnitTestTests.order", "b", nothing);
    UnitTest const other("UnitTestTests.other", "x", nothing);
    UnitTest const a("UnitTestTests.order", "a", nothing);
    auto const reports = UnitTest::run("UnitTestTests.order");
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].name, "b");
    EXPECT_EQ(reports[1].name, "a");
    EXPECT_TRUE(reports[0].passed());
    EXPECT_TRUE(UnitTest::run("UnitTestTests.none").empty());
}

TEST(UnitTestTests, LeavesTheListWhenDestroyed) {
    UnitTest const * gone = nullptr;
    {
        UnitTest const test("UnitTestTests", "short", [](UnitTest &) {});
        gone = &test;
        auto const all = UnitTest::all();
        EXPECT_EQ(std::count(all.begin(), all.end(), gone), 1);
    }
    auto const all = UnitTest::all();
    EXPECT_EQ(std::count(all.begin(), all.end(), gone), 0);
}

TEST(UnitTestTests, ThreadsTakeTurnsOnOneCheck) {
    UnitTest test("UnitTestTests", "turns", [](UnitTest & t) {
        for (int i = 0; i < 100; ++i) t.Assert(i % 2 == 0, L"even");
    });
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&test] {
            UnitTest::Report const report = UnitTest::run(test);
            EXPECT_EQ(report.assertions, 100U);
            EXPECT_EQ(report.failures.size(), 50U);
        });
}

} // namespace
