// A walk through a document by a caller that keeps references.
//
// Operations are drawn from a source of numbers: entities are made, listed, owned, removed,
// renamed, linked and made roots within transactions, which nest, commit and abort; steps are
// undone and redone; documents are saved, loaded, and migrated from an older version; and all the
// while the caller and an observer take references to entities and let go of them at any time,
// within a transaction, between two, and while they are told of changes.
//
// Beside the document goes a model of it, which keeps each state whole and knows nothing of
// references that callers hold.  After each operation these laws are checked:
//
//   * What the model reaches from the roots is alive, and every alive entity is as the model has
//     it: numbers, names, words, and whom it owns, in order.
//   * A passive reference leads where the model says if that is alive, and is null otherwise.
//   * What is alive is owned or held: reached from a root or from a reference that a caller keeps.
//   * There are as many steps to undo and redo as the model has states before and after the present
//     one.
//   * What was saved is clean, opens, and is the document.  What hooks of a migration changed isn't
//     clean.

#ifndef VN_TESTS_DATAMODEL_DOCUMENTWALK_H
#define VN_TESTS_DATAMODEL_DOCUMENTWALK_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Platform/DataModel/IEntityObserver.h"
#include "Tests/DataModel/TestEntities.h"

namespace Vn::Testing {

class DocumentWalk {
public:
    // A number from 0 to below `limit`; limit is at least 1.
    using Source = std::function<unsigned(unsigned limit)>;

    // `file` is written to by saves; empty for a walk without files.
    DocumentWalk(Source source, std::filesystem::path file);
    ~DocumentWalk();
    DocumentWalk(DocumentWalk const &) = delete;
    DocumentWalk & operator=(DocumentWalk const &) = delete;

    // Does one thing, and checks the laws.  False if one is broken.
    bool step();
    // What was done last, and what is wrong after it.
    std::string const & did() const { return m_did; }
    std::string const & wrong() const { return m_wrong; }

private:
    using Id = unsigned long long;

    struct Node {
        int number = 0;
        std::wstring name;
        std::vector<std::wstring> words;
        Id owned = 0;
        Id companion = 0;
        std::vector<Id> children;
        std::vector<Id> friends;
    };
    // All that is or was there in a state, and the roots.
    struct Model {
        std::map<Id, Node> nodes;
        std::map<std::string, Id> roots;
    };

    // Keeps references to entities of whose changes it is told.
    class Keeper : public IEntityObserver {
    public:
        explicit Keeper(DocumentWalk & walk) : m_walk(walk) {}
        void preChange(Entity * entity, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {
            keep(entity);
        }
        void postChange(Entity * entity, DataChange::ETransact, DataChange::EChangeType,
                        DataChange *) override {
            keep(entity);
        }
        void preDeletion(Entity * entity, DataChange::ETransact) override { keep(entity); }

        std::vector<StrongRef<Entity>> m_kept;

    private:
        void keep(Entity * entity);
        DocumentWalk & m_walk;
    };

    unsigned below(unsigned limit) { return m_source(limit ? limit : 1); }
    Id pick() const;
    StrongRef<Thing> thing(Id id) const;
    void reach(Id from, std::set<Id> & reached) const;
    bool reaches(Id from, Id to) const;

    void transaction(unsigned depth);
    void change();
    void quietChange();
    void undo(bool undoing);
    // How a save goes on.
    enum class After { Nothing, Load, Migrate };
    void save(After after);
    // What the migration of an entity does: it may rename it, give it a child, take one away, and
    // keep it. Whether that changed the document.
    bool migrate(Thing & entity);
    void hold();
    void letGo();
    void start(StrongRef<Asset> asset);
    Model readAll() const;

    bool fail(std::string why);
    bool check();
    bool checkEntity(Thing const & entity, Node const & node);

    Source const m_source;
    std::filesystem::path const m_file;
    StrongRef<Asset> m_rAsset;
    Model m_model;
    std::vector<Model> m_states;
    std::size_t m_present = 0;
    std::vector<StrongRef<Entity>> m_held;
    std::vector<Id> m_unowned; // when the document was loaded, which keeps them
    std::unique_ptr<Keeper> m_pKeeper;
    std::vector<PassiveRef<Thing>> m_observed;
    std::string m_did;
    std::string m_wrong;
};

} // namespace Vn::Testing

#endif
