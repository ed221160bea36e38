// Groups, details, requests and collections whose users keep references to entities beyond a step.

#include <cstdlib>
#include <iostream>
#include <random>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "Server/CommonData/Managed/CustomGroupDeleteRequest.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using CommonData::CommonBaseRootCollection;

class HeldReferencesTests : public testing::Test {
protected:
    HeldReferencesTests() : m_rTop(Group::make(m_document.segment())) {
        m_document.segment()->addRoot(m_rTop, "top");
    }

    ChangeHistory & history() { return m_document.asset().history(); }
    void expectAliveChildren(ManagedGroupEntity const & group) {
        for (auto const & child : group.childrenVector()) EXPECT_TRUE(child && child->isAlive());
    }

    Document const m_document;
    StrongRef<Group> const m_rTop;
};

TEST_F(HeldReferencesTests, AGroupThatAPanelHoldsIsDeletedLetGoAndBroughtBack) {
    StrongRef<CustomGroups> const groups = CustomGroups::make(PassiveRef<Entity>(m_rTop));
    StrongRef<CustomGroup> const holder = CustomGroup::make(groups, nullptr);
    StrongRef<CustomGroup> panel;
    m_document.step([&] {
        panel = CustomGroup::make(groups, holder.get());
        holder->addGroupChild(panel.get());
    });
    unsigned const index = panel->creationIndex();
    EXPECT_TRUE(m_document.asset().run(CustomGroupDeleteRequest::make(&m_document.asset(), panel)));
    EXPECT_EQ(groups->groups(), 1U);
    m_document.step([&] { StrongRef<Leaf> const made = Leaf::make(PassiveRef<Entity>(m_rTop)); });
    panel.reset();
    m_document.undo();
    m_document.undo();
    ASSERT_EQ(groups->groups(), 2U);
    expectAliveChildren(*groups);
    EXPECT_EQ(groups->group(1)->creationIndex(), index);
    EXPECT_EQ(holder->groupChild(0), groups->group(1).get());
    m_document.redo();
    m_document.redo();
    EXPECT_EQ(groups->groups(), 1U);
}

TEST_F(HeldReferencesTests, AnObserverKeepsACloneOfTheDetails) {
    struct Keeper : IEntityObserver {
        void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                       DataChange * details) override {
            if (details) m_pKept = details->clone();
        }
        void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                        DataChange *) override {}
        void preDeletion(Entity *, DataChange::ETransact) override {}
        std::unique_ptr<DataChange> m_pKept;
    } keeper;
    StrongRef<Leaf> leaf = Leaf::make(PassiveRef<Entity>(m_rTop));
    StrongRef<Leaf> const other = Leaf::make(PassiveRef<Entity>(m_rTop));
    leaf->value(5);
    history().clear();
    m_rTop->subscribe(&keeper);
    m_document.step([&] { m_rTop->removeChild(leaf); });
    m_rTop->unsubscribe(&keeper);
    PassiveRef<Leaf> const gone(leaf);
    leaf.reset();
    EXPECT_TRUE(gone); // the clone holds it
    m_document.step([&] { other->value(1); });
    keeper.m_pKept.reset();
    EXPECT_FALSE(gone);
    m_document.undo();
    m_document.undo();
    EXPECT_EQ(m_rTop->children(), 2U);
    expectAliveChildren(*m_rTop);
    EXPECT_EQ(gone->value(), 5);
    EXPECT_EQ(gone->parent(), m_rTop);
}

TEST_F(HeldReferencesTests, AnEntityWhoseMakingIsUndoneIsRefusedWhereItIsTried) {
    StrongRef<Leaf> leaf;
    StrongRef<Group> group;
    m_document.step([&] {
        leaf = Leaf::make(PassiveRef<Entity>(m_rTop));
        group = Group::make(PassiveRef<Entity>(m_rTop));
    });
    m_document.undo();
    ASSERT_FALSE(leaf->isAlive());
    m_rTop->addChild(leaf);
    m_rTop->insertChild(leaf, 0);
    EXPECT_EQ(m_rTop->children(), 0U);
    EXPECT_FALSE(Leaf::make(PassiveRef<Entity>(group)));
    StrongRef<Leaf> const own = Leaf::make(m_document.segment());
    own->parent(StrongRef<Entity>(group));
    EXPECT_FALSE(own->parent());
    m_document.segment()->addRoot(leaf, "leaf");
    EXPECT_FALSE(m_document.segment()->rootEntity("leaf"));
}

