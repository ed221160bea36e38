#include "Server/CommonData/Managed/Ancestors.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using ManagedEntityUtils::parentOf;

// Leaves each of which is the parent of the one before; the last has `circle`, if any, as its own.
std::vector<StrongRef<Leaf>> chainOf(Document const & document, std::size_t length,
                                     std::size_t circle) {
    std::vector<StrongRef<Leaf>> chain;
    for (std::size_t i = 0; i < length; ++i) {
        chain.push_back(Leaf::make(document.segment()));
        if (i > 0) chain[i - 1]->parent(chain[i]);
    }
    if (circle < length) chain.back()->parent(chain[circle]);
    return chain;
}

TEST(AncestorWalkTests, GoesThroughAllAncestorsInOrder) {
    Document const document;
    for (std::size_t const length : {1U, 2U, 3U, 7U, 100U}) {
        auto const chain = chainOf(document, length, length);
        std::size_t place = 0;
        AncestorWalk walk(chain.front());
        for (; walk; walk.goTo(parentOf(*walk))) EXPECT_EQ(walk.at(), chain[place++]);
        EXPECT_EQ(place, length);
        EXPECT_FALSE(walk.metCircle());
    }
}

TEST(AncestorWalkTests, EndsInACircleOfAnyLengthAfterAnyWay) {
    Document const document;
    for (std::size_t const length : {1U, 2U, 3U, 5U, 8U, 17U, 100U}) {
        for (std::size_t circle = 0; circle < length; ++circle) {
            auto const chain = chainOf(document, length, circle);
            std::size_t steps = 0;
            AncestorWalk walk(chain.front());
            for (; walk && steps < 5 * length; walk.goTo(parentOf(*walk))) ++steps;
            EXPECT_TRUE(walk.metCircle()) << length << ", from " << circle;
            EXPECT_GE(steps, length) << "nobody is left out";
            chain.back()->nullParent();
        }
    }
}

TEST(AncestorWalkTests, FromNullHasEnded) {
    AncestorWalk const walk(nullptr);
    EXPECT_FALSE(walk);
    EXPECT_FALSE(walk.metCircle());
}

TEST(AncestorWalkTests, AnEntityOutsideTheTreeHasNoParent) {
    Document const document;
    StrongRef<Plain> const plain = Plain::make(document.segment());
    EXPECT_EQ(parentOf(*plain), nullptr);
    EXPECT_EQ(parentOf(*Leaf::make(PassiveRef<Entity>(plain))), plain);
}

} // namespace

} // namespace Vn::Managed::Testing
