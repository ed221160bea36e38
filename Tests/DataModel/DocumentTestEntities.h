// Entities for the tests of documents on disk: one with a member of every kind, one that changed
// its members from version to version, and what goes with them.

#ifndef VN_TESTS_DATAMODEL_DOCUMENTTESTENTITIES_H
#define VN_TESTS_DATAMODEL_DOCUMENTTESTENTITIES_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/MigrationHelper.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Types/GlobalizedString.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {

// The meta type of a class X that has s_metaTypeId, c_className and initializeMembers(version,
// set).
template <class X>
class DocumentMetaType : public EntityMetaType {
public:
    DocumentMetaType(unsigned version, std::string base, EType type = TypeConcrete)
        : EntityMetaType("Test", X::s_metaTypeId(), std::string(X::c_className) + "MetaType",
                         version, std::move(base), type) {}

    std::vector<std::string> m_heard; // what happened to entities around saving and loading
    bool m_bListening = false;

private:
    void onMigratingMemberSet(Entity * entity, unsigned version, MemberSet * set) override {
        set->initialize(entity, X::c_className);
        static_cast<X *>(entity)->initializeMembers(version, set);
    }
    StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long id) override {
        return StrongRef<Entity>(new X(segment, id));
    }
    std::size_t onInstanceSize() const override { return sizeof(X); }
    void onPreSave(Entity * entity) override { hear("preSave", entity); }
    void onPostSave(Entity * entity) override { hear("postSave", entity); }
    void onPreLoad(Entity * entity) override { hear("preLoad", entity); }
    void onPostLoad(Entity * entity) override { hear("postLoad", entity); }
    void hear(char const * what, Entity const * entity) {
        if (m_bListening) m_heard.push_back(what + std::string(" ") + std::to_string(entity->id()));
    }
};

// The last step of every constructor of X.
template <class X>
void initializeMemberSetIfNeeded(X * self) {
    EntityMetaType * const type = X::s_metaType();
    MemberSet * const set = type->memberSet(c_latestVersion);
    {
        tbb::spin_rw_mutex_v3::scoped_lock lock(set->mutex(), false);
        if (!set->initialized() && (lock.upgrade_to_writer() || !set->initialized())) {
            set->initialize(self, X::c_className);
            self->initializeMembers(type->version(), set);
            if (MetaType * const base = MetaTypeMgr::get()->metaType(type->baseIdentifier()))
                set->base(base->memberSet(c_latestVersion));
        }
    }
    if (self->isCreating()) return;
    Segment * const segment = self->segment();
    if (segment->isTransient() || segment->isStandalone() || !segment->asset()->isMigrating())
        return;
    unsigned const version = segment->persistedMetaTypeVersion(type);
    if (version >= type->version()) return;
    self->migratingVersion(type, version);
    self->createHelper();
    self->metaType()->migratingMemberSetIfNeeded(self, version);
    self->markMigrating();
}

// Adds fields to a member set, told by the kind of the field.
class Members {
public:
    explicit Members(MemberSet * set) : m_pSet(set) {}
    template <class T>
    void add(char const * name, T & field) {
        m_pSet->addNewMember(name, &field, typeid(T).name(), kind(&field), nullptr, nullptr);
    }
    template <class T>
    void add(char const * name, std::vector<T> & field) {
        m_pSet->addNewMember(
            name, &field, typeid(std::vector<T>).name(), MemberMetaType::find("Vector"),
            TemplatizedFunctions::makeVector<T>(kind(static_cast<T *>(nullptr))), nullptr);
    }

private:
    template <class T>
    static MemberMetaType * kind(T *) {
        if constexpr (requires { T::s_metaType(); })
            return T::s_metaType();
        else
            return IntrinsicMetaType<T>::get();
    }
    static MemberMetaType * kind(GlobalizedString *) {
        return MemberMetaType::find("GlobalizedString");
    }
    template <class T>
    static MemberMetaType * kind(StrongRef<T> *) {
        return StrongRefMetaType::get();
    }
    template <class T>
    static MemberMetaType * kind(PassiveRef<T> *) {
        return PassiveRefMetaType::get();
    }

    MemberSet * m_pSet;
};

// A value inside entities.
struct Spot {
    double m_x = 0;
    std::wstring m_label;
    PassiveRef<Entity> m_rAt;

    static ValueMetaType * s_metaType();
};

// The base of what follows: something with a name and a parent, which doesn't own it.
class Piece : public Entity {
public:
    static constexpr char c_className[] = "Piece";
    static std::string s_metaTypeId() { return "Test-Piece"; }
    static EntityMetaType * s_metaType();
    static UniqueString const * interfaceId();
    void * queryInterface(UniqueString const * id) const override {
        return id == interfaceId() ? const_cast<Piece *>(this) : Entity::queryInterface(id);
    }
    Piece(Segment * segment, unsigned long long id);
    void initializeMembers(unsigned version, MemberSet * set);
    void createHelper() {}

    // All fields, exactly.
    virtual std::string dump() const;