TEST_F(HeldReferencesTests, ACollectionFollowsWhatIsLetGoLater) {
    StrongRef<CommonBaseRootCollection> const leaves =
        CommonBaseRootCollection::make(m_document.segment(), "leaves", Leaf::s_metaType());
    StrongRef<Leaf> leaf = Leaf::make(PassiveRef<Entity>(m_rTop));
    StrongRef<Leaf> const other = Leaf::make(PassiveRef<Entity>(m_rTop));
    m_document.step([&] { m_rTop->removeChild(leaf); });
    m_document.step([&] { other->value(1); });
    m_document.undo();
    leaf.reset();
    EXPECT_EQ(leaves->rootElements(), 1U);
    EXPECT_EQ(history().redoSteps(), 1U);
    m_document.redo();
    EXPECT_EQ(other->value(), 1);
    m_document.undo();
    m_document.undo();
    ASSERT_EQ(leaves->rootElements(), 2U);
    EXPECT_EQ(leaves->rootElement(0), m_rTop->child(0));
    EXPECT_EQ(leaves->rootElement(1), other);
}

// A tree, custom groups and a collection under a caller that keeps whatever it gets hold of.
class Walk {
public:
    explicit Walk(unsigned seed) : m_random(seed), m_rTop(Group::make(m_document.segment())) {
        m_document.segment()->addRoot(m_rTop, "top");
        m_rGroups = CustomGroups::make(PassiveRef<Entity>(m_rTop));
        m_rHolder = CustomGroup::make(m_rGroups, nullptr);
        m_rLeaves =
            CommonBaseRootCollection::make(m_document.segment(), "leaves", Leaf::s_metaType());
        m_rTop->subscribe(&m_keeper);
        m_document.asset().history().clear();
        m_states.push_back(state());
    }
    ~Walk() { m_rTop->unsubscribe(&m_keeper); }

