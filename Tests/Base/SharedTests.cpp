#include "Platform/Base/Shared.h"

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Support/StartLine.h"

namespace {

using Vn::ScopedLockBase;
using Vn::Shared;

static_assert(std::is_trivially_destructible_v<Shared<int>>);

// A holder never deletes its object: it is for statics.  These tests end theirs by hand.
template <class T>
std::unique_ptr<T> owner(Shared<T> const & shared) {
    return std::unique_ptr<T>(shared.peek());
}

// Usable without any constructor having run.
[[maybe_unused]] constinit Shared<int> s_constantInitialized;

TEST(SharedTests, MakesOneObject) {
    Shared<int> shared;
    EXPECT_EQ(shared.peek(), nullptr);
    int & first = shared.get([] { return new int(5); });
    int & second = shared.get([]() -> int * { throw std::logic_error("made twice"); });
    EXPECT_EQ(&first, &second);
    EXPECT_EQ(shared.peek(), &first);
    owner(shared);
}

TEST(SharedTests, FailedCreationIsTriedAgain) {
    Shared<int> shared;
    auto const failing = []() -> int * { throw std::runtime_error("no"); };
    EXPECT_THROW(shared.get(failing), std::runtime_error);
    EXPECT_EQ(shared.peek(), nullptr);
    EXPECT_EQ(shared.get([] { return new int(6); }), 6);
    owner(shared);
}

TEST(SharedTests, WorksWithLockingSwitchedOff) {
    Shared<int> shared;
    EXPECT_TRUE(ScopedLockBase::lockingEnabled());
    EXPECT_TRUE(ScopedLockBase(1, 2).isLocking());
    ScopedLockBase::lockingEnabled(false);
    ScopedLockBase const scope(1, 2);
    EXPECT_FALSE(scope.isLocking());
    EXPECT_EQ(scope.lockType(), 1);
    EXPECT_EQ(scope.level(), 2);
    EXPECT_EQ(shared.get([] { return new int(7); }), 7);
    owner(shared);
    ScopedLockBase::lockingEnabled(true);
    // A scope keeps the answer with which it was entered.
    EXPECT_FALSE(scope.isLocking());
}

TEST(SharedTests, RacingThreadsSeeOneCompleteObject) {
    for (int round = 0; round < 200; ++round) {
        Shared<std::vector<int>> shared;
        std::atomic<int> made{0};
        Vn::StartLine ready(4);
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&] {
                ready.arriveAndWait();
                std::vector<int> const & object = shared.get([&] {
                    ++made;
                    return new std::vector<int>(100, 3);
                });
                EXPECT_EQ(object.size(), 100U);
                EXPECT_EQ(object.back(), 3);
            });
        threads.clear();
        EXPECT_EQ(made.load(), 1);
        owner(shared);
    }
}

} // namespace
