// Entities with a member of every kind that a history has to restore.

#ifndef VN_TESTS_DATAMODEL_TESTENTITIES_H
#define VN_TESTS_DATAMODEL_TESTENTITIES_H

#include <functional>
#include <string>
#include <vector>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/Types/GlobalizedString.h"

namespace Vn::Testing {

// A thing with children, which it owns, and a friend, whom it doesn't.
class Thing : public Entity {
public:
    static std::string s_metaTypeId() { return "Test-Thing"; }
    static EntityMetaType * s_metaType();
    static UniqueString const * interfaceId();

    static StrongRef<Thing> make(Segment * segment, std::wstring const & name = {});
    static StrongRef<Thing> make(Asset & asset, std::wstring const & name = {}) {
        return make(asset.segment(SegmentType::DesignSegment), name);
    }

    Thing(Segment * segment, unsigned long long id);

    template <class T>
    void set(T Thing::*member, T value, DataChange::EChangeType type = DataChange::ChangeValue) {
        EntityChange const change(this, DataChange::TransactDirect, type,
                                  DataChange::TimingPreAndPost, nullptr, true);
        this->*member = std::move(value);
    }
    // A child at the end, at a place, and away; recorded by splices.
    void add(StrongRef<Thing> const & child) { insert(child, m_children.size()); }
    void insert(StrongRef<Thing> const & child, std::size_t index);
    void remove(std::size_t index);
    // For members that are stored without a bracket.
    using Entity::markModified;

    void * queryInterface(UniqueString const * id) const override {
        return id == interfaceId() ? const_cast<Thing *>(this) : Entity::queryInterface(id);
    }

    bool m_bool = false;
    int m_int = 0;
    unsigned m_unsigned = 0;
    long long m_int64 = 0;
    unsigned long long m_unsigned64 = 0;
    float m_float = 0;
    double m_double = 0;
    std::string m_string;
    std::wstring m_name;
    GlobalizedString m_text;
    StrongRef<Thing> m_rOwned;
    PassiveRef<Entity> m_rFriend;
    std::vector<StrongRef<Thing>> m_children;
    std::vector<PassiveRef<Entity>> m_friends;
    std::vector<double> m_numbers;
    std::vector<std::wstring> m_words;

    // Runs when an entity of version 0 migrates; empty if there is nothing to do.  The members of
    // both versions are the same.
    static inline std::function<void(Thing &)> s_migrate;

    // What the hooks heard, when someone listens.
    static inline std::vector<std::string> * s_log = nullptr;

protected:
    explicit Thing(Segment * segment);
    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;
    void onPreDeletion(DataChange::ETransact transact) override;
    void onPostCreation(DataChange::ETransact transact) override;
    void onPostMigrate() override;
    EntityMetaType * onMetaType() const override { return s_metaType(); }

private:
    friend class ThingMetaType;
    void initializeMemberSetIfNeeded();
    void initializeMemberSet(MemberSet * set);
};

// A text that shows every member of every living entity, with references by id.
std::wstring dump(Asset const & asset);

} // namespace Vn::Testing

#endif
