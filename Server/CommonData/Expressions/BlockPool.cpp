#include "Server/CommonData/Expressions/BlockPoolInternal.h"

#include <new>

#include "Platform/Base/OS.h"
#include "Platform/Base/SpinLock.h"

namespace Vn::Expressions::BlockPool {

namespace {

// Stands at the beginning of a kept block, on a page that isn't offered.
struct KeptBlock {
    KeptBlock * next;
};

constexpr std::size_t c_page = 4096;

// Blocks whose pages were offered are used last, so that these may go back to the system.
constinit SpinLock s_lock;
constinit KeptBlock * s_pWhole = nullptr;
constinit KeptBlock * s_pOffered = nullptr;
constinit std::size_t s_wholeCount = 0;
constinit std::size_t s_offeredCount = 0;

} // namespace

void * take() {
    {
        SpinLockGuard const guard(s_lock);
        KeptBlock *& list = s_pWhole ? s_pWhole : s_pOffered;
        if (KeptBlock * const block = list) {
            list = block->next;
            --(&list == &s_pWhole ? s_wholeCount : s_offeredCount);
            return block;
        }
    }
    void * const block = OS::allocatePages(c_blockSize);
    if (!block) throw std::bad_alloc();
    return block;
}

void give(void * memory) noexcept {
    auto * const block = static_cast<KeptBlock *>(memory);
    {
        SpinLockGuard const guard(s_lock);
        if (s_wholeCount < c_keptWhole) {
            block->next = s_pWhole;
            s_pWhole = block;
            ++s_wholeCount;
            return;
        }
        if (s_offeredCount >= c_kept - c_keptWhole) {
            block->next = nullptr;
        } else {
            ++s_offeredCount; // holds the place while the pages are offered
            block->next = block;
        }
    }
    if (!block->next) {
        OS::releasePages(memory, c_blockSize);
        return;
    }
    OS::offerPages(static_cast<std::byte *>(memory) + c_page, c_blockSize - c_page);
    SpinLockGuard const guard(s_lock);
    block->next = s_pOffered;
    s_pOffered = block;
}

} // namespace Vn::Expressions::BlockPool
