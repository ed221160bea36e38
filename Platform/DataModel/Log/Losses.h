// What is lost by changes outside of transactions, and who is told.

#ifndef VN_PLATFORM_DATAMODEL_LOG_LOSSES_H
#define VN_PLATFORM_DATAMODEL_LOG_LOSSES_H

#include <cstddef>
#include <memory>

#include "Platform/DataModel/ChangeHistory.h"

namespace Vn::DataModel {

class Losses {
public:
    // What tells the host; it may be empty.
    void function(ChangeHistory::UnrecordedFunction function);

    // A change was made, and so many steps go with it.  Answers whether the host is to be told.
    bool note(std::size_t undoSteps, std::size_t redoSteps, Entity const * entity,
              bool isMade) noexcept;
    // Tells the host of what was noted since it was told last.
    void tell() noexcept;

    // The sum since this was asked last.
    UnrecordedChanges take() noexcept;

private:
    std::shared_ptr<ChangeHistory::UnrecordedFunction const> m_pFunction; // null if it is empty
    UnrecordedChanges m_taken;                                            // to be taken
    UnrecordedChanges m_told;                                             // to be told
    bool m_bFirst = true;                                                 // nothing was told yet
    bool m_bTelling = false;
};

} // namespace Vn::DataModel

#endif