    // One thing; an empty text if the document then is as it has to be.
    std::string step() {
        switch (below(10)) {
        case 0:
        case 1:
        case 2:
        case 3: {
            bool isStep = false;
            {
                Transaction transaction(m_document.asset(), L"walk");
                for (unsigned n = below(4) + 1; n--;) change();
                if (below(5)) isStep = transaction.commit();
            }
            if (isStep) {
                m_states.resize(m_present + 1);
                m_states.push_back(state());
                ++m_present;
            }
            break;
        }
        case 4:
        case 5:
            return move(true);
        case 6:
            return move(false);
        case 7:
            hold();
            break;
        case 8: {
            auto const all = std::exchange(m_held, {});
            break;
        }
        default:
            letGo();
        }
        return check();
    }

private:
    // Keeps clones of the details of changes.
    struct Keeper : IEntityObserver {
        void keep(DataChange const * details) {
            if (details && m_kept.size() < 8) m_kept.push_back(details->clone());
        }
        void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                       DataChange * details) override {
            keep(details);
        }
        void postChange(Entity *, DataChange::ETransact transact, DataChange::EChangeType,
                        DataChange * details) override {
            // Those of replays lead to entities without holding them.
            if (!DataChange::test(transact, DataChange::TransactReplay)) keep(details);
        }
        void preDeletion(Entity *, DataChange::ETransact) override {}
        std::vector<std::unique_ptr<DataChange>> m_kept;
    };

    unsigned below(unsigned limit) { return static_cast<unsigned>(m_random() % limit); }

    StrongRef<ManagedEntity> any() {
        std::vector<StrongRef<ManagedEntity>> all;
        for (Entity * const entity : m_document.asset().allEntities())
            if (query<Leaf>(entity) || query<Group>(entity))
                all.emplace_back(query<ManagedEntity>(entity));
        return all[below(static_cast<unsigned>(all.size()))];
    }
    StrongRef<Group> anyGroup() {
        for (int i = 0; i < 20; ++i)
            if (auto * const group = query<Group>(any().get())) return StrongRef<Group>(group);
        return m_rTop;
    }
    bool isWithin(StrongRef<Entity> entity, Entity const * ancestor) {
        for (; entity; entity = ManagedEntityUtils::parentOf(*entity))
            if (entity.get() == ancestor) return true;
        return false;
    }

    void change() {
        StrongRef<ManagedEntity> const entity = any();
        StrongRef<Group> const group = anyGroup();
        switch (below(9)) {
        case 0:
        case 1:
            m_held.emplace_back(
                StrongRef<Leaf>(Leaf::make(PassiveRef<Entity>(group), below(2) ? 0 : ~0U)));
            break;
        case 2:
            m_held.emplace_back(StrongRef<Group>(Group::make(PassiveRef<Entity>(group))));
            break;
        case 3: {
            StrongRef<ManagedGroupEntity> const parent = entity->managedParent();
            if (!parent || entity == m_rTop) break;
            parent->removeChild(entity);
            entity->nullParent();
            if (below(2)) m_held.emplace_back(entity);
            break;
        }
        case 4: // what is in no group, or was taken out of one
            if (!entity->managedParent() && entity != m_rTop && !isWithin(group, entity.get()))
                group->addChild(entity);
            break;
        case 5: {
            StrongRef<ManagedEntity> const other = any();
            if (other->parent() == entity->parent())
                ManagedEntityUtils::reorderEntity(entity, other, below(2) == 0);
            break;
        }
        case 6:
            if (auto * const leaf = query<Leaf>(entity.get()))
                leaf->value(static_cast<int>(below(9)));
            break;
        case 7: {
            StrongRef<CustomGroup> const made = CustomGroup::make(m_rGroups, m_rHolder.get());
            m_rHolder->addGroupChild(made.get());
            m_requests.push_back(CustomGroupDeleteRequest::make(&m_document.asset(), made));
            break;
        }
        default:
            if (!m_requests.empty()) {
                static_cast<void>(m_requests.back()->execute());
                if (below(2)) m_requests.pop_back();
            }
        }
    }

    void hold() { m_held.emplace_back(any()); }
    void letGo() {
        switch (below(3)) {
        case 0:
            if (!m_held.empty()) {
                StrongRef<Entity> const last = std::move(m_held.back());
                m_held.pop_back();
            }
            break;
        case 1: {
            auto const all = std::exchange(m_keeper.m_kept, {});
            break;
        }
        default: {
            auto const all = std::exchange(m_requests, {});
        }
        }
    }

    std::string move(bool undoing) {
        ChangeHistory & history = m_document.asset().history();
        bool const can = undoing ? m_present > 0 : m_present + 1 < m_states.size();
        if ((undoing ? history.undo() : history.redo()).ok() != can)
            return "a step is done exactly if there is one";
        if (!can) return {};
        undoing ? --m_present : ++m_present;
        return check();
    }

    // All that is reached from the roots.
    std::string state() const {
        std::set<unsigned long long> reached;
        std::ostringstream out;
        std::vector<Entity *> way{m_rTop.get()};
        while (!way.empty()) {
            Entity * const entity = way.back();
            way.pop_back();
            reached.insert(entity->id());
            out << entity->id() << (entity->isAlive() ? "" : " dead");
            if (auto const * const leaf = query<Leaf>(entity)) out << " = " << leaf->value();
            if (auto const * const group = query<ManagedGroupEntity>(entity)) {
                out << ':';
                for (auto const & child : group->childrenVector()) {
                    out << ' ' << child->id();
                    way.push_back(child.get());
                }
            }
            out << '\n';
        }
        // References that own nothing lead to what is held, too; that is left out.
        out << "members:";
        for (auto const & member : m_rHolder->groupChildrenVector())
            if (member && reached.contains(member->id())) out << ' ' << member->id();
        out << "\nleaves:";
        for (unsigned i = 0; i < m_rLeaves->rootElements(); ++i)
            if (StrongRef<Entity> const leaf = m_rLeaves->rootElement(i);
                leaf && reached.contains(leaf->id()))
                out << ' ' << leaf->id();
        out << '\n';
        return out.str();
    }

    std::string check() {
        ChangeHistory const & history = m_document.asset().history();
        if (history.undoSteps() != m_present ||
            history.redoSteps() != m_states.size() - m_present - 1)
            return "there are " + std::to_string(history.undoSteps()) + " and " +
                   std::to_string(history.redoSteps()) + " steps, not " +
                   std::to_string(m_present) + " and " +
                   std::to_string(m_states.size() - m_present - 1);
        std::string const now = state();
        if (now.find("dead") != std::string::npos) return "a dead entity is listed:\n" + now;
        if (now == m_states[m_present]) return {};
        return "was:\n" + m_states[m_present] + "is:\n" + now;
    }

    std::mt19937 m_random;
    Document const m_document;
    Keeper m_keeper;
    StrongRef<Group> const m_rTop;
    StrongRef<CustomGroups> m_rGroups;
    StrongRef<CustomGroup> m_rHolder;
    StrongRef<CommonBaseRootCollection> m_rLeaves;
    std::vector<StrongRef<Entity>> m_held;
    std::vector<std::unique_ptr<CustomGroupDeleteRequest>> m_requests;
    std::vector<std::string> m_states;
    std::size_t m_present = 0;
};

// VN_TEST_SEEDS sets how many walks there are, VN_TEST_SEED the first.
TEST(ManagedWalkTests, TheTreeIsWhatTheStepsSayWhateverIsHeld) {
    char const * const many = std::getenv("VN_TEST_SEEDS");
    char const * const given = std::getenv("VN_TEST_SEED");
    unsigned const seeds = many ? static_cast<unsigned>(std::strtoul(many, nullptr, 10)) : 20;
    unsigned const first =
        given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
    std::cout << "seeds " << first << " to " << first + seeds - 1 << '\n';
    for (unsigned seed = first; seed != first + seeds; ++seed) {
        Walk walk(seed);
        for (int i = 0; i < 300; ++i) {
            std::string const wrong = walk.step();
            ASSERT_EQ(wrong, "") << "seed " << seed << ", step " << i;
        }
    }
}

} // namespace

} // namespace Vn::Managed::Testing
