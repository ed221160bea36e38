// What the platform's log says of the module's load, beside the order that hosts rely on.  This
// program doesn't link the module.

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Text.h"
#include "Tests/CommonData/Units/UnitTables.h"
#include "Tests/Support/FreshProcess.h"

#ifdef __SANITIZE_ADDRESS__
// What the module shares stays to the end of the process, and the pointers to it go with the
// module.
extern "C" [[gnu::visibility("default")]] char const * __lsan_default_options();
char const * __lsan_default_options() { return "detect_leaks=0"; }
#endif

namespace Vn::Testing {

namespace {

using Units::expectInFreshProcess;
using EKind = RegistrationLog::EKind;
using EEvent = RegistrationLog::EEvent;

char const * nameOf(EKind kind) {
    switch (kind) {
    case EKind::MetaType:
        return "meta type";
    case EKind::TextCommandArea:
        return "area";
    case EKind::TextCommand:
        return "command";
    case EKind::Initializer:
        return "initializer";
    case EKind::SelfCheck:
        return "self-check";
    case EKind::AddIn:
        return "add-in";
    case EKind::Static:
        return "static";
    }
    return "?";
}

// What joins, or what leaves, a line each.
std::vector<std::string> lines(RegistrationLog const & log, EEvent event) {
    std::vector<std::string> all;
    for (RegistrationLog::Entry const & entry : log.entries())
        if (entry.event == event) {
            std::string const name = entry.name.empty() ? "" : ' ' + entry.name;
            all.push_back(nameOf(entry.kind) + name);
        }
    return all;
}

// The steps, line by line.
std::vector<std::string> theOrder() {
    std::vector<std::string> order = {
        // 1
        "meta type CommonDataAssetSettingsMetaType",
        "meta type CommonBaseEntityMetaType",
        "meta type CommonBaseGroupEntityMetaType",
        "meta type CommonBaseRootCollectionMetaType",
        // 2
        "add-in VnCommonData10" + Text::toUtf8(OS::platformModuleExtension()),
        // 3
        "self-check VantorCore.vnCommonDataAddInConfigureUnitTests",
        // 4
        "static Expressions.Tokenizers",
        // 5
        "area Expressions",
        "command Expressions.Parse",
        "command Expressions.Tokenize",
        // 6
        "initializer",
        // 7
        "self-check SmokeTest.basicExpressionTests",
        "self-check SmokeTest.unitDisplaySettingsTests",
        // 8
        "meta type CustomGroupMetaType",
        "meta type CustomGroupsMetaType",
        "meta type ManagedEntityMetaType",
        "meta type ManagedGroupEntityMetaType",
        "meta type ManagedRootCollectionMetaType",
        // 9
        "meta type MassPropertiesValueMetaType",
        // 10
        "static HOME",
        "static TOP",
        "static FRONT",
        "static RIGHT",
        "meta type NamedViewMetaType",
        "meta type NamedViewsMetaType",
    };
    // 11
    for (Units::UnitTables::CatalogueRow const & row : Units::UnitTables::c_catalogue)
        order.push_back(std::string("static ") + row.identifier);
    order.insert(order.end(),
                 {// 12
                  "area Units", "command Units.List", "command Units.MakeForMagnitude",
                  "command Units.ShowComplexUnits", "command Units.DisplayInternalUnit",
                  // 13
                  "initializer",
                  // 14
                  "meta type UnitSystemMetaType", "meta type UnitSystemChoiceMetaType",
                  "meta type UnitSystemChoiceByUnitMetaType",
                  "meta type UnitSystemChoiceByIdMetaType", "meta type UnitSystemsMetaType"});
    return order;
}

TEST(AddInLoadOrderTests, TheModuleRegistersInTheOrderOfTheSteps) {
    expectInFreshProcess([] {
        // The platform's own classes register with its libraries.
        OS::Module platform;
        ASSERT_TRUE(platform.load(VN_SCENE_LIBRARY).ok());
        RegistrationLog const log;
        OS::Module module;
        Status const status = module.load(VN_COMMON_DATA_MODULE);
        ASSERT_TRUE(status.ok()) << status.toString();
        EXPECT_TRUE(log.isComplete());
        EXPECT_EQ(lines(log, EEvent::Joins), theOrder());
        EXPECT_TRUE(lines(log, EEvent::Leaves).empty());
    });
}

TEST(AddInLoadOrderTests, WhatRegisteredLeavesInReverse) {
    expectInFreshProcess([] {
        RegistrationLog const log;
        OS::Module module;
        ASSERT_TRUE(module.load(VN_COMMON_DATA_MODULE).ok());
        module.unload();
        EXPECT_FALSE(OS::Module::isInProcess(VN_COMMON_DATA_MODULE));
        // What is no object of a registry takes nothing back.
        auto const isRegistered = [](std::string const & line) {
            return !line.starts_with("static ") && !line.starts_with("add-in ");
        };
        std::vector<std::string> joined;
        std::ranges::copy_if(lines(log, EEvent::Joins), std::back_inserter(joined), isRegistered);
        std::ranges::reverse(joined);
        std::vector<std::string> left;
        std::ranges::copy_if(lines(log, EEvent::Leaves), std::back_inserter(left), isRegistered);
        EXPECT_EQ(left, joined);
    });
}

TEST(AddInLoadOrderTests, TheModuleGivesOneObjectAtEveryCall) {
    expectInFreshProcess([] {
        OS::Module module;
        ASSERT_TRUE(module.load(VN_COMMON_DATA_MODULE).ok());
        auto * const get = reinterpret_cast<IAddIn::Getter *>(module.symbol("_GetIAddIn"));
        ASSERT_NE(get, nullptr);
        RegistrationLog const log;
        IAddIn * const object = get();
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(get(), object);
        EXPECT_TRUE(log.entries().empty());
        UniqueString const * const id = object->getInterfaceId();
        EXPECT_EQ(id, UniqueString::find("CommonDataAddIn", false));
        EXPECT_EQ(object->queryInterface(id), object);
    });
}

TEST(AddInLoadOrderTests, TheManagerIsToldTheNameWithThePlatformsExtension) {
    expectInFreshProcess([] {
        OS::Module module;
        ASSERT_TRUE(module.load(VN_COMMON_DATA_MODULE).ok());
        EXPECT_EQ(AddInMgr::get()->defaultCommonDataServerAddInName(),
                  L"VnCommonData10" + std::wstring(OS::platformModuleExtension()));
    });
}

} // namespace

} // namespace Vn::Testing
