#include "Platform/Base/Initializer.h"

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Vn::Initializer;

std::vector<int> s_ran;
std::unique_ptr<Initializer> s_later;
std::atomic<int> s_count{0};

class InitializerTests : public testing::Test {
protected:
    InitializerTests() {
        Initializer::runAll();
        s_ran.clear();
    }
};

TEST_F(InitializerTests, RunsOnceInOrder) {
    Initializer const first([] { s_ran.push_back(1); });
    Initializer const second([] { s_ran.push_back(2); });
    Initializer const nothing(nullptr);
    EXPECT_TRUE(s_ran.empty());
    Initializer::runAll();
    EXPECT_EQ(s_ran, (std::vector<int>{1, 2}));
    Initializer const third([] { s_ran.push_back(3); });
    Initializer::runAll();
    EXPECT_EQ(s_ran, (std::vector<int>{1, 2, 3}));
}

TEST_F(InitializerTests, RunsWhatJoinsMeanwhile) {
    Initializer const first([] {
        s_later = std::make_unique<Initializer>([] { s_ran.push_back(3); });
        s_ran.push_back(1);
    });
    Initializer const second([] { s_ran.push_back(2); });
    Initializer::runAll();
    EXPECT_EQ(s_ran, (std::vector<int>{1, 2, 3}));
    s_later.reset();
}

TEST_F(InitializerTests, FunctionMayRunTheRestItself) {
    Initializer const first([] {
        Initializer::runAll();
        s_ran.push_back(1);
    });
    Initializer const second([] { s_ran.push_back(2); });
    Initializer::runAll();
    EXPECT_EQ(s_ran, (std::vector<int>{2, 1}));
}

TEST_F(InitializerTests, DestroyedOneIsNotRun) {
    {
        Initializer const gone([] { s_ran.push_back(1); });
    }
    Initializer::runAll();
    EXPECT_TRUE(s_ran.empty());
}

TEST_F(InitializerTests, ExceptionLeavesTheRestForTheNextCall) {
    Initializer const bad([] { throw std::runtime_error("bad"); });
    Initializer const good([] { s_ran.push_back(1); });
    EXPECT_THROW(Initializer::runAll(), std::runtime_error);
    EXPECT_TRUE(s_ran.empty());
    Initializer::runAll();
    EXPECT_EQ(s_ran, (std::vector<int>{1}));
}

TEST_F(InitializerTests, ThreadsRunEachOnce) {
    s_count = 0;
    std::vector<std::unique_ptr<Initializer>> all;
    for (int i = 0; i < 200; ++i) all.push_back(std::make_unique<Initializer>([] { ++s_count; }));
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            Initializer::runAll();
            EXPECT_EQ(s_count.load(), 200);
        });
    threads.clear();
    EXPECT_EQ(s_count.load(), 200);
}

} // namespace
