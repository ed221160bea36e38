#include "Platform/Base/UniqueString.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Vn::UniqueString;

TEST(UniqueStringTests, IsMadeOnlyOnDemand) {
    EXPECT_EQ(UniqueString::find("UniqueStringTests.absent", false), nullptr);
    UniqueString const * const made = UniqueString::find("UniqueStringTests.made", true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->string(), "UniqueStringTests.made");
    EXPECT_EQ(UniqueString::find("UniqueStringTests.made", false), made);
    EXPECT_EQ(UniqueString::find(std::string("UniqueStringTests.") + "made", true), made);
}

TEST(UniqueStringTests, ComparesByteForByte) {
    UniqueString const * const lower = UniqueString::find("UniqueStringTests.case", true);
    EXPECT_NE(UniqueString::find("UniqueStringTests.Case", true), lower);
    EXPECT_NE(UniqueString::find("UniqueStringTests.case ", true), lower);
    std::string const withNull("UniqueStringTests.case\0x", 24);
    UniqueString const * const longer = UniqueString::find(withNull, true);
    EXPECT_NE(longer, lower);
    EXPECT_EQ(longer->string(), withNull);
    EXPECT_EQ(UniqueString::find("", true)->string(), "");
}

TEST(UniqueStringTests, ThreadsGetTheSamePointers) {
    constexpr std::size_t c_threads = 4;
    constexpr std::size_t c_names = 500;
    std::vector<std::vector<UniqueString const *>> found(c_threads);
    std::vector<std::jthread> threads;
    for (auto & mine : found)
        threads.emplace_back([&mine] {
            for (std::size_t i = 0; i < c_names; ++i)
                mine.push_back(
                    UniqueString::find("UniqueStringTests.thread" + std::to_string(i), true));
        });
    threads.clear();
    for (auto const & others : found) EXPECT_EQ(others, found.front());
    for (std::size_t i = 0; i < c_names; ++i)
        EXPECT_EQ(found.front()[i]->string(), "UniqueStringTests.thread" + std::to_string(i));
}

} // namespace
