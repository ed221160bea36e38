// Writes down what changes, so that it can be taken back.
//
// While a bracket is open on an entity, its members as they were stand in the "scratch", a stack of
// words.  When the bracket closes, those that differ move to the log.  The room for them is made
// when the bracket opens, so that a change is either refused before it begins or recorded.

#ifndef VN_PLATFORM_DATAMODEL_LOG_RECORDER_H
#define VN_PLATFORM_DATAMODEL_LOG_RECORDER_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "Platform/DataModel/Log/ChangeLog.h"
#include "Platform/DataModel/Log/WordBuffer.h"

namespace Vn {
class Asset;
class ChangeHistory;
class Entity;
class EntityChange;
class MemberSplices;
class Segment;
} // namespace Vn

namespace Vn::DataModel {

class Recorder {
public:
    Recorder(Asset & asset, ChangeHistory & history) noexcept
        : m_asset(asset), m_history(history) {}
    Recorder(Recorder const &) = delete;
    Recorder & operator=(Recorder const &) = delete;

    // The log that is written to, that of the innermost transaction; null outside of transactions.
    ChangeLog * log() const noexcept { return m_pLog; }
    void log(ChangeLog * log) noexcept { m_pLog = log; }
    // The log that a replay writes, into which go the roots that hooks change meanwhile; null
    // otherwise.
    void inverse(ChangeLog * log) noexcept { m_pInverse = log; }

    // What brackets do.  `open` throws std::bad_alloc if there is no memory, and there is no
    // bracket then.
    void open(EntityChange & change);
    void close(EntityChange & change);
    // Whether a bracket that records is open on any entity.
    bool isBracketed() const noexcept { return m_brackets > 0; }
    // The bracket that was opened first on an entity; null if none is open.
    EntityChange * outermost(Entity const & entity) const noexcept;

    // Has the brackets that are open on an entity record nothing of a member, since it was stored
    // for good.  One beyond the first 63 is recorded all the same.
    void leaveOut(Entity & entity, void const * member) noexcept;

    // What the declarations of changes of lists do.  `enter` throws std::bad_alloc as `open` does.
    void enter(MemberSplices & splices, void const * member);
    void leave(MemberSplices & splices) noexcept;
    void spliced(MemberSplices const & splices, bool inserted, std::size_t index,
                 std::size_t count);

    // An entity has come.  From here on the log needs none of its members: an undo ends it as a
    // whole.
    void recordBirth(ChangeLog & log, Entity & entity);
    // The root under a key is about to change; `old` is the present one, or null.
    void rootChanging(Segment & segment, std::string const & key, std::size_t place, Entity * old);

    // Members as they are or were, with heads as in a Changed record, one entity's above the
    // other's.
    WordBuffer & scratch() noexcept { return m_scratch; }

    // Whether memory ran out for the record of what was done already; asking forgets it.
    bool takeLost() noexcept;
    void lost() noexcept { m_bLost = true; }

private:
    // The bracket that was opened last on an entity; null if none is open.
    EntityChange * innermost(Entity const & entity) const noexcept;
    void keepMembers(EntityChange & change);
    void record(EntityChange const & change);
    void keepDifferences(EntityChange const & change, ChangeLog * log, Record & record);
    // The number of the leaf of a vector member whose splices can be recorded; -1 if it is none.
    static int leafOf(Entity & entity, void const * member);
    bool splicesAnnounced(Entity const & entity, int leaf) const noexcept;
    // Makes room in a log for so many words beside those that open brackets may need; false if
    // there is none.
    bool makeRoom(ChangeLog & log, std::size_t words) noexcept;

    Asset & m_asset;
    ChangeHistory & m_history;
    ChangeLog * m_pLog = nullptr;
    ChangeLog * m_pInverse = nullptr;
    EntityChange * m_pInnermost = nullptr;
    MemberSplices * m_pSplices = nullptr;
    WordBuffer m_scratch;
    std::size_t m_brackets = 0; // that are open and record
    bool m_bLost = false;
};

} // namespace Vn::DataModel

#endif
