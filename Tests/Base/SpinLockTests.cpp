#include "Platform/Base/SpinLock.h"

#include <chrono>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Vn::SpinLock;
using Vn::SpinLockGuard;

static_assert(sizeof(SpinLock) == 1);

TEST(SpinLockTests, IsHeldOnce) {
    SpinLock lock;
    {
        SpinLockGuard const guard(lock);
        EXPECT_FALSE(lock.tryLock());
    }
    EXPECT_TRUE(lock.tryLock());
    lock.unlock();
}

TEST(SpinLockTests, ThreadsTakeTurns) {
    SpinLock lock;
    long count = 0;
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                SpinLockGuard const guard(lock);
                ++count;
            }
        });
    threads.clear();
    EXPECT_EQ(count, 80000);
}

// A holder that keeps the lock for long makes the others yield the processor.
TEST(SpinLockTests, WaitsForALongHolder) {
    SpinLock lock;
    int value = 0;
    lock.lock();
    std::jthread waiting([&] {
        SpinLockGuard const guard(lock);
        EXPECT_EQ(value, 1);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    value = 1;
    lock.unlock();
}

} // namespace
