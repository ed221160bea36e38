#include "Tests/CommonData/Managed/ManagedTesting.h"

#include <gtest/gtest.h>

namespace Vn::Managed::Testing {

namespace {

class PlainMetaType final : public PersistedMetaType<Plain> {
} s_plain;
class LeafMetaType final : public PersistedMetaType<Leaf> {
} s_leaf;
class GroupMetaType final : public PersistedMetaType<Group> {
} s_group;

} // namespace

EntityMetaType * Plain::s_metaType() { return &s_plain; }
EntityMetaType * Leaf::s_metaType() { return &s_leaf; }
EntityMetaType * Group::s_metaType() { return &s_group; }

void Document::undo() const { ASSERT_TRUE(asset().history().undo().ok()); }
void Document::redo() const { ASSERT_TRUE(asset().history().redo().ok()); }

void Leaf::value(int value) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_value = value;
}

} // namespace Vn::Managed::Testing
