// How what stands above the managed tree hears of changes within it, once per bracket.

#ifndef VN_SERVER_COMMONDATA_MANAGED_CHANGESUMMARIESINTERNAL_H
#define VN_SERVER_COMMONDATA_MANAGED_CHANGESUMMARIESINTERNAL_H

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/EntityChange.h"

namespace Vn::Managed {

// The summarizers that managed entities add to the brackets around their changes.
struct ChangeSummaries {
    // The id of the interface that an entity offers if its changes are to be summarized.
    UniqueString const * (*objectId)();
    // The id of the summarizers, of which a bracket has one at most.
    UniqueString const * (*summarizerId)();
    // A new summarizer for an object, by the interface that it offers.  The caller owns it.
    EntityChangeSummarizer * (*make)(void * object);
};

// Has all managed entities make such summaries from now on; without this they make none.  There is
// one kind of them.  `summaries` must last to the end of the process.
void summarizeChanges(ChangeSummaries const & summaries) noexcept;

} // namespace Vn::Managed

#endif
