#include "Platform/AddInMgr/AddInMgr.h"

#include <memory>

#include <gtest/gtest.h>

namespace Vn {

namespace {

TEST(AddInMgrTests, AnAddInIsFoundByItsIdentifier) {
    AddInMgr & manager = *AddInMgr::get();
    EXPECT_EQ(manager.addIn("Plain"), nullptr);
    ASSERT_TRUE(manager.registerAddIn(std::make_unique<AddIn>("Plain", false)));
    ASSERT_TRUE(manager.registerAddIn(std::make_unique<AddIn>("Core", true)));
    ASSERT_NE(manager.addIn("Plain"), nullptr);
    EXPECT_EQ(manager.addIn("Plain")->identifier(), "Plain");
    EXPECT_FALSE(manager.addIn("Plain")->isCoreAddIn());
    EXPECT_TRUE(manager.addIn("Core")->isCoreAddIn());
    EXPECT_EQ(manager.addIn("core"), nullptr);
    EXPECT_EQ(AddInMgr::get(), &manager);
}

TEST(AddInMgrTests, AnIdentifierIsTakenOnce) {
    AddInMgr & manager = *AddInMgr::get();
    ASSERT_TRUE(manager.registerAddIn(std::make_unique<AddIn>("Once", false)));
    AddIn const * const first = manager.addIn("Once");
    EXPECT_FALSE(manager.registerAddIn(std::make_unique<AddIn>("Once", true)));
    EXPECT_EQ(manager.addIn("Once"), first);
    EXPECT_FALSE(first->isCoreAddIn());
    EXPECT_FALSE(manager.registerAddIn(nullptr));
}

} // namespace

} // namespace Vn
