// Entities and observers for the tests of the managed tree.

#ifndef VN_TESTS_COMMONDATA_MANAGED_MANAGEDTESTING_H
#define VN_TESTS_COMMONDATA_MANAGED_MANAGEDTESTING_H

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/Managed/CommonBaseRootCollection.h"
#include "Server/CommonData/Managed/CustomGroup.h"
#include "Server/CommonData/Managed/CustomGroups.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"
#include "Server/CommonData/Managed/ManagedRootCollection.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Managed::Testing {

using Vn::Testing::TemporaryFile;

// A document with a design segment.
class Document {
public:
    Document() : m_rAsset(Asset::make(nullptr)), m_pSegment(m_rAsset->segment(1U)) {}

    Asset & asset() const { return *m_rAsset; }
    Segment * segment() const { return m_pSegment; }
    void undo() const;
    void redo() const;
    // Runs `work` as one step.
    template <class Work>
    void step(Work && work) const {
        Transaction transaction(*m_rAsset, L"Step");
        work();
        transaction.commit();
    }

private:
    StrongRef<Asset> m_rAsset;
    Segment * m_pSegment;
};

// An entity outside the managed tree.
class Plain : public Persisted<Plain, Entity> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Plain",
                                            "1A5B0C3E-0001-4000-8000-000000000001", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Plain> make(Segment * segment) { return create(segment); }

private:
    friend PersistedAccess;
    explicit Plain(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Plain(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

// A managed entity with a value, for a place in its parent's list.
class Leaf : public Persisted<Leaf, ManagedEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Leaf",
                                            "1A5B0C3E-0001-4000-8000-000000000002", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Leaf> make(PassiveRef<Entity> const & parent) {
        return create(parent, c_atEnd);
    }
    static StrongRefCreator<Leaf> make(PassiveRef<Entity> const & parent, unsigned place) {
        return create(parent, place);
    }
    static StrongRefCreator<Leaf> make(Segment * segment) { return create(segment); }

    int value() const { return m_value; }
    void value(int value);
    // The text of the entity alone.
    std::wstring entityText() const { return Entity::onToString(); }
    using ManagedEntity::_parentGroupNode;
    using ManagedEntity::parent;

private:
    friend PersistedAccess;
    Leaf(PassiveRef<Entity> const & parent, unsigned place) : Persisted(parent), m_place(place) {
        initializeMemberSetIfNeeded();
    }
    explicit Leaf(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Leaf(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        addMember(set, "value", m_value, IntrinsicMetaType<int>::get());
    }
    unsigned insertionIndex() const override { return m_place; }

    int m_value = 0;
    unsigned const m_place = c_atEnd;
};

// A managed group.
class Group : public Persisted<Group, ManagedGroupEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Group",
                                            "1A5B0C3E-0001-4000-8000-000000000003", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Group> make(PassiveRef<Entity> const & parent) {
        return create(parent);
    }
    static StrongRefCreator<Group> make(Segment * segment) { return create(segment); }

    std::wstring entityText() const { return Entity::onToString(); }

private:
    friend PersistedAccess;
    explicit Group(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    explicit Group(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Group(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

// One thing that an observer was told.
struct Told {
    enum EWhat { Pre, Post, Deletion };

    EWhat what;
    Entity * entity;
    DataChange::ETransact transact;
    DataChange::EChangeType type;
    bool hasDetails;
};

// Writes down what it is told, and may look at details while they last.
class Recorder : public IEntityObserver {
public:
    Recorder() = default;
    explicit Recorder(Entity & entity) { entity.subscribe(this); }

    void preChange(Entity * entity, DataChange::ETransact transact, DataChange::EChangeType type,
                   DataChange * details) override {
        m_told.push_back({Told::Pre, entity, transact, type, details != nullptr});
        if (m_onPre) m_onPre(details);
    }
    void postChange(Entity * entity, DataChange::ETransact transact, DataChange::EChangeType type,
                    DataChange * details) override {
        m_told.push_back({Told::Post, entity, transact, type, details != nullptr});
        if (m_onPost) m_onPost(details);
    }
    void preDeletion(Entity * entity, DataChange::ETransact transact) override {
        m_told.push_back({Told::Deletion, entity, transact, DataChange::ChangeStructural, false});
    }

    std::vector<Told> m_told;
    std::function<void(DataChange *)> m_onPre;
    std::function<void(DataChange *)> m_onPost;
};

using Children = std::vector<StrongRef<ManagedEntity>>;

// Leaves in a group.
inline std::vector<StrongRef<Leaf>> makeLeaves(StrongRef<ManagedGroupEntity> const & group,
                                               int count) {
    std::vector<StrongRef<Leaf>> leaves;
    for (int i = 0; i < count; ++i) leaves.push_back(Leaf::make(PassiveRef<Entity>(group)));
    return leaves;
}

// The leaves at these places.
inline Children pick(std::vector<StrongRef<Leaf>> const & leaves,
                     std::initializer_list<std::size_t> places) {
    Children children;
    for (std::size_t const place : places) children.push_back(leaves[place]);
    return children;
}

} // namespace Vn::Managed::Testing

#endif
