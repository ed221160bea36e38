#ifndef VN_PLATFORM_DATAMODEL_MIGRATIONHELPER_H
#define VN_PLATFORM_DATAMODEL_MIGRATIONHELPER_H

#include "Platform/DataModel/Export.h"

namespace Vn {

class MetaType;
class Segment;

// Receives, while a document of an older version loads, the members that its class no longer has.
class VN_DATAMODEL_API MigrationHelper {
public:
    // For an entity of that segment.
    explicit MigrationHelper(Segment * segment) noexcept : m_pSegment(segment) {}
    virtual ~MigrationHelper();
    MigrationHelper(MigrationHelper const &) = delete;
    MigrationHelper & operator=(MigrationHelper const &) = delete;

    // The segment of the entity that is helped.
    Segment * segment() const noexcept { return m_pSegment; }

    // The helper, or a part of it, as what a meta type describes; null if it isn't.
    virtual void * queryMTInterface(MetaType const * type);

private:
    Segment * const m_pSegment;
};

} // namespace Vn

#endif