    // Changes fields within a bracket.
    template <class Change>
    void change(Change && change) {
        EntityChange const bracket(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                   DataChange::TimingPreAndPost, nullptr, true);
        change();
    }

    std::wstring m_name;
    PassiveRef<Piece> m_rParent;

protected:
    explicit Piece(Segment * segment);
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

class Row;

// A piece with a member of every kind.
class Everything : public Piece {
public:
    static constexpr char c_className[] = "Everything";
    static std::string s_metaTypeId() { return "Test-Everything"; }
    static DocumentMetaType<Everything> * s_metaType();
    static UniqueString const * interfaceId();
    void * queryInterface(UniqueString const * id) const override {
        return id == interfaceId() ? const_cast<Everything *>(this) : Piece::queryInterface(id);
    }
    static StrongRef<Everything> make(Segment * segment);
    Everything(Segment * segment, unsigned long long id);
    void initializeMembers(unsigned version, MemberSet * set);
    std::string dump() const override;

    bool m_bool = false;
    int m_int = 0;
    unsigned m_unsigned = 0;
    long long m_int64 = 0;
    unsigned long long m_unsigned64 = 0;
    float m_float = 0;
    double m_double = 0;
    std::string m_string;
    std::wstring m_wide;
    GlobalizedString m_text;
    StrongRef<Piece> m_rOwned;
    PassiveRef<Entity> m_rFriend;
    PassiveRef<Row> m_rRow;
    Spot m_spot;
    std::vector<int> m_ints;
    std::vector<unsigned> m_unsigneds;
    std::vector<long long> m_int64s;
    std::vector<unsigned long long> m_unsigned64s;
    std::vector<float> m_floats;
    std::vector<double> m_doubles;
    std::vector<std::string> m_strings;
    std::vector<std::wstring> m_wides;
    std::vector<GlobalizedString> m_texts;
    std::vector<StrongRef<Piece>> m_children;
    std::vector<PassiveRef<Entity>> m_friends;
    std::vector<Spot> m_spots{Spot()}; // which a document may well have without
    int m_unsaved = 7;                 // a member that isn't persisted

protected:
    explicit Everything(Segment * segment);
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

// A row of the workload by which speed is measured, and what holds a million of them.
class Row : public Piece {
public:
    static constexpr char c_className[] = "Row";
    static std::string s_metaTypeId() { return "Test-Row"; }
    static EntityMetaType * s_metaType();
    static UniqueString const * interfaceId();
    void * queryInterface(UniqueString const * id) const override {
        return id == interfaceId() ? const_cast<Row *>(this) : Piece::queryInterface(id);
    }
    static StrongRef<Row> make(Segment * segment);
    Row(Segment * segment, unsigned long long id);
    void initializeMembers(unsigned version, MemberSet * set);
    std::string dump() const override;

    double m_x = 0;
    double m_y = 0;
    unsigned m_number = 0;
    bool m_flag = false;

protected:
    explicit Row(Segment * segment);
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

// Version 0 had "count" and "first"; version 1 has "count" and "total", and gives `total` what
// `first` was, by way of a helper.  Which of the two the process has is for the tests to say.
class Changing : public Piece {
public:
    static constexpr char c_className[] = "Changing";
    static std::string s_metaTypeId() { return "Test-Changing"; }
    // Ends the meta type so far; all documents must be closed.
    static void become(unsigned version);
    static void end();
    static EntityMetaType * s_metaType();
    static UniqueString const * interfaceId();
    void * queryInterface(UniqueString const * id) const override {
        return id == interfaceId() ? const_cast<Changing *>(this) : Piece::queryInterface(id);
    }
    static StrongRef<Changing> make(Segment * segment);
    Changing(Segment * segment, unsigned long long id);
    ~Changing() override;
    void initializeMembers(unsigned version, MemberSet * set);
    void createHelper();
    std::string dump() const override;

    int m_count = 0;
    double m_first = 0;               // of version 0
    PassiveRef<Piece> m_rFirstFriend; // the same
    double m_total = 0;               // of version 1
    PassiveRef<Piece> m_rTotalFriend; // the same

protected:
    explicit Changing(Segment * segment);
    EntityMetaType * onMetaType() const override { return s_metaType(); }
    void onPostMigrate() override;
    void doInitializeMigrationHelpers() override;
    void doUninitializeMigrationHelpers() override;

private:
    MigrationHelper * m_pHelper = nullptr;
};

// Every living entity with all its fields, the roots, and the segments; transient ones on request.
std::string dump(Asset const & asset, bool withTransient = false);

Segment * design(Asset & asset);

// Two entities whose members of every kind are at the ends of what they can hold; returns the root.
StrongRef<Everything> makeExtremes(Asset & asset);

// A document of about so many entities of every sort, the same for the same seed.
StrongRef<Asset> randomDocument(unsigned seed, std::size_t entities);
// Changes, makes, links and deletes some of them.
void changeRandomly(Asset & asset, unsigned seed);

} // namespace Vn::Testing

#endif
