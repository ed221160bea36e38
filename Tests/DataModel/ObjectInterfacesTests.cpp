// What an object is to a user: selected, renamed, moved.

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/ILogicalSelectionSource.h"
#include "Platform/DataModel/IPasteSink.h"
#include "Platform/DataModel/IPasteSource.h"
#include "Platform/DataModel/IRenameTarget.h"

namespace Vn::Testing {

namespace {

// Has no more than an object must have.
class Plain : public ILogicalSelectionSource,
              public DataModel::IRenameTarget,
              public DataModel::IPasteSink,
              public DataModel::IPasteSource {
public:
    UniqueString const * getInterfaceId() const override { return nullptr; }
    void * queryInterface(UniqueString const * id) const override {
        void * found = ILogicalSelectionSource::queryInterface(id);
        if (!found) found = IRenameTarget::queryInterface(id);
        if (!found) found = IPasteSink::queryInterface(id);
        return found ? found : IPasteSource::queryInterface(id);
    }

    std::wstring m_name = L"name";
    bool m_bMovable = false;

private:
    StrongRef<LogicalSelection> onCreateLogicalSelection(ObjectPath const &) override {
        return nullptr;
    }
    bool onProvideNominalHitInfo(StrongRef<LogicalSelection>, TgMatrix3d const &, TgPoint3d &,
                                 TgMatrix3d &) const override {
        return false;
    }
    bool onCanRename() const override { return true; }
    std::wstring onRenameText() override { return m_name; }
    void onRename(std::wstring const & name) override { m_name = name; }
    std::unique_ptr<IPasteRequest> onProvidePasteRequest(std::vector<ObjectPath> const &,
                                                         ObjectPath const &, bool, bool,
                                                         bool) const override {
        return nullptr;
    }
    bool onCanReorder(std::vector<ObjectPath> const &, ObjectPath const &) const override {
        return m_bMovable;
    }
    bool onCanCut() const override { return true; }
    bool onCanCopy() const override { return false; }
    bool onCanReorder() const override { return false; }
};

TEST(ObjectInterfacesTests, AnObjectIsFoundByEachOfItsInterfaces) {
    Plain plain;
    auto * const source = static_cast<DataModel::IPasteSource *>(&plain);
    EXPECT_EQ(query<ILogicalSelectionSource>(source), &plain);
    EXPECT_EQ(query<DataModel::IRenameTarget>(source), &plain);
    EXPECT_EQ(query<DataModel::IPasteSink>(source), &plain);
    EXPECT_EQ(query<DataModel::IPasteSource>(source), source);
    EXPECT_EQ(ILogicalSelectionSource::interfaceId()->string(), "Vn::ILogicalSelectionSource");
    EXPECT_EQ(DataModel::IRenameTarget::interfaceId()->string(), "Vn::DataModel::IRenameTarget");
    EXPECT_EQ(DataModel::IPasteSink::interfaceId()->string(), "Vn::DataModel::IPasteSink");
    EXPECT_EQ(DataModel::IPasteSource::interfaceId()->string(), "Vn::DataModel::IPasteSource");
}

TEST(ObjectInterfacesTests, ASelectionIsOfTheObjectAloneByDefault) {
    Plain const plain;
    ObjectPath const path(nullptr, {Onk(L"root")});
    std::vector<ObjectPath> leaves;
    EXPECT_TRUE(plain.isFinalLogicalSelectionSource());
    plain.leafObjectPaths(path, leaves);
    EXPECT_EQ(leaves, std::vector<ObjectPath>{path});
}

TEST(ObjectInterfacesTests, AnyNameIsUniqueByDefault) {
    Plain plain;
    EXPECT_TRUE(plain.isUniqueName(L"name"));
    EXPECT_EQ(plain.uniqueName(L"name"), L"name");
    plain.rename(L"other");
    EXPECT_EQ(plain.renameText(), L"other");
}

TEST(ObjectInterfacesTests, WhatCanBeMovedCanBePastedByDefault) {
    Plain plain;
    DataModel::IPasteSink const & sink = plain;
    EXPECT_FALSE(sink.canPaste({}, ObjectPath()));
    plain.m_bMovable = true;
    EXPECT_TRUE(sink.canPaste({}, ObjectPath()));
    EXPECT_FALSE(sink.providePasteRequest({}, ObjectPath(), true, true, true));
}

} // namespace

} // namespace Vn::Testing
