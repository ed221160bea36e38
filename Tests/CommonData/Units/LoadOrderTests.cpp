// What the add-in's module registers while it is loaded, and in which order.  This program doesn't
// link the module: it loads it as a host does, in a process of its own for each look, since two
// modules register the same names.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/TextCommandService.h"
#include "Platform/Base/UnitTest.h"
#include "Tests/CommonData/Units/LoadOrderProbe.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Units {

namespace {

using UnitTables::c_catalogue;

std::vector<std::wstring> subjectAreas() {
    std::vector<std::wstring> names;
    for (TextCommandSubjectArea const * const area : TextCommandService::get().subjectAreas())
        names.push_back(area->name());
    return names;
}

std::vector<std::wstring> commands(std::wstring_view subject) {
    std::vector<std::wstring> names;
    for (TextCommand const * const command : TextCommandService::get().commands(subject))
        names.push_back(command->name());
    return names;
}

std::vector<std::string> checks() {
    std::vector<std::string> names;
    for (UnitTest const * const check : UnitTest::all())
        names.push_back(check->group() + "." + check->name());
    return names;
}

// Loads a module, which is then to be kept: what it shares lives to the end of the process.
testing::AssertionResult load(char const * file, OS::Module & module) {
    Status const status = module.load(file);
    if (status.ok()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << status.toString();
}

TEST(LoadOrderTests, NothingIsRegisteredBeforeTheModuleIsLoaded) {
    EXPECT_TRUE(subjectAreas().empty());
    EXPECT_TRUE(commands(L"Units").empty());
    EXPECT_TRUE(checks().empty());
}

TEST(LoadOrderTests, LoadedModuleRegistersInOrder) {
    expectInFreshProcess([] {
        OS::Module module;
        ASSERT_TRUE(load(VN_COMMON_DATA_MODULE, module));
        module.keep();
        EXPECT_EQ(subjectAreas(), (std::vector<std::wstring>{L"Expressions", L"Units"}));
        EXPECT_EQ(commands(L"Expressions"), (std::vector<std::wstring>{L"Parse", L"Tokenize"}));
        EXPECT_EQ(commands(L"Units"),
                  (std::vector<std::wstring>{L"List", L"MakeForMagnitude", L"ShowComplexUnits",
                                             L"DisplayInternalUnit"}));
        EXPECT_EQ(checks(),
                  (std::vector<std::string>{"VantorCore.vnCommonDataAddInConfigureUnitTests",
                                            "SmokeTest.basicExpressionTests",
                                            "SmokeTest.unitDisplaySettingsTests"}));
    });
}

TEST(LoadOrderTests, LoadedModuleListsTheCatalogueInOrder) {
    expectInFreshProcess([] {
        OS::Module module;
        ASSERT_TRUE(load(VN_COMMON_DATA_MODULE, module));
        module.keep();
        TextCommandResult const verbose = TextCommandService::get().run(L"Units.List /Verbose");
        EXPECT_EQ(verbose.status, 0);
        EXPECT_EQ(verbose.text.substr(0, verbose.text.find(L"\r\n")), L"There are 71 simple units");
        std::wstring expected;
        for (UnitTables::CatalogueRow const & row : c_catalogue) {
            expected += std::wstring(row.name) + L" - " + row.abbreviation;
            if (row.symbol[0]) expected += std::wstring(L" - ") + row.symbol;
            expected += L"\r\n";
        }
        EXPECT_EQ(TextCommandService::get().run(L"Units.List").text, expected);
    });
}

TEST(LoadOrderTests, LoadedModuleWorksOnceItsInitialisersHaveRun) {
    expectInFreshProcess([] {
        OS::Module module;
        ASSERT_TRUE(load(VN_COMMON_DATA_MODULE, module));
        module.keep();
        Initializer::runAll();
        TextCommandResult const gravity =
            TextCommandService::get().run(L"Expressions.Parse \"2 * Gravity\" \"m / s^2\"");
        EXPECT_EQ(gravity.status, 0);
        EXPECT_NE(gravity.text.find(L"Formatted value -> 19.613 m / s^2\r\n"), std::wstring::npos);
        for (UnitTest::Report const & report : UnitTest::run("SmokeTest")) {
            EXPECT_GT(report.assertions, 0U) << report.name;
            EXPECT_TRUE(report.passed()) << report.name;
        }
    });
}

// Between the steps: the meta types, the expressions' commands, their self-checks, the units, the
// units' commands.
TEST(LoadOrderTests, StepsFollowEachOther) {
    expectInFreshProcess([] {
        OS::Module module;
        ASSERT_TRUE(load(VN_LOAD_ORDER_PROBE, module));
        auto const snapshots =
            reinterpret_cast<LoadSnapshots *>(module.symbol(c_loadSnapshotsName));
        ASSERT_NE(snapshots, nullptr);
        module.keep();
        struct Row {
            char const * after;
            LoadSnapshot at;
        };
        Row const rows[c_loadPauses] = {
            {"nothing", {0, 0, 0, 0, 0}},
            {"meta types of the asset", {0, 0, 0, 0, 4}},
            {"the add-in", {0, 0, 0, 0, 4}},
            {"its self-check", {0, 0, 1, 0, 4}},
            {"tables of the expressions", {0, 0, 1, 0, 4}},
            {"commands of the expressions", {1, 2, 1, 0, 4}},
            {"initialiser of the constants", {1, 2, 1, 0, 4}},
            {"self-checks of the expressions", {1, 2, 3, 0, 4}},
            {"meta types of the managed tree", {1, 2, 3, 0, 9}},
            {"mass properties", {1, 2, 3, 0, 9}},
            {"named views", {1, 2, 3, 0, 11}},
            {"units", {1, 2, 3, 71, 11}},
            {"commands of the units", {2, 6, 3, 71, 11}},
            {"options of the units", {2, 6, 3, 71, 11}},
            {"meta types of the unit systems", {2, 6, 3, 71, 16}},
        };
        for (std::size_t i = 0; i < c_loadPauses; ++i) {
            LoadSnapshot const & got = snapshots()[i];
            EXPECT_EQ(got.areas, rows[i].at.areas) << rows[i].after;
            EXPECT_EQ(got.commands, rows[i].at.commands) << rows[i].after;
            EXPECT_EQ(got.checks, rows[i].at.checks) << rows[i].after;
            EXPECT_EQ(got.units, rows[i].at.units) << rows[i].after;
            EXPECT_EQ(got.metaTypes, rows[i].at.metaTypes) << rows[i].after;
        }
    });
}

TEST(LoadOrderTests, UnitsAreConstructedInCatalogueOrder) {
    expectInFreshProcess([] {
        OS::Module module;
        ASSERT_TRUE(load(VN_LOAD_ORDER_PROBE, module));
        auto const identifiers =
            reinterpret_cast<PendingIdentifiers *>(module.symbol(c_pendingIdentifiersName));
        ASSERT_NE(identifiers, nullptr);
        module.keep();
        std::vector<char const *> constructed(100);
        ASSERT_EQ(identifiers(constructed.data(), constructed.size()), std::size(c_catalogue));
        for (std::size_t i = 0; i < std::size(c_catalogue); ++i)
            EXPECT_STREQ(constructed[i], c_catalogue[i].identifier);
    });
}

} // namespace

} // namespace Vn::Units
