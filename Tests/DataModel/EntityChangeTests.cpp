// Brackets, their summaries, and the details of changes.

#include "Platform/DataModel/EntityChange.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/IEntityObserver.h"
#include "Tests/DataModel/TestEntities.h"

namespace Vn::Testing {
namespace {

using ::testing::ElementsAre;

class EntityChangeTests : public ::testing::Test {
protected:
    EntityChangeTests() : m_rAsset(Asset::make(nullptr)), m_rThing(Thing::make(*m_rAsset)) {
        Thing::s_log = &m_heard;
    }
    ~EntityChangeTests() override { Thing::s_log = nullptr; }

    StrongRef<Asset> m_rAsset;
    StrongRef<Thing> m_rThing;
    std::vector<std::string> m_heard;
};

EntityChange bracket(Entity * entity, DataChange::ETiming timing = DataChange::TimingPreAndPost,
                     DataChange::EChangeType type = DataChange::ChangeValue) {
    return EntityChange(entity, DataChange::TransactDirect, type, timing, nullptr, true);
}

TEST_F(EntityChangeTests, TellsBeforeAndAfterAsItsTimingSays) {
    { EntityChange const change = bracket(m_rThing.get()); }
    EXPECT_THAT(m_heard, ElementsAre("pre 1", "post 1"));
    m_heard.clear();
    { EntityChange const change = bracket(m_rThing.get(), DataChange::TimingPre); }
    EXPECT_THAT(m_heard, ElementsAre("pre 1"));
    m_heard.clear();
    { EntityChange const change = bracket(m_rThing.get(), DataChange::TimingPost); }
    EXPECT_THAT(m_heard, ElementsAre("post 1"));
}

TEST_F(EntityChangeTests, OuterChangeIsTheBracketThatOpenedFirstOnTheEntity) {
    StrongRef<Thing> const other = Thing::make(*m_rAsset);
    EXPECT_EQ(m_rThing->outerChange(), nullptr);
    {
        EntityChange const first = bracket(m_rThing.get());
        EntityChange const between = bracket(other.get());
        EntityChange const second = bracket(m_rThing.get());
        EXPECT_EQ(m_rThing->outerChange(), &first);
        EXPECT_EQ(other->outerChange(), &between);
    }
    EXPECT_EQ(m_rThing->outerChange(), nullptr);
    EXPECT_EQ(other->outerChange(), nullptr);
}

class Summarizer : public EntityChangeSummarizer {
public:
    explicit Summarizer(std::vector<std::string> & heard) : m_heard(heard) {}
    ~Summarizer() override { m_heard.push_back("gone"); }

private:
    void onPreChange(DataChange::EChangeType type) override { tell("summary pre ", type); }
    void onPostChange(DataChange::EChangeType type) override { tell("summary post ", type); }
    void tell(char const * what, DataChange::EChangeType type) {
        std::wstring const text = DataChange::typeText(type);
        m_heard.push_back(what + std::string(text.begin(), text.end()));
    }
    std::vector<std::string> & m_heard;
};

TEST_F(EntityChangeTests, ASummarizerHearsOfTheEndOfItsBracketAndEndsWithIt) {
    {
        EntityChange outer =
            bracket(m_rThing.get(), DataChange::TimingPreAndPost, DataChange::ChangeStructural);
        EXPECT_EQ(outer.findSummarizer(EntityChangeSummarizer::interfaceId()), nullptr);
        {
            EntityChange const inner =
                bracket(m_rThing.get(), DataChange::TimingPreAndPost, DataChange::ChangeChildren);
            auto * const summarizer = new Summarizer(m_heard);
            m_rThing->outerChange()->add(summarizer);
            EXPECT_EQ(outer.findSummarizer(EntityChangeSummarizer::interfaceId()), summarizer);
            summarizer->preChange(inner.type(), inner.timing());
        }
        m_heard.push_back("end");
    }
    EXPECT_THAT(m_heard, ElementsAre("pre 1", "pre 1", "summary pre ChangeChildren", "post 1",
                                     "end", "post 1", "summary post ChangeChildren", "gone"));
}

TEST_F(EntityChangeTests, AnExceptionClosesTheBracketsThatItLeaves) {
    try {
        EntityChange const outer = bracket(m_rThing.get());
        EntityChange const inner = bracket(m_rThing.get());
        throw std::runtime_error("on the way");
    } catch (std::runtime_error const &) {}
    EXPECT_THAT(m_heard, ElementsAre("pre 1", "pre 1", "post 1", "post 1"));
    EXPECT_EQ(m_rThing->outerChange(), nullptr);
}

TEST_F(EntityChangeTests, WithoutUndoableAChangeLeavesTheHistoryAsItIs) {
    {
        Transaction transaction(*m_rAsset, L"change");
        m_rThing->set(&Thing::m_int, 1);
        transaction.commit();
    }
    {
        EntityChange const change(m_rThing.get(), DataChange::TransactDirect,
                                  DataChange::ChangeValue, DataChange::TimingPreAndPost, nullptr,
                                  false);
        m_rThing->m_double = 5;
    }
    EXPECT_TRUE(m_rAsset->history().undo().ok());
    EXPECT_EQ(m_rThing->m_int, 0);
    EXPECT_EQ(m_rThing->m_double, 5);
}

TEST_F(EntityChangeTests, WhatIsUndoableWithinABracketThatIsNotIsRecorded) {
    {
        Transaction transaction(*m_rAsset, L"change");
        EntityChange const outer(m_rThing.get(), DataChange::TransactDirect,
                                 DataChange::ChangeStructural, DataChange::TimingPreAndPost,
                                 nullptr, false);
        m_rThing->m_double = 5;
        for (int i = 1; i <= 2; ++i) {
            EntityChange const inner = bracket(m_rThing.get());
            EntityChange const innermost(m_rThing.get(), DataChange::TransactDirect,
                                         DataChange::ChangeValue, DataChange::TimingPreAndPost,
                                         nullptr, false);
            m_rThing->m_int = i;
            m_rThing->m_numbers.push_back(i);
        }
        EXPECT_EQ(m_rThing->outerChange(), &outer);
        transaction.commit();
    }
    ASSERT_EQ(m_rAsset->history().undoSteps(), 1U);
    m_heard.clear();
    EXPECT_TRUE(m_rAsset->history().undo().ok());
    EXPECT_THAT(m_heard, ElementsAre("pre 1 replay", "post 1 replay"));
    EXPECT_EQ(m_rThing->m_int, 0);
    EXPECT_TRUE(m_rThing->m_numbers.empty());
    EXPECT_EQ(m_rThing->m_double, 5);
    EXPECT_TRUE(m_rAsset->history().redo().ok());
    EXPECT_EQ(m_rThing->m_int, 2);
    EXPECT_EQ(m_rThing->m_numbers.size(), 2U);
}

// Outside a transaction nothing else keeps the object.
TEST_F(EntityChangeTests, AnObjectThatDiesWithinItsBracketLastsUntilThatCloses) {
    struct Dropper : IEntityObserver {
        void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {
            m_rThing.reset();
        }
        void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                        DataChange *) override {
            ++m_told;
        }
        void preDeletion(Entity *, DataChange::ETransact) override { ++m_deleted; }
        StrongRef<Thing> m_rThing;
        int m_told = 0;
        int m_deleted = 0;
    } dropper;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    dropper.m_rThing = Thing::make(*asset);
    PassiveRef<Thing> const watch(dropper.m_rThing.get());
    Thing * const thing = dropper.m_rThing.get();
    thing->subscribe(&dropper);
    thing->set(&Thing::m_int, 1);
    EXPECT_EQ(dropper.m_deleted, 1);
    EXPECT_EQ(dropper.m_told, 1);
    EXPECT_FALSE(watch);
    EXPECT_EQ(asset->entities(), 0U);
}

TEST_F(EntityChangeTests, ObserversMayComeAndGoWhileTheyAreTold) {
    struct Observer : IEntityObserver {
        void preChange(Entity * entity, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {
            ++m_told;
            entity->unsubscribe(this);
            entity->unsubscribe(m_pOther);
            entity->subscribe(m_pNext);
        }
        void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                        DataChange *) override {
            ++m_toldAfter;
        }
        void preDeletion(Entity *, DataChange::ETransact) override { ++m_toldOfTheEnd; }
        int m_told = 0;
        int m_toldAfter = 0;
        int m_toldOfTheEnd = 0;
        IEntityObserver * m_pOther = nullptr;
        IEntityObserver * m_pNext = nullptr;
    } first, second, third;
    first.m_pOther = &second;
    first.m_pNext = &third;
    m_rThing->subscribe(&first);
    m_rThing->subscribe(&first);
    m_rThing->subscribe(&second);
    m_rThing->subscribe(nullptr);
    { EntityChange const change = bracket(m_rThing.get()); }
    EXPECT_EQ(first.m_told, 1);
    EXPECT_EQ(first.m_toldAfter, 0);
    EXPECT_EQ(second.m_told, 0);
    EXPECT_EQ(third.m_told, 0);
    EXPECT_EQ(third.m_toldAfter, 1);
    third.m_pOther = third.m_pNext = nullptr;
    m_rThing.reset();
    EXPECT_EQ(third.m_toldOfTheEnd, 1);
    EXPECT_EQ(first.m_toldOfTheEnd, 0);
}

TEST(DataChangeTests, BitsAreReadByTest) {
    EXPECT_TRUE(DataChange::test(DataChange::TransactReplay, DataChange::TransactReplay));
    EXPECT_FALSE(DataChange::test(DataChange::TransactDirect, DataChange::TransactReplay));
    EXPECT_TRUE(DataChange::test(static_cast<DataChange::ETransact>(1 | 8),
                                 DataChange::TransactUnsummarized));
}

TEST(DataChangeTests, TypesHaveWords) {
    EXPECT_EQ(DataChange::typeText(DataChange::ChangeStructural), L"ChangeStructural");
    EXPECT_EQ(DataChange::typeText(DataChange::ChangeValue), L"ChangeValue");
    EXPECT_EQ(DataChange::typeText(static_cast<DataChange::EChangeType>(0x30)),
              L"ChangeValue | ChangeChildren");
    EXPECT_EQ(DataChange::typeText(static_cast<DataChange::EChangeType>(0x11)), L"ChangeValue | 1");
}

TEST(DataChangeTests, ACopyHasItsOwnOfWhatTheOtherOwned) {
    DataChange borrowed;
    DataChange details;
    details.addDataChange(new DataChange, true);
    details.addDataChange(&borrowed, false);
    details.addDataChange(nullptr, true);
    ASSERT_EQ(details.dataChanges(), 2U);
    std::unique_ptr<DataChange> const copy = details.clone();
    EXPECT_NE(copy->dataChange(0), details.dataChange(0));
    EXPECT_EQ(copy->dataChange(1), &borrowed);
    EXPECT_EQ(copy->dataChange(2), nullptr);
    EXPECT_EQ(copy->find(DataChange::interfaceId()), copy.get());
}

} // namespace
} // namespace Vn::Testing
