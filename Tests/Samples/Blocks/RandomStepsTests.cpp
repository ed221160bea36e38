// Whatever is done to a document, its graph is that of the document saved and opened anew.

#include <algorithm>
#include <random>

#include "Platform/DataModel/IEntityObserver.h"
#include "Platform/Graphics/NodeObservers.h"
#include "Platform/Scene/NodeChange.h"
#include "Server/CommonData/Managed/TreePlace.h"
#include "Tests/Samples/Blocks/BlocksTesting.h"

namespace Vn::Blocks::Testing {

namespace {

// Changes the document now and then while it is told of a change, and its own subscriptions.
class Meddler : public IEntityObserver {
public:
    ~Meddler() override { leave(); }

    void watch(Entity & entity) {
        leave();
        m_rWatched = PassiveRef<Entity>(&entity);
        entity.subscribe(this);
    }
    void leave() {
        if (StrongRef<Entity> const watched = m_rWatched.lock()) watched->unsubscribe(this);
        m_rWatched.reset();
    }

    void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                   DataChange *) override {}
    void postChange(Entity * entity, DataChange::ETransact transact, DataChange::EChangeType,
                    DataChange *) override {
        if (m_bBusy || DataChange::test(transact, DataChange::TransactReplay)) return;
        m_bBusy = true;
        auto * const item = query<Item>(entity);
        if (item && item->isAlive()) {
            switch (m_told++ % 4) {
            case 0:
                static_cast<void>(setPlace(*item, {L"1", L"2", L"3"}, nullptr));
                break;
            case 1:
                static_cast<void>(moveItem(*item, nullptr));
                break;
            case 2:
                static_cast<void>(deleteItem(StrongRef<Item>(item)));
                break;
            default:
                leave();
            }
        }
        m_bBusy = false;
    }
    void preDeletion(Entity *, DataChange::ETransact) override { m_rWatched.reset(); }

private:
    PassiveRef<Entity> m_rWatched;
    bool m_bBusy = false;
    int m_told = 0;
};

class RandomSteps {
public:
    explicit RandomSteps(unsigned seed) : m_random(seed) {}

    Document & document() { return m_document; }

    void step() {
        switch (below(26)) {
        case 0:
        case 1:
        case 2:
        case 3: {
            StrongRef<Part> part;
            EShape const kind = static_cast<EShape>(below(3));
            std::vector<std::wstring> sizes(sizeNames(kind).size());
            for (std::wstring & size : sizes) size = std::to_wstring(1 + below(4));
            keep(makePart(*m_document.asset, kind, {sizes, {}, "steel"}, someAssembly(), part,
                          nullptr)
                     ? StrongRef<Item>(part)
                     : nullptr);
            break;
        }
        case 4:
        case 5: {
            std::vector<StrongRef<Item>> items;
            for (int i = below(3); i > 0; --i)
                if (StrongRef<Item> item = some()) items.push_back(item);
            StrongRef<Assembly> assembly;
            static_cast<void>(assemble(*m_document.asset, L"a", items, assembly));
            keep(StrongRef<Item>(assembly));
            break;
        }
        case 6:
        case 7:
        case 8:
            if (StrongRef<Item> const item = some())
                static_cast<void>(moveItem(*item, someAssembly()));
            break;
        case 9:
        case 10:
        case 11:
            if (StrongRef<Item> const item = some()) static_cast<void>(deleteItem(item));
            break;
        case 12:
        case 13:
            if (StrongRef<Item> const item = some())
                static_cast<void>(setPlace(*item, {number(), number(), number()}, nullptr));
            break;
        case 14:
        case 15:
            if (StrongRef<Item> const item = some())
                if (auto * const part = query<Part>(item.get()))
                    static_cast<void>(
                        setSize(*part, sizeNames(part->kind())[0], number(), nullptr));
            break;
        case 16:
            if (StrongRef<Item> const item = some())
                if (auto * const part = query<Part>(item.get()))
                    static_cast<void>(setMaterial(*part, below(2) ? "oak" : "brass"));
            break;
        case 17: {
            std::vector<StrongRef<Item>> copies;
            StrongRef<Item> const item = some();
            if (item && itemsFrom(*item).size() < 20)
                static_cast<void>(duplicate(*item, 1 + static_cast<std::size_t>(below(2)), copies));
            if (!copies.empty()) keep(copies.front());
            break;
        }
        case 18:
        case 19:
            for (int i = below(4); i >= 0; --i) static_cast<void>(m_document.history().undo());
            break;
        case 20:
            for (int i = below(4); i >= 0; --i) static_cast<void>(m_document.history().redo());
            break;
        case 21: { // several steps in one, and in half of the cases all taken back
            Transaction transaction(*m_document.asset, L"several");
            if (m_bNested) break;
            m_bNested = true;
            for (int i = below(6); i >= 0; --i) step();
            m_bNested = false;
            if (below(2)) transaction.commit();
            break;
        }
        case 22: // somewhere among its siblings
            if (StrongRef<Item> const item = some())
                if (StrongRef<Item> const other = some())
                    static_cast<void>(Managed::moveEntity(
                        {StrongRef<Entity>(item), item->managedParent()},
                        below(2) ? Managed::EMove::Before : Managed::EMove::After,
                        {StrongRef<Entity>(other), other->managedParent()}, L"reorder"));
            break;
        case 23:
            m_held.clear();
            break;
        case 24:
            if (StrongRef<Item> const item = some()) m_meddler.watch(*item);
            break;
        default:
            if (!m_held.empty())
                m_held.erase(m_held.begin() + below(static_cast<int>(m_held.size())));
        }
    }

private:
    int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    std::wstring number() { return std::to_wstring(below(5)); }

    // Holds some of what was made for a while.
    void keep(StrongRef<Item> item) {
        if (item && below(3) == 0) m_held.push_back(std::move(item));
    }
    // One that is held, also if it was deleted, or one of the document; null if there is none.
    StrongRef<Item> some() {
        if (!m_held.empty() && below(4) == 0)
            return m_held[static_cast<std::size_t>(below(static_cast<int>(m_held.size())))];
        std::vector<StrongRef<Item>> items = itemsOf(*m_document.asset);
        StrongRef<Item> found;
        while (!items.empty()) {
            found = items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
            auto const * const assembly = query<Assembly>(found.get());
            if (!assembly || below(3) == 0) break;
            items = itemsOf(*assembly);
        }
        return found;
    }
    Assembly * someAssembly() {
        StrongRef<Item> const item = some();
        return item && item->isAlive() ? query<Assembly>(item.get()) : nullptr;
    }

    std::mt19937 m_random;
    Document m_document;
    Meddler m_meddler;
    std::vector<StrongRef<Item>> m_held;
    bool m_bNested = false;
};

class RandomStepsTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(RandomStepsTest, LeaveTheGraphThatTheDocumentOpensWith) {
    RandomSteps steps(GetParam());
    for (int i = 1; i <= 2500; ++i) {
        steps.step();
        if (i % 25 != 0) continue;
        ASSERT_EQ(steps.document().graph(), steps.document().graphOpenedAnew())
            << "after step " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomStepsTest, ::testing::Range(1U, 5U));

} // namespace

} // namespace Vn::Blocks::Testing
