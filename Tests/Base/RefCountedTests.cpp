#include "Platform/Base/RefCounted.h"

#include <atomic>
#include <set>
#include <thread>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Support/StartLine.h"

namespace {

using Vn::PassiveRef;
using Vn::RefCounted;
using Vn::StrongRef;
using Vn::StrongRefCreator;

std::atomic<int> s_alive{0};

class Thing : public RefCounted {
public:
    explicit Thing(int value = 0) : m_value(value) { ++s_alive; }
    Thing(Thing const & other) : RefCounted(other), m_value(other.m_value) { ++s_alive; }
    Thing & operator=(Thing const &) = default;
    ~Thing() override {
        m_value = -1;
        --s_alive;
    }

    static StrongRefCreator<Thing> make(int value) {
        if (value < 0) return nullptr;
        return StrongRefCreator<Thing>(new Thing(value));
    }

    int value() const { return m_value; }

private:
    int m_value;
};

class SpecialThing : public Thing {
public:
    using Thing::Thing;
};

static_assert(sizeof(StrongRef<Thing>) == sizeof(void *));
static_assert(sizeof(PassiveRef<Thing>) == sizeof(void *));
static_assert(std::is_convertible_v<StrongRef<SpecialThing>, StrongRef<Thing>>);
static_assert(!std::is_convertible_v<StrongRef<Thing>, StrongRef<SpecialThing>>);
static_assert(!std::is_convertible_v<Thing *, StrongRef<Thing>>);
static_assert(!std::is_copy_constructible_v<StrongRefCreator<Thing>>);

class RefCountedTests : public testing::Test {
protected:
    ~RefCountedTests() override { EXPECT_EQ(s_alive.load(), 0); }
};

TEST_F(RefCountedTests, LastStrongRefDeletes) {
    StrongRef<Thing> a(new Thing(7));
    {
        StrongRef<Thing> const b = a;
        EXPECT_EQ(a->refCount(), 2U);
        EXPECT_EQ(a, b);
    }
    EXPECT_EQ(a->refCount(), 1U);
    EXPECT_EQ((*a).value(), 7);
    a.reset();
    EXPECT_FALSE(a);
    EXPECT_EQ(s_alive.load(), 0);
}

TEST_F(RefCountedTests, AssignmentAndMoveKeepTheCount) {
    StrongRef<Thing> a(new Thing(1));
    StrongRef<Thing> b(new Thing(2));
    b = a;
    EXPECT_EQ(s_alive.load(), 1);
    StrongRef<Thing> & self = a;
    a = self;
    EXPECT_EQ(a->refCount(), 2U);
    StrongRef<Thing> const c = std::move(b);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(c->refCount(), 2U);
    a = nullptr;
    EXPECT_EQ(c->refCount(), 1U);
}

TEST_F(RefCountedTests, DerivedConvertsToBase) {
    StrongRef<SpecialThing> special(new SpecialThing(3));
    StrongRef<Thing> thing = special;
    EXPECT_EQ(thing, special);
    EXPECT_EQ(thing, special.get());
    EXPECT_EQ(special.get(), thing.get());
    thing = std::move(special);
    EXPECT_EQ(thing->refCount(), 1U);
    PassiveRef<SpecialThing> const passive(static_cast<SpecialThing *>(thing.get()));
    PassiveRef<Thing> const base = passive;
    EXPECT_EQ(base, passive);
    EXPECT_EQ(base, thing);
}

TEST_F(RefCountedTests, OrderAndHashFollowTheAddress) {
    StrongRef<Thing> const a(new Thing);
    StrongRef<Thing> const b(new Thing);
    EXPECT_NE(a, b);
    EXPECT_TRUE((a < b) != (b < a));
    EXPECT_EQ((std::set<StrongRef<Thing>>{a, b, a}).size(), 2U);
    EXPECT_EQ((std::unordered_set<StrongRef<Thing>>{a, b, a}).size(), 2U);
}

TEST_F(RefCountedTests, CopyOfAnObjectStartsWithoutReferences) {
    StrongRef<Thing> const a(new Thing(5));
    PassiveRef<Thing> const passive(a);
    StrongRef<Thing> b(new Thing(*a));
    EXPECT_EQ(b->refCount(), 1U);
    EXPECT_FALSE(passive == b);
    *b = *a;
    EXPECT_EQ(b->refCount(), 1U);
}

TEST_F(RefCountedTests, AdoptAndDetachMoveACount) {
    StrongRef<Thing> a(new Thing);
    Thing * const raw = a.detach();
    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(raw->refCount(), 1U);
    StrongRef<Thing> const b = StrongRef<Thing>::adopt(raw);
    EXPECT_EQ(b->refCount(), 1U);
}

TEST_F(RefCountedTests, CreatorHandsTheObjectOver) {
    StrongRef<Thing> const a = Thing::make(4);
    EXPECT_EQ(a->value(), 4);
    EXPECT_EQ(a->refCount(), 1U);
    StrongRef<RefCounted> const base(Thing::make(5));
    EXPECT_TRUE(base);
    StrongRef<Thing> const none = Thing::make(-1);
    EXPECT_EQ(none, nullptr);
    auto creator = Thing::make(6);
    ASSERT_TRUE(creator);
    EXPECT_EQ(creator->value(), 6);
    StrongRef<Thing> const b = std::move(creator);
    EXPECT_FALSE(creator);
    EXPECT_EQ(b->refCount(), 1U);
}

TEST_F(RefCountedTests, CreatorDeletesWhatNobodyTook) {
    { auto const creator = Thing::make(1); }
    EXPECT_EQ(s_alive.load(), 0);
}

TEST_F(RefCountedTests, PassiveRefTestsNullOnceTheTargetIsGone) {
    StrongRef<Thing> strong(new Thing(9));
    PassiveRef<Thing> const passive(strong);
    PassiveRef<Thing> const copy = passive;
    EXPECT_EQ(strong->refCount(), 1U);
    EXPECT_TRUE(passive);
    EXPECT_EQ(passive->value(), 9);
    EXPECT_EQ(passive.lock(), strong);
    strong.reset();
    EXPECT_FALSE(passive);
    EXPECT_EQ(passive.get(), nullptr);
    EXPECT_EQ(passive.lock(), nullptr);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(copy, passive);
    EXPECT_EQ(copy, PassiveRef<Thing>());
}

TEST_F(RefCountedTests, LockKeepsTheTarget) {
    StrongRef<Thing> strong(new Thing(9));
    PassiveRef<Thing> const passive(strong);
    StrongRef<Thing> locked = passive.lock();
    strong.reset();
    EXPECT_EQ(locked->value(), 9);
    locked.reset();
    EXPECT_FALSE(passive);
}

// Its own constructor may take a passive reference, and an object on the stack may have one.
TEST_F(RefCountedTests, PassiveRefToAnObjectThatNobodyOwns) {
    PassiveRef<Thing> passive;
    {
        Thing const onStack(2);
        passive = PassiveRef<Thing>(const_cast<Thing *>(&onStack));
        EXPECT_EQ(passive->value(), 2);
    }
    EXPECT_FALSE(passive);

    auto * const raw = new Thing(3);
    passive = PassiveRef<Thing>(raw);
    StrongRef<Thing> strong = passive.lock();
    EXPECT_EQ(strong->refCount(), 1U);
    strong.reset();
    EXPECT_FALSE(passive);
}

// While an object is destroyed it is gone for others, and references that it makes to itself don't
// end it twice.
TEST_F(RefCountedTests, ReferencesMadeByTheDestructor) {
    struct Ending : Thing {
        explicit Ending(PassiveRef<Thing> & ref, bool & gone) : m_rRef(ref), m_rGone(gone) {}
        ~Ending() override {
            m_rGone = !m_rRef && !m_rRef.lock();
            StrongRef<Thing> const self(this);
            EXPECT_FALSE(PassiveRef<Thing>(self).lock());
        }
        PassiveRef<Thing> & m_rRef;
        bool & m_rGone;
    };
    PassiveRef<Thing> passive;
    bool gone = false;
    StrongRef<Thing> strong(new Ending(passive, gone));
    passive = strong;
    strong.reset();
    EXPECT_TRUE(gone);
}

TEST_F(RefCountedTests, ManyThreadsCountTogether) {
    StrongRef<Thing> const shared(new Thing(1));
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&shared] {
            for (int i = 0; i < 5000; ++i) {
                StrongRef<Thing> const mine = shared;
                PassiveRef<Thing> const passive(mine);
                ASSERT_EQ(passive.lock()->value(), 1);
            }
        });
    threads.clear();
    EXPECT_EQ(shared->refCount(), 1U);
}

// Several threads lock one passive reference while the last strong one goes: each gets either the
// whole object or none.
TEST_F(RefCountedTests, LockRacesWithTheLastRelease) {
    int got = 0;
    for (int round = 0; round < 500; ++round) {
        StrongRef<Thing> strong(new Thing(round));
        PassiveRef<Thing> const passive(strong);
        Vn::StartLine ready(4);
        std::atomic<int> locked{0};
        {
            std::vector<std::jthread> threads;
            for (int t = 0; t < 3; ++t)
                threads.emplace_back([&] {
                    ready.arriveAndWait();
                    PassiveRef<Thing> const copy = passive;
                    if (StrongRef<Thing> const mine = copy.lock()) {
                        EXPECT_EQ(mine->value(), round);
                        ++locked;
                    }
                });
            ready.arriveAndWait();
            strong.reset();
        }
        EXPECT_FALSE(passive);
        EXPECT_EQ(s_alive.load(), 0);
        got += locked.load();
    }
    RecordProperty("locked", got);
}

} // namespace
