#include "Platform/AddInMgr/AddInMgr.h"

#include <memory>

#include <gtest/gtest.h>

#include "Platform/Base/Text.h"

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
    EXPECT_FALSE(manager.registerAddIn(std::make_unique<AddIn>("", false)));
    EXPECT_EQ(manager.addIn(""), nullptr);
}

// The name that the server of common data tells is compared without its directory.
TEST(AddInMgrTests, TheServerOfCommonDataIsFoundByItsModule) {
    AddInMgr & manager = *AddInMgr::get();
    std::wstring const before = manager.defaultCommonDataServerAddInName();
    AddIn * const none = AddIn::defaultCommonDataServerAddIn();
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(none->identifier(), "");
    EXPECT_EQ(none->module(), L"");
    EXPECT_EQ(none->assetTypeId(), "");

    AddInConfiguration configuration;
    configuration.identifier = "Server";
    configuration.module = L"Server.so";
    configuration.assetTypeId = "Part";
    ASSERT_TRUE(manager.registerAddIn(std::make_unique<AddIn>(configuration)));
    AddIn * const server = manager.addIn("Server");
    for (wchar_t const * const name :
         {L"Server.so", L"/usr/lib/Server.so", L"C:\\Programs\\Server.so", L"./Server.so"}) {
        manager.defaultCommonDataServerAddInName(name);
        EXPECT_EQ(manager.defaultCommonDataServerAddInName(), name);
        EXPECT_EQ(AddIn::defaultCommonDataServerAddIn(), server) << Text::toUtf8(name);
    }
    EXPECT_EQ(AddIn::defaultCommonDataServerAddIn()->assetTypeId(), "Part");
    for (wchar_t const * const name :
         {L"", L"/", L"Server", L"server.so", L"Server.so/", L"OtherServer.so"}) {
        manager.defaultCommonDataServerAddInName(name);
        EXPECT_EQ(AddIn::defaultCommonDataServerAddIn(), none) << Text::toUtf8(name);
    }
    manager.defaultCommonDataServerAddInName(before);
}

TEST(AddInMgrTests, ARecordOfTheHostIsNotLoaded) {
    AddInMgr & manager = *AddInMgr::get();
    ASSERT_TRUE(manager.registerAddIn(std::make_unique<AddIn>("Linked", true)));
    AddIn const * const addIn = manager.addIn("Linked");
    EXPECT_TRUE(manager.load());
    EXPECT_EQ(addIn->state(), EAddInState::Registered);
    EXPECT_TRUE(addIn->status());
    EXPECT_EQ(addIn->object(), nullptr);
    EXPECT_TRUE(addIn->configurationFile().empty());
    EXPECT_TRUE(addIn->requiredAddIns().empty());
}

} // namespace

} // namespace Vn
