// Memory that runs out within the setters of a document's settings, as in
// Tests/DataModel/OutOfMemoryTests.cpp.

#include <new>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/CommonData/AddIn/SettingsTesting.h"
#include "Tests/DataModel/FailingAllocations.h"

namespace Vn::CommonData {

namespace {

using Vn::Testing::FailingAllocations;

class CommonDataAssetSettingsOutOfMemoryTests
    : public testing::TestWithParam<std::tuple<Setting, bool>> {};

INSTANTIATE_TEST_SUITE_P(Table, CommonDataAssetSettingsOutOfMemoryTests,
                         testing::Combine(testing::ValuesIn(allSettings()), testing::Bool()),
                         [](auto const & row) {
                             return std::get<0>(row.param).name +
                                    (std::get<1>(row.param) ? "ForGood" : "Once");
                         });

TEST_P(CommonDataAssetSettingsOutOfMemoryTests, ASetterLeavesTheValueBeforeOrAfter) {
    auto const & [setting, isForGood] = GetParam();
    std::vector<Bits> after;
    {
        SettingsDocument const document;
        setting.change(document);
        after = document.values();
    }
    unsigned failures = 0;
    bool hasFailed = true;
    for (unsigned long n = 1; hasFailed; ++n) {
        SCOPED_TRACE(n);
        SettingsDocument const document;
        std::vector<Bits> const before = document.values();
        bool hasThrown = false;
        FailingAllocations::failAt(n, isForGood);
        try {
            document.step([&, &change = setting] { change.change(document); });
        } catch (std::bad_alloc const &) {
            hasThrown = true;
            ++failures;
        }
        FailingAllocations::heal();
        hasFailed = FailingAllocations::hasFailed();
        if (!document.history().isUsable()) continue; // it says that it is neither
        // What makes no change isn't taken back with the rest.
        if (!hasThrown || setting.isChange) {
            EXPECT_EQ(document.values(), hasThrown ? before : after);
        }
        TemporaryFile const file;
        document.saveAs(file);
        EXPECT_EQ(valuesIn(file.path()), document.values());
        if (!document.history().canUndo()) continue;
        document.undo();
        EXPECT_EQ(document.values(), before);
        document.redo();
        EXPECT_EQ(document.values(), after);
    }
    EXPECT_GT(failures, 0U);
}

} // namespace

} // namespace Vn::CommonData
