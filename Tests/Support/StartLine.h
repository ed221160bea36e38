// Where the threads of a test wait for each other.

#ifndef VN_TESTS_SUPPORT_STARTLINE_H
#define VN_TESTS_SUPPORT_STARTLINE_H

#include <atomic>
#include <thread>

namespace Vn {

// Lets a number of threads start at once.  They don't sleep, so none starts late; and the latch of
// the standard library, in that of mingw-w64, may leave one of them asleep for ever.
class StartLine {
public:
    explicit StartLine(int threads) : m_missing(threads) {}

    // Returns when all of them have called it.
    void arriveAndWait() {
        m_missing.fetch_sub(1, std::memory_order_acq_rel);
        while (m_missing.load(std::memory_order_acquire) > 0) std::this_thread::yield();
    }

private:
    std::atomic<int> m_missing;
};

} // namespace Vn

#endif
