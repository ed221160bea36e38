// Random work on a document beside a model of it, which keeps every state whole.

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/TestEntities.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {
namespace {

using Id = unsigned long long;

struct Node {
    int number = 0;
    double real = 0;
    std::wstring name;
    Id companion = 0;
    std::vector<Id> children;
    std::vector<Id> friends; // 0 in the slot of one that is gone
    bool operator==(Node const &) const = default;
};

// A document as the model has it: all nodes, the root first.
using Model = std::map<Id, Node>;

Model read(Asset const & asset) {
    Model model;
    auto const id = [](Entity const * entity) { return entity ? entity->id() : 0; };
    for (Entity * const entity : asset.allEntities()) {
        Thing const & thing = *query<Thing>(entity);
        Node & node = model[thing.id()];
        node.number = thing.m_int;
        node.real = thing.m_double;
        node.name = thing.m_name;
        node.companion = id(thing.m_rFriend.get());
        for (auto const & child : thing.m_children) node.children.push_back(child->id());
        for (auto const & other : thing.m_friends) node.friends.push_back(id(other.get()));
    }
    return model;
}

std::string text(Model const & model) {
    std::ostringstream out;
    for (auto const & [id, node] : model) {
        out << id << ": " << node.number << ' ' << node.real << ' ' << node.name.size()
            << " friend " << node.companion << " children";
        for (Id const child : node.children) out << ' ' << child;
        out << " friends";
        for (Id const other : node.friends) out << ' ' << other;
        out << '\n';
    }
    return out.str();
}

class Worker {
public:
    explicit Worker(unsigned seed) : m_random(seed) {
        StrongRef<Asset> made = Asset::make(nullptr);
        m_rAsset = made;
        StrongRef<Thing> const root = Thing::make(*m_rAsset, L"root");
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(root, "root");
        m_states.push_back(read(*m_rAsset));
        m_model = m_states.back();
    }

    // One step, and whether the document then is what the model says.
    bool step() {
        unsigned const what = below(100);
        if (what < 60) {
            transaction(0);
        } else if (what < 78) {
            m_did = "undo";
            if (m_rAsset->history().undo().ok() != (m_present > 0)) return false;
            if (m_present > 0) --m_present;
            m_model = m_states[m_present];
        } else if (what < 93) {
            m_did = "redo";
            bool const can = m_present + 1 < m_states.size();
            if (m_rAsset->history().redo().ok() != can) return false;
            if (can) ++m_present;
            m_model = m_states[m_present];
        } else if (what < 98)
            return saveAndGoOn() && agrees();
        else
            return saveAndLoad() && agrees();
        return agrees();
    }

    bool agrees() const { return read(*m_rAsset) == m_model; }
    std::string did() const { return m_did; }
    std::string difference() const {
        return "model:\n" + text(m_model) + "document:\n" + text(read(*m_rAsset));
    }

private:
    unsigned below(unsigned limit) {
        return std::uniform_int_distribution<unsigned>(0, limit - 1)(m_random);
    }
    Id any() {
        auto i = m_model.begin();
        std::advance(i, below(static_cast<unsigned>(m_model.size())));
        return i->first;
    }
    StrongRef<Thing> thing(Id id) const {
        return StrongRef<Thing>(query<Thing>(m_rAsset->entity(id).get()));
    }
    Id parentOf(Id id) const {
        for (auto const & [parent, node] : m_model)
            for (Id const child : node.children)
                if (child == id) return parent;
        return 0;
    }
    bool isBelow(Id id, Id ancestor) const {
        for (; id; id = parentOf(id))
            if (id == ancestor) return true;
        return false;
    }
    void forget(Id id) {
        std::vector<Id> const children = m_model[id].children;
        m_model.erase(id);
        for (Id const child : children) forget(child);
        for (auto & [other, node] : m_model) {
            if (node.companion == id) node.companion = 0;
            for (Id & slot : node.friends)
                if (slot == id) slot = 0;
        }
    }

    void transaction(unsigned depth) {
        Model const before = m_model;
        Transaction transaction(*m_rAsset, L"random");
        for (unsigned n = below(6) + 1; n--;)
            if (depth < 2 && below(8) == 0)
                this->transaction(depth + 1);
            else
                change();
        if (below(4) == 0) {
            m_did += ", abort";
            transaction.abort();
            m_model = before;
            return;
        }
        m_did += ", commit";
        transaction.commit();
        if (depth == 0 && m_rAsset->history().undoSteps() != m_present) {
            m_states.resize(m_present + 1);
            m_states.push_back(m_model);
            ++m_present;
        }
    }

    void change() {
        Id const id = any();
        StrongRef<Thing> const entity = thing(id);
        Node & node = m_model[id];
        switch (below(9)) {
        case 0:
        case 1: {
            m_did = "create";
            std::wstring const name(below(30), L'n');
            StrongRef<Thing> const made = Thing::make(*m_rAsset, name);
            unsigned const place = below(static_cast<unsigned>(node.children.size()) + 1);
            entity->insert(made, place);
            node.children.insert(node.children.begin() + place, made->id());
            m_model[made->id()].name = name;
            break;
        }
        case 2: {
            m_did = "delete";
            Id const parent = parentOf(id);
            if (!parent || (m_model.size() > 20 && below(3))) break;
            auto & siblings = m_model[parent].children;
            auto const place = std::find(siblings.begin(), siblings.end(), id) - siblings.begin();
            thing(parent)->remove(static_cast<std::size_t>(place));
            siblings.erase(siblings.begin() + place);
            forget(id); // the entity itself goes when `entity` does
            break;
        }
        case 3:
        case 4: {
            m_did = "move";
            Id const parent = parentOf(id);
            Id const target = any();
            if (!parent || isBelow(target, id)) break;
            auto & siblings = m_model[parent].children;
            auto const place = std::find(siblings.begin(), siblings.end(), id) - siblings.begin();
            thing(parent)->remove(static_cast<std::size_t>(place));
            siblings.erase(siblings.begin() + place);
            auto & others = m_model[target].children;
            unsigned const there = below(static_cast<unsigned>(others.size()) + 1);
            thing(target)->insert(entity, there);
            others.insert(others.begin() + there, id);
            break;
        }
        case 5:
            m_did = "change";
            node.number = static_cast<int>(below(5));
            entity->set(&Thing::m_int, node.number);
            if (below(2)) {
                node.real = below(7) * 0.25;
                entity->set(&Thing::m_double, node.real);
            }
            break;
        case 6:
            m_did = "rename";
            node.name = std::wstring(below(40), static_cast<wchar_t>(L'a' + below(26)));
            entity->set(&Thing::m_name, node.name);
            break;
        case 7: {
            m_did = "befriend";
            Id const other = any();
            node.companion = other;
            entity->set(&Thing::m_rFriend, PassiveRef<Entity>(thing(other)));
            node.friends.push_back(other);
            auto friends = entity->m_friends;
            friends.emplace_back(thing(other));
            entity->set(&Thing::m_friends, std::move(friends));
            break;
        }
        default: {
            m_did = "reorder";
            if (node.children.size() < 2) break;
            std::swap(node.children.front(), node.children.back());
            auto children = entity->m_children;
            std::swap(children.front(), children.back());
            entity->set(&Thing::m_children, std::move(children));
        }
        }
    }

    bool saveAndGoOn() {
        m_did = "save";
        Status const status = m_rAsset->file().empty()
                                  ? DocumentFile::saveAs(*m_rAsset, m_file.path())
                                  : DocumentFile::save(*m_rAsset);
        if (!status.ok()) m_did += ": " + status.toString();
        return status.ok() && !m_rAsset->isDirty();
    }

    // The slot of a friend that is gone is a null reference in the file, and stays one.
    bool saveAndLoad() {
        if (!saveAndGoOn()) return false;
        m_did = "load";
        StrongRef<Asset> loaded;
        Status const status = DocumentFile::load(m_file.path(), nullptr, loaded);
        if (!status.ok()) {
            m_did += ": " + status.toString();
            return false;
        }
        m_rAsset = loaded;
        m_states = {m_model};
        m_present = 0;
        return true;
    }

    std::mt19937 m_random;
    TemporaryFile const m_file;
    StrongRef<Asset> m_rAsset;
    Model m_model;
    std::vector<Model> m_states;
    std::size_t m_present = 0;
    std::string m_did;
};

TEST(RandomOperationsTests, AgreesWithTheModelAfterEveryStep) {
    char const * const given = std::getenv("VN_TEST_SEED");
    unsigned const seed =
        given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
    std::cout << "seed " << seed << '\n'; // VN_TEST_SEED runs it again
    Worker worker(seed);
    for (int i = 0; i < 10000; ++i)
        ASSERT_TRUE(worker.step())
            << "seed " << seed << ", step " << i << ", " << worker.did() << '\n'
            << worker.difference();
}

} // namespace
} // namespace Vn::Testing
