#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "Platform/AddInMgr/IAddInInitializeAsset.h"
#include "Platform/AddInMgr/IApplicationServerAddIn.h"

namespace Vn {

namespace {

class Plain : public IApplicationServerAddIn {
public:
    std::wstring toString() const override { return IAddIn::toString(); }
    void onLoaded() override {}
    void onUnloading(AddIn const *) override {}
    UniqueString const * getInterfaceId() const override {
        return IApplicationServerAddIn::getInterfaceId();
    }
    void * queryInterface(UniqueString const * id) const override {
        return IApplicationServerAddIn::queryInterface(id);
    }
};

class Hooks : public IAddInInitializeAsset {
public:
    void onInitializeNewAsset(Asset *, AddIn const *) override {}
    void onInitializeLoadedAsset(Asset *, AddIn const *) override {}
    void onFullyInitializeLoadedAsset(Asset *, AddIn const *) override {}
    UniqueString const * getInterfaceId() const override {
        return IAddInInitializeAsset::getInterfaceId();
    }
    void * queryInterface(UniqueString const * id) const override {
        return IAddInInitializeAsset::queryInterface(id);
    }
};

// The place of a virtual operation among those of its class, from 0.  The two of the destructor
// come first.
template <class Operation>
std::ptrdiff_t place(Operation operation) {
    std::intptr_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    constexpr std::ptrdiff_t c_destructor = 2;
    return offset / static_cast<std::ptrdiff_t>(sizeof(void *)) - c_destructor;
}

TEST(InterfacesTests, TheVirtualOperationsStandInTheirOrder) {
    EXPECT_EQ(place(&Plain::toString), 0);
    EXPECT_EQ(place(&Plain::onLoaded), 1);
    EXPECT_EQ(place(&Plain::onUnloading), 2);
    EXPECT_EQ(place(&Plain::getInterfaceId), 3);
    EXPECT_EQ(place(&Plain::queryInterface), 4);
    EXPECT_EQ(place(&Hooks::onInitializeNewAsset), 0);
    EXPECT_EQ(place(&Hooks::onInitializeLoadedAsset), 1);
    EXPECT_EQ(place(&Hooks::onFullyInitializeLoadedAsset), 2);
    EXPECT_EQ(place(&Hooks::getInterfaceId), 3);
    EXPECT_EQ(place(&Hooks::queryInterface), 4);
}

TEST(InterfacesTests, AnAddInOffersItsBases) {
    Plain const addIn;
    EXPECT_EQ(addIn.getInterfaceId(), IApplicationServerAddIn::interfaceId());
    void const * const object = &addIn;
    EXPECT_EQ(addIn.queryInterface(IApplicationServerAddIn::interfaceId()), object);
    EXPECT_EQ(addIn.queryInterface(IServerAddIn::interfaceId()), object);
    EXPECT_EQ(addIn.queryInterface(IAddIn::interfaceId()), object);
    EXPECT_EQ(addIn.queryInterface(IAddInInitializeAsset::interfaceId()), nullptr);
    EXPECT_EQ(addIn.queryInterface(UniqueString::find("Vn::NoSuchInterface", true)), nullptr);
    EXPECT_EQ(addIn.queryInterface(nullptr), nullptr);
}

TEST(InterfacesTests, TheIdsAreTheNamesOfTheClasses) {
    EXPECT_EQ(IAddIn::interfaceId()->string(), "Vn::IAddIn");
    EXPECT_EQ(IServerAddIn::interfaceId()->string(), "Vn::IServerAddIn");
    EXPECT_EQ(IApplicationServerAddIn::interfaceId()->string(), "Vn::IApplicationServerAddIn");
    EXPECT_EQ(IAddInInitializeAsset::interfaceId()->string(), "Vn::IAddInInitializeAsset");
}

TEST(InterfacesTests, HooksForDocumentsOfferThemselves) {
    Hooks const hooks;
    EXPECT_EQ(hooks.queryInterface(hooks.getInterfaceId()), &hooks);
    EXPECT_EQ(hooks.queryInterface(IAddIn::interfaceId()), nullptr);
}

TEST(InterfacesTests, AnAddInIsShownByItsClass) {
    EXPECT_EQ(Plain().toString(), L"Vn::(anonymous namespace)::Plain");
}

} // namespace

} // namespace Vn
