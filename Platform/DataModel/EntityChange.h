// The bracket around a change of an entity.

#ifndef VN_PLATFORM_DATAMODEL_ENTITYCHANGE_H
#define VN_PLATFORM_DATAMODEL_ENTITYCHANGE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class ChangeHistory;
class EntityChange;

namespace DataModel {
class Recorder;
}

// Hears of the changes within one bracket, and tells of them once.
class VN_DATAMODEL_API EntityChangeSummarizer {
public:
    EntityChangeSummarizer() = default;
    EntityChangeSummarizer(EntityChangeSummarizer const &) = delete;
    EntityChangeSummarizer & operator=(EntityChangeSummarizer const &) = delete;
    virtual ~EntityChangeSummarizer();

    // Forwards if the bracket's timing has that stage.  The bracket calls postChange when it
    // closes.
    void preChange(DataChange::EChangeType type, DataChange::ETiming timing) {
        if (timing & DataChange::TimingPre) onPreChange(type);
    }
    void postChange(DataChange::EChangeType type, DataChange::ETiming timing) {
        if (timing & DataChange::TimingPost) onPostChange(type);
    }

    // The id of this class.
    static UniqueString const * interfaceId();

private:
    // The order of the virtual operations is binding.
    virtual void onPreChange(DataChange::EChangeType type) = 0;
    virtual void onPostChange(DataChange::EChangeType type) = 0;

public:
    // The id of the object's own class, and the object as a class or interface.
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

// A local object that stands around every change of persisted members:
//
//     EntityChange change(this, DataChange::TransactDirect, DataChange::ChangeValue,
//                         DataChange::TimingPreAndPost, nullptr, true);
//     m_name = name;
//
// It stands within a Transaction.  Outside of one the change is made, but can't be undone, and the
// steps that could be undone or redone before are gone, since they no longer fit: nothing is thrown
// and nothing else tells, but ChangeHistory::onUnrecorded and takeUnrecorded, for hosts that ask.
//
// The constructor tells the entity that a change comes, the destructor that it is over.  Brackets
// nest, on one entity and across entities, and close in the reverse order of opening.  What is
// recorded for undo is what differs when the outermost bracket of the entity closes, of those that
// are undoable.  A bracket that an exception leaves is closed like any other, and what was changed
// until then is recorded.
class VN_DATAMODEL_API EntityChange {
public:
    // `details` may be null and must outlive the bracket.  Without `undoable` the change can't be
    // undone, isn't saved by itself, and leaves the history as it is: for what isn't persisted.  If
    // a hook throws here, there is no bracket.
    EntityChange(Entity * entity, DataChange::ETransact transact, DataChange::EChangeType type,
                 DataChange::ETiming timing, DataChange * details, bool undoable);
    // Closes.  What a hook throws goes on to the caller unless the bracket is left by an exception
    // already.
    ~EntityChange() noexcept(false);
    EntityChange(EntityChange const &) = delete;
    EntityChange & operator=(EntityChange const &) = delete;

    // What the constructor was given.
    Entity * entity() const noexcept { return m_pEntity; }
    DataChange::ETransact transact() const noexcept { return m_transact; }
    DataChange::EChangeType type() const noexcept { return m_type; }
    DataChange::ETiming timing() const noexcept { return m_timing; }

    // The summarizer of this bracket that offers an interface; null if there is none.
    EntityChangeSummarizer * findSummarizer(UniqueString const * interfaceId) const;
    // Takes a summarizer over, for as long as the bracket is open.
    void add(EntityChangeSummarizer * summarizer);

private:
    friend class DataModel::Recorder;

    struct Summary {
        std::unique_ptr<EntityChangeSummarizer> summarizer;
        DataChange::EChangeType type;
    };

    void tellPost();

    Entity * const m_pEntity;
    ChangeHistory * const m_pHistory; // null for an entity without a document
    DataChange::ETransact const m_transact;
    DataChange::EChangeType const m_type;
    DataChange::ETiming const m_timing;
    DataChange * const m_pDetails;
    int const m_exceptions;
    bool const m_bUndoable;
    EntityChange * m_pOutermost = nullptr; // of this entity
    EntityChange * m_pRecorder = nullptr;  // the outermost that is undoable; failing that, as above
    EntityChange * m_pEnclosing = nullptr; // the bracket that was innermost before
    std::uint32_t m_log = 0;               // the log for which members were kept; 0 if none
    unsigned m_types = 0;                  // of this bracket and those within, combined
    std::size_t m_snapshot = 0;            // where the members as they were begin
    std::uint64_t m_leaves = 0;            // which of the first 63 members are to be recorded
    DataChange::EChangeType m_told;        // the type being told at present
    std::vector<Summary> m_summaries;
};

// Says that the brackets that open on an entity within this scope change a vector member only at
// the places that are told here.  Without it a bracket keeps a copy of the vector, whose cost
// follows its length; with it the cost follows the change.  ListChange puts the two together.
class VN_DATAMODEL_API MemberSplices {
public:
    // `member` is the address of the member in the entity.
    MemberSplices(Entity & entity, void const * member);
    ~MemberSplices();
    MemberSplices(MemberSplices const &) = delete;
    MemberSplices & operator=(MemberSplices const &) = delete;

    // Elements stand now at `index` that weren't there; said right after the change.
    void inserted(std::size_t index, std::size_t count = 1);
    // Elements are about to go; said right before.  Throws std::bad_alloc if there is no memory for
    // the record.
    void erasing(std::size_t index, std::size_t count = 1);

private:
    friend class DataModel::Recorder;

    Entity & m_entity;
    ChangeHistory * const m_pHistory;
    MemberSplices * m_pEnclosing = nullptr;
    int m_leaf = -1;
};

// A change of a list: a bracket, and the places at which a vector member of the entity changes.
//
//     ListChange change(this, &m_children, DataChange::ChangeChildren, &details);
//     m_children.push_back(child);
//     change.inserted(m_children.size() - 1);
//
// The bracket tells before it tells after, as any; what a hook makes of the list in between, by a
// declaration of its own, is recorded in its turn.
class VN_DATAMODEL_API ListChange {
public:
    // `member` is the address of the vector in the entity, which changes only where it is told
    // below.  The change is direct, told before and after, and can be undone; `details` as for
    // EntityChange.  Throws std::bad_alloc if there is no memory for the record, and nothing has
    // changed then.
    ListChange(Entity * entity, void const * member, DataChange::EChangeType type,
               DataChange * details)
        : m_splices(*entity, member), m_change(entity, DataChange::TransactDirect, type,
                                               DataChange::TimingPreAndPost, details, true) {}

    // As those of MemberSplices: said right after elements were inserted, and right before they go.
    void inserted(std::size_t index, std::size_t count = 1) { m_splices.inserted(index, count); }
    void erasing(std::size_t index, std::size_t count = 1) { m_splices.erasing(index, count); }

private:
    MemberSplices m_splices;
    EntityChange m_change;
};

} // namespace Vn

#endif
